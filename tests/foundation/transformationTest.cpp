#include "foundation/zuCoordinateSystemTransformation.h"
#include "tests/testValues.h"

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
  auto const modeAt = [&t](ZuVector const& translation) { return t.setTranslation(translation), t.mode(); };
  EXPECT_EQ(modeAt(ZuVector::xVector(5e-324)), 2U);
  t.setOrientation(ZuOrientation::testObject());
  EXPECT_TRUE(t.mode() == 0U && modeAt(ZuVector(0.0, -0.0, 0.0)) == 1U);
  t.setOrientation(ZuOrientation(-1.0, 0.0, 0.0, 0.0));
  EXPECT_EQ(t.mode(), 3U);
  t = Transformation::testObject();
  EXPECT_EQ((t * t.inverse() * t).mode(), 0U);
  t.setToIdentity();
  EXPECT_EQ(t, Transformation::nullObject());
}

TEST(Transformation, CompositionAppliesTheRightOperandFirst) {
  TracedValues random(31);
  for (int i = 0; i < 100; ++i) {
    for (Transformation const& a : ofEachMode(random)) {
      for (Transformation const& b : ofEachMode(random)) {
        ZuVector const p = random.vector(10.0);
        double const rounding = 4e-15 * (10.0 + a.translation().mag() + b.translation().mag());
        EXPECT_TRUE((a * p).approxEq(a.orientation() * p + a.translation(), 0.0));
        ZuVector first = p, second = p * 2.0, copy = p;  // outputs may be inputs
        a.transform(first, second, second, first);
        a.transform(copy);
        EXPECT_TRUE(second == a * p && first == a * (p * 2.0) && copy == a * p);
        EXPECT_TRUE((a * b * p).approxEq(a * (b * p), rounding));
        EXPECT_TRUE((a.inverse() * (a * p)).approxEq(p, rounding) && a.inverseTimes(a * p).approxEq(p, rounding));
        EXPECT_TRUE(a * Transformation() == a && Transformation() * a == a);
      }
    }
  }
}

TEST(Transformation, WithoutRotationInfinitePointsKeepTheirOtherCoordinates) {
  Transformation const t(ZuVector(1.0, 2.0, 3.0));
  EXPECT_EQ(t * ZuVector(0.0, 0.0, -HUGE_VAL), ZuVector(1.0, 2.0, -HUGE_VAL));
  EXPECT_EQ(t.inverseTimes(ZuVector(1.0, 2.0, -HUGE_VAL)), ZuVector(0.0, 0.0, -HUGE_VAL));
}

TEST(Transformation, AMatrixIsReadRowByRowAndOneThatIsNotRigidChangesNothing) {
  double const quarterTurnAboutZ[16] = {0, -1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6, 0, 0, 0, 1};
  Transformation t;
  EXPECT_TRUE(t.setBy16(quarterTurnAboutZ) && t.mode() == 0U);
  EXPECT_TRUE((t * ZuVector::xVector(1.0)).approxEq(ZuVector(4.0, 6.0, 6.0), 1e-15));
  PrintSink sink;
  double const bad[][16] = {{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1},
                            {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1},
                            {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1},
                            {1, 0, 0, NAN, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
  t = Transformation::testObject();
  for (auto const& matrix : bad) EXPECT_FALSE(t.setBy16(matrix));
  EXPECT_FALSE(t.setBy16(nullptr));
  EXPECT_EQ(t, Transformation::testObject());
  EXPECT_EQ(sink.messages().size(), std::size(bad) + 1);
}
