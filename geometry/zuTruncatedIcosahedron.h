// zuTruncatedIcosahedron.h - even samples of all directions. Group: orientation sampling.
#pragma once

#include <array>
#include <vector>

#include "foundation/zuVector.h"

struct ZuBarycentricGrid;

/// The truncated icosahedron in the unit sphere, and even samples of the directions over its faces.
///
/// It has 60 vertices (unit vectors), 90 edges and 32 faces: 12 pentagons, then 20 hexagons. A face is the loop of its
/// vertices, counter-clockwise as seen from outside, from the one of the lowest number; its edge k joins vertices k and
/// k + 1. Vertices, and the faces of either kind, are in no order that means anything; edges are in the order of their
/// vertices, the lower first.
///
/// Samples: each face is cut into triangles from its centre to its edges, 180 in all and nearly of one size; each holds
/// the points of a barycentric grid (`ZuBarycentricGrid`), brought to unit length: n layers for `setupForSampling(n)`,
/// c = n (n + 1) / 2 points, 180 c in all. No two are the same direction, and none is farther than 15/n degrees from
/// any direction: docs/numerics.md has what was measured. Triangles of pentagons are numbers 0 to 59, five for each,
/// those of hexagons 60 to 179, six for each.
///
/// About 6 KB and two doubles for each sample of a triangle. Const operations are safe from several threads. A bad
/// index gets a message and the answer 0, or what belongs to vertex 0 or face 0.
class ZU_API ZuTruncatedIcosahedron {
 public:
  static constexpr unsigned int m_theVertexCount = 60;
  static constexpr unsigned int m_theEdgeCount = 90;
  static constexpr unsigned int m_thePentagonCount = 12;
  static constexpr unsigned int m_theFaceCount = 32;
  static constexpr unsigned int m_theTriangleCount = 180;

  ZuTruncatedIcosahedron();
  virtual ~ZuTruncatedIcosahedron() = default;
  ZuTruncatedIcosahedron(ZuTruncatedIcosahedron const&) = default;
  ZuTruncatedIcosahedron& operator=(ZuTruncatedIcosahedron const&) = default;

  /// Exact: the same samples. The polyhedron is the same for all.
  bool operator==(ZuTruncatedIcosahedron const& other) const { return m_Weights == other.m_Weights; }
  bool operator!=(ZuTruncatedIcosahedron const& other) const { return !(*this == other); }

  /// The length of an edge, 2 / sqrt(9 phi + 10): 23.3 degrees as seen from the centre.
  static double edgeLength() { return 0.40354821233519766; }
  ZuVector vertex(unsigned int v) const;
  /// Vertex k of edge e, 0 or 1.
  unsigned int edgeVertexIndex(unsigned int e, unsigned int k) const;
  ZuVector edgeVertex(unsigned int e, unsigned int k) const { return vertex(edgeVertexIndex(e, k)); }
  /// 5 or 6.
  unsigned int faceVertexCount(unsigned int f) const;
  /// Vertex k of face f.
  unsigned int faceVertexIndex(unsigned int f, unsigned int k) const;
  ZuVector faceVertex(unsigned int f, unsigned int k) const { return vertex(faceVertexIndex(f, k)); }
  /// Edge k of face f.
  unsigned int faceEdgeIndex(unsigned int f, unsigned int k) const;
  /// The direction of the centre of face f, a unit vector.
  ZuVector faceDirection(unsigned int f) const;

  /// Grids of n layers; false, and nothing changes, for 0.
  bool setupForSampling(unsigned int n);
  /// Grids of spacing d, as a share of the sides of a triangle: floor(1/d) layers, at least one. False, with a message,
  /// and nothing changes, unless d is above 0 and leaves the samples fewer than 2^32.
  virtual bool setupForSamplingWithIncrement(double d);
  /// The samples of one triangle; 0 until sampling is set up.
  unsigned int singleTriangleSampleCount() const { return static_cast<unsigned int>(m_Weights.size()); }
  unsigned int totalSampleCount() const { return m_theTriangleCount * singleTriangleSampleCount(); }
  /// Sample i, a unit vector: of triangle i / c, with c the samples of one. An i that is too large prints a message and
  /// counts as 0. Without sampling set up, a message, and one sample for each triangle is set up.
  ZuVector sample(unsigned int i);
  /// The face of sample i; of one that is not there, face 0, with a message.
  unsigned int sampleFace(unsigned int i) const;

  /// The number of the face that the ray from the centre in that direction leaves through; on an edge or a vertex the
  /// lowest number, within rounding. The direction may have any length but 0: without a direction a message, and 0.
  unsigned int findCollectionContainer(ZuVector const& direction) const;

  /// True when the structure is that of the polyhedron, and each sample lies in its face.
  bool selfTest() const;

 private:
  /// Vertices or edges of a face, as many as it has.
  struct Loop {
    unsigned int size = 0;
    std::array<unsigned int, 6> items{};
  };

  void makeVertices();
  void makeEdges();
  void makeFace(unsigned int f, ZuVector const& direction);
  unsigned int edgeBetween(unsigned int a, unsigned int b) const;
  bool hasSample(unsigned int i, char const* function) const;
  static void triangleOf(unsigned int number, unsigned int& f, unsigned int& k);

  std::array<ZuVector, m_theVertexCount> m_Vertices;
  std::array<std::array<unsigned int, 2>, m_theEdgeCount> m_Edges{};
  std::array<Loop, m_theFaceCount> m_FaceVertices;
  std::array<Loop, m_theFaceCount> m_FaceEdges;
  std::array<ZuVector, m_theFaceCount> m_Centers;  ///< in the plane of the face
  std::array<ZuVector, m_theFaceCount> m_Poles;    ///< the same, divided by the squared distance from the origin
  std::vector<std::array<double, 2>> m_Weights;    ///< of the two vertices of a triangle, for each sample
};
