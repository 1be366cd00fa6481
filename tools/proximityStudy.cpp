#include "tools/proximityStudy.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "foundation/zuPrint.h"
#include "geometry/zuShapeProximityDescriptor.h"

namespace {

/// Of a point's distance from the origin: some ten roundings of placing a shape, and as many of its own.
double constexpr theBoxRounding = 1e-14;

/// The box about a shape that is placed in the world, from its farthest points along the axes.
ZuAxisAlignedBoundingBox boxOf(ZuShape const& shape, ZuCoordinateSystemTransformation const& frame) {
  ZuVector axes[3];
  frame.orientation().getDcmRows(axes[0], axes[1], axes[2]);  // the world's axes, seen from the body
  double lowest[3];
  double highest[3];
  for (unsigned int i = 0; i < 3; ++i) {
    highest[i] = axes[i].dot(shape.computeSupportPoint(axes[i])) + frame.translation()[i];
    lowest[i] = axes[i].dot(shape.computeSupportPoint(-axes[i])) + frame.translation()[i];
  }
  return {lowest[0], highest[0], lowest[1], highest[1], lowest[2], highest[2]};
}

/// Keeps the library's "not supported" lines back while it lives: the study reports such pairs in its own way.
class UnsupportedSilencer {
 public:
  UnsupportedSilencer() {
    Zu::Print::instance().setSink([](int, std::string const& message) {
      if (message.find("not supported") != std::string::npos) return;
      std::fprintf(stderr, "%s%s", message.c_str(), !message.empty() && message.back() == '\n' ? "" : "\n");
    });
  }
  ~UnsupportedSilencer() { Zu::Print::instance().setSink({}); }
  UnsupportedSilencer(UnsupportedSilencer const&) = delete;
  UnsupportedSilencer& operator=(UnsupportedSilencer const&) = delete;
};

}  // namespace

ProximityStudy::ProximityStudy(Scene const& scene, double margin) : m_Scene(scene), m_Margin(margin) {
  for (std::size_t body = 0; body < scene.bodies().size(); ++body) {
    ZuShapeContainer const& shapes = scene.bodies()[body].shapes();
    for (std::size_t i = 0; i < shapes.size(); ++i) m_Items.push_back({body, i, shapes.shape(i)});
  }
  m_Frames.resize(scene.bodies().size());
  m_InverseFrames.resize(scene.bodies().size());
  m_State.resizeDatabaseToSystem(scene);
  m_State.setIsInitialized(true);
}

CycleResult ProximityStudy::next() {
  auto const start = std::chrono::steady_clock::now();
  CycleResult result;
  result.cycle = m_Cycle;
  place();
  if (hasMargin()) {
    updateBoxes();
    for (auto const& [i, j] : m_BroadPhase.intersections()) ask(m_Items[i], m_Items[j], result);
  } else {
    for (std::size_t i = 0; i < m_Items.size(); ++i) {
      for (std::size_t j = i + 1; j < m_Items.size(); ++j) ask(m_Items[i], m_Items[j], result);
    }
  }
  m_State.invalidateAll();
  ++m_Cycle;
  result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

/// Whether the body can be elsewhere than in the cycle before.
bool ProximityStudy::moves(std::size_t body) const {
  return m_Cycle == 0 || m_Cycle < m_Scene.bodies()[body].numberOfFrames();
}

void ProximityStudy::place() {
  for (std::size_t body = 0; body < m_Frames.size(); ++body) {
    if (!moves(body)) continue;
    m_Frames[body] = m_Scene.bodies()[body].frame(m_Cycle);
    m_InverseFrames[body] = m_Frames[body].inverse();
  }
}

void ProximityStudy::updateBoxes() {
  if (m_Cycle == 0) {
    ZuIntervalIntersectionProcessor::Boxes boxes;
    boxes.reserve(m_Items.size());
    for (Item const& item : m_Items) boxes.pushBack(enlargedBox(item));
    m_BroadPhase.initialize(boxes);
    return;
  }
  for (unsigned int i = 0; i < m_Items.size(); ++i) {
    if (moves(m_Items[i].body)) m_BroadPhase.updateAABB(enlargedBox(m_Items[i]), i);
  }
  m_BroadPhase.update();
}

/// Enlarged by half the margin on every side, and by what rounding can take from it, so that boxes of pairs within the
/// margin meet.
ZuAxisAlignedBoundingBox ProximityStudy::enlargedBox(Item const& item) const {
  ZuAxisAlignedBoundingBox box = boxOf(*item.shape, m_Frames[item.body]);
  double const reach = std::max(box.maxCorner().mag(), box.minCorner().mag());
  box.enlarge(m_Margin + theBoxRounding * reach);
  return box;
}

void ProximityStudy::ask(Item const& item1, Item const& item2, CycleResult& result) {
  PairResult pair;
  if (!m_Scene.isCompared(item1.body, item2.body) || !answer(item1, item2, pair)) return;
  ++result.pairsAsked;
  if (pair.distance > m_Margin || (result.found && pair.distance >= result.closest.distance)) return;
  result.found = true;
  result.closest = pair;
}

/// Asks the first shape and, when it does not answer for the second, that one. A mesh that is to be taken as it is goes
/// first: asked by others it would count as its hull.
bool ProximityStudy::answer(Item const& item1, Item const& item2, PairResult& pair) {
  bool const isTurned = item2.shape->useAABB() && !item1.shape->useAABB();
  Item const& first = isTurned ? item2 : item1;
  Item const& second = isTurned ? item1 : item2;
  bool const isAnswered = askShape(first, second, pair);
  if (!isAnswered && !askShape(second, first, pair)) {
    m_Unanswered.insert(item1.shape->token().token() + " - " + item2.shape->token().token());
    return false;
  }
  if (isAnswered == isTurned) {  // tell the two in the order of the scene
    std::swap(pair.body1, pair.body2);
    std::swap(pair.shape1, pair.shape2);
    std::swap(pair.point1, pair.point2);
  }
  return true;
}

bool ProximityStudy::askShape(Item const& first, Item const& second, PairResult& pair) {
  Answers& answers = m_Answers[first.shape->type()][second.shape->type()];
  if (answers == Answers::NO) return false;
  std::optional<UnsupportedSilencer> silencer;
  if (answers == Answers::UNKNOWN) silencer.emplace();
  std::uint64_t const before = ZuShape::unansweredPairs();
  ZuShapeProximityDescriptor descriptor;
  descriptor.setKey1(keyOf(first));
  descriptor.setKey2(keyOf(second));
  ZuVector witness1, witness2;
  double const distance = first.shape->distanceAndWitnessPointsTo(
      *second.shape, m_InverseFrames[first.body] * m_Frames[second.body], descriptor, m_State, witness1, witness2);
  answers = ZuShape::unansweredPairs() == before ? Answers::YES : Answers::NO;
  if (answers == Answers::NO) return false;
  pair = {first.body,
          first.index,
          second.body,
          second.index,
          distance,
          m_Frames[first.body] * witness1,
          m_Frames[second.body] * witness2};
  return true;
}

ZuShapeStateCacheKey ProximityStudy::keyOf(Item const& item) const {
  Body const& body = m_Scene.bodies()[item.body];
  return {static_cast<int>(body.manipulator()), static_cast<int>(body.link()), static_cast<int>(item.index)};
}
