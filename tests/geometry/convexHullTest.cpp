#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "geometry/zuConvexHull.h"
#include "tests/objReader.h"
#include "tests/testValues.h"

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

/// The strict corners of points of the plane that differ, by trial: all others lie on one side of a line through it.
std::vector<unsigned int> cornersByTrial(std::vector<double> const& xy) {
  auto const n = static_cast<unsigned int>(xy.size() / 2);
  auto const isBeside = [&xy](unsigned int a, unsigned int b, unsigned int c) {
    double const bx = xy[2 * b] - xy[2 * a], by = xy[2 * b + 1] - xy[2 * a + 1];
    double const cx = xy[2 * c] - xy[2 * a], cy = xy[2 * c + 1] - xy[2 * a + 1];
    double const turn = bx * cy - by * cx;
    return turn > 0.0 || (turn == 0.0 && bx * cx + by * cy >= 0.0);
  };
  std::vector<unsigned int> corners;
  for (unsigned int a = 0; a < n; ++a) {
    bool isCorner = false;
    for (unsigned int b = 0; b < n && !isCorner; ++b) {
      isCorner = b != a;
      for (unsigned int c = 0; c < n && isCorner; ++c) isCorner = isBeside(a, b, c);
    }
    if (isCorner) corners.push_back(a);
  }
  return corners;
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
  std::ifstream file(sharedFile("cases/open.hulls.txt"));
  if (!file) GTEST_SKIP() << "the shared cases are not there";
  int answered = 0;
  std::map<std::string, std::istringstream> block;
  Points points;
  for (std::string line; std::getline(file, line);) {
    std::string key;
    std::istringstream text(line);
    text >> key;
    ZuVector p;
    if (key == "p" && text >> p[0] >> p[1] >> p[2]) points.push_back(p);
    if (key != "end") {
      block[key] = std::move(text);
      continue;
    }
    ++answered;
    SCOPED_TRACE(block["hull"].str());
    double dimension = 0.0, volume = 0.0, area = 0.0, smallestSine = 0.0, size = 0.0;
    block["dim"] >> dimension;
    block["volume"] >> volume;
    block["area"] >> area;
    block["min_dihedral_sin"] >> smallestSine;
    for (ZuVector const& q : points) size = std::max(size, q.distanceTo(points[0]));
    Hull const hull(std::exchange(points, {}));
    ASSERT_TRUE(hull.done && hull.isClosed());
    EXPECT_NEAR(hull.volume(), volume, 1e-12 * size * size * size);
    // A flat set has its two sides for a surface.
    EXPECT_NEAR(hull.area(), dimension == 2.0 ? 2.0 * area : area, 1e-12 * size * size);
    std::size_t i = 0;
    block["extreme"] >> i;  // their number
    while (smallestSine >= 1e-6 && block["extreme"] >> i) {
      double nearest = size;
      for (std::size_t k = 0; k < hull.points.size(); ++k) {
        if (hull.onHull[k]) nearest = std::min(nearest, hull.points[i].distanceTo(hull.points[k]));
      }
      EXPECT_LT(nearest, 1e-12 * size) << "point " << i;
    }
    block.clear();
  }
  EXPECT_GT(answered, 5);
}

TEST(ConvexHull, AllFormsDescribeTheSameHull) {
  TracedValues random(301);
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
  TracedValues random(302);
  for (int i = 0; i < 300; ++i) {
    Points points;
    double const size = random.scale(1e-6, 1e6);
    for (int k = 0; k < 30; ++k) points.push_back(random.vector(size));
    Hull const alone(points);
    ZuVector middle;
    for (ZuVector const& p : alone.points) middle += p / 30.0;
    for (ZuVector const& p : alone.points) points.push_back(p + (middle - p) * 1e-6);
    Hull const both(points);
    ASSERT_TRUE(std::equal(alone.onHull.begin(), alone.onHull.end(), both.onHull.begin()));
    ASSERT_EQ(both.numberOfCorners(), alone.numberOfCorners());
  }
}

TEST(ConvexHull, IsTheSameOnEveryRunAtEveryScaleAndInAnyPlace) {
  TracedValues random(303);
  Points points = cube(), tiny, huge, away;
  for (int i = 0; i < 100; ++i) points.push_back(ZuVector(random.real(0.0, 1.0), 0.5, 1.0));
  for (ZuVector const& p : points) {
    tiny.push_back(p * 0x1p-1000);
    huge.push_back(p * 0x1p+1000);
    away.push_back((p - ZuVector(0.5, 0.5, 0.5)) * 0x1p-20 + ZuVector(0x1p+20, 0, 0));
  }
  std::vector<ZuGJKTriangle> const once = Hull(points).facets;
  for (Points const& same : {points, tiny, huge}) EXPECT_EQ(Hull(same).facets, once);
  EXPECT_NEAR(Hull(away).volume(), 0x1p-60, 0x1p-60 * 1e-9);
}

TEST(ConvexHull, BuffersGrowOnlyAndAreNotShared) {
  ZuConvexHull engine;
  EXPECT_EQ(engine.indexCapacity(), 0U);
  std::vector<bool> onHull;
  Points points = cube();
  for (std::size_t const count : {8U, 5U}) {
    points.resize(count);
    ASSERT_TRUE(engine.computeConvexHull(ZuXmlVectorVector(points), onHull));
    EXPECT_EQ(engine.coordinateCapacity(), 24U);
    EXPECT_EQ(engine.indexCapacity(), 60U);
  }
  EXPECT_EQ(ZuConvexHull(engine).indexCapacity(), 0U);
}

TEST(ConvexHull, PlanarCornersHaveAllOtherPointsOnOneSide) {
  TracedValues random(304);
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
    ASSERT_EQ(corners, cornersByTrial(xy)) << i;
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
  for (double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
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
  struct {
    double x, y, z;
    bool expected;
  } const cases[] = {{1, 1, 1, true},     {1, 1, 1e-7, true},     {1e-3, 1e-9, 1e-9, true},
                     {1, 1, 1e-9, false}, {1, 1e-9, 1e-9, false}, {1, 1, 0, false},
                     {1, 0, 0, false},    {0, 0, 0, false},       {1e-12, 1e-12, 1e-12, true}};
  for (auto const& c : cases) {
    ZuVector const place = c.x == 1.0 ? ZuVector(3, -2, 5) : ZuVector();
    for (double scale : {1e-200, 1.0, 1e200}) {
      Points points = cube();
      for (ZuVector& p : points) p = (ZuVector(p.x() * c.x, p.y() * c.y, p.z() * c.z) + place) * scale;
      EXPECT_EQ(ZuConvexHull::spansVolume(points.data(), 8), c.expected) << c.x << ' ' << c.y << ' ' << c.z << scale;
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
