#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <set>
#include <vector>

#include "geometry/zuIntervalIntersectionProcessor.h"
#include "tests/allocationCounter.h"
#include "tests/printSink.h"
#include "tests/randomValues.h"

namespace {

using Box = ZuAxisAlignedBoundingBox;
using Boxes = Box::Boxes;
using EndPoint = ZuIntervalEndPoint;
using Processor = ZuIntervalIntersectionProcessor;
using Pair = std::pair<unsigned int, unsigned int>;
using Pairs = std::set<Pair>;

double constexpr theNan = std::numeric_limits<double>::quiet_NaN();
double constexpr theInfinity = std::numeric_limits<double>::infinity();

Pairs intersectingPairs(Boxes const& boxes) {
  Pairs pairs;
  for (unsigned int j = 0; j < boxes.size(); ++j) {
    for (unsigned int i = 0; i < j; ++i) {
      if (boxes[i].testIntersection(boxes[j])) pairs.insert({i, j});
    }
  }
  return pairs;
}

Boxes makeBoxes(unsigned int count, std::function<Box(unsigned int)> const& make) {
  Boxes boxes;
  for (unsigned int i = 0; i < count; ++i) boxes.pushBack(make(i));
  return boxes;
}

Box boxAt(ZuVector const& corner, ZuVector const& size) { return {corner, corner + size}; }
ZuVector gridPoint(RandomValues& random, unsigned int cells) {
  double const x = random.index(cells), y = random.index(cells), z = random.index(cells);
  return {x, y, z};
}
Box moved(Box const& box, ZuVector const& by) { return {box.minCorner() + by, box.maxCorner() + by}; }
Box anyBox(RandomValues& random) { return boxAt(random.vector(3.0), random.vector(0.8) + ZuVector(0.8, 0.8, 0.8)); }

/// The textbook form on three sorted lists: one exchange of neighbours at a time, each looked at at once. It knows
/// boxes with minimum > maximum as well.
class OneExchangeAtATime {
 public:
  explicit OneExchangeAtATime(Boxes const& boxes) : m_Boxes(boxes) {
    for (unsigned int axis = 0; axis < 3; ++axis) {
      for (unsigned int i = 0; i < boxes.size(); ++i) {
        m_Lists[axis].emplace_back(i, boxes[i].minCorner()[axis], 0U);
        m_Lists[axis].emplace_back(i, boxes[i].maxCorner()[axis], 1U);
      }
      std::stable_sort(m_Lists[axis].begin(), m_Lists[axis].end());
    }
    std::set<unsigned int> active;
    for (EndPoint const& end : m_Lists[0]) {
      if (end.type() == 1) {
        active.erase(end.index());
        continue;
      }
      for (unsigned int other : active) {
        bool const meets = boxes[other].hasYOverlap(boxes[end.index()]) && boxes[other].hasZOverlap(boxes[end.index()]);
        if (meets) m_Pairs.insert(std::minmax(other, end.index()));
      }
      active.insert(end.index());
    }
  }

  Pairs const& update(Boxes const& boxes) {
    m_Boxes = boxes;
    for (unsigned int axis = 0; axis < 3; ++axis) {
      std::vector<EndPoint>& list = m_Lists[axis];
      for (EndPoint& end : list) {
        Box const& box = boxes[end.index()];
        end.setValue(end.type() == 0 ? box.minCorner()[axis] : box.maxCorner()[axis]);
      }
      for (std::size_t k = 1; k < list.size(); ++k) {
        for (std::size_t i = k; i > 0 && list[i] < list[i - 1]; --i) {
          look(list[i - 1], list[i]);
          std::swap(list[i], list[i - 1]);
        }
      }
    }
    return m_Pairs;
  }
  Pairs const& pairs() const { return m_Pairs; }

 private:
  void look(EndPoint const& passed, EndPoint const& mover) {
    Pair const pair = std::minmax(passed.index(), mover.index());
    if (passed.type() == 1 && mover.type() == 0 && pair.first != pair.second) {
      if (m_Boxes[pair.first].testIntersection(m_Boxes[pair.second])) m_Pairs.insert(pair);
    } else if (passed.type() == 0 && mover.type() == 1) {
      m_Pairs.erase(pair);
    }
  }

  Boxes m_Boxes;
  std::vector<EndPoint> m_Lists[3];
  Pairs m_Pairs;
};

/// How one box of a step comes out of that of the step before.
struct Motion {
  char const* name;
  std::function<Box(RandomValues&, Box const&)> next;
};

std::vector<Motion> const& motions() {
  static std::vector<Motion> const theMotions{
      {"small", [](RandomValues& r, Box const& box) { return moved(box, r.vector(0.05)); }},
      {"faces on a grid", [](RandomValues& r, Box const&) { return boxAt(gridPoint(r, 6), gridPoint(r, 3)); }},
      {"points on a grid", [](RandomValues& r, Box const&) { return boxAt(gridPoint(r, 3), {}); }},
      {"jumps across the world", [](RandomValues& r, Box const& box) { return r.index(4) == 0 ? anyBox(r) : box; }},
      {"jumps out of the world",
       [](RandomValues& r, Box const&) { return moved(anyBox(r), r.index(2) == 0 ? ZuVector() : r.vector(1e300)); }},
      {"all equal, or not",
       [](RandomValues& r, Box const&) { return r.index(40) == 0 ? anyBox(r) : Box(0, 1, 0, 1, 0, 1); }},
      {"nan and infinity",
       [](RandomValues& r, Box const&) {
         ZuVector corners[2] = {gridPoint(r, 6), {}};
         corners[1] = corners[0] + gridPoint(r, 3);
         if (r.index(3) == 0) corners[r.index(2)][r.index(3)] = theNan;
         if (r.index(9) == 0) corners[1][r.index(3)] = theInfinity;
         return Box(corners[0], corners[1]);
       }},
  };
  return theMotions;
}

}  // namespace

TEST(IntervalEndPoint, BeginsComeBeforeEndsAtOneCoordinateAndNextToNan) {
  EndPoint const begin(7, 1.0, 0), end(2, 1.0, 1), later(0, 2.0, 0), nanBegin(0, theNan, 0), nanEnd(0, theNan, 1);
  EXPECT_TRUE(begin < end && begin < later && end < later && nanBegin < end && begin < nanEnd);
  EXPECT_FALSE(end < begin || later < begin || later < end || begin < begin || nanEnd < begin || nanEnd < nanEnd);
  EXPECT_FALSE(begin < EndPoint(3, 1.0, 0)) << "the box plays no part";
  EXPECT_TRUE(begin == EndPoint(7, 1.0, 0));
  EXPECT_FALSE(begin == EndPoint(6, 1.0, 0) || begin == EndPoint(7, 1.5, 0) || begin == EndPoint(7, 1.0, 1));
  EXPECT_TRUE(EndPoint() == EndPoint(0, 0.0, 0) && EndPoint::nullObject() == EndPoint());
}

TEST(IntervalIntersectionProcessor, UpdateKeepsExactlyTheIntersectingPairsThroughEveryMotion) {
  for (Motion const& motion : motions()) {
    RandomValues random(811);
    SCOPED_TRACE(motion.name + (" " + random.trace()));
    Boxes boxes = makeBoxes(30, [&](unsigned int) { return motion.next(random, anyBox(random)); });
    Processor processor(boxes);
    std::size_t broken = 0;
    for (int step = 0; step < 1000; ++step) {
      for (unsigned int i = 0; i < boxes.size(); ++i) {
        if (random.index(3) == 0) processor.updateAABB(boxes[i] = motion.next(random, boxes[i]), i);
      }
      Pairs const before = processor.intersections();
      processor.update();
      Pairs const expected = intersectingPairs(boxes);
      ASSERT_EQ(processor.intersections(), expected) << "step " << step;
      ASSERT_TRUE(processor.validate());
      for (Pair const& pair : before) broken += expected.count(pair) == 0;
    }
    EXPECT_GT(broken, 100U) << "pairs should come and go";
  }
}

TEST(IntervalIntersectionProcessor, InitializeFindsThePairsOfEveryLayout) {
  struct Layout {
    char const* name;
    ZuVector world, size;  ///< boxes of up to this size, in a world of that size
  };
  Layout const layouts[] = {{"cube", {9, 9, 9}, {2, 2, 2}},
                            {"wall", {0.1, 20, 20}, {2, 2, 2}},
                            {"column", {0.1, 300, 0.1}, {2, 2, 2}},
                            {"thin plates", {9, 9, 9}, {9, 9, 0.1}},
                            {"points", {0, 0, 0}, {0, 0, 0}}};
  for (Layout const& layout : layouts) {
    RandomValues random(812);
    auto const within = [&random](ZuVector const& v) {
      return ZuVector(random.real(0, v.x()), random.real(0, v.y()), random.real(0, v.z()));
    };
    for (unsigned int count : {0U, 1U, 2U, 30U, 300U}) {
      SCOPED_TRACE(layout.name + (" " + random.trace()));
      // Every tenth box is far larger or smaller than the others, along one axis.
      Boxes const boxes = makeBoxes(count, [&](unsigned int i) {
        ZuVector size = within(layout.size);
        if (i % 10 == 0) size[random.index(3)] *= random.scale(1e-3, 1e3);
        return boxAt(within(layout.world), size);
      });
      Processor const processor(boxes);
      EXPECT_EQ(processor.intersections(), intersectingPairs(boxes)) << count;
      EXPECT_TRUE(processor.validate());
      EXPECT_TRUE(processor.intersectionsVec().empty());
    }
  }
}

TEST(IntervalIntersectionProcessor, BoxesInsideOutPairAsOneExchangeAtATimeHasIt) {
  RandomValues random(813);
  SCOPED_TRACE(random.trace());
  auto const perhapsInsideOut = [&random] {
    return Box(gridPoint(random, 5), gridPoint(random, 5) + ZuVector(2, 2, 2));
  };
  std::size_t unexpected = 0;
  for (int run = 0; run < 50; ++run) {
    Boxes boxes = makeBoxes(20, [&](unsigned int) { return perhapsInsideOut(); });
    Processor processor(boxes);
    OneExchangeAtATime reference(boxes);
    ASSERT_EQ(processor.intersections(), reference.pairs());
    unexpected += processor.intersections() != intersectingPairs(boxes);
    for (int step = 0; step < 20; ++step) {
      for (unsigned int i = 0; i < boxes.size(); i += 1 + random.index(3)) {
        processor.updateAABB(boxes[i] = perhapsInsideOut(), i);
      }
      processor.update();
      ASSERT_EQ(processor.intersections(), reference.update(boxes));
    }
  }
  EXPECT_GT(unexpected, 10U) << "the sample should differ from plain intersection";
}

TEST(IntervalIntersectionProcessor, InitializePairsNanWithNothingAndTheNextUpdateWithAllItDoesNotSeparateFrom) {
  Box const whole(0, 1, 0, 1, 0, 1), far(0, 1, 5, 6, 0, 1);
  for (unsigned int axis = 0; axis < 3; ++axis) {
    ZuVector corner;
    corner[axis] = theNan;
    Box const broken(corner, {1, 1, 1});
    Boxes const boxes = makeBoxes(4, [&](unsigned int i) { return i < 2 ? broken : i == 2 ? whole : far; });
    Processor processor(boxes);
    EXPECT_EQ(processor.intersections(), Pairs()) << axis;
    processor.update();
    EXPECT_EQ(processor.intersections(), intersectingPairs(boxes)) << axis;
    EXPECT_TRUE(processor.intersections().count({0, 1}) == 1 && processor.intersections().count({0, 2}) == 1);
  }
}

TEST(IntervalIntersectionProcessor, InitializesAHundredThousandBoxes) {
  RandomValues random(814);
  SCOPED_TRACE(random.trace());
  Boxes const boxes = makeBoxes(100000, [&](unsigned int) {
    return boxAt(random.vector(46.0), {random.real(0.5, 1.5), 1, 1});
  });
  Processor processor(boxes);
  processor.insertPair({99999, 0});
  EXPECT_GT(processor.intersections().size(), 30000U);
  for (unsigned int i = 0; i < boxes.size(); i += 2500) {
    for (unsigned int j = i + 1; j < boxes.size(); ++j) {
      bool const found = processor.intersections().count({i, j}) == 1;
      if (boxes[i].testIntersection(boxes[j]) != found) ADD_FAILURE() << i << ' ' << j;
    }
  }
}

TEST(IntervalIntersectionProcessor, NeitherMotionWithoutNewPairsNorAStepWithoutMotionAllocates) {
  Boxes boxes = makeBoxes(200, [](unsigned int i) { return boxAt({1.5 * (i / 2), 0.0, 0.0}, {1, 1, 1}); });
  Processor processor(boxes);
  ASSERT_EQ(processor.intersections().size(), 100U);
  AllocationCounter const counter;
  for (unsigned int i = 0; i < boxes.size(); i += 2) {
    processor.updateAABB(moved(boxes[i], {0.1, 0.1 * i, 0}), i);
    processor.updateAABB(moved(boxes[i + 1], {0.2, 0.1 * i, 0}), i + 1);
  }
  processor.update();
  processor.update();
  EXPECT_EQ(counter.count(), 0U);
  EXPECT_EQ(processor.intersections().size(), 100U);
}

TEST(IntervalIntersectionProcessor, WrongIndicesPrintAndChangeNothing) {
  Processor processor = Processor::testObject();
  Processor const before(processor);
  PrintSink sink;
  for (unsigned int index : {3U, 4000U}) processor.updateAABB(Box(), index);
  for (Pair const& pair : {Pair(3, 0), Pair(0, 3)}) {
    processor.insertPair(pair);
    processor.deletePair(pair);
  }
  EXPECT_EQ(sink.messages(),
            (std::vector<std::string>{"ZuIntervalIntersectionProcessor::updateAABB(): index (3) out of range",
                                      "ZuIntervalIntersectionProcessor::updateAABB(): index (4000) out of range",
                                      "ZuIntervalIntersectionProcessor::insertPair-->pair (3, 0) out of range",
                                      "ZuIntervalIntersectionProcessor::deletePair-->pair (3, 0) out of range",
                                      "ZuIntervalIntersectionProcessor::insertPair-->pair (0, 3) out of range",
                                      "ZuIntervalIntersectionProcessor::deletePair-->pair (0, 3) out of range"}));
  EXPECT_EQ(sink.types(), std::vector<int>(6, 4));
  EXPECT_EQ(&processor.getAABB(3), &Processor::m_theDummyBoundingBox);
  processor.getAABB(3).setXMin(-1.0);
  EXPECT_EQ(processor.getAABB(3), Box()) << "what one caller writes there, the next does not see";
  EXPECT_EQ(sink.messages().size(), 6U);
  processor.update();
  EXPECT_TRUE(processor == before);
}

TEST(IntervalIntersectionProcessor, TheCallersPairsAreDirectedAndIndependentOfTheIntersections) {
  Processor processor(makeBoxes(4, [](unsigned int i) { return boxAt({2.0 * i, 0, 0}, {1, 1, 1}); }));
  for (Pair const& pair : {Pair(2, 3), Pair(2, 0), Pair(2, 1), Pair(2, 3), Pair(0, 2), Pair(1, 1)}) {
    processor.insertPair(pair);
  }
  EXPECT_TRUE(processor.intersectionsVec().empty());
  processor.buildIntersectionVector();
  EXPECT_EQ(processor.intersectionsVec(), (std::vector<Pair>{{0, 2}, {1, 1}, {2, 3}, {2, 0}, {2, 1}}));
  EXPECT_TRUE(processor.intersections().empty());

  for (Pair const& pair : {Pair(2, 3), Pair(3, 2), Pair(1, 1), Pair(1, 1)}) processor.deletePair(pair);
  EXPECT_TRUE(processor.validate());
  processor.buildIntersectionVector();
  EXPECT_EQ(processor.intersectionsVec(), (std::vector<Pair>{{0, 2}, {2, 1}, {2, 0}})) << "the last takes the gap";

  processor.updateAABB(processor.getAABB(0), 1);
  processor.update();
  EXPECT_EQ(processor.intersections(), Pairs({{0, 1}}));
  EXPECT_EQ(processor.intersectionsVec().size(), 3U);
  processor.initialize(Boxes());
  EXPECT_TRUE(processor == Processor() && processor.intersectionsVec().empty());
}

TEST(IntervalIntersectionProcessor, CopiesGoTheirOwnWay) {
  Processor const sample = Processor::testObject();
  std::unique_ptr<ZuXmlObject> const clone(sample.clone());
  EXPECT_TRUE(sample.equality(clone.get()) && sample.selfTest());
  EXPECT_EQ(sample.token(), ZuToken("intervalIntersectionProcessor"));
  Processor copy;
  copy = sample;
  copy.updateAABB(Box(9, 10, 9, 10, 9, 10), 1);
  EXPECT_FALSE(copy == sample);
  copy.update();
  EXPECT_EQ(copy.intersections(), Pairs());
  EXPECT_EQ(sample.intersections(), Pairs({{0, 1}}));
  EXPECT_EQ(copy.intersectionsVec(), sample.intersectionsVec());
}
