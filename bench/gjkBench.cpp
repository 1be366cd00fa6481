// The convex engine on pairs of hulls: cold, warm along a coherent path, and penetration; peers on the same hulls and
// poses. For medians of interleaved runs:
//   zuBench --benchmark_filter=Gjk --benchmark_enable_random_interleaving=true --benchmark_repetitions=9
#include <benchmark/benchmark.h>

#include <map>
#include <memory>

#include "geometry/zuConvexHull.h"
#include "geometry/zuGjk.h"
#include "geometry/zuTriPhysicalExtent.h"
#include "tests/hullShape.h"
#ifdef ZU_BENCH_PEERS
#include <BulletCollision/CollisionShapes/btConvexHullShape.h>
#include <BulletCollision/NarrowPhaseCollision/btGjkEpaPenetrationDepthSolver.h>
#include <BulletCollision/NarrowPhaseCollision/btGjkPairDetector.h>
#include <BulletCollision/NarrowPhaseCollision/btPointCollector.h>
#include <BulletCollision/NarrowPhaseCollision/btVoronoiSimplexSolver.h>
#include <fcl/geometry/shape/convex.h>
#include <fcl/narrowphase/detail/gjk_solver_indep.h>
#include <fcl/narrowphase/detail/gjk_solver_libccd.h>
#endif

namespace {

using Pose = ZuCoordinateSystemTransformation;

enum Kind { COLD, WARM, DEPTH };

constexpr unsigned int theNumberOfHulls = 16;
constexpr unsigned int theNumberOfPoses = 1000;

/// The bodies and poses of one benchmark. Shape 1 stands at the identity.
struct Scene {
  std::vector<HullShape> hulls;
  std::vector<ZuTriPhysicalExtent> meshes;  ///< the hulls as clients hold them
  std::vector<Pose> poses;
  std::vector<unsigned int> first, second;

  Scene(Kind kind, unsigned int vertices) {
    RandomValues r(vertices);
    meshes.resize(theNumberOfHulls);
    for (ZuTriPhysicalExtent& mesh : meshes) {
      hulls.push_back(randomHull(r, vertices));
      mesh.convexHull(ZuXmlVectorVector(hulls.back().vertices()));
    }
    for (unsigned int i = 0; i < theNumberOfPoses; ++i) {
      first.push_back(kind == WARM ? 0 : r.index(theNumberOfHulls));
      second.push_back(kind == WARM ? 1 : r.index(theNumberOfHulls));
      double const t = i * (2.0 * 3.14159265358979 / theNumberOfPoses);
      if (kind == WARM) {  // once around, turning, nearer and farther: steps of 15 mm and 0.5 degrees
        ZuOrientation turn;
        turn.setFrom123Euler(0.5 * std::sin(t), 0.5 * std::cos(t), t);
        poses.emplace_back(ZuVector(2.4 * std::cos(t), 2.4 * std::sin(t), 0.4 * std::sin(3.0 * t)), turn);
      } else {
        double const away = kind == DEPTH ? r.real(0.0, 0.4) : r.real(2.1, 3.0);
        poses.emplace_back(r.direction() * away, r.orientation());
      }
    }
  }
};

Scene const& scene(Kind kind, unsigned int vertices) {
  static std::map<std::pair<Kind, unsigned int>, std::unique_ptr<Scene>> theScenes;
  auto& entry = theScenes[{kind, vertices}];
  if (!entry) entry = std::make_unique<Scene>(kind, vertices);
  return *entry;
}

/// Runs `query(scene, i)` over the poses of the scene.
template <class Query>
void overPoses(benchmark::State& state, Kind kind, Query const& query) {
  Scene const& s = scene(kind, static_cast<unsigned int>(state.range(0)));
  unsigned int i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(query(s, i));
    i = i + 1 < theNumberOfPoses ? i + 1 : 0;
  }
}

void sizes(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(8)->Arg(64)->Arg(512)->Arg(4096); }

void gjk(benchmark::State& state, Kind kind) {
  ZuGJK engine;
  ZuVector separation;
  overPoses(state, kind, [&](Scene const& s, unsigned int i) {
    ZuVector witness1, witness2;
    double distance = 0.0;
    if (kind != WARM) separation = ZuVector();
    engine.distance(s.meshes[s.first[i]], s.meshes[s.second[i]], Pose(), s.poses[i], true, witness1, witness2, distance,
                    &separation);
    return distance;
  });
}

#ifdef ZU_BENCH_PEERS

struct FclHull {
  explicit FclHull(HullShape const& hull) {
    auto vertices = std::make_shared<std::vector<fcl::Vector3d>>();
    for (ZuVector const& v : hull.vertices()) vertices->push_back(fcl::Vector3d(v.x(), v.y(), v.z()));
    std::vector<ZuGJKTriangle> facets;
    ZuConvexHull().computeConvexHull(hull.vertices(), facets, nullptr);
    auto faces = std::make_shared<std::vector<int>>();
    for (ZuGJKTriangle const& f : facets) {
      faces->insert(faces->end(), {3, f.vertexIndex(0), f.vertexIndex(2), f.vertexIndex(1)});
    }
    convex = std::make_unique<fcl::Convexd>(vertices, static_cast<int>(facets.size()), faces);
  }
  std::unique_ptr<fcl::Convexd> convex;
};

fcl::Transform3d fclPose(Pose const& pose) {
  fcl::Transform3d result = fcl::Transform3d::Identity();
  ZuOrientation const q = pose.orientation();
  ZuVector const t = pose.translation();
  result.linear() = fcl::Quaterniond(q[0], q[1], q[2], q[3]).toRotationMatrix();
  result.translation() = fcl::Vector3d(t.x(), t.y(), t.z());
  return result;
}

template <class Solver>
void fclGjk(benchmark::State& state, Kind kind) {
  Scene const& s = scene(kind, static_cast<unsigned int>(state.range(0)));
  std::vector<FclHull> hulls(s.hulls.begin(), s.hulls.end());
  std::vector<fcl::Transform3d> poses;
  for (Pose const& pose : s.poses) poses.push_back(fclPose(pose));
  Solver solver;
  solver.enableCachedGuess(kind == WARM);
  overPoses(state, kind, [&](Scene const&, unsigned int i) {
    fcl::Convexd const &a = *hulls[s.first[i]].convex, &b = *hulls[s.second[i]].convex;
    fcl::Vector3d p1, p2;
    double distance = 0.0;
    if (kind == DEPTH) {
      std::vector<fcl::ContactPointd> contacts;
      solver.shapeIntersect(a, fcl::Transform3d::Identity(), b, poses[i], &contacts);
      return contacts.empty() ? 0.0 : contacts[0].penetration_depth;
    }
    solver.shapeDistance(a, fcl::Transform3d::Identity(), b, poses[i], &distance, &p1, &p2);
    return distance;
  });
}

void fclIndepGjk(benchmark::State& state, Kind kind) { fclGjk<fcl::detail::GJKSolver_indepd>(state, kind); }

void fclLibccdGjk(benchmark::State& state, Kind kind) { fclGjk<fcl::detail::GJKSolver_libccdd>(state, kind); }

void bulletGjk(benchmark::State& state, Kind kind) {
  Scene const& s = scene(kind, static_cast<unsigned int>(state.range(0)));
  std::vector<std::unique_ptr<btConvexHullShape>> hulls;
  for (HullShape const& hull : s.hulls) {
    hulls.push_back(std::make_unique<btConvexHullShape>());
    hulls.back()->setMargin(0.0);
    for (ZuVector const& v : hull.vertices()) hulls.back()->addPoint(btVector3(v.x(), v.y(), v.z()), false);
    hulls.back()->recalcLocalAabb();
  }
  std::vector<btTransform> poses;
  for (Pose const& pose : s.poses) {
    ZuOrientation const q = pose.orientation();
    ZuVector const t = pose.translation();
    poses.emplace_back(btQuaternion(q[1], q[2], q[3], q[0]), btVector3(t.x(), t.y(), t.z()));
  }
  btVoronoiSimplexSolver simplex;
  btGjkEpaPenetrationDepthSolver depth;
  btVector3 axis(0.0, 1.0, 0.0);
  overPoses(state, kind, [&](Scene const&, unsigned int i) {
    btGjkPairDetector detector(hulls[s.first[i]].get(), hulls[s.second[i]].get(), &simplex, &depth);
    if (kind == WARM) detector.setCachedSeparatingAxis(axis);
    btGjkPairDetector::ClosestPointInput input;
    input.m_transformA.setIdentity();
    input.m_transformB = poses[i];
    btPointCollector result;
    detector.getClosestPoints(input, result, nullptr);
    axis = detector.getCachedSeparatingAxis();
    return static_cast<double>(result.m_distance);
  });
}

BENCHMARK_CAPTURE(fclIndepGjk, cold, COLD)->Apply(sizes);
BENCHMARK_CAPTURE(fclIndepGjk, warm, WARM)->Apply(sizes);
BENCHMARK_CAPTURE(fclIndepGjk, depth, DEPTH)->Apply(sizes);
BENCHMARK_CAPTURE(fclLibccdGjk, cold, COLD)->Apply(sizes);
BENCHMARK_CAPTURE(fclLibccdGjk, warm, WARM)->Apply(sizes);
BENCHMARK_CAPTURE(fclLibccdGjk, depth, DEPTH)->Apply(sizes);
BENCHMARK_CAPTURE(bulletGjk, cold, COLD)->Apply(sizes);
BENCHMARK_CAPTURE(bulletGjk, warm, WARM)->Apply(sizes);
BENCHMARK_CAPTURE(bulletGjk, depth, DEPTH)->Apply(sizes);

#endif

BENCHMARK_CAPTURE(gjk, cold, COLD)->Apply(sizes);
BENCHMARK_CAPTURE(gjk, warm, WARM)->Apply(sizes);
BENCHMARK_CAPTURE(gjk, depth, DEPTH)->Apply(sizes);

}  // namespace
