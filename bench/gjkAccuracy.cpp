// Accuracy of the convex engines on random pairs, as tables for docs/numerics.md: of polytopes and capsules against an
// oracle in extended precision, of curved solids by the planes that prove a distance from below and a depth from above.
// Every fourth pair is moved until it grazes. Usage: gjkAccuracy [pairs per class, default 100000] [folder of .obj
// meshes]
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuConvexHull.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuRobustGjk.h"
#include "tests/convexOracle.h"
#include "tests/hullShape.h"

namespace {

using Pose = ZuCoordinateSystemTransformation;

/// A solid with what the oracles need of it.
struct Body {
  HullShape shape;                 ///< the solid, or its core when there is another; without vertices for a curved one
  std::shared_ptr<ZuShape> solid;  ///< what is asked, when it is not the hull
  double radius = 0.0;             ///< about the core
  oracle::Points edges, normals;   ///< in the frame of the shape; empty when depths are not checked

  ZuShape const& asked() const { return solid ? *solid : static_cast<ZuShape const&>(shape); }
  bool isCurved() const { return shape.vertices().empty(); }
};

/// Errors above this, relative to the distance, or for depths to the size of 1 m, count as wrong.
constexpr double theLimit = 1e-6;
/// Pairs nearer than this (m) are not counted as apart: they may count as touching by the engine's tolerance.
constexpr double theGraze = 1e-7;
/// What the oracle leaves of the distance of polytopes that overlap, m.
constexpr double theOracleRounding = 1e-14;
/// What a plane may miss of the distance that it proves, m: its normal is that of a rounded separation.
constexpr double theProofRounding = 1e-8;
/// Depths below it, m, are only checked not to be too deep when they are proven.
constexpr double theShallow = 1e-4;
constexpr unsigned int theNumberOfBodies = 200;
/// More edges take the oracle of depths too long.
constexpr std::size_t theMostVerticesForDepths = 64;

/// What grazes (closer than theGraze) may be off by this, m: the robust engine's band for bodies of 2 m is a fifth.
constexpr double theGrazeLimit = 1e-8;
/// Directions among which a depth of curved solids must be the least.
constexpr int theDirections = 300;

struct Tally {
  int grazing = 0, grazeOff = 0;
  int apart = 0, off = 0, near = 0, warmOff = 0;
  double worst = 0.0, worstLength = 0.0;
  int overlapping = 0, takenForApart = 0, withoutDepth = 0, depthsChecked = 0, depthsOff = 0;
  double worstDepth = 0.0;
};

void findEdgesAndNormals(Body& body) {
  std::vector<ZuGJKTriangle> facets;
  ZuConvexHull().computeConvexHull(body.shape.vertices(), facets, nullptr);
  for (ZuGJKTriangle const& facet : facets) {
    oracle::Vector corner[3];
    for (unsigned int k = 0; k < 3; ++k) corner[k] = oracle::extended(body.shape.vertices()[facet.vertexIndex(k)]);
    body.normals.push_back(oracle::cross(corner[1] - corner[0], corner[2] - corner[0]));
    for (unsigned int k = 0; k < 3; ++k) {
      if (facet.vertexIndex(k) < facet.vertexIndex((k + 1) % 3)) body.edges.push_back(corner[(k + 1) % 3] - corner[k]);
    }
  }
}

oracle::Points turned(oracle::Points const& directions, Pose const& T) {
  std::vector<ZuVector> ends;
  oracle::Points result;
  oracle::Vector const origin = oracle::placed({ZuVector()}, T)[0];
  for (oracle::Vector const& d : directions) {
    ends.assign(1, ZuVector(static_cast<double>(d[0]), static_cast<double>(d[1]), static_cast<double>(d[2])));
    result.push_back(oracle::placed(ends, T)[0] - origin);
  }
  return result;
}

double query(ZuGJK& engine, Body const& a, Body const& b, Pose const& T1, Pose const& T2, ZuVector& separation) {
  ZuVector witness1, witness2;
  double distance = 0.0;
  engine.distance(a.asked(), b.asked(), T1, T2, true, witness1, witness2, distance, &separation);
  return distance;
}

void checkApart(ZuGJK& engine, Body const& a, Body const& b, Pose const& T1, Pose const& T2, double truth,
                double distance, ZuVector separation, RandomValues& r, Tally& tally) {
  ++tally.apart;
  double const error = distance - truth;
  tally.off += error > theLimit * truth + (a.isCurved() || b.isCurved() ? theProofRounding : 0.0) ? 1 : 0;
  tally.near += error < -1e-9 * truth ? 1 : 0;
  tally.worst = std::max(tally.worst, error / truth);
  tally.worstLength = std::max(tally.worstLength, error);
  // From an answer for a pose nearby.
  Pose const nearby(T2.translation() + r.vector(0.01), T2.orientation());
  ZuVector warm = separation;
  query(engine, a, b, T1, nearby, warm);
  tally.warmOff += query(engine, a, b, T1, T2, warm) - truth > theLimit * truth + theProofRounding ? 1 : 0;
}

void checkOverlap(Body const& a, Body const& b, oracle::Points const& pointsA, oracle::Points const& pointsB,
                  Pose const& T1, Pose const& T2, double distance, Tally& tally) {
  ++tally.overlapping;
  if (distance > 1e-8) {
    ++tally.takenForApart;
    return;
  }
  if (distance > 0.0) ++tally.withoutDepth;
  if (distance > 0.0 || a.edges.empty() || b.edges.empty()) return;
  oracle::Points normals = turned(a.normals, T1);
  for (oracle::Vector const& n : turned(b.normals, T2)) normals.push_back(n);
  double const depth = oracle::depth(pointsA, pointsB, normals, turned(a.edges, T1), turned(b.edges, T2));
  ++tally.depthsChecked;
  double const error = std::abs(depth + distance);
  tally.depthsOff += error > theLimit ? 1 : 0;
  tally.worstDepth = std::max(tally.worstDepth, error);
}

/// Of a pair whose depth is known, or known to be at most this.
void checkKnownDepth(double depth, double distance, Tally& tally) {
  ++tally.overlapping;
  if (distance > theGrazeLimit) {
    tally.takenForApart += depth > theGrazeLimit ? 1 : 0;
    return;
  }
  if (distance > 0.0) ++tally.withoutDepth;
  ++tally.depthsChecked;
  double const error = -distance < theShallow ? -distance - depth : std::abs(depth + distance);
  tally.depthsOff += error > theLimit ? 1 : 0;
  tally.worstDepth = std::max(tally.worstDepth, error);
}

void printHeader() {
  std::printf(
      "| bodies | engine | grazing | off by > 1e-8 m | apart | off by > 1e-6 | warm | worst, relative | worst, m | too "
      "near | overlapping | taken "
      "for apart | without depth | depths checked | off by > 1e-6 | worst, m |\n"
      "|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|\n");
}

void print(char const* name, char const* engine, Tally const& t) {
  double const percent = 100.0 / std::max(t.apart, 1);
  std::printf(
      "| %s | %s | %d | %d | %d | %.2f %% | %.2f %% | %.2g | %.2g | %d | %d | %.2f %% | %d | %d | %d | %.1e |\n", name,
      engine, t.grazing, t.grazeOff, t.apart, t.off * percent, t.warmOff * percent, t.worst, t.worstLength, t.near,
      t.overlapping, 100.0 * t.takenForApart / std::max(t.overlapping, 1), t.withoutDepth, t.depthsChecked, t.depthsOff,
      t.worstDepth);
  std::fflush(stdout);
}

/// An engine under test, with its answer to the pair.
struct Subject {
  char const* name;
  ZuGJK& engine;
  Tally tally;
  double distance;
  ZuVector separation;
};

/// The support value of the difference set: what moving along the unit vector n must do to separate the solids.
double supportValue(Body const& a, Body const& b, Pose const& T1, Pose const& T2, ZuVector const& n) {
  ZuVector const p = a.asked().computeSupportPoint(T1.orientation().inverseTimes(n));
  ZuVector const q = b.asked().computeSupportPoint(T2.orientation().inverseTimes(-n));
  return n.dot(T1 * p - T2 * q);
}

/// Of curved solids: the best proven lower bound of the distance when it is above 0, otherwise minus the least depth
/// found. The hint is the normal of a pair that grazes, whose own separation is too short to tell.
double provenDistance(Body const& a, Body const& b, Pose const& T1, Pose const& T2, ZuVector const& hint,
                      Subject const* subjects, RandomValues& r) {
  double least = std::numeric_limits<double>::infinity();
  for (ZuVector const& along : {hint, subjects[0].separation, subjects[1].separation}) {
    ZuVector const n = along.unitVector();
    for (double const sign : {1.0, -1.0}) {
      if (n != ZuVector()) least = std::min(least, supportValue(a, b, T1, T2, n * sign));
    }
  }
  for (int i = 0; i < theDirections && least > 0.0; ++i) {
    least = std::min(least, supportValue(a, b, T1, T2, r.direction()));
  }
  return -least;
}

/// Of polytopes and of solids about them: 0 for cores that overlap, when there are depths to check.
double trueDistance(Body const& a, Body const& b, oracle::Points const& pointsA, oracle::Points const& pointsB) {
  return oracle::distance(pointsA, pointsB) - a.radius - b.radius;
}

void checkPair(Body const& a, Body const& b, Pose const& T1, Pose const& T2, int depths, ZuVector const& hint,
               RandomValues& r, Subject* subjects) {
  bool const isProven = a.isCurved() || b.isCurved();
  oracle::Points const pointsA = oracle::placed(a.shape.vertices(), T1),
                       pointsB = oracle::placed(b.shape.vertices(), T2);
  for (int i = 0; i < 2; ++i) {
    subjects[i].separation = ZuVector();
    subjects[i].distance = query(subjects[i].engine, a, b, T1, T2, subjects[i].separation);
  }
  double const truth =
      isProven ? provenDistance(a, b, T1, T2, hint, subjects, r) : trueDistance(a, b, pointsA, pointsB);
  for (int i = 0; i < 2; ++i) {
    Subject& s = subjects[i];
    if (truth > theGraze) {
      checkApart(s.engine, a, b, T1, T2, truth, s.distance, s.separation, r, s.tally);
    } else if (truth > theOracleRounding) {
      ++s.tally.grazing;
      s.tally.grazeOff += std::abs(s.distance - truth) > theGrazeLimit ? 1 : 0;
    } else if (isProven || a.radius + b.radius > 0.0) {
      checkKnownDepth(-truth, s.distance, s.tally);
    } else {
      bool const checkDepth = s.tally.depthsChecked < depths;
      Body const none;
      checkOverlap(checkDepth ? a : none, b, pointsA, pointsB, T1, T2, s.distance, s.tally);
    }
  }
}

void compare(char const* name, std::vector<Body> const& bodies, int pairs, int depths, std::uint64_t seed) {
  RandomValues r(seed);
  ZuGJK engine;
  ZuRobustGJK robustEngine;
  Subject subjects[2] = {{"default", engine, {}, 0.0, {}}, {"robust", robustEngine, {}, 0.0, {}}};
  auto const count = static_cast<unsigned int>(bodies.size());
  for (int k = 0; k < pairs; ++k) {
    Body const &a = bodies[r.index(count)], &b = bodies[r.index(count)];
    Pose const T1(ZuVector(), r.orientation()), T2(r.direction() * r.real(0.0, 3.0), r.orientation());
    ZuVector separation;
    if (k % 4 != 0) {
      checkPair(a, b, T1, T2, depths, ZuVector(), r, subjects);
    } else if (query(robustEngine, a, b, T1, T2, separation) != 0.0) {
      double const gap = r.scale(1e-12, 1e-3) * (k % 8 == 0 ? 1.0 : -1.0);
      Pose const grazing(T2.translation() + separation - separation.unitVector() * gap, T2.orientation());
      checkPair(a, b, T1, grazing, depths, separation, r, subjects);
    }
  }
  for (Subject const& s : subjects) print(name, s.name, s.tally);
}

std::vector<Body> randomBodies(unsigned int vertices) {
  RandomValues r(vertices);
  std::vector<Body> bodies(theNumberOfBodies);
  for (Body& body : bodies) {
    body.shape = randomHull(r, vertices);
    if (vertices <= theMostVerticesForDepths) findEdgesAndNormals(body);
  }
  return bodies;
}

std::vector<Body> solids(char const* kind) {
  RandomValues r(kind[0] + kind[1]);
  std::vector<Body> bodies(theNumberOfBodies);
  unsigned int k = 0;
  for (Body& body : bodies) {
    ZuVector const size(r.real(0.3, 1.0), r.real(0.3, 1.0), r.real(0.3, 1.0)), half = ZuVector::zVector(size.z());
    std::string const is = std::string(kind) == "mixed"
                               ? std::vector<std::string>{"cylinder", "cone", "ellipsoid", "capsule", "box"}[k++ % 5]
                               : kind;
    bool const isCurved = is == "cylinder" || is == "cone" || is == "ellipsoid" || std::string(kind) == "mixed";
    if (isCurved) body.shape = HullShape(std::vector<ZuVector>());
    if (is == "box") {
      body.solid = std::make_shared<ZuBox>(Pose(), size);
      if (!isCurved) body.shape = HullShape::box(2.0 * size.x(), 2.0 * size.y(), 2.0 * size.z());
      if (!isCurved) findEdgesAndNormals(body);
    } else if (is == "capsule") {
      body.solid = std::make_shared<ZuCapsule>(ZuLineSegment(-half, half), 0.5 * size.x());
      if (!isCurved) body.shape = HullShape({-half, half});
      body.radius = 0.5 * size.x();
    } else if (is == "cylinder") {
      body.solid = std::make_shared<ZuCylinder>(ZuLineSegment(-half, half), size.x());
    } else if (is == "cone") {
      body.solid = std::make_shared<ZuCone>(ZuLineSegment(-half, half), size.x());
    } else {
      body.solid = std::make_shared<ZuEllipsoid>(Pose(), size);
    }
  }
  return bodies;
}

/// The corners of the convex hull of a mesh, brought to a largest extent of 1 m about the origin.
bool readHull(std::filesystem::path const& file, Body& body) {
  std::ifstream in(file);
  ZuXmlVectorVector points, corners;
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string key;
    double x, y, z;
    if (words >> key && key == "v" && words >> x >> y >> z) points.pushBack(ZuVector(x, y, z));
  }
  if (!ZuConvexHull::spansVolume(points.data(), points.size())) return false;
  ZuConvexHull().computeConvexHull(points, corners);
  ZuVector low = corners[0], high = corners[0];
  for (unsigned int i = 0; i < corners.size(); ++i) {
    for (unsigned int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], corners[i][k]);
      high[k] = std::max(high[k], corners[i][k]);
    }
  }
  ZuVector const size = high - low;
  double const scale = 1.0 / std::max({size.x(), size.y(), size.z()});
  std::vector<ZuVector> vertices;
  for (unsigned int i = 0; i < corners.size(); ++i) vertices.push_back((corners[i] - (low + high) * 0.5) * scale);
  body.shape = HullShape(vertices);
  return true;
}

std::vector<Body> meshBodies(char const* folder) {
  std::set<std::filesystem::path> files;
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".obj") files.insert(entry.path());
  }
  std::vector<Body> bodies;
  for (auto const& file : files) {
    Body body;
    if (!readHull(file, body)) continue;
    std::fprintf(stderr, "%s: %zu corners\n", file.filename().c_str(), body.shape.vertices().size());
    bodies.push_back(body);
  }
  return bodies;
}

}  // namespace

int main(int argc, char** argv) {
  int const pairs = argc > 1 ? std::atoi(argv[1]) : 100000;
  printHeader();
  compare("boxes", solids("box"), pairs, pairs / 10, 1);
  for (char const* kind : {"capsule", "cylinder", "cone", "ellipsoid", "mixed"})
    compare(kind, solids(kind), pairs, 0, 1);
  for (unsigned int const vertices : {8U, 64U, 512U, 4096U}) {
    int const depths = vertices <= 8 ? pairs / 10 : vertices <= theMostVerticesForDepths ? pairs / 100 : 0;
    compare((std::to_string(vertices) + " vertices").c_str(), randomBodies(vertices), pairs, depths, 1);
  }
  if (argc > 2) compare("hulls of meshes", meshBodies(argv[2]), pairs, 0, 2);
  return 0;
}
