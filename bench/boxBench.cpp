// Boxes against boxes, balls and capsules that are apart, through the shape interface; peers on the same pairs.
//   zuBench --benchmark_filter='(box|sphere|capsule)Box' --benchmark_enable_random_interleaving=true
#include "bench/overPoses.h"
#include "foundation/zuManipulatorSystem.h"
#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuSphere.h"
#include "geometry/zuSystemShapeProximityState.h"
#include "tests/randomValues.h"
#ifdef ZU_BENCH_PEERS
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

template <class Shape2>
void fclIndep(benchmark::State& state, Shape2 const& shape2) {
  fclDistances<FclIndep>(state, fclSolid(theBox1), fclSolid(shape2), Scene(shape2).poses);
}
template <class Shape2>
void fclLibccd(benchmark::State& state, Shape2 const& shape2) {
  fclDistances<FclLibccd>(state, fclSolid(theBox1), fclSolid(shape2), Scene(shape2).poses);
}
template <class Shape2>
void bullet(benchmark::State& state, Shape2 const& shape2) {
  bulletDistances(state, bulletSolid(theBox1), bulletSolid(shape2), Scene(shape2).poses);
}

#define ZU_BENCH_PEER(peer)                    \
  BENCHMARK_CAPTURE(peer, boxBox, theBox2);    \
  BENCHMARK_CAPTURE(peer, sphereBox, theBall); \
  BENCHMARK_CAPTURE(peer, capsuleBox, theCapsule)
ZU_BENCH_PEER(fclIndep);
ZU_BENCH_PEER(fclLibccd);
ZU_BENCH_PEER(bullet);

#endif

}  // namespace
