#include "geometry/zuDepthPolytopePrivate.h"

#include <algorithm>
#include <cmath>

#include "geometry/zuExactSignsPrivate.h"

namespace {

constexpr double theEpsilon = 0x1p-52;
/// Rounding of a support value, as a part of the largest number that went into it: some sums of three products.
/// Smaller, flat sides of the set are expanded over and over.
constexpr double theSupportRounding = 8.0 * theEpsilon;
/// Rounding of (b - a) x (c - a) . (w - a), as a part of the product of the lengths.
constexpr double theOrientationRounding = 8.0 * theEpsilon;
/// Sets thinner than this part of their size count as flat: they have no depth that is worth telling. Smaller, noise
/// passes for a tetrahedron.
constexpr double theFlatness = 1e-13;
/// Expansions that may follow to find the minimum of the upper bound, once there have been enough of them.
constexpr unsigned int theLocalExpansions = 512;
/// Expansions from which on wider gaps will do; see patience(). Polytopes hardly ever take as many.
constexpr unsigned int theFineExpansions = 256, theCoarseExpansions = 1024;
/// Facets with a sine below 1e-4 go as soon as a point may be in front of them: their normals are rough, and what is
/// left around them would not be convex.
constexpr double theSlimRounding = theOrientationRounding * 1e4;
/// How much wider than the gap of the bounds the nearest point may miss them.
constexpr double theSlack = 4.0;
/// Depths that are less than this part of the size are 0 when rounding leaves no facet within the other part of where
/// their bounds meet. Larger, the band of depths would suffer.
constexpr double theDoubtful = 2e-8, theMiss = 1e-9;
/// Cosine of the angle up to which facets count as parallel: 0.14 mrad.
constexpr double theSameNormal = 1.0 - 1e-8;
constexpr double theFarthest = std::numeric_limits<double>::infinity();

double sumOfMagnitudes(ZuVector const& v) { return std::abs(v.x()) + std::abs(v.y()) + std::abs(v.z()); }

/// A unit vector at a right angle to v.
ZuVector perpendicular(ZuVector const& v) {
  double const x = std::abs(v.x()), y = std::abs(v.y()), z = std::abs(v.z());
  ZuVector const axis(x <= y && x <= z ? 1.0 : 0.0, y < x && y <= z ? 1.0 : 0.0, z < x && z < y ? 1.0 : 0.0);
  ZuVector const unit = v.cross(axis).unitVector();
  return unit == ZuVector() ? ZuVector::xVector(1.0) : unit;
}

}  // namespace

ZuDepthPolytope::Outcome ZuDepthPolytope::search(ZuCoreDifference& set, ZuCoreSimplex const& simplex, double tolerance,
                                                 unsigned int maxExpansions, Depth& depth) {
  m_Expansions = 0;
  m_Noise = theSupportRounding * set.extent();
  if (!start(set, simplex, depth)) return FLAT;
  Ending const ending = expand(set, tolerance, maxExpansions, depth);
  if (ending == SEPARATED) return APART;
  depth.lower = std::min(m_Lower, m_Upper);
  double const gap = tolerance * m_Size + m_Noise;
  bool const isCoarse = ending == ENOUGH || m_Upper - m_Lower > gap;
  if (isCoarse) settle(set, gap);
  bool const isFound = finish(gap, depth);
  depth.upper = m_Upper;
  return isFound ? FOUND : FLAT;
}

/// The gap at which the search ends, as a multiple of that of its beginning. Solids of revolution about one axis are as
/// deep in all directions of a circle: the bounds then meet as slowly as a polygon becomes round.
double ZuDepthPolytope::patience() const {
  if (m_Expansions < theFineExpansions) return 1.0;
  return m_Expansions < theCoarseExpansions ? 200.0 : 2000.0;
}

ZuDepthPolytope::Ending ZuDepthPolytope::expand(ZuCoreDifference& set, double tolerance, unsigned int limit,
                                                Depth& depth) {
  for (; m_Expansions < limit; ++m_Expansions) {
    int const facet = nextNearest();
    if (facet < 0) return MET;
    double const lower = m_Lower = m_Facets[facet].height, gap = tolerance * patience() * m_Size + m_Noise;
    if (lower >= m_Upper - gap) return MET;
    ZuCorePoint point;
    double const h = supportValue(set, facet, point);
    if (h < -m_Noise) {
      depth.normal = m_Facets[facet].normal;
      return SEPARATED;
    }
    if (!(h > lower + gap)) return MET;
    insert(point, facet);
  }
  return ENOUGH;
}

/// Goes down from the least upper bound to a minimum of it: where the ray along its normal leaves the set, the normal
/// has a support value that is not larger.
void ZuDepthPolytope::settle(ZuCoreDifference& set, double gap) {
  int facet = facetAlong(m_UpperNormal);
  for (unsigned int i = 0; i < theLocalExpansions && m_Facets[facet].height < m_Upper - gap; ++i) {
    ZuCorePoint point;
    double const h = supportValue(set, facet, point);
    bool const isFound = !(h > m_Facets[facet].height + gap);
    if (!isFound && !insert(point, facet)) return;
    int const next = facetAlong(m_UpperNormal);
    if (isFound && next == facet) return;
    facet = next;
  }
}

/// The support value of the facet's normal, which bounds the depth from above.
double ZuDepthPolytope::supportValue(ZuCoreDifference& set, int facet, ZuCorePoint& point) {
  ZuVector const& normal = m_Facets[facet].normal;
  set.support(normal, point);
  double const h = normal.dot(point.y);
  if (h < m_Upper) {
    m_Upper = h;
    m_UpperNormal = normal;
  }
  return h;
}

// The start.

/// Four independent points: of the simplex as far as they are, the rest support points at right angles to the figure of
/// those before (van den Bergen 2003, chapter 4). False for a flat set, with its normal.
bool ZuDepthPolytope::start(ZuCoreDifference& set, ZuCoreSimplex const& simplex, Depth& depth) {
  m_Points.clear();
  m_Facets.clear();
  m_Heap.clear();
  m_Free.clear();
  m_Stamps.clear();
  m_Stamp = 0;
  m_Size = 0.0;
  m_Upper = theFarthest;
  addPoint(simplex.point(0));
  for (int i = 1; i < simplex.count(); ++i) m_Size = std::max(m_Size, simplex.point(i).y.distanceTo(m_Points[0].y));
  while (m_Points.size() < 4) {
    ZuCorePoint best;
    double most = 0.0;
    for (int i = 1; i < simplex.count(); ++i) {
      double const independent = independence(simplex.point(i).y);
      if (!(independent > most)) continue;
      most = independent;
      best = simplex.point(i);
    }
    // What the simplex has is good enough unless it is thin: a thin start costs expansions.
    if (!(most > 1e-3 * m_Size)) {
      if (m_Points.size() == 3) {
        offer(set, m_Axis, best, most);
      } else {
        ZuVector const first = m_Points.size() == 2 ? perpendicular(m_Axis) : ZuVector::xVector(1.0);
        offer(set, first, best, most);
        offer(set, m_Points.size() == 2 ? m_Axis.cross(first) : ZuVector::yVector(1.0), best, most);
        if (m_Points.size() == 1) offer(set, ZuVector::zVector(1.0), best, most);
      }
    }
    if (!(most > theFlatness * std::max(m_Size, most) + m_Noise)) {
      depth.normal = m_Points.size() == 3 ? m_Axis : perpendicular(m_Axis);
      if (m_Points.size() == 1) depth.normal = ZuVector::xVector(1.0);
      return false;
    }
    ZuVector const edge = best.y - m_Points[0].y;
    if (m_Points.size() == 1) m_Axis = edge.unitVector();
    if (m_Points.size() == 2) m_Axis = m_Axis.cross(edge).unitVector();
    addPoint(best);
  }
  makeTetrahedron();
  return true;
}

/// How far a point is from the figure of the points so far.
double ZuDepthPolytope::independence(ZuVector const& y) const {
  ZuVector const edge = y - m_Points[0].y;
  switch (m_Points.size()) {
    case 1:
      return edge.mag();
    case 2:
      return edge.cross(m_Axis).mag();
    default:
      return std::abs(edge.dot(m_Axis));
  }
}

void ZuDepthPolytope::offer(ZuCoreDifference& set, ZuVector const& direction, ZuCorePoint& best, double& most) const {
  for (double const sign : {1.0, -1.0}) {
    ZuCorePoint point;
    set.support(direction * sign, point);
    double const independent = independence(point.y);
    if (!(independent > most)) continue;
    most = independent;
    best = point;
  }
}

void ZuDepthPolytope::makeTetrahedron() {
  ZuVector const &a = m_Points[0].y, &b = m_Points[1].y, &c = m_Points[2].y, &d = m_Points[3].y;
  if ((b - a).cross(c - a).dot(d - a) > 0.0) std::swap(m_Points[1], m_Points[2]);
  static constexpr int theCorners[4][3] = {{0, 1, 2}, {0, 3, 1}, {0, 2, 3}, {1, 3, 2}};
  static constexpr int theNeighbors[4][3] = {{1, 3, 2}, {2, 3, 0}, {0, 3, 1}, {1, 2, 0}};
  m_Facets.resize(4);
  for (int f = 0; f < 4; ++f) {
    for (int k = 0; k < 3; ++k) m_Facets[f].across[k] = theNeighbors[f][k];
    setFacet(f, theCorners[f][0], theCorners[f][1], theCorners[f][2]);
  }
}

// Facets.

void ZuDepthPolytope::addPoint(ZuCorePoint const& point) {
  m_Points.push_back(point);
  m_Size = std::max(m_Size, sumOfMagnitudes(point.y - m_Points[0].y));
}

/// Into the heap comes only what may be nearest: a facet beyond the upper bound never is.
///
/// The height of a point over the plane of a facet of edges e0, e1 is wrong by its noise and by c eps |e0| |e1| / |e0 x
/// e1| of the size of the set, and |e0| |e1| <= (e0^2 + e1^2) / 2. A slim facet goes as soon as a point may be in front
/// of it, a facet without an area with any point.
void ZuDepthPolytope::setFacet(int facet, int a, int b, int c) {
  Facet& f = m_Facets[facet];
  ZuVector const &ya = m_Points[a].y, &yb = m_Points[b].y, &yc = m_Points[c].y;
  ZuVector const ab = yb - ya, ac = yc - ya, normal = ab.cross(ac);
  double const square = normal.magSquared();
  f.corner[0] = a;
  f.corner[1] = b;
  f.corner[2] = c;
  f.isLive = true;
  if (!(square > 0.0)) {
    f.normal = ZuVector();
    f.height = theFarthest;
    f.bound = -theFarthest;
    return;
  }
  double const inverse = 1.0 / std::sqrt(square);
  double const rounding = theOrientationRounding * 0.5 * (ab.magSquared() + ac.magSquared()) * inverse;
  double const doubt = rounding * m_Size + m_Noise;
  f.normal = normal * inverse;
  double const height = f.normal.dot(ya);
  f.bound = height + (rounding < theSlimRounding ? doubt : -doubt);
  f.height = std::max(height, std::max(f.normal.dot(yb), f.normal.dot(yc)));
  if (!(f.height < m_Upper)) return;
  m_Heap.push_back({f.height, facet});
  std::push_heap(m_Heap.begin(), m_Heap.end());
}

int ZuDepthPolytope::freeFacet() {
  if (m_Free.empty()) {
    m_Facets.emplace_back();
    return static_cast<int>(m_Facets.size()) - 1;
  }
  int const facet = m_Free.back();
  m_Free.pop_back();
  return facet;
}

/// The live facet nearest to the origin, taken out of the heap; -1 without one. Entries of removed facets are dropped
/// here.
int ZuDepthPolytope::nextNearest() {
  while (!m_Heap.empty()) {
    HeapEntry const top = m_Heap.front();
    std::pop_heap(m_Heap.begin(), m_Heap.end());
    m_Heap.pop_back();
    if (m_Facets[top.facet].isLive && m_Facets[top.facet].height == top.height) return top.facet;
  }
  return -1;
}

/// The facet through which a ray from the origin leaves the polytope. Facets below the lower bound are slim ones that
/// could not be expanded.
int ZuDepthPolytope::facetAlong(ZuVector const& direction) const {
  int first = 0;
  double least = theFarthest;
  for (int f = 0; f < static_cast<int>(m_Facets.size()); ++f) {
    double const slope = m_Facets[f].normal.dot(direction);
    if (!m_Facets[f].isLive || !(slope > 0.0) || m_Facets[f].height < m_Lower || !(m_Facets[f].height / slope < least))
      continue;
    least = m_Facets[f].height / slope;
    first = f;
  }
  return first;
}

// Expansion.

/// First with what rounding leaves in doubt on the safe side; where that does not make one loop, by exact signs.
bool ZuDepthPolytope::insert(ZuCorePoint const& point, int facet) {
  for (bool const isExact : {false, true}) {
    if (findHorizon(point.y, facet, isExact) && isOneLoop(point.y)) {
      addPoint(point);
      closeHorizon();
      return true;
    }
    for (int const removed : m_Removed) m_Facets[removed].isLive = true;
  }
  return false;
}

bool ZuDepthPolytope::isVisible(Facet const& facet, ZuVector const& w, bool isExact) const {
  if (!isExact) return !(facet.normal.dot(w) <= facet.bound);
  ZuVector const &a = m_Points[facet.corner[0]].y, &b = m_Points[facet.corner[1]].y, &c = m_Points[facet.corner[2]].y;
  return ZuExactSigns::side(a, b, c, w) < 0;
}

/// Walks over what the point sees, across the edges of each facet in turn, so that the edges of the horizon come in
/// order.
bool ZuDepthPolytope::findHorizon(ZuVector const& w, int facet, bool isExact) {
  m_Horizon.clear();
  m_Removed.assign(1, facet);
  m_Visits.assign(1, {facet, 0, 3});
  m_Facets[facet].isLive = false;
  while (!m_Visits.empty()) {
    Visit& visit = m_Visits.back();
    if (visit.left-- == 0) {
      m_Visits.pop_back();
      continue;
    }
    Facet const& seen = m_Facets[visit.facet];
    int const k = visit.edge, from = seen.corner[k], to = seen.corner[(k + 1) % 3], across = seen.across[k];
    visit.edge = (k + 1) % 3;
    Facet& other = m_Facets[across];
    if (!other.isLive) continue;
    int edge = 0;
    while (edge < 2 && other.corner[edge] != to) ++edge;
    if (isVisible(other, w, isExact)) {
      other.isLive = false;
      m_Removed.push_back(across);
      m_Visits.push_back({across, (edge + 1) % 3, 2});
    } else {
      m_Horizon.push_back({from, to, across, edge});
    }
  }
  return m_Horizon.size() >= 3;
}

/// Whether the edges of the horizon follow each other, and meet no corner twice and not the new point.
bool ZuDepthPolytope::isOneLoop(ZuVector const& w) {
  m_Stamps.resize(m_Points.size() + 1, 0);
  ++m_Stamp;
  for (std::size_t i = 0; i < m_Horizon.size(); ++i) {
    HorizonEdge const& edge = m_Horizon[i];
    if (m_Stamps[edge.from] == m_Stamp || edge.to != m_Horizon[i + 1 < m_Horizon.size() ? i + 1 : 0].from) return false;
    if (m_Points[edge.from].y == w) return false;
    m_Stamps[edge.from] = m_Stamp;
  }
  return true;
}

/// Joins the edges of the horizon to the newest point.
void ZuDepthPolytope::closeHorizon() {
  m_Free.insert(m_Free.end(), m_Removed.begin(), m_Removed.end());
  int const point = static_cast<int>(m_Points.size()) - 1;
  int first = -1, previous = -1;
  for (HorizonEdge const& edge : m_Horizon) {
    int const facet = freeFacet();
    setFacet(facet, edge.from, edge.to, point);
    m_Facets[facet].across[0] = edge.outside;
    m_Facets[edge.outside].across[edge.edge] = facet;
    m_Facets[facet].across[2] = previous;
    if (previous >= 0) m_Facets[previous].across[1] = facet;
    if (first < 0) first = facet;
    previous = facet;
  }
  m_Facets[first].across[2] = previous;
  m_Facets[previous].across[1] = first;
}

// The answer.

/// The point of the surface in the direction of the least upper bound: the ray leaves the polytope not before the lower
/// bound, and the set not after the upper one. Of facets it is told by the distance from where the bounds meet, which
/// slim facets, whose normals and heights are rough, tell as well as others. False when the set is so thin that
/// rounding leaves no facet there.
bool ZuDepthPolytope::finish(double gap, Depth& depth) const {
  ZuVector const target = m_UpperNormal * m_Upper;
  double const highest = std::max(m_Lower, m_Upper) + gap, allowed = theSlack * gap;
  double least = theFarthest;
  for (Facet const& facet : m_Facets) {
    bool const isLikely = facet.isLive && facet.height <= highest && facet.normal.dot(m_UpperNormal) >= theSameNormal;
    if (isLikely) takeIfNearer(facet, target, least, depth);
  }
  for (Facet const& facet : m_Facets) {
    if (least <= allowed * allowed) break;
    if (facet.isLive) takeIfNearer(facet, target, least, depth);
  }
  depth.normal = m_UpperNormal;
  return std::sqrt(least) <= allowed + theMiss * m_Size || !(m_Upper <= theDoubtful * m_Size);
}

void ZuDepthPolytope::takeIfNearer(Facet const& facet, ZuVector const& target, double& least, Depth& depth) const {
  ZuCorePoint const &p = m_Points[facet.corner[0]], &q = m_Points[facet.corner[1]], &r = m_Points[facet.corner[2]];
  ZuVector const a = p.y - target, b = q.y - target, c = r.y - target, ab = b - a, ac = c - a, normal = ab.cross(ac);
  ZuVector w;
  ZuSimplex::nearestOnTriangle(a, b, c, normal, w);
  // The weights of a slim facet are rough: what counts is the point that they give, once corrected by what it is off.
  ZuVector off = a * w.x() + b * w.y() + c * w.z();
  double change[3];
  if (w.x() > 0.0 && w.y() > 0.0 && w.z() > 0.0 && ZuSimplex::triangleWeights(off, ab, ac, normal, change)) {
    ZuVector const corrected(w.x() - change[0] - change[1], w.y() + change[0], w.z() + change[1]);
    if (corrected.x() > 0.0 && corrected.y() > 0.0 && corrected.z() > 0.0) w = corrected;
    off = a * w.x() + b * w.y() + c * w.z();
  }
  if (!(off.magSquared() < least)) return;
  least = off.magSquared();
  depth.nearest.y = p.y * w.x() + q.y * w.y() + r.y * w.z();
  depth.nearest.p = p.p * w.x() + q.p * w.y() + r.p * w.z();
  depth.nearest.q = p.q * w.x() + q.q * w.y() + r.q * w.z();
}

bool ZuDepthPolytope::isValid() const {
  if (m_Facets.empty()) return true;
  std::vector<bool> used(m_Points.size(), false);
  std::size_t facets = 0;
  for (int f = 0; f < static_cast<int>(m_Facets.size()); ++f) {
    Facet const& facet = m_Facets[f];
    if (!facet.isLive) continue;
    ++facets;
    for (int k = 0; k < 3; ++k) {
      used[facet.corner[k]] = true;
      Facet const& other = m_Facets[facet.across[k]];
      if (!other.isLive) return false;
      bool isLinked = false;
      for (int j = 0; j < 3; ++j) {
        isLinked = isLinked || (other.across[j] == f && other.corner[j] == facet.corner[(k + 1) % 3] &&
                                other.corner[(j + 1) % 3] == facet.corner[k]);
      }
      if (!isLinked) return false;
    }
  }
  auto const points = static_cast<std::size_t>(std::count(used.begin(), used.end(), true));
  return facets == 2 * points - 4;  // Euler: points - edges + facets = 2, with edges = 3 facets / 2
}
