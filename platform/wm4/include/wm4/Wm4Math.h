#ifndef WM4_WM4MATH_H
#define WM4_WM4MATH_H

// Wild Magic 5's Math under the Wm4 names that the library's API uses.
#include <Wm5Math.h>

namespace Wm4 {
using Wm5::Math;
}

#endif
