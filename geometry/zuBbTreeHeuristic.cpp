#include "geometry/zuBbTreeHeuristic.h"

#include <memory>

#include "geometry/zuGeomTokens.h"

bool ZuBBTreeHeuristic::operator==(ZuBBTreeHeuristic const& other) const {
  return m_MaxTreeDepth == other.m_MaxTreeDepth && m_MinPrimitiveCount == other.m_MinPrimitiveCount &&
         m_TargetPrimitiveCount == other.m_TargetPrimitiveCount && m_MinimumError == other.m_MinimumError;
}

bool ZuBBTreeHeuristic::selfTest() const {
  std::unique_ptr<ZuXmlObject> const copy(clone());
  return equality(copy.get()) && !(testObject() == nullObject());
}

ZuToken const& ZuBBTreeHeuristic::classToken() { return ZuGeom::ZuBbTreeHeuristicToken; }

ZuBBTreeHeuristic ZuBBTreeHeuristic::testObject() {
  ZuBBTreeHeuristic heuristic;
  heuristic.setMaxTreeDepth(3);
  heuristic.setMinPrimitiveCount(2);
  heuristic.setTargetPrimitiveCount(4);
  heuristic.setMinimumError(1.5);
  return heuristic;
}
