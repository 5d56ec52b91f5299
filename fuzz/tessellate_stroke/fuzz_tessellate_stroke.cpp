// Bytes as polylines and a stroke style for the stroker: every join, cap and
// mode; widths, miter limits, dash entries and offsets from a table of
// awkward values (zero, negative, NaN, infinite, huge, tiny) or raw floats;
// points on a small grid (repeats, reversals and dots are common) or raw
// floats; sometimes a transform. Finite input must stroke unless the result
// leaves the float range; the mesh must be indexed in range with finite
// vertices and positive triangles; on the small grid without dashes, every
// centre-line point must lie in the mesh.
#include <svg/Tessellation.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using V2 = Wm4::Vector2<float>;
using namespace vk::svg;

class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size) : mData(data), mSize(size) {}
    bool empty() const { return mPos >= mSize; }
    std::uint8_t byte() { return mPos < mSize ? mData[mPos++] : 0; }
    float raw()
    {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i) {
            bits = (bits << 8) | byte();
        }
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    // An awkward value from the table, or a raw float for the top codes.
    float value()
    {
        static const float kTable[] = {0.0f,
                                       1.0f,
                                       2.0f,
                                       0.5f,
                                       3.0f,
                                       10.0f,
                                       0.001f,
                                       1e-30f,
                                       1e30f,
                                       3e38f,
                                       -1.0f,
                                       -0.0f,
                                       std::numeric_limits<float>::quiet_NaN(),
                                       std::numeric_limits<float>::infinity(),
                                       1.5f,
                                       7.25f};
        const std::uint8_t code = byte();
        return code < 240 ? kTable[code % 16] : raw();
    }

private:
    const std::uint8_t* mData;
    std::size_t mSize;
    std::size_t mPos = 0;
};

void Check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

double Cross(V2 a, V2 b, V2 c)
{
    return (double(b.X()) - a.X()) * (double(c.Y()) - a.Y()) - (double(b.Y()) - a.Y()) * (double(c.X()) - a.X());
}

bool Inside(const FillMesh& mesh, V2 p)
{
    for (std::size_t t = 0; t < mesh.indices.size(); t += 3) {
        const V2 a = mesh.vertices[mesh.indices[t]];
        const V2 b = mesh.vertices[mesh.indices[t + 1]];
        const V2 c = mesh.vertices[mesh.indices[t + 2]];
        const double slack = 1e-4;
        const double ab = Cross(a, b, p) / std::hypot(double(b.X()) - a.X(), double(b.Y()) - a.Y());
        const double bc = Cross(b, c, p) / std::hypot(double(c.X()) - b.X(), double(c.Y()) - b.Y());
        const double ca = Cross(c, a, p) / std::hypot(double(a.X()) - c.X(), double(a.Y()) - c.Y());
        if (ab >= -slack && bc >= -slack && ca >= -slack) {
            return true;
        }
    }
    return false;
}

void CheckMesh(const FillMesh& mesh, bool distinct)
{
    Check(mesh.indices.size() % 3 == 0);
    for (std::uint32_t index : mesh.indices) {
        Check(index < mesh.vertices.size());
    }
    std::set<std::pair<float, float>> seen;
    for (const V2& v : mesh.vertices) {
        Check(std::isfinite(v.X()) && std::isfinite(v.Y()));
        Check(!distinct || seen.emplace(v.X(), v.Y()).second);
    }
    for (std::size_t t = 0; t < mesh.indices.size(); t += 3) {
        Check(Cross(mesh.vertices[mesh.indices[t]], mesh.vertices[mesh.indices[t + 1]],
                    mesh.vertices[mesh.indices[t + 2]]) > 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Reader in(data, size);
    StrokeStyle style;
    const std::uint8_t mode = in.byte();
    style.join = StrokeJoin(mode % 5);
    style.cap = StrokeCap((mode / 5) % 3);
    style.mode = (mode & 0x80) ? StrokeMode::NonOverlapping : StrokeMode::Fast;
    const std::uint8_t flags = in.byte();
    const bool smallGrid = (flags & 1) == 0;
    const bool transformed = (flags & 2) != 0;
    style.width = (flags & 4) ? in.value() : float(1 + in.byte() % 8) / 4.0f;
    style.miterLimit = in.value();
    style.tolerance = (flags & 8) ? in.value() : 0.25f;
    const std::size_t dashes = (flags & 16) ? in.byte() % 9 : 0;
    for (std::size_t i = 0; i < dashes; ++i) {
        style.dashArray.push_back((flags & 32) ? in.value() : float(in.byte() % 8) / 2.0f);
    }
    style.dashOffset = dashes > 0 ? in.value() : 0.0f;
    Wm4::Matrix3<float> transform = Wm4::Matrix3<float>::IDENTITY;
    if (transformed) {
        transform = Wm4::Matrix3<float>(float(std::int8_t(in.byte())) / 16.0f, float(std::int8_t(in.byte())) / 16.0f,
                                        in.value(), float(std::int8_t(in.byte())) / 16.0f,
                                        float(std::int8_t(in.byte())) / 16.0f, 0.0f, 0.0f, 0.0f, 1.0f);
    }

    std::vector<StrokePolyline> polylines(1);
    bool finite = std::isfinite(transform(0, 2));
    const std::size_t count = in.byte() % 64;
    for (std::size_t i = 0; i < count && !in.empty(); ++i) {
        V2 p;
        if (smallGrid) {
            const auto x = float(std::int8_t(in.byte()) % 9);
            p = V2(x, float(std::int8_t(in.byte()) % 9));
        } else {
            const float x = in.raw();
            p = V2(x, in.raw());
        }
        finite = finite && std::isfinite(p.X()) && std::isfinite(p.Y());
        polylines.back().points.push_back(p);
        const std::uint8_t split = in.byte();
        if ((split & 7) == 0) {
            polylines.back().closed = (split & 8) != 0;
            polylines.emplace_back();
        }
    }

    FillMesh mesh;
    mesh.indices = {5, 5, 5};
    std::string error;
    const bool ok = transformed ? TessellateStroke(polylines, style, transform, mesh, &error)
                                : TessellateStroke(polylines, style, mesh, &error);
    if (!finite) {
        Check(!ok);
    }
    // Small grid input, a sane width and an identity map never overflow.
    if (smallGrid && !transformed && std::isfinite(style.width) && std::fabs(style.width) < 1e6f) {
        Check(ok);
    }
    Check(ok || !error.empty());
    Check(ok || mesh.indices.empty());
    CheckMesh(mesh, style.mode == StrokeMode::NonOverlapping);
    if (ok && smallGrid && !transformed && style.dashArray.empty() && style.width >= 0.25f && style.width < 1e6f) {
        for (const StrokePolyline& polyline : polylines) {
            const std::size_t n = polyline.points.size();
            const std::size_t segments = polyline.closed ? n : (n > 0 ? n - 1 : 0);
            for (std::size_t i = 0; i < segments; ++i) {
                const V2 a = polyline.points[i];
                const V2 b = polyline.points[(i + 1) % n];
                if (a == b) {
                    continue;
                }
                for (int k = 0; k <= 2; ++k) {
                    const float t = float(k) / 2.0f;
                    Check(Inside(mesh, V2(a.X() + (b.X() - a.X()) * t, a.Y() + (b.Y() - a.Y()) * t)));
                }
            }
        }
    }
    return 0;
}
