// Even samples of rotations and of directions: the polytopes that they come from, how far apart they are, messages.
#include <set>

#include "geometry/zu600cell.h"
#include "geometry/zuTruncatedIcosahedron.h"
#include "tests/testValues.h"

namespace {

double const theDegree = std::acos(-1.0) / 180.0;

double cosine(ZuOrientation const& p, ZuOrientation const& q) {
  return p[0] * q[0] + p[1] * q[1] + p[2] * q[2] + p[3] * q[3];
}

double angle(ZuOrientation const& p, ZuOrientation const& q) {
  return 2.0 * std::acos(std::min(1.0, std::abs(cosine(p, q))));
}

double angle(ZuVector const& u, ZuVector const& v) { return u.distanceTo(v); }

/// All samples are farther apart than `spacing`, and nothing that is drawn is as far as `covering` from all of them.
template <class Sampled, class Draw>
void expectEven(Sampled& sampled, Draw const& draw, double spacing, double covering) {
  std::vector<decltype(draw())> samples;
  for (unsigned int i = 0; i < sampled.totalSampleCount(); ++i) samples.push_back(sampled.sample(i));
  auto const gap = [&samples](auto const& value, std::size_t count) {
    double least = 10.0;
    for (std::size_t j = 0; j < count; ++j) least = std::min(least, angle(value, samples[j]));
    return least;
  };
  double nearest = 10.0, farthest = 0.0;
  for (std::size_t i = 1; i < samples.size(); ++i) nearest = std::min(nearest, gap(samples[i], i));
  for (int i = 0; i < 3000; ++i) farthest = std::max(farthest, gap(draw(), samples.size()));
  EXPECT_GT(nearest, spacing);
  EXPECT_LT(farthest, covering);
}

}  // namespace

TEST(Cell600, IsTheRegularPolytope) {
  Zu600Cell const cell;
  EXPECT_TRUE(cell.selfTest());
  using Counts = std::vector<unsigned int>;
  Counts edgesAt(120), trianglesAt(120), cellsAt(120), cellsOn(1200);
  EXPECT_EQ(cell.vertex(0), ZuOrientation());
  for (unsigned int e = 0; e < 720; ++e) {
    ASSERT_NEAR(cosine(cell.edgeVertex(e, 0), cell.edgeVertex(e, 1)), std::cos(36 * theDegree), 1e-15);
    for (unsigned int k = 0; k < 2; ++k) ++edgesAt[cell.edgeVertexIndex(e, k)];
  }
  for (unsigned int t = 0; t < 1200; ++t) {
    std::multiset<unsigned int> ofEdges;
    for (unsigned int k = 0; k < 6; ++k) ofEdges.insert(cell.edgeVertexIndex(cell.triangleEdgeIndex(t, k / 2), k % 2));
    for (unsigned int k = 0; k < 3; ++k) ASSERT_EQ(ofEdges.count(cell.triangleVertexIndex(t, k)), 2U);
    for (unsigned int k = 0; k < 3; ++k) ++trianglesAt[cell.triangleVertexIndex(t, k)];
  }
  std::set<std::set<unsigned int>> distinct;
  for (unsigned int t = 0; t < 600; ++t) {
    std::multiset<unsigned int> ofEdges, ofTriangles;
    std::set<unsigned int> vertices;
    for (unsigned int k = 0; k < 12; ++k) {
      ofEdges.insert(cell.edgeVertexIndex(cell.tetrahedronEdgeIndex(t, k / 2), k % 2));
      ofTriangles.insert(cell.triangleVertexIndex(cell.tetrahedronTriangleIndex(t, k / 3), k % 3));
    }
    for (unsigned int k = 0; k < 4; ++k) {
      unsigned int const v = cell.tetrahedronVertexIndex(t, k);
      ASSERT_TRUE(ofEdges.count(v) == 3 && ofTriangles.count(v) == 3 && vertices.insert(v).second) << t;
      ++cellsAt[v];
      ++cellsOn[cell.tetrahedronTriangleIndex(t, k)];
    }
    distinct.insert(vertices);
  }
  EXPECT_EQ(distinct.size(), 600U);
  EXPECT_TRUE(edgesAt == Counts(120, 12) && trianglesAt == Counts(120, 30) && cellsAt == Counts(120, 20));
  EXPECT_EQ(cellsOn, Counts(1200, 2));
}

TEST(Cell600, BadIndicesGetTheirMessages) {
  Zu600Cell cell;
  PrintSink sink;
  EXPECT_EQ(cell.vertex(120), cell.vertex(0));
  EXPECT_EQ(cell.edgeVertexIndex(720, 0) + cell.triangleVertexIndex(0, 3) + cell.triangleEdgeIndex(1200, 1) +
                cell.tetrahedronVertexIndex(600, 0) + cell.tetrahedronEdgeIndex(599, 6) +
                cell.tetrahedronTriangleIndex(0, 4),
            0U);
  int a = 1, b = 1, c = 1;
  EXPECT_FALSE(cell.getNeighborOffsets(7, a, b, c) || a != 0 || b != 0 || c != 0);
  EXPECT_FALSE(cell.setupForSampling(0) || cell.setupForSamplingWithIncrement(0.0) ||
               cell.setupForSamplingWithIncrement(-0.5) || cell.setupForSampling(441) || cell.totalSampleCount() != 0);
  EXPECT_EQ(cell.sample(0), cell.sample(300));
  EXPECT_EQ(
      sink.messages(),
      (Messages{"Zu600Cell::vertex(): requested invalid vertex: vertex: 120\n",
                "Zu600Cell::edgeVertexIndex(): requested invalid vertex: edge: 720, vertex: 0\n",
                "Zu600Cell::triangleVertexIndex(): requested invalid vertex: triangle: 0, vertex: 3\n",
                "Zu600Cell::triangleEdgeIndex(): requested invalid edge: triangle: 1200, edge: 1\n",
                "Zu600Cell::tetrahedronVertexIndex(): requested invalid vertex: tetrahedron: 600, vertex: 0\n",
                "Zu600Cell::tetrahedronEdgeIndex(): requested invalid edge: tetrahedron: 599, edge: 6\n",
                "Zu600Cell::tetrahedronTriangleIndex(): requested invalid edge: tetrahedron: 0, triangle: 4\n",
                "Zu600Cell::getNeighborOffsets(): Warning.  Sample 7 requested when only 0 are available.\n",
                "Zu600Cell::setupForSampling():  Called with zero increment.\n",
                "Zu600Cell::setupForSamplingWithIncrement-->invalid increment (-0.5)",
                "Zu600Cell::setupForSamplingWithIncrement-->invalid increment (0.00226757)",
                "Zu600Cell::sample(): Warning.  Sample requested without setting up for sampling--using one sample per "
                "tetrahedron.\n",
                "Zu600Cell::sample(): Warning.  Sample 300 requested when only 300 are available.\n"}));
}

TEST(Cell600, SamplesAreDistinctAndNoRotationIsFarFromOne) {
  TracedValues random(101);
  struct Case {
    double increment;
    unsigned int count;
    double spacing, covering;  // in degrees
  } const cases[] = {{7.0, 1, 30.0, 44.4776}, {0.5, 4, 14.0, 25.0}, {0.4, 4, 14.0, 26.5}, {1.0 / 3.0, 10, 9.4, 18.1}};
  Zu600Cell cell;
  for (Case const& c : cases) {
    ASSERT_TRUE(cell.setupForSamplingWithIncrement(c.increment));
    ASSERT_EQ(cell.singleTetrahedronSampleCount(), c.count);
    auto const draw = [&] { return random.orientation(); };
    expectEven(cell, draw, c.spacing * theDegree, c.covering * theDegree);
  }
}

TEST(Cell600, ContainersAreThoseOfASearchOverAllSampledCells) {
  TracedValues random(102);
  Zu600Cell const cell;
  std::vector<ZuOrientation> centers;
  for (unsigned int s = 0; s < 300; ++s) {
    double sum[4] = {};
    for (unsigned int k = 0; k < 16; ++k)
      sum[k % 4] += cell.tetrahedronVertex(cell.sampledTetrahedronIndex(s), k / 4)[k % 4];
    centers.emplace_back(sum[0], sum[1], sum[2], sum[3]);
  }
  unsigned int ties = 0;
  for (int i = 0; i < 100000; ++i) {
    // On vertices, edges and triangles many cells are equally near.
    ZuOrientation const p = cell.vertex(random.index(120)), e = cell.edgeVertex(random.index(720), 0);
    ZuOrientation const q = i % 4 == 0   ? p
                            : i % 4 == 1 ? ZuOrientation(p[0] + e[0], p[1] + e[1], p[2] + e[2], p[3] + e[3])
                                         : random.orientation();
    double best = 1e300, axisAngle = 0.0;
    unsigned int nearest = 0, equal = 0;
    ZuVector axis;
    for (unsigned int s = 0; s < 300; ++s) {
      if (std::abs(cosine(q, centers[s])) < 0.92) continue;  // the nearest centre is never farther than 22.3 degrees
      q.angleAxisBetween(centers[s], axisAngle, axis);
      equal = axisAngle < best ? 0 : equal + (axisAngle == best);
      if (axisAngle < best) nearest = s;
      best = std::min(best, axisAngle);
    }
    ties += equal > 0;
    ASSERT_EQ(cell.findCollectionContainer(q), nearest) << i;
  }
  EXPECT_GT(ties, 10000U);
}

TEST(Cell600, NeighborsAreOneIncrementAwayInIndependentDirections) {
  Zu600Cell cell;
  ASSERT_TRUE(cell.setupForSampling(5));
  ZuXmlVectorType<ZuXmlBasicType<int>> offsets;
  unsigned int inner = 0;
  for (unsigned int i = 0; i < 2 * cell.singleTetrahedronSampleCount(); ++i) {
    int first[3];
    ASSERT_TRUE(cell.getNeighborOffsets(i, first[0], first[1], first[2]) && cell.getNeighborOffsets(i, 99, offsets));
    inner += offsets.size() == 12;
    ZuVector steps[3];
    double turn = 0.0;
    for (std::size_t k = 0; k < offsets.size(); ++k) {
      ZuOrientation const neighbor = cell.sample(i + static_cast<unsigned int>(offsets[k].value()));
      EXPECT_NEAR(angle(cell.sample(i), neighbor), 14.4 * theDegree, 2 * theDegree);
      if (k >= 3) continue;
      EXPECT_EQ(offsets[k].value(), first[k]);
      cell.sample(i).angleAxisBetween(neighbor, turn, steps[k]);
    }
    EXPECT_GT(std::abs(steps[0].cross(steps[1]).dot(steps[2])), 0.5);
    EXPECT_TRUE(cell.getNeighborOffsets(i, 2, offsets) && offsets.size() == 2);
  }
  EXPECT_EQ(inner, 2U);
}

TEST(Cell600, TablesOfSamplesAreCheckedAndOffsetsComparedInIntegers) {
  unsigned int const none = Zu600Cell::m_theNoSample;
  std::vector<std::vector<std::vector<unsigned int>>> const table{{{5, none}, {7, 8}}, {{9, none}, {none, none}}};
  unsigned int out = 3;
  int const places[][3] = {{1, 1, 0}, {0, 1, 1}, {0, -1, 0}, {0, 1, 1}, {0, 0, 2}, {0, 1, 1}};
  for (unsigned int i = 0; i < 6; ++i) {  // nothing there, and something, by turns
    EXPECT_EQ(Zu600Cell::checkSampleArray(out, table, 2, places[i]), i % 2 == 1);
    EXPECT_EQ(out, i % 2 == 1 ? 8U : none);
  }
  int const big = 1 << 20;
  int const rows[][3] = {{big, 1, 0}, {big, 1, 0}, {0, 0, 1}},
            wide[][3] = {{big, big, -big}, {big - 1, big, 1}, {1, 1, -1}};
  EXPECT_FALSE(Zu600Cell::offsetsIndependent(rows, 2) || Zu600Cell::offsetsIndependent(rows, 3) ||
               Zu600Cell::offsetsIndependent(wide, 3));
  EXPECT_TRUE(Zu600Cell::offsetsIndependent(rows + 1, 2) && Zu600Cell::offsetsIndependent(wide, 2) &&
              Zu600Cell::offsetsIndependent(rows, 1));
}

TEST(Cell600, CopiesAreEqualUntilOneIsSampledOtherwise) {
  Zu600Cell cell, other(cell);
  EXPECT_TRUE(cell == other && cell.setupForSampling(2) && cell != other);
  other = cell;
  cell.setup();
  EXPECT_TRUE(cell == other && cell.sample(1199) == other.sample(1199));
  cell.resizeBaryCentric(3);
  EXPECT_EQ(cell.totalSampleCount(), 900U);
}

TEST(TruncatedIcosahedron, IsTheRegularPolyhedron) {
  ZuTruncatedIcosahedron const faces;
  EXPECT_TRUE(faces.selfTest());  // each vertex in 3 edges and 3 faces, each edge in two faces
  for (unsigned int v = 0; v < 60; ++v) ASSERT_NEAR(faces.vertex(v).mag(), 1.0, 1e-15);
  for (unsigned int e = 0; e < 90; ++e)
    ASSERT_NEAR(faces.edgeVertex(e, 0).distanceTo(faces.edgeVertex(e, 1)), faces.edgeLength(), 1e-15);
  for (unsigned int f = 0; f < 32; ++f) {
    unsigned int const size = faces.faceVertexCount(f);
    for (unsigned int k = 0; k < size; ++k) {
      unsigned int const a = faces.faceVertexIndex(f, k), b = faces.faceVertexIndex(f, (k + 1) % size);
      unsigned int const e = faces.faceEdgeIndex(f, k);
      ASSERT_TRUE(faces.edgeVertexIndex(e, 0) == std::min(a, b) && faces.edgeVertexIndex(e, 1) == std::max(a, b));
      ASSERT_GT(faces.vertex(a).cross(faces.vertex(b)).dot(faces.faceDirection(f)), 0.1);
    }
  }
}

TEST(TruncatedIcosahedron, SamplesAreDistinctAndNoDirectionIsFarFromOne) {
  TracedValues random(111);
  ZuTruncatedIcosahedron faces;
  for (unsigned int n = 1; n <= 4; ++n) {
    ASSERT_TRUE(faces.setupForSamplingWithIncrement(0.999 / n));
    ASSERT_EQ(faces.totalSampleCount(), 90 * n * (n + 1));
    expectEven(
        faces, [&] { return random.direction(); }, 0.17 / n, 0.26 / n);
  }
}

TEST(TruncatedIcosahedron, TheFaceOfADirectionIsTheOneWhoseCornersAreAroundIt) {
  TracedValues random(112);
  ZuTruncatedIcosahedron const faces;
  for (int i = 0; i < 2000; ++i) {
    ZuVector const direction = random.direction() * random.scale(1e-200, 1e200);
    unsigned int const f = faces.findCollectionContainer(direction), size = faces.faceVertexCount(f);
    for (unsigned int k = 0; k < size; ++k)
      EXPECT_GT(faces.faceVertex(f, k).cross(faces.faceVertex(f, (k + 1) % size)).dot(direction.unitVector()), -1e-15);
  }
}

TEST(TruncatedIcosahedron, WhatIsNotThereGetsAMessage) {
  ZuTruncatedIcosahedron faces;
  PrintSink sink;
  EXPECT_EQ(faces.vertex(60), faces.vertex(0));
  EXPECT_EQ(faces.faceDirection(32), faces.faceDirection(0));
  EXPECT_EQ(faces.edgeVertexIndex(0, 2) + faces.faceVertexIndex(0, 5) + faces.faceEdgeIndex(32, 0) +
                faces.faceVertexCount(32) + faces.findCollectionContainer(ZuVector()) + faces.sampleFace(0),
            0U);
  EXPECT_FALSE(faces.setupForSampling(0) || faces.setupForSamplingWithIncrement(0.0) ||
               faces.setupForSamplingWithIncrement(1e-5));
  EXPECT_EQ(sink.take().size(), 10U);
  EXPECT_EQ(faces.sample(180), faces.sample(0));
  EXPECT_EQ(sink.take(),
            (Messages{"ZuTruncatedIcosahedron::sample-->sampling not set up, using one sample per triangle",
                      "ZuTruncatedIcosahedron::sample-->sample 180 requested when only 180 are available"}));
}
