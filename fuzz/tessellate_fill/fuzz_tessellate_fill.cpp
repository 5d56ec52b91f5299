// Bytes as contours for the fill tessellator: points on a small integer grid
// (duplicates, collinear runs, overlaps and crossings are common), 16-bit
// integers scaled by a power of two, or raw floats (NaN, infinities, huge
// and subnormal values), split into contours or joined by arbitrary edges.
// Every rule runs on both entry points. Finite input must fill; the mesh
// must be indexed in range with distinct, used vertices and positive
// triangles; on the small grid, sample points must lie in exactly as many
// triangles as their winding number asks for.
#include <svg/Tessellation.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using V2 = Wm4::Vector2<float>;
using vk::svg::FillMesh;
using vk::svg::WindingRule;

class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size) : mData(data), mSize(size) {}
    bool empty() const { return mPos >= mSize; }
    std::uint8_t byte() { return mPos < mSize ? mData[mPos++] : 0; }
    std::uint32_t word()
    {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i) {
            bits = (bits << 8) | byte();
        }
        return bits;
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

struct Input {
    std::vector<std::vector<V2>> contours;
    std::vector<V2> points;
    std::vector<std::uint32_t> edges;
    bool finite = true;
    bool smallGrid = false;
};

Input Decode(Reader& in)
{
    Input input;
    const std::uint8_t mode = in.byte();
    const std::size_t count = 1 + in.byte() % 128;
    const int encoding = mode & 3;
    input.smallGrid = encoding == 0;
    const int shift = int(in.byte() % 64) - 32;
    input.contours.emplace_back();
    for (std::size_t i = 0; i < count && !in.empty(); ++i) {
        V2 p;
        if (encoding == 0) {
            const auto x = float(std::int8_t(in.byte()) % 9);
            p = V2(x, float(std::int8_t(in.byte()) % 9));
        } else if (encoding == 1) {
            const int xHigh = in.byte();
            const auto x = std::int16_t((xHigh << 8) | in.byte());
            const int yHigh = in.byte();
            const auto y = std::int16_t((yHigh << 8) | in.byte());
            p = V2(std::ldexp(float(x), shift), std::ldexp(float(y), shift));
        } else {
            const std::uint32_t bx = in.word();
            const std::uint32_t by = in.word();
            float x;
            float y;
            std::memcpy(&x, &bx, sizeof x);
            std::memcpy(&y, &by, sizeof y);
            p = V2(x, y);
        }
        input.finite = input.finite && std::isfinite(p.X()) && std::isfinite(p.Y());
        input.points.push_back(p);
        input.contours.back().push_back(p);
        // A point whose low bits of the mode byte match ends the contour.
        if ((mode & 8) && (in.byte() & 7) == 0) {
            input.contours.emplace_back();
        }
    }
    const auto n = static_cast<std::uint32_t>(input.points.size());
    if (n > 0) {
        if (mode & 16) { // arbitrary edges
            const std::size_t edges = 2 * (1 + in.byte() % 128);
            for (std::size_t i = 0; i < edges; ++i) {
                input.edges.push_back(in.byte() % n);
            }
        } else {
            for (std::uint32_t i = 0; i < n; ++i) {
                input.edges.push_back(i);
                input.edges.push_back((i + 1) % n);
            }
        }
    }
    return input;
}

void CheckMesh(const FillMesh& mesh)
{
    Check(mesh.indices.size() % 3 == 0);
    std::vector<char> used(mesh.vertices.size(), 0);
    for (std::uint32_t index : mesh.indices) {
        Check(index < mesh.vertices.size());
        used[index] = 1;
    }
    std::set<std::pair<float, float>> distinct;
    for (std::size_t i = 0; i < mesh.vertices.size(); ++i) {
        const V2& v = mesh.vertices[i];
        Check(used[i] && std::isfinite(v.X()) && std::isfinite(v.Y()));
        Check(distinct.emplace(v.X(), v.Y()).second);
    }
    for (std::size_t t = 0; t < mesh.indices.size(); t += 3) {
        Check(Cross(mesh.vertices[mesh.indices[t]], mesh.vertices[mesh.indices[t + 1]],
                    mesh.vertices[mesh.indices[t + 2]]) > 0);
    }
}

bool Covers(WindingRule rule, int w)
{
    switch (rule) {
    case WindingRule::EvenOdd:
        return (w & 1) != 0;
    case WindingRule::Positive:
        return w > 0;
    case WindingRule::Negative:
        return w < 0;
    case WindingRule::NonZero:
    default:
        return w != 0;
    }
}

// Exact on the small grid: samples off every edge, coverage by winding.
void CheckCoverage(const std::vector<std::vector<V2>>& contours, WindingRule rule, const FillMesh& mesh)
{
    for (int i = 0; i < 12; ++i) {
        for (int j = 0; j < 12; ++j) {
            const V2 p(-8.5f + 1.45f * float(i), -8.3f + 1.41f * float(j));
            int w = 0;
            bool onEdge = false;
            for (const auto& c : contours) {
                for (std::size_t k = 0; k < c.size(); ++k) {
                    const V2 a = c[k];
                    const V2 b = c[(k + 1) % c.size()];
                    const double side = Cross(a, b, p);
                    // The samples are not exact decimals and the mesh sits on
                    // a grid, so anything this close to an edge is a tie.
                    const double length = std::hypot(double(b.X()) - a.X(), double(b.Y()) - a.Y());
                    if (std::fabs(side) <= 1e-3 * length && std::fmin(a.X(), b.X()) - 1e-3 <= p.X() &&
                        p.X() <= std::fmax(a.X(), b.X()) + 1e-3 && std::fmin(a.Y(), b.Y()) - 1e-3 <= p.Y() &&
                        p.Y() <= std::fmax(a.Y(), b.Y()) + 1e-3) {
                        onEdge = true;
                    }
                    if (a.Y() <= p.Y() && b.Y() > p.Y() && side > 0) {
                        ++w;
                    } else if (b.Y() <= p.Y() && a.Y() > p.Y() && side < 0) {
                        --w;
                    }
                }
            }
            if (onEdge) {
                continue;
            }
            // A sample on a triangle's side would count for both neighbours.
            int inside = 0;
            for (std::size_t t = 0; t < mesh.indices.size() && !onEdge; t += 3) {
                const V2 a = mesh.vertices[mesh.indices[t]];
                const V2 b = mesh.vertices[mesh.indices[t + 1]];
                const V2 c = mesh.vertices[mesh.indices[t + 2]];
                const double ab = Cross(a, b, p);
                const double bc = Cross(b, c, p);
                const double ca = Cross(c, a, p);
                if (ab >= 0 && bc >= 0 && ca >= 0) {
                    onEdge = ab == 0 || bc == 0 || ca == 0;
                    ++inside;
                }
            }
            Check(onEdge || inside == (Covers(rule, w) ? 1 : 0));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Reader in(data, size);
    const Input input = Decode(in);
    for (WindingRule rule :
         {WindingRule::NonZero, WindingRule::EvenOdd, WindingRule::Positive, WindingRule::Negative}) {
        FillMesh mesh;
        mesh.indices = {7, 7, 7};
        std::string error;
        const bool ok = vk::svg::TessellateFill(input.contours, rule, mesh, &error);
        Check(ok == input.finite);
        Check(ok || !error.empty());
        CheckMesh(mesh);
        if (ok && input.smallGrid) {
            CheckCoverage(input.contours, rule, mesh);
        }

        FillMesh chained;
        const bool chainedOk = vk::svg::TessellateFill(input.points, input.edges, rule, chained, &error);
        if (input.finite) {
            Check(chainedOk);
        }
        CheckMesh(chained);
    }
    return 0;
}
