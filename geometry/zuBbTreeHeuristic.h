// zuBbTreeHeuristic.h - when a node of a box tree is split. Group: broad phase.
#pragma once

#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"

/// What steers the build of a ZuBoxTreeNode. Nothing persists: the parameters live in memory only, and their document
/// is an empty element.
///
/// A node at a depth (the root's is what its builder says, commonly 0) with n primitives stays a leaf when
/// 1. depth >= maxTreeDepth or n <= minPrimitiveCount; or
/// 2. n <= targetPrimitiveCount and the errorMetric() of its box <= minimumError.
/// Otherwise it is split. Copying allocates nothing; const operations are safe from several threads.
class ZU_API ZuBBTreeHeuristic : public ZuXmlClass<ZuBBTreeHeuristic, ZuXmlCompoundType> {
 public:
  /// Levels below the root at most. Where mid-points coincide nothing else ends the build, so it bounds the memory.
  unsigned int const& maxTreeDepth() const { return m_MaxTreeDepth.value(); }
  void setMaxTreeDepth(unsigned int const& depth) { m_MaxTreeDepth = depth; }
  unsigned int const& minPrimitiveCount() const { return m_MinPrimitiveCount.value(); }
  void setMinPrimitiveCount(unsigned int const& count) { m_MinPrimitiveCount = count; }
  unsigned int const& targetPrimitiveCount() const { return m_TargetPrimitiveCount.value(); }
  void setTargetPrimitiveCount(unsigned int const& count) { m_TargetPrimitiveCount = count; }
  /// In the measure of ZuAxisAlignedBoundingBox::errorMetric(), which is 1 or more for every proper box: with a smaller
  /// value, as by default, rule 2 never applies to one.
  double const& minimumError() const { return m_MinimumError; }
  void setMinimumError(double const& error) { m_MinimumError = error; }

  bool operator==(ZuBBTreeHeuristic const& other) const;

  // See ZuXmlObject. The parameters don't persist, so a document read back proves nothing here.
  bool selfTest() const override;
  virtual ZuToken const& token() const { return classToken(); }

  static ZuToken const& classToken();
  static ZuBBTreeHeuristic testObject();

 private:
  ZuXmlBasicType<unsigned int> m_MaxTreeDepth = 8U;
  ZuXmlBasicType<unsigned int> m_MinPrimitiveCount = 1U;
  ZuXmlBasicType<unsigned int> m_TargetPrimitiveCount = 5U;
  double m_MinimumError = 0.001;
};
