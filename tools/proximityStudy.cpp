#include "tools/proximityStudy.h"

#include <chrono>

#include "foundation/zuPrint.h"
#include "geometry/zuShapeProximityDescriptor.h"

namespace {

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

/// Listens to the library's messages while it lives, and keeps whether a pair was not supported.
class UnsupportedListener {
 public:
  UnsupportedListener() {
    Zu::Print::instance().setSink([this](int, std::string const& message) {
      if (message.find("not supported") != std::string::npos) {
        m_Heard = true;
      } else {
        std::fprintf(stderr, "%s%s", message.c_str(), !message.empty() && message.back() == '\n' ? "" : "\n");
      }
    });
  }
  ~UnsupportedListener() { Zu::Print::instance().setSink({}); }
  UnsupportedListener(UnsupportedListener const&) = delete;
  UnsupportedListener& operator=(UnsupportedListener const&) = delete;

  bool takeHeard() { return std::exchange(m_Heard, false); }

 private:
  bool m_Heard = false;
};

}  // namespace

ProximityStudy::ProximityStudy(Scene const& scene, double margin) : m_Scene(scene), m_Margin(margin) {
  for (std::size_t body = 0; body < scene.bodies().size(); ++body) {
    ZuShapeContainer const& shapes = scene.bodies()[body].shapes();
    for (std::size_t i = 0; i < shapes.size(); ++i) m_Items.push_back({body, i, shapes.shape(i), {}});
  }
  m_Frames.resize(scene.bodies().size());
  m_InverseFrames.resize(scene.bodies().size());
  m_State.resizeDatabaseToSystem(scene);
  m_State.setIsInitialized(true);
}

CycleResult ProximityStudy::next() {
  auto const start = std::chrono::steady_clock::now();
  CycleResult result;
  result.cycle = m_Cycle++;
  place();
  for (std::size_t i = 0; i < m_Items.size(); ++i) {
    for (std::size_t j = i + 1; j < m_Items.size(); ++j) {
      Item const& item1 = m_Items[i];
      Item const& item2 = m_Items[j];
      if (!item1.box.testIntersection(item2.box) || !m_Scene.isCompared(item1.body, item2.body)) continue;
      ask(item1, item2, result);
    }
  }
  m_State.invalidateAll();
  result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

/// Each box is enlarged by half the margin on every side, so that boxes of pairs within the margin meet.
void ProximityStudy::place() {
  for (std::size_t body = 0; body < m_Frames.size(); ++body) {
    m_Frames[body] = m_Scene.bodies()[body].frame(m_Cycle - 1);
    m_InverseFrames[body] = m_Frames[body].inverse();
  }
  for (Item& item : m_Items) {
    item.box = boxOf(*item.shape, m_Frames[item.body]);
    item.box.enlarge(m_Margin);
  }
}

void ProximityStudy::ask(Item const& item1, Item const& item2, CycleResult& result) {
  PairResult pair;
  if (!answer(item1, item2, pair)) return;
  ++result.pairsAsked;
  if (pair.distance > m_Margin || (result.found && pair.distance >= result.closest.distance)) return;
  result.found = true;
  result.closest = pair;
}

/// Asks the first shape and, when it does not answer its pair, the second.
bool ProximityStudy::answer(Item const& item1, Item const& item2, PairResult& pair) {
  Item const* first = &item1;
  Item const* second = &item2;
  UnsupportedListener listener;
  for (int attempt = 0; attempt < 2; ++attempt, std::swap(first, second)) {
    std::pair<int, int> const types(first->shape->type(), second->shape->type());
    if (m_UnansweredTypes.count(types) != 0) continue;
    ZuShapeProximityDescriptor descriptor;
    descriptor.setKey1(keyOf(*first));
    descriptor.setKey2(keyOf(*second));
    ZuVector witness1;
    ZuVector witness2;
    double const distance = first->shape->distanceAndWitnessPointsTo(
        *second->shape, m_InverseFrames[first->body] * m_Frames[second->body], descriptor, m_State, witness1, witness2);
    if (!listener.takeHeard()) {
      pair = {first->body,
              first->index,
              second->body,
              second->index,
              distance,
              m_Frames[first->body] * witness1,
              m_Frames[second->body] * witness2};
      return true;
    }
    m_UnansweredTypes.insert(types);
  }
  m_Unanswered.insert(item1.shape->token().token() + " - " + item2.shape->token().token());
  return false;
}

ZuShapeStateCacheKey ProximityStudy::keyOf(Item const& item) const {
  Body const& body = m_Scene.bodies()[item.body];
  return {static_cast<int>(body.manipulator()), static_cast<int>(body.link()), static_cast<int>(item.index)};
}
