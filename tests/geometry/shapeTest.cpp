#include "geometry/zuShape.h"

#include <map>

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuShapeCollisionEvent.h"
#include "geometry/zuShapeContainer.h"
#include "geometry/zuSphere.h"
#include "geometry/zuSystemActiveState.h"
#include "tests/meshSamples.h"
#include "tests/proximityFixture.h"

namespace {

ZuCoordinateSystemTransformation shift(double x) { return ZuCoordinateSystemTransformation(ZuVector(x, 0, 0)); }

/// A sphere of radius 1 bounded by spheres of radius 2, 3, ... about the same centre.
ZuSphere chain(unsigned int levels) {
  ZuSphere full(ZuVector(), 1.0, 3);
  for (unsigned int i = 0; i < levels; ++i) full.addExplicitBoundingVolume(ZuSphere(ZuVector(), 2.0 + i, 3));
  return full;
}

double radiusOf(ZuShape const* shape) { return dynamic_cast<ZuSphere const&>(*shape).radius(); }

/// Convex, about the origin.
ZuPolyPhysicalExtent cubeOf(double halfSide) {
  ZuPolyPhysicalExtent mesh;
  mesh.fitToPoints(ZuXmlVectorVector(cubePoints()));
  mesh.scaleBy(halfSide);
  return mesh;
}

std::string nested(unsigned int levels) {
  std::string text = "<shapes>";
  for (unsigned int i = 0; i < levels; ++i) text += "<sphere>";
  for (unsigned int i = 0; i < levels; ++i) text += "</sphere>";
  return text + "</shapes>";
}

/// Three links of one sphere each in a row, one metre apart, on two manipulators.
struct Row : ZuSystemActiveState, TwoLinks {
  explicit Row(ZuSystemShapeProximityState& memory) : TwoLinks(1), state(memory) {}
  unsigned int numberOfLinks(unsigned int manipulator) const override { return manipulator + 1; }
  ZuShape const* shape(ZuShapeStateCacheKey const& key) const override {
    return key.shapeID() == 0 ? &sphere : nullptr;
  }
  bool linkFrame(ZuLinkStateCacheKey const& key, ZuCoordinateSystemTransformation& frame) const override {
    frame = shift(key.manipID() + key.linkID());
    return true;
  }
  ZuSystemShapeProximityState& proximityState() override { return state; }

  ZuSphere const sphere{ZuVector(), 0.4, 3};
  ZuSystemShapeProximityState& state;
};

class Shape : public ProximityTest {
 protected:
  ZuShapeStateCacheKey const &key1 = m_Descriptor.key1(), &key2 = m_Descriptor.key2();
};

}  // namespace

TEST_F(Shape, LevelsOfTheChainAreFoundByNumber) {
  ZuSphere const full = chain(3), alone;
  double const theNothing = 0.0;  // is appended
  for (auto const& [n, notToExceed, bounding] : std::vector<std::tuple<unsigned int, double, double>>{
           {0, 1, 2}, {1, 2, 2}, {2, 3, 3}, {3, 4, 4}, {4, 4, theNothing}, {4294967295U, 4, theNothing}}) {
    EXPECT_EQ(radiusOf(full.lowestFidelityNotToExceed(n)), notToExceed) << n;
    EXPECT_EQ(alone.lowestFidelityNotToExceed(n), &alone);
    std::vector<ZuShape const*> volumes;
    alone.boundingVolumes(volumes, n);
    EXPECT_TRUE(volumes.empty());
    full.boundingVolumes(volumes, n);
    EXPECT_EQ(volumes.empty() ? theNothing : radiusOf(volumes[0]), bounding) << n;
  }
}

TEST_F(Shape, CopiesOwnTheirOwnChain) {
  ZuSphere full = chain(2), copy(full);
  EXPECT_EQ(copy, full);
  copy.setContainer(&ZuShapeContainer::nullObject());
  EXPECT_EQ(copy.lowerFidelityRepresentation()->container(), copy.container());
  EXPECT_EQ(ZuSphere(copy).lowerFidelityRepresentation()->container(), nullptr) << "a copy is in no container";
  copy.lowerFidelityRepresentation()->scaleBy(2.0);
  EXPECT_EQ(radiusOf(full.lowerFidelityRepresentation()), 2.0);
  EXPECT_FALSE(copy == full) << "the chain counts in equality";
  EXPECT_EQ(copy.lowerFidelityRepresentation()->higherFidelityRepresentation(), &copy);
  EXPECT_EQ(copy.higherFidelityRepresentation(), nullptr);
  full = dynamic_cast<ZuSphere const&>(*full.lowerFidelityRepresentation());  // a level of itself
  EXPECT_TRUE(full.radius() == 2.0 && radiusOf(full.lowerFidelityRepresentation()) == 3.0);
  full.deleteBoundingVolumes();
  EXPECT_EQ(full.numberOfShapes(), 1U);
}

TEST_F(Shape, IndicesAndLevelsRunFromFineToCoarse) {
  ZuSphere full = chain(2);
  full.setIdentifier("ball");
  full.lowerFidelityRepresentation()->setIdentifier("bound");
  unsigned int index = 5, level = 2;
  std::map<std::string, ZuShape const*> names;
  std::vector<ZuShape*> shapes;
  full.setIndexAndBackPointer(index, nullptr, names, shapes);
  full.mapBVHLevel(level);
  EXPECT_TRUE(index == 8 && level == 5) << index << ' ' << level;
  ASSERT_EQ(shapes.size(), full.numberOfShapes());
  for (unsigned int i = 0; i < 3; ++i)
    EXPECT_TRUE(shapes[i]->proximityDatabaseIndex() == 5 + i && shapes[i]->bvhLevel() == 2 + i) << i;
  EXPECT_TRUE(names.size() == 2 && names["bound"] == shapes[1]);
}

TEST_F(Shape, BoundingVolumesAreAttachedBelowTheLowest) {
  ZuPolyPhysicalExtent mesh = cubeOf(1.0);
  for (auto const kind : {ZuShape::CAPSULE, ZuShape::SPHERE}) mesh.addBoundingVolume(kind);
  EXPECT_EQ(mesh.lowestFidelityNotToExceed(9)->type(), ZuShape::SPHERE);
}

TEST_F(Shape, PlugInSolidsAreReadAskedAndWrittenLikeTheLibrarysOwn) {
  ZuShapeContainer shapes;
  shapes.setAddLibraries({ZU_TEST_PLUGIN});
  std::string const text =
      "<shapes><sphere><radius>1</radius><balloon><radius>2</radius><sphere/></balloon></sphere></shapes>";
  PrintSink sink;
  EXPECT_FALSE(shapes.readFromBuffer(text)) << "unknown until the library is loaded";
  EXPECT_EQ(sink.take().size(), 1U);
  ASSERT_TRUE(shapes.processLibraries() && shapes.readFromBuffer(text));
  ZuShape const* const full = shapes.shape(0);
  ZuShape const* const balloon = full->lowerFidelityRepresentation();
  ASSERT_TRUE(full->numberOfShapes() == 3 && balloon->token() == ZuToken("balloon"));
  EXPECT_TRUE(full->container() == &shapes && balloon->container() == &shapes);
  EXPECT_EQ(balloon->higherFidelityRepresentation(), full);
  EXPECT_EQ(balloon->distanceTo(ZuVector(5, 0, 0)), 1.0) << "by the plug-in's own radius";
  std::string again;
  ZuShapeContainer readBack(shapes);
  ASSERT_TRUE(shapes.writeToBuffer(again, "shapes") && readBack.readFromBuffer(again));
  EXPECT_EQ(readBack, shapes);
  EXPECT_FALSE(shapes.readFromBuffer("<shapes><spring/></shapes>")) << "a plug-in's class that is no shape";
  EXPECT_EQ(sink.take().size(), 1U);
}

TEST_F(Shape, AChainNeedsAContainerToBeRead) {
  ZuSphere sphere(ZuVector(), 2.0, 3);
  PrintSink sink;
  EXPECT_FALSE(sphere.readFromBuffer("<sphere>\n<radius>1</radius>\n<capsule/></sphere>"));
  EXPECT_EQ(sink.take(), Messages{"ZuShape::readValueFromSpecialToken(): Unable to read token: capsule on line 3 due "
                                  "to NULL container pointer.\n"});
  EXPECT_EQ(sphere.radius(), 2.0);
}

TEST_F(Shape, HostileChainsAreRefusedInOneLine) {
  ZuShapeContainer shapes = ZuShapeContainer::testObject();
  PrintSink sink;
  for (std::string const& text : {nested(100000), std::string("<shapes>\n<sphere><teapot/></sphere></shapes>"),
                                  std::string("<shapes><sphere><radius>big</radius></sphere></shapes>"),
                                  std::string("<shapes><teapot/></shapes>")}) {
    EXPECT_FALSE(shapes.readFromBuffer(text));
    Messages const messages = sink.take();
    ASSERT_EQ(messages.size(), 1U) << text.substr(0, 80);
    EXPECT_NE(messages[0].find("line "), std::string::npos) << messages[0];
    EXPECT_EQ(shapes, ZuShapeContainer::testObject());
  }
  EXPECT_TRUE(shapes.readFromBuffer(nested(200)));
  std::string text = "old";
  EXPECT_FALSE(chain(300).writeToBuffer(text, "sphere")) << "what could not be read is not written";
  EXPECT_TRUE(sink.take().size() == 1 && text == "old");
}

TEST_F(Shape, TheGenericWayRemembersItsResult) {
  ZuPolyPhysicalExtent const a = cubeOf(1.0), b = cubeOf(0.5);
  ZuVector w1, w2;
  EXPECT_NEAR(witness(a, b, shift(3), w1, w2), 1.5, 1e-12);
  EXPECT_NEAR(w1[0], 1.0, 1e-12);
  EXPECT_NEAR(w2[0], -0.5, 1e-12);
  EXPECT_TRUE(m_State.getProximityVector(key1, key2).approxEq(ZuVector(-1.5, 0, 0), 1e-12));
  // Once stamped valid, the stored result is the answer, wherever the shapes are.
  m_State.setValid(key1, key2);
  EXPECT_NEAR(a.distanceTo(b, shift(9), m_Descriptor, m_State), 1.5, 1e-12);
  EXPECT_NEAR(distance(a, b, shift(9)), 7.5, 1e-12);
}

TEST_F(Shape, ContactFillsTheRingBuffersAndANewContactEmptiesThem) {
  ZuPolyPhysicalExtent const a = cubeOf(1.0);
  EXPECT_LE(distance(a, a, shift(2)), 0.0) << "touching counts as contact";
  ZuShapeProximityData const& record = *m_State.getProximityData(key1, key2);
  ASSERT_NE(record.getPenetrationPointShape1Primary(0), nullptr);
  EXPECT_NEAR((*record.getPenetrationPointShape1Primary(0))[0], 1.0, 1e-9);
  EXPECT_NEAR((*record.getPenetrationPointShape2Primary(0))[0], -1.0, 1e-9);
  EXPECT_EQ(static_cast<int>(record.frictionMode()), 2);
  m_State.setCollisionOccured(key1, key2, true);
  EXPECT_NEAR(distance(a, a, shift(1.5)), -0.5, 1e-9);
  EXPECT_NE(record.getPenetrationPointShape1Primary(1), nullptr) << "a lasting contact adds";
  m_State.setCollisionOccured(key1, key2, false);
  distance(a, a, shift(1.5));
  EXPECT_EQ(record.getPenetrationPointShape1Primary(1), nullptr) << "a new contact starts afresh";
}

TEST_F(Shape, WithoutMemoryTheGenericWayFailsOrForgets) {
  ZuPolyPhysicalExtent const a = cubeOf(1.0);
  ZuSystemShapeProximityState empty;
  ZuShapeProximityDescriptor const unknown;
  PrintSink sink;
  EXPECT_EQ(a.distanceTo(a, shift(3), m_Descriptor, empty), 0.0);
  EXPECT_EQ(sink.take(), (Messages{"ZuShape::gjkDistanceQuery-->proximity database not initialized\n",
                                   "ZuShape::distanceTo-->GJK Failed\n"}));
  EXPECT_NEAR(a.distanceTo(a, shift(3), unknown, m_State), 1.0, 1e-12);
  EXPECT_TRUE(sink.take().empty());
  EXPECT_LE(a.distanceTo(a, shift(1), unknown, m_State), 0.0);
  EXPECT_EQ(sink.take(), Messages{"ZuStatedSystem::gjkDistanceQuery-->null pointer"});
}

TEST_F(Shape, WalkingTheLevelsStopsWhereTheBoundDecides) {
  ZuSphere a = chain(2), b = chain(0);
  unsigned int index = 0;
  std::map<std::string, ZuShape const*> names;
  std::vector<ZuShape*> shapes;
  a.setIndexAndBackPointer(index, nullptr, names, shapes);
  struct Case {
    double shift, bound, distance;
    std::vector<unsigned int> touching;  // shape ids, coarse to fine
  };
  for (Case const& c : {Case{9, 0, 5, {}},          // the coarsest decides
                        Case{3.5, 0, 0.5, {2}},     // the next does
                        Case{9, 1e300, 7, {}},      // exact
                        Case{2.5, 0, 0.5, {2, 1}},  // the full shapes are apart
                        Case{1.5, 0, -0.5, {2, 1, 0}}}) {
    double d = c.bound;
    ZuShape::KeyPairs pairs;
    std::vector<bool> full;
    ASSERT_TRUE(a.distanceQuery(b, {1, 0}, {0, 0}, shift(c.shift), true, m_State, d, &pairs, &full));
    EXPECT_NEAR(d, c.distance, 1e-15) << c.shift;
    ASSERT_TRUE(pairs.size() == c.touching.size() && full.size() == pairs.size()) << c.shift;
    for (std::size_t i = 0; i < pairs.size(); ++i)
      EXPECT_TRUE(pairs[i].first.shapeID() == c.touching[i] && full[i] == (c.touching[i] == 0)) << c.shift;
  }
  // A pair that is not answered does not touch.
  ZuShape::KeyPairs pairs;
  double d = 5.0;
  PrintSink sink;
  EXPECT_FALSE(b.distanceQuery(ZuCapsule(), {1, 0}, {0, 0}, shift(0), true, m_State, d, &pairs, nullptr));
  EXPECT_TRUE(d == 5.0 && pairs.empty() && sink.messages().size() == 1);
}

TEST_F(Shape, CollisionsOfASystemAreThosePairsWithinTheMargin) {
  Row row(m_State);
  auto const count = [&](double margin, bool own, bool first) {
    std::vector<ZuShapeCollisionEvent> events;
    ZuShape::ZuCollisionQueryOptions options;
    options.includeOwnManipulator = own;
    options.stopAtFirst = first;
    row.sphere.collisions(row, ZuLinkStateCacheKey(1, 0), row, options, margin, events);
    for (ZuShapeCollisionEvent const& event : events) EXPECT_LE(event.distance, margin);
    return events.size();
  };
  EXPECT_EQ(count(0.19, true, false), 0U);
  EXPECT_EQ(count(0.21, true, false), 2U);
  EXPECT_EQ(count(0.21, true, true), 1U);
  EXPECT_EQ(count(0.21, false, false), 1U);
}

TEST_F(Shape, PenetrationInformationFillsTheRecord) {
  ZuSphere const a(ZuVector(), 1.0, 3);
  double d = 9.0;
  EXPECT_FALSE(a.computePenetrationInformation(a, key1, key2, shift(3), m_State, d));
  EXPECT_EQ(d, 1.0);
  EXPECT_FALSE(m_State.collisionOccured(key1, key2));
  EXPECT_TRUE(a.computePenetrationInformation(a, key1, key2, shift(1.5), m_State, d));
  EXPECT_EQ(d, -0.5);
  ZuShapeProximityData const& record = *m_State.getProximityData(key1, key2);
  EXPECT_TRUE(record.collisionOccurred());
  EXPECT_TRUE(record.collisionPointPrimaryObject1().approxEq(ZuVector(1, 0, 0), 1e-15));
  EXPECT_TRUE(record.collisionPointPrimaryObject2().approxEq(ZuVector(-1, 0, 0), 1e-15));
  EXPECT_NEAR(record.lineOfAction()[0], 1.0, 1e-15) << "towards the other";
}

TEST_F(Shape, ArgumentsThatBelongToTheShapeItselfAreSafe) {
  ZuSphere sphere = chain(3);
  sphere.fitFromShape(sphere.physicalExtent());
  EXPECT_GE(sphere.radius(), 1.0 - 1e-12) << "holds all vertices of its own approximation";
  ZuShape* const second = sphere.lowerFidelityRepresentation()->lowerFidelityRepresentation();
  sphere.setLowerFidelityRepresentation(second);
  EXPECT_EQ(sphere.numberOfShapes(), 3U) << "the first level is gone, the second and third stay";
  PrintSink sink;
  sphere.setLowerFidelityRepresentation(&sphere);
  EXPECT_TRUE(sink.messages().size() == 1 && sphere.lowerFidelityRepresentation() == second);
  ZuAxisAlignedBoundingBox box;
  sphere.axisAlignedBoundingBoxInPrimary(box);
  EXPECT_LE(box.xMin(), sphere.center()[0] - sphere.radius());
}

TEST_F(Shape, SubdividedTrianglesShareTheirPoints) {
  ZuSphere const sphere;
  ZuXmlVectorVector points(std::vector<ZuVector>{{2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {0, -2, 0}});
  ZuXmlVectorType<ZuPolygonWithKey> polygons;
  unsigned int const first[] = {0, 1, 2}, second[] = {0, 2, 3}, wrong[] = {0, 1, 99};
  sphere.subdivide(points, polygons, first, 2);
  EXPECT_EQ(points.size(), 4U + 12U);
  PrintSink sink;
  for (unsigned int const* triangle : {second, wrong}) sphere.subdivide(points, polygons, triangle, 2);
  EXPECT_EQ(sink.messages().size(), 1U);
  EXPECT_EQ(polygons.size(), 32U);
  EXPECT_EQ(points.size(), 4U + 12U + 9U) << "the three points inside the shared edge are used again";
  for (ZuVector const& point : points) EXPECT_NEAR(point.mag(), 2.0, 1e-15);
}
