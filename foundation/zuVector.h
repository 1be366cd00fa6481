// zuVector.h - three doubles: a point, a direction or a size. Group: values.
#pragma once

#include <cmath>

#include "foundation/zuExport.h"

/// A 3-vector (x, y, z); the unit and the frame are those of the numbers put in. The default is the zero vector.
///
/// A plain value of 24 bytes: trivially copyable, without allocation; as thread-safe as a double. Lengths and unit
/// vectors are right for every finite vector, from the smallest denormal to the largest double; products and squares
/// (`dot`, `cross`, `magSquared`, `distanceSquaredTo`, `prod`) are plain arithmetic and overflow like it.
class ZU_API ZuVector {
 public:
  constexpr ZuVector() = default;
  constexpr ZuVector(double const& x, double const& y, double const& z) : m_Components{x, y, z} {}

  static constexpr ZuVector zeroVector() { return {}; }
  /// A vector along the axis, of the given signed length.
  static constexpr ZuVector xVector(double const& length) { return {length, 0.0, 0.0}; }
  static constexpr ZuVector yVector(double const& length) { return {0.0, length, 0.0}; }
  static constexpr ZuVector zVector(double const& length) { return {0.0, 0.0, length}; }
  /// A fixed sample without symmetry, for tests.
  static constexpr ZuVector testObject() { return {1.5, -2.25, 0.375}; }

  constexpr double x() const { return m_Components[0]; }
  constexpr double y() const { return m_Components[1]; }
  constexpr double z() const { return m_Components[2]; }
  /// Component 0, 1 or 2. Any other index prints a message and reads 0.0; what is written there is lost.
  double operator[](unsigned int index) const { return index < 3 ? m_Components[index] : invalidIndex(index); }
  double& operator[](unsigned int index) { return index < 3 ? m_Components[index] : invalidIndex(index); }

  /// Exact: -0.0 equals 0.0, and a nan equals nothing.
  constexpr bool operator==(ZuVector const& v) const { return x() == v.x() && y() == v.y() && z() == v.z(); }
  constexpr bool operator!=(ZuVector const& v) const { return !(*this == v); }
  /// True when every component differs by at most the tolerance; a nan differs from everything.
  bool approxEq(ZuVector const& v, double tolerance) const {
    return std::abs(x() - v.x()) <= tolerance && std::abs(y() - v.y()) <= tolerance &&
           std::abs(z() - v.z()) <= tolerance;
  }

  constexpr ZuVector operator-() const { return {-x(), -y(), -z()}; }
  constexpr ZuVector operator+(ZuVector const& v) const { return {x() + v.x(), y() + v.y(), z() + v.z()}; }
  constexpr ZuVector operator-(ZuVector const& v) const { return {x() - v.x(), y() - v.y(), z() - v.z()}; }
  constexpr ZuVector operator*(double const& s) const { return {x() * s, y() * s, z() * s}; }
  /// Divides each component: correctly rounded, and by IEEE rules when the divisor is 0.
  constexpr ZuVector operator/(double const& s) const { return {x() / s, y() / s, z() / s}; }
  constexpr ZuVector& operator+=(ZuVector const& v) { return *this = *this + v; }
  constexpr ZuVector& operator-=(ZuVector const& v) { return *this = *this - v; }
  constexpr ZuVector& operator*=(double const& s) { return *this = *this * s; }
  constexpr ZuVector& operator/=(double const& s) { return *this = *this / s; }

  constexpr double dot(ZuVector const& v) const { return x() * v.x() + y() * v.y() + z() * v.z(); }
  constexpr ZuVector cross(ZuVector const& v) const {
    return {y() * v.z() - z() * v.y(), z() * v.x() - x() * v.z(), x() * v.y() - y() * v.x()};
  }
  /// The output may be this vector or v.
  constexpr void cross(ZuVector const& v, ZuVector& out) const { out = cross(v); }
  /// The product of the three components.
  constexpr double prod() const { return x() * y() * z(); }

  constexpr double magSquared() const { return dot(*this); }
  /// The length: accurate to about an ulp for all finite components, infinite or nan when a component is.
  double mag() const {
    double const squared = magSquared();
    return isSafeSquare(squared) ? std::sqrt(squared) : magOfExtremes();
  }
  constexpr double distanceSquaredTo(ZuVector const& v) const { return (v - *this).magSquared(); }
  double distanceTo(ZuVector const& v) const { return (v - *this).mag(); }

  /// The vector divided by its length. Without a direction (all zero, or a component infinite or nan): the zero vector.
  ZuVector unitVector() const {
    double const squared = magSquared();
    return isSafeSquare(squared) ? *this * (1.0 / std::sqrt(squared)) : unitVectorOfExtremes();
  }
  /// Becomes its `unitVector()`.
  void normalize() { *this = unitVector(); }

  /// Sets `out` to the vector of the given signed length that points from this point to `target`; to the zero vector
  /// when the two points coincide.
  void computeDirectionalVector(ZuVector const& target, double length, ZuVector& out) const {
    out = (target - *this).unitVector() * length;
  }

  /// Moves the vector by a fixed, tiny disturbance, never longer than the magnitude: half of the smaller of the
  /// magnitude and 2^-46 of the vector's own length (of the magnitude itself for the zero vector), always in the same
  /// oblique direction. A bound at least 1e-12 of the length thus changes some component by a few ulps: enough to leave
  /// a point of exact symmetry, too little to spoil the vector as the start of an iteration. Nothing happens unless the
  /// magnitude is above 0.
  void perturb(double magnitude) {
    if (!(magnitude > 0.0)) return;
    double const length = mag();
    double const bound = m_theDisturbance * (length > 0.0 ? length : magnitude);
    // Half, so that rounding to a neighbouring double can't take a component further than the magnitude.
    *this += ZuVector(0.48, -0.36, 0.8) * (0.5 * (bound < magnitude ? bound : magnitude));
  }

 private:
  /// Below, the squares of the components lose bits to underflow; the bound leaves 113 bits to the largest of them.
  static constexpr double m_theSmallestSafeSquare = 0x1p-960;
  /// As large as an infinity: above, a square has overflowed.
  static constexpr double m_theLargestSafeSquare = 0x1.fffffffffffffp+1023;
  /// Relative length of a disturbance: 64 ulps, above the rounding of one sum, far below 1e-12.
  static constexpr double m_theDisturbance = 0x1p-46;

  static constexpr bool isSafeSquare(double squared) {
    return squared >= m_theSmallestSafeSquare && squared <= m_theLargestSafeSquare;
  }
  double magOfExtremes() const;
  ZuVector unitVectorOfExtremes() const;
  static double& invalidIndex(unsigned int index);

  double m_Components[3] = {0.0, 0.0, 0.0};
};

constexpr ZuVector operator*(double const& s, ZuVector const& v) { return v * s; }
