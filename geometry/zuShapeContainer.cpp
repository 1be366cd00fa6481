#include "geometry/zuShapeContainer.h"

#include <utility>

#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuHalfSpace.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuSphere.h"
#include "geometry/zuTetrahedron.h"
#include "geometry/zuTriPhysicalExtent.h"

namespace {

template <class Solid>
void registerSolid(ZuXmlBaseVariableCompoundType& container) {
  container.registerComponentCreator(Solid::classToken(), &Solid::creator);
}

}  // namespace

ZuShapeContainer::ZuShapeContainer() {
  registerSolid<ZuSphere>(*this);
  registerSolid<ZuCapsule>(*this);
  registerSolid<ZuEllipsoid>(*this);
  registerSolid<ZuTetrahedron>(*this);
  registerSolid<ZuHalfSpace>(*this);
  registerSolid<ZuCylinder>(*this);
  registerSolid<ZuBox>(*this);
  registerSolid<ZuCone>(*this);
  registerSolid<ZuLozenge>(*this);
  registerSolid<ZuPolyPhysicalExtent>(*this);
  registerSolid<ZuTriPhysicalExtent>(*this);
}

ZuShape const* ZuShapeContainer::shape(std::size_t index) const { return dynamic_cast<ZuShape const*>(element(index)); }

ZuShape* ZuShapeContainer::shape(std::size_t index) { return dynamic_cast<ZuShape*>(element(index)); }

void ZuShapeContainer::append(std::unique_ptr<ZuShape> shape) {
  if (!shape) return;
  ZuToken const token = shape->token();
  append(std::unique_ptr<ZuXmlObject>(std::move(shape)), token);
}

ZuXmlObject* ZuShapeContainer::newObjectFromToken(ZuToken const& token) const {
  std::unique_ptr<ZuXmlObject> object(ZuXmlBaseVariableCompoundType::newObjectFromToken(token));
  return dynamic_cast<ZuShape*>(object.get()) != nullptr ? object.release() : nullptr;
}

ZuToken const& ZuShapeContainer::classToken() { return ZuGeom::ZuShapesToken; }

ZuShapeContainer ZuShapeContainer::testObject() {
  ZuShapeContainer sample;
  auto sphere = std::make_unique<ZuSphere>(ZuSphere::testObject());
  sphere->addExplicitBoundingVolume(ZuSphere(ZuVector::testObject(), 0.8, 2));
  sample.append(std::move(sphere));
  sample.append(std::make_unique<ZuSphere>());
  return sample;
}
