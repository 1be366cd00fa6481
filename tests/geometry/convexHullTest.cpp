#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <map>
#include <set>
#include <sstream>

#include "geometry/zuConvexHull.h"
#include "tests/objReader.h"
#include "tests/printSink.h"
#include "tests/randomValues.h"
#include "tests/valuePrinters.h"

namespace {

using Points = std::vector<ZuVector>;

#ifdef __OPTIMIZE__
constexpr std::size_t theStride = 1;
#else
/// Looks at some facets of large hulls only: without optimisation all of them take half a minute.
constexpr std::size_t theStride = 10;
#endif

/// A hull by the places of its corners, and what can be measured on it.
struct Hull {
  explicit Hull(Points const& input) : points(input) {
    done = ZuConvexHull().computeConvexHull(points, facets, &onHull);
  }

  ZuVector const& corner(ZuGJKTriangle const& facet, unsigned int k) const {
    return points[static_cast<std::size_t>(facet.vertexIndex(k))];
  }
  /// Towards the outside, since corners run clockwise as seen from there; its length is the facet's area.
  ZuVector outward(ZuGJKTriangle const& facet) const {
    ZuVector const& p = corner(facet, 0);
    return (corner(facet, 2) - p).cross(corner(facet, 1) - p) * 0.5;
  }
  double volume() const {
    double sum = 0.0;
    for (ZuGJKTriangle const& facet : facets) sum += outward(facet).dot(corner(facet, 0) - points[0]) / 3.0;
    return sum;
  }
  double area() const {
    double sum = 0.0;
    for (ZuGJKTriangle const& facet : facets) sum += outward(facet).mag();
    return sum;
  }
  /// Every edge is there once in each direction: the surface is closed and its facets agree in their side.
  bool isClosed() const {
    std::set<std::pair<int, int>> edges;
    for (ZuGJKTriangle const& f : facets) {
      for (unsigned int k = 0; k < 3; ++k) edges.insert({f.vertexIndex(k), f.vertexIndex((k + 1) % 3)});
    }
    return edges.size() == 3 * facets.size() && std::all_of(edges.begin(), edges.end(), [&edges](auto const& edge) {
             return edges.count({edge.second, edge.first}) == 1;
           });
  }
  long numberOfCorners() const { return std::count(onHull.begin(), onHull.end(), true); }

  Points points;
  std::vector<ZuGJKTriangle> facets;
  std::vector<bool> onHull;
  bool done = false;
};

struct HullCase {
  std::string name;
  Points points;
  int dimension = 0;
  std::vector<std::size_t> extreme;
  double volume = 0.0;
  double area = 0.0;
  double smallestSine = 0.0;
};

std::vector<HullCase> hullCases() {
  std::ifstream file(sharedFile("cases/open.hulls.txt"));
  std::vector<HullCase> cases;
  for (std::string line, key; std::getline(file, line);) {
    std::istringstream text(line);
    text >> key;
    if (key == "hull") cases.emplace_back();
    if (cases.empty()) continue;
    HullCase& c = cases.back();
    double x = 0.0, y = 0.0, z = 0.0;
    if (key == "hull") text >> c.name;
    if (key == "dim") text >> c.dimension;
    if (key == "volume") text >> c.volume;
    if (key == "area") text >> c.area;
    if (key == "min_dihedral_sin") text >> c.smallestSine;
    if (key == "p" && text >> x >> y >> z) c.points.emplace_back(x, y, z);
    if (key == "extreme") {
      std::size_t place = 0;
      text >> place;
      while (text >> place) c.extreme.push_back(place);
    }
  }
  return cases;
}

/// The strict corners of the hull of points of the plane, by A. M. Andrew's monotone chain (1979).
std::vector<unsigned int> monotoneChain(std::vector<double> const& xy) {
  std::vector<unsigned int> order(xy.size() / 2), chain;
  for (unsigned int i = 0; i < order.size(); ++i) order[i] = i;
  auto const at = [&xy](unsigned int i) { return std::make_pair(xy[2 * i], xy[2 * i + 1]); };
  std::sort(order.begin(), order.end(), [&](unsigned int a, unsigned int b) { return at(a) < at(b); });
  auto const turn = [&](unsigned int a, unsigned int b, unsigned int c) {
    auto const [ax, ay] = at(a);
    return (at(b).first - ax) * (at(c).second - ay) - (at(b).second - ay) * (at(c).first - ax);
  };
  for (int side = 0; side < 2; ++side) {
    std::size_t const start = chain.size();
    for (unsigned int i : order) {
      while (chain.size() >= start + 2 && turn(chain[chain.size() - 2], chain.back(), i) <= 0.0) chain.pop_back();
      chain.push_back(i);
    }
    chain.pop_back();
    std::reverse(order.begin(), order.end());
  }
  std::sort(chain.begin(), chain.end());
  return chain;
}

Points cube() {
  Points corners;
  for (unsigned int i = 0; i < 8; ++i) corners.emplace_back(i & 1U, (i >> 1U) & 1U, i >> 2U);
  return corners;
}

}  // namespace

TEST(ConvexHull, RealMeshesLieInsideTheirClosedHulls) {
  for (std::string const& name : realMeshes()) {
    SCOPED_TRACE(name);
    ObjMesh const mesh = ObjMesh::read(sharedFile("data/objects/" + name));
    if (mesh.points.empty()) GTEST_SKIP() << "the shared meshes are not there";
    Hull const hull(mesh.points);
    ASSERT_TRUE(hull.done && hull.isClosed());
    EXPECT_EQ(2 * hull.numberOfCorners(), 4 + static_cast<long>(hull.facets.size()));
    double farthestOut = 0.0;
    for (std::size_t i = 0; i < hull.facets.size(); i += theStride) {
      ZuGJKTriangle const& facet = hull.facets[i];
      ZuVector const normal = hull.outward(facet).unitVector(), base = hull.corner(facet, 0);
      for (ZuVector const& p : mesh.points) farthestOut = std::max(farthestOut, normal.dot(p - base));
    }
    EXPECT_LT(farthestOut, 1e-14 * mesh.size());
  }
}

TEST(ConvexHull, HardSetsHaveTheirExactVolumeAreaAndCorners) {
  std::vector<HullCase> const cases = hullCases();
  if (cases.empty()) GTEST_SKIP() << "the shared cases are not there";
  for (HullCase const& c : cases) {
    SCOPED_TRACE(c.name);
    Hull const hull(c.points);
    double size = 0.0;
    for (ZuVector const& p : c.points) size = std::max(size, p.distanceTo(c.points[0]));
    ASSERT_TRUE(hull.done && hull.isClosed());
    EXPECT_NEAR(hull.volume(), c.volume, 1e-12 * size * size * size);
    // A flat set has its two sides for a surface.
    EXPECT_NEAR(hull.area(), c.dimension == 2 ? 2.0 * c.area : c.area, 1e-12 * size * size);
    if (c.smallestSine < 1e-6) continue;
    for (std::size_t i : c.extreme) {
      double nearest = size;
      for (std::size_t k = 0; k < c.points.size(); ++k) {
        if (hull.onHull[k]) nearest = std::min(nearest, c.points[i].distanceTo(c.points[k]));
      }
      EXPECT_LT(nearest, 1e-12 * size) << "point " << i;
    }
  }
}

TEST(ConvexHull, AllFormsDescribeTheSameHull) {
  RandomValues random(301);
  Points input;
  for (int i = 0; i < 200; ++i) input.push_back(random.vector());
  ZuXmlVectorVector const points(input);
  Hull const hull(input);
  ZuConvexHull engine;
  std::vector<bool> onHull;
  ZuXmlVectorVector corners(points);
  ZuXmlVectorType<ZuPolygon> polygons;
  ZuXmlVectorType<ZuTriangle> triangles;
  ASSERT_TRUE(engine.computeConvexHull(points, onHull) && engine.computeConvexHull(corners, corners));
  ASSERT_TRUE(engine.computeConvexHull(points, polygons) && engine.computeConvexHull(points, triangles));
  EXPECT_EQ(onHull, hull.onHull);
  ASSERT_EQ(triangles.size(), hull.facets.size());
  ASSERT_EQ(polygons.size(), hull.facets.size());
  for (std::size_t i = 0; i < hull.facets.size(); ++i) {
    ASSERT_EQ(polygons[i].numberOfPoints(), 3U);
    for (unsigned int k = 0; k < 3; ++k) {
      EXPECT_EQ(triangles[i].point(k), hull.corner(hull.facets[i], k));
      EXPECT_EQ(polygons[i].point(k), hull.corner(hull.facets[i], k));
    }
  }
  Points expected;
  std::copy_if(input.begin(), input.end(), std::back_inserter(expected),
               [&, i = 0U](ZuVector const&) mutable { return hull.onHull[i++]; });
  EXPECT_TRUE(corners == ZuXmlVectorVector(expected));
  EXPECT_TRUE(engine.selfTest());
}

TEST(ConvexHull, APointInsideIsNeverACorner) {
  RandomValues random(302);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 300; ++i) {
    Points points;
    double const size = random.scale(1e-6, 1e6);
    for (int k = 0; k < 30; ++k) points.push_back(random.vector(size));
    Hull const alone(points);
    for (unsigned int k = 0; k < 30; ++k) {
      // Inside by 1e-6 of the way from a corner to the middle of the others.
      ZuVector middle;
      for (unsigned int j = 0; j < 30; ++j) middle += points[j] / 30.0;
      points.push_back(points[k] + (middle - points[k]) * 1e-6);
    }
    Hull const both(points);
    for (unsigned int k = 0; k < 30; ++k) ASSERT_EQ(both.onHull[k], alone.onHull[k]);
    ASSERT_EQ(both.numberOfCorners(), alone.numberOfCorners());
  }
}

TEST(ConvexHull, IsTheSameOnEveryRunAtEveryScaleAndInAnyPlace) {
  RandomValues random(303);
  Points points = cube(), tiny, huge, away;
  for (int i = 0; i < 100; ++i) points.push_back(ZuVector(random.real(0.0, 1.0), 0.5, 1.0));
  for (ZuVector const& p : points) {
    tiny.push_back(p * 0x1p-1000);
    huge.push_back(p * 0x1p+1000);
    away.push_back((p - ZuVector(0.5, 0.5, 0.5)) * 0x1p-20 + ZuVector(0x1p+20, 0, 0));
  }
  std::vector<ZuGJKTriangle> const once = Hull(points).facets;
  EXPECT_EQ(Hull(tiny).facets, once);
  EXPECT_EQ(Hull(huge).facets, once);
  EXPECT_EQ(Hull(points).facets, once);
  EXPECT_NEAR(Hull(away).volume(), 0x1p-60, 0x1p-60 * 1e-9);
}

TEST(ConvexHull, BuffersGrowOnlyAndAreNotShared) {
  ZuConvexHull engine;
  std::vector<bool> onHull;
  Points points = cube();
  EXPECT_EQ(engine.indexCapacity(), 0U);
  ASSERT_TRUE(engine.computeConvexHull(ZuXmlVectorVector(points), onHull));
  EXPECT_EQ(engine.coordinateCapacity(), 24U);
  EXPECT_EQ(engine.indexCapacity(), 60U);
  points.resize(5);
  ASSERT_TRUE(engine.computeConvexHull(ZuXmlVectorVector(points), onHull));
  EXPECT_EQ(engine.coordinateCapacity(), 24U);
  EXPECT_EQ(engine.indexCapacity(), 60U);
  EXPECT_EQ(ZuConvexHull(engine).indexCapacity(), 0U);
}

TEST(ConvexHull, PlanarCornersAreThoseOfTheMonotoneChain) {
  RandomValues random(304);
  SCOPED_TRACE(random.trace());
  ZuConvexHull engine;
  std::vector<unsigned int> corners;
  double const square[10] = {1, 1, 0.5, 0.5, 0, 0, 1, 0, 0, 1};
  ASSERT_TRUE(engine.compute2DConvexHull(square, 5, corners));
  EXPECT_EQ(corners, (std::vector<unsigned int>{0, 2, 3, 4}));
  for (int i = 0; i < 500; ++i) {
    std::vector<double> xy = {0, 0, 9, 0, 0, 9};
    bool const grid = i % 2 == 0;
    for (unsigned int k = random.index(40); k > 0; --k) {
      // On the grid each place is taken at most once, since either of two equal points may be the corner.
      double const x = grid ? 1.0 + k % 7 : random.real(-9.0, 9.0), y = grid ? 1.0 + k / 7 : random.real(-9.0, 9.0);
      if (!grid || random.index(2) == 0) xy.insert(xy.end(), {x, y});
    }
    ASSERT_TRUE(engine.compute2DConvexHull(xy.data(), static_cast<unsigned int>(xy.size() / 2), corners));
    ASSERT_EQ(corners, monotoneChain(xy)) << i;
  }
}

TEST(ConvexHull, AnyDimensionGivesTheFacetsOfACrossPolytope) {
  for (int dimension : {2, 3, 4, 5}) {
    std::vector<double> coordinates;
    for (int i = 0; i < 2 * dimension; ++i) {
      for (int k = 0; k < dimension; ++k) coordinates.push_back(k == i / 2 ? 1.0 - 2.0 * (i % 2) : 0.0);
    }
    std::vector<int> room(1000);
    int* indices = room.data();
    int numberOfFacets = 0;
    qHull(coordinates.data(), 2 * dimension, dimension, indices, numberOfFacets);
    EXPECT_EQ(numberOfFacets, 1 << dimension);
    for (int f = 0; f < numberOfFacets; ++f) {
      std::set<int> axes;
      for (int k = 0; k < dimension; ++k) axes.insert(room[static_cast<std::size_t>(f * dimension + k)] / 2);
      EXPECT_EQ(axes.size(), static_cast<std::size_t>(dimension));
    }
  }
}

TEST(ConvexHull, NumbersThatAreNoneGiveNothingAndOneLine) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double bad : {nan, HUGE_VAL, -HUGE_VAL}) {
    PrintSink sink;
    Points points = cube();
    points[5] = ZuVector(0.0, bad, 0.0);
    Hull const hull(points);
    ZuXmlVectorVector corners(points);
    EXPECT_FALSE(hull.done || ZuConvexHull().computeConvexHull(corners, corners));
    EXPECT_TRUE(hull.facets.empty() && hull.numberOfCorners() == 0 && corners.empty());
    ASSERT_EQ(sink.messages().size(), 2U);
    EXPECT_EQ(sink.messages()[0].find("qHull-->coordinate 1 of point 5 is not finite"), 0U) << sink.messages()[0];
    EXPECT_FALSE(ZuConvexHull::spansVolume(points.data(), points.size()));
  }
}

TEST(ConvexHull, SpansVolumeExactlyWhenEveryWidthIsFelt) {
  ZuVector const place(3, -2, 5);
  struct {
    ZuVector extent;
    bool expected;
  } const cases[] = {{{1, 1, 1}, true},     {{1, 1, 1e-7}, true},     {{1e-3, 1e-9, 1e-9}, true},
                     {{1, 1, 1e-9}, false}, {{1, 1e-9, 1e-9}, false}, {{1, 1, 0}, false},
                     {{1, 0, 0}, false},    {{0, 0, 0}, false},       {{1e-12, 1e-12, 1e-12}, true}};
  for (auto const& c : cases) {
    for (double scale : {1e-200, 1.0, 1e200}) {
      Points points = cube();
      for (ZuVector& p : points) {
        p = (ZuVector(p.x() * c.extent.x(), p.y() * c.extent.y(), p.z() * c.extent.z()) +
             (c.extent.x() == 1.0 ? place : ZuVector())) *
            scale;
      }
      EXPECT_EQ(ZuConvexHull::spansVolume(points.data(), 8), c.expected) << testing::PrintToString(c.extent) << scale;
    }
  }
  EXPECT_FALSE(ZuConvexHull::spansVolume(cube().data(), 3));
}

TEST(ConvexHullDeathTest, InputThatQhullRejectsEndsTheProcessWithItsExitCode) {
  auto const hullOf = [](std::size_t n) {
    Points points = cube();
    points.resize(n);
    Hull const hull(points);
  };
  auto const planarHullOf = [](unsigned int n) {
    double const onALine[6] = {0, 0, 1, 1, 2, 2};
    std::vector<unsigned int> corners;
    ZuConvexHull().compute2DConvexHull(onALine, n, corners);
  };
  EXPECT_EXIT(hullOf(3), testing::ExitedWithCode(1), "QH6214");
  EXPECT_EXIT(hullOf(0), testing::ExitedWithCode(1), "QH6412");
  EXPECT_EXIT(planarHullOf(3), testing::ExitedWithCode(2), "QH6013|QH6154");
  EXPECT_EXIT(planarHullOf(2), testing::ExitedWithCode(1), "QH6214");
}
