// Drives both convex engines with arbitrary finite vertices, solids and poses. No answer may be a nan, run for long or
// grow without bound. For solids of 1e-6 m to 1e6 m the robust engine must also keep what it guarantees: the witness
// points are of their solids and differ by the separation vector, whose plane has the solids on its two sides, and
// neither the order of the shapes nor the start changes the distance.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <limits>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
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

/// A solid with what the guarantees of its answers depend on.
struct Solid {
  std::unique_ptr<ZuShape> shape;
  double extent = 0.0;  ///< largest distance of its points
  double reach = 0.0;   ///< the same of its points from the origin of its frame
  bool isCurved = false;
};

Solid readHull(Numbers& numbers, unsigned int kind) {
  Solid solid;
  std::vector<ZuVector> points;
  for (unsigned int n = numbers.byte() % 12 + 1; n > 0; --n) points.push_back(numbers.vector(kind));
  for (ZuVector const& p : points) {
    solid.reach = std::max(solid.reach, p.mag());
    for (ZuVector const& q : points) solid.extent = std::max(solid.extent, p.distanceTo(q));
  }
  solid.shape = std::make_unique<HullShape>(points);
  return solid;
}

Solid readSolid(Numbers& numbers, unsigned int kind) {
  Solid solid;
  // Curved solids have no support points for a direction where the square of a size is no double.
  auto const side = [&numbers, kind] {
    double const length = std::abs(numbers.real(kind));
    return length < 1e-100 ? 0.0 : length;
  };
  double const x = side(), y = side(), z = side();
  ZuLineSegment const axis(ZuVector(0.0, 0.0, -z), ZuVector(0.0, 0.0, z));
  unsigned int const form = numbers.byte() % 5;
  if (form == 0) solid.shape = std::make_unique<ZuBox>(Pose(), ZuVector(x, y, z));
  if (form == 1) solid.shape = std::make_unique<ZuCapsule>(axis, x);
  if (form == 2) solid.shape = std::make_unique<ZuCylinder>(axis, x);
  if (form == 3) solid.shape = std::make_unique<ZuCone>(axis, x);
  if (form == 4) solid.shape = std::make_unique<ZuEllipsoid>(Pose(), ZuVector(x, y, z));
  solid.extent = 2.0 * (form == 1 ? x + z : std::max(std::max(x, z), form == 0 || form == 4 ? y : 0.0));
  solid.reach = solid.extent;
  solid.isCurved = form >= 2;
  return solid;
}

/// How far a point sticks out of the solid, in the directions of the axes and of v.
double excess(ZuShape const& shape, ZuVector const& point, ZuVector const& v) {
  double most = 0.0;
  for (ZuVector const& along : {ZuVector(1, 0, 0), ZuVector(0, 1, 0), ZuVector(0, 0, 1), v.unitVector()}) {
    for (ZuVector const& d : {along, -along}) most = std::max(most, d.dot(point - shape.computeSupportPoint(d)));
  }
  return most;
}

/// What the plane across the separation proves of the distance from below: the gap that it has between the solids.
double provenDistance(ZuShape const& a, ZuShape const& b, Pose const& T1, Pose const& T2, ZuVector const& separation) {
  ZuVector const n = separation.unitVector();
  ZuVector const p = T1 * a.computeSupportPoint(T1.orientation().inverseTimes(-n));
  ZuVector const q = T2 * b.computeSupportPoint(T2.orientation().inverseTimes(n));
  return n.dot(p - q);
}

void requireGuarantees(ZuRobustGJK& engine, Solid const& solid1, Solid const& solid2, Pose const& T1, Pose const& T2,
                       ZuVector const& start) {
  ZuShape const &a = *solid1.shape, &b = *solid2.shape;
  Answer const bare = ask(engine, a, b, T1, T2, start, false);
  Answer const answer = ask(engine, a, b, T1, T2, start, true);
  double gap = engine.depthGap();
  double const size = std::max(solid1.extent, solid2.extent);
  double const place = std::max(T1.translation().mag() + solid1.reach, T2.translation().mag() + solid2.reach);
  if (!(size >= 1e-6 && size <= 1e6 && place <= 1e6 * size)) return;
  double const rounding = 16.0 * 0x1p-52 * place, band = 1e-9 * size + rounding;
  for (Answer const* each : {&bare, &answer}) {
    require(((T1 * each->witness1 - T2 * each->witness2) - each->separation).mag() <= band);
    require(std::abs(each->separation.mag() - std::abs(each->distance)) <= band);
    require(excess(a, each->witness1, T1.orientation().inverseTimes(each->separation)) <= band);
    require(excess(b, each->witness2, T2.orientation().inverseTimes(each->separation)) <= band);
  }
  require(std::abs(bare.distance - std::max(answer.distance, 0.0)) <= band);
  bool const isCurved = solid1.isCurved || solid2.isCurved, isDepth = answer.distance <= band;
  double const bandOfDepth = isDepth ? (isCurved ? 1e-6 : 1e-7) * size + rounding : band;
  Answer const warm = ask(engine, a, b, T1, T2, answer.separation, true);
  gap = std::max(gap, engine.depthGap());
  Answer const swapped = ask(engine, b, a, T2, T1, ZuVector(), true);
  gap = std::max(gap, engine.depthGap());
  for (Answer const* other : {&warm, &swapped}) {
    require(std::abs(other->distance - answer.distance) <= bandOfDepth + (isDepth ? gap : 0.0));
  }
  if (isDepth) {  // moved along it, the solids touch
    Pose const moved(T2.translation() + answer.separation, T2.orientation());
    Answer const touching = ask(engine, a, b, T1, moved, ZuVector(), true);
    require(std::abs(touching.distance) <= bandOfDepth + gap + engine.depthGap());
    return;
  }
  double proven = -std::numeric_limits<double>::infinity();
  for (ZuVector const& v : {answer.separation, warm.separation, -swapped.separation}) {
    proven = std::max(proven, provenDistance(a, b, T1, T2, v));
  }
  // The rounding of a separation turns its plane, the more the shorter it is.
  require(answer.distance - proven <= band + rounding * size / answer.distance);
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
  unsigned int const kinds = numbers.byte(), kind[] = {kinds % 3, kinds / 3 % 3}, kindOfPose = kinds / 9 % 3;
  Solid solids[2];
  for (int k = 0; k < 2; ++k) {
    bool const isHull = (kinds / 27 >> k & 1U) == 0;
    solids[k] = isHull ? readHull(numbers, kind[k]) : readSolid(numbers, kind[k]);
  }
  Pose poses[2];
  for (Pose& pose : poses) {
    ZuVector const axis = numbers.vector(1), place = numbers.vector(kindOfPose);
    pose = Pose(place, ZuOrientation(numbers.real(1), axis.x(), axis.y(), axis.z()));
  }
  ZuVector const start = numbers.vector(kindOfPose);
  for (bool const penetration : {false, true}) {
    ask(theEngine, *solids[0].shape, *solids[1].shape, poses[0], poses[1], start, penetration);
  }
  requireGuarantees(theRobustEngine, solids[0], solids[1], poses[0], poses[1], start);
  return 0;
}
