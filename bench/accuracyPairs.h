// accuracyPairs.h - random pairs of solids, and the check of what an engine answers for them, for accuracy tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "bench/exactSolids.h"
#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuRobustGjk.h"
#include "geometry/zuTriPhysicalExtent.h"
#include "tests/hullShape.h"

namespace accuracy {

using oracle::Pose;
using oracle::Real;
using oracle::Solid;

/// A solid as the engine is given it, and in extended precision.
struct Body {
  std::shared_ptr<ZuShape> shape;
  Solid solid;
  double extent = 0.0;
};

struct Pair {
  Body a, b;
  Pose T1, T2;
  double size = 0.0;    ///< largest extent of the two
  double places = 0.0;  ///< how far a solid is from the origin of its frame, and that from the world's, in all
  ZuVector hint;        ///< a normal when they graze
};

inline Body boxBody(ZuVector const& half, ZuVector const& center) {
  Pose const frame(center);
  Body body{std::make_shared<ZuBox>(frame, half), Solid(Solid::BOX, frame, half),
            2.0 * std::max({half.x(), half.y(), half.z()})};
  body.solid.setHull(std::make_shared<oracle::Hull>(half));
  return body;
}

/// A kind of solid by its half sides or semi-axes; solids of revolution have the radius x.
inline Body makeBody(std::string const& kind, ZuVector const& size, ZuVector const& center = ZuVector()) {
  ZuVector const end0 = center - ZuVector::zVector(size.z()), end1 = center + ZuVector::zVector(size.z());
  double const extent = 2.0 * std::max(size.x(), size.z());
  ZuLineSegment const axis(end0, end1);
  if (kind == "box") return boxBody(size, center);
  if (kind == "capsule") {
    return {std::make_shared<ZuCapsule>(axis, 0.5 * size.x()), Solid(Solid::SEGMENT, end0, end1, 0.5 * size.x()),
            2.0 * size.z() + size.x()};
  }
  if (kind == "cylinder") {
    return {std::make_shared<ZuCylinder>(axis, size.x()), Solid(Solid::CYLINDER, end0, end1, size.x()), extent};
  }
  if (kind == "cone") {
    return {std::make_shared<ZuCone>(axis, size.x()), Solid(Solid::CONE, end0, end1, size.x()), extent};
  }
  return {std::make_shared<ZuEllipsoid>(Pose(center), size), Solid(Solid::ELLIPSOID, Pose(center), size),
          std::max(extent, 2.0 * size.y())};
}

struct Bounds {
  ZuVector low, high;

  explicit Bounds(std::vector<ZuVector> const& points) : low(points[0]), high(points[0]) {
    for (ZuVector const& p : points) {
      for (unsigned int k = 0; k < 3; ++k) {
        low[k] = std::min(low[k], p[k]);
        high[k] = std::max(high[k], p[k]);
      }
    }
  }
  double size() const {
    ZuVector const sides = high - low;
    return std::max({sides.x(), sides.y(), sides.z()});
  }
};

/// Few vertices are tried one by one; many are those of a mesh, as clients have it.
inline Body hullBody(std::vector<ZuVector> const& vertices) {
  constexpr std::size_t theFewVertices = 64;
  std::shared_ptr<ZuShape> shape = std::make_shared<HullShape>(vertices);
  if (vertices.size() > theFewVertices) {
    auto mesh = std::make_shared<ZuTriPhysicalExtent>();
    mesh->convexHull(ZuXmlVectorVector(vertices));
    shape = mesh;
  }
  return {shape, Solid(std::make_shared<oracle::Hull>(vertices)), Bounds(vertices).size()};
}

/// The corners of the convex hull of a mesh, brought to a largest extent of 1 m about the origin; none of a flat one.
inline std::vector<ZuVector> readHull(std::filesystem::path const& file) {
  std::ifstream in(file);
  ZuXmlVectorVector points, corners;
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string key;
    double x, y, z;
    if (words >> key && key == "v" && words >> x >> y >> z) points.pushBack(ZuVector(x, y, z));
  }
  if (!ZuConvexHull::spansVolume(points.data(), points.size())) return {};
  ZuConvexHull().computeConvexHull(points, corners);
  std::vector<ZuVector> vertices(corners.data(), corners.data() + corners.size());
  Bounds const bounds(vertices);
  for (ZuVector& v : vertices) v = (v - (bounds.low + bounds.high) * 0.5) * (1.0 / bounds.size());
  return vertices;
}

/// A class of pairs: pair(k) is the same on every run.
class Pairs {
 public:
  /// By the number of vertices, the name of a kind of solid, "mixed", "aligned", "thin", "scaled", or a folder of .obj
  /// meshes.
  explicit Pairs(std::string const& name, unsigned int bodies = 200) : m_Name(name) {
    if (name.find('/') != std::string::npos) {
      std::set<std::filesystem::path> files;
      for (auto const& entry : std::filesystem::directory_iterator(name)) files.insert(entry.path());
      for (auto const& file : files) {
        std::vector<ZuVector> const vertices = file.extension() == ".obj" ? readHull(file) : std::vector<ZuVector>();
        if (!vertices.empty()) m_Bodies.push_back(hullBody(vertices));
      }
      m_Name = "meshes";
    } else if (int const vertices = name == "scaled" ? 8 : std::atoi(name.c_str())) {
      RandomValues r(static_cast<std::uint64_t>(vertices));
      for (unsigned int i = 0; i < bodies; ++i) {
        m_Bodies.push_back(hullBody(randomHull(r, static_cast<unsigned int>(vertices)).vertices()));
      }
    } else if (name != "aligned" && name != "thin") {
      RandomValues r(static_cast<std::uint64_t>(name[0] + name[1]));
      for (unsigned int i = 0; i < bodies; ++i) {
        ZuVector const size(r.real(0.3, 1.0), r.real(0.3, 1.0), r.real(0.3, 1.0));
        m_Bodies.push_back(makeBody(name == "mixed" ? kind(i) : name, size));
      }
    }
  }
  std::string const& name() const { return m_Name; }

  /// False where the solids that should graze have no direction to do so.
  bool pair(std::uint64_t k, Pair& pair) {
    constexpr std::uint64_t theSeeds = 0x9E3779B97F4A7C15U;
    RandomValues r((k + 1) * theSeeds + static_cast<std::uint64_t>(m_Name[0]));
    pair.hint = ZuVector();
    if (m_Name == "aligned") {
      makeAligned(r, pair);
    } else if (m_Name == "scaled") {
      makeScaled(r, pair);
    } else {
      if (m_Name == "thin") {
        pair.a = thinBody(r);
        pair.b = thinBody(r);
      } else {
        pair.a = m_Bodies[r.index(static_cast<unsigned int>(m_Bodies.size()))];
        pair.b = m_Bodies[r.index(static_cast<unsigned int>(m_Bodies.size()))];
      }
      pair.T1 = Pose(ZuVector(), r.orientation());
      pair.T2 = Pose(r.direction() * r.real(0.0, k % 8 == 2 ? 0.3 : 3.0), r.orientation());
    }
    pair.size = std::max(pair.a.extent, pair.b.extent);
    if (m_Name != "scaled") pair.places = pair.size;
    return k % 4 != 0 || graze(r, k % 16 == 0, pair);
  }

 private:
  static char const* kind(unsigned int i) {
    static char const* const theKinds[] = {"cylinder", "cone", "ellipsoid", "capsule", "box"};
    return theKinds[i % 5];
  }
  static Body thinBody(RandomValues& r) {
    return makeBody(kind(r.index(5)), ZuVector(r.scale(1e-4, 1.0), r.scale(1e-4, 1.0), r.scale(1e-4, 1.0)));
  }
  /// What scenes are made of: solids of few sizes on common axes and planes, at right angles, of one centre.
  static void makeAligned(RandomValues& r, Pair& pair) {
    auto const size = [&r] { return ZuVector(1 + r.index(3), 1 + r.index(3), 1 + r.index(3)) * 0.25; };
    char const* const kind1 = kind(r.index(5));
    ZuVector const size1 = size();
    pair.a = makeBody(kind1, size1);
    pair.b = r.index(3) == 0 ? pair.a : makeBody(r.index(3) == 0 ? kind(r.index(5)) : kind1, size());
    ZuVector by;
    for (unsigned int axis = 0; axis < 3; ++axis) {
      if (r.index(3) == 0) by[axis] = r.index(2) == 0 ? r.index(9) * 0.125 : r.real(0.0, 1.2);
    }
    ZuOrientation turn;
    ZuVector axis;
    axis[r.index(3)] = 1.0;
    unsigned int const how = r.index(4);
    if (how == 1) turn.setFromAngleAxis(std::atan(1.0) * 2.0 * (1 + r.index(3)), axis);
    if (how == 2) turn.setFromAngleAxis(r.real(0.0, 6.28), ZuVector::zVector(1.0));
    pair.T1 = r.index(2) == 0 ? Pose() : r.transformation();
    pair.T2 = pair.T1 * Pose(by, turn);
  }
  /// Of 1e-6 to 1e6 m, as far from the origins of the world and of their own frames as 1e6 sizes.
  void makeScaled(RandomValues& r, Pair& pair) const {
    double const size = r.scale(1e-6, 1e6), away = r.index(3) == 0 ? 0.0 : size * r.scale(1e-2, 1e6);
    double const inFrames = r.index(3) == 0 ? size * r.scale(1e-2, 1e6) : 0.0;
    ZuVector const place = r.vector(away);
    pair.places = 0.0;
    for (int i = 0; i < 2; ++i) {
      ZuVector const center = inFrames > 0.0 ? r.vector(inFrames) : ZuVector();
      ZuOrientation const turn = r.orientation();
      double const own = i == 1 && r.index(5) == 0 ? 1e-3 * size : size;
      ZuVector const half(r.real(0.3, 1.0), r.real(0.3, 1.0), r.real(0.3, 1.0));
      unsigned int const which = r.index(7);
      Body body = which < 5 ? makeBody(kind(which), half * own, center)
                            : m_Bodies[r.index(static_cast<unsigned int>(m_Bodies.size()))];
      if (which >= 5) {
        body.solid = Solid(std::make_shared<oracle::Hull>(*body.solid.hull(), center * (1.0 / own), own));
        body.shape = std::make_shared<HullShape>(body.solid.hull()->vertices());
        body.extent *= own;
      }
      ZuVector const between = i == 0 ? ZuVector() : r.direction() * r.real(0.0, 3.0 * size);
      (i == 0 ? pair.a : pair.b) = body;
      (i == 0 ? pair.T1 : pair.T2) = Pose(place + between - turn * center, turn);
      pair.places = std::max({pair.places, (place + between - turn * center).mag() + center.mag(), size});
    }
  }
  /// Moves them until they touch, or overlap or are apart by a part of the size.
  bool graze(RandomValues& r, bool isTouching, Pair& pair) {
    ZuVector witness1, witness2, separation;
    double distance = 0.0;
    m_Engine.distance(*pair.a.shape, *pair.b.shape, pair.T1, pair.T2, true, witness1, witness2, distance, &separation);
    if (distance == 0.0 || separation == ZuVector()) return false;
    double const gap = isTouching ? 0.0 : pair.size * r.scale(1e-12, 1e-3) * (r.index(2) == 0 ? 1.0 : -1.0);
    pair.hint = separation.unitVector();
    pair.T2.setTranslation(pair.T2.translation() + separation - pair.hint * gap);
    return true;
  }

  std::string m_Name;
  std::vector<Body> m_Bodies;
  ZuRobustGJK m_Engine;
};

/// What may be wrong with an answer, by the number of the guarantee that it breaks; 0: not proven either way.
enum Fault { UNPROVEN, DISTANCE, SIDE, DEPTH, WITNESS, FINITE, START };
constexpr std::size_t theNumberOfFaults = 7;

struct Tally {
  std::array<long, theNumberOfFaults> faults{};
  long apart = 0, grazing = 0, overlapping = 0, depths = 0, starts = 0;
  double worstDistance = 0.0;  ///< in sizes: what a distance is off, or what is not proven of one
  double worstDepth = 0.0;     ///< in sizes: what a depth is off
};

/// What an answer may be off, in sizes, and which pairs get which checks: one in so many.
struct Limits {
  double distance = 1e-9, depth = 1e-7, curvedDepth = 1e-6;
  std::uint64_t everyDepth = 1, everyStart = 8;
};

/// Checks the answer for a pair.
///
/// A plane with the solids on its two sides, by their support points in extended precision, proves a distance from
/// below; witness points that lie on their solids prove it from above. A translation along whose direction the support
/// value is no longer than it clears them, so that the depth is no larger. Where the plane of the answer does not prove
/// it, an iteration in extended precision has the last word. That no shorter translation clears the solids is checked
/// by all normals of two polytopes, and by a search from many directions otherwise.
class Check {
 public:
  Check(ZuGJK& engine, Pair const& pair, Limits const& limits, std::uint64_t k, Tally& tally)
      : m_Engine(engine),
        m_Pair(pair),
        m_Tally(tally),
        m_Random(k),
        m_A(pair.a.solid.placed(pair.T1, pair.T1.translation())),
        m_B(pair.b.solid.placed(pair.T2, pair.T1.translation())) {
    bool const isCurved = m_A.isCurved() || m_B.isCurved();
    double const rounding = 16.0 * 0x1p-52 * pair.places;
    m_Band = limits.distance * pair.size + rounding;
    m_DepthBand = (isCurved ? limits.curvedDepth : limits.depth) * pair.size + rounding;
    m_Answer = ask(pair.T2, ZuVector());
    if (!std::isfinite(m_Answer.distance + m_Answer.separation.mag() + m_Answer.witness1.mag())) {
      fault(FINITE, m_Answer.distance);
      return;
    }
    checkWitnesses();
    checkFromBelow();
    checkFromAbove();
    if (m_Answer.distance <= 0.0 && k % limits.everyDepth == 0) checkDepth();
    if (k % limits.everyStart == 1) checkStarts();
    count();
  }
  /// Of what is wrong; empty if nothing.
  std::string const& message() const { return m_Message; }
  /// The best bound of the signed distance from below.
  Real lower() const { return m_Lower; }

 private:
  struct Answer {
    double distance;
    ZuVector witness1, witness2, separation;
  };

  Answer ask(Pose const& T2, ZuVector const& start, bool penetration = true) {
    Answer answer{0.0, {}, {}, start};
    m_Engine.distance(*m_Pair.a.shape, *m_Pair.b.shape, m_Pair.T1, T2, penetration, answer.witness1, answer.witness2,
                      answer.distance, &answer.separation);
    return answer;
  }
  void fault(Fault which, Real by) {
    ++m_Tally.faults[which];
    double& worst = which == DEPTH ? m_Tally.worstDepth : m_Tally.worstDistance;
    if (which == DISTANCE || which == SIDE || which == DEPTH) {
      worst = std::max(worst, static_cast<double>(std::abs(by) / m_Pair.size));
    }
    std::ostringstream text;
    text << " guarantee " << which << " by " << static_cast<double>(by / m_Pair.size) << " sizes;";
    m_Message += text.str();
  }
  void checkWitnesses() {
    oracle::Vector const p = inWorld(m_Pair.T1, m_Answer.witness1), q = inWorld(m_Pair.T2, m_Answer.witness2);
    oracle::Vector const separation = oracle::extended(m_Answer.separation);
    m_Normal = oracle::unit(separation * (m_Answer.distance > 0.0 ? -1.0L : 1.0L));
    Real const off = std::max({m_A.outside(p, m_Normal, m_Band), m_B.outside(q, m_Normal * -1.0L, m_Band),
                               oracle::length(p - q - separation),
                               std::abs(oracle::length(separation) - std::abs(m_Answer.distance))});
    m_IsWitnessed = off <= m_Band;
    if (!m_IsWitnessed) fault(WITNESS, off);
  }
  oracle::Vector inWorld(Pose const& T, ZuVector const& p) const {
    return oracle::Turn(T.orientation()).times(oracle::extended(p)) + oracle::extended(T.translation()) -
           oracle::extended(m_Pair.T1.translation());
  }
  void take(oracle::Vector n, Real widest = 0.0L) {
    Real const lower = -oracle::leastSupportNear(m_A, m_B, n, widest);
    if (lower <= m_Lower) return;
    m_Lower = lower;
    m_Normal = n;
  }
  /// Within a part of what is allowed.
  bool isProvenFromBelow(Real part) const {
    return m_Lower >= m_Answer.distance - part * (m_Answer.distance < 0.0 ? m_DepthBand : m_Band);
  }
  oracle::Bounds const& bounds() {
    if (!m_HasBounds) m_Bounds = oracle::distanceBounds(m_A, m_B, m_Normal * -1.0L, 0.1L * m_Band);
    m_HasBounds = true;
    return m_Bounds;
  }
  /// Bounds of the distance from below, of the depth from above.
  void checkFromBelow() {
    findLower();
    if (isProvenFromBelow(1.0L)) return;
    if (m_Answer.distance < 0.0) {
      fault(DEPTH, m_Answer.distance - m_Lower);
    } else if (bounds().upper <= m_Answer.distance - m_Band || m_Answer.distance <= m_Band) {
      fault(m_Lower < -m_Band ? SIDE : DISTANCE, m_Answer.distance - std::min(bounds().upper, m_Lower));
    } else {
      fault(UNPROVEN, m_Answer.distance - m_Lower);
    }
  }
  void findLower() {
    constexpr Real theNearest = 1e-3L, theWidest = 0.3L, theAim = 0.01L;
    take(m_Normal);
    if (isProvenFromBelow(theAim)) return;
    take(m_Normal * -1.0L);
    if (m_Pair.hint != ZuVector()) {
      take(oracle::extended(m_Pair.hint));
      take(oracle::extended(m_Pair.hint) * -1.0L);
    }
    if (isProvenFromBelow(theAim)) return;
    take(m_Normal, theNearest);
    if (isProvenFromBelow(theAim)) return;
    take(oracle::unit(bounds().normal), theNearest);
    if (isProvenFromBelow(theAim)) return;
    take(m_Normal, theWidest);
    if (!isProvenFromBelow(1.0L)) takeFromShrunk();
    if (!isProvenFromBelow(1.0L)) m_Lower = std::max(m_Lower, -leastDepth());
  }
  /// Solids that touch have no direction between them, but if one is a little smaller they do, which is nearly theirs.
  void takeFromShrunk() {
    for (Real by = 1e-3L; by > 1e-11L; by *= 0.1L) {
      oracle::Bounds const apart = oracle::distanceBounds(m_A.shrunk(by), m_B, m_Normal * -1.0L, 0.001L * m_Band);
      take(apart.normal);
      if (isProvenFromBelow(1.0L)) return;
    }
  }
  /// Bounds of the distance from above.
  void checkFromAbove() {
    if (m_Answer.distance > 0.0 ? m_IsWitnessed : m_Answer.distance < -2.0 * m_DepthBand) return;
    if (bounds().lower <= std::max<Real>(m_Answer.distance, 0.0L) + m_Band) return;
    fault(m_Answer.distance > 0.0 ? DISTANCE : SIDE, bounds().lower - m_Answer.distance);
  }
  /// That nothing shorter clears them.
  void checkDepth() {
    ++m_Tally.depths;
    Real const least = leastDepth();
    Real const error = -m_Answer.distance - least;
    if (error > m_DepthBand) fault(DEPTH, -error);
    m_Tally.worstDepth = std::max(m_Tally.worstDepth, static_cast<double>(std::abs(error) / m_Pair.size));
  }
  Real leastDepth() {
    Real const least = -m_Lower;
    if (m_A.hull() != nullptr && m_B.hull() != nullptr) {
      return oracle::PolytopeDepth(m_A, m_B, static_cast<double>(least)).least();
    }
    bool const areCoresApart =
        m_A.radius() + m_B.radius() > 0.0L && bounds().upper > -m_A.radius() - m_B.radius() + m_Band;
    return std::min(least, areCoresApart ? -bounds().lower : searchDepth());
  }
  Real searchDepth() {
    constexpr int theDirections = 64, theDescents = 3;
    constexpr Real theWidest = 0.2L;
    std::vector<std::pair<Real, oracle::Vector>> found;
    auto const tryDirection = [&](oracle::Vector const& n) {
      found.emplace_back(oracle::supportValue(m_A, m_B, n), n);
    };
    for (oracle::Turn const* turn : {&m_A.turn(), &m_B.turn()}) {
      for (oracle::Vector const& axis : {turn->x, turn->y, turn->z}) {
        tryDirection(axis);
        tryDirection(axis * -1.0L);
      }
    }
    oracle::Vector const across = oracle::unit(oracle::cross(m_A.turn().z, m_B.turn().z));
    tryDirection(across);
    tryDirection(across * -1.0L);
    for (int i = 0; i < theDirections; ++i) tryDirection(oracle::unit(oracle::extended(m_Random.direction())));
    auto const isLess = [](auto const& a, auto const& b) { return a.first < b.first; };
    std::partial_sort(found.begin(), found.begin() + theDescents, found.end(), isLess);
    Real least = found[0].first;
    for (int i = 0; i < theDescents; ++i) {
      least = std::min(least, oracle::leastSupportNear(m_A, m_B, found[static_cast<std::size_t>(i)].second, theWidest));
    }
    return least;
  }
  /// The same from elsewhere, and the other way round.
  void checkStarts() {
    ++m_Tally.starts;
    double const allowed = 2.0 * (m_Answer.distance > m_Band ? m_Band : m_DepthBand);
    Pose const nearby(m_Pair.T2.translation() + m_Random.vector(0.01 * m_Pair.size), m_Pair.T2.orientation());
    double worst = 0.0;
    for (ZuVector const& start :
         {ask(nearby, ZuVector()).separation, -m_Answer.separation, m_Random.direction() * m_Random.scale(1e-9, 1e9)}) {
      worst = std::max(worst, std::abs(ask(m_Pair.T2, start).distance - m_Answer.distance));
    }
    Answer swapped{};
    m_Engine.distance(*m_Pair.b.shape, *m_Pair.a.shape, m_Pair.T2, m_Pair.T1, true, swapped.witness1, swapped.witness2,
                      swapped.distance, &swapped.separation);
    worst = std::max(worst, std::abs(swapped.distance - m_Answer.distance));
    if (worst > allowed) fault(START, worst);
    double const bare = ask(m_Pair.T2, ZuVector(), false).distance - std::max(m_Answer.distance, 0.0);
    if (std::abs(bare) > 2.0 * m_Band) fault(DISTANCE, bare);
  }
  void count() {
    constexpr double theGraze = 1e-7;
    double const distance = m_Answer.distance;
    ++(std::abs(distance) <= theGraze * m_Pair.size + m_Band ? m_Tally.grazing
       : distance > 0.0                                      ? m_Tally.apart
                                                             : m_Tally.overlapping);
    if (distance > 0.0 && m_Message.empty()) {
      double const open = static_cast<double>(distance - m_Lower) / m_Pair.size;
      m_Tally.worstDistance = std::max(m_Tally.worstDistance, open);
    }
  }

  ZuGJK& m_Engine;
  Pair const& m_Pair;
  Tally& m_Tally;
  RandomValues m_Random;
  Solid m_A, m_B;  ///< placed
  double m_Band = 0.0, m_DepthBand = 0.0;
  Answer m_Answer{};
  oracle::Vector m_Normal{};
  Real m_Lower = -std::numeric_limits<Real>::infinity();
  oracle::Bounds m_Bounds{};
  bool m_HasBounds = false, m_IsWitnessed = false;
  std::string m_Message;
};

}  // namespace accuracy
