#include <cmath>

#include <gtest/gtest.h>

#include <foundation/angle.h>

namespace {

TEST(Angle8, NinetyDegreesIsStep64) {
    EXPECT_EQ(xcAngle8(xcDegree(90.0)).raw(), 64);
}

TEST(Angle8, RawConstructorWrapsModulo256) {
    EXPECT_EQ(xcAngle8(256).raw(), 0);
    EXPECT_EQ(xcAngle8(257).raw(), 1);
    EXPECT_EQ(xcAngle8(-1).raw(), 255);
}

TEST(Angle8, ArithmeticWrapsAround) {
    EXPECT_EQ((xcAngle8(200) + xcAngle8(100)).raw(), 44);  // 300 - 256
    EXPECT_EQ((xcAngle8(10) - xcAngle8(64)).raw(), 202);   // 10 - 64 + 256
    EXPECT_EQ((-xcAngle8(64)).raw(), 192);
}

TEST(Angle8, RoundsToNearestStep) {
    // One step is 1.40625 degrees; 0.7 degrees is just below half a step, 0.71 just above.
    EXPECT_EQ(xcAngle8(xcDegree(0.7)).raw(), 0);
    EXPECT_EQ(xcAngle8(xcDegree(0.71)).raw(), 1);
    EXPECT_EQ(xcAngle8(xcDegree(-90.0)).raw(), 192);
    EXPECT_EQ(xcAngle8(xcDegree(360.0)).raw(), 0);
    EXPECT_EQ(xcAngle8(xcDegree(720.0 + 45.0)).raw(), 32);
    EXPECT_EQ(xcAngle8(xcRadian(xcPi)).raw(), 128);
}

TEST(Angle8, NonFiniteGivesStepZero) {
    EXPECT_EQ(xcAngle8(xcDegree(NAN)).raw(), 0);
    EXPECT_EQ(xcAngle8(xcDegree(INFINITY)).raw(), 0);
}

TEST(Angle8, ConvertsToDegreesAndRadians) {
    EXPECT_DOUBLE_EQ(xcDegree(xcAngle8(64)).toDouble(), 90.0);
    EXPECT_DOUBLE_EQ(xcRadian(xcAngle8(128)).toDouble(), xcPi);
}

TEST(Radian, NormMapsIntoZeroToTwoPi) {
    const double twoPi = 2.0 * xcPi;
    EXPECT_DOUBLE_EQ(xcRadian(-xcPi / 2.0).norm().toDouble(), 1.5 * xcPi);
    EXPECT_NEAR(xcRadian(7.0 * xcPi).norm().toDouble(), xcPi, 1e-12);
    EXPECT_EQ(xcRadian(0.0).norm().toDouble(), 0.0);
    EXPECT_EQ(xcRadian(twoPi).norm().toDouble(), 0.0);
    for (double a : {-1e6, -12.5, -1e-300, 3.0, 1e9}) {
        const double n = xcRadian(a).norm().toDouble();
        EXPECT_GE(n, 0.0) << a;
        EXPECT_LT(n, twoPi) << a;
    }
    EXPECT_TRUE(std::isnan(xcRadian(NAN).norm().toDouble()));
}

TEST(Radian, TinyNegativeAngleDoesNotReachTwoPi) {
    const double n = xcRadian(-1e-18).norm().toDouble();
    EXPECT_LT(n, 2.0 * xcPi);
    EXPECT_GE(n, 0.0);
}

TEST(Radian, DegreeConversionsAndArithmetic) {
    EXPECT_DOUBLE_EQ(xcRadian(xcDegree(180.0)).toDouble(), xcPi);
    EXPECT_DOUBLE_EQ(xcDegree(xcRadian(xcPi / 2.0)).toDouble(), 90.0);
    EXPECT_DOUBLE_EQ((xcRadian(1.0) + xcRadian(2.0)).toDouble(), 3.0);
    EXPECT_DOUBLE_EQ((xcRadian(1.0) - xcRadian(2.0)).toDouble(), -1.0);
    EXPECT_DOUBLE_EQ((xcRadian(3.0) / 2.0).toDouble(), 1.5);
    EXPECT_DOUBLE_EQ((2.0 * xcRadian(3.0)).toDouble(), 6.0);
    EXPECT_TRUE(xcRadian(1.0) < xcRadian(2.0));
    EXPECT_DOUBLE_EQ(sin(xcRadian(xcPi / 2.0)), 1.0);
    EXPECT_DOUBLE_EQ(cos(xcRadian(0.0)), 1.0);
}

}  // namespace
