// zuTriPhysicalExtent.h - solid inside a mesh of triangles. Group: meshes.
#pragma once

#include "geometry/zuLoopPhysicalExtent.h"

/// A mesh whose facets are triangles; see ZuBasePhysicalExtent.
class ZU_API ZuTriPhysicalExtent : public ZuXmlClass<ZuTriPhysicalExtent, ZuLoopPhysicalExtent> {
 public:
  ZuTriPhysicalExtent() : ZuXmlClass(3) {}

  // See ZuBasePhysicalExtent
  bool bestNeighbor(ZuVector const& direction, double& dot, unsigned int& index) const override;
  ZuShapeValues type() const override { return TRI_PHYSICAL_EXTENT; }

  static ZuToken const& classToken();
  static ZuTriPhysicalExtent testObject();
};
