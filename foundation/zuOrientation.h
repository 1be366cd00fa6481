// zuOrientation.h - rotation, held as a unit quaternion. Group: values.
#pragma once

#include "foundation/zuVector.h"

/// A rotation q = w + x i + y j + z k: applied to a vector it gives q v q^-1, so with p_1 = q_12 * p_2 the orientation
/// q_12 takes coordinates of frame 2 into frame 1. q and -q are the same rotation. The default is the identity.
///
/// Invariant: | |q|^2 - 1 | <= 8 eps. Whatever would break it is normalised; what holds it is kept bit for bit.
/// A plain value of 32 bytes: trivially copyable, without allocation; as thread-safe as a double. Angles in rad.
class ZU_API ZuOrientation {
 public:
  constexpr ZuOrientation() = default;
  /// From the components, normalised when they are not a unit quaternion; the identity when they are all zero or one
  /// of them is infinite or nan.
  constexpr ZuOrientation(double const& w, double const& x, double const& y, double const& z)
      : m_W(w), m_Vector(x, y, z) {
    if (!isUnit()) normalizeAny();
  }

  static constexpr ZuOrientation identity() { return {}; }
  /// A fixed sample without symmetry, for tests.
  static constexpr ZuOrientation testObject() { return {0.7, 0.1, 0.5, -0.5}; }

  /// w, x, y, z for 0 to 3. Any other index prints a message and reads 0.0.
  double operator[](unsigned int index) const {
    return index == 0 ? m_W : index < 4 ? m_Vector[index - 1] : invalidIndex(index);
  }
  /// Exact comparison of the components: q differs from -q.
  constexpr bool operator==(ZuOrientation const& q) const { return m_W == q.m_W && m_Vector == q.m_Vector; }
  constexpr bool operator!=(ZuOrientation const& q) const { return !(*this == q); }
  /// True when every component of this differs by at most the tolerance from that of q, or every one from that of -q.
  bool approxEq(ZuOrientation const& q, double tolerance) const;
  /// True for the quaternions 1 and -1 and no other.
  constexpr bool isIdentity() const { return m_Vector == ZuVector() && m_W != 0.0; }

  /// Composition: the right operand is applied first, q_13 = q_12 * q_23.
  constexpr ZuOrientation operator*(ZuOrientation const& q) const {
    ZuOrientation product(m_W * q.m_W - m_Vector.dot(q.m_Vector),
                          m_Vector.cross(q.m_Vector) + q.m_Vector * m_W + m_Vector * q.m_W);
    if (!product.isUnit()) product.normalizeAny();
    return product;
  }
  /// Rotates the vector, by v + w t + u x t with u = (x, y, z) and t = 2 u x v. For many vectors take the columns or
  /// rows of the matrix instead: half the work for each.
  constexpr ZuVector operator*(ZuVector const& v) const {
    ZuVector const t = 2.0 * m_Vector.cross(v);
    return v + t * m_W + m_Vector.cross(t);
  }
  constexpr ZuOrientation inverse() const { return ZuOrientation(m_W, -m_Vector); }
  /// Rotates the vector by the inverse: the same as `inverse() * v`.
  constexpr ZuVector inverseTimes(ZuVector const& v) const {
    ZuVector const t = 2.0 * v.cross(m_Vector);
    return v + t * m_W + t.cross(m_Vector);
  }
  /// Brings the length to 1 within rounding. The class keeps it there, so callers have no need to.
  void normalize() { normalizeAny(); }

  constexpr void transform(ZuVector& v) const { v = *this * v; }
  /// Rotates two vectors; an output may be any of the inputs.
  constexpr void transform(ZuVector const& a, ZuVector& aOut, ZuVector const& b, ZuVector& bOut) const {
    ZuVector const rotatedB = *this * b;
    aOut = *this * a;
    bOut = rotatedB;
  }

  /// The rotation that takes this orientation to `o`, in the frame that both are given in: o = rotation(angle, axis) *
  /// this. The angle is in [0, pi], the axis a unit vector; the x axis when the angle is 0.
  void angleAxisBetween(ZuOrientation const& o, double& angle, ZuVector& axis) const;

  /// The columns of the rotation matrix: where the rotation takes the x, y and z axes.
  constexpr void getDcmColumns(ZuVector& c0, ZuVector& c1, ZuVector& c2) const { matrix(m_W, c0, c1, c2); }
  /// The rows of the rotation matrix: the columns for the inverse rotation.
  constexpr void getDcmRows(ZuVector& r0, ZuVector& r1, ZuVector& r2) const { matrix(-m_W, r0, r1, r2); }
  /// Sets the rotation whose matrix has these columns. They must be of unit length, perpendicular and right-handed
  /// within 1e-4; otherwise a message is printed, the rotation stays as it is, and false is returned.
  bool setFromDcmColumns(ZuVector const& c0, ZuVector const& c1, ZuVector const& c2);

  /// Sets the rotation by the angle about the axis, by the right-hand rule; the axis may have any length but 0. A zero
  /// axis with angle 0 is the identity. Bad input: a message, the rotation stays as it is, false is returned.
  bool setFromAngleAxis(double angle, ZuVector const& axis);
  /// Sets xRotation(a) * yRotation(b) * zRotation(c): turns about the x axis, then the turned y axis, then the twice
  /// turned z axis.
  void setFrom123Euler(double a, double b, double c);
  /// Sets the rotation about one axis, and returns it.
  ZuOrientation& xRotation(double angle) { return rotationAbout(ZuVector::xVector(1.0), angle); }
  ZuOrientation& yRotation(double angle) { return rotationAbout(ZuVector::yVector(1.0), angle); }
  ZuOrientation& zRotation(double angle) { return rotationAbout(ZuVector::zVector(1.0), angle); }

 private:
  /// A normalised quaternion is within 4 eps; twice that keeps every such value as it is. A larger bound would let
  /// chains of products drift.
  static constexpr double m_theUnitTolerance = 8.0 * 0x1p-52;
  /// Elements of a rotation matrix; lets in matrices written with five digits, keeps out scaled and mirrored ones.
  static constexpr double m_theDcmTolerance = 1e-4;

  constexpr ZuOrientation(double w, ZuVector const& vector) : m_W(w), m_Vector(vector) {}
  constexpr bool isUnit() const {
    double const excess = m_W * m_W + m_Vector.magSquared() - 1.0;
    return excess <= m_theUnitTolerance && excess >= -m_theUnitTolerance;
  }
  /// Columns of the matrix for w, rows for -w.
  constexpr void matrix(double w, ZuVector& c0, ZuVector& c1, ZuVector& c2) const {
    ZuVector const twice = m_Vector + m_Vector;
    double const xx = m_Vector.x() * twice.x(), yy = m_Vector.y() * twice.y(), zz = m_Vector.z() * twice.z();
    double const xy = m_Vector.x() * twice.y(), xz = m_Vector.x() * twice.z(), yz = m_Vector.y() * twice.z();
    double const wx = w * twice.x(), wy = w * twice.y(), wz = w * twice.z();
    c0 = ZuVector(1.0 - (yy + zz), xy + wz, xz - wy);
    c1 = ZuVector(xy - wz, 1.0 - (xx + zz), yz + wx);
    c2 = ZuVector(xz + wy, yz - wx, 1.0 - (xx + yy));
  }
  void normalizeAny();
  ZuOrientation& rotationAbout(ZuVector const& unitAxis, double angle);
  static double invalidIndex(unsigned int index);

  double m_W = 1.0;
  ZuVector m_Vector;  ///< x, y, z
};
