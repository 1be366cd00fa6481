#include <functional>

#include "geometry/zuBoxTree.h"
#include "geometry/zuBrick.h"
#include "tests/testValues.h"

namespace {

using Box = ZuAxisAlignedBoundingBox;
using Node = ZuBoxTreeNode;

struct Input {
  Box::Boxes boxes;
  Node::Primitives keys;
};

Input makeInput(unsigned int count, std::function<Box(unsigned int)> const& make) {
  Input input;
  for (unsigned int k = 0; k < count; ++k) {
    input.boxes.pushBack(make(k));
    input.keys.emplace_back(k, 2 * k);
  }
  return input;
}

Box randomBox(RandomValues& random, double size) {
  ZuVector const corner = random.vector(10.0);
  return {corner, corner + random.vector(size / 2) + ZuVector(1, 1, 1) * (size / 2)};
}

ZuBBTreeHeuristic heuristic(unsigned int depth, unsigned int minimum, unsigned int target, double error) {
  ZuBBTreeHeuristic result;
  result.setMaxTreeDepth(depth);
  result.setMinPrimitiveCount(minimum);
  result.setTargetPrimitiveCount(target);
  result.setMinimumError(error);
  return result;
}

Box::Boxes boxesOf(Node const& node, Input const& input) {
  Box::Boxes boxes;
  for (auto const& key : node.primitives()) boxes.pushBack(input.boxes[key.first]);
  return boxes;
}

/// Checks that the node was built by the rules, from what it has; returns the number of nodes.
std::size_t expectRules(Node const& node, Input const& input, unsigned int depth, ZuBBTreeHeuristic const& rules) {
  Box::Boxes const boxes = boxesOf(node, input);
  EXPECT_EQ(node.box(), Box(boxes));
  EXPECT_TRUE(std::is_sorted(node.primitives().begin(), node.primitives().end())) << "the order was kept";
  std::size_t const count = boxes.size();
  bool const small = count <= rules.targetPrimitiveCount() && node.box().errorMetric() <= rules.minimumError();
  bool const splits = depth < rules.maxTreeDepth() && count > rules.minPrimitiveCount() && !small;
  EXPECT_EQ(node.firstChild() != nullptr, splits);
  if (node.firstChild() == nullptr || node.secondChild() == nullptr) return 1;
  unsigned int const axis = node.box().longestAxis();
  long double mean = 0;
  for (Box const& box : boxes) mean += static_cast<long double>(box.midPoint()[axis]) / static_cast<long double>(count);
  for (Box const& box : boxesOf(*node.secondChild(), input)) EXPECT_LE(box.midPoint()[axis], mean + 1e-12L);
  for (Box const& box : boxesOf(*node.firstChild(), input)) EXPECT_GE(box.midPoint()[axis], mean - 1e-12L);
  return 1 + expectRules(*node.firstChild(), input, depth + 1, rules) +
         expectRules(*node.secondChild(), input, depth + 1, rules);
}

}  // namespace

TEST(BoxTree, EveryPrimitiveThatAQueryTouchesIsInTheAnswer) {
  TracedValues random(821);
  for (unsigned int count : {0U, 1U, 7U, 1000U, 100000U}) {
    Input const input = makeInput(count, [&](unsigned int) { return randomBox(random, 1.0); });
    Node const tree(input.boxes, input.keys, 0, heuristic(12, 1, 5, 0.001));
    std::size_t smaller = 0;
    for (int q = 0; q < 40; ++q) {
      Box const query = randomBox(random, q % 2 == 0 ? 0.1 : 3.0);
      Node::Primitives const& answer = tree.checkForCollisions(query);
      smaller += answer.size() < count;
      std::vector<bool> listed(count);
      for (auto const& key : answer) listed[key.first] = true;
      for (unsigned int k = 0; k < count; ++k) {
        if (query.testIntersection(input.boxes[k]) && !listed[k]) ADD_FAILURE() << count << " lost " << k;
      }
    }
    EXPECT_TRUE(count <= 1 || smaller > 10U) << "the tree should help";
  }
}

TEST(BoxTree, NodesAreSplitByTheHeuristicAtTheMeanOfTheMidPoints) {
  ZuBBTreeHeuristic const fresh;
  EXPECT_TRUE(fresh == heuristic(8, 1, 5, 0.001));
  EXPECT_FALSE(fresh == heuristic(7, 1, 5, 0.001) || fresh == heuristic(8, 2, 5, 0.001) ||
               fresh == heuristic(8, 1, 6, 0.001) || fresh == heuristic(8, 1, 5, 0.002));
  TracedValues random(822);
  for (ZuBBTreeHeuristic const& rules : {fresh, heuristic(0, 1, 5, 0.001), heuristic(3, 0, 0, 0.0),
                                         heuristic(20, 4, 9, 0.001), heuristic(20, 1, 30, 50.0)}) {
    Input const input = makeInput(200, [&](unsigned int) { return randomBox(random, 2.0); });
    Node const tree(input.boxes, input.keys, 0, rules);
    std::size_t const nodes = expectRules(tree, input, 0, rules);
    EXPECT_TRUE(tree.validate() && (nodes > 1) == (rules.maxTreeDepth() > 0));
    Node const deeper(input.boxes, input.keys, rules.maxTreeDepth(), rules);
    EXPECT_EQ(deeper.firstChild(), nullptr) << "the depth given counts";
  }
}

TEST(BoxTree, AnswersWithOneNodesOwnList) {
  // Two boxes left, two right: the root has two children of two.
  Input const input = makeInput(4, [](unsigned int k) {
    double const x = k < 2 ? k : 10.0 + k;
    return Box(x, x + 0.5, 0, 1, 0, 1);
  });
  Node const tree(input.boxes, input.keys, 0, heuristic(1, 1, 1, 0.0));
  auto const answer = [&tree](double min, double max) { return &tree.checkForCollisions({min, max, 0, 1, 0, 1}); };
  for (double const apart : {20.0, 5.0}) EXPECT_EQ(answer(apart, apart + 1.0), &Node::m_theEmptyVector);
  EXPECT_EQ(answer(0, 20), &tree.primitives());
  EXPECT_EQ(answer(-1, 0), &tree.secondChild()->primitives());
  EXPECT_EQ(answer(13.5, 14), &tree.firstChild()->primitives());
  EXPECT_EQ(tree.secondChild()->primitives(), (Node::Primitives{{0, 0}, {1, 2}}));

  Input const one = makeInput(1, [](unsigned int) { return Box(1, 2, 1, 2, 1, 2); });
  Node const leaf(one.boxes, one.keys, 0, ZuBBTreeHeuristic());
  EXPECT_EQ(leaf.checkForCollisions(Box(2, 3, 2, 3, 2, 3)), one.keys);
  EXPECT_TRUE(Node().checkForCollisions(Box()).empty());
}

TEST(BoxTree, CoincidentMidPointsGoToTheFirstChildDownToAnyDepth) {
  for (double middle : {0.1, 1.0 / 3.0, -1e300}) {
    for (unsigned int count : {3U, 7U, 49U}) {
      Input const input = makeInput(count, [m = middle](unsigned int) { return Box(m, m, m, m, m, m); });
      unsigned int depth = 0;
      Node const tree(input.boxes, input.keys, 0, heuristic(6, 1, 0, 0.0));
      Node const* node = &tree;
      for (; node->firstChild() != nullptr; node = node->firstChild(), ++depth)
        EXPECT_TRUE(*node->secondChild() == Node());
      EXPECT_TRUE(depth == 6U && node->primitives() == input.keys);
    }
  }
  Input const two = makeInput(2, [](unsigned int) { return Box(1, 2, 1, 2, 1, 2); });
  Node const deep(two.boxes, two.keys, 0, heuristic(200000, 1, 0, 0.0));
  Node copy(deep);
  EXPECT_TRUE(copy == deep && copy.validate());
  EXPECT_EQ(deep.checkForCollisions(two.boxes[0]), two.keys);
  copy = *copy.firstChild();  // of itself
  EXPECT_TRUE(copy == *deep.firstChild() && !(copy == deep));
}

TEST(BoxTree, BadInputIsAnsweredAndNotFollowed) {
  Input input = makeInput(20, [&](unsigned int k) {
    double const x = k % 4 == 0 ? std::nan("") : k % 4 == 1 ? HUGE_VAL : k;
    return Box(-x, x, 0, k, k % 3 == 0 ? std::nan("") : 0.0, 1);
  });
  Node const tree(input.boxes, input.keys, 0, ZuBBTreeHeuristic());
  tree.checkForCollisions(input.boxes[0]);
  EXPECT_TRUE(tree.validate());
  input.keys.pop_back();
  PrintSink sink;
  Node const leaf(input.boxes, input.keys, 0, ZuBBTreeHeuristic());
  EXPECT_EQ(sink.messages(), Messages{"ZuBoxTreeNode::ZuBoxTreeNode-->20 boxes for 19 primitives"});
  EXPECT_EQ(leaf.firstChild(), nullptr);
  EXPECT_EQ(leaf.checkForCollisions(Box(2, 3, 1, 2, 0, 1)), input.keys);
}

TEST(Brick, IsOrderedByItsValueAlone) {
  ZuBrick brick = ZuBrick::testObject(), other;
  EXPECT_TRUE(brick < other && !(other < brick));
  other.setData(brick.data());
  EXPECT_FALSE(brick < other || other < brick || brick == other);
}
