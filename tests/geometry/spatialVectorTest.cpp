#include <sstream>

#include "geometry/zuGeneralForce.h"
#include "geometry/zuGeneralMotion.h"
#include "tests/testValues.h"

namespace {

template <class Twin>
class SpatialVector : public testing::Test {};
using Twins = testing::Types<ZuGeneralMotion, ZuGeneralForce>;
TYPED_TEST_SUITE(SpatialVector, Twins);

}  // namespace

TYPED_TEST(SpatialVector, ScalarsAreLinearThenAngularAndArraysOfAnyShapeAreTakenAsFarAsTheyGo) {
  TypeParam x, copy;
  for (unsigned int i = 0; i < 9; ++i) x.setScalarValue(i, i + 1.0);
  EXPECT_EQ(x, TypeParam(ZuVector(1, 2, 3), ZuVector(4, 5, 6)));
  for (unsigned int i = 0; i < 7; ++i) EXPECT_EQ(x[i], i < 6 ? i + 1.0 : 0.0);
  ZuReArray a(3, 2), fourRows(4, 2), eightRows(8, 1);  // a: six elements as well, none of which may survive
  a[0][1] = 9.0;
  x.copyToArray(a);
  EXPECT_EQ(a.rows() * 10 + a.columns(), 61U);
  copy.copyFromArray(a);
  EXPECT_EQ(copy, x);
  for (unsigned int row = 0; row < 4; ++row) fourRows[row][0] = -1.0;
  copy.copyFromArray(fourRows);
  copy.copyFromArray(ZuReArray(6, 0));
  EXPECT_EQ(copy, TypeParam(ZuVector(-1, -1, -1), ZuVector(-1, 5, 6)));
  copy.copyFromArray(eightRows);
  EXPECT_EQ(copy, TypeParam::nullObject());
}

TYPED_TEST(SpatialVector, ArithmeticIsScalarByScalar) {
  TypeParam const a(ZuVector(1, 2, 3), ZuVector(4, 5, 6)), b = a * -3.0;
  TypeParam c = a + b;
  EXPECT_EQ(c, TypeParam(ZuVector(-2, -4, -6), ZuVector(-8, -10, -12)));
  c -= -a;
  c += b;
  c *= 0.25;
  EXPECT_EQ(c, -a);
  EXPECT_EQ(a - b, a * 4.0);
  EXPECT_TRUE(a.approxEq(a - b * 0.01, 0.25) && !a.approxEq(a - b * 0.01, 0.125));
}

TYPED_TEST(SpatialVector, TransformationsComposeAndTheIdentityChangesNoBit) {
  TracedValues random(61);
  for (int i = 0; i < 100; ++i) {
    TypeParam const x(random.vector(), random.vector());
    ZuCoordinateSystemTransformation const s = random.transformation(), t = random.transformation();
    EXPECT_TRUE((s * (t * x)).approxEq((s * t) * x, 1e-14));
    EXPECT_EQ(ZuCoordinateSystemTransformation() * x, x);
    EXPECT_EQ(ZuCoordinateSystemTransformation(ZuVector(), t.orientation()) * x, t.orientation() * x);
    EXPECT_EQ(ZuCoordinateSystemTransformation(t.translation()) * x, TypeParam(x).transformBy(t.translation()));
  }
}

TEST(SpatialVector, TheLeverActsOnMomentsAndOnLinearVelocities) {
  ZuGeneralForce const lifted = ZuGeneralForce(ZuVector(0, 0, 2), ZuVector()).transformBy(ZuVector(3, 0, 0));
  EXPECT_EQ(lifted, ZuGeneralForce(ZuVector(0, 0, 2), ZuVector(0, -6, 0)));
  ZuGeneralMotion const spun = ZuGeneralMotion(ZuVector(), ZuVector(0, 0, 2)).transformBy(ZuVector(3, 0, 0));
  EXPECT_EQ(spun, ZuGeneralMotion(ZuVector(0, -6, 0), ZuVector(0, 0, 2)));
  EXPECT_EQ(2.0 * spun, spun * 2.0);
  ZuGeneralForce zeroed = lifted;
  zeroed.setToZero();
  EXPECT_EQ(zeroed, ZuGeneralForce::m_theZeroGeneralForce);
}

TEST(GeneralMotion, ItsBinaryFormIsSixDoublesAndAShortStreamLeavesZeros) {
  ZuGeneralMotion const motion = ZuGeneralMotion::testObject();
  std::stringstream stream;
  EXPECT_TRUE(motion.writeBin(stream) && stream.str().size() == 48);
  std::stringstream cut(stream.str().substr(0, 44));
  ZuGeneralMotion back, part = -motion;
  EXPECT_TRUE(back.readBin(stream) && back == motion && part.readBin(cut));
  ZuVector const w = motion.angular();
  EXPECT_EQ(part, ZuGeneralMotion(motion.linear(), ZuVector(w.x(), w.y(), 0.0)));
}
