#include "geometry/zuRobustGjk.h"

#include <cmath>

#include "foundation/zuPrint.h"
#include "geometry/zuBoxPairPrivate.h"
#include "geometry/zuDepthPolytopePrivate.h"
#include "geometry/zuShape.h"
#include "geometry/zuSphere.h"

namespace {

/// Gap of a distance and its lower bound at which an iteration ends, as a part of the size of the set: a nearest point
/// of a curved solid is then off by 1e-7 of its size. Larger, it is off by more; smaller, the gap is all rounding.
constexpr double theDistanceTolerance = 1e-14;
/// The same of a depth. After 256 expansions 200 times, after 1024 2000 times as much will do.
constexpr double theDepthTolerance = 1e-10;
/// Expansions of a polytope, beyond the thousands that two coaxial cylinders take.
constexpr unsigned int theMostExpansions = 2048;
/// Rounding of a difference point, as a part of the largest number that goes into it: two turns and sums. The origin is
/// inside at a distance of this. Smaller, the iteration chases its own rounding.
constexpr double theRounding = 8.0 * 0x1p-52;
/// A distance that is less than this part of the largest numbers is 0 for cores that are too thin to have a depth.
constexpr double theThin = 1e-9;
/// Vectors of the set that are longer than this part of its largest numbers have a direction, to 1e-6.
constexpr double theStraightLength = 1e-9;
/// Steps of an iteration; polytopes take 5 to 20, curved solids up to 60.
constexpr int theMostSteps = 256;
/// How often an iteration may start again from the mean of its simplex.
constexpr int theMostRecoveries = 32;

bool isFinite(ZuVector const& v) { return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z()); }
/// Of all at once: what is not finite is not 0 when multiplied by it.
bool isFinite(ZuVector const& a, ZuVector const& b, ZuVector const& c, double d) {
  ZuVector const sum = a * 0.0 + b * 0.0 + c * 0.0;
  return sum.x() + sum.y() + sum.z() + d * 0.0 == 0.0;
}

/// A power of two that brings the numbers of a pair to about 1; 0 when one of them is not finite, or all are 0.
double scaleOf(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
               ZuCoordinateSystemTransformation const& T2) {
  double most = 0.0;
  auto const consider = [&most](ZuVector const& v) {
    for (double const x : {v.x(), v.y(), v.z()}) {
      if (!(std::abs(x) <= most)) most = std::abs(x);
    }
  };
  consider(T1.translation());
  consider(T2.translation());
  for (ZuShape const* shape : {&shape1, &shape2}) {
    for (double const sign : {1.0, -1.0}) {
      for (unsigned int axis = 0; axis < 3; ++axis) {
        ZuVector direction;
        direction[axis] = sign;
        consider(shape->computeSupportPoint(direction));
      }
    }
  }
  return most > 0.0 && std::isfinite(most) ? std::ldexp(1.0, -std::ilogb(most)) : 0.0;
}

}  // namespace

/// The result of a query in the frame of core 1: a point of the difference set of the cores, and the unit vector along
/// which the separation vector lies, from shape 2 to shape 1 when they are apart.
struct ZuRobustGJK::Answer {
  ZuCorePoint point;
  ZuVector normal;
  double distance = 0.0;  ///< signed, of the solids
};

/// The distance iteration.
///
/// Invariants: v is the point nearest to the origin of a simplex of difference points; `m_Bound`, the largest v . w /
/// |v| over all steps, is a lower bound of the distance, since the plane through the support point w at a right angle
/// to v has the set behind it. Each step makes |v| smaller, or ends the iteration.
class ZuRobustGJK::Iteration {
 public:
  Iteration(ZuCoreDifference& set, double tolerance) : m_Set(set), m_Tolerance(tolerance) {}

  /// Starts again, from the nearest point found, where rounding left no proof: the simplex has become slim then, and
  /// one of new points, in nearly the right direction, is better.
  void run(ZuVector const& start) {
    runOnce(start);
    for (int i = 0; i < theMostStarts && !m_Overlaps && !isCertified(); ++i) {
      ZuCorePoint const before = m_Result;
      runOnce(before.y);
      if (!m_Overlaps && before.y.magSquared() < m_Result.y.magSquared()) m_Result = before;
    }
    // So near that the polytope has to tell.
    double const length = m_Result.y.mag(), extent = m_Set.extent();
    double const doubtful = length - m_Bound > theDoubtfulGap * extent ? theDoubtful : theGraze;
    if (!isCertified() && length <= doubtful * extent) m_Overlaps = true;
  }
  bool overlaps() const { return m_Overlaps; }
  /// Distances up to this are rounding, m.
  double rounding() const { return theSlack * band(); }
  ZuCoreSimplex const& simplex() const { return m_Simplex; }
  /// The nearest point; of an overlap, one within rounding of the origin.
  ZuCorePoint const& result() const { return m_Result; }

 private:
  void runOnce(ZuVector const& start) {
    m_V = start.unitVector();
    if (m_V == ZuVector()) m_V = ZuVector::xVector(1.0);
    ZuCorePoint first;
    m_Set.support(-m_V, first);
    m_Bound = std::max(m_Bound, m_V.dot(first.y));
    m_First = m_V = first.y;
    m_Simplex.take(first);
    m_Square = m_V.magSquared();
    m_Overlaps = !(m_Square > noise() * noise());
    m_IsDone = m_IsMean = false;
    m_Recoveries = 0;
    int steps = 1;
    do {
      while (steps < theMostSteps && !m_Overlaps && step()) ++steps;
    } while (m_Overlaps && !isProven());
    if (!m_IsDone) m_Result = m_Simplex.mean();
  }
  bool isCertified() const { return m_Result.y.mag() - m_Bound <= theSlack * band(); }
  double noise() const { return theRounding * m_Set.extent(); }
  double band() const { return m_Tolerance * m_Size + noise(); }

  bool step() {
    ZuCorePoint& w = m_Simplex.freePoint();
    m_Set.support(-m_V, w);
    double const length = std::sqrt(m_Square);
    m_Bound = std::max(m_Bound, m_V.dot(w.y) / length);
    if (length - m_Bound <= band()) return certify(w);
    ZuVector const away = w.y - m_First;
    m_Size = std::max(m_Size, std::max(std::abs(away.x()), std::max(std::abs(away.y()), std::abs(away.z()))));
    if (m_Simplex.isRepeated()) return recover(w);
    ZuCoreSimplex::Nearest nearest = m_Simplex.nearest();
    if (nearest.count == 4 && m_Bound > noise()) nearest.square = m_Square;  // proven apart: rounding
    if (!(nearest.square < m_Square)) nearest = m_Simplex.nearestByTrial();
    if (!(nearest.square < m_Square)) return recover(w);
    takeNearest(nearest);
    return true;
  }
  void takeNearest(ZuCoreSimplex::Nearest const& nearest) {
    m_Simplex.take(nearest);
    m_V = nearest.v;
    m_Square = nearest.square;
    m_IsMean = false;
    m_Overlaps = !(m_Square > noise() * noise());
  }

  /// Sets the result to the mean of the simplex, or of a face of it, and tells whether it is as near as the least
  /// distance allows. The mean is a point of the set for sure; what a slim simplex says of its nearest point may be
  /// off.
  bool meanIsWithin(double least) {
    m_IsDone = true;
    double nearest = std::numeric_limits<double>::infinity();
    for (;;) {
      for (int i = 0; i < theRefinements; ++i) {
        ZuCorePoint const mean = m_Simplex.mean();
        double const length = mean.y.mag();
        if (!(length >= nearest)) m_Result = mean;
        nearest = std::min(nearest, length);
        if (length - least <= theSlack * band()) return true;
        m_Simplex.refine();
      }
      ZuCoreSimplex::Nearest const ofBoundary = m_Simplex.nearestOfBoundary();
      if (ofBoundary.count == 0) return false;
      m_Simplex.take(ofBoundary);
    }
  }
  bool certify(ZuCorePoint const& w) { return !meanIsWithin(m_Bound) && recover(w); }
  /// The same for an origin that is said to be inside; goes on from the mean if it is not.
  bool isProven() {
    if (meanIsWithin(0.0)) return true;
    ++m_Recoveries;
    goOnFromMean();
    m_IsDone = m_Recoveries > theMostRecoveries;
    return m_IsDone;
  }
  /// Goes on from the segment of the mean and the support point w, which holds a nearer point than the mean if w is one
  /// for it too; otherwise from the mean alone, unless that is where it came from: then rounding has the last word.
  bool recover(ZuCorePoint const& newest) {
    ZuCorePoint const w = newest;
    if (meanIsWithin(m_Bound)) return false;
    bool const wasMean = m_IsMean;
    ++m_Recoveries;
    goOnFromMean();
    m_Simplex.freePoint() = w;
    ZuCoreSimplex::Nearest const nearest = m_Simplex.nearest();
    bool const isNearer = nearest.square < m_Square;
    m_IsDone = (!isNearer && wasMean) || m_Recoveries > theMostRecoveries;
    if (isNearer && !m_IsDone) takeNearest(nearest);
    return !m_IsDone;
  }
  void goOnFromMean() {
    if (m_Recoveries > 1 && m_Best.y.magSquared() < m_Result.y.magSquared()) m_Result = m_Best;
    m_Best = m_Result;
    m_Simplex.take(m_Result);
    m_V = m_Result.y;
    m_Square = m_V.magSquared();
    m_IsMean = true;
    m_Overlaps = m_IsDone = false;
  }

  static constexpr int theMostStarts = 3;
  /// How often a mean is corrected.
  static constexpr int theRefinements = 3;
  /// Distances without proof that are less than this part of the largest numbers, or than the other when the gap of
  /// their bounds is wide, a part of the same numbers, are for the polytope to judge.
  static constexpr double theGraze = 1e-9, theDoubtful = 1e-6, theDoubtfulGap = 2e-10;
  /// How much wider than the band a gap may be that rounding leaves.
  static constexpr double theSlack = 4.0;

  ZuCoreDifference& m_Set;
  ZuCoreSimplex m_Simplex;
  ZuCorePoint m_Result, m_Best;
  ZuVector m_V, m_First;
  double m_Tolerance, m_Square = 0.0;
  double m_Bound = -std::numeric_limits<double>::infinity();  ///< of the distance, from below
  double m_Size = 0.0;                                        ///< of the set, as far as it was seen
  int m_Recoveries = 0;
  bool m_Overlaps = false, m_IsDone = false;
  bool m_IsMean = false;  ///< the simplex is one point, the mean of an earlier one
};

ZuRobustGJK::ZuRobustGJK() {
  m_Tolerance = theDistanceTolerance;
  m_MaxIterations = theMostExpansions;
}
ZuRobustGJK::ZuRobustGJK(ZuRobustGJK const& other) : ZuGJK(other), m_DepthGap(other.m_DepthGap) {}
ZuRobustGJK& ZuRobustGJK::operator=(ZuRobustGJK const& other) {
  ZuGJK::operator=(other);
  m_DepthGap = other.m_DepthGap;
  return *this;
}
ZuRobustGJK::~ZuRobustGJK() = default;

bool ZuRobustGJK::operator==(ZuGJK const& other) const {
  auto const* const robust = dynamic_cast<ZuRobustGJK const*>(&other);
  return robust != nullptr && ZuGJK::operator==(other) && m_DepthGap == robust->m_DepthGap;
}

std::unique_ptr<ZuGJK> ZuRobustGJK::clone() const { return std::make_unique<ZuRobustGJK>(*this); }

void ZuRobustGJK::resetPenetration() {
  ZuGJK::resetPenetration();
  m_Polytope.reset();
}

bool ZuRobustGJK::validateDepthPolytope() const { return m_Polytope == nullptr || m_Polytope->isValid(); }

bool ZuRobustGJK::distance(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                           ZuCoordinateSystemTransformation const& T2, bool computePenetration, ZuVector& witness1,
                           ZuVector& witness2, double& distance, ZuVector* separation) {
  double scale = 1.0;
  for (int attempt = 0; attempt < 2 && scale != 0.0; ++attempt) {
    ZuCoreDifference set(shape1, shape2, T1, T2, scale);
    Answer answer;
    if (query(set, separation, computePenetration, answer)) {
      double const r1 = set.radius1(), r2 = set.radius2(), core = answer.distance + (r1 + r2);
      bool const isCommon = !(answer.distance > 0.0) && !computePenetration;
      // Without a depth, what lies between the cores is shared out by the radii.
      double const share = isCommon ? (r1 + r2 > 0.0 ? core / (r1 + r2) : 0.0) : 1.0;
      witness1 = set.witness1(answer.point.p, answer.normal, -share * r1);
      witness2 = set.witness2(answer.point.q, answer.normal, share * r2);
      ZuVector const vector = set.inWorld(answer.point.y - answer.normal * (r1 + r2));
      distance = isCommon ? 0.0 : answer.distance / scale;
      if (isFinite(witness1, witness2, vector, distance)) {
        if (separation != nullptr) *separation = isCommon ? ZuVector() : vector;
        noteConvexity(shape1, shape2);
        return true;
      }
    }
    scale = attempt == 0 ? scaleOf(shape1, shape2, T1, T2) : 0.0;
  }
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuRobustGJK::distance-->not a finite number (distance %g)", distance);
  distance = 0.0;
  witness1 = witness2 = ZuVector();
  if (separation != nullptr) *separation = ZuVector();
  return true;
}

/// False when the numbers leave the range in which their products are doubles.
bool ZuRobustGJK::query(ZuCoreDifference& set, ZuVector const* start, bool computePenetration, Answer& answer) {
  m_DepthGap = 0.0;
  double const radii = set.radius1() + set.radius2();
  if (computePenetration && set.areBoxesDeepInEachOther() && findBoxDepth(set, answer)) return set.isInRange();
  bool const hasStart = start != nullptr && *start != ZuVector() && isFinite(*start);
  ZuVector const v = hasStart ? set.fromWorld(*start) : set.betweenCenters();
  Iteration iteration(set, m_Tolerance);
  iteration.run(v);
  answer.point = iteration.result();
  if (iteration.overlaps()) {
    if (computePenetration) return findDepth(set, iteration, answer);
    // What the iteration only suspects to overlap, the polytope judges.
    Answer judged;
    if (answer.point.y.mag() > theThin * set.extent() && findDepth(set, iteration, judged) &&
        judged.distance + radii > 0.0) {
      answer = judged;
    }
    return set.isInRange();
  }
  double const length = answer.point.y.mag();
  answer.normal = answer.point.y * (1.0 / length);
  answer.distance = length - radii;
  return set.isInRange() && std::isfinite(answer.distance);
}

/// Sets the answer for cores that overlap. When the polytope proves that they don't, the iteration starts again, where
/// it was proven.
bool ZuRobustGJK::findDepth(ZuCoreDifference& set, Iteration& iteration, Answer& answer) {
  if (findBoxDepth(set, answer)) return set.isInRange();
  double const radii = set.radius1() + set.radius2();
  if (!m_Polytope) m_Polytope = std::make_unique<ZuDepthPolytope>();
  ZuDepthPolytope::Depth depth;
  ZuDepthPolytope::Outcome const outcome =
      m_Polytope->search(set, iteration.simplex(), std::max(theDepthTolerance, m_Tolerance), m_MaxIterations, depth);
  if (!set.isInRange()) return false;
  answer.normal = -depth.normal;
  if (outcome == ZuDepthPolytope::FOUND) {
    answer.point = depth.nearest;
    // Where the nearest point was not proven to be one, it need not be at a right angle to its facet.
    double const length = depth.nearest.y.mag();
    if (length > theStraightLength * set.extent()) answer.normal = depth.nearest.y * (-1.0 / length);
    answer.distance = std::min(answer.normal.dot(depth.nearest.y), 0.0) - radii;
    m_DepthGap = std::max(0.0, depth.upper - depth.lower);
    return true;
  }
  // Apart after all, or too thin for a depth: what the iteration found stands, unless that was a common point.
  Iteration again(set, m_Tolerance);
  if (outcome == ZuDepthPolytope::APART) again.run(answer.normal);
  Iteration const& found = outcome == ZuDepthPolytope::APART && !again.overlaps() ? again : iteration;
  answer.point = found.result();
  double const length = answer.point.y.mag();
  bool const isApart = length > (outcome == ZuDepthPolytope::APART ? found.rounding() : theThin * set.extent());
  if (isApart) answer.normal = answer.point.y * (1.0 / length);
  answer.distance = (isApart ? length : 0.0) - radii;
  return set.isInRange();
}

/// Of cores that are boxes, flat or not, in closed form; false for others.
bool ZuRobustGJK::findBoxDepth(ZuCoreDifference const& set, Answer& answer) const {
  ZuPlainBox box1, box2;
  if (!set.areBoxes(box1, box2)) return false;
  ZuSeparation const found = ZuBoxPair(box1, box2).separation();
  answer.normal = -found.direction;
  answer.point = {answer.normal * found.distance, found.point1, set.inCore2(found.point2)};
  answer.distance = found.distance - (set.radius1() + set.radius2());
  return true;
}

bool ZuRobustGJK::penetration(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                              ZuCoordinateSystemTransformation const& T2, ZuVector& witness1, ZuVector& witness2,
                              ZuVector& penetrationVector) {
  ZuVector first, second, vector;
  double found = 0.0;
  distance(shape1, shape2, T1, T2, true, first, second, found, &vector);
  if (found > 0.0) return false;
  witness1 = first;
  witness2 = second;
  penetrationVector = vector;
  return true;
}

bool ZuRobustGJK::selfTest() const {
  constexpr double theAllowed = 1e-12;  // m, of distances of about a metre
  ZuRobustGJK engine(*this);
  ZuSphere const ball(ZuVector(), 0.5, 0);
  bool isGood = true;
  for (double const x : {3.0, 0.75, 0.0}) {
    ZuVector witness1, witness2, separation;
    double found = 0.0;
    engine.distance(ball, ball, ZuCoordinateSystemTransformation(),
                    ZuCoordinateSystemTransformation(ZuVector(x, 0.0, 0.0)), true, witness1, witness2, found,
                    &separation);
    isGood =
        isGood && std::abs(found - (x - 1.0)) < theAllowed && std::abs(separation.mag() - std::abs(found)) < theAllowed;
  }
  return isGood && ZuGJK::selfTest();
}
