#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <set>

#include "geometry/zuAABBHierarchyGeneration.h"
#include "geometry/zuGeomTriangle.h"
#include "tests/objReader.h"
#include "tests/randomValues.h"

namespace {

using Hierarchy = ZuAABBHierarchyGeneration;
using Box = Hierarchy::Box;

Box boxOf(ZuTriangle const& t) { return Box::around(t.point(0), t.point(1), t.point(2)); }

std::vector<Box> boxesOf(std::vector<ZuGeomTriangle> const& triangles) {
  std::vector<Box> boxes;
  for (ZuGeomTriangle const& t : triangles) boxes.push_back(boxOf(t));
  return boxes;
}

/// Distance of a box from a figure of which `corner` is one: 0 when the box holds that, else the least from its sides.
template <class Figure>
double distanceOf(Box const& box, Figure const& figure, ZuVector const& corner) {
  if (box.overlaps(Box::around(corner))) return 0.0;
  double least = HUGE_VAL;
  for (unsigned int axis = 0; axis < 3; ++axis) {
    for (double const level : {box.low[axis], box.high[axis]}) {
      auto const at = [&](double u, double v) {
        ZuVector p;
        p[axis] = level;
        p[(axis + 1) % 3] = u;
        p[(axis + 2) % 3] = v;
        return p;
      };
      double const u0 = box.low[(axis + 1) % 3], u1 = box.high[(axis + 1) % 3];
      double const v0 = box.low[(axis + 2) % 3], v1 = box.high[(axis + 2) % 3];
      least = std::min(least, ZuGeomTriangle(at(u0, v0), at(u1, v0), at(u1, v1)).distanceTo(figure));
      least = std::min(least, ZuGeomTriangle(at(u0, v0), at(u1, v1), at(u0, v1)).distanceTo(figure));
    }
  }
  return least;
}

/// Boxes, segments and triangles of a small grid, flat, thin and touching ones among them, or of a wide range of sizes.
ZuVector anyPoint(RandomValues& random, bool onGrid) {
  if (!onGrid) return random.vector(random.scale(1e-3, 1.0));
  unsigned int const i = random.index(27);
  return {i % 3 * 0.1, i / 3 % 3 * 0.1, i / 9 * 0.1};
}

/// A query in the three forms that a hierarchy takes it.
struct Query {
  std::function<double(ZuGeomTriangle const&)> distance;
  std::function<bool(ZuGeomTriangle const&)> meets;
  std::function<double(Box const&)> lowerBound;
  std::function<bool(Box const&)> mayMeet;
};

Query anyQuery(RandomValues& random, ZuVector const& a, double size) {
  double const reach = random.scale(1e-3 * size, size);
  ZuVector const b = a + random.vector(reach), c = a + random.vector(reach);
  auto const query = [](auto const& figure, auto const& bound) {
    return Query{[figure](ZuGeomTriangle const& t) { return t.distanceTo(figure); },
                 [figure](ZuGeomTriangle const& t) { return t.checkIntersect(figure); },
                 [bound](Box const& box) { return bound.distanceSquaredTo(box); },
                 [bound](Box const& box) { return bound.mayMeet(box); }};
  };
  switch (random.index(3)) {
    case 0:
      return {[a](ZuGeomTriangle const& t) { return t.distanceTo(a); },
              [a](ZuGeomTriangle const& t) { return t.checkIntersect(ZuLineSegment(a, a)); },
              [a](Box const& box) { return box.distanceSquaredTo(a); },
              [a](Box const& box) { return box.overlaps(Box::around(a)); }};
    case 1:
      return query(ZuLineSegment(a, b), Hierarchy::SegmentBound(a, b));
    default:
      return query(ZuGeomTriangle(a, b, c), Hierarchy::TriangleBound(a, b, c));
  }
}

}  // namespace

TEST(AabbHierarchy, FindsOnRealMeshesWhatALinearSearchFinds) {
  for (std::string const name : {"lego.obj", "hand_open.obj", "shape_sorter.obj", "wingnut.obj"}) {
    SCOPED_TRACE(name);
    ObjMesh const mesh = ObjMesh::read(sharedFile("data/objects/" + name));
    if (mesh.points.empty()) GTEST_SKIP() << "the shared meshes are not there";
    std::vector<ZuGeomTriangle> triangles;
    for (auto const& f : mesh.faces) triangles.emplace_back(mesh.points[f[0]], mesh.points[f[1]], mesh.points[f[2]]);
    Hierarchy hierarchy;
    hierarchy.build(boxesOf(triangles));
    ASSERT_TRUE(hierarchy.validate(boxesOf(triangles)));
    RandomValues random(401);
    SCOPED_TRACE(random.trace());
    double const size = mesh.size();
    std::size_t looks = 0, hits = 0;
    for (int i = 0; i < 60; ++i) {
      ZuVector const near = mesh.points[random.index(static_cast<unsigned int>(mesh.points.size()))];
      Query const query = anyQuery(random, i % 3 == 0 ? near : near + random.vector(0.3 * size), size);
      double expected = HUGE_VAL;
      std::set<unsigned int> expectedHits, foundHits;
      for (unsigned int k = 0; k < triangles.size(); ++k) {
        expected = std::min(expected, query.distance(triangles[k]));
        if (query.meets(triangles[k])) expectedHits.insert(k);
      }
      double const found = hierarchy.nearest(HUGE_VAL, query.lowerBound, [&](unsigned int place, double& best) {
        ++looks;
        best = std::min(best, std::pow(query.distance(triangles[hierarchy.order()[place]]), 2.0));
      });
      hierarchy.anyOf(query.mayMeet, [&](unsigned int place) {
        unsigned int const facet = hierarchy.order()[place];
        if (query.meets(triangles[facet])) foundHits.insert(facet);
        return false;
      });
      ASSERT_NEAR(std::sqrt(found), expected, 1e-15 * size) << i;
      ASSERT_EQ(foundHits, expectedHits) << i;
      hits += expectedHits.size();
    }
    EXPECT_LT(looks, 60 * triangles.size() / 4);
    EXPECT_GT(hits, 30U);
  }
}

TEST(AabbHierarchy, BoundsAreNeverTooLargeAndThatOfASegmentIsItsDistance) {
  RandomValues random(402);
  SCOPED_TRACE(random.trace());
  int contacts = 0;
  for (int i = 0; i < 4000; ++i) {
    bool const onGrid = i % 2 == 0;
    Box const box = Box::around(anyPoint(random, onGrid), anyPoint(random, onGrid));
    ZuVector const a = anyPoint(random, onGrid), b = anyPoint(random, onGrid);
    // Every other triangle is a needle, of which the normal is rounding.
    ZuVector const c = random.index(2) == 0 ? anyPoint(random, onGrid) : a + (b - a) * random.real() + b * 1e-16;
    Hierarchy::SegmentBound const segment(a, b);
    Hierarchy::TriangleBound const triangle(a, b, c);
    double const toSegment = distanceOf(box, ZuLineSegment(a, b), a);
    double const toTriangle = distanceOf(box, ZuGeomTriangle(a, b, c), a);
    ASSERT_NEAR(std::sqrt(segment.distanceSquaredTo(box)), toSegment, 1e-15) << i;
    ASSERT_TRUE(toSegment > 0.0 || segment.mayMeet(box)) << i;
    ASSERT_LE(std::sqrt(triangle.distanceSquaredTo(box)), toTriangle + 1e-15) << i;
    ASSERT_TRUE(toTriangle > 0.0 || triangle.mayMeet(box)) << i;
    contacts += toSegment == 0.0 ? 1 : 0;
  }
  EXPECT_GT(contacts, 500);
  EXPECT_LT(contacts, 3500);
}

TEST(AabbHierarchy, TakesAnyBoxesAndLeavesOutThoseThatAreNone) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  Box const unit = Box::around(ZuVector(0, 0, 0), ZuVector(1, 1, 1));
  Box const bad[] = {Box::around(ZuVector(nan, 0, 0)), {ZuVector(0, -HUGE_VAL, 0), ZuVector()}, {unit.high, unit.low}};
  for (std::size_t numberOfBoxes : {0U, 1U, 2U, 3U, 5U, 1000U}) {
    for (std::size_t numberOfBad : {0U, 3U}) {
      std::vector<Box> boxes(numberOfBoxes, unit);
      boxes.insert(boxes.begin(), bad, bad + numberOfBad);
      Hierarchy hierarchy;
      hierarchy.build(boxes);
      EXPECT_TRUE(hierarchy.validate(boxes)) << numberOfBoxes;
      std::size_t visited = 0;
      EXPECT_FALSE(hierarchy.anyOf([](Box const&) { return true; }, [&](unsigned int) { return ++visited == 0; }));
      EXPECT_EQ(visited, numberOfBoxes);
    }
  }
}

TEST(AabbHierarchy, RefitFollowsMovedFacetsAndRefusesOthers) {
  RandomValues random(403);
  std::vector<Box> boxes, moved;
  for (int i = 0; i < 300; ++i) {
    ZuVector const p = random.vector();
    boxes.push_back(Box::around(p, p + random.vector(0.1)));
    moved.push_back(Box::around(p + random.vector(0.5)));
  }
  Hierarchy hierarchy;
  hierarchy.build(boxes);
  EXPECT_FALSE(hierarchy.validate(moved));
  EXPECT_TRUE(hierarchy.refit(moved));
  EXPECT_TRUE(hierarchy.validate(moved));
  moved.push_back(boxes[0]);
  EXPECT_FALSE(hierarchy.refit(moved));
  moved.pop_back();
  moved[7] = Box::around(ZuVector(0, HUGE_VAL, 0));
  EXPECT_FALSE(hierarchy.refit(moved));
}
