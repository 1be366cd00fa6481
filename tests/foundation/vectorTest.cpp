#include "foundation/zuVector.h"

#include "tests/testValues.h"

TEST(Vector, LengthsAndDirectionsHoldFromDenormalsToTheLargestDoubles) {
  for (double const scale : {0x1p-1074, 1e-310, 1e-200, 0x1p-482, 1e-145, 1.0, 1e150, 1e200, 2.8e307}) {
    SCOPED_TRACE(scale);
    ZuVector const v(2.0 * scale, -3.0 * scale, 6.0 * scale);
    EXPECT_TRUE(v.unitVector().approxEq(ZuVector(2.0 / 7.0, -3.0 / 7.0, 6.0 / 7.0), 3e-16));
    if (!std::isfinite(7.0 * scale)) continue;
    EXPECT_DOUBLE_EQ(v.mag(), 7.0 * scale);
    EXPECT_DOUBLE_EQ((v * 0.5).distanceTo(v * -0.5), v.mag());
  }
}

TEST(Vector, WithoutADirectionTheUnitVectorIsZero) {
  for (ZuVector v : {ZuVector(), ZuVector(0.0, -0.0, 0.0), ZuVector(1.0, HUGE_VAL, 0.0), ZuVector(NAN, 1.0, 1.0),
                     ZuVector(NAN, HUGE_VAL, 0.0)}) {
    v.normalize();
    EXPECT_EQ(v, ZuVector::zeroVector());
  }
  EXPECT_TRUE(ZuVector().mag() == 0.0 && ZuVector(0.0, -HUGE_VAL, 1.0).mag() == HUGE_VAL);
}

TEST(Vector, CrossProductIsRightHandedAndItsOutputMayBeAnInput) {
  ZuVector const a = ZuVector::xVector(2.0);
  EXPECT_EQ(a.cross(ZuVector::yVector(3.0)), ZuVector::zVector(6.0));
  ZuVector b(1.0, -4.0, 5.0);
  a.cross(b, b);
  EXPECT_EQ(b, ZuVector(0.0, -10.0, -8.0));
}

TEST(Vector, AnIndexAboveTwoReadsZeroAndKeepsTheVector) {
  PrintSink sink;
  ZuVector v = ZuVector::testObject();
  v[3] = 9.0;
  EXPECT_EQ(const_cast<ZuVector const&>(v)[4294967295U], 0.0);
  EXPECT_EQ(v, ZuVector::testObject());
  EXPECT_EQ(sink.take(), (Messages{"ZuVector::operator[]-->invalid index (3)",
                                   "ZuVector::operator[]-->invalid index (4294967295)"}));
}

TEST(Vector, ApproximateEqualityHoldsForEachComponentByItself) {
  ZuVector const v(1.0, 2.0, 3.0);
  EXPECT_TRUE(v.approxEq(ZuVector(1.5, 1.5, 3.5), 0.5));
  EXPECT_FALSE(v.approxEq(ZuVector(1.0, 2.0, 3.5), 0.25) || v.approxEq(ZuVector(1.0, NAN, 3.0), HUGE_VAL));
}

TEST(Vector, ADisturbanceIsTinyAndNeverAboveItsBound) {
  TracedValues random(11);
  for (int i = 0; i < 2000; ++i) {
    ZuVector const v = random.direction() * random.scale(1e-30, 1e30);
    double const bound = v.mag() * random.scale(1e-12, 1e3);
    ZuVector disturbed = v, barely = v;
    disturbed.perturb(bound);
    barely.perturb(bound * 1e-4);
    EXPECT_NE(disturbed, v);
    EXPECT_LE(disturbed.distanceTo(v), std::min(bound, 1e-14 * v.mag()));
    EXPECT_LE(barely.distanceTo(v), bound * 1e-4);
  }
  ZuVector zero;
  zero.perturb(0.01);
  EXPECT_TRUE(zero.mag() > 0.0 && zero.mag() <= 1e-15);
  for (double const nothing : {0.0, -1.0, std::nan("")}) {
    ZuVector v = ZuVector::testObject();
    v.perturb(nothing);
    EXPECT_EQ(v, ZuVector::testObject());
  }
}

TEST(Vector, DirectionalVectorPointsFromThisPointToTheTarget) {
  ZuVector out;
  ZuVector(1.0, 1.0, 1.0).computeDirectionalVector(ZuVector(4.0, 1.0, 5.0), 10.0, out);
  EXPECT_TRUE(out.approxEq(ZuVector(6.0, 0.0, 8.0), 1e-15));
  ZuVector::testObject().computeDirectionalVector(ZuVector::testObject(), 10.0, out);
  EXPECT_EQ(out, ZuVector());
}
