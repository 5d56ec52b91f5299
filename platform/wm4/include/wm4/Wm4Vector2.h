#ifndef WM4_WM4VECTOR2_H
#define WM4_WM4VECTOR2_H

// Wild Magic 5's Vector2 under the Wm4 names that the library's API uses.
#include <Wm5Vector2.h>

namespace Wm4 {
using Wm5::Vector2;
}

#endif
