#include "geometry/zuBoxPairPrivate.h"

#include <algorithm>
#include <cmath>

#include "geometry/zuNearestPoints.h"
#include "geometry/zuRectangle.h"

namespace {

constexpr unsigned int theNext[3] = {1, 2, 0};
constexpr unsigned int theLast[3] = {2, 0, 1};

/// Roundings of a sum of products, in units of the size of the pair: the sums here have a dozen terms.
constexpr double theRounding = 16.0 * 0x1p-52;
/// Squared sine of the angle from which the product of two axes has 13 good digits: the way between two edges is then
/// taken along it, which keeps its direction however short it is.
constexpr double theWellConditioned = 1e-6;

/// How far apart boxes that overlap are brought to find their witness points, as a part of the size of the pair. The
/// way is found to its rounding: c r of the size, with c this part, and across it to sqrt(2 c r), 3e-10. Larger,
/// needles get points that are not across from each other; smaller, the rounding of the way itself.
constexpr double theClearance = 0x1p-16;

/// Guesses at the nearest corners: with more, few more pairs are settled than what the guesses cost.
constexpr unsigned int theGuesses = 2;

/// The corners of a box in the frame of another: bit j of the number of a corner is the sign along axis j.
struct Corners {
  static constexpr unsigned int theCount = 8;
  double coordinates[3][theCount];

  /// halfEdges[i][j]: coordinate i of the half edge along axis j.
  Corners(double const (&center)[3], double const (&halfEdges)[3][3]) {
    for (unsigned int i = 0; i < 3; ++i) {
      for (unsigned int k = 0; k < theCount; ++k) {
        coordinates[i][k] = center[i] + theSigns[0][k] * halfEdges[i][0] + theSigns[1][k] * halfEdges[i][1] +
                            theSigns[2][k] * halfEdges[i][2];
      }
    }
  }
  /// The corner nearest to the box with the half extents about the origin.
  unsigned int nearestTo(double const (&extents)[3]) const {
    double squared[theCount] = {};
    for (unsigned int i = 0; i < 3; ++i) {
      for (unsigned int k = 0; k < theCount; ++k) {
        double const out = std::abs(coordinates[i][k]) - extents[i];
        double const outside = out > 0.0 ? out : 0.0;
        squared[k] += outside * outside;
      }
    }
    return static_cast<unsigned int>(std::min_element(squared, squared + theCount) - squared);
  }
  ZuVector at(unsigned int k) const { return {coordinates[0][k], coordinates[1][k], coordinates[2][k]}; }

  static constexpr double theSigns[3][theCount] = {
      {-1, 1, -1, 1, -1, 1, -1, 1}, {-1, -1, 1, 1, -1, -1, 1, 1}, {-1, -1, -1, -1, 1, 1, 1, 1}};
};

ZuVector cornerOf(double const (&extents)[3], unsigned int k) {
  return {Corners::theSigns[0][k] * extents[0], Corners::theSigns[1][k] * extents[1],
          Corners::theSigns[2][k] * extents[2]};
}

double clamped(double x, double extent) { return std::max(-extent, std::min(x, extent)); }

ZuVector clamped(ZuVector const& p, double const (&extents)[3]) {
  return {clamped(p.x(), extents[0]), clamped(p.y(), extents[1]), clamped(p.z(), extents[2])};
}

}  // namespace

ZuPlainBox ZuPlainBox::aroundPoint(ZuVector const& point) {
  return {point, {ZuVector::xVector(1.0), ZuVector::yVector(1.0), ZuVector::zVector(1.0)}, ZuVector()};
}

ZuPlainBox ZuPlainBox::aroundSegment(ZuPlainSegment const& segment) {
  double const length = segment.delta.mag();
  if (length == 0.0) return aroundPoint(segment.endpoint0);
  ZuVector const unit = segment.delta.unitVector();
  ZuVector const side = zuPerpendicular(unit);
  return {(segment.endpoint0 + segment.endpoint1) * 0.5, {unit, side, unit.cross(side)}, {0.5 * length, 0.0, 0.0}};
}

ZuPlainBox ZuPlainBox::aroundRectangle(ZuRectangle const& rectangle) {
  return aroundHalfEdges(rectangle.center(), rectangle.halfEdge(0), rectangle.halfEdge(1));
}

ZuPlainBox ZuPlainBox::aroundHalfEdges(ZuVector const& center, ZuVector const& halfEdge0, ZuVector const& halfEdge1) {
  ZuVector h0 = halfEdge0, h1 = halfEdge1;
  if (h0.magSquared() < h1.magSquared()) std::swap(h0, h1);
  ZuVector const unit = h0.unitVector();
  if (unit == ZuVector()) return aroundPoint(center);
  ZuVector side = (h1 - unit * unit.dot(h1)).unitVector();
  if (side == ZuVector()) side = zuPerpendicular(unit);
  return {center, {unit, side, unit.cross(side)}, {h0.mag(), h1.mag(), 0.0}};
}

ZuPlainBox ZuPlainBox::transformedBy(ZuCoordinateSystemTransformation const& t_12) const {
  if (!t_12.hasRotation()) return {center + t_12.translation(), {axes[0], axes[1], axes[2]}, extents};
  ZuVector x, y, z;
  t_12.orientation().getDcmColumns(x, y, z);
  auto const turned = [&](ZuVector const& v) { return x * v.x() + y * v.y() + z * v.z(); };
  return {turned(center) + t_12.translation(), {turned(axes[0]), turned(axes[1]), turned(axes[2])}, extents};
}

ZuBoxPair::ZuBoxPair(ZuPlainBox const& box1, ZuPlainBox const& box2)
    : m_Origin(box1.center),
      m_Axes{box1.axes[0], box1.axes[1], box1.axes[2]},
      m_A{box1.extents.x(), box1.extents.y(), box1.extents.z()},
      m_B{box2.extents.x(), box2.extents.y(), box2.extents.z()} {
  ZuVector const between = box2.center - box1.center;
  for (unsigned int i = 0; i < 3; ++i) {
    m_C[i] = m_Axes[i].dot(between);
    for (unsigned int j = 0; j < 3; ++j) {
      m_R[i][j] = m_Axes[i].dot(box2.axes[j]);
      m_AbsR[i][j] = std::abs(m_R[i][j]);
    }
  }
  double const size = m_A[0] + m_A[1] + m_A[2] + m_B[0] + m_B[1] + m_B[2];
  m_Rounding = theRounding * (size + std::abs(m_C[0]) + std::abs(m_C[1]) + std::abs(m_C[2]));
}

double ZuBoxPair::overlapOnAxisOf1(unsigned int i) const {
  return m_A[i] + (m_B[0] * m_AbsR[i][0] + m_B[1] * m_AbsR[i][1] + m_B[2] * m_AbsR[i][2]) - std::abs(m_C[i]);
}

double ZuBoxPair::overlapOnAxisOf2(unsigned int j) const {
  return m_B[j] + (m_A[0] * m_AbsR[0][j] + m_A[1] * m_AbsR[1][j] + m_A[2] * m_AbsR[2][j]) -
         std::abs(m_C[0] * m_R[0][j] + m_C[1] * m_R[1][j] + m_C[2] * m_R[2][j]);
}

/// Axis i of box 1 times axis j of box 2, in the frame of box 1.
ZuVector ZuBoxPair::product(unsigned int i, unsigned int j) const {
  ZuVector const u = column(j);
  return i == 0 ? ZuVector(0.0, -u.z(), u.y()) : i == 1 ? ZuVector(u.z(), 0.0, -u.x()) : ZuVector(-u.y(), u.x(), 0.0);
}

/// On the product as it is, which is no unit vector. (a_i x b_j).b_k is, but for its sign, a_i.b_l for the third axis
/// l.
double ZuBoxPair::productOverlap(unsigned int i, unsigned int j) const {
  unsigned int const i1 = theNext[i], i2 = theLast[i], j1 = theNext[j], j2 = theLast[j];
  return m_A[i1] * m_AbsR[i2][j] + m_A[i2] * m_AbsR[i1][j] + m_B[j1] * m_AbsR[i][j2] + m_B[j2] * m_AbsR[i][j1] -
         std::abs(m_C[i2] * m_R[i1][j] - m_C[i1] * m_R[i2][j]);
}

double ZuBoxPair::overlapAlong(ZuVector const& unit) const {
  double sum = -std::abs(m_C[0] * unit.x() + m_C[1] * unit.y() + m_C[2] * unit.z());
  sum += m_A[0] * std::abs(unit.x()) + m_A[1] * std::abs(unit.y()) + m_A[2] * std::abs(unit.z());
  for (unsigned int j = 0; j < 3; ++j) sum += m_B[j] * std::abs(projectionOn2(unit, j));
  return sum;
}

bool ZuBoxPair::touches() const {
  for (unsigned int i = 0; i < 3; ++i) {
    if (overlapOnAxisOf1(i) < 0.0) return false;
  }
  for (unsigned int j = 0; j < 3; ++j) {
    if (overlapOnAxisOf2(j) < 0.0) return false;
  }
  for (unsigned int i = 0; i < 3; ++i) {
    for (unsigned int j = 0; j < 3; ++j) {
      if (productOverlap(i, j) < 0.0 && overlapAlong(product(i, j).unitVector()) < 0.0) return false;
    }
  }
  return true;
}

/// From the corner of box 2 that comes first in the direction from box 1 to box 2.
ZuBoxPair::Way ZuBoxPair::fromCornerOf2(ZuVector const& towards2) const {
  double const s0 = std::copysign(m_B[0], projectionOn2(towards2, 0));
  double const s1 = std::copysign(m_B[1], projectionOn2(towards2, 1));
  double const s2 = std::copysign(m_B[2], projectionOn2(towards2, 2));
  ZuVector const corner = ZuVector(m_C[0], m_C[1], m_C[2]) - column(0) * s0 - column(1) * s1 - column(2) * s2;
  ZuVector const nearest = clamped(corner, m_A);
  ZuVector const gap = corner - nearest;
  return {nearest, gap, gap.magSquared()};
}

/// The same for the last corner of box 1.
ZuBoxPair::Way ZuBoxPair::fromCornerOf1(ZuVector const& towards2) const {
  ZuVector const corner(std::copysign(m_A[0], towards2.x()), std::copysign(m_A[1], towards2.y()),
                        std::copysign(m_A[2], towards2.z()));
  ZuVector const w = corner - ZuVector(m_C[0], m_C[1], m_C[2]);
  ZuVector const inBox2(projectionOn2(w, 0), projectionOn2(w, 1), projectionOn2(w, 2));
  ZuVector const gap = clamped(inBox2, m_B) - inBox2;
  return {corner, column(0) * gap.x() + column(1) * gap.y() + column(2) * gap.z(), gap.magSquared()};
}

/// Follows the directions in which the boxes see each other's corners: most pairs are settled by it.
/// @return whether the way is the shortest; it need not be one of the two boxes otherwise
bool ZuBoxPair::guess(Way& best) const {
  ZuVector const center(m_C[0], m_C[1], m_C[2]);
  best.gap = center - clamped(center, m_A);
  for (unsigned int step = 0; step < theGuesses; ++step) {
    Way const way2 = fromCornerOf2(best.gap);
    Way const way1 = fromCornerOf1(best.gap);
    best = way2.squared < way1.squared ? way2 : way1;
    if (best.squared == 0.0 || isShortest(best)) return true;
  }
  return false;
}

ZuBoxPair::Way ZuBoxPair::fromCornersOf2() const {
  double halfEdges[3][3];
  for (unsigned int i = 0; i < 3; ++i) {
    for (unsigned int j = 0; j < 3; ++j) halfEdges[i][j] = m_R[i][j] * m_B[j];
  }
  Corners const corners(m_C, halfEdges);
  ZuVector const corner = corners.at(corners.nearestTo(m_A));
  ZuVector const nearest = clamped(corner, m_A);
  ZuVector const gap = corner - nearest;
  return {nearest, gap, gap.magSquared()};
}

ZuBoxPair::Way ZuBoxPair::fromCornersOf1() const {
  double center[3];
  double halfEdges[3][3];
  for (unsigned int j = 0; j < 3; ++j) {
    center[j] = -(m_C[0] * m_R[0][j] + m_C[1] * m_R[1][j] + m_C[2] * m_R[2][j]);
    for (unsigned int i = 0; i < 3; ++i) halfEdges[j][i] = m_R[i][j] * m_A[i];
  }
  Corners const corners(center, halfEdges);
  unsigned int const k = corners.nearestTo(m_B);
  ZuVector const gap = clamped(corners.at(k), m_B) - corners.at(k);
  return {cornerOf(m_A, k), column(0) * gap.x() + column(1) * gap.y() + column(2) * gap.z(), gap.magSquared()};
}

/// Two edges whose inner points are nearest have the direction of their product as a separating one, and their distance
/// is the gap along it. No gap is more than the distance, so only the widest of the nine can be it.
void ZuBoxPair::considerEdges(Way& best) const {
  double widest = 0.0;  // a gap on a product as it is, and the squared length of that
  double length = 1.0;
  unsigned int pair = 0;
  for (unsigned int i = 0; i < 3; ++i) {
    for (unsigned int j = 0; j < 3; ++j) {
      double const gap = -productOverlap(i, j) - m_Rounding;
      double const squared = squaredSine(i, j);
      bool const isWider = gap > 0.0 && gap * gap * length > widest * widest * squared;
      widest = isWider ? gap : widest;
      length = isWider ? squared : length;
      pair = isWider ? 3 * i + j : pair;
    }
  }
  if (widest > 0.0) considerEdgePair(pair / 3 % 3, pair % 3, best);
}

void ZuBoxPair::considerEdgePair(unsigned int i, unsigned int j, Way& best) const {
  unsigned int const i1 = theNext[i], i2 = theLast[i], j1 = theNext[j], j2 = theLast[j];
  ZuVector n = product(i, j);
  ZuVector const center(m_C[0], m_C[1], m_C[2]);
  double const sign = n.dot(center) < 0.0 ? -1.0 : 1.0;  // towards box 2
  n *= sign;
  double middle[3] = {};
  middle[i1] = std::copysign(m_A[i1], -sign * m_R[i2][j]);
  middle[i2] = std::copysign(m_A[i2], sign * m_R[i1][j]);
  ZuVector const start(middle[0], middle[1], middle[2]);
  double axis[3] = {};
  axis[i] = 1.0;
  ZuVector const along(axis[0], axis[1], axis[2]);
  ZuVector const u = column(j);
  ZuVector const w = center + column(j1) * std::copysign(m_B[j1], -sign * m_R[i][j2]) +
                     column(j2) * std::copysign(m_B[j2], sign * m_R[i][j1]) - start;
  double const squared = squaredSine(i, j);
  double const s = sign * w.dot(u.cross(n)) / squared;
  double const t = sign * w.dot(along.cross(n)) / squared;
  if (!(std::abs(s) <= m_A[i] && std::abs(t) <= m_B[j])) return;
  ZuVector const gap = squared > theWellConditioned ? n * (w.dot(n) / squared) : w + u * t - along * s;
  if (gap.magSquared() < best.squared) best = {start + along * s, gap, gap.magSquared()};
}

/// Every edge of one with every edge of the other.
void ZuBoxPair::considerAllEdges(Way& best) const {
  ZuVector const center(m_C[0], m_C[1], m_C[2]);
  ZuVector const halfEdges2[3] = {column(0) * m_B[0], column(1) * m_B[1], column(2) * m_B[2]};
  for (unsigned int code = 0; code < 144; ++code) {
    unsigned int const i = code / 48, j = code / 16 % 3, i1 = theNext[i], i2 = theLast[i];
    double end[3];
    end[i] = -m_A[i];
    end[i1] = (code & 1U) != 0 ? m_A[i1] : -m_A[i1];
    end[i2] = (code & 2U) != 0 ? m_A[i2] : -m_A[i2];
    ZuVector const end0(end[0], end[1], end[2]);
    end[i] = m_A[i];
    ZuVector const end1(end[0], end[1], end[2]);
    ZuVector const middle = center + halfEdges2[theNext[j]] * ((code & 4U) != 0 ? 1.0 : -1.0) +
                            halfEdges2[theLast[j]] * ((code & 8U) != 0 ? 1.0 : -1.0);
    ZuNearestPair const nearest = zuNearestPair(
        ZuPlainSegment::between(end0, end1), ZuPlainSegment::between(middle - halfEdges2[j], middle + halfEdges2[j]));
    if (nearest.distanceSquared() < best.squared) {
      best = {nearest.first, nearest.second - nearest.first, nearest.distanceSquared()};
    }
  }
}

/// Two convex sets are as far apart as their gap along the way between two of their points only if these are nearest.
bool ZuBoxPair::isShortest(Way const& way) const {
  ZuVector const& v = way.gap;
  double gap = m_C[0] * v.x() + m_C[1] * v.y() + m_C[2] * v.z();
  gap -= m_A[0] * std::abs(v.x()) + m_A[1] * std::abs(v.y()) + m_A[2] * std::abs(v.z());
  for (unsigned int j = 0; j < 3; ++j) gap -= m_B[j] * std::abs(projectionOn2(v, j));
  return gap >= way.squared - m_Rounding * std::sqrt(way.squared);
}

/// Of two boxes that are apart, the nearest points include a corner of one of them, or are inner points of two edges
/// that are not parallel. Which edges these are follows from the signs of the rotation matrix, unless an edge is
/// parallel to a face, where a sign is one of rounding. So the result is checked, and in the few cases where it fails
/// all pairs of edges are tried.
ZuBoxPair::Way ZuBoxPair::shortestWay() const {
  Way best{};
  if (guess(best)) return best;
  considerEdges(best);
  if (isShortest(best)) return best;
  for (Way const& way : {fromCornersOf1(), fromCornersOf2()}) {
    if (way.squared < best.squared) best = way;
  }
  if (best.squared == 0.0 || isShortest(best)) return best;
  if (touches()) return {best.start, ZuVector(), 0.0};
  considerAllEdges(best);
  return best;
}

double ZuBoxPair::distance() const { return std::sqrt(shortestWay().squared); }

ZuBoxPair::Depth ZuBoxPair::depth() const {
  Depth least{HUGE_VAL, ZuVector()};
  for (unsigned int i = 0; i < 3; ++i) {
    double const overlap = overlapOnAxisOf1(i);
    if (!(overlap < least.overlap)) continue;
    least = {overlap, ZuVector()};
    least.direction[i] = m_C[i] < 0.0 ? -1.0 : 1.0;
  }
  ZuVector const center(m_C[0], m_C[1], m_C[2]);
  auto const towards2 = [&center](ZuVector const& v) { return v.dot(center) < 0.0 ? -v : v; };
  double const noise = m_Rounding;  // an axis of a box is the better one of equals: it is exact
  for (unsigned int j = 0; j < 3; ++j) {
    double const overlap = overlapOnAxisOf2(j);
    if (overlap < least.overlap - noise) least = {overlap, towards2(column(j))};
  }
  for (unsigned int i = 0; i < 3; ++i) {
    for (unsigned int j = 0; j < 3; ++j) {
      ZuVector const n = product(i, j);
      double const square = n.magSquared(), ofProduct = productOverlap(i, j);
      if (!(square > theZuParallelSine * theZuParallelSine)) continue;
      // Squares with their signs, instead of a root.
      if (!(ofProduct * std::abs(ofProduct) < least.overlap * std::abs(least.overlap) * square)) continue;
      ZuVector const unit = n.unitVector();
      double const overlap = overlapAlong(unit);  // again, without the error of a short product
      if (overlap < least.overlap - noise) least = {overlap, towards2(unit)};
    }
  }
  return least;
}

ZuSeparation ZuBoxPair::separation() const {
  Depth const depth = this->depth();
  if (depth.overlap < 0.0) {
    Way const way = shortestWay();
    double const distance = std::sqrt(way.squared);
    if (distance > 0.0) {
      ZuVector const start = m_Origin + toWorld(way.start);
      ZuVector const gap = toWorld(way.gap);
      return {distance, gap.unitVector(), start, start + gap};
    }
  }
  // Moved out by the depth the two touch; moved on in the same direction, they still have the same nearest points, and
  // those are well defined.
  double const overlap = std::max(depth.overlap, 0.0);
  double const clearance = m_Rounding > 0.0 ? m_Rounding / theRounding * theClearance : 1.0;
  ZuBoxPair moved(*this);
  for (unsigned int i = 0; i < 3; ++i) moved.m_C[i] += (overlap + clearance) * depth.direction[i];
  Way const way = moved.shortestWay();
  ZuVector const start = m_Origin + toWorld(way.start);
  ZuVector const direction = toWorld(depth.direction);
  return {-overlap, direction, start, start + toWorld(way.gap) - direction * (overlap + clearance)};
}
