#include "geometry/zuTriPhysicalExtent.h"

#include "geometry/zuGeomTokens.h"

bool ZuTriPhysicalExtent::bestNeighbor(ZuVector const& direction, double& dot, unsigned int& index) const {
  findBestNeighbor(direction, dot, index, "Error");
  return true;
}

ZuToken const& ZuTriPhysicalExtent::classToken() { return ZuGeom::ZuTriPhysicalExtentToken; }

ZuTriPhysicalExtent ZuTriPhysicalExtent::testObject() {
  ZuTriPhysicalExtent sample;
  sample.fillSample({{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {2, 0, 3}});
  sample.fillForTest();
  return sample;
}
