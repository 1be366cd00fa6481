#include "geometry/zuBrick.h"

#include "geometry/zuGeomTokens.h"

void ZuBrick::registerComponents() {
  ZuXmlCompoundType::registerComponents();
  registerComponent(ZuGeom::ZuIndicesToken, &m_Indices);
  registerComponent(ZuGeom::ZuDataToken, &m_Data);
}

ZuToken const& ZuBrick::classToken() { return ZuGeom::ZuBrickToken; }

ZuBrick ZuBrick::testObject() {
  ZuBrick brick;
  for (unsigned int index : {4U, 0U, 7U}) brick.m_Indices.pushBack(index);
  brick.setData(-0.5);
  return brick;
}
