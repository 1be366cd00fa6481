#include "geometry/zuDepthPolytopePrivate.h"

#include <algorithm>
#include <cmath>

#include "geometry/zuExactSignsPrivate.h"
#include "geometry/zuPreciseSimplexPrivate.h"

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
constexpr unsigned int theFineExpansions = 256, theCoarseExpansions = 1024, theLastExpansions = 2048;
/// Gaps of curved solids that are wider than this part of the size after the last of these will not close soon: a
/// circle of directions has a gap that falls with the square of their number, to 1e-6 then, a sphere with the number,
/// to 1e-3.
constexpr double theHopeless = 4e-6;
/// Directions that descents may start from, how many of them do, and the cosine up to which they are apart.
constexpr int theSamples = 64, theDescents = 8;
constexpr double theApart = 0.95;
/// Steps of a descent, rad: the first, the last, which leaves 1e-10 of the size where the solid is smooth, and most.
constexpr double theFirstStep = 0.1, theLastStep = 1e-5;
constexpr int theMostSteps = 200;
/// How many steps a descent goes along one line at most.
constexpr double theLongest = 1000.0;
/// Directions around another.
constexpr double theHalf = 0.7071067811865476;
constexpr double theCircle[8][2] = {{1, 0},  {theHalf, theHalf},   {0, 1},  {-theHalf, theHalf},
                                    {-1, 0}, {-theHalf, -theHalf}, {0, -1}, {theHalf, -theHalf}};
/// Facets with a sine below 1e-4 get their normals in twice the digits.
constexpr double theSlimRounding = theOrientationRounding * 1e4;
/// How much wider than the gap of the bounds the nearest point may miss them.
constexpr double theSlack = 4.0;
/// Depths that are less than this part of the size are 0 when rounding leaves no facet within the other part of where
/// their bounds meet. Larger, the band of depths would suffer.
constexpr double theDoubtful = 2e-8, theMiss = 2e-10;
/// Cosine of the angle up to which facets count as parallel: 0.14 mrad.
constexpr double theSameNormal = 1.0 - 1e-8;
constexpr double theFarthest = std::numeric_limits<double>::infinity();

/// Places for the first points and facets: the lists double from there.
constexpr std::size_t theFirstPoints = 64, theFirstFacets = 128;
/// Facets of a block of heights; a divisor of theFirstFacets and a multiple of 4.
constexpr std::size_t theBlock = 32;
/// A simplex thinner than this part of its size is no start.
constexpr double theThinStart = 1e-3;

/// The number of edge k of a facet, and back.
constexpr int edgeOf(int facet, int k) { return 4 * facet + k; }
constexpr int facetOf(int edge) { return edge >> 2; }

double sumOfMagnitudes(ZuVector const& v) { return std::abs(v.x()) + std::abs(v.y()) + std::abs(v.z()); }

/// A unit vector at a right angle to v.
ZuVector perpendicular(ZuVector const& v) {
  double const x = std::abs(v.x()), y = std::abs(v.y()), z = std::abs(v.z());
  ZuVector const axis(x <= y && x <= z ? 1.0 : 0.0, y < x && y <= z ? 1.0 : 0.0, z < x && z < y ? 1.0 : 0.0);
  ZuVector const unit = v.cross(axis).unitVector();
  return unit == ZuVector() ? ZuVector::xVector(1.0) : unit;
}

/// The shortest vector on a segment between two of the vectors.
ZuVector shortestMean(ZuVector const (&v)[9]) {
  ZuVector shortest = v[0];
  for (int i = 0; i < 9; ++i) {
    for (int k = 0; k < i; ++k) {
      double t = 0.0;
      ZuVector const mean = ZuSimplex::nearestOnSegment(v[i], v[k], t);
      if (mean.magSquared() < shortest.magSquared()) shortest = mean;
    }
  }
  return shortest;
}

}  // namespace

ZuDepthPolytope::Outcome ZuDepthPolytope::search(ZuCoreDifference& set, ZuCoreSimplex const& simplex, double tolerance,
                                                 unsigned int maxExpansions, Depth& depth) {
  m_Expansions = 0;
  m_Noise = theSupportRounding * set.extent();
  m_IsCurved = set.isCurved();
  if (!start(set, simplex, depth)) return FLAT;
  Ending const ending = expand(set, tolerance, maxExpansions, depth);
  if (ending == SEPARATED) return APART;
  depth.lower = std::min(m_Lower, m_Upper);
  double const gap = tolerance * m_Size + m_Noise;
  bool const isCoarse = ending == ENOUGH || m_Upper - m_Lower > gap;
  if (isCoarse) {
    if (ending == ENOUGH) descend(set);
    settle(set, gap);
  }
  bool const isFound = finish(gap, depth);
  depth.upper = m_Upper;
  return isFound ? FOUND : FLAT;
}

/// The gap at which the search ends, as a multiple of that of its beginning. Solids of revolution about one axis are as
/// deep in all directions of a circle: the bounds then meet as slowly as a polygon becomes round. Those of polytopes
/// meet in the end, after some two expansions for each corner of round hulls.
double ZuDepthPolytope::patience() const {
  if (m_Expansions < theFineExpansions) return 1.0;
  if (m_Expansions < theCoarseExpansions || !m_IsCurved) return 200.0;
  return m_Expansions < theLastExpansions ? 2000.0 : 3000.0;
}

ZuDepthPolytope::Ending ZuDepthPolytope::expand(ZuCoreDifference& set, double tolerance, unsigned int limit,
                                                Depth& depth) {
  for (; m_Expansions < limit; ++m_Expansions) {
    int const facet = nextNearest();
    if (facet < 0) return MET;
    double const lower = m_Lower = m_Facets[facet].height, gap = tolerance * patience() * m_Size + m_Noise;
    if (lower >= m_Upper - gap) return MET;
    if (m_Expansions == theLastExpansions && m_IsCurved && m_Upper - lower > theHopeless * m_Size) return ENOUGH;
    double const h = supportValue(set, m_Facets[facet].normal);
    if (h < -m_Noise) {
      depth.normal = m_Facets[facet].normal;
      return SEPARATED;
    }
    if (!(h > lower + gap)) return MET;
    insert(facet);
  }
  return ENOUGH;
}

/// Goes down from the least upper bound to a minimum of it: where the ray along its normal leaves the set, the normal
/// has a support value that is not larger.
void ZuDepthPolytope::settle(ZuCoreDifference& set, double gap) {
  int facet = facetAlong(m_UpperNormal);
  for (unsigned int i = 0; i < theLocalExpansions && m_Facets[facet].height < m_Upper - gap; ++i) {
    double const h = supportValue(set, m_Facets[facet].normal);
    bool const isFound = !(h > m_Facets[facet].height + gap);
    if (!isFound && !insert(facet)) return;
    int const next = facetAlong(m_UpperNormal);
    if (isFound && next == facet) return;
    facet = next;
  }
}

/// Where the bounds have not met: from the best of directions spread over the facets that may yet be nearest, and from
/// the best one so far, down to minima of the support value.
void ZuDepthPolytope::descend(ZuCoreDifference& set) {
  struct {
    ZuVector normal;
    double h;
  } starts[theSamples + 1];
  starts[0] = {m_UpperNormal, m_Upper};
  int candidates = 0, count = 1;
  auto const isCandidate = [&](Facet const& f) { return f.isLive() && f.height < starts[0].h; };
  for (int f = 0; f < m_FacetCount; ++f) candidates += isCandidate(m_Facets[f]) ? 1 : 0;
  int const stride = candidates / theSamples + 1;
  for (int f = 0, i = 0; f < m_FacetCount; ++f) {
    if (!isCandidate(m_Facets[f]) || ++i % stride != 0) continue;
    starts[count++] = {m_Facets[f].normal, supportValue(set, m_Facets[f].normal)};
  }
  std::sort(starts, starts + count, [](auto const& a, auto const& b) { return a.h < b.h; });
  int chosen = 0;
  for (int i = 0; i < count && chosen < theDescents; ++i) {
    bool isApart = true;
    for (int k = 0; k < chosen; ++k) isApart = isApart && starts[i].normal.dot(starts[k].normal) < theApart;
    if (isApart) std::swap(starts[chosen++], starts[i]);
  }
  for (int i = 0; i < chosen; ++i) goDown(set, starts[i].normal);
}

/// Gradient sampling (Burke et al. 2005): of the gradients at the middle and at eight directions around it, the mean
/// that is shortest leads down, also along the valleys that edges of the solids make. Where nothing does, the step is
/// halved.
void ZuDepthPolytope::goDown(ZuCoreDifference& set, ZuVector normal) {
  double h = theFarthest, step = theFirstStep;
  ZuVector gradient, gradients[9];
  auto const look = [&](ZuVector const& along) {
    ZuVector const unit = along.unitVector();
    double const value = supportValue(set, unit);
    ZuVector const slope = m_Points[m_PointCount].y - unit * value;
    if (value < h) {
      h = value;
      normal = unit;
      gradient = slope;
    }
    return slope;
  };
  look(normal);
  for (int i = 0; i < theMostSteps && step > theLastStep; ++i) {
    ZuVector const center = normal, first = perpendicular(center) * step, second = center.cross(first);
    double const before = h;
    gradients[8] = gradient;
    for (int k = 0; k < 8; ++k) gradients[k] = look(center + first * theCircle[k][0] + second * theCircle[k][1]);
    ZuVector const down = shortestMean(gradients).unitVector() * -step;
    double least = h;
    for (double length = 1.0; length < theLongest; length *= 2.0) {
      look(center + down * length);
      if (!(h < least)) break;
      least = h;
    }
    if (!(h < before)) step *= 0.5;
  }
}

/// The support value of a normal, which bounds the depth from above. The support point becomes the next one.
double ZuDepthPolytope::supportValue(ZuCoreDifference& set, ZuVector const& normal) {
  ZuCorePoint& point = m_Points[m_PointCount];
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
  m_PointCount = m_FacetCount = 0;
  m_Free.clear();
  m_Size = 0.0;
  m_Upper = theFarthest;
  addPoint(simplex.point(0));
  if (takeTetrahedron(simplex)) return true;
  for (int i = 1; i < simplex.count(); ++i) m_Size = std::max(m_Size, simplex.point(i).y.distanceTo(m_Places[0]));
  while (m_PointCount < 4) {
    ZuCorePoint best;
    double most = 0.0;
    for (int i = 1; i < simplex.count(); ++i) {
      double const independent = independence(simplex.point(i).y);
      if (!(independent > most)) continue;
      most = independent;
      best = simplex.point(i);
    }
    // What the simplex has is good enough unless it is thin: a thin start costs expansions.
    if (!(most > theThinStart * m_Size)) {
      if (m_PointCount == 3) {
        offer(set, m_Axis, best, most);
      } else {
        ZuVector const first = m_PointCount == 2 ? perpendicular(m_Axis) : ZuVector::xVector(1.0);
        offer(set, first, best, most);
        offer(set, m_PointCount == 2 ? m_Axis.cross(first) : ZuVector::yVector(1.0), best, most);
        if (m_PointCount == 1) offer(set, ZuVector::zVector(1.0), best, most);
      }
    }
    if (!(most > theFlatness * std::max(m_Size, most) + m_Noise)) {
      depth.normal = m_PointCount == 3 ? m_Axis : perpendicular(m_Axis);
      if (m_PointCount == 1) depth.normal = ZuVector::xVector(1.0);
      return false;
    }
    ZuVector const edge = best.y - m_Places[0];
    if (m_PointCount == 1) m_Axis = edge.unitVector();
    if (m_PointCount == 2) m_Axis = m_Axis.cross(edge).unitVector();
    addPoint(best);
  }
  makeTetrahedron();
  return true;
}

/// The quick way for a simplex that is a stout tetrahedron.
bool ZuDepthPolytope::takeTetrahedron(ZuCoreSimplex const& simplex) {
  if (simplex.count() != 4) return false;
  ZuVector const ab = simplex.point(1).y - m_Places[0], ac = simplex.point(2).y - m_Places[0],
                 ad = simplex.point(3).y - m_Places[0];
  double const volume = ab.cross(ac).dot(ad), square = std::max({ab.magSquared(), ac.magSquared(), ad.magSquared()});
  if (!(volume * volume > theThinStart * theThinStart * square * square * square)) return false;
  for (int i = 1; i < 4; ++i) addPoint(simplex.point(i));
  makeTetrahedron();
  return true;
}

/// How far a point is from the figure of the points so far.
double ZuDepthPolytope::independence(ZuVector const& y) const {
  ZuVector const edge = y - m_Places[0];
  switch (m_PointCount) {
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
  ZuVector const &a = m_Places[0], &b = m_Places[1], &c = m_Places[2], &d = m_Places[3];
  if ((b - a).cross(c - a).dot(d - a) > 0.0) {
    std::swap(m_Points[1], m_Points[2]);
    std::swap(m_Places[1], m_Places[2]);
  }
  static constexpr int theCorners[4][3] = {{0, 1, 2}, {0, 3, 1}, {0, 2, 3}, {1, 3, 2}};
  static constexpr int theNeighbors[4][3] = {{1, 3, 2}, {2, 3, 0}, {0, 3, 1}, {1, 2, 0}};
  static constexpr int theEdges[4][3] = {{2, 2, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 1}};
  for (int f = 0; f < 4; ++f) {
    int const facet = freeFacet();
    m_New[f] = facet;
    for (int k = 0; k < 3; ++k) {
      m_Facets[facet].corner[k] = theCorners[f][k];
      m_Facets[facet].across[k] = edgeOf(theNeighbors[f][k], theEdges[f][k]);
    }
  }
  setPlanes(m_New.data(), 4);
}

// Facets.

void ZuDepthPolytope::addPoint(ZuCorePoint const& point) {
  if (m_Points.empty()) resizePoints(theFirstPoints);
  m_Points[m_PointCount] = point;
  addPoint();
}

void ZuDepthPolytope::resizePoints(std::size_t count) {
  m_Points.resize(count);
  m_Places.resize(count);
  m_Corners.resize(count);
}

/// The one behind the last.
void ZuDepthPolytope::addPoint() {
  ZuVector const y = m_Points[m_PointCount++].y;
  auto const count = static_cast<std::size_t>(m_PointCount);
  if (count == m_Points.size()) resizePoints(2 * count);
  m_Places[count - 1] = y;
  m_Size = std::max(m_Size, sumOfMagnitudes(y - m_Places[0]));
}

/// The height of a point over the plane of a facet of edges e0, e1 is wrong by its noise and by c eps |e0| |e1| / |e0 x
/// e1| of the size of the set, and |e0| |e1| <= (e0^2 + e1^2) / 2. Normals of slim facets are computed in twice
/// the digits. A facet without an area, or with one that is no double, goes with any point.
void ZuDepthPolytope::setPlanes(int const* facets, int count) {
  ZuVector const* const places = m_Places.data();
  double const size = m_Size, noise = m_Noise;
  for (int i = 0; i < count; ++i) {
    Facet& f = m_Facets[facets[i]];
    ZuVector const &ya = places[f.corner[0]], &yb = places[f.corner[1]], &yc = places[f.corner[2]];
    ZuVector const ab = yb - ya, ac = yc - ya, normal = ab.cross(ac);
    double const square = normal.magSquared();
    if (square > 0.0 && square < theFarthest) {
      double const inverse = 1.0 / std::sqrt(square);
      double rounding = theOrientationRounding * 0.5 * (ab.magSquared() + ac.magSquared()) * inverse;
      ZuVector unit = normal * inverse;
      if (!(rounding < theSlimRounding)) {
        unit = ZuPreciseSimplex::unitNormal(ya, yb, yc);
        rounding = theOrientationRounding;
      }
      double const height = unit.dot(ya);
      f.normal = unit;
      f.bound = height + (rounding * size + noise);
      f.height = std::max(height, std::max(unit.dot(yb), unit.dot(yc)));
    } else {
      f.normal = ZuVector();
      f.height = theFarthest;
      f.bound = -theFarthest;
    }
    setHeight(facets[i]);
  }
}

void ZuDepthPolytope::setHeight(int facet) {
  double const height = m_Facets[facet].height;
  double& ofBlock = m_BlockHeights[static_cast<std::size_t>(facet) / theBlock];
  m_Heights[facet] = height;
  ofBlock = std::min(ofBlock, height);
}

void ZuDepthPolytope::clearHeight(int facet) { m_Heights[facet] = theFarthest; }

int ZuDepthPolytope::freeFacet() {
  if (!m_Free.empty()) {
    int const facet = m_Free.back();
    m_Free.pop_back();
    return facet;
  }
  auto const count = static_cast<std::size_t>(m_FacetCount);
  if (count == m_Facets.size()) {
    m_Facets.resize(std::max(2 * count, theFirstFacets));
    m_Heights.resize(m_Facets.size());
    m_BlockHeights.resize(m_Facets.size() / theBlock);
    m_Removed.resize(m_Facets.size());
    m_New.resize(m_Facets.size());
    m_Horizon.resize(2 * m_Facets.size());
  }
  if (count % theBlock == 0) {
    std::fill_n(m_Heights.begin() + m_FacetCount, theBlock, theFarthest);
    m_BlockHeights[count / theBlock] = theFarthest;
  }
  return m_FacetCount++;
}

/// The live facet nearest to the origin, which is not offered again; -1 without one. The height of the block is looked
/// up only now: a facet that was removed may have had it.
int ZuDepthPolytope::nextNearest() {
  std::size_t const blocks = (static_cast<std::size_t>(m_FacetCount) + theBlock - 1) / theBlock;
  for (;;) {
    double* const block = std::min_element(m_BlockHeights.data(), m_BlockHeights.data() + blocks);
    std::size_t const first = theBlock * static_cast<std::size_t>(block - m_BlockHeights.data());
    double const* const heights = m_Heights.data() + first;
    double lanes[4] = {heights[0], heights[1], heights[2], heights[3]};
    for (std::size_t i = 4; i < theBlock; i += 4) {
      for (std::size_t k = 0; k < 4; ++k) lanes[k] = std::min(lanes[k], heights[i + k]);
    }
    double const least = std::min(std::min(lanes[0], lanes[1]), std::min(lanes[2], lanes[3]));
    if (*block == theFarthest) return -1;
    bool const isLeast = *block == least;
    *block = least;
    if (!isLeast) continue;
    int const facet = static_cast<int>(first + (std::find(heights, heights + theBlock, least) - heights));
    clearHeight(facet);
    return facet;
  }
}

/// The facet through which a ray from the origin leaves the polytope. Facets below the lower bound are slim ones that
/// could not be expanded.
int ZuDepthPolytope::facetAlong(ZuVector const& direction) const {
  int first = 0;
  double least = theFarthest;
  for (int f = 0; f < m_FacetCount; ++f) {
    double const slope = m_Facets[f].normal.dot(direction);
    if (!m_Facets[f].isLive() || !(slope > 0.0) || m_Facets[f].height < m_Lower ||
        !(m_Facets[f].height / slope < least))
      continue;
    least = m_Facets[f].height / slope;
    first = f;
  }
  return first;
}

// Expansion.

/// Adds the point behind the last. First with what rounding leaves in doubt on the safe side; where that does not make
/// one loop, by exact signs.
bool ZuDepthPolytope::insert(int facet) {
  ZuVector const w = m_Points[m_PointCount].y;
  for (bool const isExact : {false, true}) {
    if (findHorizon(w, facet, isExact) && isOneLoop(w)) {
      addPoint();
      closeHorizon();
      return true;
    }
    restore();
  }
  return false;
}

/// Brings back what was removed in vain. The first one, which is what would have been expanded, stays without a height.
void ZuDepthPolytope::restore() {
  for (int i = 0; i < m_RemovedCount; ++i) {
    m_Facets[m_Removed[i]].flip();
    if (i > 0) setHeight(m_Removed[i]);
  }
}

bool ZuDepthPolytope::isVisible(Facet const& facet, ZuVector const& w, bool isExact) const {
  if (!isExact) return !(facet.normal.dot(w) <= facet.bound);
  ZuVector const &a = m_Places[facet.corner[0]], &b = m_Places[facet.corner[1]], &c = m_Places[facet.corner[2]];
  return ZuExactSigns::side(a, b, c, w) < 0;
}

/// Removes what the point sees, across the edges of each facet in turn. False for less than a triangle, and when the
/// edges of the horizon meet a corner twice.
bool ZuDepthPolytope::findHorizon(ZuVector const& w, int facet, bool isExact) {
  Facet* const facets = m_Facets.data();
  Corner* const corners = m_Corners.data();
  HorizonEdge* const horizon = m_Horizon.data();
  int* const removed = m_Removed.data();
  if (++m_Stamp == 0) {
    std::fill(m_Corners.begin(), m_Corners.end(), Corner());
    m_Stamp = 1;
  }
  unsigned int const stamp = m_Stamp;
  int count = 0, removedCount = 1;
  bool isSimple = true;
  removed[0] = facet;
  facets[facet].flip();
  for (int i = 0; i < removedCount; ++i) {
    Facet const& seen = facets[removed[i]];
    int const ends[4] = {~seen.corner[0], seen.corner[1], seen.corner[2], ~seen.corner[0]};
    for (int k = 0; k < 3; ++k) {
      int const across = seen.across[k], beyond = facetOf(across);
      Facet& other = facets[beyond];
      if (!other.isLive()) continue;
      if (isVisible(other, w, isExact)) {
        other.flip();
        clearHeight(beyond);
        removed[removedCount++] = beyond;
      } else {
        Corner& corner = corners[ends[k]];
        isSimple = isSimple && corner.stamp != stamp;
        corner = {stamp, count};
        horizon[count++] = {ends[k], ends[k + 1], across};
      }
    }
  }
  m_HorizonCount = count;
  m_RemovedCount = removedCount;
  return isSimple && count >= 3;
}

/// Whether the edges of the horizon make one ring that does not meet the new point.
bool ZuDepthPolytope::isOneLoop(ZuVector const& w) const {
  HorizonEdge const* const horizon = m_Horizon.data();
  Corner const* const corners = m_Corners.data();
  unsigned int const stamp = m_Stamp;
  int const count = m_HorizonCount;
  int edge = 0, length = 0;
  do {
    HorizonEdge const& ofHorizon = horizon[edge];
    Corner const& next = corners[ofHorizon.to];
    if (next.stamp != stamp || m_Places[ofHorizon.from] == w) return false;
    edge = next.edge;
  } while (++length < count && edge != 0);
  return edge == 0 && length == count;
}

/// Joins the edges of the ring to the newest point. The new facets take the places of those removed.
void ZuDepthPolytope::closeHorizon() {
  int const count = m_HorizonCount, kept = std::min(count, m_RemovedCount), point = m_PointCount - 1;
  for (int i = 0; i < kept; ++i) m_New[i] = m_Removed[i];
  for (int i = kept; i < count; ++i) m_New[i] = freeFacet();
  for (int i = kept; i < m_RemovedCount; ++i) m_Free.push_back(m_Removed[i]);
  Facet* const facets = m_Facets.data();
  int const* const added = m_New.data();
  int previous = added[count - 1], edge = 0;
  for (int i = 0; i < count; ++i) {
    HorizonEdge const& ofHorizon = m_Horizon[edge];
    int const facet = added[i];
    Facet& f = facets[facet];
    f.corner[0] = ofHorizon.from;
    f.corner[1] = ofHorizon.to;
    f.corner[2] = point;
    f.across[0] = ofHorizon.outside;
    f.across[2] = edgeOf(previous, 1);
    facets[previous].across[1] = edgeOf(facet, 2);
    facets[facetOf(ofHorizon.outside)].across[ofHorizon.outside % 4] = edgeOf(facet, 0);
    previous = facet;
    edge = m_Corners[ofHorizon.to].edge;
  }
  setPlanes(added, count);
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
  for (int f = 0; f < m_FacetCount; ++f) {
    Facet const& facet = m_Facets[f];
    bool const isLikely = facet.isLive() && facet.height <= highest && facet.normal.dot(m_UpperNormal) >= theSameNormal;
    if (isLikely) takeIfNearer(facet, target, least, depth);
  }
  for (int f = 0; f < m_FacetCount && least > allowed * allowed; ++f) {
    if (m_Facets[f].isLive()) takeIfNearer(m_Facets[f], target, least, depth);
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
  if (m_FacetCount == 0) return true;
  std::vector<bool> used(m_Points.size(), false);
  std::size_t facets = 0;
  for (int f = 0; f < m_FacetCount; ++f) {
    Facet const& facet = m_Facets[f];
    if (!facet.isLive()) continue;
    ++facets;
    for (int k = 0; k < 3; ++k) {
      used[facet.corner[k]] = true;
      Facet const& other = m_Facets[facetOf(facet.across[k])];
      int const j = facet.across[k] % 4;
      if (!other.isLive() || other.across[j] != edgeOf(f, k) || other.corner[j] != facet.corner[(k + 1) % 3] ||
          other.corner[(j + 1) % 3] != facet.corner[k])
        return false;
    }
  }
  auto const points = static_cast<std::size_t>(std::count(used.begin(), used.end(), true));
  return facets == 2 * points - 4;  // Euler: points - edges + facets = 2, with edges = 3 facets / 2
}
