// zuPolyPhysicalExtent.h - solid inside a mesh of polygons. Group: meshes.
#pragma once

#include "geometry/zuLoopPhysicalExtent.h"

/// A mesh whose facets are loops of any number of corners from three on; see ZuBasePhysicalExtent.
class ZU_API ZuPolyPhysicalExtent : public ZuXmlClass<ZuPolyPhysicalExtent, ZuLoopPhysicalExtent> {
 public:
  ZuPolyPhysicalExtent() : ZuXmlClass(0) {}

  // See ZuBasePhysicalExtent

  /// False, with a message, when the support vertex has no facet list.
  bool bestNeighbor(ZuVector const& direction, double& dot, unsigned int& index) const override;
  ZuShapeValues type() const override { return POLY_PHYSICAL_EXTENT; }

  static ZuToken const& classToken();
  static ZuPolyPhysicalExtent testObject();
};
