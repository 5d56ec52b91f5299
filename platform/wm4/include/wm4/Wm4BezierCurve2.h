#ifndef WM4_WM4BEZIERCURVE2_H
#define WM4_WM4BEZIERCURVE2_H

// Wild Magic 5's BezierCurve2 under the Wm4 names that the library's API uses.
#include <Wm5BezierCurve2.h>

namespace Wm4 {
using Wm5::BezierCurve2;
}

#endif
