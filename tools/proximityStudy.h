// proximityStudy.h - steps a scene through its cycles and asks for the closest pair of each.
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "foundation/zuCoordinateSystemTransformation.h"
#include "geometry/zuIntervalIntersectionProcessor.h"
#include "geometry/zuSystemShapeProximityState.h"
#include "tools/scene.h"

/// One pair of shapes, in the order of the scene; nearest points in the world frame.
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
/// With a margin, the broad phase keeps which shapes have boxes in the world that are within the margin of each other,
/// and only those pairs are asked: every pair that is that close is among them. Without one every pair is asked, since
/// any may be the closest. The scene must outlive the study.
class ProximityStudy {
 public:
  static constexpr double m_theNoMargin = std::numeric_limits<double>::infinity();

  /// @param margin m, at least 0
  ProximityStudy(Scene const& scene, double margin);

  /// Does the next cycle.
  CycleResult next();
  /// One entry for each pair of shape types that neither shape of the pair answers, in words.
  std::set<std::string> const& unanswered() const { return m_Unanswered; }
  /// The boxes of the shapes, in the order of the scene, enlarged by half the margin on every side; of the cycle that
  /// was done last. Empty without a margin.
  ZuIntervalIntersectionProcessor const& broadPhase() const { return m_BroadPhase; }

 private:
  struct Item {
    std::size_t body;
    std::size_t index;
    ZuShape const* shape;
  };
  /// Whether a shape of one type answers for another; depends on the types only.
  enum class Answers : unsigned char { UNKNOWN, YES, NO };
  static constexpr std::size_t m_theNumberOfTypes = ZuShape::EXTENT_INTERSECTION + 1;

  bool hasMargin() const { return m_Margin < m_theNoMargin; }
  bool moves(std::size_t body) const;
  void place();
  void updateBoxes();
  ZuAxisAlignedBoundingBox enlargedBox(Item const& item) const;
  void ask(Item const& item1, Item const& item2, CycleResult& result);
  bool answer(Item const& item1, Item const& item2, PairResult& pair);
  bool askShape(Item const& first, Item const& second, PairResult& pair);
  ZuShapeStateCacheKey keyOf(Item const& item) const;

  Scene const& m_Scene;
  double m_Margin;
  std::size_t m_Cycle = 0;
  std::vector<Item> m_Items;
  std::vector<ZuCoordinateSystemTransformation> m_Frames;
  std::vector<ZuCoordinateSystemTransformation> m_InverseFrames;
  ZuIntervalIntersectionProcessor m_BroadPhase;
  ZuSystemShapeProximityState m_State;
  std::array<std::array<Answers, m_theNumberOfTypes>, m_theNumberOfTypes> m_Answers{};
  std::set<std::string> m_Unanswered;
};
