// From moving boxes to the pairs that intersect. Boxes of 0.5 to 1.5 m an edge, one to 8 cubic metres, so that a box
// meets about one other. One step moves every box and reads every pair. Coherent: each box moves by up to 1 % of an
// edge along each axis; incoherent: each box appears somewhere else. All contestants see the same boxes; "pairs" says
// that they agree. "bytes" is what the heap grew by.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "geometry/zuIntervalIntersectionProcessor.h"

#ifdef ZU_BENCH_PEERS
#include <BulletCollision/BroadphaseCollision/btAxisSweep3.h>
#include <BulletCollision/BroadphaseCollision/btDbvtBroadphase.h>
#include <LinearMath/btAabbUtil2.h>
#include <fcl/broadphase/broadphase_dynamic_AABB_tree.h>
#include <fcl/geometry/shape/box.h>
#endif

namespace {

struct PlainBox {
  double min[3], max[3];
};
using Frame = std::vector<PlainBox>;

/// Side (m) of the cube in which the boxes live.
double worldSide(std::int64_t count) { return 2.0 * std::cbrt(static_cast<double>(count)); }

class Random {
 public:
  double real(double low, double high) {
    return low + (high - low) * (static_cast<double>(m_Engine() >> 11) * 0x1p-53);
  }

 private:
  std::mt19937_64 m_Engine{20240607};
};

Frame randomFrame(std::int64_t count, Random& random) {
  Frame frame(static_cast<std::size_t>(count));
  for (PlainBox& box : frame) {
    for (int axis = 0; axis < 3; ++axis) {
      box.min[axis] = random.real(0.0, worldSide(count));
      box.max[axis] = box.min[axis] + random.real(0.5, 1.5);
    }
  }
  return frame;
}

/// Forth and back, so that the last frame is as near to the first as any other to its successor.
std::vector<Frame> coherentMotion(std::int64_t count) {
  Random random;
  std::vector<Frame> frames{randomFrame(count, random)};
  std::vector<double> velocities(3 * frames[0].size());
  for (double& velocity : velocities) velocity = random.real(-0.01, 0.01);
  for (int k = 0; k < 15; ++k) {
    Frame next = frames.back();
    for (std::size_t i = 0; i < next.size(); ++i) {
      for (std::size_t axis = 0; axis < 3; ++axis) {
        next[i].min[axis] += velocities[3 * i + axis];
        next[i].max[axis] += velocities[3 * i + axis];
      }
    }
    frames.push_back(std::move(next));
  }
  for (std::size_t k = frames.size() - 2; k > 0; --k) frames.push_back(Frame(frames[k]));
  return frames;
}

std::vector<Frame> incoherentMotion(std::int64_t count) {
  Random random;
  Frame const first = randomFrame(count, random);
  std::vector<Frame> frames;
  for (int k = 0; k < 8; ++k) {
    Frame frame = first;
    for (PlainBox& box : frame) {
      for (int axis = 0; axis < 3; ++axis) {
        double const size = box.max[axis] - box.min[axis];
        box.min[axis] = random.real(0.0, worldSide(count));
        box.max[axis] = box.min[axis] + size;
      }
    }
    frames.push_back(std::move(frame));
  }
  return frames;
}

// A contestant is built from the first frame, then takes a frame a step and returns the number of pairs.

class Zu {
 public:
  explicit Zu(Frame const& frame) : m_Processor(boxes(frame)) {}
  std::size_t step(Frame const& frame) {
    for (std::size_t i = 0; i < frame.size(); ++i) {
      m_Processor.updateAABB(box(frame[i]), static_cast<unsigned int>(i));
    }
    m_Processor.update();
    return read();
  }

 protected:
  static ZuAxisAlignedBoundingBox box(PlainBox const& b) {
    return {b.min[0], b.max[0], b.min[1], b.max[1], b.min[2], b.max[2]};
  }
  static ZuAxisAlignedBoundingBox::Boxes boxes(Frame const& frame) {
    ZuAxisAlignedBoundingBox::Boxes boxes;
    boxes.reserve(frame.size());
    for (PlainBox const& b : frame) boxes.pushBack(box(b));
    return boxes;
  }
  std::size_t read() const {
    std::size_t pairs = 0;
    for (auto const& pair : m_Processor.intersections()) {
      benchmark::DoNotOptimize(pair.first + pair.second);
      ++pairs;
    }
    return pairs;
  }

  ZuIntervalIntersectionProcessor m_Processor;
};

/// What to do about incoherent motion: initialize anew in each step.
class ZuAnew : public Zu {
 public:
  using Zu::Zu;
  std::size_t step(Frame const& frame) {
    m_Processor.initialize(boxes(frame));
    return read();
  }
};

#ifdef ZU_BENCH_PEERS

template <class Broadphase>
std::unique_ptr<Broadphase> makeBullet(std::size_t);
template <>
std::unique_ptr<btDbvtBroadphase> makeBullet(std::size_t) {
  return std::make_unique<btDbvtBroadphase>();
}
template <>
std::unique_ptr<btAxisSweep3> makeBullet(std::size_t count) {
  btScalar const side = static_cast<btScalar>(worldSide(static_cast<std::int64_t>(count))) + 2;
  return std::make_unique<btAxisSweep3>(btVector3(-1, -1, -1), btVector3(side, side, side),
                                        static_cast<unsigned short>(count + 1));
}

template <class Broadphase>
class Bullet {
 public:
  explicit Bullet(Frame const& frame) : m_Broadphase(makeBullet<Broadphase>(frame.size())) {
    for (PlainBox const& b : frame) {
      m_Proxies.push_back(m_Broadphase->createProxy(vector(b.min), vector(b.max), 0, this, 1, 1, nullptr));
    }
    m_Broadphase->calculateOverlappingPairs(nullptr);
  }
  ~Bullet() {
    for (btBroadphaseProxy* proxy : m_Proxies) m_Broadphase->destroyProxy(proxy, nullptr);
  }
  std::size_t step(Frame const& frame) {
    for (std::size_t i = 0; i < frame.size(); ++i) {
      m_Broadphase->setAabb(m_Proxies[i], vector(frame[i].min), vector(frame[i].max), nullptr);
    }
    m_Broadphase->calculateOverlappingPairs(nullptr);
    return read();
  }

 private:
  static btVector3 vector(double const (&v)[3]) {
    return {static_cast<btScalar>(v[0]), static_cast<btScalar>(v[1]), static_cast<btScalar>(v[2])};
  }
  /// Its pairs are those of enlarged boxes.
  std::size_t read() {
    btBroadphasePairArray const& pairs = m_Broadphase->getOverlappingPairCache()->getOverlappingPairArray();
    std::size_t count = 0;
    for (int k = 0; k < pairs.size(); ++k) {
      btBroadphaseProxy const& a = *pairs[k].m_pProxy0;
      btBroadphaseProxy const& b = *pairs[k].m_pProxy1;
      count += TestAabbAgainstAabb2(a.m_aabbMin, a.m_aabbMax, b.m_aabbMin, b.m_aabbMax);
    }
    return count;
  }

  std::unique_ptr<Broadphase> m_Broadphase;
  std::vector<btBroadphaseProxy*> m_Proxies;
};

class Fcl {
 public:
  explicit Fcl(Frame const& frame) {
    for (PlainBox const& b : frame) {
      auto shape = std::make_shared<fcl::Boxd>(b.max[0] - b.min[0], b.max[1] - b.min[1], b.max[2] - b.min[2]);
      m_Objects.push_back(std::make_unique<fcl::CollisionObjectd>(shape));
      place(*m_Objects.back(), b);
      m_Pointers.push_back(m_Objects.back().get());
    }
    m_Manager.registerObjects(m_Pointers);
    m_Manager.setup();
    benchmark::DoNotOptimize(read());
  }
  std::size_t step(Frame const& frame) {
    for (std::size_t i = 0; i < frame.size(); ++i) place(*m_Objects[i], frame[i]);
    m_Manager.update();
    return read();
  }

 private:
  static void place(fcl::CollisionObjectd& object, PlainBox const& b) {
    object.setTranslation({(b.min[0] + b.max[0]) / 2, (b.min[1] + b.max[1]) / 2, (b.min[2] + b.max[2]) / 2});
    object.computeAABB();
  }
  std::size_t read() {
    std::size_t pairs = 0;
    m_Manager.collide(&pairs, [](fcl::CollisionObjectd*, fcl::CollisionObjectd*, void* count) {
      ++*static_cast<std::size_t*>(count);
      return false;
    });
    return pairs;
  }

  std::vector<std::unique_ptr<fcl::CollisionObjectd>> m_Objects;
  std::vector<fcl::CollisionObjectd*> m_Pointers;
  fcl::DynamicAABBTreeCollisionManagerd m_Manager;
};

#endif

std::size_t heapInUse() {
  struct mallinfo2 const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

template <class Contestant>
void initialize(benchmark::State& state) {
  Random random;
  Frame const frame = randomFrame(state.range(0), random);
  std::size_t bytes = 0, pairs = 0;
  for (auto _ : state) {
    std::size_t const before = heapInUse();
    auto const contestant = std::make_unique<Contestant>(frame);
    state.PauseTiming();
    bytes = heapInUse() - before;
    pairs = contestant->step(frame);
    state.ResumeTiming();
  }
  state.counters["bytes"] = static_cast<double>(bytes);
  state.counters["pairs"] = static_cast<double>(pairs);
}

template <class Contestant>
void move(benchmark::State& state, std::vector<Frame> (*motion)(std::int64_t)) {
  std::vector<Frame> const frames = motion(state.range(0));
  Contestant contestant(frames[0]);
  std::size_t next = 1, pairs = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pairs = contestant.step(frames[next]));
    next = (next + 1) % frames.size();
  }
  state.counters["pairs"] = static_cast<double>(contestant.step(frames[0]));
}

template <class Contestant>
void enter(std::string const& name, std::int64_t most, std::int64_t mostIncoherent) {
  auto const upTo = [](benchmark::internal::Benchmark* benchmark, std::int64_t last) {
    for (std::int64_t count = 100; count <= last; count *= 10) benchmark->Arg(count);
    benchmark->Unit(benchmark::kMicrosecond);
  };
  upTo(benchmark::RegisterBenchmark(("broadPhase/initialize/" + name).c_str(), initialize<Contestant>), most);
  upTo(benchmark::RegisterBenchmark(("broadPhase/coherent/" + name).c_str(), move<Contestant>, coherentMotion), most);
  upTo(benchmark::RegisterBenchmark(("broadPhase/incoherent/" + name).c_str(), move<Contestant>, incoherentMotion),
       mostIncoherent);
}

bool const theContestantsAreEntered = [] {
  enter<Zu>("zu", 100000, 10000);
  enter<ZuAnew>("zuAnew", 100000, 100000);
#ifdef ZU_BENCH_PEERS
  enter<Bullet<btDbvtBroadphase>>("btDbvtBroadphase", 100000, 100000);
  enter<Bullet<btAxisSweep3>>("btAxisSweep3", 10000, 10000);  // has 16-bit indices
  enter<Fcl>("fclDynamicAABBTree", 100000, 100000);
#endif
  return true;
}();

}  // namespace
