// Boxes against boxes, balls and capsules that are apart, through the shape interface; peers on the same pairs.
//   zuBench --benchmark_filter='(box|sphere|capsule)Box' --benchmark_enable_random_interleaving=true
#include <benchmark/benchmark.h>

#include "foundation/zuManipulatorSystem.h"
#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuSphere.h"
#include "geometry/zuSystemShapeProximityState.h"
#include "tests/randomValues.h"
#ifdef ZU_BENCH_PEERS
#include <BulletCollision/CollisionShapes/btBoxShape.h>
#include <BulletCollision/CollisionShapes/btCapsuleShape.h>
#include <BulletCollision/CollisionShapes/btSphereShape.h>
#include <BulletCollision/NarrowPhaseCollision/btGjkEpaPenetrationDepthSolver.h>
#include <BulletCollision/NarrowPhaseCollision/btGjkPairDetector.h>
#include <BulletCollision/NarrowPhaseCollision/btPointCollector.h>
#include <BulletCollision/NarrowPhaseCollision/btVoronoiSimplexSolver.h>
#include <fcl/geometry/shape/box.h>
#include <fcl/geometry/shape/capsule.h>
#include <fcl/geometry/shape/sphere.h>
#include <fcl/narrowphase/detail/gjk_solver_indep.h>
#include <fcl/narrowphase/detail/gjk_solver_libccd.h>

#include "bench/peers.h"
#endif

namespace {

using Pose = ZuCoordinateSystemTransformation;

constexpr std::size_t theNumberOfPairs = 1024;
constexpr double theRadius = 0.3;
constexpr double theLength = 0.8;

class OneShape : public ZuManipulatorSystem {
 public:
  unsigned int numberOfManipulators() const override { return 2; }
  unsigned int numberOfLinks(unsigned int) const override { return 1; }
  unsigned int numberOfShapes(unsigned int, unsigned int) const override { return 1; }
};

ZuBox const theBox1(Pose(), ZuVector(0.5, 0.4, 0.2));
ZuBox const theBox2(Pose(), ZuVector(0.3, 0.3, 0.6));
ZuSphere const theBall(ZuVector(), theRadius, 3);
ZuCapsule const theCapsule(ZuLineSegment(ZuVector(0, 0, -0.5 * theLength), ZuVector(0, 0, 0.5 * theLength)), theRadius);

/// Poses of shape 2 in which it is apart from box 1, at up to about its own size.
struct Scene {
  explicit Scene(ZuShape const& shape2) {
    state.resizeDatabaseToSystem(OneShape());
    state.setIsInitialized(true);
    descriptor.setKey1(ZuShapeStateCacheKey(1, 0, 0));
    descriptor.setKey2(ZuShapeStateCacheKey(0, 0, 0));
    RandomValues random(5);
    while (poses.size() < theNumberOfPairs) {
      Pose const pose = random.transformation(1.5);
      if (theBox1.distanceTo(shape2, pose, descriptor, state) > 0.0) poses.push_back(pose);
    }
  }
  std::vector<Pose> poses;
  ZuShapeProximityDescriptor descriptor;
  ZuSystemShapeProximityState state;
};

template <class Query>
void overPoses(benchmark::State& state, std::size_t count, Query const& query) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(query(i));
    i = i + 1 < count ? i + 1 : 0;
  }
}

void distance(benchmark::State& state, ZuShape const& shape2) {
  Scene scene(shape2);
  ZuShape const* const shape1 = &theBox1;
  overPoses(state, theNumberOfPairs,
            [&](std::size_t i) { return shape1->distanceTo(shape2, scene.poses[i], scene.descriptor, scene.state); });
}

void witnessPoints(benchmark::State& state, ZuShape const& shape2) {
  Scene scene(shape2);
  overPoses(state, theNumberOfPairs, [&](std::size_t i) {
    ZuVector w1, w2, direction;
    double d;
    theBox1.computePenetrationDistanceAndSupportPoints(shape2, scene.poses[i], w1, w2, d, direction);
    return d;
  });
}

BENCHMARK_CAPTURE(distance, boxBox, theBox2);
BENCHMARK_CAPTURE(distance, sphereBox, theBall);
BENCHMARK_CAPTURE(distance, capsuleBox, theCapsule);
BENCHMARK_CAPTURE(witnessPoints, boxBox, theBox2);
BENCHMARK_CAPTURE(witnessPoints, sphereBox, theBall);
BENCHMARK_CAPTURE(witnessPoints, capsuleBox, theCapsule);

#ifdef ZU_BENCH_PEERS

fcl::Boxd fclBox(ZuBox const& box) { return {2 * box.extent(0), 2 * box.extent(1), 2 * box.extent(2)}; }

template <class Solver, class Solid>
void fclDistance(benchmark::State& state, ZuShape const& shape2, Solid const& solid2) {
  std::vector<fcl::Transform3d> poses;
  for (Pose const& pose : Scene(shape2).poses) poses.push_back(fclPose(pose));
  fcl::Boxd const box = fclBox(theBox1);
  Solver const solver;
  overPoses(state, theNumberOfPairs, [&](std::size_t i) {
    double d = 0.0;
    fcl::Vector3d p1, p2;
    solver.shapeDistance(box, fcl::Transform3d::Identity(), solid2, poses[i], &d, &p1, &p2);
    return d;
  });
}

void bulletDistance(benchmark::State& state, ZuShape const& shape2, btConvexShape&& solid2) {
  std::vector<btTransform> poses;
  for (Pose const& pose : Scene(shape2).poses) poses.push_back(bulletPose(pose));
  btBoxShape box(btVector3(theBox1.extent(0), theBox1.extent(1), theBox1.extent(2)));
  btVoronoiSimplexSolver simplex;
  btGjkEpaPenetrationDepthSolver depth;
  overPoses(state, theNumberOfPairs, [&](std::size_t i) {
    btGjkPairDetector detector(&box, &solid2, &simplex, &depth);
    btGjkPairDetector::ClosestPointInput input;
    input.m_transformA.setIdentity();
    input.m_transformB = poses[i];
    btPointCollector result;
    detector.getClosestPoints(input, result, nullptr);
    return static_cast<double>(result.m_distance);
  });
}

using Indep = fcl::detail::GJKSolver_indepd;
using Libccd = fcl::detail::GJKSolver_libccdd;

void fclIndep(benchmark::State& s, ZuBox const& b) { fclDistance<Indep>(s, b, fclBox(b)); }
void fclIndep(benchmark::State& s, ZuSphere const& b) { fclDistance<Indep>(s, b, fcl::Sphered(theRadius)); }
void fclIndep(benchmark::State& s, ZuCapsule const& b) {
  fclDistance<Indep>(s, b, fcl::Capsuled(theRadius, theLength));
}
void fclLibccd(benchmark::State& s, ZuBox const& b) { fclDistance<Libccd>(s, b, fclBox(b)); }
void fclLibccd(benchmark::State& s, ZuSphere const& b) { fclDistance<Libccd>(s, b, fcl::Sphered(theRadius)); }
void fclLibccd(benchmark::State& s, ZuCapsule const& b) {
  fclDistance<Libccd>(s, b, fcl::Capsuled(theRadius, theLength));
}
void bullet(benchmark::State& s, ZuBox const& b) {
  bulletDistance(s, b, btBoxShape(btVector3(b.extent(0), b.extent(1), b.extent(2))));
}
void bullet(benchmark::State& s, ZuSphere const& b) { bulletDistance(s, b, btSphereShape(theRadius)); }
void bullet(benchmark::State& s, ZuCapsule const& b) { bulletDistance(s, b, btCapsuleShapeZ(theRadius, theLength)); }

#define ZU_BENCH_PEER(peer)                    \
  BENCHMARK_CAPTURE(peer, boxBox, theBox2);    \
  BENCHMARK_CAPTURE(peer, sphereBox, theBall); \
  BENCHMARK_CAPTURE(peer, capsuleBox, theCapsule)
ZU_BENCH_PEER(fclIndep);
ZU_BENCH_PEER(fclLibccd);
ZU_BENCH_PEER(bullet);

#endif

}  // namespace
