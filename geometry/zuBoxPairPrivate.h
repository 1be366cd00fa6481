// zuBoxPairPrivate.h - nearest points, contact and depth of two oriented boxes. Group: solids.
#pragma once

#include "geometry/zuSegmentDistance.h"

class ZuRectangle;

/// An oriented box in plain numbers. Half extents of zero leave a rectangle, a segment or a point: the cores of the
/// round solids. Lengths in m.
struct ZuPlainBox {
  ZuVector center;
  ZuVector axes[3];  ///< unit vectors, perpendicular, right-handed
  ZuVector extents;  ///< half extents along the axes, not negative

  static ZuPlainBox aroundPoint(ZuVector const& point);
  static ZuPlainBox aroundSegment(ZuPlainSegment const& segment);
  /// Half edges that are not quite perpendicular, as read from a document, are made so.
  static ZuPlainBox aroundRectangle(ZuRectangle const& rectangle);
  static ZuPlainBox aroundHalfEdges(ZuVector const& center, ZuVector const& halfEdge0, ZuVector const& halfEdge1);

  ZuPlainBox transformedBy(ZuCoordinateSystemTransformation const& t_12) const;
};

/// Nearest points of two solids; or, where they overlap, the points that come together when the second is moved out by
/// the shortest way. All in one frame: point2 - point1 = distance * direction.
struct ZuSeparation {
  double distance;  ///< minus the depth where the two overlap
  ZuVector direction;
  ZuVector point1;
  ZuVector point2;

  /// For the solids of all points within the radii of the two.
  ZuSeparation grownBy(double radius1, double radius2) const {
    return {distance - radius1 - radius2, direction, point1 + direction * radius1, point2 - direction * radius2};
  }
};

/// Two boxes, the second one taken into the frame of the first. Distances and depths are those of the exact boxes to a
/// few roundings of the largest coordinate difference. Nothing allocates; nan is not screened and gives nan.
class ZuBoxPair {
 public:
  ZuBoxPair(ZuPlainBox const& box1, ZuPlainBox const& box2);

  /// Whether no axis separates the two, of the six of the boxes and the nine products of one of each (Gottschalk et al.
  /// 1996): touching counts.
  /// What a product of nearly parallel axes says is rounding when they are parallel within it; it only counts when the
  /// boxes projected on its direction are apart.
  bool touches() const;
  /// 0 when they touch.
  double distance() const;
  /// The depth is the least of those along the fifteen axes, which are all normals that facets of the difference of
  /// two boxes can have.
  ZuSeparation separation() const;

 private:
  /// A point of box 1 and the way from there to box 2, in the frame of box 1.
  struct Way {
    ZuVector start;
    ZuVector gap;
    double squared;
  };
  struct Depth {
    double overlap;  ///< negative when the direction separates the two
    ZuVector direction;
  };

  Way shortestWay() const;
  bool guess(Way& best) const;
  Way fromCornerOf1(ZuVector const& towards2) const;
  Way fromCornerOf2(ZuVector const& towards2) const;
  Way fromCornersOf1() const;
  Way fromCornersOf2() const;
  void considerEdges(Way& best) const;
  void considerEdgePair(unsigned int i, unsigned int j, Way& best) const;
  void considerAllEdges(Way& best) const;
  bool isShortest(Way const& way) const;
  Depth depth() const;
  double overlapAlong(ZuVector const& unit) const;
  ZuVector product(unsigned int i, unsigned int j) const;
  double productOverlap(unsigned int i, unsigned int j) const;
  double squaredSine(unsigned int i, unsigned int j) const {
    return m_R[(i + 1) % 3][j] * m_R[(i + 1) % 3][j] + m_R[(i + 2) % 3][j] * m_R[(i + 2) % 3][j];
  }
  double overlapOnAxisOf1(unsigned int i) const;
  double overlapOnAxisOf2(unsigned int j) const;
  ZuVector column(unsigned int j) const { return {m_R[0][j], m_R[1][j], m_R[2][j]}; }
  double projectionOn2(ZuVector const& v, unsigned int j) const {
    return v.x() * m_R[0][j] + v.y() * m_R[1][j] + v.z() * m_R[2][j];
  }
  ZuVector toWorld(ZuVector const& v) const { return m_Axes[0] * v.x() + m_Axes[1] * v.y() + m_Axes[2] * v.z(); }

  ZuVector m_Origin;   ///< centre of box 1
  ZuVector m_Axes[3];  ///< of box 1
  double m_A[3];       ///< half extents of box 1
  double m_B[3];       ///< half extents of box 2
  double m_C[3];       ///< centre of box 2 in the frame of box 1
  double m_R[3][3];    ///< m_R[i][j]: axis i of box 1 times axis j of box 2
  double m_AbsR[3][3];
  double m_Rounding;  ///< what sums over the pair may be off by, m
};
