#ifndef WM4_WM4VECTOR3_H
#define WM4_WM4VECTOR3_H

// Wild Magic 5's Vector3 under the Wm4 names that the library's API uses.
#include <Wm5Vector3.h>

namespace Wm4 {
using Wm5::Vector3;
}

#endif
