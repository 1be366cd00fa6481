#include "geometry/zuGjk.h"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "foundation/zuPrint.h"
#include "geometry/zuDifferenceSet.h"
#include "geometry/zuShape.h"
#include "geometry/zuSimplexPrivate.h"

namespace {

/// m. The iteration ends at this distance: the origin is in the difference set as far as doubles tell for bodies of
/// about a metre. Larger, depths near 0 suffer; smaller, the iteration chases its own rounding.
constexpr double theContactDistance = 1e-10;
/// m. Above it, a nearest point that no longer moves ends the iteration; below it, only the distance decides.
constexpr double theStandstillDistance = 1e-8;
/// m. A distance that grows from below this one stands for contact: rounding of a simplex around the origin.
constexpr double theTrustedDistance = 1e-4;
/// Weights not above it count as 0: of sum 1 for three or four points, m^2 for one or two.
constexpr double theSmallestWeight = 1e-9;
/// m. Start of the sequences of distances and of nearest points: farther than anything.
constexpr double theFirstDistance = 1e20, theFirstCoordinate = 1e12;
/// m. Largest disturbance of a starting vector.
constexpr double theDisturbance = 0.01;
/// How often in a row the distance may stay exactly the same. It never grows, so this bounds the iteration; the
/// vertices of one face of a polytope can give the same distance a few times.
constexpr unsigned int theLongestStandstill = 64;

std::atomic<bool> theOnlyConvexShapes{true};

using ZuSimplex::holds;

/// The mean of the set's points by their weights.
ZuVector weightedMean(int set, double const weights[4], ZuVector const points[4]) {
  double sum = 0.0;
  ZuVector mean;
  for (int i = 0; i < 4; ++i) {
    if (!holds(set, i)) continue;
    sum += weights[i];
    mean += points[i] * weights[i];
  }
  if (sum != 0.0) return mean / sum;
  double const ones[4] = {1.0, 1.0, 1.0, 1.0};
  return (set & 15) == 0 ? ZuVector() : weightedMean(set, ones, points);
}

bool isFinite(ZuVector const& v) { return v * 0.0 == ZuVector(); }

/// The neutral answer, with a message.
void refuse(ZuVector& witness1, ZuVector& witness2, double& distance, ZuVector* separation) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuGJK::distance-->not a finite number (distance %g)", distance);
  distance = 0.0;
  witness1 = witness2 = ZuVector();
  if (separation != nullptr) *separation = ZuVector();
}

}  // namespace

/// What one distance iteration carries from step to step.
struct ZuGJK::Loop {
  ZuVector v;             ///< the nearest point so far, at first the starting vector
  double distance = 0.0;  ///< |v|
  double mu = 0.0;        ///< lower bound of the distance
  ZuVector previousV{theFirstCoordinate, theFirstCoordinate, theFirstCoordinate};
  double previousDistance = theFirstDistance;
  unsigned int standstill = 0;  ///< steps in a row without change of the distance
  bool startsOnPoint = false;   ///< the starting vector is a difference of points of the shapes, p and q
  ZuVector startP, startQ;
};

bool ZuGJK::Simplex::operator==(Simplex const& other) const {
  return std::equal(p, p + 4, other.p) && std::equal(q, q + 4, other.q) && std::equal(y, y + 4, other.y) &&
         bits == other.bits && last == other.last && lastBit == other.lastBit && allBits == other.allBits;
}

bool ZuGJK::operator==(ZuGJK const& other) const {
  return m_Simplex == other.m_Simplex && std::equal(*m_Det, *m_Det + 64, *other.m_Det) &&
         std::equal(*m_Dp, *m_Dp + 16, *other.m_Dp) && m_Facets == other.m_Facets && m_Neighbors == other.m_Neighbors &&
         m_PolytopeP == other.m_PolytopeP && m_PolytopeQ == other.m_PolytopeQ && m_PolytopeY == other.m_PolytopeY &&
         m_Tolerance == other.m_Tolerance && m_MaxIterations == other.m_MaxIterations &&
         m_FacetCapacity == other.m_FacetCapacity && m_PointCapacity == other.m_PointCapacity &&
         std::equal(m_Work, m_Work + 3, other.m_Work) && m_Saved == other.m_Saved;
}

bool ZuGJK::distance(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                     ZuCoordinateSystemTransformation const& T2, bool computePenetration, ZuVector& witness1,
                     ZuVector& witness2, double& distance, ZuVector* separation) {
  reset();
  if (m_Facets.capacity() == 0) resetPenetration();
  ZuDifferenceSet const set(shape1, shape2, T1, T2);
  Loop loop;
  loop.v = startVector(set, separation, loop);
  loop.distance = loop.v.mag();
  iterate(set, loop);
  if (m_Simplex.bits == 0) adoptStart(loop);
  distance = loop.distance;
  if (!std::isfinite(distance)) {
    refuse(witness1, witness2, distance, separation);
    return true;
  }
  bool const touching = distance <= m_Tolerance;
  ZuVector penetrationVector;
  if (touching && computePenetration && penetration(shape1, shape2, T1, T2, witness1, witness2, penetrationVector)) {
    distance = 0.0 - penetrationVector.mag();  // never -0
    if (separation != nullptr) *separation = penetrationVector;
  } else {
    pointsInLocal(m_Simplex.bits, witness1, witness2);
    if (separation != nullptr) *separation = loop.v;
  }
  // Weights are products of up to six lengths, which leave the doubles before the distance does.
  if (!isFinite(witness1) || !isFinite(witness2) || !isFinite(loop.v) || !isFinite(penetrationVector)) {
    refuse(witness1, witness2, distance, separation);
    return true;
  }
  if (touching && !computePenetration) {
    distance = 0.0;
    return true;
  }
  noteConvexity(shape1, shape2);
  return true;
}

ZuVector ZuGJK::startVector(ZuDifferenceSet const& set, ZuVector const* separation, Loop& loop) {
  if (separation != nullptr) {
    double const length = separation->mag();
    if (length > theContactDistance && std::isfinite(length)) {
      ZuVector start = *separation;
      start.perturb(theDisturbance);
      return start;
    }
  }
  set.support(ZuVector(), loop.startP, loop.startQ);
  loop.startsOnPoint = true;
  return set.difference(loop.startP, loop.startQ);
}

void ZuGJK::iterate(ZuDifferenceSet const& set, Loop& loop) {
  while (m_Simplex.bits < 15 && loop.distance > theContactDistance) {
    if (!addSupportPoint(set, loop)) return;
    if (m_Simplex.bits != 0) saveCache();
    if (!closestInUnion(loop.v) || !approach(loop)) return;
  }
}

/// Puts the support point into the first place outside the simplex. False when it ends the iteration instead.
bool ZuGJK::addSupportPoint(ZuDifferenceSet const& set, Loop& loop) {
  Simplex& s = m_Simplex;
  s.last = 0;
  s.lastBit = 1;
  while ((s.bits & s.lastBit) != 0) {
    s.lastBit <<= 1;
    ++s.last;
  }
  set.support(-loop.v, s.p[s.last], s.q[s.last]);
  ZuVector const w = set.difference(s.p[s.last], s.q[s.last]);
  loop.mu = std::max(loop.mu, loop.v.dot(w) / loop.distance);
  // A starting vector of the caller is no point of the set: its length bounds nothing.
  bool const isPoint = s.bits != 0 || loop.startsOnPoint;
  if (isPoint && loop.distance - loop.mu <= m_Tolerance * loop.distance) return false;
  if (repeatPoint(w)) return false;
  s.y[s.last] = w;
  s.allBits = s.lastBit | s.bits;
  return true;
}

/// Takes the new nearest point. False when it ends the iteration.
bool ZuGJK::approach(Loop& loop) {
  loop.distance = loop.v.mag();
  if (loop.distance > loop.previousDistance) {
    restoreFromCache();
    loop.v = loop.previousV;
    loop.distance = loop.previousDistance >= theTrustedDistance ? loop.previousDistance : m_Tolerance;
    return false;
  }
  double const moved = (loop.previousV - loop.v).magSquared();
  if (moved < m_Tolerance * m_Tolerance * loop.previousV.magSquared() && loop.distance > theStandstillDistance) {
    return false;
  }
  loop.standstill = loop.distance < loop.previousDistance ? 0 : loop.standstill + 1;
  loop.previousV = loop.v;
  loop.previousDistance = loop.distance;
  return loop.standstill <= theLongestStandstill;
}

/// Makes a simplex of one point when the iteration ended before the first one entered.
void ZuGJK::adoptStart(Loop const& loop) {
  Simplex& s = m_Simplex;
  s.last = 0;
  s.bits = s.allBits = s.lastBit = 1;
  if (loop.startsOnPoint) {
    s.p[0] = loop.startP;
    s.q[0] = loop.startQ;
    s.y[0] = loop.v;
  }
  m_Det[1][0] = 1.0;
}

void ZuGJK::noteConvexity(ZuShape const& shape1, ZuShape const& shape2) {
  if (theOnlyConvexShapes.load(std::memory_order_relaxed) && !(shape1.isConvex() && shape2.isConvex())) {
    theOnlyConvexShapes.store(false, std::memory_order_relaxed);
  }
}

bool ZuGJK::onlyConvexShapesSoFar() { return theOnlyConvexShapes.load(std::memory_order_relaxed); }

void ZuGJK::updateDotProduct() {
  int const last = m_Simplex.last;
  for (int i = 0; i < 4; ++i) {
    if (holds(m_Simplex.allBits, i)) m_Dp[i][last] = m_Dp[last][i] = m_Simplex.y[i].dot(m_Simplex.y[last]);
  }
}

void ZuGJK::updateSubDeterminants() {
  Simplex const& s = m_Simplex;
  ZuVector const& newest = s.y[s.last];
  m_Det[s.lastBit][s.last] = 1.0;
  int others[3];
  int count = 0;
  for (int i = 0; i < 4; ++i) {
    if (i != s.last && holds(s.allBits, i)) others[count++] = i;
  }
  for (int k = 0; k < count; ++k) {
    int const i = others[k], pair = s.lastBit | 1 << i;
    m_Work[k] = s.y[i] - newest;
    m_Det[pair][i] = -newest.dot(m_Work[k]);
    m_Det[pair][s.last] = s.y[i].dot(m_Work[k]);
  }
  for (int k = 1; k < count; ++k) {
    for (int j = 0; j < k; ++j) {
      double weights[3] = {0.0, 0.0, 0.0};
      ZuSimplex::triangleWeights(newest, m_Work[j], m_Work[k], m_Work[j].cross(m_Work[k]), weights);
      double* const row = m_Det[s.lastBit | 1 << others[j] | 1 << others[k]];
      row[others[j]] = weights[0];
      row[others[k]] = weights[1];
      row[s.last] = weights[2];
    }
  }
  if (count == 3) {
    double weights[4] = {0.0, 0.0, 0.0, 0.0};
    ZuSimplex::tetrahedronWeights(newest, m_Work, weights);
    for (int k = 0; k < 3; ++k) m_Det[15][others[k]] = weights[k];
    m_Det[15][s.last] = weights[3];
  }
}

bool ZuGJK::repeatPoint(ZuVector const& w) const {
  for (int i = 0; i < 4; ++i) {
    if (holds(m_Simplex.allBits, i) && m_Simplex.y[i] == w) return true;
  }
  return false;
}

bool ZuGJK::minConvex(int set) const {
  for (int i = 0; i < 4; ++i) {
    int const bit = 1 << i;
    if ((m_Simplex.allBits & bit) == 0) {
      if (m_Det[set | bit][i] > 0.0) return false;
    } else if ((set & bit) != 0) {
      if (!(m_Det[set][i] > theSmallestWeight)) return false;  // also nan
    }
  }
  return true;
}

/// Takes the set, and its nearest point as v, if minConvex() does.
bool ZuGJK::takeIfValid(int set, ZuVector& v) {
  if (!minConvex(set)) return false;
  m_Simplex.bits = set;
  closestPoint(static_cast<unsigned int>(set), v);
  return true;
}

bool ZuGJK::closestInUnion(ZuVector& v) {
  updateDotProduct();
  updateSubDeterminants();
  int const last = m_Simplex.lastBit;
  if ((m_Simplex.bits | last) == 15 && takeIfValid(15, v)) return true;
  int list[4];
  int n = 0;
  for (int i = 0; i < 4; ++i) {
    if (holds(m_Simplex.bits, i)) list[n++] = 1 << i;
  }
  for (int a = n - 1; a >= 1; --a) {
    for (int b = a - 1; b >= 0; --b) {
      if (takeIfValid(list[a] | list[b] | last, v)) return true;
    }
  }
  for (int a = n - 1; a >= 0; --a) {
    if (takeIfValid(list[a] | last, v)) return true;
  }
  return takeIfValid(last, v);
}

void ZuGJK::closestPoint(unsigned int set, ZuVector& v) const {
  v = weightedMean(static_cast<int>(set & 15U), m_Det[set & 15U], m_Simplex.y);
}

void ZuGJK::pointsInLocal(int set, ZuVector& a, ZuVector& b) const {
  a = weightedMean(set, m_Det[set & 15], m_Simplex.p);
  b = weightedMean(set, m_Det[set & 15], m_Simplex.q);
}

void ZuGJK::reset() {
  m_Simplex.bits = m_Simplex.last = m_Simplex.lastBit = m_Simplex.allBits = 0;
  std::fill(*m_Det, *m_Det + 64, 0.0);
  std::fill(*m_Dp, *m_Dp + 16, 0.0);
}

void ZuGJK::saveCache() { m_Saved = m_Simplex; }

void ZuGJK::restoreFromCache() { m_Simplex = m_Saved; }

std::unique_ptr<ZuGJK> ZuGJK::clone() const { return std::make_unique<ZuGJK>(*this); }
