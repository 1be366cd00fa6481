#include "foundation/zuReArray.h"

#include "tests/allocationCounter.h"
#include "tests/testValues.h"

namespace {

ZuReArray arrayOf(unsigned int rows, unsigned int columns, std::vector<double> const& elements) {
  ZuReArray a(rows, columns);
  for (unsigned int i = 0; i < rows * columns; ++i) a(i / columns, i % columns) = elements[i];
  return a;
}

ZuReArray randomArray(RandomValues& random, unsigned int rows, unsigned int columns) {
  ZuReArray a(rows, columns);
  for (unsigned int i = 0; i < rows * columns; ++i) a(i / columns, i % columns) = random.real();
  return a;
}

/// Greatest difference between a b and c.
double residual(ZuReArray const& a, ZuReArray const& b, ZuReArray const& c) {
  double worst = 0.0;
  for (unsigned int i = 0; i < a.rows(); ++i) {
    for (unsigned int j = 0; j < b.columns(); ++j) {
      double sum = -c(i, j);
      for (unsigned int k = 0; k < a.columns(); ++k) sum += a(i, k) * b(k, j);
      worst = std::max(worst, std::abs(sum));
    }
  }
  return worst;
}

ZuReArray identity(unsigned int n) {
  ZuReArray a(n, n);
  for (unsigned int i = 0; i < n; ++i) a[i][i] = 1.0;
  return a;
}

}  // namespace

TEST(ReArray, SolutionsInversesAndFactorsReproduceTheMatrix) {
  TracedValues random(51);
  for (unsigned int n = 1; n <= 9; ++n) {
    for (int repeat = 0; repeat < 20; ++repeat) {
      ZuReArray const a = randomArray(random, n, n), b = randomArray(random, n, 1 + random.index(3));
      ZuReArray x, inverse = a, factors = a;
      double determinant = 0.0;
      ASSERT_TRUE(a.solve(b, x, &determinant) && inverse.invertSquareMatrix());
      double const size = 1e-13 / std::abs(determinant);  // a bound of the condition for elements of size 1
      EXPECT_LE(residual(a, x, b), size);
      EXPECT_LE(residual(a, inverse, identity(n)), size);
      std::vector<unsigned int> pivots;
      ASSERT_TRUE(factors.LUDecomposition(n, pivots));
      ZuReArray lower = identity(n), upper(n, n), permuted(n, n);
      double product = 1.0;
      for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j < n; ++j) (j < i ? lower : upper)[i][j] = factors[i][j];
        for (unsigned int j = 0; j < n; ++j) permuted[i][j] = a[pivots[i]][j];
        product *= factors[i][i];
      }
      EXPECT_LE(residual(lower, upper, permuted), 1e-14);
      EXPECT_NEAR(std::abs(determinant), std::abs(product), 1e-12 * std::abs(product));
    }
  }
}

TEST(ReArray, TheDeterminantHasTheSignOfTheOrderOfTheRows) {
  ZuVector x;
  double determinant = 0.0;
  EXPECT_TRUE(arrayOf(3, 3, {0, 2, 0, 3, 0, 0, 0, 0, 4}).solve(ZuVector(2, 3, 8), x, &determinant));
  EXPECT_EQ(x, ZuVector(1, 1, 2));
  EXPECT_DOUBLE_EQ(determinant, -24.0);
}

TEST(ReArray, SingularWithinRoundingIsToldFromBadlyScaled) {
  PrintSink sink;
  ZuVector x(1, 1, 1);
  for (ZuReArray const& singular :
       {arrayOf(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}), ZuReArray(3, 3), arrayOf(3, 3, {1, 0, NAN, 0, NAN, 0, 0, 0, 1}),
        arrayOf(3, 3, {0.1, 0.2, 0.3, 1, 2, 3, 0, 1, 0}), arrayOf(3, 3, {1e-40, 2e-40, 0, 1e20, 2e20, 0, 0, 0, 1})}) {
    double determinant = 5.0;
    EXPECT_FALSE(singular.solve(ZuVector(1, 2, 3), x, &determinant));
    EXPECT_TRUE(x == ZuVector() && determinant == 0.0);
    ZuReArray a = singular, b(3, 2), y;
    b[1][1] = 4.0;
    std::vector<unsigned int> pivots(7);
    EXPECT_FALSE(a.solve(b, y) || a.invertSquareMatrix() || a.inv3() || a.LUDecomposition(3, pivots));
    EXPECT_TRUE(y == ZuReArray(3, 2) && pivots.empty());
    EXPECT_TRUE(a(0, 0) == singular(0, 0) && a(2, 1) == singular(2, 1) && a(2, 2) == singular(2, 2));
  }
  EXPECT_TRUE(arrayOf(3, 3, {1e-30, 0, 0, 0, 1, 1e-20, 0, 1e20, 2}).solve(ZuVector(1e-30, 1, 2), x));
  EXPECT_TRUE(ZuVector(x[0], x[1], x[2] * 1e-20).approxEq(ZuVector(1, 2, -1), 1e-15));
  EXPECT_TRUE(sink.messages().empty());
}

TEST(ReArray, WrongShapesPrintALineAndGiveNeutralValues) {
  PrintSink sink;
  ZuReArray a = arrayOf(2, 3, {1, 2, 3, 4, 5, 6}), x;
  std::vector<unsigned int> pivots;
  a[2][0] = 7.0;
  EXPECT_EQ(const_cast<ZuReArray const&>(a)(0, 3), 0.0);
  EXPECT_EQ(a * ZuVector(1, 1, 1), ZuVector());
  EXPECT_FALSE(a.inv3() || a.invertSquareMatrix() || a.solve(ZuReArray(2, 1), x) ||
               identity(3).solve(ZuReArray(2, 1), x) || a.LUDecomposition(3, pivots) ||
               a.resizeArray(4294967295U, 4294967295U));
  EXPECT_EQ(a, arrayOf(2, 3, {1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(sink.take(), (Messages{"ZuReArray::operator()-->invalid index (2, 0) of 2 rows and 3 columns",
                                   "ZuReArray::operator()-->invalid index (0, 3) of 2 rows and 3 columns",
                                   "ZuReArray::operator*-->invalid shape (2 rows, 3 columns)",
                                   "ZuReArray::inv3-->invalid shape (2 rows, 3 columns)",
                                   "ZuReArray::invertSquareMatrix-->invalid shape (2 rows, 3 columns)",
                                   "ZuReArray::solve-->invalid shape (2 rows, 3 columns)",
                                   "ZuReArray::solve-->invalid shape (3 rows, 3 columns)",
                                   "ZuReArray::LUDecomposition-->invalid order (3) of 2 rows and 3 columns",
                                   "ZuReArray::resizeArray-->no memory for 4294967295 rows and 4294967295 columns"}));
}

TEST(ReArray, SmallSystemsAreSolvedWithoutAllocation) {
  TracedValues random(52);
  ZuReArray const a = randomArray(random, 4, 4), b = randomArray(random, 4, 1), c = randomArray(random, 3, 3);
  ZuReArray x(4, 1), inverse = c;
  ZuVector y;
  double determinant = 0.0;
  AllocationCounter const counter;
  EXPECT_TRUE(a.solve(b, x, &determinant) && c.solve(ZuVector(1, 2, 3), y) && inverse.inv3());
  EXPECT_EQ(counter.count(), 0U);
  EXPECT_TRUE((inverse * ZuVector(1, 2, 3)).approxEq(y, 1e-12));
}
