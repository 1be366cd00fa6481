#include <gtest/gtest.h>

#include "geometry/zuGeomTokens.h"

TEST(Token, EqualTextsAreEqualTokensHoweverTheyWereBuilt) {
  ZuToken assigned;
  assigned = std::string("sphere");
  EXPECT_EQ(assigned, ZuGeom::ZuSphereToken);
  EXPECT_EQ(ZuToken("sphere"), assigned);
  EXPECT_NE(ZuToken("Sphere"), assigned);
  EXPECT_EQ(ZuToken(static_cast<char const*>(nullptr)), ZuToken(""));
}
