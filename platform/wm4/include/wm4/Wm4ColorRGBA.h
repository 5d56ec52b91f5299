#ifndef WM4_WM4COLORRGBA_H
#define WM4_WM4COLORRGBA_H

#include <cstddef>

namespace Wm4 {

// An RGBA colour of four floats, nominally 0 to 1 each. Wild Magic 5 dropped
// this class, so the layer keeps its own.
class ColorRGBA {
public:
    constexpr ColorRGBA() = default;
    constexpr ColorRGBA(float r, float g, float b, float a) : mTuple{r, g, b, a} {}

    constexpr float R() const { return mTuple[0]; }
    constexpr float G() const { return mTuple[1]; }
    constexpr float B() const { return mTuple[2]; }
    constexpr float A() const { return mTuple[3]; }
    float& R() { return mTuple[0]; }
    float& G() { return mTuple[1]; }
    float& B() { return mTuple[2]; }
    float& A() { return mTuple[3]; }

    constexpr float operator[](std::size_t i) const { return mTuple[i]; }
    float& operator[](std::size_t i) { return mTuple[i]; }

    // Exact component comparison, as for the other Wild Magic tuples.
    friend constexpr bool operator==(const ColorRGBA& a, const ColorRGBA& b)
    {
        return a.mTuple[0] == b.mTuple[0] && a.mTuple[1] == b.mTuple[1] && a.mTuple[2] == b.mTuple[2] &&
               a.mTuple[3] == b.mTuple[3];
    }
    friend constexpr bool operator!=(const ColorRGBA& a, const ColorRGBA& b) { return !(a == b); }

    static const ColorRGBA BLACK; // (0, 0, 0, 1)
    static const ColorRGBA WHITE; // (1, 1, 1, 1)

private:
    float mTuple[4] = {0.0f, 0.0f, 0.0f, 0.0f};
};

inline constexpr ColorRGBA ColorRGBA::BLACK{0.0f, 0.0f, 0.0f, 1.0f};
inline constexpr ColorRGBA ColorRGBA::WHITE{1.0f, 1.0f, 1.0f, 1.0f};

} // namespace Wm4

#endif
