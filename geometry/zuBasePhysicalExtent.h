// zuBasePhysicalExtent.h - base of the solids that are given as meshes. Group: meshes.
#pragma once

#include <bitset>
#include <boost/shared_ptr.hpp>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "geometry/zuCompressedLists.h"
#include "geometry/zuGeometryOverwriteDescriptor.h"
#include "geometry/zuLineAndNeighbors.h"
#include "geometry/zuPlanarVector.h"
#include "geometry/zuShape.h"

class ZuAABBHierarchyGeneration;
class ZuGeomTriangle;
class ZuMeshSurface;
class ZuPlane;
class ZuPolygon;
class ZuRectangle;
class ZuRenderNode;
class ZuSupportTable;
namespace ZuTriangleKernels {
struct Triangle;
}

/// The solid inside a surface of facets: loops of vertices, in groups that share a surface key, which run
/// counter-clockwise as seen from outside. Positions and lengths are in m, in the frame of the shape.
///
/// **The set.** The surface is the union of the facets: a triangle is itself, a longer loop is the fan of triangles
/// about its first corner when it is convex, and is cut into triangles at its ears when it is not. The solid is the
/// surface and every point about which it winds more than half a time in either direction (the generalised winding
/// number, Jacobson et al. 2013): for a closed surface of one orientation, also with crossing pieces, its inside; an
/// open one is closed by what the sum of its solid angles says, so near an opening the boundary lies in the opening.
/// Facets with a vertex that is not there or not finite count for nothing. Without facets, or with flat ones only,
/// there is no inside; without facets the set is empty and distances are 1e300.
///
/// **Distances** of points and flat figures are signed: the distance to the surface, negative for what lies inside the
/// solid, 0 for a figure that meets the surface. They are found in a box hierarchy that is built on the first such
/// query after a change. A point or figure that is not finite is 1e300 away.
///
/// **Pairs.** Against another shape the generic way of ZuShape is taken, on support points: for a mesh that is not
/// convex it answers for the convex hull. When useAABB() is set, the meshes of both shapes themselves are compared, by
/// their box hierarchies (ZuAABBCollisionDetection): exact for every mesh, without depth, 0 at contact.
///
/// **Convex meshes** answer supportPoint() by climbing over the graph of their edges from the last answer. The climb
/// needs neighbour lists (init()) and the promise is the caller's: on a mesh that is marked convex but is not, it may
/// end on a local maximum. computeSupportPoint(), which the convex engines ask, needs neither.
///
/// **Derived structures** (neighbours, lines, normals) are built by init() or one by one. They are dropped when the
/// facets, or the number of points, change. When points move they stay, and lengths and normals are found anew when
/// they are next asked for. They do not persist: reading a convex mesh builds the neighbours anew. In them a list of
/// lists is a ZuCompressedLists.
///
/// **Cost.** A copy copies points, facets and derived structures; the box hierarchy is built anew when asked for.
///
/// **Threads.** Const queries update the last support vertex, visited marks and caches: one mesh serves one thread at a
/// time.
class ZU_API ZuBasePhysicalExtent : public ZuShape {
 public:
  using IndexLists = ZuCompressedLists<unsigned int>;
  using FacetLists = ZuCompressedLists<ZuFacetIndex>;
  using RenderNode = boost::shared_ptr<ZuRenderNode>;

  /// "default": the surface key of groups that have none, and of groups that are not there.
  static std::string const m_TheNullMaterialType;

  ZuBasePhysicalExtent();
  ZuBasePhysicalExtent(ZuBasePhysicalExtent const& other);
  ZuBasePhysicalExtent& operator=(ZuBasePhysicalExtent const& other);
  ~ZuBasePhysicalExtent() override;

  /// Compares what persists.
  bool operator==(ZuBasePhysicalExtent const& other) const;

  // Accessors. Setters keep what is derived in step.

  virtual ZuXmlVectorVector const& points() const { return m_Points; }
  virtual void setPoints(ZuXmlVectorVector const& points);
  unsigned int numberOfPoints() const { return static_cast<unsigned int>(m_Points.size()); }
  /// An index past the end prints a message and gives the zero vector.
  virtual ZuVector const& point(unsigned int index) const;
  /// Moves one vertex; an index past the end is ignored.
  virtual void setPoint(unsigned int index, ZuVector const& point);
  /// Normals of facets or vertices, as supplied; geometric queries do not use them.
  virtual ZuXmlVectorVector const& normals() const { return m_Normals; }
  virtual void setNormals(ZuXmlVectorVector const& normals) { m_Normals = normals; }
  /// One texture coordinate per point.
  virtual ZuXmlVectorType<ZuPlanarVector> const& rasterMapPoints() const { return m_RasterMapPoints; }
  virtual void setRasterMapPoints(ZuXmlVectorType<ZuPlanarVector> const& points) { m_RasterMapPoints = points; }
  virtual void setIsConvex(bool const& isConvex) { m_IsConvex = isConvex; }
  /// Places in the list of points of the tip and of the end of a tool; theZuNoIndex when there is none.
  virtual unsigned int tipPointIndex() const { return m_TipPointIndex; }
  virtual void setTipPointIndex(unsigned int index) { m_TipPointIndex = index; }
  virtual unsigned int endPointIndex() const { return m_EndPointIndex; }
  virtual void setEndPointIndex(unsigned int index) { m_EndPointIndex = index; }

  /// Per point: the points that an edge of a facet joins to it, in the order in which the facets first meet the edges.
  virtual IndexLists const& vertexNeighborVerticesVector() const { return m_Derived.vertexNeighborVertices; }
  /// Per point: the places in lineAndNeighborsVector() of the lines that end at it, ascending.
  virtual IndexLists const& vertexNeighborLinesVector() const { return m_Derived.vertexNeighborLines; }
  /// Per point: the facets that use it, ascending.
  virtual FacetLists const& vertexNeighborFacetsVector() const { return m_Derived.vertexNeighborFacets; }
  /// Per group, per facet: the lines that bound it, in the order of the loop.
  virtual std::vector<IndexLists> const& facetNeighborLinesVector() const { return m_Derived.facetNeighborLines; }
  virtual std::vector<ZuLineAndNeighbors> const& lineAndNeighborsVector() const;
  /// Per group, per facet.
  virtual std::vector<ZuXmlVectorVector> const& normalsOfFacets() const;
  virtual ZuXmlVectorVector const& normalsOfPoints() const;
  virtual ZuXmlVectorVector const& normalsOfLines() const;
  /// Forgets that the derived structures have been built, so that init() builds them again.
  virtual void resetNeighborFlags();

  /// The facets that deformation has changed, each once, ascending.
  virtual std::vector<ZuFacetIndex> const& modifiedFacetIndices() const { return m_ModifiedFacets; }
  virtual bool isModified() const { return !m_ModifiedFacets.empty(); }
  /// False from a deformation until whoever shows the mesh has caught up and says so.
  virtual bool modIsCleanedUp() const { return m_ModIsCleanedUp; }
  /// True empties modifiedFacetIndices().
  virtual void setModIsCleanedUp(bool isCleanedUp);
  virtual ZuGeometryOverwriteDescriptor const& geometryOverwriteDescriptor() const { return m_OverwriteDescriptor; }
  virtual void setGeometryOverwriteDescriptor(ZuGeometryOverwriteDescriptor const& descriptor);
  /// The box hierarchy over the facets, as cut into triangles; built when there is none.
  virtual ZuAABBHierarchyGeneration const& AABBGen() const;
  /// A node of a scene graph that shows the mesh; the geometry does not use it.
  virtual RenderNode const& getRenderNode() const { return m_RenderNode; }
  virtual void setRenderNode(RenderNode const& node) { m_RenderNode = node; }

  // Building of the derived structures. A builder runs those that it needs first, when they have not run since the last
  // change. Surfaces that are open, that branch, or whose facets have equal corners are told where a builder says so,
  // and the structures hold what there is.

  virtual void findVertexNeighborVertices();
  /// One line per edge, in the order of the smaller vertex. Beside each stand the facets that use both its ends; more
  /// than two print a message, and the first two stay.
  virtual void findLineAndNeighbors();
  virtual void findVertexNeighborLines();
  /// A point that facets use ends at least two lines; fewer lines than such points mean facets with equal corners and
  /// print a message.
  virtual void findFacetNeighborLinesVector();
  /// The unit normals of the loops (half the sum of the cross products of successive corners: of a loop that is not
  /// flat, that of its largest projection); zero for a facet without area.
  virtual void findNormalOfFacets();
  /// The sum of the normals of the facets at the point, each times its angle there (Thuermer and Wuethrich 1998), made
  /// unit; zero where there is none.
  virtual void findNormalOfPoints();
  /// The sum of the unit normals beside the line, made unit; also into the lines.
  virtual void findNormalOfLines();
  /// Runs the builders of neighbours that have not run; init() runs all.
  virtual void initNeighborInformation();
  virtual void init();

  // Geometry.

  /// Scales the axes of the frame separately; a negative product turns the loops over, so that they still face outward.
  virtual void scaleBy(double x, double y, double z);
  /// Rounds every coordinate to the nearest multiple of the step, m; a step that is not above 0 changes nothing.
  virtual void truncateValues(double const& step);
  /// The points that some facet uses, in their order.
  virtual void usedPoints(ZuXmlVectorVector& points) const;
  unsigned int totalNumberOfFacets() const;
  /// The used point nearest to the point; theZuNoIndex when there is none. Becomes the near point.
  virtual unsigned int pickNearestVertexIndex(ZuVector const& point) const;
  /// Moves the points within the radius, m, of the center by displacement * (1 - d^2 / radius^2)^2, d being their
  /// distance to it. Returns how many were moved. Only shapes that canDeform() are; others print a message.
  virtual unsigned int deformInRadius(ZuVector const& center, ZuVector const& displacement, double radius);
  /// Like deformInRadius(), with a dent as a harmonic function makes it: 1 at the center and 0 on the sphere of the
  /// radius. It is steeper at the center, the more the deeper the center lies below the surface. A dense system of 27
  /// equations, then 27 distances a moved point.
  virtual unsigned int deformUsingMFS(ZuVector const& center, ZuVector const& displacement, double radius);
  /// Fits the capsule that bounds the points anew, or makes it grow until it holds the given ones.
  virtual void recalculateCapsule();
  virtual void expandCapsule(ZuXmlVectorVector const& points);

  // What every kind of mesh supplies. Facets are addressed by group and place in the group; k is a place in the loop.
  // A facet that is not there has no corners and no normals, and is at no place.

  virtual double distanceTo(ZuGeomTriangle const& triangle) const;
  virtual double distanceTo(ZuRectangle const& rectangle) const;
  /// Whether the triangle touches the surface or lies inside.
  virtual bool checkIntersect(ZuGeomTriangle const& triangle) const;
  /// Appends the other mesh, which is in the same frame; groups of one key become one. The result is marked convex only
  /// when nothing was added or there was nothing.
  virtual void mergeWith(ZuBasePhysicalExtent const& other);

  /// Per point, the facets that use it.
  virtual void findVertexNeighborFacetsVector() = 0;
  /// Becomes the convex hull of the points: triangles of one group, marked convex, with neighbours. Points that span no
  /// volume, or are not finite, print a message; then nothing changes and false is returned.
  virtual bool convexHull(ZuXmlVectorVector const& points);
  /// One step of the climb: of the corners, not yet visited, of the facets around the present support vertex, the one
  /// farthest along the direction; the last one of several. They count as visited from now on. With none left, `dot` is
  /// -1e16 and `index` 0.
  virtual bool bestNeighbor(ZuVector const& direction, double& dot, unsigned int& index) const = 0;

  /// Like deformUsingMFS() about a vertex, for the points that deformInRadiusNeighbor() moves.
  virtual unsigned int deformUsingMFSNeighbor(unsigned int vertex, ZuVector const& displacement, double radius);
  /// Like deformInRadius() about a vertex, but only points that a chain of edges within the radius joins to it move:
  /// the other side of a thin wall stays. Needs the neighbours, and builds them.
  virtual unsigned int deformInRadiusNeighbor(unsigned int vertex, ZuVector const& displacement, double radius);

  virtual unsigned int numberOfGroups() const = 0;
  virtual unsigned int numberOfFacetsInGroup(unsigned int group) const = 0;
  virtual unsigned int numberOfPointsInFacet(unsigned int group, unsigned int facet) const = 0;
  virtual unsigned int numberOfNormalsInFacet(unsigned int group, unsigned int facet) const = 0;

  /// The point that facets of the group use nearest to the point; theZuNoIndex when there is none.
  virtual unsigned int getClosestPointID(ZuVector const& point, unsigned int group) const;
  /// theZuNoIndex for a place that is not there.
  virtual unsigned int getFacetPointIndex(unsigned int group, unsigned int facet, unsigned int k) const = 0;
  virtual unsigned int getFacetPointIndexNoCheck(unsigned int group, unsigned int facet, unsigned int k) const = 0;
  virtual unsigned int getFacetNormalIndex(unsigned int group, unsigned int facet, unsigned int k) const = 0;
  virtual unsigned int getFacetNormalIndexNoCheck(unsigned int group, unsigned int facet, unsigned int k) const = 0;
  virtual std::string const& getGroupSurfaceKey(unsigned int group) const = 0;
  /// Through the first corner, with the normal of the loop; the default plane for a facet without area.
  virtual ZuPlane getFacetPlane(unsigned int group, unsigned int facet) const;
  /// Whether the point lies on the facet, but for rounding (1e-12 of the facet's size).
  virtual bool checkFacetIntersect(unsigned int group, unsigned int facet, ZuVector const& point) const;
  /// Whether the two have a point in common; touching counts.
  virtual bool checkFacetIntersect(unsigned int group, unsigned int facet, ZuLineSegment const& segment) const;
  /// The corners; those that are not in the list of points are left out.
  virtual ZuPolygon getPolygon(unsigned int group, unsigned int facet) const;
  /// To be called after the points have been changed behind the back of a mesh that refers to them. The meshes here
  /// own their points and use it to drop the box hierarchy.
  virtual void setPointCollectionPointer();

  /// Makes the supplied normals usable: of unit length, and there. A facet's normal that is not in the list, or has no
  /// length, becomes that of the facet, which is appended to the list. Returns whether all were right.
  virtual bool validateNormals() = 0;

  /// Replaces all facets: a group for each key, in the order in which they first come. Polygons that this kind of mesh
  /// can't hold as they are are cut into triangles; those of fewer than three corners are left out, with a message.
  virtual void setFacets(ZuXmlVectorType<ZuPolygonWithKey> const& facets) = 0;

  // See ZuShape

  /// A mesh like that of the other shape: of an extent the same points and facets, of another solid its tessellation,
  /// made larger until it encloses the solid (but for a half-space, which has no bound). Not the supplied normals and
  /// texture coordinates.
  void fitFromShape(ZuShape const& other) override;
  /// A vertex as far along the direction as any that a facet uses (any point, when there are no facets), to rounding,
  /// however the facets join them: on a mesh that is as convex as it says the same point as supportPoint(), but for
  /// ties. It never prints: a mesh builds what it lacks on the first call after a change, and does not allocate after
  /// that. A convex one looks the direction up in a table of candidates, so that earlier answers make no difference;
  /// copies share it. The table takes 3 to 6 microseconds a point to build, 20 for prisms and discs of many corners.
  /// When points move after that, a scan gives the same answers until 4096 of them were asked for with no further move,
  /// and only then the table is built anew: not for a mesh that deforms in every cycle. A mesh that is not convex scans
  /// its points, or searches its boxes when it is large.
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  /// The vertex farthest along the direction: for a convex mesh by climbing from the last answer, where it takes ties;
  /// otherwise by a scan of all points, the lowest index of equals. For the zero direction the first vertex that a
  /// facet uses, and point 0 of a mesh that is not convex. Without points: the zero vector.
  ZuVector supportPoint(ZuVector const& direction) const override;
  void scaleBy(double factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  double distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const override;
  double distanceTo(ZuLineSegment const& segment) const override;
  double distanceTo(ZuVector const& point) const override;
  bool checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                      ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                      KeyPairs* pairs) const override;
  bool checkIntersect(ZuLineSegment const& segment) const override;
  /// Through an opening of the surface a segment comes in or out without a point of the surface there: the end of the
  /// segment that is inside then stands for it.
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  bool checkIntersect(ZuVector const& point) const override;
  /// Becomes the convex hull of the points.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  void physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const override;
  /// The mesh itself.
  ZuBasePhysicalExtent& physicalExtent() const override;
  bool isConvex() const override { return m_IsConvex; }
  unsigned int supportPointID() const override { return m_SupportPointID; }
  void setSupportPointID(unsigned int id) override { m_SupportPointID = id; }
  /// The surface key of the first facet that uses the point.
  std::string const& impactedSurface(unsigned int const& pointIndex) const override;
  /// The vertex of the last pickNearestVertexIndex() or getClosestPointID(), 0 before; or, when the boxes are used,
  /// what the processor says.
  unsigned int nearPointID(ZuShapeProximityData const& data) const override;
  bool computePenetrationDistanceAndSupportPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                                  ZuVector& witness1, ZuVector& witness2, double& distance,
                                                  ZuVector& direction) const override;
  double distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                                    ZuVector& witness1, ZuVector& witness2) const override;
  /// Bounds the points; fitted on first use.
  ZuCapsule const& capsuleBoundingVolume() const override;
  void setCapsuleBoundingVolume(ZuCapsule const& capsule) override;

  // See ZuXmlCompoundType

  void registerComponents() override;
  /// Refuses places of the tip and the end that are not in the list of points.
  bool readElements(ZuXmlReader& reader) override;

  /// The triangles of the facets and their boxes, for the queries of this library; built when there are none.
  ZuMeshSurface const& surface() const;

 protected:
  /// Calls visit(facet, loop) for every facet, in order: (ZuFacetIndex const&, ZuListView<unsigned int>).
  template <class Visitor>
  void forEachFacet(Visitor const& visit) const {
    std::vector<unsigned int> loop;
    for (unsigned int group = 0; group < numberOfGroups(); ++group) {
      for (unsigned int facet = 0; facet < numberOfFacetsInGroup(group); ++facet) {
        loop.resize(numberOfPointsInFacet(group, facet));
        for (unsigned int k = 0; k < loop.size(); ++k) loop[k] = getFacetPointIndexNoCheck(group, facet, k);
        visit(ZuFacetIndex(group, facet), ZuListView<unsigned int>(loop.data(), loop.size()));
      }
    }
  }
  /// To be called when the facets, or the number of points, change: drops everything derived.
  void facetsChanged();
  /// To be called when points move: what depends on places is out of date.
  void pointsMoved();
  /// Marks a vertex as visited by the climb; false when it was already. The vertex must be in the list of points.
  bool visitVertex(unsigned int vertex) const;
  /// For an override of findVertexNeighborFacetsVector().
  void setVertexNeighborFacets(FacetLists&& lists);
  /// Twice the area of the loop times its unit normal; corners that are not in the list of points are left out.
  ZuVector doubleAreaVector(ZuListView<unsigned int> loop) const;
  /// Replaces the facets, without normals, by those that the other mesh has on the same list of points.
  virtual void copyFacets(ZuBasePhysicalExtent const& other) = 0;
  /// Appends the facets of the other mesh; places in its lists become those in this mesh's by adding the offsets.
  virtual void appendFacets(ZuBasePhysicalExtent const& other, unsigned int pointOffset, unsigned int normalOffset) = 0;
  virtual void clearFacets() = 0;
  /// Turns every loop over.
  virtual void reverseFacets() = 0;

 private:
  enum DerivedStructure : unsigned int {
    VERTEX_VERTICES,
    VERTEX_FACETS,
    LINES,
    VERTEX_LINES,
    FACET_LINES,
    FACET_NORMALS,
    POINT_NORMALS,
    LINE_NORMALS,
    BOXES,
    NUMBER_OF_DERIVED_STRUCTURES
  };
  /// What the builders fill.
  struct Derived {
    IndexLists vertexNeighborVertices;
    IndexLists vertexNeighborLines;
    FacetLists vertexNeighborFacets;
    std::vector<IndexLists> facetNeighborLines;
    std::vector<ZuLineAndNeighbors> lineAndNeighbors;
    std::vector<ZuXmlVectorVector> normalsOfFacets;
    ZuXmlVectorVector normalsOfPoints;
    ZuXmlVectorVector normalsOfLines;
  };
  /// Answers by a scan that take as long as it takes to build the table of a round mesh, at any number of points.
  static constexpr unsigned int m_theAnswersByScan = 4096;
  /// Points up to which a mesh that is not convex is scanned for computeSupportPoint(): above, its boxes are faster.
  static constexpr std::size_t m_theLargestPlainScan = 256;
  /// Rounding of a point that was computed to lie on a facet, relative to the size of the facet.
  static constexpr double m_theFacetRounding = 1e-12;

  void copyMesh(ZuBasePhysicalExtent const& other);
  bool isComputed(DerivedStructure structure) const { return m_Computed[structure]; }
  void setComputed(DerivedStructure structure) const;
  void refresh(DerivedStructure structure, void (ZuBasePhysicalExtent::*builder)()) const;
  void findLineLengths();
  std::vector<ZuLineAndNeighbors>& lines() { return m_Derived.lineAndNeighbors; }
  void collectFacetsBeside(ZuLineAndNeighbors& line) const;
  void tellEdgesBeyondThePoints() const;
  unsigned int lineBetween(unsigned int a, unsigned int b) const;
  std::vector<unsigned int> usedIndices() const;
  std::vector<ZuTriangleKernels::Triangle> trianglesOf(unsigned int group, unsigned int facet) const;

  void skipUnusedPoints(char const* messageWithoutNeighbors) const;
  void clearVisitedMarks() const;
  void climb(ZuVector const& direction) const;
  void scan(ZuVector const& direction) const;
  void buildSupportTable() const;
  bool isAnyInside(std::initializer_list<ZuVector> points) const;

  void clearSupplements();
  void rebuildNeighbors();
  void scalePoints(ZuVector const& factors);
  bool isDeformationAllowed(char const* function, double radius) const;
  std::vector<unsigned int> verticesWithin(ZuVector const& center, double radius) const;
  std::vector<unsigned int> verticesJoinedWithin(unsigned int vertex, double radius);
  template <class Weight>
  unsigned int displace(std::vector<unsigned int> const& vertices, ZuVector const& displacement, Weight const& weight);
  ZuVector normalAt(unsigned int vertex);
  bool touchesByBoxes(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                      ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                      ZuVector& witness1, ZuVector& witness2, double& distance) const;

  ZuXmlBasicType<bool> m_IsConvex;
  ZuXmlVectorVector m_Points;
  ZuXmlVectorVector m_Normals;
  ZuXmlVectorType<ZuPlanarVector> m_RasterMapPoints;
  ZuXmlBasicType<unsigned int> m_TipPointIndex{theZuNoIndex};
  ZuXmlBasicType<unsigned int> m_EndPointIndex{theZuNoIndex};

  mutable unsigned int m_SupportPointID = 0;
  mutable unsigned int m_NearPointID = 0;
  mutable std::vector<unsigned int> m_VisitStamps;  ///< a vertex is visited when its stamp is that of the query
  mutable unsigned int m_VisitStamp = 1;
  mutable std::shared_ptr<ZuSupportTable const> m_SupportTable;  ///< shared with copies
  /// How many more answers the table gives by a scan before it is built whole, since points moved; 0 when it is whole.
  mutable unsigned int m_AnswersByScan = 0;

  mutable std::bitset<NUMBER_OF_DERIVED_STRUCTURES> m_Computed;
  /// Computed for places where points are no longer; of the lines the lengths.
  mutable std::bitset<NUMBER_OF_DERIVED_STRUCTURES> m_Outdated;
  Derived m_Derived;
  std::vector<ZuFacetIndex> m_ModifiedFacets;
  bool m_ModIsCleanedUp = true;
  ZuGeometryOverwriteDescriptor m_OverwriteDescriptor;
  mutable std::unique_ptr<ZuCapsule> m_Capsule;
  mutable std::unique_ptr<ZuMeshSurface> m_Surface;
  RenderNode m_RenderNode;
};
