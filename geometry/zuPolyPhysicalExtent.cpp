#include "geometry/zuPolyPhysicalExtent.h"

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"

bool ZuPolyPhysicalExtent::bestNeighbor(ZuVector const& direction, double& dot, unsigned int& index) const {
  findBestNeighbor(direction, dot, index, "Error\n");
  if (supportPointID() < vertexNeighborFacetsVector().size()) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "ZuPolyPhysicalExtent::bestNeighbor index to m_VertexNeighborFacetsVector out of bound");
  return false;
}

ZuToken const& ZuPolyPhysicalExtent::classToken() { return ZuGeom::ZuPolyPhysicalExtentToken; }

ZuPolyPhysicalExtent ZuPolyPhysicalExtent::testObject() {
  ZuPolyPhysicalExtent sample;
  sample.fillSample({{0, 2, 4, 1}, {0, 1, 3}, {1, 4, 3}, {4, 2, 3}, {2, 0, 3}});
  sample.fillForTest();
  return sample;
}
