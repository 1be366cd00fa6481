#include <map>
#include <set>

#include "geometry/zuConvexHull.h"
#include "tests/convexOracle.h"
#include "tests/objReader.h"
#include "tests/testValues.h"

namespace {

using Points = std::vector<ZuVector>;

/// A hull by the places of its corners, and what can be measured on it.
struct Hull {
  explicit Hull(Points const& input) : points(input) {
    done = ZuConvexHull().computeConvexHull(points, facets, &onHull);
    for (ZuGJKTriangle const& facet : facets) {
      volume += outward(facet).dot(corner(facet, 0) - points[0]) / 3.0;
      area += outward(facet).mag();
    }
  }

  ZuVector const& corner(ZuGJKTriangle const& facet, unsigned int k) const {
    return points[static_cast<std::size_t>(facet.vertexIndex(k))];
  }
  /// Towards the outside, since corners run clockwise as seen from there; its length is the facet's area.
  ZuVector outward(ZuGJKTriangle const& facet) const {
    ZuVector const& p = corner(facet, 0);
    return (corner(facet, 2) - p).cross(corner(facet, 1) - p) * 0.5;
  }
  /// Every edge is there once in each direction: the surface is closed and its facets agree in their side.
  bool isClosed() const {
    std::set<std::pair<int, int>> edges, reversed;
    for (ZuGJKTriangle const& f : facets) {
      for (unsigned int k = 0; k < 3; ++k) {
        edges.insert({f.vertexIndex(k), f.vertexIndex((k + 1) % 3)});
        reversed.insert({f.vertexIndex((k + 1) % 3), f.vertexIndex(k)});
      }
    }
    return edges.size() == 3 * facets.size() && edges == reversed;
  }
  long numberOfCorners() const { return std::count(onHull.begin(), onHull.end(), true); }

  Points points;
  std::vector<ZuGJKTriangle> facets;
  std::vector<bool> onHull;
  bool done = false;
  double volume = 0.0, area = 0.0;
};

/// The strict corners of points of the plane that differ: those that are away from the hull of the others.
std::vector<unsigned int> cornersByTrial(std::vector<double> const& xy) {
  std::vector<unsigned int> corners;
  for (unsigned int i = 0; i < xy.size() / 2; ++i) {
    oracle::Points one, others;
    for (unsigned int k = 0; k < xy.size() / 2; ++k) (k == i ? one : others).push_back({xy[2 * k], xy[2 * k + 1], 0});
    if (oracle::distance(one, others) > 1e-12) corners.push_back(i);
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
    // Some facets of large hulls stand for all.
    for (std::size_t i = 0; i < hull.facets.size(); i += 1 + hull.facets.size() / 1000) {
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
  std::map<std::string, std::vector<double>> block;  // the numbers behind each key
  auto const first = [&block](char const* key) { return block[key].empty() ? 0.0 : block[key][0]; };
  for (std::string line; std::getline(file, line);) {
    std::istringstream text(line);
    std::string key;
    text >> key;
    for (double x; text >> x;) block[key].push_back(x);
    if (key != "end") continue;
    SCOPED_TRACE(++answered);
    Points points;
    std::vector<double> const& xyz = block["p"];
    for (std::size_t i = 0; i < xyz.size(); i += 3) points.emplace_back(xyz[i], xyz[i + 1], xyz[i + 2]);
    double const size = ObjMesh{points, {}}.size();
    Hull const hull(points);
    ASSERT_TRUE(hull.done && hull.isClosed());
    EXPECT_NEAR(hull.volume, first("volume"), 1e-12 * size * size * size);
    // A flat set has its two sides for a surface.
    EXPECT_NEAR(hull.area, first("area") * (first("dim") == 2.0 ? 2.0 : 1.0), 1e-12 * size * size);
    if (first("min_dihedral_sin") < 1e-6) block["extreme"].clear();
    for (std::size_t i = 1; i < block["extreme"].size(); ++i) {  // behind their number
      ZuVector const& extreme = points[static_cast<std::size_t>(block["extreme"][i])];
      double nearest = size;
      for (std::size_t k = 0; k < points.size(); ++k)
        if (hull.onHull[k]) nearest = std::min(nearest, extreme.distanceTo(points[k]));
      EXPECT_LT(nearest, 1e-12 * size) << i;
    }
    block.clear();
  }
  EXPECT_GT(answered, 5);
}

TEST(ConvexHull, AllFormsDescribeTheSameHull) {
  TracedValues random(301);
  Points input, expected;
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
  ASSERT_TRUE(triangles.size() == hull.facets.size() && polygons.size() == hull.facets.size());
  for (std::size_t i = 0; i < hull.facets.size(); ++i) {
    ASSERT_EQ(polygons[i].numberOfPoints(), 3U);
    for (unsigned int k = 0; k < 3; ++k) {
      EXPECT_EQ(triangles[i].point(k), hull.corner(hull.facets[i], k));
      EXPECT_EQ(polygons[i].point(k), hull.corner(hull.facets[i], k));
    }
  }
  for (std::size_t i = 0; i < input.size(); ++i)
    if (onHull[i]) expected.push_back(input[i]);
  EXPECT_TRUE(corners == ZuXmlVectorVector(expected));
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
    std::vector<bool> expected = alone.onHull;
    expected.resize(60);
    ASSERT_EQ(Hull(points).onHull, expected);
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
  for (Points const& same : {points, tiny, huge}) EXPECT_EQ(Hull(same).facets, Hull(points).facets);
  EXPECT_NEAR(Hull(away).volume, 0x1p-60, 0x1p-60 * 1e-9);
}

TEST(ConvexHull, BuffersGrowOnlyAndAreNotShared) {
  ZuConvexHull engine;
  std::vector<bool> onHull;
  Points points = cube();
  for (std::size_t const count : {8U, 5U}) {
    points.resize(count);
    ASSERT_TRUE(engine.computeConvexHull(ZuXmlVectorVector(points), onHull));
    EXPECT_TRUE(engine.coordinateCapacity() == 24 && engine.indexCapacity() == 60) << engine.indexCapacity();
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
    ZuVector w;
    bool expected;
  } const cases[] = {{{1, 1, 1}, true},     {{1, 1, 1e-7}, true},     {{1e-3, 1e-9, 1e-9}, true},
                     {{1, 1, 1e-9}, false}, {{1, 1e-9, 1e-9}, false}, {{1, 1, 0}, false},
                     {{1, 0, 0}, false},    {{0, 0, 0}, false},       {{1e-12, 1e-12, 1e-12}, true}};
  for (auto const& [w, expected] : cases) {
    ZuVector const place = w.x() == 1.0 ? ZuVector(3, -2, 5) : ZuVector();
    for (double scale : {1e-200, 1.0, 1e200}) {
      Points points = cube();
      for (ZuVector& p : points) p = (ZuVector(p.x() * w.x(), p.y() * w.y(), p.z() * w.z()) + place) * scale;
      EXPECT_EQ(ZuConvexHull::spansVolume(points.data(), 8), expected) << testing::PrintToString(w) << scale;
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
