#include "geometry/zuTruncatedIcosahedron.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/printSink.h"
#include "tests/randomValues.h"

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
  RandomValues random(111);
  SCOPED_TRACE(random.trace());
  ZuTruncatedIcosahedron faces;
  for (unsigned int n = 1; n <= 4; ++n) {
    ASSERT_TRUE(faces.setupForSamplingWithIncrement(0.999 / n));
    ASSERT_EQ(faces.totalSampleCount(), 90 * n * (n + 1));
    std::vector<ZuVector> samples;
    for (unsigned int i = 0; i < faces.totalSampleCount(); ++i) samples.push_back(faces.sample(i));
    double nearest = 2.0, farthest = 0.0;
    for (std::size_t i = 1; i < samples.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) nearest = std::min(nearest, samples[i].distanceTo(samples[j]));
    }
    for (int i = 0; i < 2000; ++i) {
      ZuVector const direction = random.direction();
      double gap = 2.0;
      for (ZuVector const& sample : samples) gap = std::min(gap, direction.distanceTo(sample));
      farthest = std::max(farthest, gap);
    }
    EXPECT_GT(nearest, 0.17 / n) << n;
    EXPECT_LT(farthest, 0.26 / n) << n;
  }
}

TEST(TruncatedIcosahedron, TheFaceOfADirectionIsTheOneWhoseCornersAreAroundIt) {
  RandomValues random(112);
  SCOPED_TRACE(random.trace());
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
  EXPECT_EQ(sink.take(), (std::vector<std::string>{
                             "ZuTruncatedIcosahedron::sample-->sampling not set up, using one sample per triangle",
                             "ZuTruncatedIcosahedron::sample-->sample 180 requested when only 180 are available"}));
}
