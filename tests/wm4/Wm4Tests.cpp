#include <wm4/Wm4.h>

#include <gtest/gtest.h>

TEST(Wm4, ColorRgbaComponentsAndConstants)
{
    Wm4::ColorRGBA color(0.25f, 0.5f, 0.75f, 1.0f);
    EXPECT_EQ(color.R(), 0.25f);
    EXPECT_EQ(color[2], 0.75f);
    color.A() = 0.5f;
    color[0] = 1.0f;
    EXPECT_EQ(color, Wm4::ColorRGBA(1.0f, 0.5f, 0.75f, 0.5f));
    EXPECT_EQ(Wm4::ColorRGBA::BLACK, Wm4::ColorRGBA(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_NE(Wm4::ColorRGBA::BLACK, Wm4::ColorRGBA());
    static_assert(Wm4::ColorRGBA::BLACK.A() == 1.0f, "constant-initialised, usable before main");
}

TEST(Wm4, MatrixIsRowMajorAndActsOnColumnVectors)
{
    // x' = m00 x + m01 y + m02, y' = m10 x + m11 y + m12
    const Wm4::Matrix3<float> m(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 0.0f, 0.0f, 1.0f);
    EXPECT_EQ(m(0, 2), 3.0f);
    EXPECT_EQ(m(1, 0), 4.0f);
    const Wm4::Vector3<float> p = m * Wm4::Vector3<float>(1.0f, 1.0f, 1.0f);
    EXPECT_EQ(p.X(), 6.0f);
    EXPECT_EQ(p.Y(), 15.0f);
    EXPECT_EQ(Wm4::Matrix3<float>::IDENTITY(2, 2), 1.0f);
    EXPECT_EQ(Wm4::Matrix3<float>::IDENTITY(0, 1), 0.0f);
}

TEST(Wm4, BezierCurveOwnsItsControlPoints)
{
    // Allocated as an array and released by the curve (ASan checks the pairing).
    auto* points = new Wm4::Vector2<float>[4] {
        {0.0f, 0.0f}, {1.0f, 2.0f}, {3.0f, 2.0f}, { 4.0f, 0.0f }
    };
    const Wm4::BezierCurve2<float> curve(3, points);
    EXPECT_EQ(curve.GetDegree(), 3);
    EXPECT_EQ(curve.GetControlPoints()[3].X(), 4.0f);
    const Wm4::Vector2<float> mid = curve.GetPosition(0.5f);
    EXPECT_FLOAT_EQ(mid.X(), 2.0f);
    EXPECT_FLOAT_EQ(mid.Y(), 1.5f);
    EXPECT_FLOAT_EQ(Wm4::Math<float>::TWO_PI, 6.2831855f);
    const Wm4::Vector4<unsigned char> rgba(255, 128, 0, 255);
    EXPECT_EQ(rgba[1], 128);
}
