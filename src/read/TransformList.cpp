#include "read/Values.h"

#include <cfloat>
#include <cmath>
#include <cstddef>

namespace vk::svg::impl {

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f'; }

constexpr double kPi = 3.14159265358979323846;

// The top two rows of an affine map acting on column vectors:
// x' = a x + c y + e, y' = b x + d y + f.
struct Affine {
    double a = 1.0, b = 0.0, c = 0.0, d = 1.0, e = 0.0, f = 0.0;
};

Affine Multiply(const Affine& m, const Affine& n)
{
    Affine r;
    r.a = m.a * n.a + m.c * n.b;
    r.b = m.b * n.a + m.d * n.b;
    r.c = m.a * n.c + m.c * n.d;
    r.d = m.b * n.c + m.d * n.d;
    r.e = m.a * n.e + m.c * n.f + m.e;
    r.f = m.b * n.e + m.d * n.f + m.f;
    return r;
}

// Sine and cosine of an angle in degrees, exact at the quarter turns so
// that rotate(90) maps grid points onto grid points.
void SinCos(double degrees, double& sine, double& cosine)
{
    double reduced = std::fmod(degrees, 360.0);
    if (reduced < 0.0) {
        reduced += 360.0;
    }
    if (reduced == 0.0) {
        sine = 0.0;
        cosine = 1.0;
    } else if (reduced == 90.0) {
        sine = 1.0;
        cosine = 0.0;
    } else if (reduced == 180.0) {
        sine = 0.0;
        cosine = -1.0;
    } else if (reduced == 270.0) {
        sine = -1.0;
        cosine = 0.0;
    } else {
        const double radians = reduced * kPi / 180.0;
        sine = std::sin(radians);
        cosine = std::cos(radians);
    }
}

// The tangent of a skew angle; false where it is infinite.
bool Tangent(double degrees, double& tangent)
{
    double reduced = std::fmod(degrees, 180.0);
    if (reduced < 0.0) {
        reduced += 180.0;
    }
    if (reduced == 90.0) {
        return false;
    }
    tangent = reduced == 0.0 ? 0.0 : std::tan(reduced * kPi / 180.0);
    return std::isfinite(tangent);
}

bool MakeTransform(std::string_view name, const std::vector<double>& args, Affine& t)
{
    const std::size_t n = args.size();
    if (name == "matrix") {
        if (n != 6) {
            return false;
        }
        t = Affine{args[0], args[1], args[2], args[3], args[4], args[5]};
    } else if (name == "translate") {
        if (n != 1 && n != 2) {
            return false;
        }
        t.e = args[0];
        t.f = n == 2 ? args[1] : 0.0;
    } else if (name == "scale") {
        if (n != 1 && n != 2) {
            return false;
        }
        t.a = args[0];
        t.d = n == 2 ? args[1] : args[0];
    } else if (name == "rotate") {
        if (n != 1 && n != 3) {
            return false;
        }
        double sine = 0.0;
        double cosine = 1.0;
        SinCos(args[0], sine, cosine);
        t = Affine{cosine, sine, -sine, cosine, 0.0, 0.0};
        if (n == 3) {
            // translate(cx, cy) rotate(a) translate(-cx, -cy)
            const double cx = args[1];
            const double cy = args[2];
            t.e = cx - cosine * cx + sine * cy;
            t.f = cy - sine * cx - cosine * cy;
        }
    } else if (name == "skewX") {
        if (n != 1 || !Tangent(args[0], t.c)) {
            return false;
        }
    } else if (name == "skewY") {
        if (n != 1 || !Tangent(args[0], t.b)) {
            return false;
        }
    } else {
        return false;
    }
    return true;
}

// Checked in double: casting a value beyond the float range is undefined.
bool FitsFloat(double value) { return std::isfinite(value) && std::fabs(value) <= FLT_MAX; }

} // namespace

bool ParseTransformList(std::string_view text, Wm4::Matrix3<float>& matrix)
{
    Affine result;
    std::vector<double> args;
    std::size_t position = 0;
    const std::size_t size = text.size();
    auto skipSpace = [&] {
        while (position < size && IsSpace(text[position])) {
            ++position;
        }
    };
    skipSpace();
    bool first = true;
    while (position < size) {
        if (!first) {
            // Between functions: any white space and commas, or nothing.
            while (position < size && (IsSpace(text[position]) || text[position] == ',')) {
                ++position;
            }
            if (position == size) {
                return false; // only a trailing comma gets here
            }
        }
        first = false;
        const std::size_t nameStart = position;
        while (position < size &&
               ((text[position] >= 'a' && text[position] <= 'z') || (text[position] >= 'A' && text[position] <= 'Z'))) {
            ++position;
        }
        const std::string_view name = text.substr(nameStart, position - nameStart);
        skipSpace();
        if (name.empty() || position == size || text[position] != '(') {
            return false;
        }
        const std::size_t close = text.find(')', position + 1);
        if (close == std::string_view::npos) {
            return false;
        }
        if (!ParseNumberList(text.substr(position + 1, close - position - 1), args)) {
            return false;
        }
        Affine t;
        if (!MakeTransform(name, args, t)) {
            return false;
        }
        result = Multiply(result, t);
        position = close + 1;
        skipSpace();
    }

    const double entries[6] = {result.a, result.b, result.c, result.d, result.e, result.f};
    for (double entry : entries) {
        if (!FitsFloat(entry)) {
            return false;
        }
    }
    matrix = Wm4::Matrix3<float>(static_cast<float>(result.a), static_cast<float>(result.c),
                                 static_cast<float>(result.e), static_cast<float>(result.b),
                                 static_cast<float>(result.d), static_cast<float>(result.f), 0.0f, 0.0f, 1.0f);
    return true;
}

} // namespace vk::svg::impl
