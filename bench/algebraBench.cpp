// 3x3 matrices beside Eigen's of fixed size, and the sampling of orientations.
#include <benchmark/benchmark.h>

#include <Eigen/Dense>
#include <random>
#include <vector>

#include "geometry/zu600cell.h"
#include "geometry/zuSpatialMatrix.h"
#include "geometry/zuTruncatedIcosahedron.h"

namespace {

constexpr std::size_t theCases = 128;  ///< few enough for the first cache

/// The same random values in both forms: symmetric positive definite matrices, and rotations.
struct Values {
  Values() {
    std::mt19937_64 engine(20240603);
    auto const real = [&engine] { return static_cast<double>(engine() >> 11) * 0x1p-52 - 1.0; };
    for (std::size_t i = 0; i < theCases; ++i) {
      Eigen::Matrix3d root;
      for (unsigned int k = 0; k < 9; ++k) root(k / 3, k % 3) = real();
      Eigen::Matrix3d const m = root * root.transpose() + 0.01 * Eigen::Matrix3d::Identity();
      theirs.push_back(m);
      ours.emplace_back(m(0, 0), m(0, 1), m(0, 2), m(1, 0), m(1, 1), m(1, 2), m(2, 0), m(2, 1), m(2, 2));
      double const w = real(), x = real(), y = real(), z = real();
      orientations.emplace_back(w, x, y, z);
      ZuOrientation const& q = orientations.back();
      quaternions.emplace_back(q[0], q[1], q[2], q[3]);
    }
  }
  std::vector<ZuSpatialMatrix> ours;
  std::vector<Eigen::Matrix3d> theirs;
  std::vector<ZuOrientation> orientations;
  std::vector<Eigen::Quaterniond> quaternions;
};

/// Calls the function with the places of two values.
template <class Function>
void measure(benchmark::State& state, Function const& function) {
  std::size_t i = 0;
  for (auto _ : state) {
    function(i, (i * 5 + 1) % theCases);
    i = (i + 1) % theCases;
  }
}

template <class Matrix>
void product(benchmark::State& state, std::vector<Matrix> const& m) {
  measure(state, [&m](std::size_t i, std::size_t j) {
    Matrix const result = m[i] * m[j];
    benchmark::DoNotOptimize(&result);
    benchmark::ClobberMemory();
  });
}
/// Into a matrix that is there already.
template <class Matrix>
void productInPlace(benchmark::State& state, std::vector<Matrix> const& m) {
  Matrix result(m[0]);
  measure(state, [&](std::size_t i, std::size_t j) {
    result = m[i];
    result *= m[j];
    benchmark::DoNotOptimize(&result);
    benchmark::ClobberMemory();
  });
}
void productInPlaceOurs(benchmark::State& state) { productInPlace(state, Values().ours); }
void productInPlaceEigen(benchmark::State& state) { productInPlace(state, Values().theirs); }
void productOurs(benchmark::State& state) { product(state, Values().ours); }
void productEigen(benchmark::State& state) { product(state, Values().theirs); }

void transformOurs(benchmark::State& state) {
  Values const v;
  measure(state, [&v](std::size_t i, std::size_t j) {
    ZuSpatialMatrix result(v.ours[i]);
    result.transformBy(v.orientations[j]);
    benchmark::DoNotOptimize(&result);
    benchmark::ClobberMemory();
  });
}
void transformEigen(benchmark::State& state) {
  Values const v;
  measure(state, [&v](std::size_t i, std::size_t j) {
    Eigen::Matrix3d const dcm = v.quaternions[j].toRotationMatrix();
    Eigen::Matrix3d const result = dcm * v.theirs[i] * dcm.transpose();
    benchmark::DoNotOptimize(&result);
    benchmark::ClobberMemory();
  });
}

void inverseOurs(benchmark::State& state) {
  Values const v;
  measure(state, [&v](std::size_t i, std::size_t) {
    ZuSpatialMatrix result;
    v.ours[i].getSymmetricPositiveDefiniteInverse(result);
    benchmark::DoNotOptimize(&result);
    benchmark::ClobberMemory();
  });
}
/// By Cholesky factors, as ours; and by cofactors.
void inverseEigenCholesky(benchmark::State& state) {
  Values const v;
  measure(state, [&v](std::size_t i, std::size_t) {
    Eigen::Matrix3d const result = v.theirs[i].llt().solve(Eigen::Matrix3d::Identity());
    benchmark::DoNotOptimize(&result);
    benchmark::ClobberMemory();
  });
}
void inverseEigenCofactors(benchmark::State& state) {
  Values const v;
  measure(state, [&v](std::size_t i, std::size_t) {
    Eigen::Matrix3d const result = v.theirs[i].inverse();
    benchmark::DoNotOptimize(&result);
    benchmark::ClobberMemory();
  });
}

void eigensystemOf(benchmark::State& state, std::vector<ZuSpatialMatrix> const& m) {
  measure(state, [&m](std::size_t i, std::size_t) {
    ZuVector values, u0, u1, u2;
    m[i].getSymmetricEigensystem(values, u0, u1, u2);
    benchmark::DoNotOptimize(values[0] + u0[0] + u1[0] + u2[0]);
  });
}
void eigensystemOurs(benchmark::State& state) { eigensystemOf(state, Values().ours); }
void eigensystemOursRepeated(benchmark::State& state) {
  std::vector<ZuSpatialMatrix> repeated;
  for (ZuOrientation const& q : Values().orientations) {
    repeated.push_back(ZuSpatialMatrix::diagonal(2.0, 2.0, 1.0));
    repeated.back().transformBy(q);
  }
  eigensystemOf(state, repeated);
}
void eigensystemEigenIterative(benchmark::State& state) {
  Values const v;
  measure(state, [&v](std::size_t i, std::size_t) {
    Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> const solver(v.theirs[i]);
    benchmark::DoNotOptimize(solver.eigenvalues()[0] + solver.eigenvectors()(0, 0));
  });
}
void eigensystemEigenDirect(benchmark::State& state) {
  Values const v;
  measure(state, [&v](std::size_t i, std::size_t) {
    Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver;
    solver.computeDirect(v.theirs[i]);
    benchmark::DoNotOptimize(solver.eigenvalues()[0] + solver.eigenvectors()(0, 0));
  });
}

void cellSetUp(benchmark::State& state) {
  for (auto _ : state) {
    Zu600Cell const cell;
    benchmark::DoNotOptimize(&cell);
  }
}
void cellSample(benchmark::State& state) {
  Zu600Cell cell;
  cell.setupForSampling(4);
  measure(state,
          [&cell](std::size_t i, std::size_t) { benchmark::DoNotOptimize(cell.sample(static_cast<unsigned int>(i))); });
}
void cellContainer(benchmark::State& state) {
  Values const v;
  Zu600Cell const cell;
  measure(state, [&](std::size_t i, std::size_t) {
    benchmark::DoNotOptimize(cell.findCollectionContainer(v.orientations[i]));
  });
}
void faceContainer(benchmark::State& state) {
  Values const v;
  ZuTruncatedIcosahedron const faces;
  measure(state,
          [&](std::size_t i, std::size_t) { benchmark::DoNotOptimize(faces.findCollectionContainer(v.ours[i][0])); });
}

}  // namespace

BENCHMARK(productOurs);
BENCHMARK(productEigen);
BENCHMARK(productInPlaceOurs);
BENCHMARK(productInPlaceEigen);
BENCHMARK(transformOurs);
BENCHMARK(transformEigen);
BENCHMARK(inverseOurs);
BENCHMARK(inverseEigenCholesky);
BENCHMARK(inverseEigenCofactors);
BENCHMARK(eigensystemOurs);
BENCHMARK(eigensystemOursRepeated);
BENCHMARK(eigensystemEigenIterative);
BENCHMARK(eigensystemEigenDirect);
BENCHMARK(cellSetUp)->Unit(benchmark::kMicrosecond);
BENCHMARK(cellSample);
BENCHMARK(cellContainer);
BENCHMARK(faceContainer);
