#include "read/PathGrammar.h"

#include <vkSystem/vkStringUtils.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

namespace vk::svg::impl {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kFloatMax = static_cast<double>(std::numeric_limits<float>::max());
// Below this radius the primitives skip an arc altogether.
constexpr float kSmallestArcRadius = 0.01f;

inline bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }
inline bool IsDigit(char c) { return static_cast<unsigned char>(c) - static_cast<unsigned>('0') < 10u; }
inline bool StartsNumber(char c) { return IsDigit(c) || c == '.' || c == '-' || c == '+'; }

// How many numbers one group of the command takes; -1 for anything that is
// not a command letter.
inline int GroupSize(char letter)
{
    switch (letter) {
    case 'Z':
    case 'z':
        return 0;
    case 'H':
    case 'h':
    case 'V':
    case 'v':
        return 1;
    case 'M':
    case 'm':
    case 'L':
    case 'l':
    case 'T':
    case 't':
        return 2;
    case 'S':
    case 's':
    case 'Q':
    case 'q':
        return 4;
    case 'C':
    case 'c':
        return 6;
    case 'A':
    case 'a':
        return 7;
    default:
        return -1;
    }
}

// Whether the primitive, which finds the centre in single precision, would
// see these radii as larger than the chord needs. Mirrors its arithmetic.
bool CentreLeavesChord(float rx, float ry, float rotation, float sx, float sy, float ex, float ey)
{
    const float phi = rotation * 0.017453292f;
    const float cosPhi = std::cos(phi);
    const float sinPhi = std::sin(phi);
    const float dx = (sx - ex) / 2.0f;
    const float dy = (sy - ey) / 2.0f;
    const float x1 = cosPhi * dx + sinPhi * dy;
    const float y1 = -sinPhi * dx + cosPhi * dy;
    const float rx2 = rx * rx;
    const float ry2 = ry * ry;
    return rx2 * ry2 - rx2 * y1 * y1 - ry2 * x1 * x1 > 0.0f;
}

class PathReader {
public:
    PathReader(std::string_view data, std::list<PathCommand>& out)
        : mBegin(data.data()), mEnd(data.data() + data.size()), mP(mBegin), mOut(out)
    {
    }

    PathGrammarResult read()
    {
        skipSpace();
        if (mP == mEnd) {
            return mResult;
        }
        if (*mP != 'M' && *mP != 'm') {
            fail(mP, "path data must begin with a move");
            return mResult;
        }
        while (mP != mEnd) {
            const char letter = *mP;
            const int size = GroupSize(letter);
            if (size < 0) {
                failUnexpected();
                break;
            }
            ++mP;
            if (size == 0) {
                closePath();
                skipSpace();
                continue;
            }
            skipSpace();
            if (!readGroups(letter, size)) {
                break;
            }
        }
        return mResult;
    }

private:
    bool fail(const char* at, const char* message)
    {
        mResult.ok = false;
        mResult.errorOffset = static_cast<std::size_t>(at - mBegin);
        mResult.error = message;
        return false;
    }

    void failUnexpected()
    {
        const char c = *mP;
        const auto byte = static_cast<unsigned char>(c);
        char text[40];
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) {
            std::snprintf(text, sizeof text, "unknown command \"%c\"", c);
        } else if (StartsNumber(c)) {
            fail(mP, "expected a command"); // numbers after a close path
            return;
        } else if (byte > 0x20 && byte < 0x7f) {
            std::snprintf(text, sizeof text, "unexpected character \"%c\"", c);
        } else {
            std::snprintf(text, sizeof text, "unexpected byte 0x%02X", static_cast<unsigned>(byte));
        }
        fail(mP, text);
    }

    void skipSpace()
    {
        while (mP != mEnd && IsSpace(*mP)) {
            ++mP;
        }
    }

    // Skips an optional comma with white space around it; tells whether
    // there was a comma.
    bool skipCommaSpace()
    {
        skipSpace();
        if (mP == mEnd || *mP != ',') {
            return false;
        }
        ++mP;
        skipSpace();
        return true;
    }

    // A number exactly at the cursor: [sign] digits [. digits] [e [sign]
    // digits] or [sign] . digits. A point or an exponent letter without
    // digits after it is an error, as in browsers, not the end of the number.
    bool readNumber(float& value)
    {
        const char* const start = mP;
        const char* q = start;
        if (q != mEnd && (*q == '+' || *q == '-')) {
            ++q;
        }
        const char* const digits = q;
        while (q != mEnd && IsDigit(*q)) {
            ++q;
        }
        bool any = q != digits;
        if (q != mEnd && *q == '.') {
            const char* const fraction = ++q;
            while (q != mEnd && IsDigit(*q)) {
                ++q;
            }
            if (q == fraction) {
                return fail(q, any ? "expected a digit after the point" : "expected a number");
            }
            any = true;
        }
        if (!any) {
            return fail(q, "expected a number");
        }
        if (q != mEnd && (*q == 'e' || *q == 'E')) {
            ++q;
            if (q != mEnd && (*q == '+' || *q == '-')) {
                ++q;
            }
            const char* const exponent = q;
            while (q != mEnd && IsDigit(*q)) {
                ++q;
            }
            if (q == exponent) {
                return fail(q, "expected a digit in the exponent");
            }
        }
        // The run is whole and valid; the fast conversion declines only
        // unusual forms (many digits, large exponents), left to strtof.
        if (vk::vkStringUtils::toFloatPrefix(start, q, value) != q && !vk::vkStringUtils::toFloat(start, q, value)) {
            return fail(start, "expected a number");
        }
        if (!std::isfinite(value)) {
            return fail(start, "number out of range");
        }
        mP = q;
        return true;
    }

    bool readFlag(float& value)
    {
        if (mP == mEnd || (*mP != '0' && *mP != '1')) {
            return fail(mP, "expected a flag");
        }
        value = *mP == '1' ? 1.0f : 0.0f;
        ++mP;
        return true;
    }

    // Reads the groups after a command letter, applying each as soon as it
    // is complete so that an error keeps everything before it.
    bool readGroups(char letter, int size)
    {
        const bool arc = size == 7;
        float v[7];
        for (;;) {
            const char* const groupStart = mP;
            for (int i = 0; i < size; ++i) {
                if (i > 0) {
                    skipCommaSpace();
                }
                if (arc && (i == 3 || i == 4) ? !readFlag(v[i]) : !readNumber(v[i])) {
                    return false;
                }
            }
            if (!apply(letter, v)) {
                return fail(groupStart, "coordinate out of range");
            }
            // Further groups repeat the command; after a move they are lines.
            if (letter == 'M') {
                letter = 'L';
            } else if (letter == 'm') {
                letter = 'l';
            }
            const bool comma = skipCommaSpace();
            if (mP != mEnd && StartsNumber(*mP)) {
                continue;
            }
            if (comma) {
                return fail(mP, "expected a number");
            }
            return true;
        }
    }

    static bool Narrow(double value, float& out)
    {
        if (!(std::fabs(value) <= kFloatMax)) {
            return false;
        }
        out = static_cast<float>(value);
        return true;
    }

    template <std::size_t N> bool emit(PathCommandType type, const double (&values)[N])
    {
        float narrowed[N];
        for (std::size_t i = 0; i < N; ++i) {
            if (!Narrow(values[i], narrowed[i])) {
                return false;
            }
        }
        std::vector<float> run(narrowed, narrowed + N);
        mOut.emplace_back(type, run); // the lvalue overload takes the storage over
        return true;
    }

    bool lineTo(double x, double y)
    {
        if (!emit(PathCommandType::LineTo, {x, y})) {
            return false;
        }
        mX = x;
        mY = y;
        return true;
    }

    bool cubicTo(double x1, double y1, double x2, double y2, double x, double y)
    {
        if (!emit(PathCommandType::BezierCubic, {x1, y1, x2, y2, x, y})) {
            return false;
        }
        mX = x;
        mY = y;
        return true;
    }

    // The cubic that traces the quadratic exactly.
    bool quadraticTo(double qx, double qy, double x, double y)
    {
        constexpr double kTwoThirds = 2.0 / 3.0;
        return cubicTo(mX + kTwoThirds * (qx - mX), mY + kTwoThirds * (qy - mY), x + kTwoThirds * (qx - x),
                       y + kTwoThirds * (qy - y), x, y);
    }

    void closePath()
    {
        std::vector<float> none;
        mOut.emplace_back(PathCommandType::ClosePath, none);
        mX = mStartX;
        mY = mStartY;
        mCubicBefore = false;
        mQuadraticBefore = false;
    }

    bool apply(char letter, const float* v)
    {
        const bool relative = letter >= 'a';
        const double ox = relative ? mX : 0.0;
        const double oy = relative ? mY : 0.0;
        const double v0 = v[0];
        bool cubic = false;
        bool quadratic = false;
        bool ok = true;
        switch (letter) {
        case 'M':
        case 'm': {
            const double x = ox + v0;
            const double y = oy + v[1];
            ok = emit(PathCommandType::MoveTo, {x, y});
            if (ok) {
                mX = mStartX = x;
                mY = mStartY = y;
            }
            break;
        }
        case 'L':
        case 'l':
            ok = lineTo(ox + v0, oy + v[1]);
            break;
        case 'H':
        case 'h':
            ok = lineTo(ox + v0, mY);
            break;
        case 'V':
        case 'v':
            ok = lineTo(mX, oy + v0);
            break;
        case 'C':
        case 'c': {
            const double x2 = ox + v[2];
            const double y2 = oy + v[3];
            ok = cubicTo(ox + v0, oy + v[1], x2, y2, ox + v[4], oy + v[5]);
            mControlX = x2;
            mControlY = y2;
            cubic = true;
            break;
        }
        case 'S':
        case 's': {
            const double x1 = mCubicBefore ? 2.0 * mX - mControlX : mX;
            const double y1 = mCubicBefore ? 2.0 * mY - mControlY : mY;
            const double x2 = ox + v0;
            const double y2 = oy + v[1];
            ok = cubicTo(x1, y1, x2, y2, ox + v[2], oy + v[3]);
            mControlX = x2;
            mControlY = y2;
            cubic = true;
            break;
        }
        case 'Q':
        case 'q': {
            const double qx = ox + v0;
            const double qy = oy + v[1];
            ok = quadraticTo(qx, qy, ox + v[2], oy + v[3]);
            mControlX = qx;
            mControlY = qy;
            quadratic = true;
            break;
        }
        case 'T':
        case 't': {
            const double qx = mQuadraticBefore ? 2.0 * mX - mControlX : mX;
            const double qy = mQuadraticBefore ? 2.0 * mY - mControlY : mY;
            ok = quadraticTo(qx, qy, ox + v0, oy + v[1]);
            mControlX = qx;
            mControlY = qy;
            quadratic = true;
            break;
        }
        default: // 'A', 'a'
            ok = arcTo(v, ox + v[5], oy + v[6]);
            break;
        }
        mCubicBefore = cubic;
        mQuadraticBefore = quadratic;
        return ok;
    }

    bool arcTo(const float* v, double x, double y)
    {
        // Decided on the single-precision points the primitives will see.
        float sx;
        float sy;
        float ex;
        float ey;
        if (!Narrow(mX, sx) || !Narrow(mY, sy) || !Narrow(x, ex) || !Narrow(y, ey)) {
            return false;
        }
        if (sx == ex && sy == ey) {
            mX = x;
            mY = y;
            return true; // SVG draws nothing for an arc that ends where it starts
        }
        const float rotation = v[2];
        double rx = std::fabs(static_cast<double>(v[0]));
        double ry = std::fabs(static_cast<double>(v[1]));
        if (rx == 0.0 || ry == 0.0) {
            return lineTo(x, y);
        }
        const double phi = static_cast<double>(rotation) * (kPi / 180.0);
        const double cosPhi = std::cos(phi);
        const double sinPhi = std::sin(phi);
        const double dx = (static_cast<double>(sx) - ex) / 2.0;
        const double dy = (static_cast<double>(sy) - ey) / 2.0;
        const double x1 = cosPhi * dx + sinPhi * dy;
        const double y1 = -sinPhi * dx + cosPhi * dy;
        const double lambda = (x1 / rx) * (x1 / rx) + (y1 / ry) * (y1 / ry);
        const bool enlarged = lambda > 1.0;
        if (enlarged) {
            const double scale = std::sqrt(lambda);
            rx *= scale;
            ry *= scale;
        }
        float frx;
        float fry;
        if (!Narrow(rx, frx) || !Narrow(ry, fry)) {
            return false;
        }
        if (enlarged) {
            // Radii that just fit centre the ellipse on the chord's midpoint,
            // which the primitive picks only when it finds them no larger
            // than needed; a rounding error the other way would shift the
            // centre by its square root. Shrink by ulps until it agrees.
            for (int i = 0; i < 24 && CentreLeavesChord(frx, fry, rotation, sx, sy, ex, ey); ++i) {
                const float factor = 1.0f - std::ldexp(1.0f, i - 23);
                frx *= factor;
                fry *= factor;
            }
        }
        if (frx < kSmallestArcRadius || fry < kSmallestArcRadius) {
            return lineTo(x, y); // closer than the nothing the primitives would draw
        }
        const double values[7] = {frx, fry, rotation, v[3], v[4], x, y};
        if (!emit(PathCommandType::EllipticalArc, values)) {
            return false;
        }
        mX = x;
        mY = y;
        return true;
    }

    const char* const mBegin;
    const char* const mEnd;
    const char* mP;
    std::list<PathCommand>& mOut;
    PathGrammarResult mResult;

    double mX = 0.0;
    double mY = 0.0;
    double mStartX = 0.0;
    double mStartY = 0.0;
    // The previous command's second cubic or quadratic control point,
    // absolute, for S and T.
    double mControlX = 0.0;
    double mControlY = 0.0;
    bool mCubicBefore = false;
    bool mQuadraticBefore = false;
};

} // namespace

PathGrammarResult ParseSvgPathData(std::string_view data, std::list<PathCommand>& out)
{
    return PathReader(data, out).read();
}

} // namespace vk::svg::impl
