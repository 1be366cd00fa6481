// zuShape.h - base of every solid. Group: shapes.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "foundation/zuBaseExpressionTreeElement.h"
#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuDataMap.h"
#include "foundation/zuTypes.h"
#include "foundation/zuVector.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlMapType.h"
#include "foundation/zuXmlVectorType.h"
#include "foundation/zuXmlVectorVector.h"
#include "geometry/zuShapeStateCacheKey.h"

class ZuAABBCollisionDetection;
class ZuAxisAlignedBoundingBox;
class ZuBasePhysicalExtent;
class ZuCapsule;
class ZuGJK;
class ZuLineSegment;
class ZuManipulatorLink;
class ZuManipulatorSystem;
class ZuPolygonWithKey;
class ZuShapeProximityData;
class ZuShapeProximityDescriptor;
class ZuStatedSystem;
class ZuSystemActiveState;
class ZuSystemShapeProximityState;
struct ZuShapeCollisionEvent;
struct ZuShapePointEvent;
struct ZuShapeQueryData;

/// A solid, given in its own frame, that can be bounded, moved, persisted and asked for its distance to another.
///
/// **Pairs.** In every operation on two shapes `xform` places the other shape in this shape's frame: p_1 = xform * p_2.
/// A class answers some pairs in closed form; the rest of the convex ones go the generic way below; a pair that a class
/// does not answer prints one line with the two shape types and counts as touching for distances (0) and as apart for
/// contacts (false). Distances are signed: negative by the penetration depth when the two overlap and the pair is
/// answered with a depth.
///
/// **The generic way.** The shape's engine (ZuGJK) iterates on support points of both shapes. It starts from what the
/// ZuSystemShapeProximityState remembers of the pair, and leaves its result there; the record is looked up once a
/// query. A pair whose record is stamped valid for the state's current time is answered from the record, without any
/// computing. The queries store distance, direction and witness points but do not stamp a record valid: a caller that
/// asks a pair more than once a cycle calls ZuSystemShapeProximityState::setValid after the first query.
///
/// **Levels.** A shape may own a coarser shape that bounds it (its lower-fidelity representation), and so on: a chain
/// from the full shape to ever coarser bounds. The queries that walk the levels trust that each level encloses the
/// finer ones; some fits do not promise that (each class says so). Copying a shape copies its chain.
///
/// **Cost.** A shape without chain owns no memory but that of its strings and maps. The polyhedral approximation, the
/// engine and the box processor are made on first use; a change of the geometry drops the approximation. A copy starts
/// without an approximation.
///
/// **Threads.** Const queries use caches in the shape: one shape serves one thread at a time.
class ZU_API ZuShape : public ZuBaseExpressionTreeElement {
 public:
  /// The type numbers on which pairwise operations dispatch; messages print them as "shapeID".
  enum ZuShapeValues : int {
    PHYSICAL_EXTENT = 0,
    POLY_PHYSICAL_EXTENT = 1,
    TRI_PHYSICAL_EXTENT = 2,
    SPHERE = 3,
    CAPSULE = 4,
    ELLIPSOID = 5,
    TETRAHEDRON = 6,
    BOX = 7,
    LOZENGE = 8,
    HALF_SPACE = 9,
    GRID_PHYSICAL_EXTENT = 10,
    CYLINDER = 11,
    CONE = 12,
    EXTENT_UNION = 13,
    EXTENT_INTERSECTION = 14
  };

  /// What collisions() looks at.
  struct ZuCollisionQueryOptions {
    bool includeOwnManipulator = true;  ///< also the other links of the shape's own manipulator
    bool stopAtFirst = false;           ///< one event is enough
    bool computePenetration = true;     ///< depths of overlapping pairs; otherwise their distance is 0
  };

  using KeyPairs = std::vector<std::pair<ZuShapeStateCacheKey, ZuShapeStateCacheKey>>;
  using Surfaces = ZuXmlMapType<ZuXmlBasicType<std::string>, ZuDataMap>;

  /// Distance, m, up to which clients count two shapes as colliding.
  static constexpr double m_theCollisionTolerance = 0.0001;

  ZuShape();
  ZuShape(ZuShape const& other);
  ZuShape& operator=(ZuShape const& other);
  ~ZuShape() override;

  /// Compares the persistent members and the chains; what is remembered of queries is passed over.
  bool operator==(ZuShape const& other) const;

  /// Resizes and places this shape so that it encloses the given one, which is in the same frame.
  virtual void fitFromShape(ZuShape const& other) = 0;

  /// The point of the shape farthest in the direction (which need not be a unit vector), in the shape's frame. Here:
  /// that of the physical extent.
  virtual ZuVector computeSupportPoint(ZuVector const& direction) const;
  /// The same, from a cache where the shape keeps one.
  virtual ZuVector supportPoint(ZuVector const& direction) const;

  /// Scales by the factor about the origin of the frame; the chain is scaled with the shape.
  virtual void scaleBy(double factor) = 0;
  /// Moves the shape in its frame; the chain moves with it. An override calls this first.
  virtual void transformBy(ZuCoordinateSystemTransformation const& xform);

  /// Signed distance to the other shape, m. Here: the generic way, with penetration depth; prints a line and returns 0
  /// when that fails.
  virtual double distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                            ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const;
  /// Walks the levels of both chains from the coarsest to the full shapes and stops as soon as a level's distance is
  /// above `distance` as it stands on entry: the shapes are then farther apart than the caller cares, and `distance`
  /// becomes that lower bound. Otherwise `distance` becomes the signed distance of the full shapes. Enter with 1e300
  /// for an exact answer, with 0 to learn whether the shapes touch.
  /// @param key1,key2 the links; the levels are addressed there by their proximity database indices
  /// @param computePenetration depths of overlapping full shapes
  /// @param pairs when not null, the keys of each pair of levels that touches are appended, coarse to fine
  /// @param fullShapes when not null, gets one entry for each pair appended: whether it is that of the full shapes
  /// Levels whose pair is not answered are passed over.
  /// @return false when the pair of the full shapes was to decide and is not answered; `distance` is then as it was
  virtual bool distanceQuery(ZuShape const& other, ZuLinkStateCacheKey const& key1, ZuLinkStateCacheKey const& key2,
                             ZuCoordinateSystemTransformation const& xform, bool const& computePenetration,
                             ZuSystemShapeProximityState& state, double& distance, KeyPairs* pairs,
                             std::vector<bool>* fullShapes) const;
  /// The generic way, from the remembered result to the stored one; see the class.
  /// @param computeWitness whether overlapping shapes get a depth and the witness points of it; touching or overlapping
  ///        shapes have distance 0 otherwise
  /// @param witness1,witness2 nearest points, each in its own shape's frame
  /// @return false, and nothing is stored, when the state is not initialised (a line is printed) or the engine fails
  virtual bool gjkDistanceAndWitnessPointsQuery(ZuShape const& other, ZuShapeStateCacheKey const& key1,
                                                ZuShapeStateCacheKey const& key2,
                                                ZuCoordinateSystemTransformation const& xform,
                                                bool const& computeWitness, ZuSystemShapeProximityState& state,
                                                double& distance, ZuVector& witness1, ZuVector& witness2) const;

  /// Signed distance to a segment or a point of the shape's frame.
  virtual double distanceTo(ZuLineSegment const& segment) const = 0;
  virtual double distanceTo(ZuVector const& point) const = 0;

  /// Whether the two shapes touch or overlap. When `pairs` is not null and they do, the keys of the pair are appended.
  virtual bool checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                              ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                              KeyPairs* pairs) const = 0;
  virtual bool checkIntersect(ZuLineSegment const& segment) const = 0;
  /// Where the segment enters and leaves the shape; returns, and sets event.hit to, whether it does.
  virtual bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const = 0;
  virtual bool checkIntersect(ZuVector const& point) const = 0;

  /// The next coarser shape; null at the end of the chain.
  virtual ZuShape const* lowerFidelityRepresentation() const;
  /// The n-th coarser shape, or the last one of a shorter chain; the shape itself for n = 0 or without a chain.
  virtual ZuShape const* lowestFidelityNotToExceed(unsigned int n) const;
  /// The shape that this one bounds; null for a full shape.
  virtual ZuShape const* higherFidelityRepresentation() const;
  /// Takes over the shape, or null, in place of the present one, which is deleted. Sets nothing in it: the caller sets
  /// its higher-fidelity representation.
  virtual void setLowerFidelityRepresentation(ZuShape* shape);
  virtual void setHigherFidelityRepresentation(ZuShape* shape);

  /// Appends a bounding shape of the given type to the chain, fitted to this shape, with the surface "Bounding". A type
  /// whose fit does not take this one prints its line and is fitted to points around this shape. Types that bound
  /// nothing (grid extent, union, intersection, unknown) do nothing; nothing but a half-space bounds a half-space.
  virtual void addBoundingVolume(ZuShapeValues const& kind);
  /// Deletes the chain below this shape; nothing else.
  virtual void deleteBoundingVolumes();

  virtual bool canDeform() const;
  virtual void setCanDeform(bool const& canDeform);

  /// Unit outward normal, in this shape's frame, where the segment first meets the surface; xform places the segment in
  /// this shape's frame. False, and `normal` is unchanged, when it meets none.
  virtual bool normalOfIntersection(ZuLineSegment const& segment, ZuCoordinateSystemTransformation const& xform,
                                    ZuVector& normal) const;

  /// Like fitFromShape, for points.
  virtual void fitToPoints(ZuXmlVectorVector const& points) = 0;
  /// Appends the polyhedral approximation.
  virtual void physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const = 0;
  /// The polyhedral approximation, built on first use; valid until the shape changes or is destroyed.
  virtual ZuBasePhysicalExtent& physicalExtent() const = 0;

  /// Name of the surface of the whole shape.
  virtual std::string const& surfaceProperty() const;
  virtual void setSurfaceProperty(std::string const& name);

  virtual bool isConvex() const = 0;
  virtual ZuShapeValues type() const = 0;

  /// Fineness of the polyhedral approximation.
  virtual unsigned int detailLevel() const;
  /// Takes effect on the next approximation that is built: one that is kept stays.
  virtual void setDetailLevel(unsigned int level);

  /// Gives the shape and its chain their places in a system: consecutive indices from `index` on, which is advanced;
  /// the link; an entry in `names` for each identifier that is not empty; and an entry each, in order, in `shapes`.
  virtual void setIndexAndBackPointer(unsigned int& index, ZuManipulatorLink const* link,
                                      std::map<std::string, ZuShape const*>& names, std::vector<ZuShape*>& shapes);
  /// The shape id of the shape's key in its system.
  virtual unsigned int proximityDatabaseIndex() const;
  /// Numbers the shape and its chain, fine to coarse, from the counter on, which is advanced.
  virtual void mapBVHLevel(unsigned int& counter);
  virtual std::string const& identifier() const;
  virtual void setIdentifier(std::string const& identifier);
  virtual void setBVHLevel(unsigned int const& level);
  virtual unsigned int bvhLevel() const;

  /// Resizes the box to enclose the capsule bounding volume of the physical extent.
  virtual void axisAlignedBoundingBoxInPrimary(ZuAxisAlignedBoundingBox& box) const;
  /// Appends a bounding capsule for each shape that children() lists, and its proximity database index.
  virtual void capsuleBoundingVolumeVectorInPrimary(ZuXmlVectorType<ZuCapsule>& capsules,
                                                    std::vector<unsigned int>& indices) const;

  /// Splits a triangle of a sphere about the origin into four, `levels` times over, and appends the smallest ones.
  /// @param points the new points are appended, as far from the origin as the triangle's first vertex; a point that is
  ///        there already, to the last bit, is used again, so that neighbouring triangles share their points
  /// @param triangle three indices into points; the order of the new triangles turns the same way
  virtual void subdivide(ZuXmlVectorVector& points, ZuXmlVectorType<ZuPolygonWithKey>& polygons,
                         unsigned int const* triangle, int levels) const;
  /// Fills the extent with a subdivided icosahedron whose vertices lie on the sphere: 20 * 4^level facets, level at
  /// most m_theMaximumSubdivision.
  virtual void icosahedron(ZuBasePhysicalExtent& extent, double radius, ZuVector center, unsigned int level) const;

  virtual Surfaces const& surfaces() const;
  virtual Surfaces& surfaces();
  /// Name of the surface at a point of the physical extent; here the one of the whole shape.
  virtual std::string const& impactedSurface(unsigned int const& pointIndex) const;
  /// Finds the properties of a surface; false, and `properties` is unchanged, when the name is unknown.
  virtual bool lookup(std::string const& name, ZuDataMap const*& properties) const;

  virtual ZuShape* lowerFidelityRepresentation();
  virtual ZuShape* higherFidelityRepresentation();
  virtual void setStatedSystem(ZuStatedSystem const* system);
  /// The simple shapes that this one consists of: itself, unless a class says otherwise.
  virtual std::vector<ZuShape const*> const& children() const;

  /// The support point id of the physical extent.
  virtual unsigned int supportPointID() const;
  virtual void setSupportPointID(unsigned int id);
  /// The point of the physical extent that was nearest in the last query: by the extent, or by the box processor when
  /// the shape uses it.
  virtual unsigned int nearPointID(ZuShapeProximityData const& data) const;

  virtual bool useAABB() const;
  virtual void setUseAABB(bool const& use);
  virtual ZuAABBCollisionDetection const& getAABBProcessor() const;
  virtual ZuAABBCollisionDetection& getAABBProcessor();
  virtual void setAABBProcessor(ZuAABBCollisionDetection const& processor);

  /// Appends what children() lists.
  virtual void collectChildPointers(std::vector<ZuShape const*>& children) const;
  /// How many indices setIndexAndBackPointer() hands out: the shape and its chain.
  virtual unsigned int numberOfShapes() const;
  /// Appends a copy of the shape, without its own chain, to the chain as a bounding shape; it is used as it stands.
  virtual void addExplicitBoundingVolume(ZuShape const& shape);

  /// Finds the shapes of the system that are within the margin, m, of this shape, and appends an event for each. The
  /// levels are walked coarse to fine; shapes of the same link are passed over.
  /// @param link the link that carries this shape
  virtual void collisions(ZuSystemActiveState& activeState, ZuLinkStateCacheKey const& link,
                          ZuManipulatorSystem const& system, ZuCollisionQueryOptions const& options,
                          double const& margin, std::vector<ZuShapeCollisionEvent>& events) const;

  /// Runs the engine directly, without the memory of the pair; returns its success. Some classes answer pairs in closed
  /// form, and then return whether the shapes touch or overlap.
  /// @param direction the separation vector, in this shape's frame; minus the penetration when they overlap
  virtual bool computePenetrationDistanceAndSupportPoints(ZuShape const& other,
                                                          ZuCoordinateSystemTransformation const& xform,
                                                          ZuVector& witness1, ZuVector& witness2, double& distance,
                                                          ZuVector& direction) const;
  /// The two physical extents as meshes, convex or not: nearest points by their box hierarchies, and the nearest
  /// features into `data`. Returns whether the meshes touch; then the distance is 0.
  virtual bool computePenetrationDistanceAndNearestPointsByAABBProcessor(ZuShape const& other,
                                                                         ZuCoordinateSystemTransformation const& xform,
                                                                         ZuShapeProximityData& data, ZuVector& witness1,
                                                                         ZuVector& witness2, double& distance) const;
  /// The same for two shapes in one frame, without a record.
  virtual bool penetrationDistanceByAABBProcessor(ZuShape const& other, ZuVector& witness1, ZuVector& witness2,
                                                  double& distance) const;

  /// Adds a surface, or replaces its properties.
  virtual void setSurfaceProperties(std::string const& name, ZuDataMap const& properties);
  /// Appends the level-th coarser shape (0 and 1 are both the first), nothing when the chain is shorter.
  virtual void boundingVolumes(std::vector<ZuShape const*>& volumes, unsigned int level) const;

  /// Like distanceQuery, with the witness points of the full shapes; they are unchanged when a coarser level decided.
  /// @param useBoundingVolumes false asks the full shapes at once
  virtual bool distanceAndWitnessPointsQuery(ZuShape const& other, ZuLinkStateCacheKey const& key1,
                                             ZuLinkStateCacheKey const& key2,
                                             ZuCoordinateSystemTransformation const& xform,
                                             bool const& computePenetration, ZuSystemShapeProximityState& state,
                                             bool useBoundingVolumes, double& distance, ZuVector& witness1,
                                             ZuVector& witness2, KeyPairs* pairs, std::vector<bool>* fullShapes) const;
  /// Like distanceTo, with the nearest points, each in its own shape's frame.
  virtual double distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                            ZuShapeProximityDescriptor const& descriptor,
                                            ZuSystemShapeProximityState& state, ZuVector& witness1,
                                            ZuVector& witness2) const;

  /// A capsule that bounds the shape: the one that was set since the geometry last changed, otherwise that of the
  /// physical extent, which bounds the approximation rather than a round solid itself.
  virtual ZuCapsule const& capsuleBoundingVolume() const;
  virtual void setCapsuleBoundingVolume(ZuCapsule const& capsule);

  // Not virtual.

  /// How many pairs, in this thread, were not answered so far: they printed a line and gave 0 or false. A caller that
  /// must tell "touching" from "not answered" compares the number before and after it asks.
  static std::uint64_t unansweredPairs();

  /// The engine of the generic way; a copy of the prototype, made on first use, unless another one was set.
  ZuGJK const& gjkEngine() const;
  /// Keeps a copy of the engine, of its most derived type, for the generic way from now on. Copies of the shape take
  /// it along; the coarser levels keep theirs.
  void setGjkEngine(ZuGJK const& engine);
  /// The engine of which shapes of this process copy theirs on first use: a plain ZuGJK unless another one was set.
  static ZuGJK const& gjkEnginePrototype();
  /// Keeps a copy of the engine as the prototype. Shapes that have an engine keep it. To be called while no other
  /// thread uses shapes: at start-up.
  static void setGjkEnginePrototype(ZuGJK const& engine);

  /// gjkDistanceAndWitnessPointsQuery() without the points.
  bool gjkDistanceQuery(ZuShape const& other, ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2,
                        ZuCoordinateSystemTransformation const& xform, bool const& computeWitness,
                        ZuSystemShapeProximityState& state, double& distance) const;
  void setSurfaces(Surfaces const& surfaces);
  bool deformable() const { return m_Deformable; }
  void setDeformable(bool const& deformable) { m_Deformable = deformable; }
  bool bypassDynamics() const { return m_BypassDynamics; }
  void setBypassDynamics(bool const& bypass) { m_BypassDynamics = bypass; }
  ZuStatedSystem const* statedSystem() const { return m_StatedSystem; }
  /// The link of the last setIndexAndBackPointer(); null before.
  ZuManipulatorLink const* manipulatorLink() const { return m_Link; }

  /// Asks for the penetration of the pair and, when the two touch or overlap, fills the pair's record: distance,
  /// witness points, line of action (from shape 2 into shape 1, in this shape's frame), one penetration point for each
  /// shape.
  /// @return whether they touch or overlap
  bool computePenetrationInformation(ZuShape const& other, ZuShapeStateCacheKey const& key1,
                                     ZuShapeStateCacheKey const& key2, ZuCoordinateSystemTransformation const& xform,
                                     ZuSystemShapeProximityState& state, double& distance) const;
  /// Asks the pair of `data`, whose second shape and frames the active state supplies. False, and the result is
  /// unchanged, when the state does not know them or no level could be asked.
  bool query(ZuShapeQueryData& data, ZuSystemActiveState& activeState, bool computePenetration, KeyPairs* pairs) const;

  /// Keeps the place in the system beside the container.
  std::unique_ptr<ZuXmlObject> emptyLikeThis() const override;
  /// Also of the chain, whose levels are made by the container when they are read.
  void setContainer(ZuXmlBaseVariableCompoundType const* container) override;

  // See ZuXmlCompoundType
  void registerComponents() override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;
  void createSpecialDescriptorMap() override;
  /// Reads the next coarser shape. Needs a container, which makes the object; prints a line when there is none.
  bool readValueFromSpecialToken(ZuToken const& token, ZuXmlReader& reader) override;

  /// Finest tessellation: 327,680 facets. A finer one is a mistake, or a hostile document, rather than a wish.
  static constexpr unsigned int m_theMaximumSubdivision = 7;

 protected:
  /// The other shape as the class that its type() tells; a type() that lies raises std::bad_cast, a programming error.
  template <class Solid>
  static Solid const& as(ZuShape const& shape) {
    return typeid(shape) == typeid(Solid) ? static_cast<Solid const&>(shape) : dynamic_cast<Solid const&>(shape);
  }
  /// Whether the type is one of the polyhedral extents 0 to 2.
  static bool isMesh(ZuShapeValues type) { return type <= TRI_PHYSICAL_EXTENT; }
  /// For testObject(): gives every persistent member of this class a value that is not its default.
  void fillForTest();
  /// Prints the line for a pair that the class does not answer: `operation` is "ZuSphere::distanceTo-->Distance".
  void printNotSupported(char const* operation, ZuShape const& other) const;
  /// Appends the pair's keys when there is a list for them; returns `touching`.
  static bool report(bool touching, ZuShapeProximityDescriptor const& descriptor, KeyPairs* pairs);
  /// Puts the witness points of a contact into the record's buffers, which a contact that was not there before starts
  /// empty. Prints a line when there is no record.
  static void recordContact(ZuShapeProximityData* record, ZuVector const& witness1, ZuVector const& witness2);
  /// To be called when the geometry changes: the polyhedral approximation is out of date.
  void geometryChanged();
  /// scaleBy() of the chain below this shape.
  void scaleChainBy(double factor);
  /// The polyhedral approximation that is kept, null when there is none, and the place to keep a new one.
  ZuBasePhysicalExtent* keptExtent() const { return m_PhysicalExtent.get(); }
  void keepExtent(std::unique_ptr<ZuBasePhysicalExtent> extent) const;
  /// Points whose hull encloses the shape: the corners of its approximation, moved away from their mean until the flat
  /// sides of the approximation touch a round solid from outside.
  static ZuXmlVectorVector cornersAround(ZuShape const& shape);
  /// Of the distance from the mean: what rounding can take from it.
  static constexpr double m_theGrowthRounding = 1e-14;
  /// Keeps the capsule until the geometry changes.
  ZuCapsule const& keepCapsule(ZuCapsule const& capsule) const;
  /// The capsule that is kept; otherwise the one that fits itself around this shape, which is kept from then on.
  ZuCapsule const& capsuleAround() const;
  /// Whether the capsule of the core and radius touches a mesh or a sphere, whose geometry is taken as it stands.
  static bool capsuleMeets(ZuLineSegment const& core, double radius, ZuShape const& meshOrSphere);
  /// The capsule that is kept; null when there is none.
  ZuCapsule const* keptCapsule() const { return m_CapsuleBoundingVolume.get(); }
  /// Gives a new approximation the base attributes and surfaces of this shape: "Bounding" for a level of a chain.
  void dressExtent(ZuBasePhysicalExtent& extent) const;
  /// The shape's engine, made on first use.
  ZuGJK& engine() const;

 private:
  struct LevelQuery;
  bool walkLevels(LevelQuery& query) const;
  void attachBelowLowest(std::unique_ptr<ZuShape> volume);
  void copyPartsOf(ZuShape const& other);
  void deleteChain();
  bool isInChain(ZuShape const& shape) const;

  ZuXmlBasicType<unsigned int> m_DetailLevel{3U};
  Surfaces m_Surfaces;
  ZuXmlBasicType<std::string> m_ShapeSurfaceProperty;
  ZuXmlBasicType<std::string> m_ShapeIdentifier;
  ZuManipulatorLink const* m_Link = nullptr;
  ZuXmlBasicType<bool> m_Deformable;
  ZuXmlBasicType<bool> m_CanDeform;
  ZuXmlBasicType<bool> m_UseAABB;
  ZuXmlBasicType<bool> m_BypassDynamics;
  ZuStatedSystem const* m_StatedSystem = nullptr;
  mutable std::unique_ptr<ZuBasePhysicalExtent> m_PhysicalExtent;
  std::unique_ptr<ZuShape> m_LowerFidelityRepresentation;
  ZuShape* m_HigherFidelityRepresentation = nullptr;
  unsigned int m_BVHLevel = 0;
  unsigned int m_ProximityDatabaseIndex = 0;
  mutable std::vector<ZuShape const*> m_Children;
  unsigned int m_SupportPointID = 0;
  mutable std::unique_ptr<ZuGJK> m_Engine;
  mutable std::unique_ptr<ZuAABBCollisionDetection> m_AABBProcessor;
  mutable std::unique_ptr<ZuCapsule> m_CapsuleBoundingVolume;
  std::unique_ptr<ZuShape> m_RetiredChain;
};
