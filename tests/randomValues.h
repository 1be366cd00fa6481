// randomValues.h - the same random values on every run, for tests of properties.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <string>

#include "foundation/zuCoordinateSystemTransformation.h"

/// A stream of values that its seed fixes on every platform; name the seed in a failure with SCOPED_TRACE(r.trace()).
class RandomValues {
 public:
  explicit RandomValues(std::uint64_t seed) : m_Seed(seed), m_Engine(seed) {}

  std::string trace() const { return "seed " + std::to_string(m_Seed); }
  /// Even in [low, high).
  double real(double low = -1.0, double high = 1.0) {
    return low + (high - low) * (static_cast<double>(m_Engine() >> 11) * 0x1p-53);
  }
  /// Positive, with an evenly spread logarithm.
  double scale(double low, double high) { return std::exp(real(std::log(low), std::log(high))); }
  unsigned int index(unsigned int count) { return static_cast<unsigned int>(m_Engine() % count); }
  /// Even in a cube.
  ZuVector vector(double halfSide = 1.0) {
    double const x = real(), y = real(), z = real();
    return ZuVector(x, y, z) * halfSide;
  }
  /// Even on the unit sphere.
  ZuVector direction() {
    ZuVector v;
    do v = vector();
    while (v.magSquared() > 1.0 || v.magSquared() < 0.01);
    return v.unitVector();
  }
  /// Even over all rotations.
  ZuOrientation orientation() {
    for (;;) {
      double const w = real(), x = real(), y = real(), z = real();
      double const squared = w * w + x * x + y * y + z * z;
      if (squared <= 1.0 && squared >= 0.01) return ZuOrientation(w, x, y, z);
    }
  }
  ZuCoordinateSystemTransformation transformation(double halfSide = 1.0) {
    ZuVector const translation = vector(halfSide);
    return ZuCoordinateSystemTransformation(translation, orientation());
  }

 private:
  std::uint64_t m_Seed;
  std::mt19937_64 m_Engine;
};
