// zuPreciseSimplexPrivate.h - simplex of a distance iteration in numbers of twice the digits. Group: convex engine.
#pragma once

#include "foundation/zuDoubleDouble.h"
#include "geometry/zuCoreSimplexPrivate.h"

/// At most four points of a difference set, whose hull holds the nearest point so far, for where a ZuCoreSimplex is too
/// slim for doubles: needles, plates, neighbours on a rim.
///
/// The points are taken as they are, as doubles; their edges are exact then, and the mean of a triangle of size e and a
/// width of s e, seen from a distance of D, is off by 2^-100 D / s. Each face of the grown simplex is tried, and judged
/// by the mean of its corners that comes out, so that no test knows when a face is too slim. A hundred times as dear as
/// ZuCoreSimplex.
class ZuPreciseSimplex {
 public:
  struct Vector {
    ZuDoubleDouble x, y, z;
  };

  /// The face of the simplex that is nearest to the origin.
  explicit ZuPreciseSimplex(ZuCoreSimplex const& simplex);

  /// Goes on to the nearest face of the simplex with one more point; false, and all stays, when that is not nearer.
  bool add(ZuCorePoint const& point);
  /// The nearest point; right to rounding however short it is.
  ZuVector nearest() const { return {m_Mean.x.value(), m_Mean.y.value(), m_Mean.z.value()}; }
  /// The points with their weights.
  void copyTo(ZuCoreSimplex& simplex) const { simplex.take(m_Points, m_Weights, m_Count); }

  /// The unit normal of a triangle, right to rounding however slim it is; zero for corners on one line.
  static ZuVector unitNormal(ZuVector const& a, ZuVector const& b, ZuVector const& c);

 private:
  bool take(ZuCorePoint const* points, int count);

  ZuCorePoint m_Points[4];
  double m_Weights[4];
  Vector m_Mean;
  ZuDoubleDouble m_Square;
  int m_Count = 0;
};
