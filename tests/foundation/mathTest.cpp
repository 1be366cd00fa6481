#include "foundation/zuMath.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>

#include "tests/sharedFiles.h"
#include "tests/testValues.h"

namespace {

double const theEpsilon = std::numeric_limits<double>::epsilon();

using Five = std::array<double, 5>;

Five rootsOf(double c2, double c1, double c0) {
  Five r{7.0, 7.0, 7.0, 7.0, 7.0};
  ZuMath::cubicRoots(c2, c1, c0, r[0], r[1], r[2], r[3], r[4]);
  return r;
}

std::array<double, 3> eigenvaluesOf(std::array<double, 6> const& a) {
  std::array<double, 3> values{};
  ZuMath::symmetricEigenvalues(a[0], a[1], a[2], a[3], a[4], a[5], values[0], values[1], values[2]);
  return values;
}

/// Compares triples in descending order.
bool areNear(std::array<double, 3> const& computed, std::array<double, 3> const& exact, double ulpsOfLargest) {
  double const allowed = ulpsOfLargest * theEpsilon * std::max(std::abs(exact[0]), std::abs(exact[2]));
  return std::equal(exact.begin(), exact.end(), computed.begin(),
                    [&](double a, double b) { return std::abs(a - b) <= allowed; });
}

double integer(RandomValues& random, double reach) { return std::floor(random.real(-reach, reach)); }

}  // namespace

TEST(Math, DivisorsRootsAndAnglesNeverFail) {
  double const smallest = std::numeric_limits<double>::min();
  for (double const x : {0.0, -0.0, -5.0, smallest / 2.0, std::nan(""), -HUGE_VAL})
    EXPECT_EQ(ZuMath::nonZeroPos(x), smallest);
  EXPECT_TRUE(ZuMath::nonZeroPos(3.0) == 3.0 && ZuMath::sqrt(9.0) == 3.0 && ZuMath::sqrt(-1e-17) == 0.0);
  EXPECT_TRUE(ZuMath::asin(1.0 + 1e-15) == std::asin(1.0) && ZuMath::asin(-7.0) == std::asin(-1.0));
  EXPECT_TRUE(std::isnan(ZuMath::asin(NAN)) && std::isnan(ZuMath::sqrt(NAN)));
}

TEST(CubicRoots, KnownCases) {
  double const root3 = std::sqrt(3.0);
  std::pair<std::array<double, 3>, Five> const cases[] = {
      {{0, 0, 0}, {0, 0, 0, 0, 0}},
      {{0, 0, -8}, {2, -1, -1, root3, -root3}},
      {{0, 1, 1e-30}, {-1e-30, 5e-31, 5e-31, 1, -1}},
      {{-2, 1, -1e-30}, {1, 1, 1e-30, 0, 0}},  // 1 +- 1e-15: closer than the roots are told apart in a double near 1
      {{-3e-310, 0, 0}, {3e-310, 0, 0, 0, 0}},
      {{1e300, 0, 0}, {0, 0, -1e300, 0, 0}},
      {{-(1e10 + 1 + 1e-10), 1e10 + 1 + 1e-10, -1}, {1e10, 1, 1e-10, 0, 0}},
      {{-1e20, 2e20, -2e20}, {1e20, 1, 1, 1, -1}},
  };
  for (auto const& [c, expected] : cases) {
    Five const roots = rootsOf(c[0], c[1], c[2]);
    for (unsigned int i = 0; i < 5; ++i)
      EXPECT_NEAR(roots[i], expected[i], 5e-15 * std::abs(expected[i])) << i << " for " << c[0] << ' ' << c[1];
  }
}

TEST(CubicRoots, RootsThatTheCoefficientsHoldExactlyComeOutToAnUlp) {
  TracedValues random(42);
  for (int i = 0; i < 20000; ++i) {
    // Integers of 17 bits and a power of two: the coefficients are exact, so are clusters and repeated roots.
    double const scale = std::ldexp(1.0, static_cast<int>(random.index(400)) - 200);
    double const spread = std::ldexp(1.0, static_cast<int>(random.index(18)));
    double const centre = integer(random, 0x1p16);
    double const a = centre + integer(random, spread), b = centre + integer(random, spread);
    double const c = i % 3 == 0 ? b : centre + integer(random, spread);
    std::array<double, 3> exact{a * scale, b * scale, c * scale};
    std::sort(exact.begin(), exact.end(), std::greater<>());
    Five const roots =
        rootsOf(-(a + b + c) * scale, (a * b + b * c + c * a) * scale * scale, -a * b * c * scale * scale * scale);
    EXPECT_TRUE(areNear({roots[0], roots[1], roots[2]}, exact, 1.0)) << testing::PrintToString(exact);
    EXPECT_EQ(roots[3], 0.0);
  }
}

TEST(CubicRoots, GradedRootsAreEachAccurateByThemselvesAndConjugatePairsByTheirSize) {
  TracedValues random(43);
  for (int i = 0; i < 5000; ++i) {
    double const large = random.scale(1e5, 1e25), small = random.scale(1e-25, 1e-5);
    double const sign = random.real() < 0.0 ? -1.0 : 1.0;
    // Rounding the coefficients moves each of these roots by a few ulps of its own.
    Five const roots =
        rootsOf(-(large + sign + small), large * sign + large * small + sign * small, -large * sign * small);
    EXPECT_NEAR(roots[0], large, 4 * theEpsilon * large);
    EXPECT_NEAR(sign > 0.0 ? roots[1] : roots[2], sign, 8 * theEpsilon);
    EXPECT_NEAR(sign > 0.0 ? roots[2] : roots[1], small, 8 * theEpsilon * small);

    double const real = integer(random, 0x1p15), centre = integer(random, 0x1p15);
    double const imaginary = 1.0 + std::abs(integer(random, 0x1p15)), squared = centre * centre + imaginary * imaginary;
    double const size = std::max({std::abs(real), std::abs(centre), imaginary});
    Five const pair = rootsOf(-(real + 2.0 * centre), squared + 2.0 * centre * real, -real * squared);
    Five const expected{real, centre, centre, imaginary, -imaginary};
    for (unsigned int k = 0; k < 5; ++k) EXPECT_NEAR(pair[k], expected[k], theEpsilon * size);
  }
}

TEST(CubicRoots, NoBitPatternOfCoefficientsGivesNan) {
  TracedValues random(45);
  PrintSink sink;
  for (int i = 0; i < 200000; ++i) {
    auto const any = [&] {
      std::uint64_t const bits = (std::uint64_t{random.index(4294967295U)} << 32) | random.index(4294967295U);
      double value = 0.0;
      std::memcpy(&value, &bits, sizeof value);
      return random.index(8) == 0 ? 0.0 : value;
    };
    Five const roots = rootsOf(any(), any(), any());
    for (double const root : roots) ASSERT_FALSE(std::isnan(root));
    ASSERT_TRUE(roots[3] > 0.0 || (roots[0] >= roots[1] && roots[1] >= roots[2] && roots[3] == 0.0));
  }
  sink.take();
  EXPECT_EQ(rootsOf(1.0, NAN, 2.0), (Five{0, 0, 0, 0, 0}));
  EXPECT_EQ(eigenvaluesOf({1, 0, HUGE_VAL, 1, 0, 1}), (std::array<double, 3>{}));
  EXPECT_EQ(sink.take(), (Messages{"ZuMath::cubicRoots-->coefficient not finite (1, nan, 2)",
                                   "ZuMath::symmetricEigenvalues-->element not finite (inf)"}));
}

TEST(SymmetricEigenvalues, RepeatedAndClusteredOnesAreAsAccurateAsOthers) {
  TracedValues random(46);
  for (int i = 0; i < 20000; ++i) {
    // c I + k v v^T in integers: c twice, and c + k v.v.
    double const x = integer(random, 300), y = integer(random, 300), z = integer(random, 300);
    double const k = integer(random, 1000), c = integer(random, 0x1p45);
    double const scale = random.index(2) == 0 ? 1.0 : 0x1p-600;
    std::array<double, 3> exact{c * scale, c * scale, (c + k * (x * x + y * y + z * z)) * scale};
    std::sort(exact.begin(), exact.end(), std::greater<>());
    auto const values = eigenvaluesOf({(c + k * x * x) * scale, k * x * y * scale, k * x * z * scale,
                                       (c + k * y * y) * scale, k * y * z * scale, (c + k * z * z) * scale});
    EXPECT_TRUE(areNear(values, exact, 1.0)) << testing::PrintToString(exact);
    EXPECT_TRUE(values[0] == values[1] || values[1] == values[2]);
  }
}

TEST(SymmetricEigenvalues, HardCasesComeOutWithinTwoUlpsOfTheLargest) {
  std::ifstream file(sharedFile("cases/open.eigen.txt"));
  if (!file) GTEST_SKIP() << "no shared cases";
  unsigned int cases = 0;
  std::array<double, 6> m{};
  std::array<double, 3> exact{};
  for (std::string line; std::getline(file, line);) {
    std::sscanf(line.c_str(), "m %lf %lf %lf %lf %lf %lf", &m[0], &m[1], &m[2], &m[3], &m[4], &m[5]);
    if (std::sscanf(line.c_str(), "lambda %lf %lf %lf", &exact[2], &exact[1], &exact[0]) != 3) continue;
    EXPECT_TRUE(areNear(eigenvaluesOf(m), exact, 2.0)) << line;
    ++cases;
  }
  EXPECT_EQ(cases, 29U);
}
