// proximityStudy.h - steps a scene through its cycles and asks for the closest pair of each.
#pragma once

#include <array>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "foundation/zuCoordinateSystemTransformation.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuSystemShapeProximityState.h"
#include "tools/scene.h"

/// One pair of shapes, nearest points in the world frame.
struct PairResult {
  std::size_t body1 = 0;
  std::size_t shape1 = 0;
  std::size_t body2 = 0;
  std::size_t shape2 = 0;
  double distance = 0.0;  ///< m, negative when they overlap
  ZuVector point1;
  ZuVector point2;
};

/// What one cycle found.
struct CycleResult {
  std::size_t cycle = 0;
  std::size_t pairsAsked = 0;
  bool found = false;  ///< whether any pair was within the margin
  PairResult closest;
  double seconds = 0.0;  ///< for placing, choosing and asking
};

/// Places the bodies of a scene cycle by cycle and asks the pairs that can be closer than a margin.
///
/// Each shape has a box about its place in the world; two shapes whose boxes are farther apart than the margin are not
/// asked. The scene must outlive the study.
class ProximityStudy {
 public:
  /// @param margin m, at least 0
  ProximityStudy(Scene const& scene, double margin);

  /// Does the next cycle.
  CycleResult next();
  /// One entry for each pair of shape types that neither shape of the pair answers, in words.
  std::set<std::string> const& unanswered() const { return m_Unanswered; }

 private:
  struct Item {
    std::size_t body;
    std::size_t index;
    ZuShape const* shape;
    ZuAxisAlignedBoundingBox box;
  };
  void place();
  void ask(Item const& item1, Item const& item2, CycleResult& result);
  bool answer(Item const& item1, Item const& item2, PairResult& pair);
  ZuShapeStateCacheKey keyOf(Item const& item) const;

  Scene const& m_Scene;
  double m_Margin;
  std::size_t m_Cycle = 0;
  std::vector<Item> m_Items;
  std::vector<ZuCoordinateSystemTransformation> m_Frames;
  std::vector<ZuCoordinateSystemTransformation> m_InverseFrames;
  ZuSystemShapeProximityState m_State;
  std::set<std::pair<int, int>> m_UnansweredTypes;
  std::set<std::string> m_Unanswered;
};
