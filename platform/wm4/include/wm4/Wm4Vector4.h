#ifndef WM4_WM4VECTOR4_H
#define WM4_WM4VECTOR4_H

// Wild Magic 5's Vector4 under the Wm4 names that the library's API uses.
#include <Wm5Vector4.h>

namespace Wm4 {
using Wm5::Vector4;
}

#endif
