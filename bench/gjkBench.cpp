// The convex engines on pairs of hulls, boxes and cylinders: cold, warm along a coherent path, and penetration; peers
// on the same solids and poses. The argument is the number of vertices; 1 is a pair of boxes, 2 a cylinder and a box.
// For medians of interleaved runs:
//   zuBench --benchmark_filter=Gjk --benchmark_enable_random_interleaving=true --benchmark_repetitions=9
#include <map>
#include <memory>

#include "bench/overPoses.h"
#include "geometry/zuBox.h"
#include "geometry/zuConvexHull.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuRobustGjk.h"
#include "geometry/zuTriPhysicalExtent.h"
#include "tests/hullShape.h"
#ifdef ZU_BENCH_PEERS
#include <BulletCollision/CollisionShapes/btConvexHullShape.h>
#include <fcl/geometry/shape/convex.h>

#include "bench/peers.h"
#endif

namespace {

using Pose = ZuCoordinateSystemTransformation;

enum Kind { COLD, WARM, DEPTH };

constexpr unsigned int theNumberOfBodies = 16;
constexpr unsigned int theNumberOfPoses = 1000;

/// Arguments that are no numbers of vertices.
constexpr unsigned int theBoxes = 1, theCylinderAndBox = 2;

/// A solid, with what makes that of a peer.
struct Body {
  enum Form { HULL, BOX, CYLINDER } form = HULL;
  ZuVector size;  ///< full sides; of a cylinder, along z: diameter, diameter, height
  HullShape hull;
  std::unique_ptr<ZuShape> shape;  ///< as clients hold it

  static Body random(Form form, unsigned int vertices, RandomValues& r) {
    Body body;
    body.form = form;
    if (form == HULL) {
      body.hull = randomHull(r, vertices);
      auto mesh = std::make_unique<ZuTriPhysicalExtent>();
      mesh->convexHull(ZuXmlVectorVector(body.hull.vertices()));
      mesh->computeSupportPoint(ZuVector::xVector(1.0));  // builds the table, which is not to be measured
      body.shape = std::move(mesh);
      return body;
    }
    body.size = ZuVector(r.real(0.6, 1.2), r.real(0.6, 1.2), r.real(0.6, 1.2));
    if (form == CYLINDER) {
      body.size[1] = body.size.x();
      ZuVector const half = ZuVector::zVector(0.5 * body.size.z());
      body.shape = std::make_unique<ZuCylinder>(ZuLineSegment(-half, half), 0.5 * body.size.x());
    } else {
      body.shape = std::make_unique<ZuBox>(Pose(), body.size * 0.5);
    }
    return body;
  }
};

/// The bodies and poses of one benchmark. Shape 1 stands at the identity.
struct Scene {
  std::vector<Body> bodies1, bodies2;
  std::vector<Pose> poses;
  std::vector<unsigned int> first, second;

  Scene(Kind kind, unsigned int vertices) {
    RandomValues r(vertices);
    Body::Form const form2 = vertices <= theCylinderAndBox ? Body::BOX : Body::HULL;
    Body::Form const form1 = vertices == theCylinderAndBox ? Body::CYLINDER : form2;
    for (unsigned int i = 0; i < theNumberOfBodies; ++i) {
      bodies1.push_back(Body::random(form1, vertices, r));
      bodies2.push_back(Body::random(form2, vertices, r));
    }
    for (unsigned int i = 0; i < theNumberOfPoses; ++i) {
      first.push_back(kind == WARM ? 0 : r.index(theNumberOfBodies));
      second.push_back(kind == WARM ? 1 : r.index(theNumberOfBodies));
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

Scene const& scene(benchmark::State const& state, Kind kind) {
  return scene(kind, static_cast<unsigned int>(state.range(0)));
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(theBoxes)->Arg(theCylinderAndBox)->Arg(8)->Arg(64)->Arg(512)->Arg(4096);
}

template <class Engine>
void engine(benchmark::State& state, Kind kind) {
  Scene const& s = scene(state, kind);
  Engine engine;
  ZuVector separation;
  overPoses(state, theNumberOfPoses, [&](std::size_t i) {
    ZuVector witness1, witness2;
    double distance = 0.0;
    if (kind != WARM) separation = ZuVector();
    engine.distance(*s.bodies1[s.first[i]].shape, *s.bodies2[s.second[i]].shape, Pose(), s.poses[i], true, witness1,
                    witness2, distance, &separation);
    return distance;
  });
}

void gjk(benchmark::State& state, Kind kind) { engine<ZuGJK>(state, kind); }

void robustGjk(benchmark::State& state, Kind kind) { engine<ZuRobustGJK>(state, kind); }

#ifdef ZU_BENCH_PEERS

std::unique_ptr<fcl::Convexd> fclHull(HullShape const& hull) {
  auto vertices = std::make_shared<std::vector<fcl::Vector3d>>();
  for (ZuVector const& v : hull.vertices()) vertices->push_back(fcl::Vector3d(v.x(), v.y(), v.z()));
  std::vector<ZuGJKTriangle> facets;
  ZuConvexHull().computeConvexHull(hull.vertices(), facets, nullptr);
  auto faces = std::make_shared<std::vector<int>>();
  for (ZuGJKTriangle const& f : facets) {
    faces->insert(faces->end(), {3, f.vertexIndex(0), f.vertexIndex(2), f.vertexIndex(1)});
  }
  return std::make_unique<fcl::Convexd>(vertices, static_cast<int>(facets.size()), faces);
}

template <class Solid>
std::unique_ptr<Solid> fclSolid(Body const& body) {
  if constexpr (std::is_same_v<Solid, fcl::Boxd>) {
    return std::make_unique<Solid>(fclSolid(static_cast<ZuBox const&>(*body.shape)));
  } else if constexpr (std::is_same_v<Solid, fcl::Cylinderd>) {
    return std::make_unique<Solid>(fclSolid(static_cast<ZuCylinder const&>(*body.shape)));
  } else {
    return fclHull(body.hull);
  }
}

template <class Solver, class Solid1, class Solid2>
void fclPairs(benchmark::State& state, Kind kind) {
  Scene const& s = scene(state, kind);
  std::vector<std::unique_ptr<Solid1>> solids1;
  std::vector<std::unique_ptr<Solid2>> solids2;
  for (Body const& body : s.bodies1) solids1.push_back(fclSolid<Solid1>(body));
  for (Body const& body : s.bodies2) solids2.push_back(fclSolid<Solid2>(body));
  std::vector<fcl::Transform3d> const poses = fclPoses(s.poses);
  Solver solver;
  solver.enableCachedGuess(kind == WARM);
  overPoses(state, theNumberOfPoses, [&](std::size_t i) {
    Solid1 const& a = *solids1[s.first[i]];
    Solid2 const& b = *solids2[s.second[i]];
    return kind == DEPTH ? fclDepth(solver, a, b, poses[i]) : fclDistance(solver, a, b, poses[i]);
  });
}

template <class Solver>
void fclGjk(benchmark::State& state, Kind kind) {
  if (state.range(0) == theBoxes) {
    fclPairs<Solver, fcl::Boxd, fcl::Boxd>(state, kind);
  } else if (state.range(0) == theCylinderAndBox) {
    fclPairs<Solver, fcl::Cylinderd, fcl::Boxd>(state, kind);
  } else {
    fclPairs<Solver, fcl::Convexd, fcl::Convexd>(state, kind);
  }
}

void fclIndepGjk(benchmark::State& state, Kind kind) { fclGjk<FclIndep>(state, kind); }

void fclLibccdGjk(benchmark::State& state, Kind kind) { fclGjk<FclLibccd>(state, kind); }

BulletSolid bulletSolid(Body const& body) {
  if (body.form == Body::BOX) return withoutMargin(bulletSolid(static_cast<ZuBox const&>(*body.shape)));
  if (body.form == Body::CYLINDER) return withoutMargin(bulletSolid(static_cast<ZuCylinder const&>(*body.shape)));
  auto hull = std::make_unique<btConvexHullShape>();
  for (ZuVector const& v : body.hull.vertices()) hull->addPoint(btVector3(v.x(), v.y(), v.z()), false);
  hull->recalcLocalAabb();
  return withoutMargin(std::move(hull));
}

void bulletGjk(benchmark::State& state, Kind kind) {
  Scene const& s = scene(state, kind);
  std::vector<BulletSolid> solids1, solids2;
  for (Body const& body : s.bodies1) solids1.push_back(bulletSolid(body));
  for (Body const& body : s.bodies2) solids2.push_back(bulletSolid(body));
  std::vector<btTransform> const poses = bulletPoses(s.poses);
  BulletQuery query;
  overPoses(state, theNumberOfPoses, [&](std::size_t i) {
    return query.distance(*solids1[s.first[i]], *solids2[s.second[i]], poses[i], kind == WARM);
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
BENCHMARK_CAPTURE(robustGjk, cold, COLD)->Apply(sizes);
BENCHMARK_CAPTURE(robustGjk, warm, WARM)->Apply(sizes);
BENCHMARK_CAPTURE(robustGjk, depth, DEPTH)->Apply(sizes);

}  // namespace
