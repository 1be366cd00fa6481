#include <functional>

#include "geometry/zuIntervalIntersectionProcessor.h"
#include "tests/allocationCounter.h"
#include "tests/testValues.h"

namespace {

using Box = ZuAxisAlignedBoundingBox;
using Boxes = Box::Boxes;
using EndPoint = ZuIntervalEndPoint;
using Processor = ZuIntervalIntersectionProcessor;
using Pair = std::pair<unsigned int, unsigned int>;
using Pairs = std::set<Pair>;

double const theNan = std::nan("");

bool intersect(Box const& a, Box const& b) { return a.testIntersection(b); }
/// Nan overlaps nothing.
bool overlap(Box const& a, Box const& b) { return a.hasXOverlap(b) && a.hasYOverlap(b) && a.hasZOverlap(b); }

Pairs pairsThat(bool (*meet)(Box const&, Box const&), Boxes const& boxes) {
  Pairs pairs;
  for (unsigned int j = 0; j < boxes.size(); ++j) {
    for (unsigned int i = 0; i < j; ++i) {
      if (meet(boxes[i], boxes[j])) pairs.insert({i, j});
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
  explicit OneExchangeAtATime(Boxes const& boxes) {
    for (unsigned int axis = 0; axis < 3; ++axis) {
      for (unsigned int end = 0; end < 2 * boxes.size(); ++end)
        m_Lists[axis].emplace_back(end / 2, corner(boxes[end / 2], end % 2)[axis], end % 2);
      std::stable_sort(m_Lists[axis].begin(), m_Lists[axis].end());
    }
    std::set<unsigned int> active;
    for (EndPoint const& end : m_Lists[0]) {
      Box const& box = boxes[end.index()];
      if (end.type() == 1) active.erase(end.index());
      for (unsigned int other : end.type() == 0 ? active : std::set<unsigned int>())
        if (boxes[other].hasYOverlap(box) && boxes[other].hasZOverlap(box))
          m_Pairs.insert(std::minmax(other, end.index()));
      if (end.type() == 0) active.insert(end.index());
    }
  }

  Pairs const& update(Boxes const& boxes) {
    for (unsigned int axis = 0; axis < 3; ++axis) {
      std::vector<EndPoint>& list = m_Lists[axis];
      for (EndPoint& end : list) end.setValue(corner(boxes[end.index()], end.type())[axis]);
      for (std::size_t k = 1; k < list.size(); ++k) {
        for (std::size_t i = k; i > 0 && list[i] < list[i - 1]; --i) {
          look(boxes, list[i - 1], list[i]);
          std::swap(list[i], list[i - 1]);
        }
      }
    }
    return m_Pairs;
  }
  Pairs const& pairs() const { return m_Pairs; }

 private:
  static ZuVector corner(Box const& box, unsigned int end) { return end == 0 ? box.minCorner() : box.maxCorner(); }
  void look(Boxes const& boxes, EndPoint const& passed, EndPoint const& mover) {
    Pair const pair = std::minmax(passed.index(), mover.index());
    if (passed.type() == 1 && mover.type() == 0 && pair.first != pair.second) {
      if (boxes[pair.first].testIntersection(boxes[pair.second])) m_Pairs.insert(pair);
    } else if (passed.type() == 0 && mover.type() == 1) {
      m_Pairs.erase(pair);
    }
  }

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
      {"inside out",
       [](RandomValues& r, Box const&) { return Box(gridPoint(r, 5), gridPoint(r, 5) + ZuVector(2, 2, 2)); }},
      {"nan and infinity",
       [](RandomValues& r, Box const&) {
         ZuVector corners[2] = {gridPoint(r, 6), {}};
         corners[1] = corners[0] + gridPoint(r, 3);
         if (r.index(3) == 0) corners[r.index(2)][r.index(3)] = theNan;
         if (r.index(9) == 0) corners[1][r.index(3)] = HUGE_VAL;
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
  EXPECT_TRUE(begin == EndPoint(7, 1.0, 0) && EndPoint::nullObject() == EndPoint(0, 0.0, 0));
  EXPECT_FALSE(begin == EndPoint(6, 1.0, 0) || begin == EndPoint(7, 1.5, 0) || begin == EndPoint(7, 1.0, 1));
}

TEST(IntervalIntersectionProcessor, UpdateKeepsExactlyTheIntersectingPairsOrInsideOutThoseOfOneExchangeAtATime) {
  for (Motion const& motion : motions()) {
    TracedValues random(811);
    SCOPED_TRACE(motion.name);
    bool const insideOut = motion.name == std::string("inside out");
    std::size_t broken = 0, unexpected = 0;
    for (int run = 0; run < 20; ++run) {
      Boxes boxes = makeBoxes(30, [&](unsigned int) { return motion.next(random, anyBox(random)); });
      Processor processor(boxes);
      OneExchangeAtATime reference(boxes);
      ASSERT_EQ(processor.intersections(), insideOut ? reference.pairs() : pairsThat(overlap, boxes));
      for (int step = 0; step < 50; ++step) {
        for (unsigned int i = 0; i < boxes.size(); ++i) {
          if (random.index(3) == 0) processor.updateAABB(boxes[i] = motion.next(random, boxes[i]), i);
        }
        Pairs const before = processor.intersections(), intersecting = pairsThat(intersect, boxes);
        processor.update();
        Pairs const& expected = insideOut ? reference.update(boxes) : intersecting;
        ASSERT_EQ(processor.intersections(), expected) << "run " << run << ", step " << step;
        ASSERT_TRUE(processor.validate());
        for (Pair const& pair : before) broken += expected.count(pair) == 0;
        unexpected += expected != intersecting;
      }
    }
    EXPECT_GT(broken, 100U) << "pairs should come and go";
    EXPECT_EQ(unexpected > 10U, insideOut) << "the sample should differ from plain intersection";
  }
}

TEST(IntervalIntersectionProcessor, InitializeFindsThePairsOfEveryLayout) {
  struct Layout {
    char const* name;
    ZuVector world, size;  ///< boxes of up to this size, in a world of that size
    unsigned int most = 300;
  };
  Layout const layouts[] = {{"cube", {9, 9, 9}, {2, 2, 2}},         {"wall", {0.1, 20, 20}, {2, 2, 2}},
                            {"column", {0.1, 300, 0.1}, {2, 2, 2}}, {"thin plates", {9, 9, 9}, {9, 9, 0.1}},
                            {"points", {0, 0, 0}, {0, 0, 0}},       {"large", {60, 60, 60}, {2, 2, 2}, 10000}};
  for (Layout const& layout : layouts) {
    TracedValues random(812);
    auto const within = [&random](ZuVector const& v) {
      return ZuVector(random.real(0, v.x()), random.real(0, v.y()), random.real(0, v.z()));
    };
    for (unsigned int count : {0U, 1U, 2U, 30U, layout.most}) {
      // Every tenth box is far larger or smaller than the others, along one axis.
      Boxes const boxes = makeBoxes(count, [&](unsigned int i) {
        ZuVector size = within(layout.size);
        if (i % 10 == 0) size[random.index(3)] *= random.scale(1e-3, 1e3);
        return boxAt(within(layout.world), size);
      });
      Processor const processor(boxes);
      EXPECT_TRUE(processor.intersections() == pairsThat(intersect, boxes)) << layout.name << ' ' << count;
      EXPECT_TRUE(processor.validate() && processor.intersectionsVec().empty());
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
  EXPECT_EQ(sink.messages(), (Messages{"ZuIntervalIntersectionProcessor::updateAABB(): index (3) out of range",
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
  processor.updateAABB(Box(9, 10, 9, 10, 9, 10), 1);
  processor.update();
  EXPECT_TRUE(processor.intersections().empty() && before == Processor::testObject()) << "copies go their own way";
}

TEST(IntervalIntersectionProcessor, TheCallersPairsAreDirectedAndIndependentOfTheIntersections) {
  Processor processor(makeBoxes(4, [](unsigned int i) { return boxAt({2.0 * i, 0, 0}, {1, 1, 1}); }));
  for (Pair const& pair : {Pair(2, 3), Pair(2, 0), Pair(2, 1), Pair(2, 3), Pair(0, 2), Pair(1, 1)})
    processor.insertPair(pair);
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
