#include "geometry/zuRobustGjk.h"

#include <cmath>

#include "foundation/zuPrint.h"
#include "geometry/zuBoxPairPrivate.h"
#include "geometry/zuDepthPolytopePrivate.h"
#include "geometry/zuPreciseSimplexPrivate.h"
#include "geometry/zuShape.h"
#include "geometry/zuSmoothStepPrivate.h"
#include "geometry/zuSphere.h"

namespace {

/// Gap of a distance and its lower bound at which an iteration ends, as a part of the size of the set: a nearest point
/// of a curved solid is then off by 1e-7 of its size. Larger, it is off by more; smaller, the gap is all rounding.
constexpr double theDistanceTolerance = 1e-14;
/// The same of a depth. After 256 expansions 200 times, after 1024 2000 times, after 2048 3000 times as much will do
/// for curved solids.
constexpr double theDepthTolerance = 1e-10;
/// Expansions of a polytope, beyond the 5000 that coaxial cylinders take, and the 7000 of hulls of 4096 vertices on
/// spheres about one centre.
constexpr unsigned int theMostExpansions = 16384;
/// Rounding of a difference point, as a part of the largest number that goes into it: two turns and sums. The origin is
/// inside at a distance of this. Smaller, the iteration chases its own rounding.
constexpr double theRounding = 8.0 * 0x1p-52;
/// How far aside of its normal the end of a depth may be, as a part of the size, where the normal has it.
constexpr double theSlant = 2e-10;
/// Steps of an iteration, in doubles and again in twice their digits; boxes and curved solids take 2 or 3, hulls up to
/// 20, curved shapes of unknown classes up to 60.
constexpr int theMostSteps = 256;

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
  return most > 0.0 && std::isfinite(most) ? std::ldexp(1.0, std::min(-std::ilogb(most), 1023)) : 0.0;
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
///
/// What it ends with is judged by the mean of the simplex, a point of the set for sure. Where that is not as near as
/// the bound allows, the simplex was too slim for doubles, and the iteration goes on in twice their digits.
class ZuRobustGJK::Iteration {
 public:
  /// @param result the nearest point, once it has run; of an overlap, the origin
  Iteration(ZuCoreDifference& set, double tolerance, ZuCorePoint& result)
      : m_Set(set), m_Result(result), m_Tolerance(tolerance) {}

  /// @param start where to start the search; null for the best guess
  void run(ZuVector const* start) {
    begin(start);
    for (int steps = 1; steps < theMostSteps && !m_Overlaps && step(); ++steps) {
    }
    m_Result = m_Simplex.mean();
    if (!isCertified()) goOnPrecisely();
    if (m_Square < theShort * theShort * m_Set.extent() * m_Set.extent()) straighten();
    if (m_Overlaps) m_Result.y = ZuVector();
  }
  bool overlaps() const { return m_Overlaps; }
  ZuCoreSimplex const& simplex() const { return m_Simplex; }

 private:
  void begin(ZuVector const* start) {
    ZuCorePoint first;
    if (!m_Set.nearPoint(first) || !(first.y.magSquared() > noise() * noise())) {
      m_V = (start != nullptr ? *start : m_Set.betweenCenters()).unitVector();
      if (m_V == ZuVector()) m_V = ZuVector::xVector(1.0);
      m_Set.support(-m_V, first);
      m_Bound = m_V.dot(first.y);
      m_Proven = m_V;
    }
    m_First = m_V = first.y;
    m_Simplex.take(first);
    m_Square = m_V.magSquared();
    m_Overlaps = !(m_Square > noise() * noise());
  }
  bool isCertified() const { return m_Result.y.mag() - (m_Overlaps ? 0.0 : m_Bound) <= theSlack * band(); }
  double noise() const { return theRounding * m_Set.extent(); }
  double band() const { return m_Tolerance * m_Size + noise(); }

  bool step() {
    ZuCorePoint& w = m_Simplex.freePoint();
    if (meetsBound(w, std::sqrt(m_Square)) || m_Simplex.isRepeated()) return false;
    ZuCoreSimplex::Nearest nearest = m_Simplex.nearest();
    bool const isImpossible = nearest.count == 4 && m_Bound > noise();  // proven apart: rounding
    if (isImpossible || !(nearest.square < m_Square)) return false;
    take(nearest);
    if (m_Set.hasCurvedFeatures() && ++m_Steps >= theFirstSmoothStep && !m_Overlaps &&
        ZuSmoothStep::move(m_Set, m_Simplex, m_Square, m_V, nearest)) {
      take(nearest);
    }
    return true;
  }
  void take(ZuCoreSimplex::Nearest const& nearest) {
    m_Simplex.take(nearest);
    m_V = nearest.v;
    m_Square = nearest.square;
    m_Overlaps = !(m_Square > noise() * noise());
  }
  /// Whether the support point proves that nothing is nearer than v, of the given length.
  bool meetsBound(ZuCorePoint& w, double length) {
    m_Set.support(-m_V, w);
    double const bound = m_V.dot(w.y) / length;
    if (bound > m_Bound) {
      m_Bound = bound;
      m_Proven = m_V;
    }
    ZuVector const away = w.y - m_First;
    m_Size = std::max(m_Size, std::max(std::abs(away.x()), std::max(std::abs(away.y()), std::abs(away.z()))));
    return length - m_Bound <= band();
  }
  void goOnPrecisely() {
    ZuPreciseSimplex simplex(m_Simplex);
    ZuCorePoint w;
    for (int steps = 0; steps < theMostSteps; ++steps) {
      m_V = simplex.nearest();
      double const length = m_V.mag();
      m_Overlaps = !(length > noise());
      if (m_Overlaps || meetsBound(w, length) || !simplex.add(w)) break;
    }
    simplex.copyTo(m_Simplex);
    m_Result = m_Simplex.mean();
    m_Square = m_Result.y.magSquared();
  }
  /// A short mean has the direction of its rounding; that of the plane that proves its length is right.
  void straighten() {
    ZuVector const straight = m_Proven.unitVector() * m_Result.y.mag();
    double const most = theAside * m_Size + noise();
    if (straight != ZuVector() && (straight - m_Result.y).magSquared() <= most * most) m_Result.y = straight;
  }

  /// From this step on the features are mostly those that will be nearest.
  static constexpr int theFirstSmoothStep = 2;
  /// How much wider than the band a gap may be that rounding leaves.
  static constexpr double theSlack = 4.0;
  /// Means longer than this part of the largest numbers have a direction, to 1e-9; shorter ones give way to a better
  /// one that ends aside of them by at most the other part, of the size.
  static constexpr double theShort = 1e-6, theAside = 1e-10;

  ZuCoreDifference& m_Set;
  ZuCoreSimplex m_Simplex;
  ZuCorePoint& m_Result;
  ZuVector m_V, m_First, m_Proven;
  double m_Tolerance, m_Square = 0.0;
  /// Of the distance, from below; of sets that hold the origin it tells how deep.
  double m_Bound = -std::numeric_limits<double>::infinity();
  double m_Size = 0.0;  ///< of the set, as far as it was seen
  int m_Steps = 0;
  bool m_Overlaps = false;
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
      m_DepthGap /= scale;
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
  ZuVector const v = hasStart ? set.fromWorld(*start) : ZuVector();
  Iteration iteration(set, m_Tolerance, answer.point);
  iteration.run(hasStart ? &v : nullptr);
  if (iteration.overlaps()) {
    answer.distance = -radii;
    return computePenetration ? findDepth(set, iteration.simplex(), answer) : set.isInRange();
  }
  double const length = answer.point.y.mag();
  answer.normal = answer.point.y * (1.0 / length);
  answer.distance = length - radii;
  return set.isInRange() && std::isfinite(answer.distance);
}

/// Sets the answer for cores that overlap, where it is their distance: of cores that are too thin for a depth, or touch
/// within rounding, it stays that.
bool ZuRobustGJK::findDepth(ZuCoreDifference& set, ZuCoreSimplex const& simplex, Answer& answer) {
  if (findBoxDepth(set, answer)) return set.isInRange();
  if (!m_Polytope) m_Polytope = std::make_unique<ZuDepthPolytope>();
  ZuDepthPolytope::Depth depth;
  ZuDepthPolytope::Outcome const outcome =
      m_Polytope->search(set, simplex, std::max(theDepthTolerance, m_Tolerance), m_MaxIterations, depth);
  answer.normal = -depth.normal;
  if (outcome == ZuDepthPolytope::FOUND) {
    answer.point = depth.nearest;
    // Where the nearest point was not proven to be one, it need not be at a right angle to its facet.
    ZuVector const& y = depth.nearest.y;
    bool const isStraight =
        (y + answer.normal * y.dot(depth.normal)).mag() <= theSlant * m_Polytope->size() + theRounding * set.extent();
    if (!isStraight) answer.normal = -y.unitVector();
    double const height = std::min(answer.normal.dot(y), 0.0);
    answer.point.y = answer.normal * height;
    answer.distance += height;
    m_DepthGap = std::max(0.0, depth.upper - depth.lower);
  }
  return set.isInRange();
}

/// Of cores that are boxes, flat or not, in closed form; false for others, and for those that just don't touch.
bool ZuRobustGJK::findBoxDepth(ZuCoreDifference const& set, Answer& answer) const {
  ZuPlainBox box1, box2;
  if (!set.areBoxes(box1, box2)) return false;
  ZuSeparation const found = ZuBoxPair(box1, box2).separation();
  // As short as rounding, it has no direction.
  if (found.distance > 0.0 && found.distance <= theRounding * set.extent()) return false;
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
