// zuDifferenceSet.h - difference of two placed shapes, by its support points. Group: convex engine.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"
#include "geometry/zuShape.h"

/// The points T1 * p - T2 * q over all p of shape 1 and q of shape 2: convex when both shapes are, and it holds the
/// origin exactly when they touch or overlap. Its frame is the world, in which T1 and T2 place the shapes; p and q are
/// in the frames of their shapes. Directions need not be unit vectors.
///
/// Lives for one query: it refers to the shapes. The rotations are turned into matrices once, the translations into
/// their difference, so that shapes far from the origin of the world lose no digits against one another.
class ZuDifferenceSet {
 public:
  ZuDifferenceSet(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                  ZuCoordinateSystemTransformation const& T2)
      : m_Shape1(shape1), m_Shape2(shape2), m_Turn1(T1), m_Turn2(T2), m_Offset(T1.translation() - T2.translation()) {}

  /// The points of the two shapes whose difference is farthest in the direction.
  void support(ZuVector const& direction, ZuVector& p, ZuVector& q) const {
    p = m_Shape1.computeSupportPoint(m_Turn1.inverseTimes(direction));
    q = m_Shape2.computeSupportPoint(m_Turn2.inverseTimes(-direction));
  }
  /// T1 * p - T2 * q.
  ZuVector difference(ZuVector const& p, ZuVector const& q) const {
    return m_Turn1.times(p) - m_Turn2.times(q) + m_Offset;
  }

 private:
  /// A rotation matrix by its columns; the identity costs a branch.
  class Turn {
   public:
    explicit Turn(ZuCoordinateSystemTransformation const& T) : m_IsIdentity(!T.hasRotation()) {
      if (!m_IsIdentity) T.orientation().getDcmColumns(m_X, m_Y, m_Z);
    }
    ZuVector times(ZuVector const& v) const { return m_IsIdentity ? v : m_X * v.x() + m_Y * v.y() + m_Z * v.z(); }
    ZuVector inverseTimes(ZuVector const& v) const {
      return m_IsIdentity ? v : ZuVector(m_X.dot(v), m_Y.dot(v), m_Z.dot(v));
    }

   private:
    bool m_IsIdentity;
    ZuVector m_X, m_Y, m_Z;
  };

  ZuShape const& m_Shape1;
  ZuShape const& m_Shape2;
  Turn m_Turn1, m_Turn2;
  ZuVector m_Offset;
};
