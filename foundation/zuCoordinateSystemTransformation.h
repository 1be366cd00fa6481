// zuCoordinateSystemTransformation.h - rigid transformation: a rotation, then a translation. Group: values.
#pragma once

#include "foundation/zuOrientation.h"

/// A rigid transformation: t * p = orientation * p + translation. With p_1 = t_12 * p_2, t_12 takes coordinates of
/// frame 2 into frame 1: its translation is the origin of frame 2 in frame 1. The default is the identity.
///
/// A plain value of 64 bytes: trivially copyable, without allocation; as thread-safe as a double. The mode, kept by
/// exact comparison with zero and the identity, lets work be skipped: where there is no rotation, points are moved
/// exactly as if by the sum alone, also infinite ones.
class ZU_API ZuCoordinateSystemTransformation {
 public:
  /// What `mode()` returns; the values are part of the interface.
  enum Mode : unsigned int { GENERAL = 0, ROTATION_ONLY = 1, TRANSLATION_ONLY = 2, IDENTITY = 3 };

  constexpr ZuCoordinateSystemTransformation() = default;
  explicit constexpr ZuCoordinateSystemTransformation(ZuVector const& translation) { setTranslation(translation); }
  constexpr ZuCoordinateSystemTransformation(ZuVector const& translation, ZuOrientation const& orientation)
      : m_Translation(translation), m_Orientation(orientation) {
    updateMode();
  }

  static constexpr ZuCoordinateSystemTransformation identity() { return {}; }
  /// One shared identity, by reference.
  static ZuCoordinateSystemTransformation const& nullObject() { return m_theIdentity; }
  /// A fixed general sample, for tests.
  static constexpr ZuCoordinateSystemTransformation testObject() {
    return {ZuVector::testObject(), ZuOrientation::testObject()};
  }

  constexpr ZuVector const& translation() const { return m_Translation; }
  constexpr ZuOrientation const& orientation() const { return m_Orientation; }
  /// 0 general, 1 rotation only, 2 translation only, 3 identity; always the highest that holds exactly.
  constexpr unsigned int mode() const { return m_Mode; }
  constexpr bool hasRotation() const { return (m_Mode & TRANSLATION_ONLY) == 0; }

  constexpr void setTranslation(ZuVector const& translation) {
    m_Translation = translation;
    updateMode();
  }
  constexpr void setOrientation(ZuOrientation const& orientation) {
    m_Orientation = orientation;
    updateMode();
  }
  constexpr void setToIdentity() { *this = ZuCoordinateSystemTransformation(); }
  /// Sets from a 4x4 matrix in row-major order: m[4 * row + column], the translation in m[3], m[7] and m[11], the last
  /// row 0 0 0 1. The upper left 3x3 must be a rotation within 1e-4, as for `ZuOrientation::setFromDcmColumns`.
  /// Anything else, a null pointer included: a message, nothing changes, false is returned.
  bool setBy16(double const* m);

  /// Exact comparison of the translations and of the components of the quaternions.
  constexpr bool operator==(ZuCoordinateSystemTransformation const& t) const {
    return m_Translation == t.m_Translation && m_Orientation == t.m_Orientation;
  }
  constexpr bool operator!=(ZuCoordinateSystemTransformation const& t) const { return !(*this == t); }

  /// Composition: the right operand is applied first, t_13 = t_12 * t_23. The identity on either side is exact.
  constexpr ZuCoordinateSystemTransformation operator*(ZuCoordinateSystemTransformation const& t) const {
    if (!hasRotation()) return {t.m_Translation + m_Translation, t.m_Orientation};
    return {*this * t.m_Translation, t.hasRotation() ? m_Orientation * t.m_Orientation : m_Orientation};
  }
  /// Transforms a point.
  constexpr ZuVector operator*(ZuVector const& p) const {
    return (hasRotation() ? m_Orientation * p : p) + m_Translation;
  }
  /// Transforms a point by the inverse: the same as `inverse() * p`, without building it.
  constexpr ZuVector inverseTimes(ZuVector const& p) const {
    ZuVector const moved = p - m_Translation;
    return hasRotation() ? m_Orientation.inverseTimes(moved) : moved;
  }
  constexpr ZuCoordinateSystemTransformation inverse() const {
    return {hasRotation() ? -m_Orientation.inverseTimes(m_Translation) : -m_Translation, m_Orientation.inverse()};
  }

  constexpr void transform(ZuVector& p) const { p = *this * p; }
  /// The output may be the input.
  constexpr void transform(ZuVector const& in, ZuVector& out) const { out = *this * in; }
  /// Transforms two points; an output may be any of the inputs.
  constexpr void transform(ZuVector const& a, ZuVector& aOut, ZuVector const& b, ZuVector& bOut) const {
    ZuVector const movedB = *this * b;
    aOut = *this * a;
    bOut = movedB;
  }

 private:
  static ZuCoordinateSystemTransformation const m_theIdentity;

  constexpr void updateMode() {
    m_Mode = (m_Orientation.isIdentity() ? TRANSLATION_ONLY : GENERAL) |
             (m_Translation == ZuVector() ? ROTATION_ONLY : GENERAL);
  }

  ZuVector m_Translation;
  ZuOrientation m_Orientation;
  unsigned int m_Mode = IDENTITY;
};
