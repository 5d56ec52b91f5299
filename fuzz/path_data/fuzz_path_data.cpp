// Arbitrary bytes as path data: parsing, then primitives and their boxes.
// Syntax errors are results and malformed UTF-8 throws utfcpp's exception;
// anything else (another exception, a crash, a leak, undefined behaviour or
// a broken invariant) is a finding.
#include <svg/PathData.h>
#include <svg/PathPrimitives.h>

#include <utf8.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>

namespace {

std::size_t ValueCount(vk::svg::PathCommandType type)
{
    using T = vk::svg::PathCommandType;
    switch (type) {
    case T::HLineTo:
    case T::HLineToRel:
    case T::VLineTo:
    case T::VLineToRel:
        return 1;
    case T::MoveTo:
    case T::MoveToRel:
    case T::LineTo:
    case T::LineToRel:
        return 2;
    case T::SmoothBezierCubic:
    case T::SmoothBezierCubicRel:
        return 4;
    case T::BezierCubic:
    case T::BezierCubicRel:
        return 6;
    case T::EllipticalArc:
    case T::EllipticalArcRel:
        return 7;
    case T::ClosePath:
        return 0;
    }
    return 99;
}

bool IsAscii(const std::string& text)
{
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::list<vk::svg::PathCommand> commands;
    std::string error;
    bool ok = false;
    bool threw = false;
    try {
        ok = vk::svg::ConvertPathStringToCommands(text, commands, &error);
    } catch (const utf8::exception&) {
        threw = true;
    }
    // Only malformed UTF-8 throws, and everything a successful parse
    // accepts is ASCII.
    if ((threw && utf8::is_valid(text.begin(), text.end())) || (ok && !IsAscii(text)) || (ok && !error.empty())) {
        __builtin_trap();
    }
    for (const vk::svg::PathCommand& command : commands) {
        if (command.values.size() != ValueCount(command.type)) {
            __builtin_trap();
        }
    }

    // A rotation with shear and translation, besides the identity.
    const Wm4::Matrix3<float> skew(0.8f, -1.3f, 7.0f, 0.4f, 0.9f, -3.0f, 0.0f, 0.0f, 1.0f);
    vk::svg::PathVisitorCommandsToPrimitives walker(
        commands, [&](std::unique_ptr<vk::svg::PathPrimitive>& primitive, bool) {
            vk::svg::BoundingBox box;
            primitive->computeBoundingBox(box, Wm4::Matrix3<float>::IDENTITY);
            primitive->computeBoundingBox(box, skew);
        });
    walker.visit();
    return 0;
}
