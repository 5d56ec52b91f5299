#include "Cli.h"
#include "CommandSupport.h"

#include <svg/Items.h>
#include <svg/TextSpace.h>
#include <svg/Writer.h>

#include <array>
#include <ostream>

namespace vksvg {

namespace {

using namespace vk::svg;

const char* const kUsage = "Usage: vksvg info FILE [--subset] [--lenient]\n";

constexpr std::array<const char*, 8> kElementNames = {"svg", "g", "line", "rect", "circle", "path", "text", "image"};

const char* ElementName(ItemType type)
{
    const auto index = static_cast<std::size_t>(type);
    return index < kElementNames.size() ? kElementNames[index] : "unknown";
}

class Outline {
public:
    explicit Outline(std::ostream& out) : mOut(out) {}

    void item(const ItemInterface& item, int depth)
    {
        const auto index = static_cast<std::size_t>(item.getType());
        if (index < mCounts.size())
            ++mCounts[index];
        mOut << std::string(static_cast<std::size_t>(depth) * 2, ' ') << ElementName(item.getType());
        if (item.getId())
            quoted("id", *item.getId());
        geometry(item);
        if (item.getTransform())
            transform(*item.getTransform());
        mOut << '\n';
        if (const auto* node = dynamic_cast<const Node*>(&item))
            for (const auto& child : node->getChildren())
                if (child != nullptr)
                    this->item(*child, depth + 1);
    }

    void counts()
    {
        mOut << "Items:";
        const char* separator = " ";
        for (std::size_t i = 0; i < mCounts.size(); ++i) {
            if (mCounts[i] == 0)
                continue;
            mOut << separator << kElementNames[i] << ' ' << mCounts[i];
            separator = ", ";
        }
        if (separator[0] == ' ')
            mOut << " none";
        mOut << '\n';
    }

private:
    void number(const char* name, float value) { mOut << ' ' << name << '=' << floatToSvgNumber(value, mOptions); }
    void quoted(const char* name, const std::string& value) { mOut << ' ' << name << "=\"" << value << '"'; }

    void transform(const Wm4::Matrix3<float>& m)
    {
        mOut << " transform=matrix(";
        const float values[] = {m(0, 0), m(1, 0), m(0, 1), m(1, 1), m(0, 2), m(1, 2)};
        for (std::size_t i = 0; i < 6; ++i)
            mOut << (i > 0 ? " " : "") << floatToSvgNumber(values[i], mOptions);
        mOut << ')';
    }

    void geometry(const ItemInterface& item)
    {
        switch (item.getType()) {
        case ItemType::Document: {
            const auto& document = static_cast<const Document&>(item);
            if (document.getViewbox()) {
                const BoundingBox& box = *document.getViewbox();
                mOut << " viewBox=" << floatToSvgNumber(box.getMinPoint().X(), mOptions) << ','
                     << floatToSvgNumber(box.getMinPoint().Y(), mOptions) << ','
                     << floatToSvgNumber(box.getWidth(), mOptions) << ','
                     << floatToSvgNumber(box.getHeight(), mOptions);
            }
            if (document.getStyle())
                mOut << " style=" << document.getStyle()->size() << "B";
            break;
        }
        case ItemType::Line: {
            const auto& line = static_cast<const Line&>(item);
            number("x1", line.getStart().X());
            number("y1", line.getStart().Y());
            number("x2", line.getEnd().X());
            number("y2", line.getEnd().Y());
            break;
        }
        case ItemType::Rect: {
            const auto& rect = static_cast<const Rect&>(item);
            number("x", rect.getPosition().X());
            number("y", rect.getPosition().Y());
            number("width", rect.getSize().X());
            number("height", rect.getSize().Y());
            if (rect.getRadius().X() != 0.0f || rect.getRadius().Y() != 0.0f) {
                number("rx", rect.getRadius().X());
                number("ry", rect.getRadius().Y());
            }
            break;
        }
        case ItemType::Circle: {
            const auto& circle = static_cast<const Circle&>(item);
            number("cx", circle.getCenter().X());
            number("cy", circle.getCenter().Y());
            number("r", circle.getRadius());
            break;
        }
        case ItemType::Path:
            mOut << " commands=" << static_cast<const Path&>(item).getCommands().size();
            break;
        case ItemType::Text: {
            const auto& text = static_cast<const Text&>(item);
            number("x", text.getPosition().X());
            number("y", text.getPosition().Y());
            const bool preserve = text.getXmlSpacePreserve().value_or(false);
            quoted("content",
                   preserve ? ApplySvgXMLSpacePreserve(text.getContent()) : ApplySvgXMLSpaceDefault(text.getContent()));
            break;
        }
        case ItemType::Image: {
            const auto& image = static_cast<const Image&>(item);
            number("x", image.getPosition().X());
            number("y", image.getPosition().Y());
            number("width", image.getSize().X());
            number("height", image.getSize().Y());
            quoted("href", image.getHref());
            break;
        }
        default:
            break;
        }
    }

    std::ostream& mOut;
    SaveOptions mOptions;
    std::array<std::size_t, 8> mCounts{};
};

} // namespace

int runInfoCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    std::string file;
    LoadOptions options = DefaultLoadOptions();
    for (const std::string& arg : args) {
        if (file.empty() && !(arg.size() > 1 && arg[0] == '-')) {
            file = arg;
        } else if (!ApplyLoadFlag(arg, options)) {
            err << kUsage;
            return UsageError;
        }
    }
    if (file.empty()) {
        err << kUsage;
        return UsageError;
    }

    DocumentSession session(err);
    ItemInterfacePointer<ItemInterface> root;
    if (!LoadDocument(file, options, root, err))
        return Failure;
    Outline outline(out);
    if (root != nullptr)
        outline.item(*root, 0);
    outline.counts();
    return Success;
}

} // namespace vksvg
