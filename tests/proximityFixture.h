// proximityFixture.h - the smallest system: two manipulators of one link, memory for their shapes.
#pragma once

#include "foundation/zuManipulatorSystem.h"
#include "geometry/zuShape.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuSystemShapeProximityState.h"
#include "tests/testValues.h"

/// Two manipulators with one link of `shapes` shapes each.
class TwoLinks : public ZuManipulatorSystem {
 public:
  explicit TwoLinks(unsigned int shapes = 8) : m_Shapes(shapes) {}
  unsigned int numberOfManipulators() const override { return 2; }
  unsigned int numberOfLinks(unsigned int) const override { return 1; }
  unsigned int numberOfShapes(unsigned int, unsigned int) const override { return m_Shapes; }

 private:
  unsigned int m_Shapes;
};

/// Asks pairs of shapes; every test starts with an empty memory.
class ProximityTest : public testing::Test {
 protected:
  ProximityTest() {
    m_State.resizeDatabaseToSystem(TwoLinks());
    m_State.setIsInitialized(true);
    m_Descriptor.setKey1(ZuShapeStateCacheKey(1, 0, 0));
    m_Descriptor.setKey2(ZuShapeStateCacheKey(0, 0, 0));
  }

  double distance(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& xform) {
    m_State.invalidateAll();
    return shape1.distanceTo(shape2, xform, m_Descriptor, m_State);
  }
  double witness(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& xform,
                 ZuVector& witness1, ZuVector& witness2) {
    m_State.invalidateAll();
    return shape1.distanceAndWitnessPointsTo(shape2, xform, m_Descriptor, m_State, witness1, witness2);
  }
  bool touch(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& xform) {
    m_State.invalidateAll();
    return shape1.checkIntersect(shape2, xform, m_Descriptor, m_State, nullptr);
  }

  ZuSystemShapeProximityState m_State;
  ZuShapeProximityDescriptor m_Descriptor;
};
