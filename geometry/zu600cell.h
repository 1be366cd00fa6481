// zu600cell.h - even samples of all orientations. Group: orientation sampling.
#pragma once

#include <array>
#include <tuple>
#include <vector>

#include "foundation/zuOrientation.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlVectorType.h"

struct ZuBarycentricGrid;

/// The regular 600-cell on the unit sphere of the quaternions, and even samples of the orientations over its cells.
///
/// It has 120 vertices (unit quaternions w, x, y, z), 720 edges, 1200 triangles and 600 tetrahedra, the cells. Opposite
/// quaternions are the same rotation, so opposite cells cover the same rotations: of each of the 300 opposite pairs,
/// the cell of the lower number is sampled, and each rotation lies in one sampled cell, or in several on their common
/// border.
///
/// Samples are the points of a barycentric grid (`ZuBarycentricGrid`) in each sampled cell, brought to unit length: n
/// layers for `setupForSampling(n)`, c = n (n + 1) (n + 2) / 6 points in each cell, 300 c in all. No two are the same
/// rotation. Neighbouring samples of a cell are rotations of about 72/n degrees apart, the nearest of different cells
/// about 29/n degrees, and no rotation is farther than 55/n degrees from a sample: docs/numerics.md has what was
/// measured, beside the best sets that are known.
///
/// Numbering. Vertices: the units along the axes, the ones with components +-1/2, then the even permutations of
/// (+-phi, +-1, +-1/phi, 0) / 2; vertex 0 is the identity. Edges, triangles and tetrahedra: in the order of their
/// vertices, ascending within each, as in a dictionary. Edges of a triangle (a, b, c): ab, ac, bc; of a tetrahedron
/// (a, b, c, d): ab, ac, bc, ad, bd, cd. Triangle k of a tetrahedron is the one opposite its vertex k.
///
/// The constructor does all but the sampling, within a millisecond or two. A copy has tables of its own, of 100 KB and
/// some 40 bytes for each sample of a cell. Const operations are safe from several threads. A bad index gets a message
/// and the answer 0, or what belongs to vertex 0.
class ZU_API Zu600Cell {
 public:
  static constexpr unsigned int m_theVertexCount = 120;
  static constexpr unsigned int m_theEdgeCount = 720;
  static constexpr unsigned int m_theTriangleCount = 1200;
  static constexpr unsigned int m_theTetrahedronCount = 600;
  static constexpr unsigned int m_theSampledCount = 300;
  /// There is no sample of these coordinates.
  static constexpr unsigned int m_theNoSample = 4294967295U;

  Zu600Cell();
  Zu600Cell(Zu600Cell const& other);
  Zu600Cell& operator=(Zu600Cell const& other);
  virtual ~Zu600Cell() = default;

  /// Exact: the same tables, and so the same samples.
  bool operator==(Zu600Cell const& other) const;
  bool operator!=(Zu600Cell const& other) const { return !(*this == other); }

  /// Builds vertices, edges, triangles, tetrahedra and the choice of the sampled ones; the constructor has done so, and
  /// doing it again costs and changes nothing. The sampling stays. Prints a message if the opposites of vertices and
  /// cells do not come in pairs.
  void setup();

  /// The length of an edge, 1/phi: a distance of quaternions. In rotations it is 72 degrees.
  static double edgeLength() { return 0.6180339887498948; }
  ZuOrientation vertex(unsigned int v) const;
  /// Vertex k of edge e, 0 or 1.
  unsigned int edgeVertexIndex(unsigned int e, unsigned int k) const;
  ZuOrientation edgeVertex(unsigned int e, unsigned int k) const { return vertex(edgeVertexIndex(e, k)); }
  /// Vertex k of triangle t, 0 to 2.
  unsigned int triangleVertexIndex(unsigned int t, unsigned int k) const;
  ZuOrientation triangleVertex(unsigned int t, unsigned int k) const { return vertex(triangleVertexIndex(t, k)); }
  /// Edge k of triangle t, 0 to 2.
  unsigned int triangleEdgeIndex(unsigned int t, unsigned int k) const;
  /// Vertex k of tetrahedron t, 0 to 3.
  unsigned int tetrahedronVertexIndex(unsigned int t, unsigned int k) const;
  ZuOrientation tetrahedronVertex(unsigned int t, unsigned int k) const { return vertex(tetrahedronVertexIndex(t, k)); }
  /// Edge k of tetrahedron t, 0 to 5.
  unsigned int tetrahedronEdgeIndex(unsigned int t, unsigned int k) const;
  /// Triangle k of tetrahedron t, 0 to 3.
  unsigned int tetrahedronTriangleIndex(unsigned int t, unsigned int k) const;
  /// The number, 0 to 599, of sampled tetrahedron s, 0 to 299.
  unsigned int sampledTetrahedronIndex(unsigned int s) const;

  /// Grids of n layers; false, and nothing changes, for 0.
  bool setupForSampling(unsigned int n);
  /// Grids of spacing d, as a share of an edge: floor(1/d) layers, at least one. False, with a message, and nothing
  /// changes, unless d is above 0 and leaves the samples fewer than 2^32. A cell's samples take 40 bytes each.
  virtual bool setupForSamplingWithIncrement(double d);
  /// The samples of one tetrahedron; 0 until sampling is set up.
  unsigned int singleTetrahedronSampleCount() const { return m_SampleCount; }
  unsigned int totalSampleCount() const { return m_theSampledCount * m_SampleCount; }
  /// Sample i: of sampled tetrahedron i / c, with c the samples of one. An i that is too large prints a message and
  /// counts as 0. Without sampling set up, a message, and one sample for each tetrahedron is set up.
  ZuOrientation sample(unsigned int i);

  /// The number, 0 to 299, of the sampled tetrahedron whose centre is the smallest angle from q; of equal angles, the
  /// lowest number. Since cells are alike and face to face, it is a cell that holds q. About 0.6 us.
  unsigned int findCollectionContainer(ZuOrientation const& q) const;

  /// Neighbours of sample i within its tetrahedron: sample(i + a), sample(i + b) and sample(i + c) are one increment
  /// from it, in three independent directions. False, and all are 0, when it has no neighbours, which is so for one
  /// layer, or when i is too large, with a message.
  bool getNeighborOffsets(unsigned int i, int& a, int& b, int& c) const;
  /// The same for the first `count` neighbours of up to 12; the first three are those above. The list becomes as long
  /// as there are.
  bool getNeighborOffsets(unsigned int i, unsigned int count, ZuXmlVectorType<ZuXmlBasicType<int>>& offsets) const;

  /// Sets `out` to table[idx[0]][idx[1]][idx[2]], the number of a sample or m_theNoSample, which is also that of an
  /// index that is not in [0, n). True when there is a sample.
  template <class Table>
  static bool checkSampleArray(unsigned int& out, Table const& table, unsigned int n, int const* idx) {
    out = m_theNoSample;
    for (unsigned int k = 0; k < 3; ++k) {
      if (idx[k] < 0 || static_cast<unsigned int>(idx[k]) >= n) return false;
    }
    out = table[idx[0]][idx[1]][idx[2]];
    return out != m_theNoSample;
  }
  /// True for three rows with a determinant other than 0, for two rows that are not parallel, and for any other number
  /// of rows. Exact for two rows, and for three of up to 2^20 in magnitude.
  static bool offsetsIndependent(int const offsets[][3], unsigned int n);
  /// Gives the table of barycentric weights room for n samples of a tetrahedron, keeping those that it has; with fewer
  /// than before, the samples are fewer.
  void resizeBaryCentric(unsigned int n);

  /// True when the structure is that of the polytope, and samples of a few increments are as many as they should be and
  /// of unit length. Takes some milliseconds.
  bool selfTest() const;

 protected:
  /// Takes room for all that `setup()` builds.
  void allocateArrays();
  /// Takes over all tables of the other one.
  void copySpecificData(Zu600Cell const& other);

 private:
  using Quaternion = std::array<double, 4>;  ///< w, x, y, z
  using Cell = std::array<unsigned int, 4>;  ///< vertices, ascending

  void makeVertices();
  std::vector<Cell> makeFaces();
  void makeEdges(std::vector<unsigned int>& edgeOf);
  bool chooseSampled(std::vector<Cell> const& cells);
  void makeCenters();
  void makeBases();
  void fillGrid(ZuBarycentricGrid const& grid, unsigned int expected);
  unsigned int findNeighbors(unsigned int i, int (&offsets)[12]) const;
  bool isPolytope() const;
  template <class Self>
  static auto tablesOf(Self& self) {
    return std::tie(self.m_Vertices, self.m_Edges, self.m_Triangles, self.m_TriangleEdges, self.m_Tetrahedra,
                    self.m_TetrahedronTriangles, self.m_Sampled, self.m_Centers, self.m_CenterComponents, self.m_Bases,
                    self.m_Directions, self.m_BaryCentric, self.m_GridCoordinates, self.m_SampleOf);
  }
  auto tables() { return tablesOf(*this); }
  auto tables() const { return tablesOf(*this); }

  std::vector<Quaternion> m_Vertices;
  std::vector<std::array<unsigned int, 2>> m_Edges;
  std::vector<std::array<unsigned int, 3>> m_Triangles;
  std::vector<std::array<unsigned int, 3>> m_TriangleEdges;
  std::vector<std::array<unsigned int, 6>> m_Tetrahedra;  ///< by their edges
  std::vector<std::array<unsigned int, 4>> m_TetrahedronTriangles;
  std::vector<unsigned int> m_Sampled;
  std::vector<ZuOrientation> m_Centers;                   ///< of the sampled tetrahedra
  std::array<std::vector<double>, 4> m_CenterComponents;  ///< the same, one array for each component
  std::vector<Quaternion> m_Bases;                        ///< of the sampled tetrahedra: vertex 0
  std::vector<std::array<Quaternion, 3>> m_Directions;    ///< from there to vertices 1, 2 and 3
  std::vector<double> m_BaryCentric;                      ///< three weights, of the directions, for each sample
  std::vector<std::array<int, 3>> m_GridCoordinates;      ///< of each sample
  std::vector<std::vector<std::vector<unsigned int>>> m_SampleOf;  ///< by grid coordinates
  unsigned int m_SampleCount = 0;
};
