#include "geometry/zuSpatialMatrix.h"

#include <Eigen/Dense>
#include <cstdio>
#include <fstream>
#include <limits>

#include "geometry/zuGeneralForce.h"
#include "geometry/zuGeneralMotion.h"
#include "tests/sharedFiles.h"
#include "tests/testValues.h"

namespace {

using WideMatrix = Eigen::Matrix<long double, 3, 3>;  // 64-bit significands

double const theEpsilon = 0x1p-52;

ZuSpatialMatrix randomMatrix(RandomValues& random) { return {random.vector(), random.vector(), random.vector()}; }

WideMatrix wide(ZuSpatialMatrix const& m) {
  WideMatrix w;
  for (unsigned int i = 0; i < 3; ++i) w.row(i) << m[i].x(), m[i].y(), m[i].z();
  return w;
}

/// Checks guarantees 1 and 2 of the class on a symmetric matrix.
void expectGoodEigensystem(ZuSpatialMatrix const& m) {
  WideMatrix const a = wide(m);
  auto const exact = Eigen::SelfAdjointEigenSolver<WideMatrix>(a).eigenvalues();
  double const size = static_cast<double>(exact.cwiseAbs().maxCoeff());
  ZuVector values, u[3];
  ASSERT_TRUE(m.getSymmetricEigensystem(values, u[0], u[1], u[2]));
  for (unsigned int k = 0; k < 3; ++k) EXPECT_NEAR(values[k], static_cast<double>(exact[2 - k]), 8 * theEpsilon * size);
  ZuSpatialMatrix const vectors(u[0], u[1], u[2]);
  EXPECT_TRUE((vectors * vectors.transpose()).approxEq(ZuSpatialMatrix::identity(), 64 * theEpsilon)) << a;
  ZuSpatialMatrix rebuilt;
  rebuilt.setFromSymmetricEigensystem(values, u[0] * 3.0, u[1] * 0.1, -u[2]);
  bool const areEqual = values[0] - values[1] <= 1e-12 && values[1] - values[2] <= 1e-12;
  EXPECT_TRUE(rebuilt.approxEq(m, 64 * theEpsilon * size + (areEqual ? 2e-12 : 0.0))) << a;
}

}  // namespace

TEST(SpatialMatrix, ProductsTransposesAndChangesOfFrameAreThoseOfMatrices) {
  TracedValues random(91);
  for (int i = 0; i < 100; ++i) {
    ZuSpatialMatrix const a = randomMatrix(random), b = randomMatrix(random);
    ZuVector const v = random.vector(), r = random.vector();
    ZuSpatialMatrix const cross = ZuSpatialMatrix::crossProductMatrix(r);
    auto const expectEqual = [](ZuSpatialMatrix const& m, WideMatrix const& w) {
      EXPECT_LE((wide(m) - w).cwiseAbs().maxCoeff(), 4e-15L) << wide(m) << "\n\n" << w;
    };
    auto const after = [&a](auto change) {
      ZuSpatialMatrix m(a);
      change(m);
      return m;
    };
    Eigen::Matrix<long double, 3, 1> const wideV(v.x(), v.y(), v.z());
    expectEqual(a * b, wide(a) * wide(b));
    expectEqual(after([&](ZuSpatialMatrix& m) { m *= m; }), wide(a) * wide(a));
    expectEqual(after([&](ZuSpatialMatrix& m) { m.multiplyOnRightBy(b); }), wide(a) * wide(b));
    expectEqual(after([&](ZuSpatialMatrix& m) { m.multiplyOnLeftBy(b); }), wide(b) * wide(a));
    expectEqual(after([&](ZuSpatialMatrix& m) { m.multiplyOnRightByCrossProductMatrix(r); }), wide(a) * wide(cross));
    expectEqual(after([&](ZuSpatialMatrix& m) { m.multiplyOnLeftByCrossProductMatrix(r); }), wide(cross) * wide(a));
    expectEqual(after([&](ZuSpatialMatrix& m) { m.setToTranspose(); }), wide(a).transpose());
    expectEqual(after([&](ZuSpatialMatrix& m) { m.setRows(m.row2(), m.row0(), m.row1()); }),
                wide(ZuSpatialMatrix(a[2], a[0], a[1])));
    expectEqual(after([&](ZuSpatialMatrix& m) { m.addWeightedSelfOuterProduct(v, -2.5); }),
                wide(a) - 2.5L * wideV * wideV.transpose());
    ZuOrientation const q = random.orientation();
    ZuSpatialMatrix dcm;
    dcm.setToDcm(q);
    expectEqual(after([&](ZuSpatialMatrix& m) { m.transformBy(q); }), wide(dcm) * wide(a) * wide(dcm).transpose());
    EXPECT_EQ(after([](ZuSpatialMatrix& m) { m.transformBy(ZuOrientation()); }), a);
    EXPECT_TRUE((dcm * v).approxEq(q * v, 4e-15));
    EXPECT_TRUE((cross * v).approxEq(r.cross(v), 0.0));
    EXPECT_TRUE((a.transpose() * v).approxEq(a.transposeTimes(v), 4e-15));
    ZuVector product = v;
    a.multiplyOnLeftBy(product, product);
    EXPECT_EQ(product, a.transposeTimes(v));
  }
}

TEST(SpatialMatrix, RowsAreWritableAndRowsThatDoNotExistAreNot) {
  ZuSpatialMatrix m;
  m[1][2] = 5.0;
  m.row2() = ZuVector(7, 8, 9);
  ZuReArray array(5, 1);
  m.getArray(array);
  EXPECT_EQ(array.rows() * 10 + array.columns(), 33U);
  EXPECT_EQ(m, ZuSpatialMatrix(0, 0, 0, 0, 0, array[1][2], 7, array[2][1], 9));
  PrintSink sink;
  m[3] = ZuVector(1, 1, 1);
  EXPECT_EQ(static_cast<ZuSpatialMatrix const&>(m)[4], ZuVector());
  EXPECT_EQ(sink.take(), (Messages{"ZuSpatialMatrix::operator[]-->invalid index (3)",
                                   "ZuSpatialMatrix::operator[]-->invalid index (4)"}));
}

TEST(SpatialMatrix, TransformationsOfMotionsAndForcesAreInverseTransposes) {
  TracedValues random(93);
  for (int i = 0; i < 100; ++i) {
    ZuCoordinateSystemTransformation const t = random.transformation();
    Eigen::Matrix<double, 6, 6> ofMotions, ofForces, blocks = Eigen::Matrix<double, 6, 6>::Zero();
    for (unsigned int column = 0; column < 6; ++column) {
      ZuGeneralMotion motion;
      ZuGeneralForce force;
      motion.setScalarValue(column, 1.0);
      force.setScalarValue(column, 1.0);
      motion.transformBy(t);
      force.transformBy(t);
      for (unsigned int row = 0; row < 6; ++row)
        ofMotions(row, column) = motion[row], ofForces(row, column) = force[row];
    }
    // The blocks are D, and the cross product matrix of the translation times D.
    ZuSpatialMatrix dcm, lever;
    dcm.setToDcm(t.orientation());
    lever = ZuSpatialMatrix::crossProductMatrix(t.translation()) * dcm;
    blocks.topLeftCorner<3, 3>() = blocks.bottomRightCorner<3, 3>() = wide(dcm).cast<double>();
    blocks.topRightCorner<3, 3>() = wide(lever).cast<double>();
    EXPECT_TRUE(ofMotions.isApprox(blocks, 1e-14));
    EXPECT_TRUE((ofForces.transpose() * ofMotions).isApprox(Eigen::Matrix<double, 6, 6>::Identity(), 1e-14));
  }
}

TEST(SpatialMatrix, FactorsAndInversesOfPositiveDefiniteMatricesAreWithinTheirBounds) {
  TracedValues random(94);
  for (int i = 0; i < 1000; ++i) {
    ZuSpatialMatrix m = ZuSpatialMatrix::diagonal(random.scale(1e-3, 1e3), random.scale(1e-3, 1e3), 1.0), l;
    m.transformBy(random.orientation());
    double const size = std::fmax(m[0].x(), std::fmax(m[1].y(), m[2].z()));
    EXPECT_TRUE(m.choleskyDecomposition(l) && ZuVector(l[0].y(), l[0].z(), l[1].z()) == ZuVector());
    EXPECT_TRUE((l * l.transpose()).approxEq(m, 1e-15 * 3 * size + (m - m.transpose())[0].mag()));
    EXPECT_TRUE(m.getSymmetricPositiveDefiniteInverse(l) && l == l.transpose());
    EXPECT_TRUE((l * m).approxEq(ZuSpatialMatrix::identity(), 1e-9));
  }
  ZuSpatialMatrix l(0, 1, 0, 1, 4, 0, 0, 0, 9);  // a pivot of zero
  EXPECT_TRUE(l.choleskyDecomposition(l));
  EXPECT_EQ(l, ZuSpatialMatrix(0, 0, 0, 1.0 / std::numeric_limits<double>::min(), 0, 0, 0, 0, 3));
}

TEST(SpatialMatrix, EigensystemsOfAllKindsOfSpectraAndHardOnesAreWithinTheirBounds) {
  TracedValues random(95);
  for (int i = 0; i < 20000; ++i) {
    double const gap = random.scale(1e-17, 1.0), third = random.real(-2.0, 2.0), scale = random.scale(1e-3, 1e3);
    ZuVector const spectra[] = {{random.real(), random.real(), random.real()},
                                {1.0 + gap, 1.0, third},
                                {1.0, 1.0 + gap, 1.0 - gap * third},
                                {random.scale(1e-9, 1e9), random.scale(1e-9, 1e9), random.real()}};
    ZuVector const& spectrum = spectra[random.index(4)];
    ZuSpatialMatrix m = ZuSpatialMatrix::diagonal(spectrum.x(), spectrum.y(), spectrum.z());
    m.transformBy(random.orientation());
    m += m.transpose();
    m *= 0.5 * scale;
    expectGoodEigensystem(m);
    if (HasFailure()) break;
  }
  std::ifstream file(sharedFile("cases/open.eigen.txt"));
  if (!file) GTEST_SKIP() << "no shared cases";
  double a[6];
  for (std::string line; std::getline(file, line);) {
    if (std::sscanf(line.c_str(), "m %lf %lf %lf %lf %lf %lf", a, a + 1, a + 2, a + 3, a + 4, a + 5) != 6) continue;
    SCOPED_TRACE(line);
    expectGoodEigensystem(ZuSpatialMatrix(a[0], a[1], a[2], a[1], a[3], a[4], a[2], a[4], a[5]));
  }
}

TEST(SpatialMatrix, EigensystemsWithoutDirectionsHaveTheAxesAndOnlyTheUpperTriangleIsRead) {
  double const nan = std::nan("");
  ZuVector values, u0, u1, u2;
  for (double const size : {0.0, 0.1, -1.0 / 3.0, 1e200}) {
    ZuSpatialMatrix const multiple(size, 0, 0, nan, size, 0, nan, nan, size);
    EXPECT_TRUE(multiple.getSymmetricEigensystem(values, u0, u1, u2) && values == ZuVector(size, size, size));
    EXPECT_EQ(ZuSpatialMatrix(u0, u1, u2), ZuSpatialMatrix::identity());
  }
  PrintSink sink;
  EXPECT_TRUE(ZuSpatialMatrix(1, nan, 0, 0, 1, 0, 0, 0, 1).getSymmetricEigensystem(values, u0, u1, u2));
  EXPECT_TRUE(values == ZuVector() && sink.messages().size() == 1U);
}
