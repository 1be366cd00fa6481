// Distance and nearest points of two solids through the shape interface, and of the peers on the same solids and poses.
// For medians of interleaved runs:
//   zuBench --benchmark_filter=solids --benchmark_enable_random_interleaving=true --benchmark_repetitions=9
#include <memory>
#include <string>
#include <vector>

#include "bench/overPoses.h"
#include "foundation/zuManipulatorSystem.h"
#include "foundation/zuPrint.h"
#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuHalfSpace.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuRobustGjk.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuSphere.h"
#include "geometry/zuSystemShapeProximityState.h"
#include "geometry/zuTetrahedron.h"
#include "geometry/zuTriPhysicalExtent.h"
#include "tests/randomValues.h"
#ifdef ZU_BENCH_PEERS
#include "bench/peers.h"
#endif

namespace {

using Pose = ZuCoordinateSystemTransformation;
constexpr std::size_t thePoses = 1024;

// The solids, centred, their axis along z: half a metre in radius, a metre and a half long.
constexpr double theRadius = 0.5;
constexpr double theHalf = 0.75;
ZuLineSegment const theAxis(ZuVector(0.0, 0.0, -theHalf), ZuVector(0.0, 0.0, theHalf));
template <class Solid>
Solid make() {
  return Solid(theAxis, theRadius);
}
template <>
ZuSphere make() {
  return ZuSphere(ZuVector(), theRadius, 3);
}
template <>
ZuBox make() {
  return ZuBox(Pose(), ZuVector(0.4, 0.6, theHalf));
}

/// Apart, by up to a metre.
std::vector<Pose> const& poses() {
  static std::vector<Pose> const thePlaces = [] {
    RandomValues random(1);
    std::vector<Pose> all;
    for (std::size_t i = 0; i < thePoses; ++i)
      all.emplace_back(random.direction() * random.real(2.3, 3.3), random.orientation());
    return all;
  }();
  return thePlaces;
}

class TwoLinks : public ZuManipulatorSystem {
 public:
  unsigned int numberOfManipulators() const override { return 2; }
  unsigned int numberOfLinks(unsigned int) const override { return 1; }
  unsigned int numberOfShapes(unsigned int, unsigned int) const override { return 1; }
};

template <class First, class Second>
void zu(benchmark::State& state, bool isRobust) {
  First first = make<First>();
  Second const second = make<Second>();
  if (isRobust) first.setGjkEngine(ZuRobustGJK());
  ZuSystemShapeProximityState memory;
  memory.resizeDatabaseToSystem(TwoLinks());
  memory.setIsInitialized(true);
  ZuShapeProximityDescriptor descriptor;
  descriptor.setKey1(ZuShapeStateCacheKey(1, 0, 0));
  descriptor.setKey2(ZuShapeStateCacheKey(0, 0, 0));
  ZuShape const& asClientsHoldIt = first;
  ZuVector w1, w2;
  std::uint64_t time = 0;
  for (auto _ : state) {
    memory.setUpdateTime(++time);
    benchmark::DoNotOptimize(
        asClientsHoldIt.distanceAndWitnessPointsTo(second, poses()[time % thePoses], descriptor, memory, w1, w2));
    benchmark::DoNotOptimize(w2);
  }
}

/// What a cylinder answers in closed form takes the other shape as it stands: a copy of it in every place.
template <class Other>
void zuCylinderClosed(benchmark::State& state) {
  ZuCylinder const cylinder = make<ZuCylinder>();
  std::vector<Other> others(thePoses, make<Other>());
  for (std::size_t i = 0; i < thePoses; ++i) others[i].transformBy(poses()[i]);
  ZuSystemShapeProximityState memory;
  ZuShape const& asClientsHoldIt = cylinder;
  overPoses(state, thePoses, [&](std::size_t i) {
    return asClientsHoldIt.distanceTo(others[i], Pose(), ZuShapeProximityDescriptor(), memory);
  });
}

#ifdef ZU_BENCH_PEERS

template <class Solver, class First, class Second>
void fclPair(benchmark::State& state) {
  fclDistances<Solver>(state, fclSolid(make<First>()), fclSolid(make<Second>()), poses());
}

template <class First, class Second>
void bulletPair(benchmark::State& state) {
  bulletDistances(state, withoutMargin(bulletSolid(make<First>())), withoutMargin(bulletSolid(make<Second>())),
                  poses());
}

#endif

template <class First, class Second>
void peers([[maybe_unused]] std::string const& name) {
#ifdef ZU_BENCH_PEERS
  benchmark::RegisterBenchmark((name + "/fclIndep").c_str(), fclPair<FclIndep, First, Second>);
  benchmark::RegisterBenchmark((name + "/fclLibccd").c_str(), fclPair<FclLibccd, First, Second>);
  benchmark::RegisterBenchmark((name + "/bullet").c_str(), bulletPair<First, Second>);
#endif
}

template <class First, class Second>
void pairs(std::string const& name) {
  benchmark::RegisterBenchmark((name + "/zu").c_str(), zu<First, Second>, false);
  peers<First, Second>(name);
}

/// Of a pair that is answered by the engine.
template <class First, class Second>
void enginePairs(std::string const& name) {
  benchmark::RegisterBenchmark((name + "/zuRobust").c_str(), zu<First, Second>, true);
  pairs<First, Second>(name);
}

/// One solid of every class, of the names of their elements.
std::vector<std::shared_ptr<ZuShape const>> const& allSolids() {
  static std::vector<std::shared_ptr<ZuShape const>> const theSolids = [] {
    auto mesh = std::make_shared<ZuTriPhysicalExtent>();
    mesh->fitFromShape(make<ZuCylinder>());
    return std::vector<std::shared_ptr<ZuShape const>>{
        mesh,
        std::make_shared<ZuSphere>(make<ZuSphere>()),
        std::make_shared<ZuCapsule>(make<ZuCapsule>()),
        std::make_shared<ZuEllipsoid>(Pose(), ZuVector(0.4, 0.6, theHalf)),
        std::make_shared<ZuTetrahedron>(ZuVector(0.8, 0.0, -0.5), ZuVector(-0.5, 0.7, -0.5), ZuVector(-0.5, -0.7, -0.5),
                                        ZuVector(0.0, 0.0, 0.9)),
        std::make_shared<ZuBox>(make<ZuBox>()),
        std::make_shared<ZuLozenge>(ZuRectangle({}, {0.5, 0.0, 0.0}, {0.0, 0.4, 0.0}), 0.3),
        std::make_shared<ZuHalfSpace>(ZuPlane({0.0, 0.0, -1.2}, {0.0, 0.0, 1.0})),
        std::make_shared<ZuCylinder>(make<ZuCylinder>()),
        std::make_shared<ZuCone>(make<ZuCone>())};
  }();
  return theSolids;
}

/// distanceTo() of an ordered pair that is answered, by the robust engine where there is no closed form.
void pairDistance(benchmark::State& state, ZuShape const& first, ZuShape const& second) {
  std::unique_ptr<ZuShape> const asked(static_cast<ZuShape*>(first.clone()));
  asked->setGjkEngine(ZuRobustGJK());
  ZuSystemShapeProximityState memory;
  memory.setIsInitialized(true);
  overPoses(state, thePoses,
            [&](std::size_t i) { return asked->distanceTo(second, poses()[i], ZuShapeProximityDescriptor(), memory); });
}

void registerAllPairs() {
  Zu::Print::instance().setSink([](int, std::string const&) {});  // pairs that are not answered say so
  for (auto const& first : allSolids()) {
    for (auto const& second : allSolids()) {
      ZuSystemShapeProximityState memory;
      memory.setIsInitialized(true);
      std::uint64_t const before = ZuShape::unansweredPairs();
      first->distanceTo(*second, poses()[0], ZuShapeProximityDescriptor(), memory);
      if (ZuShape::unansweredPairs() != before) continue;
      std::string const name = "pairs/" + first->token().token() + "/" + second->token().token();
      benchmark::RegisterBenchmark(name.c_str(),
                                   [first, second](benchmark::State& state) { pairDistance(state, *first, *second); });
    }
  }
  Zu::Print::instance().setSink({});
}

bool const theRegistration = [] {
  registerAllPairs();
  enginePairs<ZuCylinder, ZuBox>("solids/cylinderBox");
  enginePairs<ZuCylinder, ZuCylinder>("solids/cylinderCylinder");
  enginePairs<ZuCone, ZuBox>("solids/coneBox");
  pairs<ZuCone, ZuSphere>("solids/coneSphere");
  pairs<ZuCapsule, ZuCapsule>("solids/capsuleCapsule");
  benchmark::RegisterBenchmark("solids/cylinderSphere/zu", zuCylinderClosed<ZuSphere>);
  peers<ZuCylinder, ZuSphere>("solids/cylinderSphere");
  benchmark::RegisterBenchmark("solids/cylinderCapsule/zu", zuCylinderClosed<ZuCapsule>);
  peers<ZuCylinder, ZuCapsule>("solids/cylinderCapsule");
  return true;
}();

}  // namespace
