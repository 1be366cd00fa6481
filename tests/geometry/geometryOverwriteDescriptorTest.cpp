#include <gtest/gtest.h>

#include <cmath>

#include "geometry/zuGeomTriangle.h"
#include "geometry/zuGeometryOverwriteDescriptor.h"
#include "tests/printSink.h"
#include "tests/valuePrinters.h"

TEST(GeometryOverwriteDescriptor, NormalsStayThoseOfTheFacetsWhicheverWayTheyAreScaled) {
  ZuGeomTriangle const facet(ZuVector(1, 2, 3), ZuVector(-1, 0.5, 2), ZuVector(0.25, -3, 1));
  for (ZuVector const& scale : {ZuVector(0.5, 3, 2), ZuVector(-1, 1, 4), ZuVector(-2, -1, -3), ZuVector(1, 0, 2)}) {
    for (bool const reverse : {false, true}) {
      ZuGeometryOverwriteDescriptor descriptor;
      descriptor.setScale(scale);
      descriptor.setFrame(ZuCoordinateSystemTransformation::testObject());
      descriptor.setReverse(reverse);
      ZuXmlVectorVector points({facet.point(0), facet.point(1), facet.point(2)}), normals({facet.normal()});
      descriptor.overwrite(points, normals);
      ZuGeomTriangle changed(points[0], points[1], points[2]);
      if (descriptor.reversesFacets()) changed.reverse();
      EXPECT_TRUE(changed.normal().approxEq(normals[0], 1e-15)) << testing::PrintToString(scale) << reverse;
      // A mirror keeps what is outside outside, unless that was asked to change.
      ZuVector const outside = descriptor.point(facet.point(0) + facet.normal());
      EXPECT_TRUE(scale.prod() == 0.0 || ((outside - points[0]).dot(normals[0]) > 0.0) != reverse);
    }
  }
}

TEST(GeometryOverwriteDescriptor, TheDefaultKeepsEveryDigitAndAScaleThatIsNoneIsRefused) {
  ZuGeometryOverwriteDescriptor descriptor;
  ZuXmlVectorVector points({ZuVector::testObject()}), normals({ZuVector(0.6, 0.64, 0.48)});
  descriptor.overwrite(points, normals);
  EXPECT_TRUE(descriptor.keepsGeometry());
  EXPECT_EQ(points[0], ZuVector::testObject());
  EXPECT_EQ(normals[0], ZuVector(0.6, 0.64, 0.48));
  PrintSink sink;
  descriptor.setScale(ZuVector(1, HUGE_VAL, 1));
  EXPECT_EQ(sink.messages().size(), 1U);
  EXPECT_TRUE(descriptor.keepsGeometry());
}
