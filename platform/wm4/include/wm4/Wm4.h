#ifndef WM4_WM4_H
#define WM4_WM4_H

// Every Wild Magic type of the library's API, under the Wm4 names.
#include <wm4/Wm4BezierCurve2.h>
#include <wm4/Wm4ColorRGBA.h>
#include <wm4/Wm4Math.h>
#include <wm4/Wm4Matrix3.h>
#include <wm4/Wm4Vector2.h>
#include <wm4/Wm4Vector3.h>
#include <wm4/Wm4Vector4.h>

#endif
