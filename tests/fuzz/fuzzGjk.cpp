// Drives both convex engines with arbitrary finite vertices and poses. No answer may be a nan, run for long or grow
// without bound. For polytopes of sane size the robust engine must also agree with what follows from any support point:
// nothing of the shapes is nearer than the distance, its witness points differ by its vector, and neither the order of
// the shapes nor the start changes the distance.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "foundation/zuPrint.h"
#include "geometry/zuRobustGjk.h"
#include "tests/hullShape.h"

namespace {

using Pose = ZuCoordinateSystemTransformation;

void require(bool holds) {
  if (!holds) std::abort();
}

/// Reads numbers from bytes: of a lattice, where shapes are degenerate, of the unit cube, or any finite one.
class Numbers {
 public:
  Numbers(std::uint8_t const* data, std::size_t size) : m_Data(data), m_Left(size) {}

  unsigned int byte() {
    if (m_Left == 0) return 0;
    --m_Left;
    return *m_Data++;
  }
  double real(unsigned int kind) {
    if (kind == 0) return (static_cast<int>(byte()) - 128) / 16.0;
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) bits = bits << 8 | byte();
    if (kind == 1) return static_cast<double>(static_cast<std::int64_t>(bits)) * 0x1p-63;
    double number;
    std::memcpy(&number, &bits, sizeof number);
    return std::isfinite(number) ? number : 0.0;
  }
  ZuVector vector(unsigned int kind) {
    double const x = real(kind), y = real(kind), z = real(kind);
    return ZuVector(x, y, z);
  }

 private:
  std::uint8_t const* m_Data;
  std::size_t m_Left;
};

struct Answer {
  double distance = 0.0;
  ZuVector witness1, witness2, separation;
};

Answer ask(ZuGJK& engine, ZuShape const& a, ZuShape const& b, Pose const& T1, Pose const& T2, ZuVector const& start,
           bool penetration) {
  Answer answer;
  answer.separation = start;
  require(engine.distance(a, b, T1, T2, penetration, answer.witness1, answer.witness2, answer.distance,
                          &answer.separation));
  require(std::isfinite(answer.distance));
  for (ZuVector const& v : {answer.witness1, answer.witness2, answer.separation}) require(v * 0.0 == ZuVector());
  return answer;
}

/// The largest distance of a number of the pair from 0: no answer is better than its rounding.
double extent(HullShape const& a, HullShape const& b, Pose const& T1, Pose const& T2) {
  double most = std::max(T1.translation().mag(), T2.translation().mag());
  for (HullShape const* hull : {&a, &b}) {
    for (ZuVector const& v : hull->vertices()) most = std::max(most, v.mag());
  }
  return most;
}

/// That the plane across the separation, or across the depth, has the shapes on its two sides proves the distance from
/// below, or the depth from above.
void requireProven(HullShape const& a, HullShape const& b, Pose const& T1, Pose const& T2, Answer const& answer,
                   double band) {
  if (!(answer.separation.mag() > 1e3 * band)) return;
  ZuVector const n = answer.separation.unitVector() * (answer.distance > 0.0 ? -1.0 : 1.0);
  ZuVector const p = T1 * a.computeSupportPoint(T1.orientation().inverseTimes(n));
  ZuVector const q = T2 * b.computeSupportPoint(T2.orientation().inverseTimes(-n));
  require(std::abs(n.dot(p - q) + answer.distance) <= band);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static bool const theSinkIsSet = [] {
    Zu::Print::instance().setSink([](int, std::string const&) {});
    return true;
  }();
  require(theSinkIsSet);
  static ZuGJK theEngine;
  static ZuRobustGJK theRobustEngine;
  Numbers numbers(data, size);
  unsigned int const kinds = numbers.byte(), kind1 = kinds % 3, kind2 = kinds / 3 % 3, kindOfPose = kinds / 9 % 3;
  std::vector<ZuVector> points[2];
  for (int k = 0; k < 2; ++k) {
    for (unsigned int n = numbers.byte() % 12 + 1; n > 0; --n)
      points[k].push_back(numbers.vector(k == 0 ? kind1 : kind2));
  }
  HullShape const a(points[0]), b(points[1]);
  Pose poses[2];
  for (Pose& pose : poses) {
    ZuVector const axis = numbers.vector(1), place = numbers.vector(kindOfPose);
    pose = Pose(place, ZuOrientation(numbers.real(1), axis.x(), axis.y(), axis.z()));
  }
  ZuVector const start = numbers.vector(kindOfPose);
  for (bool const penetration : {false, true}) ask(theEngine, a, b, poses[0], poses[1], start, penetration);
  ask(theRobustEngine, a, b, poses[0], poses[1], start, false);
  Answer const answer = ask(theRobustEngine, a, b, poses[0], poses[1], start, true);
  double const most = extent(a, b, poses[0], poses[1]), band = 1e-7 * most;
  if (!(most > 1e-30 && most < 1e30)) return 0;
  require(((poses[0] * answer.witness1 - poses[1] * answer.witness2) - answer.separation).mag() <= band);
  require(std::abs(answer.separation.mag() - std::abs(answer.distance)) <= band);
  requireProven(a, b, poses[0], poses[1], answer, band);
  for (Answer const& other : {ask(theRobustEngine, b, a, poses[1], poses[0], ZuVector(), true),
                              ask(theRobustEngine, a, b, poses[0], poses[1], answer.separation, true)}) {
    require(std::abs(other.distance - answer.distance) <= band);
  }
  return 0;
}
