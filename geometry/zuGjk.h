// zuGjk.h - distance and penetration of two convex shapes by their support points. Group: convex engine.
#pragma once

#include <array>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "foundation/zuCoordinateSystemTransformation.h"
#include "geometry/zuGjkTriangle.h"

class ZuDifferenceSet;
class ZuShape;

/// Distance, nearest points and penetration depth of two convex shapes, each placed in the world. The shapes are asked
/// for support points and whether they are convex, and for nothing else.
///
/// **Method.** The iteration of Gilbert, Johnson and Keerthi on the difference set (ZuDifferenceSet) with Johnson's
/// sub-algorithm on at most four of its points; overlapping shapes get their depth from a polytope of difference points
/// that grows towards the boundary (van den Bergen's expanding polytope). docs/numerics.md derives the steps and gives
/// the measured accuracy. The steps call each other through the virtual operations, so that a subclass can replace any
/// one of them; what happens inside a step is plain arithmetic over fixed arrays.
///
/// **What to expect of the answers.**
/// - The rule by which this engine tells whether a set of points is the right one (`minConvex`) is not the textbook
///   rule: it does not test the live points outside the set, and for the empty places it tests what earlier steps left
///   in the table. Some queries therefore end on a point of the difference set that is not the nearest one: the
///   distance is then too large, never too small, and the witness points are points of the shapes that far apart. Of
///   random pairs of hulls within three sizes of each other this befell 2.8 % (8 vertices), 8.4 % (64), 16 % (512) and
///   21 % (4096), 11 % of the hulls of real meshes; 1 to 5 % with a start from a nearby pose. Round solids fare
///   worse: 25 to 39 % of the pairs of a ball and the hull of a real mesh were off by more than 1e-7 of the mesh's
///   size, 4 to 9 % with a start from nearby. The error can be half a size, and 0.5 % of overlapping pairs come out as
///   apart. docs/numerics.md has the table.
/// - Its thresholds are lengths and areas, not ratios: shapes closer than 1e-8 count as touching, one whose distance
///   grows below 1e-4 too, and a pair of points weighs nothing below 1e-9 square metres. The engine is meant for bodies
///   from a millimetre to a kilometre, in metres; below about a millimetre its answers are unfit for use.
/// - The depth of overlapping shapes, once the iteration has found that they overlap, is right to `tolerance()` of the
///   depth, unless the search passes `maxIterations()`: the distance is then the non-negative one of the iteration.
///   With 120 expansions that befell 2 in 1000 overlapping hulls of 4096 vertices, and befalls round shapes that hold
///   each other's centres of curvature.
///
/// **The loop** has no count of its iterations, and departs from the plain method in four places: the vector of a
/// caller ends no query before a support point was found, whatever its length bounds; one not longer than 1e-10 starts
/// afresh; a distance that stays the same 64 times in a row ends the loop, which takes 18 steps at most for the random
/// pairs above; and where the distance grows, the vector goes back together with the simplex, so that it fits the
/// witness points.
///
/// **State.** The engine keeps the simplex of its last query, and the lists of its penetration search so that they are
/// allocated once, by its first query: about 150 kB with the default settings. No later query allocates, unless it
/// needs more than the settings reserve. A copy copies all of it. One engine serves one thread at a time; results do
/// not depend on earlier queries.
///
/// Numbers that are not finite, in poses or from a shape, print a line and give distance 0 and zero vectors.
class ZU_API ZuGJK {
 public:
  ZuGJK() = default;
  ZuGJK(ZuGJK const&) = default;
  ZuGJK& operator=(ZuGJK const&) = default;
  virtual ~ZuGJK() = default;

  /// Compares everything the engine keeps: the simplex, the saved one, tables, settings and the polytope.
  virtual bool operator==(ZuGJK const& other) const;
  bool operator!=(ZuGJK const& other) const { return !(*this == other); }

  /// The query; always returns true.
  ///
  /// Apart: `distance` > 0. Touching or overlapping: 0, or with computePenetration minus the penetration depth; when
  /// the depth is not found, the distance, at most the tolerance, that the iteration ended with.
  /// @param T1,T2 place the shapes: p_world = T1 * p_1
  /// @param witness1,witness2 the nearest points, each in its own shape's frame; with a depth, the points that the
  ///        shortest translation which separates the shapes brings together
  /// @param separation may be null. In: a vector to start from, T1 * witness1 - T2 * witness2 of an earlier query of
  /// the
  ///        pair; the zero vector, as any not longer than 1e-10 or not finite, starts afresh. Only its direction is
  ///        trusted: it ends no query before a support point was found. Out: T1 * witness1 - T2 * witness2. Moving
  ///        shape 2 by it, or shape 1 by its opposite, makes the shapes touch.
  virtual bool distance(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                        ZuCoordinateSystemTransformation const& T2, bool computePenetration, ZuVector& witness1,
                        ZuVector& witness2, double& distance, ZuVector* separation);

  /// Checks the steps on simplices with known answers, in a copy of this engine.
  virtual bool selfTest() const;

  /// The relative gap between the distance and its lower bound at which an iteration ends, and the distance (m) up to
  /// which shapes touch.
  virtual double tolerance() const { return m_Tolerance; }
  virtual void setTolerance(double tolerance) { m_Tolerance = tolerance; }
  /// Bounds the expansions of a penetration search, and nothing else.
  virtual void setMaxIterations(unsigned int maxIterations) { m_MaxIterations = maxIterations; }
  virtual unsigned int maxIterations() const { return m_MaxIterations; }

  // The steps, for subclasses. A set of places is an int of four bits, 1 << i for place i.

  /// Fills row and column `last` of the dot products of live points: a record for subclasses, which the steps of this
  /// class do not read.
  virtual void updateDotProduct();
  /// Fills the weights of all sets of live points that hold the newest one. A set whose points are dependent within
  /// rounding gets weights 0, which minConvex() refuses.
  virtual void updateSubDeterminants();
  /// Whether a live place holds exactly this point.
  virtual bool repeatPoint(ZuVector const& w) const;
  /// Finds the set of live points that holds the newest one and whose nearest point counts; sets `bits` to it and v to
  /// the point. Asks minConvex() for all four, then triangles, pairs and the point alone, newest places first; false,
  /// and nothing changes, when it refuses all of them.
  virtual bool closestInUnion(ZuVector& v);
  /// Whether the set counts as valid: every weight of its own points is above 1e-9; and no place that holds no live
  /// point has a weight above 0 in the table's row of the set with that place, as earlier steps of the query left it.
  virtual bool minConvex(int set) const;
  /// The weighted means of the set's points of the two shapes, each in its own frame. Points with weights that cancel
  /// count equally; the empty set gives zero vectors.
  virtual void pointsInLocal(int set, ZuVector& a, ZuVector& b) const;
  /// The weighted mean of the set's difference points.
  virtual void closestPoint(unsigned int set, ZuVector& v) const;

  /// What became of an attempt to expand the polytope.
  enum Expansion {
    EXPANDED,  ///< a point was added
    FINISHED,  ///< the facet lies on the boundary of the difference set
    FAILED     ///< the origin lies outside the set, or rounding leaves no sound polytope
  };

  /// The point nearest to the origin on the edge between two points of the polytope.
  virtual void vectorToEdge(int a, int b, ZuVector& v) const;
  /// Expands across the edge a b of the facet, in the direction halfway between the normals of its two facets.
  virtual Expansion splitEdge(int facet, int a, int b, ZuDifferenceSet const& set);
  /// Computes the point of the facet nearest to the origin, its distance and weights.
  virtual void distanceToTriangle(ZuGJKTriangle& facet) const;
  /// Grows the polytope from the simplex of the last distance iteration. True when a penetration was found; its vector
  /// is T1 * witness1 - T2 * witness2. Nothing is set otherwise: the difference set is flat, the origin is outside, or
  /// maxIterations() was passed. The first polytope is a tetrahedron, which is its own hull: ZuConvexHull, which takes
  /// longer than most searches, is not asked.
  virtual bool penetration(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                           ZuCoordinateSystemTransformation const& T2, ZuVector& witness1, ZuVector& witness2,
                           ZuVector& penetrationVector);
  /// The two facets of the polytope that have the edge; false, and -1 for those missing, when there are not two.
  virtual bool edgeSharedBy(int a, int b, int& facet1, int& facet2) const;
  /// Expands the facet along its normal.
  virtual Expansion splitTriangle(int facet, ZuDifferenceSet const& set);

  /// Forgets the simplex: no bits, tables of zeros.
  virtual void reset();
  /// Empties the polytope and reserves its lists.
  virtual void resetPenetration();
  /// Prints, as a note, the set's weights in the table beside those that ZuReArray::solve gives for its live points.
  virtual void debugInverse(int set) const;
  virtual void saveCache();
  virtual void restoreFromCache();
  /// Writes the whole state, or the simplex alone, into a text file; prints a line when the file can't be written.
  virtual void dump(std::string const& fileName) const;
  virtual void dumpSimplex(std::string const& fileName) const;

  /// Distance of the origin from a triangle; with `isSigned`, negative when the origin is in front of it, on the side
  /// from which a, b, c run counter-clockwise.
  virtual double distanceToTriangle(ZuVector const& a, ZuVector const& b, ZuVector const& c, bool isSigned) const;
  /// Links the facets across their edges; false when some edge does not join exactly two of them, in opposite senses.
  virtual bool assignNeighborTrisVec();
  /// A copy of the most derived type.
  virtual std::unique_ptr<ZuGJK> clone() const;

  // Not virtual.

  /// Whether the polytope is closed, linked, turned outwards and convex: no point is further outside a facet than
  /// rounding allows. For tests and diagnostics; facets times points.
  bool validatePolytope() const;
  /// False once a query of this process met a shape that is not convex. Nothing is printed.
  static bool onlyConvexShapesSoFar();

 protected:
  /// The places of the simplex: p and q on the two shapes, in their frames; y = T1 * p - T2 * q.
  struct Simplex {
    ZuVector p[4], q[4], y[4];
    int bits = 0;     ///< the set that forms the simplex
    int last = 0;     ///< the place of the newest point
    int lastBit = 0;  ///< 1 << last
    int allBits = 0;  ///< bits and lastBit: the live places

    bool operator==(Simplex const& other) const;
  };
  /// The plane of a facet, turned outwards: normal = (b - a) x (c - a), of length `sine` * `scale`.
  struct Plane {
    ZuVector normal;
    double scale = 0.0;  ///< |b - a| |c - a|
  };

  /// Remembers a shape that is not convex, for onlyConvexShapesSoFar().
  static void noteConvexity(ZuShape const& shape1, ZuShape const& shape2);

  Simplex m_Simplex;
  /// [set][place]: the weight of the point in the set. Cofactors for one and two points, weights of sum 1 for more.
  double m_Det[16][4] = {};
  double m_Dp[4][4] = {};  ///< dot products of the difference points

  // The polytope. A removed facet keeps its place, with valid() 0, until a new one takes it.
  std::vector<ZuGJKTriangle> m_Facets;
  std::vector<std::array<int, 3>> m_Neighbors;  ///< the facet across the edge from corner k to corner k + 1
  std::vector<Plane> m_Planes;
  std::vector<ZuVector> m_PolytopeP, m_PolytopeQ, m_PolytopeY;
  double m_Extent = 0.0;  ///< largest distance of a polytope's point from the origin

  double m_Tolerance = 1e-8;
  unsigned int m_MaxIterations = 120;
  int m_FacetCapacity = 500;
  int m_PointCapacity = 500;
  ZuVector m_Work[3];  ///< edges from the newest point to the other live ones: a 3 x 3 array by rows
  Simplex m_Saved;

 private:
  struct Loop;
  struct HorizonEdge {
    int from, to;  ///< points
    int outside;   ///< the facet beyond the edge, which stays
  };

  // The distance iteration
  ZuVector startVector(ZuDifferenceSet const& set, ZuVector const* separation, Loop& loop);
  void iterate(ZuDifferenceSet const& set, Loop& loop);
  bool addSupportPoint(ZuDifferenceSet const& set, Loop& loop);
  bool approach(Loop& loop);
  void adoptStart(Loop const& loop);
  bool takeIfValid(int set, ZuVector& v);
  void writeSimplex(std::ostream& out) const;

  // The penetration search
  bool startPolytope(ZuDifferenceSet const& set);
  void addPoint(ZuVector const& p, ZuVector const& q, ZuVector const& y);
  int addFacet(int a, int b, int c);
  int nearestFacet() const;
  Expansion expandNearest(int facet, ZuDifferenceSet const& set);
  Expansion splitCorner(int facet, int corner, ZuDifferenceSet const& set);
  Expansion expandAlong(ZuVector const& direction, ZuVector const& nearest, int facet, int a, int b,
                        ZuDifferenceSet const& set);
  int facetBelow(ZuVector const& w, int a, int b) const;
  bool insertPoint(int point, int facet);
  void collectVisible(int point, int facet);
  bool orderHorizon();
  void closeHorizon(int point);
  double height(int facet, ZuVector const& w) const;
  bool isVisible(int facet, ZuVector const& w) const;

  std::vector<int> m_Visible, m_FreeFacets, m_HorizonFrom;
  std::vector<HorizonEdge> m_Horizon;
};
