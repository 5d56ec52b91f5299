#ifndef VKSYSTEM_VKSTRINGUTILS_H
#define VKSYSTEM_VKSTRINGUTILS_H

#include <vkSystem/Export.h>

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <string>
#include <type_traits>

namespace vk {

// Number formatting and text checks that never depend on the process locale.
class VKSYSTEM_API vkStringUtils {
public:
    enum class FloatFormat : int {
        Fixed = 0,          // fixed notation with exactly `precision` decimals
        Scientific = 1,     // d.ddde+XX with `precision` decimals
        FixedTrimZeros = 2, // fixed, then trailing zeros and a bare point removed
    };

    // The value (widened to double) with `precision` digits after the point,
    // 6 when precision is negative. Never uses the process locale: the point
    // is always ".". NaN and infinities print as nan, inf and -inf.
    template <class T> static std::string fromFloatImpl(T value, int precision, FloatFormat format)
    {
        static_assert(std::is_floating_point_v<T>, "fromFloatImpl formats floating-point values");
        return fromDouble(static_cast<double>(value), precision, format);
    }

    // The same text as fromFloatImpl, appended to `out`; no allocation
    // beyond what `out` needs to grow.
    static void appendFloat(std::string& out, double value, int precision, FloatFormat format);

    // Writes the text of fromFloatImpl into buffer (NUL-terminated) and
    // returns its length, or 0 when it does not fit; never allocates.
    static std::size_t formatFloat(char* buffer, std::size_t size, double value, int precision, FloatFormat format);
    // The same for a float, with a faster path for the usual precisions.
    static std::size_t formatFloat(char* buffer, std::size_t size, float value, int precision, FloatFormat format);

    // Converts the whole of [first, last) to a float exactly as strtof_l in
    // the "C" locale would, and returns true only when strtof would consume
    // every character. Plain decimals ([sign]digits[.digits][e[sign]digits])
    // take an exact fast path; every other form is handed to strtof_l.
    // Never allocates for texts under 128 bytes.
    static bool toFloat(const char* first, const char* last, float& value);

    // The fast path of toFloat on its own: converts the longest plain decimal
    // at `first` (an exponent letter without digits is not part of it) and
    // returns its end, or null when there is none or it would need strtof_l.
    // `value` is set only when the result is not null.
    static const char* toFloatPrefix(const char* first, const char* last, float& value);

    // Decimal digits, left-padded with `fill` to at least minWidth characters.
    // A "0" fill goes between the sign and the digits, as printf does.
    static std::string fromInt64(int64_t value, int minWidth = 1, char fill = '0');
    static std::string fromUInt64(uint64_t value, int minWidth = 1, char fill = '0');

    // Strict UTF-8: rejects overlong forms, surrogates (U+D800 to U+DFFF),
    // code points above U+10FFFF and truncated sequences.
    static bool IsUtf8String(const char* data, std::size_t size);
    static bool IsUtf8String(const std::string& text) { return IsUtf8String(text.data(), text.size()); }

    // The POSIX "C" locale, for strtof_l and strtoll_l.
    static const locale_t msCLocale;
    // The classic C++ locale, for streams.
    static const std::locale msCplusLocale;

private:
    static std::string fromDouble(double value, int precision, FloatFormat format);
};

} // namespace vk

#endif
