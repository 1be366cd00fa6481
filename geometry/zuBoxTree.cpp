#include "geometry/zuBoxTree.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"

ZuBoxTreeNode::Primitives const ZuBoxTreeNode::m_theEmptyVector{};

namespace {

using NodePair = std::pair<ZuBoxTreeNode const*, ZuBoxTreeNode const*>;

bool contains(ZuAxisAlignedBoundingBox const& outer, ZuAxisAlignedBoundingBox const& inner) {
  ZuAxisAlignedBoundingBox grown(outer);
  grown.expandSelfToInclude(inner);
  return grown == outer || !(outer == outer);  // a nan bound contains nothing and excludes nothing
}

}  // namespace

/// Splits groups of primitives in place: a group is a range of `m_Order`, in the order of the node's keys.
class ZuBoxTreeNode::Builder {
 public:
  Builder(Boxes const& boxes, ZuBBTreeHeuristic const& heuristic)
      : m_Boxes(boxes), m_Heuristic(heuristic), m_Order(boxes.size()) {
    std::iota(m_Order.begin(), m_Order.end(), 0U);
    m_MidPoints.reserve(boxes.size());
    for (ZuAxisAlignedBoundingBox const& box : boxes) m_MidPoints.push_back(box.midPoint());
  }

  void build(ZuBoxTreeNode& root, unsigned int depth) {
    m_Open.push_back({&root, m_Order.begin(), m_Order.end(), depth});
    while (!m_Open.empty()) {
      Group const group = m_Open.back();
      m_Open.pop_back();
      encloseBoxes(group);
      if (splits(group)) split(group);
    }
  }

 private:
  using Place = std::vector<unsigned int>::iterator;
  struct Group {
    ZuBoxTreeNode* node;
    Place begin, end;
    unsigned int depth;

    std::size_t size() const { return static_cast<std::size_t>(end - begin); }
  };

  void encloseBoxes(Group const& group) {
    if (group.size() == 0) return;
    group.node->m_Box = m_Boxes[*group.begin];
    for (Place k = group.begin + 1; k != group.end; ++k) group.node->m_Box.expandSelfToInclude(m_Boxes[*k]);
  }

  bool splits(Group const& group) const {
    if (group.depth >= m_Heuristic.maxTreeDepth() || group.size() <= m_Heuristic.minPrimitiveCount()) return false;
    return group.size() > m_Heuristic.targetPrimitiveCount() ||
           !(group.node->m_Box.errorMetric() <= m_Heuristic.minimumError());
  }

  /// The mean of the mid-points. Rounding could take it past all of them (three times 0.1 / 3 is not 0.1), and equal
  /// mid-points to the second child; a mean is never outside of its terms.
  double splitValue(Group const& group, unsigned int axis) const {
    double const weight = 1.0 / static_cast<double>(group.size());
    double mean = 0.0;
    double lowest = std::numeric_limits<double>::infinity(), highest = -lowest;
    for (Place k = group.begin; k != group.end; ++k) {
      double const middle = m_MidPoints[*k][axis];
      mean += weight * middle;
      lowest = std::min(lowest, middle);
      highest = std::max(highest, middle);
    }
    return std::max(lowest, std::min(highest, mean));
  }

  void split(Group const& group) {
    unsigned int const axis = group.node->m_Box.longestAxis();
    double const value = splitValue(group, axis);
    // Keys and boxes move in step, and keep their order.
    Primitives const& keys = group.node->m_Primitives;
    group.node->m_FirstChild = std::make_unique<ZuBoxTreeNode>();
    group.node->m_SecondChild = std::make_unique<ZuBoxTreeNode>();
    m_Below.clear();
    Place firstEnd = group.begin;
    for (std::size_t k = 0; k < keys.size(); ++k) {
      unsigned int const box = group.begin[static_cast<std::ptrdiff_t>(k)];
      bool const below = m_MidPoints[box][axis] < value;
      (below ? group.node->m_SecondChild : group.node->m_FirstChild)->m_Primitives.push_back(keys[k]);
      if (below) {
        m_Below.push_back(box);
      } else {
        *firstEnd++ = box;
      }
    }
    std::copy(m_Below.begin(), m_Below.end(), firstEnd);
    m_Open.push_back({group.node->m_FirstChild.get(), group.begin, firstEnd, group.depth + 1});
    m_Open.push_back({group.node->m_SecondChild.get(), firstEnd, group.end, group.depth + 1});
  }

  Boxes const& m_Boxes;
  ZuBBTreeHeuristic const& m_Heuristic;
  std::vector<unsigned int> m_Order;
  std::vector<ZuVector> m_MidPoints;
  std::vector<Group> m_Open;
  std::vector<unsigned int> m_Below;
};

ZuBoxTreeNode::ZuBoxTreeNode(ZuXmlVectorType<ZuAxisAlignedBoundingBox> const& boxes,
                             std::vector<std::pair<unsigned int, unsigned int>> primitives, unsigned int depth,
                             ZuBBTreeHeuristic const& heuristic)
    : m_Primitives(std::move(primitives)) {
  if (boxes.size() != m_Primitives.size()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuBoxTreeNode::ZuBoxTreeNode-->%zu boxes for %zu primitives",
                                boxes.size(), m_Primitives.size());
    m_Box.resizeToVector(boxes);
    return;
  }
  Builder(boxes, heuristic).build(*this, depth);
}

ZuBoxTreeNode::ZuBoxTreeNode(ZuBoxTreeNode const& other) : ZuXmlClass(other) {
  std::vector<std::pair<ZuBoxTreeNode*, ZuBoxTreeNode const*>> open{{this, &other}};
  while (!open.empty()) {
    auto const [copy, original] = open.back();
    open.pop_back();
    copy->m_Box = original->m_Box;
    copy->m_Primitives = original->m_Primitives;
    if (original->m_FirstChild == nullptr) continue;
    copy->m_FirstChild = std::make_unique<ZuBoxTreeNode>();
    copy->m_SecondChild = std::make_unique<ZuBoxTreeNode>();
    open.emplace_back(copy->m_FirstChild.get(), original->m_FirstChild.get());
    open.emplace_back(copy->m_SecondChild.get(), original->m_SecondChild.get());
  }
}

ZuBoxTreeNode& ZuBoxTreeNode::operator=(ZuBoxTreeNode const& other) {
  ZuBoxTreeNode copy(other);  // first: the other tree may be a part of this one
  ZuXmlClass::operator=(other);
  m_Box = copy.m_Box;
  m_FirstChild.swap(copy.m_FirstChild);
  m_SecondChild.swap(copy.m_SecondChild);
  m_Primitives.swap(copy.m_Primitives);
  return *this;
}

ZuBoxTreeNode::~ZuBoxTreeNode() {
  dismantle(std::move(m_FirstChild));
  dismantle(std::move(m_SecondChild));
}

/// Turns first children up until the tree is a chain of second ones, and frees that from its top.
void ZuBoxTreeNode::dismantle(std::unique_ptr<ZuBoxTreeNode> node) {
  while (node != nullptr) {
    std::unique_ptr<ZuBoxTreeNode> next = std::move(node->m_FirstChild);
    if (next != nullptr) {
      node->m_FirstChild = std::move(next->m_SecondChild);
      next->m_SecondChild = std::move(node);
    } else {
      next = std::move(node->m_SecondChild);
    }
    node = std::move(next);
  }
}

std::vector<std::pair<unsigned int, unsigned int>> const& ZuBoxTreeNode::checkForCollisions(
    ZuAxisAlignedBoundingBox const& query) const {
  ZuBoxTreeNode const* node = this;
  while (query.testIntersection(node->m_Box)) {
    if (node->m_FirstChild == nullptr) return node->m_Primitives;
    bool const meetsFirst = node->m_FirstChild->checkIntersect(query);
    if (meetsFirst && node->m_SecondChild->checkIntersect(query)) return node->m_Primitives;
    node = meetsFirst ? node->m_FirstChild.get() : node->m_SecondChild.get();
  }
  return m_theEmptyVector;
}

bool ZuBoxTreeNode::validate() const {
  std::vector<ZuBoxTreeNode const*> open{this};
  while (!open.empty()) {
    ZuBoxTreeNode const& node = *open.back();
    open.pop_back();
    if ((node.m_FirstChild == nullptr) != (node.m_SecondChild == nullptr)) return false;
    if (node.m_FirstChild == nullptr) continue;
    Primitives own(node.m_Primitives), joint(node.m_FirstChild->m_Primitives);
    joint.insert(joint.end(), node.m_SecondChild->m_Primitives.begin(), node.m_SecondChild->m_Primitives.end());
    std::sort(own.begin(), own.end());
    std::sort(joint.begin(), joint.end());
    if (own != joint) return false;
    for (ZuBoxTreeNode const* child : {node.m_FirstChild.get(), node.m_SecondChild.get()}) {
      if (!child->m_Primitives.empty() && !contains(node.m_Box, child->m_Box)) return false;
      open.push_back(child);
    }
  }
  return true;
}

bool ZuBoxTreeNode::hasSameOwnParts(ZuBoxTreeNode const& other) const {
  return m_Box == other.m_Box && m_Primitives == other.m_Primitives &&
         (m_FirstChild == nullptr) == (other.m_FirstChild == nullptr);
}

bool ZuBoxTreeNode::operator==(ZuBoxTreeNode const& other) const {
  std::vector<NodePair> open{{this, &other}};
  while (!open.empty()) {
    auto const [left, right] = open.back();
    open.pop_back();
    if (!left->hasSameOwnParts(*right)) return false;
    if (left->m_FirstChild == nullptr) continue;
    open.emplace_back(left->m_FirstChild.get(), right->m_FirstChild.get());
    open.emplace_back(left->m_SecondChild.get(), right->m_SecondChild.get());
  }
  return true;
}

bool ZuBoxTreeNode::selfTest() const {
  std::unique_ptr<ZuXmlObject> const copy(clone());
  return validate() && equality(copy.get()) && !(testObject() == nullObject());
}

ZuToken const& ZuBoxTreeNode::classToken() { return ZuGeom::ZuBoxTreeToken; }

ZuBoxTreeNode ZuBoxTreeNode::testObject() {
  Boxes boxes;
  Primitives primitives;
  for (unsigned int k = 0; k < 3; ++k) {
    double const x = 2.0 * k;
    boxes.pushBack({x, x + 1.0, 0.0, 1.0, -0.5, 0.5});
    primitives.emplace_back(k, 10 + k);
  }
  return ZuBoxTreeNode(boxes, primitives, 0, ZuBBTreeHeuristic());
}
