#ifndef VKSVG_READ_VALUES_H
#define VKSVG_READ_VALUES_H

// The value grammars of SVG and CSS that the full reader needs: numbers,
// lengths with units and their conversion to user units, number and length
// lists, CSS colours, transform lists, viewBox and preserveAspectRatio.
// Every parser takes the attribute or property text as it stands (leading
// and trailing white space allowed), never throws, and rejects NaN and
// infinities.

#include <wm4/Wm4Matrix3.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vk::svg::impl {

// --- Numbers and lengths -------------------------------------------------

// One CSS/SVG number ([sign] digits [. digits] [e [sign] digits], or
// ". digits"), white space around it allowed. Finite results only.
bool ParseNumber(std::string_view text, double& value);

// A number or a percentage ("50%" gives 0.5), for opacities. The result is
// not clamped.
bool ParseNumberOrPercentage(std::string_view text, double& value);

enum class LengthUnit : uint8_t { None, Px, Pt, Pc, Mm, Cm, In, Em, Ex, Percent };

struct Length {
    double value = 0.0;
    LengthUnit unit = LengthUnit::None;
};

// A number with an optional unit (case-insensitive: px pt pc mm cm in em ex
// %), white space around it allowed, none between number and unit.
bool ParseLength(std::string_view text, Length& length);

// Which viewport extent a percentage refers to.
enum class PercentOf : uint8_t { Width, Height, Diagonal };

// What a length needs to become user units.
struct LengthContext {
    double fontSize = 16.0;
    double viewportWidth = 100.0;
    double viewportHeight = 100.0;
};

// 96 user units per inch; em the font size, ex half of it; a diagonal
// percentage of sqrt((w^2 + h^2) / 2).
double ToUserUnits(const Length& length, const LengthContext& context, PercentOf percentOf);

// Numbers separated by white space and/or one comma, as in points, viewBox
// and stroke-dasharray. On a syntax error returns false and `values` holds
// the numbers before it. `values` is cleared first.
bool ParseNumberList(std::string_view text, std::vector<double>& values);

// The same for lengths.
bool ParseLengthList(std::string_view text, std::vector<Length>& lengths);

// --- Colours -----------------------------------------------------------

struct CssColor {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    // 0 to 1.
    float alpha = 1.0f;
};

enum class ColorKind : uint8_t { Invalid, Color, CurrentColor };

// A colour as CSS Color 4 reads it: the 148 names and "transparent" in any
// letter case, "currentColor" (any case), #rgb, #rgba, #rrggbb, #rrggbbaa,
// rgb()/rgba() and hsl()/hsla() with comma or space syntax, numbers or
// percentages, and an alpha from 0 to 1 or a percentage. Out-of-range
// components are clamped.
ColorKind ParseCssColor(std::string_view text, CssColor& color);

// The colour as text that the library's own colour parser reads: #rrggbb,
// or #rrggbbaa when alpha is below 1 (alpha rounded to a byte).
std::string ColorToSvgText(const CssColor& color);

// --- Transforms and viewports -------------------------------------------

// An SVG transform list (matrix, translate, scale, rotate with an optional
// centre, skewX, skewY; separators optional where the grammar allows).
// Computed in double precision. False on any syntax error, leaving
// `matrix` untouched (SVG then ignores the whole attribute).
bool ParseTransformList(std::string_view text, Wm4::Matrix3<float>& matrix);

struct ViewBox {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
};

// Exactly four numbers; false also for a negative width or height. A zero
// width or height parses (it disables rendering of the element).
bool ParseViewBox(std::string_view text, ViewBox& box);

enum class Align : uint8_t {
    None,
    XMinYMin,
    XMidYMin,
    XMaxYMin,
    XMinYMid,
    XMidYMid,
    XMaxYMid,
    XMinYMax,
    XMidYMax,
    XMaxYMax
};

struct AspectRatio {
    Align align = Align::XMidYMid;
    bool slice = false;
};

// "[defer] <align> [meet | slice]".
bool ParseAspectRatio(std::string_view text, AspectRatio& ratio);

// The transform that maps `box` into the viewport (0, 0)-(width, height) by
// `ratio`, as SVG's viewBox rules say.
Wm4::Matrix3<float> ViewBoxTransform(const ViewBox& box, const AspectRatio& ratio, double width, double height);

} // namespace vk::svg::impl

#endif
