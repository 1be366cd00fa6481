#include <gtest/gtest.h>

#include <limits>

#include "foundation/zuCoordinateSystemTransformation.h"
#include "tests/printSink.h"
#include "tests/randomValues.h"
#include "tests/valuePrinters.h"

namespace {

using Transformation = ZuCoordinateSystemTransformation;

/// One random transformation of each mode, and the general one twice.
std::vector<Transformation> ofEachMode(RandomValues& random) {
  return {Transformation(), Transformation(random.vector()), Transformation(ZuVector(), random.orientation()),
          random.transformation(), random.transformation(1e3)};
}

}  // namespace

TEST(Transformation, ModeFollowsEveryChangeByExactComparison) {
  Transformation t;
  EXPECT_EQ(t.mode(), 3U);
  t.setTranslation(ZuVector::xVector(5e-324));
  EXPECT_EQ(t.mode(), 2U);
  t.setOrientation(ZuOrientation::testObject());
  EXPECT_EQ(t.mode(), 0U);
  t.setTranslation(ZuVector(0.0, -0.0, 0.0));
  EXPECT_EQ(t.mode(), 1U);
  t.setOrientation(ZuOrientation(-1.0, 0.0, 0.0, 0.0));
  EXPECT_EQ(t.mode(), 3U);
  t = Transformation::testObject();
  EXPECT_EQ((t * t.inverse() * t).mode(), 0U);
  t.setToIdentity();
  EXPECT_EQ(t, Transformation::nullObject());
}

TEST(Transformation, CompositionAppliesTheRightOperandFirst) {
  RandomValues random(31);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 100; ++i) {
    for (Transformation const& a : ofEachMode(random)) {
      for (Transformation const& b : ofEachMode(random)) {
        ZuVector const p = random.vector(10.0);
        double const rounding = 4e-15 * (10.0 + a.translation().mag() + b.translation().mag());
        EXPECT_TRUE((a * p).approxEq(a.orientation() * p + a.translation(), 0.0));
        EXPECT_TRUE((a * b * p).approxEq(a * (b * p), rounding));
        EXPECT_TRUE((a.inverse() * (a * p)).approxEq(p, rounding) && a.inverseTimes(a * p).approxEq(p, rounding));
        EXPECT_TRUE(a * Transformation() == a && Transformation() * a == a);
      }
    }
  }
}

TEST(Transformation, OutputsMayBeInputs) {
  Transformation const t = Transformation::testObject();
  ZuVector a(1.0, 2.0, 3.0), b(-4.0, 5.0, 0.5);
  ZuVector const movedA = t * a, movedB = t * b;
  t.transform(a, b, b, a);
  EXPECT_TRUE(b == movedA && a == movedB);
  ZuVector again;
  t.transform(movedA, again);
  t.transform(b);
  EXPECT_EQ(b, again);
}

TEST(Transformation, WithoutRotationInfinitePointsKeepTheirOtherCoordinates) {
  double const infinity = std::numeric_limits<double>::infinity();
  Transformation const t(ZuVector(1.0, 2.0, 3.0));
  EXPECT_EQ(t * ZuVector(0.0, 0.0, -infinity), ZuVector(1.0, 2.0, -infinity));
  EXPECT_EQ(t.inverseTimes(ZuVector(1.0, 2.0, -infinity)), ZuVector(0.0, 0.0, -infinity));
}

TEST(Transformation, AMatrixIsReadRowByRowAndOneThatIsNotRigidChangesNothing) {
  double const quarterTurnAboutZ[16] = {0, -1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6, 0, 0, 0, 1};
  Transformation t;
  EXPECT_TRUE(t.setBy16(quarterTurnAboutZ));
  EXPECT_EQ(t.mode(), 0U);
  EXPECT_TRUE((t * ZuVector::xVector(1.0)).approxEq(ZuVector(4.0, 6.0, 6.0), 1e-15));
  PrintSink sink;
  double const nan = std::numeric_limits<double>::quiet_NaN();
  double const bad[][16] = {{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1},
                            {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1},
                            {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1},
                            {1, 0, 0, nan, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
  t = Transformation::testObject();
  for (auto const& matrix : bad) EXPECT_FALSE(t.setBy16(matrix));
  EXPECT_FALSE(t.setBy16(nullptr));
  EXPECT_EQ(t, Transformation::testObject());
  EXPECT_EQ(sink.messages().size(), std::size(bad) + 1);
}
