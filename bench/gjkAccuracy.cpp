// Accuracy of the convex engine on random pairs against an oracle in extended precision, as tables for
// docs/numerics.md. Usage: gjkAccuracy [pairs per size, default 100000] [folder of .obj meshes]
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "geometry/zuConvexHull.h"
#include "geometry/zuGjk.h"
#include "tests/convexOracle.h"
#include "tests/hullShape.h"

namespace {

using Pose = ZuCoordinateSystemTransformation;

/// A hull with what the oracle of depths needs.
struct Body {
  HullShape shape;
  oracle::Points edges, normals;  ///< in the frame of the shape; empty when depths are not checked
};

/// Errors above this, relative to the distance, or for depths to the size of 1 m, count as wrong.
constexpr double theLimit = 1e-6;
/// Pairs nearer than this (m) are not counted as apart: they may count as touching by the engine's tolerance.
constexpr double theGraze = 1e-7;
constexpr unsigned int theNumberOfBodies = 200;
/// More edges take the oracle of depths too long.
constexpr std::size_t theMostVerticesForDepths = 64;

struct Tally {
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
  engine.distance(a.shape, b.shape, T1, T2, true, witness1, witness2, distance, &separation);
  return distance;
}

void checkApart(ZuGJK& engine, Body const& a, Body const& b, Pose const& T1, Pose const& T2, double truth,
                double distance, ZuVector separation, RandomValues& r, Tally& tally) {
  ++tally.apart;
  double const error = distance - truth;
  tally.off += error > theLimit * truth ? 1 : 0;
  tally.near += error < -1e-9 * truth ? 1 : 0;
  tally.worst = std::max(tally.worst, error / truth);
  tally.worstLength = std::max(tally.worstLength, error);
  // From an answer for a pose nearby.
  Pose const nearby(T2.translation() + r.vector(0.01), T2.orientation());
  ZuVector warm = separation;
  query(engine, a, b, T1, nearby, warm);
  tally.warmOff += query(engine, a, b, T1, T2, warm) - truth > theLimit * truth ? 1 : 0;
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

Tally compare(std::vector<Body> const& bodies, int pairs, int depths, std::uint64_t seed) {
  RandomValues r(seed);
  ZuGJK engine;
  Tally tally;
  auto const count = static_cast<unsigned int>(bodies.size());
  for (int k = 0; k < pairs; ++k) {
    Body const &a = bodies[r.index(count)], &b = bodies[r.index(count)];
    Pose const T1(ZuVector(), r.orientation()), T2(r.direction() * r.real(0.0, 3.0), r.orientation());
    oracle::Points const pointsA = oracle::placed(a.shape.vertices(), T1);
    oracle::Points const pointsB = oracle::placed(b.shape.vertices(), T2);
    double const truth = oracle::distance(pointsA, pointsB);
    ZuVector separation;
    double const distance = query(engine, a, b, T1, T2, separation);
    if (truth > theGraze) {
      checkApart(engine, a, b, T1, T2, truth, distance, separation, r, tally);
    } else {
      bool const checkDepth = tally.depthsChecked < depths;
      Body const none;
      checkOverlap(checkDepth ? a : none, b, pointsA, pointsB, T1, T2, distance, tally);
    }
  }
  return tally;
}

void printHeader() {
  std::printf(
      "| bodies | apart | off by > 1e-6 | warm | worst, relative | worst, m | too near | overlapping | taken "
      "for apart | without depth | depths checked | off by > 1e-6 | worst, m |\n"
      "|---|---|---|---|---|---|---|---|---|---|---|---|---|\n");
}

void print(char const* name, Tally const& t) {
  double const percent = 100.0 / std::max(t.apart, 1);
  std::printf("| %s | %d | %.2f %% | %.2f %% | %.2g | %.2g | %d | %d | %.2f %% | %d | %d | %d | %.1e |\n", name,
              t.apart, t.off * percent, t.warmOff * percent, t.worst, t.worstLength, t.near, t.overlapping,
              100.0 * t.takenForApart / std::max(t.overlapping, 1), t.withoutDepth, t.depthsChecked, t.depthsOff,
              t.worstDepth);
  std::fflush(stdout);
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
  for (unsigned int const vertices : {8U, 64U, 512U, 4096U}) {
    int const depths = vertices <= 8 ? pairs : vertices <= theMostVerticesForDepths ? pairs / 100 : 0;
    print((std::to_string(vertices) + " vertices").c_str(), compare(randomBodies(vertices), pairs, depths, 1));
  }
  if (argc > 2) print("hulls of meshes", compare(meshBodies(argv[2]), pairs, 0, 2));
  return 0;
}
