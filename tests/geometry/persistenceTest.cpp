// The whole persistence contract, for every class: one list of types, one set of facts.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <utility>

#include "foundation/zuDataMap.h"
#include "foundation/zuXmlBaseVariableCompoundType.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCoordinateSystemTransformation.h"
#include "foundation/zuXmlMapType.h"
#include "foundation/zuXmlOrientation.h"
#include "foundation/zuXmlPairType.h"
#include "foundation/zuXmlVector.h"
#include "foundation/zuXmlVectorType.h"
#include "foundation/zuXmlVectorVector.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuBox.h"
#include "geometry/zuBoxTree.h"
#include "geometry/zuBrick.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCircle.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuFacetGroups.h"
#include "geometry/zuGeneralForce.h"
#include "geometry/zuGeneralMotion.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuGeometryOverwriteDescriptor.h"
#include "geometry/zuHalfSpace.h"
#include "geometry/zuIntervalIntersectionProcessor.h"
#include "geometry/zuLine.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuPlanarVector.h"
#include "geometry/zuPlane.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuPolygon.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuRectangle.h"
#include "geometry/zuShapeContainer.h"
#include "geometry/zuSpatialMatrix.h"
#include "geometry/zuSphere.h"
#include "geometry/zuTetrahedron.h"
#include "geometry/zuTriPhysicalExtent.h"
#include "geometry/zuTriangle.h"
#include "tests/allocationCounter.h"
#include "tests/printSink.h"
#include "tests/xmlSchemaCheck.h"

namespace {

using Real = ZuXmlBasicType<double>;
using Text = ZuXmlBasicType<std::string>;

/// Value classes: constructing, copying, assigning and destroying them never allocates.
using ValueClasses =
    std::tuple<Real, ZuXmlBasicType<unsigned int>, ZuXmlBasicType<int>, ZuXmlBasicType<unsigned short>,
               ZuXmlBasicType<bool>, ZuXmlVector, ZuXmlOrientation, ZuXmlCoordinateSystemTransformation,
               ZuXmlPairType<Real, ZuXmlVector>, ZuGeneralMotion, ZuGeneralForce, ZuLine, ZuLineSegment, ZuPlane,
               ZuAxisAlignedBoundingBox, ZuPlanarVector, ZuTriangle, ZuGeomTriangle, ZuRectangle, ZuCircle,
               ZuGeometryOverwriteDescriptor, ZuSpatialMatrix>;

/// Classes that own memory for what they hold.
using OwningClasses =
    std::tuple<ZuShapeContainer, ZuPolyPhysicalExtent, ZuTriPhysicalExtent, Text, ZuDataMap, ZuXmlVectorVector,
               ZuXmlVectorType<Real>, ZuXmlVectorType<ZuAxisAlignedBoundingBox>, ZuXmlMapType<Text, ZuXmlVector>,
               ZuXmlBaseVariableCompoundType, ZuPolygon, ZuPolygonWithKey, ZuCapsule, ZuBox, ZuEllipsoid, ZuHalfSpace,
               ZuLozenge, ZuTetrahedron, ZuCylinder, ZuCone, ZuFacetGroups, ZuBrick>;

/// Classes whose documents hold nothing.
using TransientClasses = std::tuple<ZuBBTreeHeuristic, ZuBoxTreeNode, ZuIntervalIntersectionProcessor>;

template <class Tuple>
struct TypesOf;
template <class... A>
struct TypesOf<std::tuple<A...>> {
  using type = testing::Types<A...>;
};
using PersistentClasses = decltype(std::tuple_cat(std::declval<ValueClasses>(), std::declval<OwningClasses>()));

template <class T>
class ValueClass : public testing::Test {};
TYPED_TEST_SUITE(ValueClass, TypesOf<ValueClasses>::type);

template <class T>
class Persistence : public testing::Test {};
TYPED_TEST_SUITE(Persistence, TypesOf<PersistentClasses>::type);

template <class T>
class Copies : public testing::Test {};
using AllClasses = decltype(std::tuple_cat(std::declval<PersistentClasses>(), std::declval<TransientClasses>()));
TYPED_TEST_SUITE(Copies, TypesOf<AllClasses>::type);

/// Values stay small: components and one pointer to tables that only XML needs (in 64-bit builds).
static_assert(sizeof(void*) != 8 || (sizeof(ZuXmlVector) <= 40 && sizeof(ZuSphere) <= 512));
static_assert(sizeof(void*) != 8 || sizeof(ZuAxisAlignedBoundingBox) <= 112);

}  // namespace

TYPED_TEST(ValueClass, NeverAllocatesUntilXmlIsUsed) {
  TypeParam const sample = TypeParam::testObject();
  sample.equalsDefault();  // whatever is made once per process is made here
  AllocationCounter const counter;
  {
    TypeParam const fresh;
    TypeParam copy(sample);
    copy = fresh;
    copy = sample;
    EXPECT_TRUE(copy == sample);
  }
  EXPECT_EQ(counter.count(), 0U);
}

TYPED_TEST(Copies, AreEqualAndOtherValuesAreNot) {
  TypeParam const sample = TypeParam::testObject();
  std::unique_ptr<ZuXmlObject> const clone(sample.clone());
  std::unique_ptr<ZuXmlObject> const fresh(sample.newObject());
  std::unique_ptr<ZuXmlObject> const created(TypeParam::creator());
  TypeParam assigned;
  assigned = sample;
  EXPECT_TRUE(sample.equality(clone.get()));
  EXPECT_TRUE(sample.equality(&assigned));
  EXPECT_TRUE(fresh->equality(&TypeParam::nullObject()));
  EXPECT_TRUE(created->equalsDefault());
  EXPECT_FALSE(sample.equality(fresh.get()));
  EXPECT_FALSE(sample.equality(nullptr));
  EXPECT_TRUE(sample.selfTest());
}

TYPED_TEST(Persistence, EveryComponentCountsInEqualityAndCopiesBindTheirOwn) {
  if constexpr (std::is_base_of_v<ZuXmlCompoundType, TypeParam>) {
    TypeParam const sample = TypeParam::testObject(), fresh;
    sample.componentMap();
    auto const& defaults = fresh.componentMap().components();
    for (std::size_t i = 0; i < defaults.size(); ++i) {
      TypeParam copy(sample), assigned;
      assigned.componentMap();
      assigned = sample;
      for (TypeParam* const changed : {&copy, &assigned}) {
        auto const& component = changed->componentMap().components()[i];
        EXPECT_EQ(component.token, defaults[i].token);
        ASSERT_TRUE(component.object->assignFrom(*defaults[i].object));
        EXPECT_FALSE(*changed == sample) << component.token.token();
        EXPECT_TRUE(sample == TypeParam::testObject());
      }
    }
  }
}

TYPED_TEST(Persistence, DocumentsReadBackToTheSameValueInEveryForm) {
  TypeParam const sample = TypeParam::testObject();
  std::string plain;
  std::string compressed;
  ASSERT_TRUE(sample.writeToBuffer(plain, "root"));
  ASSERT_TRUE(sample.writeToCompressedBuffer(compressed, "root"));
  std::unique_ptr<ZuXmlObject> const first = sample.emptyLikeThis();
  std::unique_ptr<ZuXmlObject> const second = sample.emptyLikeThis();
  EXPECT_TRUE(first->readFromBuffer(plain)) << plain;
  EXPECT_TRUE(second->readFromCompressedBuffer(compressed));
  EXPECT_TRUE(sample.equality(first.get())) << plain;
  EXPECT_TRUE(sample.equality(second.get()));
  std::string again;
  ASSERT_TRUE(first->writeToBuffer(again, "root"));
  EXPECT_EQ(again, plain);
}

TYPED_TEST(Persistence, DocumentsValidateAgainstTheSchemaOfTheirClass) {
  if (!xmllintIsInstalled()) GTEST_SKIP() << "xmllint is not installed";
  TypeParam const sample = TypeParam::testObject();
  std::string document;
  ASSERT_TRUE(sample.writeToBuffer(document, "root"));
  EXPECT_EQ(schemaFault(sample, document), "") << document;
}

TYPED_TEST(Persistence, ABadDocumentPrintsOneLineAndChangesNothing) {
  TypeParam object = TypeParam::testObject();
  PrintSink sink;
  EXPECT_FALSE(object.readFromBuffer("<root>\n<unknown>zero</unknown></root>"));
  ASSERT_EQ(sink.messages().size(), 1U);
  EXPECT_NE(sink.messages()[0].find("line "), std::string::npos) << sink.messages()[0];
  EXPECT_TRUE(object == TypeParam::testObject());
}
