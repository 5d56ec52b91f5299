#ifndef VKSVG_UNITVALUE_H
#define VKSVG_UNITVALUE_H

#include <svg/Export.h>

#include <cstdint>
#include <string>

namespace vk::svg {

/// Length units of SVG. Values are stored and written back as read; nothing in
/// the library converts between them.
enum class Unit : uint32_t {
    None = 0,        ///< user units, no suffix
    Percent = 1,     ///< "%"
    Em = 2,          ///< "em"
    Px = 3,          ///< "px"
    Pt = 4,          ///< "pt"
    Cm = 5,          ///< "cm"
    Mm = 6,          ///< "mm"
    In = 7,          ///< "in"
    Unspecified = 8, ///< never produced by the parser; prints without a suffix
};

/// A number together with the unit it was written in.
///
/// Threads: a plain value; parseVal and UnitToString keep no state and may
/// run at once on any threads with different outputs.
struct VKSVG_API UnitValue {
    float value = 0.0f;     ///< the number as written
    Unit unit = Unit::None; ///< the unit it was written in

    /// 0 in user units.
    UnitValue() = default;
    /// `value` in `unit`.
    UnitValue(float value, Unit unit);

    /// Parses a length such as "12.5mm", "50%" or "3". Trailing white space is
    /// ignored, also between number and suffix; suffixes are case-sensitive.
    /// On failure `result` is left untouched and no message is produced.
    static bool parseVal(const std::string& text, UnitValue& result);

    ///@{
    /// Exact comparison of both fields (so NaN values never compare equal).
    friend bool operator==(const UnitValue& a, const UnitValue& b) { return a.value == b.value && a.unit == b.unit; }
    friend bool operator!=(const UnitValue& a, const UnitValue& b) { return !(a == b); }
    ///@}
};

/// Writes the suffix of `unit` ("%", "em", "px", ...; nothing for None and
/// Unspecified). Only the low 8 bits of the value are looked at. Without
/// `append`, `out` is cleared first, even when the unit turns out unknown.
/// Returns false, appending nothing, for values above 8.
VKSVG_API bool UnitToString(Unit unit, std::string& out, bool append);

} // namespace vk::svg

#endif
