// zuBoxTree.h - tree of boxes over a set of primitives. Group: broad phase.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "foundation/zuXmlCompoundType.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuBbTreeHeuristic.h"

/// A node of the tree, with all that is below it; the root is a node too. The default is a leaf without primitives.
///
/// A primitive is a pair of numbers that only the builder of the tree understands. Each node has the box around the
/// boxes of all primitives below it, and their keys in the order in which they were given, so that a query can answer
/// with a reference: n keys of 8 bytes per level. All boxes are in one frame.
///
/// Guarantees:
/// 1. A node is a leaf, or it has two children whose keys together are its own.
/// 2. Every primitive whose box meets a query's is in the answer, while no bound is nan.
/// 3. Build, copy, comparison, query and destruction need no call stack that grows with the depth.
///
/// A tree is not changed after its build, other than by assignment. Nothing persists: the document of a tree is an
/// empty element. Copying copies all nodes. Const operations are safe from several threads.
class ZU_API ZuBoxTreeNode : public ZuXmlClass<ZuBoxTreeNode, ZuXmlCompoundType> {
 public:
  using Boxes = ZuXmlVectorType<ZuAxisAlignedBoundingBox>;
  using Primitives = std::vector<std::pair<unsigned int, unsigned int>>;

  /// The answer to a query that misses the tree.
  static Primitives const m_theEmptyVector;

  ZuBoxTreeNode() = default;
  /// Builds the subtree of a node at the given depth; primitives[k] has the box boxes[k].
  ///
  /// The node is split (see ZuBBTreeHeuristic) at the mean of its boxes' mid-points along the longest axis of its own
  /// box: primitives whose mid-point is strictly below go to the second child, the others to the first. A child may be
  /// empty; its box is then the origin. Where all mid-points coincide every level down to maxTreeDepth has all of them.
  ///
  /// When the numbers of boxes and of primitives differ, a message is printed and the node is a leaf around all boxes
  /// with all primitives. Cost: linear in the primitives, per level.
  ZuBoxTreeNode(ZuXmlVectorType<ZuAxisAlignedBoundingBox> const& boxes,
                std::vector<std::pair<unsigned int, unsigned int>> primitives, unsigned int depth,
                ZuBBTreeHeuristic const& heuristic);
  ZuBoxTreeNode(ZuBoxTreeNode const& other);
  ZuBoxTreeNode& operator=(ZuBoxTreeNode const& other);
  ~ZuBoxTreeNode() override;

  /// The smallest box around the boxes of all primitives below the node.
  ZuAxisAlignedBoundingBox const& box() const { return m_Box; }
  /// Null at a leaf.
  ZuBoxTreeNode const* firstChild() const { return m_FirstChild.get(); }
  ZuBoxTreeNode const* secondChild() const { return m_SecondChild.get(); }
  /// The keys of all primitives below the node.
  Primitives const& primitives() const { return m_Primitives; }

  /// True when the node's box and the query's meet; touching counts. See ZuAxisAlignedBoundingBox::testIntersection.
  bool checkIntersect(ZuAxisAlignedBoundingBox const& query) const { return m_Box.testIntersection(query); }

  /// The primitives that the query can touch: those of the deepest node that can't be left without losing one. The
  /// search goes down while the query meets only one of the two children, and stops where it meets both; so the answer
  /// is one node's list, never a merged one, and the caller tests its primitives. The reference holds as long as the
  /// tree does. Cost: at most one step per level.
  std::vector<std::pair<unsigned int, unsigned int>> const& checkForCollisions(
      ZuAxisAlignedBoundingBox const& query) const;

  /// True when guarantee 1 holds throughout and every box contains those of its children (an empty one's aside).
  bool validate() const;

  /// Same boxes, same keys, same shape of the tree.
  bool operator==(ZuBoxTreeNode const& other) const;

  // See ZuXmlObject. The tree doesn't persist, so a document read back proves nothing here.
  bool selfTest() const override;
  virtual ZuToken const& token() const { return classToken(); }

  static ZuToken const& classToken();
  static ZuBoxTreeNode testObject();

 private:
  class Builder;

  bool hasSameOwnParts(ZuBoxTreeNode const& other) const;
  static void dismantle(std::unique_ptr<ZuBoxTreeNode> node);

  ZuAxisAlignedBoundingBox m_Box;
  std::unique_ptr<ZuBoxTreeNode> m_FirstChild;
  std::unique_ptr<ZuBoxTreeNode> m_SecondChild;
  Primitives m_Primitives;
};
