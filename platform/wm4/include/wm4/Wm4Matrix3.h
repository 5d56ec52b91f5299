#ifndef WM4_WM4MATRIX3_H
#define WM4_WM4MATRIX3_H

// Wild Magic 5's Matrix3 under the Wm4 names that the library's API uses.
#include <Wm5Matrix3.h>

namespace Wm4 {
using Wm5::Matrix3;
}

#endif
