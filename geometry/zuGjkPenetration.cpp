#include <algorithm>
#include <cmath>

#include "foundation/zuPrint.h"
#include "geometry/zuDifferenceSet.h"
#include "geometry/zuGjk.h"
#include "geometry/zuSimplexPrivate.h"

namespace {

/// Facets at this distance (m) or more are never expanded.
constexpr double theFarthestFacet = 1e20;
/// A nearest point lies inside its facet when all its weights are above this, ...
constexpr double theInsideWeight = 1e-16;
/// ... and on a corner when one is above this, the largest double below 1.
constexpr double theCornerWeight = 0.9999999999999999;
/// A point counts as outside the line, or the plane, of others when it is further from it than this part of the
/// largest coordinates. Flatter sets have no depth to speak of. It stands 1000 times above the rounding of the points.
constexpr double theFlatness = 1e-12;
/// Rounding of the support function, as a part of the largest distance of the polytope's points: a facet moves out only
/// by more. Smaller, the search would end by its iteration limit on flat boundaries.
constexpr double theSupportRounding = 16.0 * 0x1p-52;
/// Bound on the rounding error of (b - a) x (c - a) . (w - a), as a part of the product of the lengths (the sum of the
/// absolute coordinates for w - a): three subtractions and a determinant of nine products.
constexpr double theOrientationRounding = 8.0 * 0x1p-52;
/// How far a point may stand out of a facet of a polytope that counts as convex, as a part of the product of the
/// largest distance of a point and of the lengths of the facet's edges: a few insertions' worth of
/// theOrientationRounding.
constexpr double theConvexityRounding = 64.0 * 0x1p-52;

double sumOfMagnitudes(ZuVector const& v) { return std::abs(v.x()) + std::abs(v.y()) + std::abs(v.z()); }

/// A direction at a right angle to v.
ZuVector perpendicular(ZuVector const& v) {
  double const x = std::abs(v.x()), y = std::abs(v.y()), z = std::abs(v.z());
  ZuVector const axis(x <= y && x <= z ? 1.0 : 0.0, y < x && y <= z ? 1.0 : 0.0, z < x && z < y ? 1.0 : 0.0);
  return v.cross(axis).unitVector();
}

/// Collects up to four points of a difference set that span a tetrahedron.
class Seeds {
 public:
  ZuVector p[4], q[4], y[4];

  /// The four points, from the simplex as far as they are independent, otherwise support points along and against
  /// directions at right angles to the figure so far, as in van den Bergen, "Collision Detection in Interactive 3D
  /// Environments", chapter 4. Both support points of a direction lie in the figure's line or plane only when the set
  /// has no extent in the direction. False when the set is flat.
  bool collect(ZuDifferenceSet const& set, ZuVector const simplexP[4], ZuVector const simplexQ[4],
               ZuVector const simplexY[4], int bits) {
    for (m_Count = 0; m_Count < 4; ++m_Count) {
      m_Best = 0.0;
      for (int i = 0; i < 4; ++i) {
        if (ZuSimplex::holds(bits, i)) offer(simplexP[i], simplexQ[i], simplexY[i]);
      }
      if (!isIndependent()) offerSupportPoints(set);
      if (!isIndependent()) return false;
      m_Axis = m_NextAxis;
    }
    return true;
  }

 private:
  /// How far y is from the figure of the points so far.
  double independence(ZuVector const& point) const {
    ZuVector const edge = point - y[0];
    if (m_Count == 0) return 1.0;
    if (m_Count == 1) return edge.mag();
    if (m_Count == 2) return edge.cross(m_Axis).mag();
    return std::abs(edge.dot(m_Axis));
  }
  bool isIndependent() const { return m_Best > theFlatness * m_Extent || (m_Count == 0 && m_Best > 0.0); }

  void offer(ZuVector const& newP, ZuVector const& newQ, ZuVector const& newY) {
    m_Extent = std::max(m_Extent, newY.mag());
    double const independent = independence(newY);
    if (!(independent > m_Best)) return;
    m_Best = independent;
    p[m_Count] = newP;
    q[m_Count] = newQ;
    y[m_Count] = newY;
    if (m_Count == 1) m_NextAxis = (newY - y[0]).unitVector();
    if (m_Count == 2) m_NextAxis = m_Axis.cross(newY - y[0]).unitVector();
  }
  void offerBothWays(ZuDifferenceSet const& set, ZuVector const& direction) {
    for (double const sign : {1.0, -1.0}) {
      ZuVector newP, newQ;
      set.support(direction * sign, newP, newQ);
      offer(newP, newQ, set.difference(newP, newQ));
    }
  }
  void offerSupportPoints(ZuDifferenceSet const& set) {
    if (m_Count == 3) return offerBothWays(set, m_Axis);
    ZuVector const first = m_Count == 2 ? perpendicular(m_Axis) : ZuVector::xVector(1.0);
    offerBothWays(set, first);
    offerBothWays(set, m_Count == 2 ? m_Axis.cross(first) : ZuVector::yVector(1.0));
    if (m_Count < 2) offerBothWays(set, ZuVector::zVector(1.0));
  }

  int m_Count = 0;
  double m_Best = 0.0;    ///< of the point at m_Count
  double m_Extent = 0.0;  ///< largest distance from the origin
  ZuVector m_Axis;        ///< direction of the line of two points, normal of the plane of three
  ZuVector m_NextAxis;
};

}  // namespace

bool ZuGJK::penetration(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                        ZuCoordinateSystemTransformation const& T2, ZuVector& witness1, ZuVector& witness2,
                        ZuVector& penetrationVector) {
  ZuDifferenceSet const set(shape1, shape2, T1, T2);
  if (!startPolytope(set)) return false;
  if (!assignNeighborTrisVec()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuGJK::assignNeighborTrisVec() failed.");
    return false;
  }
  for (unsigned int i = 0; i < m_MaxIterations; ++i) {
    int const facet = nearestFacet();
    if (facet < 0) return false;
    Expansion const expansion = expandNearest(facet, set);
    if (expansion == EXPANDED) continue;
    if (expansion == FAILED) return false;
    ZuGJKTriangle const& nearest = m_Facets[facet];
    penetrationVector = nearest.closestPoint();
    witness1 = witness2 = ZuVector();
    for (unsigned int k = 0; k < 3; ++k) {
      double const weight = nearest.barycentric()[k];
      witness1 += m_PolytopeP[nearest.vertexIndex(k)] * weight;
      witness2 += m_PolytopeQ[nearest.vertexIndex(k)] * weight;
    }
    return true;
  }
  return false;
}

void ZuGJK::resetPenetration() {
  std::size_t const facets = std::max(m_FacetCapacity, 0), points = std::max(m_PointCapacity, 0);
  m_Facets.clear();
  m_Facets.reserve(facets);
  m_Neighbors.clear();
  m_Neighbors.reserve(facets);
  m_Planes.clear();
  m_Planes.reserve(facets);
  m_Visible.reserve(facets);
  m_FreeFacets.clear();
  m_FreeFacets.reserve(facets);
  m_Horizon.reserve(facets);
  m_PolytopeP.clear();
  m_PolytopeP.reserve(points);
  m_PolytopeQ.clear();
  m_PolytopeQ.reserve(points);
  m_PolytopeY.clear();
  m_PolytopeY.reserve(points);
  m_HorizonFrom.reserve(points);
  m_Extent = 0.0;
}

/// The hull of four independent points is their tetrahedron: its facets are written down. ZuConvexHull gives the same
/// four, but takes 18 us, more than most whole searches, allocates, and computes one hull at a time in a process.
bool ZuGJK::startPolytope(ZuDifferenceSet const& set) {
  resetPenetration();
  Seeds seeds;
  if (!seeds.collect(set, m_Simplex.p, m_Simplex.q, m_Simplex.y, m_Simplex.bits)) return false;
  for (int i = 0; i < 4; ++i) addPoint(seeds.p[i], seeds.q[i], seeds.y[i]);
  ZuVector const* const y = seeds.y;
  bool const pointsAway = (y[1] - y[0]).cross(y[2] - y[0]).dot(y[3] - y[0]) < 0.0;
  int const b = pointsAway ? 1 : 2, c = pointsAway ? 2 : 1;
  addFacet(0, b, c);
  addFacet(0, 3, b);
  addFacet(b, 3, c);
  addFacet(c, 3, 0);
  return true;
}

void ZuGJK::addPoint(ZuVector const& p, ZuVector const& q, ZuVector const& y) {
  m_PolytopeP.push_back(p);
  m_PolytopeQ.push_back(q);
  m_PolytopeY.push_back(y);
  m_Extent = std::max(m_Extent, y.mag());
}

/// The corners run counter-clockwise as seen from outside. Links are left to the caller.
int ZuGJK::addFacet(int a, int b, int c) {
  int place = static_cast<int>(m_Facets.size());
  if (m_FreeFacets.empty()) {
    m_Facets.emplace_back();
    m_Neighbors.push_back({-1, -1, -1});
    m_Planes.emplace_back();
  } else {
    place = m_FreeFacets.back();
    m_FreeFacets.pop_back();
  }
  m_Facets[place] = ZuGJKTriangle(a, b, c);
  ZuVector const edge1 = m_PolytopeY[b] - m_PolytopeY[a], edge2 = m_PolytopeY[c] - m_PolytopeY[a];
  m_Planes[place] = Plane{edge1.cross(edge2), std::sqrt(edge1.magSquared() * edge2.magSquared())};
  distanceToTriangle(m_Facets[place]);
  return place;
}

bool ZuGJK::assignNeighborTrisVec() {
  m_Neighbors.assign(m_Facets.size(), {-1, -1, -1});
  for (int f = 0; f < static_cast<int>(m_Facets.size()); ++f) {
    if (m_Facets[f].valid() == 0) continue;
    for (unsigned int k = 0; k < 3; ++k) {
      int const a = m_Facets[f].vertexIndex(k), b = m_Facets[f].vertexIndex((k + 1) % 3);
      int one, other;
      if (!edgeSharedBy(a, b, one, other)) return false;
      int const across = one == f ? other : one;
      m_Neighbors[f][k] = across;
      bool sense = false;  // the edge runs the other way there
      for (unsigned int j = 0; j < 3; ++j) {
        sense = sense || (m_Facets[across].vertexIndex(j) == b && m_Facets[across].vertexIndex((j + 1) % 3) == a);
      }
      if (!sense) return false;
    }
  }
  return true;
}

bool ZuGJK::edgeSharedBy(int a, int b, int& facet1, int& facet2) const {
  facet1 = facet2 = -1;
  int count = 0;
  for (int f = 0; f < static_cast<int>(m_Facets.size()); ++f) {
    ZuGJKTriangle const& facet = m_Facets[f];
    if (facet.valid() == 0) continue;
    int found = 0;
    for (unsigned int k = 0; k < 3; ++k) found += facet.vertexIndex(k) == a || facet.vertexIndex(k) == b ? 1 : 0;
    if (found != 2) continue;
    ++count;
    (facet1 < 0 ? facet1 : facet2) = f;
  }
  return count == 2;
}

int ZuGJK::nearestFacet() const {
  int nearest = -1;
  double smallest = theFarthestFacet;
  for (int f = 0; f < static_cast<int>(m_Facets.size()); ++f) {
    if (m_Facets[f].valid() == 0 || !(m_Facets[f].distance() < smallest)) continue;
    smallest = m_Facets[f].distance();
    nearest = f;
  }
  return nearest;
}

void ZuGJK::vectorToEdge(int a, int b, ZuVector& v) const {
  double t;
  v = ZuSimplex::nearestOnSegment(m_PolytopeY[a], m_PolytopeY[b], t);
}

void ZuGJK::distanceToTriangle(ZuGJKTriangle& facet) const {
  ZuVector const& a = m_PolytopeY[facet.vertexIndex(0)];
  ZuVector const& b = m_PolytopeY[facet.vertexIndex(1)];
  ZuVector const& c = m_PolytopeY[facet.vertexIndex(2)];
  ZuVector weights;
  facet.setClosestPoint(ZuSimplex::nearestOnTriangle(a, b, c, (b - a).cross(c - a), weights));
  facet.setBarycentric(weights);
  facet.setDistance(facet.closestPoint().mag());
}

double ZuGJK::distanceToTriangle(ZuVector const& a, ZuVector const& b, ZuVector const& c, bool isSigned) const {
  ZuVector const normal = (b - a).cross(c - a);
  ZuVector weights;
  double const length = ZuSimplex::nearestOnTriangle(a, b, c, normal, weights).mag();
  return isSigned && normal.dot(a) < 0.0 ? -length : length;
}

ZuGJK::Expansion ZuGJK::expandNearest(int facet, ZuDifferenceSet const& set) {
  ZuVector const weights = m_Facets[facet].barycentric();
  if (weights.x() > theInsideWeight && weights.y() > theInsideWeight && weights.z() > theInsideWeight) {
    return splitTriangle(facet, set);
  }
  int ends[3];
  int count = 0;
  for (unsigned int k = 0; k < 3; ++k) {
    int const corner = m_Facets[facet].vertexIndex(k);
    if (weights[k] > theCornerWeight) return splitCorner(facet, corner, set);
    if (weights[k] != 0.0) ends[count++] = corner;
  }
  return count == 2 ? splitEdge(facet, ends[0], ends[1], set) : splitTriangle(facet, set);
}

ZuGJK::Expansion ZuGJK::splitTriangle(int facet, ZuDifferenceSet const& set) {
  return expandAlong(m_Planes[facet].normal.unitVector(), m_Facets[facet].closestPoint(), facet, -1, -1, set);
}

ZuGJK::Expansion ZuGJK::splitEdge(int facet, int a, int b, ZuDifferenceSet const& set) {
  int one, other;
  if (!edgeSharedBy(a, b, one, other)) return FAILED;
  ZuVector const normal = m_Planes[facet].normal.unitVector();
  ZuVector const direction = m_Planes[one].normal.unitVector() + m_Planes[other].normal.unitVector();
  ZuVector nearest;
  vectorToEdge(a, b, nearest);
  return expandAlong(direction == ZuVector() ? normal : direction.unitVector(), nearest, facet, a, b, set);
}

ZuGJK::Expansion ZuGJK::splitCorner(int facet, int corner, ZuDifferenceSet const& set) {
  ZuVector direction;
  for (std::size_t f = 0; f < m_Facets.size(); ++f) {
    ZuGJKTriangle const& around = m_Facets[f];
    if (around.valid() == 0) continue;
    bool const has =
        around.vertexIndex(0) == corner || around.vertexIndex(1) == corner || around.vertexIndex(2) == corner;
    if (has) direction += m_Planes[f].normal.unitVector();
  }
  if (direction == ZuVector()) direction = m_Planes[facet].normal;
  return expandAlong(direction.unitVector(), m_PolytopeY[corner], facet, corner, corner, set);
}

/// Adds the support point in the direction, seen from the facet or from another one with the points a and b.
///
/// Any unit direction d bounds the depth from above by the support function h(d) = d . w, as the nearest facet bounds
/// it from below; so the search is over when h exceeds the nearest point by no more than tolerance and rounding,
/// whichever direction led to it. A negative h separates the origin from the set.
ZuGJK::Expansion ZuGJK::expandAlong(ZuVector const& direction, ZuVector const& nearest, int facet, int a, int b,
                                    ZuDifferenceSet const& set) {
  ZuVector p, q;
  set.support(direction, p, q);
  ZuVector const w = set.difference(p, q);
  double const rounding = theSupportRounding * std::max(m_Extent, w.mag());
  double const h = direction.dot(w);
  if (h < -rounding) return FAILED;
  double const advance = direction.dot(w - nearest);
  if (!(advance > m_Tolerance * h + rounding)) return FINISHED;
  if (std::find(m_PolytopeY.begin(), m_PolytopeY.end(), w) != m_PolytopeY.end()) return FINISHED;
  int const start = height(facet, w) > 0.0 ? facet : facetBelow(w, a, b);
  if (start < 0) return FINISHED;
  addPoint(p, q, w);
  return insertPoint(static_cast<int>(m_PolytopeY.size()) - 1, start) ? EXPANDED : FAILED;
}

/// A facet with the points a and b that has w in front of it; -1 when there is none.
int ZuGJK::facetBelow(ZuVector const& w, int a, int b) const {
  for (int f = 0; f < static_cast<int>(m_Facets.size()); ++f) {
    if (m_Facets[f].valid() == 0) continue;
    bool hasA = false, hasB = false;
    for (unsigned int k = 0; k < 3; ++k) {
      hasA = hasA || m_Facets[f].vertexIndex(k) == a;
      hasB = hasB || m_Facets[f].vertexIndex(k) == b;
    }
    if (hasA && hasB && height(f, w) > 0.0) return f;
  }
  return -1;
}

/// Height of w in front of the facet's plane, times |normal|.
double ZuGJK::height(int facet, ZuVector const& w) const {
  return m_Planes[facet].normal.dot(w - m_PolytopeY[m_Facets[facet].vertexIndex(0)]);
}

/// A point in the plane within rounding sees the facet: a facet that stays is then behind the point for sure, and the
/// new facet on their common edge has an area.
bool ZuGJK::isVisible(int facet, ZuVector const& w) const {
  ZuVector const toPoint = w - m_PolytopeY[m_Facets[facet].vertexIndex(0)];
  double const rounding = theOrientationRounding * m_Planes[facet].scale * sumOfMagnitudes(toPoint);
  return m_Planes[facet].normal.dot(toPoint) > -rounding;
}

/// Replaces what the point sees by the facets between it and the horizon, which makes the hull of the polytope and the
/// point (Clarkson and Shor; Barber, Dobkin and Huhdanpaa, "The Quickhull algorithm for convex hulls", section 2).
/// False, with the polytope as it was, when rounding leaves a horizon that is not one loop.
bool ZuGJK::insertPoint(int point, int facet) {
  collectVisible(point, facet);
  if (!orderHorizon()) {
    for (int const f : m_Visible) m_Facets[f].setValid(1);
    return false;
  }
  closeHorizon(point);
  return true;
}

void ZuGJK::collectVisible(int point, int facet) {
  ZuVector const w = m_PolytopeY[point];
  m_Horizon.clear();
  m_Visible.clear();
  m_Visible.push_back(facet);
  m_Facets[facet].setValid(0);
  for (std::size_t i = 0; i < m_Visible.size(); ++i) {
    int const seen = m_Visible[i];
    for (unsigned int k = 0; k < 3; ++k) {
      int const across = m_Neighbors[seen][k];
      if (m_Facets[across].valid() == 0) continue;
      if (isVisible(across, w)) {
        m_Facets[across].setValid(0);
        m_Visible.push_back(across);
      } else {
        m_Horizon.push_back({m_Facets[seen].vertexIndex(k), m_Facets[seen].vertexIndex((k + 1) % 3), across});
      }
    }
  }
}

/// Sorts the horizon into the order of a walk around it. False when it is not one simple loop.
bool ZuGJK::orderHorizon() {
  m_HorizonFrom.assign(m_PolytopeY.size(), -1);
  std::size_t const count = m_Horizon.size();
  for (std::size_t i = 0; i < count; ++i) {
    int& from = m_HorizonFrom[m_Horizon[i].from];
    if (from >= 0) return false;
    from = static_cast<int>(i);
  }
  for (std::size_t i = 0; i + 1 < count; ++i) {
    int const next = m_HorizonFrom[m_Horizon[i].to];
    if (next < static_cast<int>(i) + 1) return false;
    std::swap(m_HorizonFrom[m_Horizon[next].from], m_HorizonFrom[m_Horizon[i + 1].from]);
    std::swap(m_Horizon[next], m_Horizon[i + 1]);
  }
  return count >= 3 && m_Horizon[count - 1].to == m_Horizon[0].from;
}

void ZuGJK::closeHorizon(int point) {
  m_FreeFacets.insert(m_FreeFacets.end(), m_Visible.begin(), m_Visible.end());
  m_Visible.clear();
  for (HorizonEdge const& edge : m_Horizon) {
    int const facet = addFacet(edge.from, edge.to, point);
    m_Visible.push_back(facet);
    m_Neighbors[facet][0] = edge.outside;
    for (unsigned int k = 0; k < 3; ++k) {
      if (m_Facets[edge.outside].vertexIndex(k) == edge.to) m_Neighbors[edge.outside][k] = facet;
    }
  }
  std::size_t const count = m_Visible.size();
  for (std::size_t i = 0; i < count; ++i) {
    m_Neighbors[m_Visible[i]][1] = m_Visible[(i + 1) % count];
    m_Neighbors[m_Visible[i]][2] = m_Visible[(i + count - 1) % count];
  }
}

bool ZuGJK::validatePolytope() const {
  std::vector<bool> used(m_PolytopeY.size(), false);
  std::size_t facets = 0;
  for (int f = 0; f < static_cast<int>(m_Facets.size()); ++f) {
    if (m_Facets[f].valid() == 0) continue;
    ++facets;
    for (unsigned int k = 0; k < 3; ++k) {
      int const a = m_Facets[f].vertexIndex(k), b = m_Facets[f].vertexIndex((k + 1) % 3), across = m_Neighbors[f][k];
      used[a] = true;
      if (across < 0 || m_Facets[across].valid() == 0) return false;
      bool linked = false;
      for (unsigned int j = 0; j < 3; ++j) {
        linked = linked || (m_Facets[across].vertexIndex(j) == b && m_Facets[across].vertexIndex((j + 1) % 3) == a &&
                            m_Neighbors[across][j] == f);
      }
      if (!linked) return false;
    }
  }
  auto const points = static_cast<std::size_t>(std::count(used.begin(), used.end(), true));
  if (facets != 2 * points - 4) return false;  // Euler: points - edges + facets = 2, with edges = 3 facets / 2
  for (int f = 0; f < static_cast<int>(m_Facets.size()); ++f) {
    if (m_Facets[f].valid() == 0) continue;
    double const limit = theConvexityRounding * m_Planes[f].scale * m_Extent;
    for (std::size_t i = 0; i < used.size(); ++i) {
      if (used[i] && height(f, m_PolytopeY[i]) > limit) return false;
    }
  }
  return true;
}
