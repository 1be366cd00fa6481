#include "geometry/zuShape.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <typeinfo>
#include <unordered_map>

#include "foundation/zuManipulatorSystem.h"
#include "foundation/zuPrint.h"
#include "foundation/zuXmlBaseVariableCompoundType.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlWriter.h"
#include "geometry/zuAABBCollisionDetection.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuBasePhysicalExtent.h"
#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuGeneralMotion.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuGjk.h"
#include "geometry/zuHalfSpace.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuPolygon.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuShapeCollisionEvent.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuShapeProximityData.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuShapeQueryData.h"
#include "geometry/zuSphere.h"
#include "geometry/zuSystemActiveState.h"
#include "geometry/zuSystemShapeProximityState.h"
#include "geometry/zuTetrahedron.h"
#include "geometry/zuTriPhysicalExtent.h"

namespace {

char const* const theBoundingSurface = "Bounding";

thread_local std::uint64_t theUnansweredPairs = 0;

void print(char const* message) { Zu::Print::instance().write(Zu::PRINT_WARNING, "%s", message); }

std::unique_ptr<ZuGJK>& enginePrototype() {
  static std::unique_ptr<ZuGJK> prototype = std::make_unique<ZuGJK>();
  return prototype;
}

/// A default shape of the type; null for the types that bound nothing.
std::unique_ptr<ZuShape> newBoundingShape(ZuShape::ZuShapeValues kind) {
  switch (kind) {
    case ZuShape::PHYSICAL_EXTENT:
    case ZuShape::POLY_PHYSICAL_EXTENT:
      return std::make_unique<ZuPolyPhysicalExtent>();
    case ZuShape::TRI_PHYSICAL_EXTENT:
      return std::make_unique<ZuTriPhysicalExtent>();
    case ZuShape::SPHERE:
      return std::make_unique<ZuSphere>();
    case ZuShape::CAPSULE:
      return std::make_unique<ZuCapsule>();
    case ZuShape::ELLIPSOID:
      return std::make_unique<ZuEllipsoid>();
    case ZuShape::TETRAHEDRON:
      return std::make_unique<ZuTetrahedron>();
    case ZuShape::HALF_SPACE:
      return std::make_unique<ZuHalfSpace>();
    case ZuShape::CYLINDER:
      return std::make_unique<ZuCylinder>();
    case ZuShape::BOX:
      return std::make_unique<ZuBox>();
    case ZuShape::CONE:
      return std::make_unique<ZuCone>();
    case ZuShape::LOZENGE:
      return std::make_unique<ZuLozenge>();
    default:
      return nullptr;
  }
}

/// The engine, which is made when it is needed; or, for a solid without an end, the closed form in its place.
template <class Engine>
bool runPair(Engine const& engine, ZuShape const& shape1, ZuShape const& shape2,
             ZuCoordinateSystemTransformation const& xform, bool computePenetration, ZuVector& witness1,
             ZuVector& witness2, double& distance, ZuVector& separation) {
  if (shape1.type() == ZuShape::HALF_SPACE || shape2.type() == ZuShape::HALF_SPACE) {
    return ZuHalfSpace::pairDistance(shape1, shape2, xform, computePenetration, witness1, witness2, distance,
                                     separation);
  }
  return engine().distance(shape1, shape2, ZuCoordinateSystemTransformation::nullObject(), xform, computePenetration,
                           witness1, witness2, distance, &separation);
}

void giveBoundingSurface(ZuShape& shape) {
  ZuShape::Surfaces surfaces;
  surfaces.add(ZuXmlBasicType<std::string>(theBoundingSurface), ZuDataMap::boundingColor());
  shape.setSurfaces(surfaces);
  shape.setSurfaceProperty(theBoundingSurface);
}

/// The key of a level of a shape on the link.
ZuShapeStateCacheKey levelKey(ZuLinkStateCacheKey const& link, ZuShape const& level) {
  ZuShapeStateCacheKey key(link);
  key.setShapeID(level.proximityDatabaseIndex());
  return key;
}

/// Coarse to fine, the shape itself last.
std::vector<ZuShape const*> levelsOf(ZuShape const& shape, bool all) {
  std::vector<ZuShape const*> levels;
  for (ZuShape const* level = &shape; level != nullptr; level = all ? level->lowerFidelityRepresentation() : nullptr) {
    levels.push_back(level);
  }
  std::reverse(levels.begin(), levels.end());
  return levels;
}

/// Finds points of a list by their bits.
class PointIndex {
 public:
  explicit PointIndex(ZuXmlVectorVector& points) : m_Points(points) {
    for (std::size_t i = 0; i < points.size(); ++i) m_Indices.emplace(points[i], static_cast<unsigned int>(i));
  }
  unsigned int indexOf(ZuVector const& point) {
    auto const [entry, isNew] = m_Indices.emplace(point, static_cast<unsigned int>(m_Points.size()));
    if (isNew) m_Points.pushBack(point);
    return entry->second;
  }
  ZuVector const& operator[](unsigned int index) const { return m_Points[index]; }

 private:
  struct Hash {
    std::size_t operator()(ZuVector const& v) const {
      std::hash<double> const hash;  // equal for 0.0 and -0.0, as the vectors are
      return hash(v[0]) ^ (hash(v[1]) * 31) ^ (hash(v[2]) * 1021);
    }
  };
  ZuXmlVectorVector& m_Points;
  std::unordered_map<ZuVector, unsigned int, Hash> m_Indices;
};

using Triangle = std::array<unsigned int, 3>;

/// The point of the sphere about the origin half-way between two of its points. Adding is commutative, so that both
/// neighbours of an edge find the same bits.
ZuVector onSphereBetween(ZuVector const& a, ZuVector const& b, double radius) { return (a + b).unitVector() * radius; }

void splitTriangle(PointIndex& points, ZuXmlVectorType<ZuPolygonWithKey>& polygons, std::string const& key,
                   Triangle const& corners, double radius, int levels) {
  if (levels <= 0) {
    polygons.pushBack(ZuPolygonWithKey(corners.data(), 3, key));
    return;
  }
  Triangle middle;
  for (unsigned int i = 0; i < 3; ++i) {
    ZuVector const a = points[corners[i]];
    ZuVector const b = points[corners[(i + 1) % 3]];
    middle[i] = points.indexOf(onSphereBetween(a, b, radius));
  }
  splitTriangle(points, polygons, key, {corners[0], middle[0], middle[2]}, radius, levels - 1);
  splitTriangle(points, polygons, key, {middle[0], corners[1], middle[1]}, radius, levels - 1);
  splitTriangle(points, polygons, key, {middle[2], middle[1], corners[2]}, radius, levels - 1);
  splitTriangle(points, polygons, key, {middle[0], middle[1], middle[2]}, radius, levels - 1);
}

// The icosahedron: corners (0, +-1, +-g) and their cyclic permutations, g the golden ratio, before they are put on the
// unit sphere; each triangle turns outward.
constexpr double theGoldenRatio = 1.6180339887498949;
constexpr double theIcosahedronCorners[12][3] = {
    {-1, theGoldenRatio, 0}, {1, theGoldenRatio, 0}, {-1, -theGoldenRatio, 0}, {1, -theGoldenRatio, 0},
    {0, -1, theGoldenRatio}, {0, 1, theGoldenRatio}, {0, -1, -theGoldenRatio}, {0, 1, -theGoldenRatio},
    {theGoldenRatio, 0, -1}, {theGoldenRatio, 0, 1}, {-theGoldenRatio, 0, -1}, {-theGoldenRatio, 0, 1}};
constexpr unsigned int theIcosahedronFaces[20][3] = {{0, 11, 5}, {0, 5, 1},  {0, 1, 7},   {0, 7, 10}, {0, 10, 11},
                                                     {1, 5, 9},  {5, 11, 4}, {11, 10, 2}, {10, 7, 6}, {7, 1, 8},
                                                     {3, 9, 4},  {3, 4, 2},  {3, 2, 6},   {3, 6, 8},  {3, 8, 9},
                                                     {4, 9, 5},  {2, 4, 11}, {6, 2, 10},  {8, 6, 7},  {9, 8, 1}};

}  // namespace

/// One walk over the levels of two chains.
struct ZuShape::LevelQuery {
  ZuShape const& other;
  ZuLinkStateCacheKey const& link1;
  ZuLinkStateCacheKey const& link2;
  ZuCoordinateSystemTransformation const& xform;
  bool computePenetration;
  ZuSystemShapeProximityState& state;
  bool allLevels;
  double& distance;
  ZuVector* witness1;
  ZuVector* witness2;
  KeyPairs* pairs;
  std::vector<bool>* fullShapes;
};

ZuShape::ZuShape() = default;

ZuShape::ZuShape(ZuShape const& other)
    : ZuBaseExpressionTreeElement(other),
      m_DetailLevel(other.m_DetailLevel),
      m_Surfaces(other.m_Surfaces),
      m_ShapeSurfaceProperty(other.m_ShapeSurfaceProperty),
      m_ShapeIdentifier(other.m_ShapeIdentifier),
      m_Link(other.m_Link),
      m_Deformable(other.m_Deformable),
      m_CanDeform(other.m_CanDeform),
      m_UseAABB(other.m_UseAABB),
      m_BypassDynamics(other.m_BypassDynamics),
      m_StatedSystem(other.m_StatedSystem),
      m_BVHLevel(other.m_BVHLevel),
      m_ProximityDatabaseIndex(other.m_ProximityDatabaseIndex),
      m_SupportPointID(other.m_SupportPointID) {
  copyPartsOf(other);
}

ZuShape& ZuShape::operator=(ZuShape const& other) {
  if (this == &other) return *this;
  ZuBaseExpressionTreeElement::operator=(other);
  m_DetailLevel = other.m_DetailLevel;
  m_Surfaces = other.m_Surfaces;
  m_ShapeSurfaceProperty = other.m_ShapeSurfaceProperty;
  m_ShapeIdentifier = other.m_ShapeIdentifier;
  m_Link = other.m_Link;
  m_Deformable = other.m_Deformable;
  m_CanDeform = other.m_CanDeform;
  m_UseAABB = other.m_UseAABB;
  m_BypassDynamics = other.m_BypassDynamics;
  m_StatedSystem = other.m_StatedSystem;
  m_BVHLevel = other.m_BVHLevel;
  m_ProximityDatabaseIndex = other.m_ProximityDatabaseIndex;
  m_Children.clear();
  m_SupportPointID = other.m_SupportPointID;
  copyPartsOf(other);
  return *this;
}

/// The chain, the engine and the box processor; the approximation belongs to the other's geometry object and is made
/// anew.
void ZuShape::copyPartsOf(ZuShape const& other) {
  m_PhysicalExtent.reset();
  std::unique_ptr<ZuShape> chain;
  if (other.m_LowerFidelityRepresentation) {
    chain.reset(static_cast<ZuShape*>(other.m_LowerFidelityRepresentation->clone()));
    chain->m_HigherFidelityRepresentation = this;
  }
  // A level of this shape's own chain lives on as long as the assignment needs it: derived classes copy from it yet.
  bool const isOwnLevel = isInChain(other);
  if (isOwnLevel) m_RetiredChain = std::move(m_LowerFidelityRepresentation);
  deleteChain();
  m_LowerFidelityRepresentation = std::move(chain);
  setContainer(container());
  m_Engine = other.m_Engine ? other.m_Engine->clone() : nullptr;
  m_AABBProcessor.reset(other.m_AABBProcessor ? new ZuAABBCollisionDetection(*other.m_AABBProcessor) : nullptr);
  m_CapsuleBoundingVolume.reset(other.m_CapsuleBoundingVolume ? new ZuCapsule(*other.m_CapsuleBoundingVolume)
                                                              : nullptr);
}

ZuShape::~ZuShape() { deleteChain(); }

bool ZuShape::isInChain(ZuShape const& shape) const {
  ZuShape const* level = m_LowerFidelityRepresentation.get();
  while (level != nullptr && level != &shape) level = level->m_LowerFidelityRepresentation.get();
  return level != nullptr;
}

/// Level by level, so that a long chain does not end in as many nested destructors.
void ZuShape::deleteChain() {
  std::unique_ptr<ZuShape> level = std::move(m_LowerFidelityRepresentation);
  while (level) level = std::move(level->m_LowerFidelityRepresentation);
}

bool ZuShape::operator==(ZuShape const& other) const {
  bool const sameMembers =
      ZuBaseExpressionTreeElement::operator==(other) && m_Surfaces == other.m_Surfaces &&
      m_DetailLevel == other.m_DetailLevel && m_ShapeSurfaceProperty == other.m_ShapeSurfaceProperty &&
      m_ShapeIdentifier == other.m_ShapeIdentifier && m_Deformable == other.m_Deformable &&
      m_CanDeform == other.m_CanDeform && m_UseAABB == other.m_UseAABB && m_BypassDynamics == other.m_BypassDynamics;
  if (!sameMembers) return false;
  ZuShape const* const lower = m_LowerFidelityRepresentation.get();
  ZuShape const* const otherLower = other.m_LowerFidelityRepresentation.get();
  return lower == nullptr ? otherLower == nullptr : lower->equality(otherLower);
}

ZuVector ZuShape::computeSupportPoint(ZuVector const& direction) const {
  return physicalExtent().computeSupportPoint(direction);
}

ZuVector ZuShape::supportPoint(ZuVector const& direction) const { return computeSupportPoint(direction); }

void ZuShape::transformBy(ZuCoordinateSystemTransformation const& xform) {
  if (m_LowerFidelityRepresentation) m_LowerFidelityRepresentation->transformBy(xform);
  geometryChanged();
}

double ZuShape::distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                           ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const {
  double distance = 0.0;
  if (!gjkDistanceQuery(other, descriptor.key1(), descriptor.key2(), xform, true, state, distance)) {
    ++theUnansweredPairs;
    print("ZuShape::distanceTo-->GJK Failed\n");
  }
  return distance;
}

bool ZuShape::distanceQuery(ZuShape const& other, ZuLinkStateCacheKey const& key1, ZuLinkStateCacheKey const& key2,
                            ZuCoordinateSystemTransformation const& xform, bool const& computePenetration,
                            ZuSystemShapeProximityState& state, double& distance, KeyPairs* pairs,
                            std::vector<bool>* fullShapes) const {
  LevelQuery query{other,    key1,    key2,    xform, computePenetration, state, true,
                   distance, nullptr, nullptr, pairs, fullShapes};
  return walkLevels(query);
}

bool ZuShape::distanceAndWitnessPointsQuery(ZuShape const& other, ZuLinkStateCacheKey const& key1,
                                            ZuLinkStateCacheKey const& key2,
                                            ZuCoordinateSystemTransformation const& xform,
                                            bool const& computePenetration, ZuSystemShapeProximityState& state,
                                            bool useBoundingVolumes, double& distance, ZuVector& witness1,
                                            ZuVector& witness2, KeyPairs* pairs, std::vector<bool>* fullShapes) const {
  LevelQuery query{other,    key1,      key2,      xform, computePenetration, state, useBoundingVolumes,
                   distance, &witness1, &witness2, pairs, fullShapes};
  return walkLevels(query);
}

/// From the coarsest levels of both chains to the full shapes; a shorter chain waits at its coarsest level.
bool ZuShape::walkLevels(LevelQuery& query) const {
  std::vector<ZuShape const*> const levels1 = levelsOf(*this, query.allLevels);
  std::vector<ZuShape const*> const levels2 = levelsOf(query.other, query.allLevels);
  double const bound = query.distance;
  for (std::size_t rest = std::max(levels1.size(), levels2.size()); rest-- > 0;) {
    ZuShape const& level1 = *levels1[levels1.size() - 1 - std::min(rest, levels1.size() - 1)];
    ZuShape const& level2 = *levels2[levels2.size() - 1 - std::min(rest, levels2.size() - 1)];
    bool const isFull = rest == 0;
    ZuShapeProximityDescriptor descriptor;
    descriptor.setKey1(levelKey(query.link1, level1));
    descriptor.setKey2(levelKey(query.link2, level2));
    ZuVector witness1 = query.witness1 != nullptr ? *query.witness1 : ZuVector();
    ZuVector witness2 = query.witness2 != nullptr ? *query.witness2 : ZuVector();
    std::uint64_t const before = unansweredPairs();
    double distance =
        level1.distanceAndWitnessPointsTo(level2, query.xform, descriptor, query.state, witness1, witness2);
    if (unansweredPairs() != before) {  // this level decides nothing
      if (isFull) query.distance = bound;
      if (isFull) return false;
      continue;
    }
    if (!query.computePenetration) distance = std::max(distance, 0.0);
    if (distance <= 0.0 && query.pairs != nullptr) {
      query.pairs->emplace_back(descriptor.key1(), descriptor.key2());
      if (query.fullShapes != nullptr) query.fullShapes->push_back(isFull);
    }
    if (isFull && query.witness1 != nullptr) *query.witness1 = witness1;
    if (isFull && query.witness2 != nullptr) *query.witness2 = witness2;
    query.distance = distance;
    if (distance > bound) break;
  }
  return true;
}

bool ZuShape::gjkDistanceAndWitnessPointsQuery(ZuShape const& other, ZuShapeStateCacheKey const& key1,
                                               ZuShapeStateCacheKey const& key2,
                                               ZuCoordinateSystemTransformation const& xform,
                                               bool const& computeWitness, ZuSystemShapeProximityState& state,
                                               double& distance, ZuVector& witness1, ZuVector& witness2) const {
  if (!state.isInitialized()) {
    print("ZuShape::gjkDistanceQuery-->proximity database not initialized\n");
    return false;
  }
  ZuShapeProximityData* const record = state.getProximityData(key1, key2);  // the one look-up of the query
  if (record != nullptr && record->updateTime() == state.updateTime()) {
    distance = record->distance();
    record->getWitnessPoints(witness1, witness2);
    return true;
  }
  ZuVector direction = record != nullptr ? record->proximityVector() : ZuVector();
  auto const usedEngine = [this]() -> ZuGJK& { return engine(); };
  if (!runPair(usedEngine, *this, other, xform, computeWitness, witness1, witness2, distance, direction)) return false;
  if (record != nullptr) record->storeResult(distance, direction, witness1, witness2, state.updateTime());
  if (!(distance > 0.0)) recordContact(record, witness1, witness2);
  return true;
}

void ZuShape::recordContact(ZuShapeProximityData* record, ZuVector const& witness1, ZuVector const& witness2) {
  if (record == nullptr) {
    print("ZuStatedSystem::gjkDistanceQuery-->null pointer");
    return;
  }
  if (!record->collisionOccurred()) record->startContact();
  record->insertPenetrationPointShape1Primary(witness1);
  record->insertPenetrationPointShape2Primary(witness2);
}

bool ZuShape::gjkDistanceQuery(ZuShape const& other, ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2,
                               ZuCoordinateSystemTransformation const& xform, bool const& computeWitness,
                               ZuSystemShapeProximityState& state, double& distance) const {
  ZuVector witness1;
  ZuVector witness2;
  return gjkDistanceAndWitnessPointsQuery(other, key1, key2, xform, computeWitness, state, distance, witness1,
                                          witness2);
}

ZuShape const* ZuShape::lowerFidelityRepresentation() const { return m_LowerFidelityRepresentation.get(); }

ZuShape* ZuShape::lowerFidelityRepresentation() { return m_LowerFidelityRepresentation.get(); }

ZuShape const* ZuShape::lowestFidelityNotToExceed(unsigned int n) const {
  ZuShape const* level = m_LowerFidelityRepresentation.get();
  if (level == nullptr || n == 0) return this;
  for (unsigned int count = 1; count < n && level->lowerFidelityRepresentation() != nullptr; ++count) {
    level = level->lowerFidelityRepresentation();
  }
  return level;
}

ZuShape const* ZuShape::higherFidelityRepresentation() const { return m_HigherFidelityRepresentation; }

ZuShape* ZuShape::higherFidelityRepresentation() { return m_HigherFidelityRepresentation; }

void ZuShape::setLowerFidelityRepresentation(ZuShape* shape) {
  if (shape == this) return print("ZuShape::setLowerFidelityRepresentation-->a shape can't bound itself");
  if (shape == m_LowerFidelityRepresentation.get()) return;
  std::unique_ptr<ZuShape> taken(shape);
  for (ZuShape* level = this; level != nullptr; level = level->m_LowerFidelityRepresentation.get()) {
    if (level->m_LowerFidelityRepresentation == taken)
      static_cast<void>(level->m_LowerFidelityRepresentation.release());
  }
  deleteChain();
  m_LowerFidelityRepresentation = std::move(taken);
}

void ZuShape::setHigherFidelityRepresentation(ZuShape* shape) { m_HigherFidelityRepresentation = shape; }

void ZuShape::addBoundingVolume(ZuShapeValues const& kind) {
  if (type() == HALF_SPACE && kind != HALF_SPACE) return;
  std::unique_ptr<ZuShape> volume = newBoundingShape(kind);
  if (!volume) return;
  volume->fitFromShape(*this);
  if (volume->equality(newBoundingShape(kind).get())) {  // as it was: it does not fit itself to shapes of this type
    if (type() == HALF_SPACE) return;
    volume->fitToPoints(cornersAround(*this));
  }
  giveBoundingSurface(*volume);
  volume->physicalExtent().init();
  attachBelowLowest(std::move(volume));
}

ZuXmlVectorVector ZuShape::cornersAround(ZuShape const& shape) {
  ZuBasePhysicalExtent const& mesh = shape.physicalExtent();
  ZuXmlVectorVector corners = mesh.points();
  if (isMesh(shape.type()) || corners.empty()) return corners;
  ZuVector center;
  for (ZuVector const& p : corners) center += p / static_cast<double>(corners.size());
  double growth = 1.0;
  for (unsigned int group = 0; group < mesh.numberOfGroups(); ++group) {
    for (unsigned int facet = 0; facet < mesh.numberOfFacetsInGroup(group); ++facet) {
      ZuVector const normal = mesh.getPolygon(group, facet).normal();
      double const height = normal.dot(mesh.point(mesh.getFacetPointIndex(group, facet, 0)) - center);
      if (height > 0.0) growth = std::max(growth, normal.dot(shape.computeSupportPoint(normal) - center) / height);
    }
  }
  if (growth == 1.0) return corners;
  for (ZuVector& p : corners) p = center + (p - center) * (growth * (1.0 + m_theGrowthRounding));
  return corners;
}

void ZuShape::addExplicitBoundingVolume(ZuShape const& shape) {
  std::unique_ptr<ZuShape> volume(static_cast<ZuShape*>(shape.clone()));
  volume->deleteBoundingVolumes();
  giveBoundingSurface(*volume);
  attachBelowLowest(std::move(volume));
}

void ZuShape::attachBelowLowest(std::unique_ptr<ZuShape> volume) {
  ZuShape* lowest = this;
  while (lowest->m_LowerFidelityRepresentation) lowest = lowest->m_LowerFidelityRepresentation.get();
  volume->setContainer(container());
  volume->setHigherFidelityRepresentation(lowest);
  lowest->setLowerFidelityRepresentation(volume.release());
}

void ZuShape::deleteBoundingVolumes() { deleteChain(); }

bool ZuShape::canDeform() const { return m_CanDeform; }

void ZuShape::setCanDeform(bool const& canDeform) { m_CanDeform = canDeform; }

bool ZuShape::normalOfIntersection(ZuLineSegment const& segment, ZuCoordinateSystemTransformation const& xform,
                                   ZuVector& normal) const {
  ZuShapePointEvent event;
  if (!intersectLineSegment(xform * segment, event) || (event.startsInside && event.endsInside)) return false;
  normal = event.startsInside ? event.exit.normal : event.entry.normal;
  return true;
}

std::string const& ZuShape::surfaceProperty() const { return m_ShapeSurfaceProperty; }

void ZuShape::setSurfaceProperty(std::string const& name) { m_ShapeSurfaceProperty = name; }

unsigned int ZuShape::detailLevel() const { return m_DetailLevel; }

void ZuShape::setDetailLevel(unsigned int level) { m_DetailLevel = level; }

void ZuShape::setIndexAndBackPointer(unsigned int& index, ZuManipulatorLink const* link,
                                     std::map<std::string, ZuShape const*>& names, std::vector<ZuShape*>& shapes) {
  for (ZuShape* level = this; level != nullptr; level = level->m_LowerFidelityRepresentation.get()) {
    level->m_ProximityDatabaseIndex = index++;
    level->m_Link = link;
    if (!level->identifier().empty()) names[level->identifier()] = level;
    shapes.push_back(level);
  }
}

unsigned int ZuShape::proximityDatabaseIndex() const { return m_ProximityDatabaseIndex; }

void ZuShape::mapBVHLevel(unsigned int& counter) {
  setBVHLevel(counter++);
  if (m_LowerFidelityRepresentation) m_LowerFidelityRepresentation->mapBVHLevel(counter);
}

std::string const& ZuShape::identifier() const { return m_ShapeIdentifier; }

void ZuShape::setIdentifier(std::string const& identifier) { m_ShapeIdentifier = identifier; }

void ZuShape::setBVHLevel(unsigned int const& level) { m_BVHLevel = level; }

unsigned int ZuShape::bvhLevel() const { return m_BVHLevel; }

void ZuShape::axisAlignedBoundingBoxInPrimary(ZuAxisAlignedBoundingBox& box) const {
  box.resize(physicalExtent().capsuleBoundingVolume());
}

void ZuShape::capsuleBoundingVolumeVectorInPrimary(ZuXmlVectorType<ZuCapsule>& capsules,
                                                   std::vector<unsigned int>& indices) const {
  for (ZuShape const* child : children()) {
    capsules.pushBack(child->capsuleBoundingVolume());
    indices.push_back(child->proximityDatabaseIndex());
  }
}

void ZuShape::subdivide(ZuXmlVectorVector& points, ZuXmlVectorType<ZuPolygonWithKey>& polygons,
                        unsigned int const* triangle, int levels) const {
  if (triangle == nullptr) return;
  Triangle const corners = {triangle[0], triangle[1], triangle[2]};
  for (unsigned int const corner : corners) {
    if (corner < points.size()) continue;
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuShape::subdivide-->invalid index %u of %zu points", corner,
                                points.size());
    return;
  }
  PointIndex index(points);
  splitTriangle(index, polygons, surfaceProperty(), corners, points[corners[0]].mag(),
                std::min(levels, static_cast<int>(m_theMaximumSubdivision)));
}

void ZuShape::icosahedron(ZuBasePhysicalExtent& extent, double radius, ZuVector center, unsigned int level) const {
  ZuXmlVectorVector points;
  ZuXmlVectorType<ZuPolygonWithKey> polygons;
  for (auto const& corner : theIcosahedronCorners) {
    points.pushBack(ZuVector(corner[0], corner[1], corner[2]).unitVector());
  }
  int const levels = static_cast<int>(std::min(level, m_theMaximumSubdivision));
  PointIndex index(points);
  std::string const& key = extent.surfaceProperty();
  for (auto const& face : theIcosahedronFaces) {
    splitTriangle(index, polygons, key, {face[0], face[1], face[2]}, 1.0, levels);
  }
  for (ZuVector& point : points) point = center + radius * point;
  extent.setPoints(points);
  extent.setFacets(polygons);
  extent.setIsConvex(true);
}

ZuShape::Surfaces const& ZuShape::surfaces() const { return m_Surfaces; }

ZuShape::Surfaces& ZuShape::surfaces() { return m_Surfaces; }

void ZuShape::setSurfaces(Surfaces const& surfaces) { m_Surfaces = surfaces; }

std::string const& ZuShape::impactedSurface(unsigned int const&) const { return surfaceProperty(); }

bool ZuShape::lookup(std::string const& name, ZuDataMap const*& properties) const {
  ZuDataMap const* const found = m_Surfaces.lookupPointer(ZuXmlBasicType<std::string>(name));
  if (found != nullptr) properties = found;
  return found != nullptr;
}

void ZuShape::setSurfaceProperties(std::string const& name, ZuDataMap const& properties) {
  m_Surfaces.add(ZuXmlBasicType<std::string>(name), properties);
}

void ZuShape::setStatedSystem(ZuStatedSystem const* system) { m_StatedSystem = system; }

std::vector<ZuShape const*> const& ZuShape::children() const {
  m_Children.clear();
  collectChildPointers(m_Children);
  return m_Children;
}

unsigned int ZuShape::supportPointID() const { return physicalExtent().supportPointID(); }

void ZuShape::setSupportPointID(unsigned int id) { m_SupportPointID = id; }

unsigned int ZuShape::nearPointID(ZuShapeProximityData const& data) const {
  return useAABB() ? getAABBProcessor().nearPointID(*this, data) : physicalExtent().nearPointID(data);
}

bool ZuShape::useAABB() const { return m_UseAABB; }

void ZuShape::setUseAABB(bool const& use) { m_UseAABB = use; }

ZuAABBCollisionDetection const& ZuShape::getAABBProcessor() const {
  if (!m_AABBProcessor) m_AABBProcessor = std::make_unique<ZuAABBCollisionDetection>();
  return *m_AABBProcessor;
}

ZuAABBCollisionDetection& ZuShape::getAABBProcessor() {
  return const_cast<ZuAABBCollisionDetection&>(std::as_const(*this).getAABBProcessor());
}

void ZuShape::setAABBProcessor(ZuAABBCollisionDetection const& processor) { getAABBProcessor() = processor; }

void ZuShape::collectChildPointers(std::vector<ZuShape const*>& children) const { children.push_back(this); }

unsigned int ZuShape::numberOfShapes() const {
  unsigned int count = 0;
  for (ZuShape const* level = this; level != nullptr; level = level->lowerFidelityRepresentation()) ++count;
  return count;
}

void ZuShape::collisions(ZuSystemActiveState& activeState, ZuLinkStateCacheKey const& link,
                         ZuManipulatorSystem const& system, ZuCollisionQueryOptions const& options,
                         double const& margin, std::vector<ZuShapeCollisionEvent>& events) const {
  for (unsigned int manipulator = 0; manipulator < system.numberOfManipulators(); ++manipulator) {
    if (!options.includeOwnManipulator && manipulator == link.manipID()) continue;
    for (unsigned int otherLink = 0; otherLink < system.numberOfLinks(manipulator); ++otherLink) {
      if (manipulator == link.manipID() && otherLink == link.linkID()) continue;
      for (unsigned int shape = 0; shape < system.numberOfShapes(manipulator, otherLink); ++shape) {
        ZuShapeStateCacheKey const key(static_cast<int>(manipulator), static_cast<int>(otherLink),
                                       static_cast<int>(shape));
        ZuShape const* const other = activeState.shape(key);
        if (other == nullptr || other->higherFidelityRepresentation() != nullptr) continue;
        ZuShapeQueryData data;
        data.descriptor.key1 = link;
        data.descriptor.key2 = key;
        data.descriptor.bound = margin;
        if (!query(data, activeState, options.computePenetration, nullptr)) continue;
        if (!(data.result.distance <= margin)) continue;
        events.push_back(
            {levelKey(link, *this), key, data.result.distance, data.result.witness1, data.result.witness2});
        if (options.stopAtFirst) return;
      }
    }
  }
}

bool ZuShape::query(ZuShapeQueryData& data, ZuSystemActiveState& activeState, bool computePenetration,
                    KeyPairs* pairs) const {
  ZuShape const* const other = activeState.shape(data.descriptor.key2);
  ZuCoordinateSystemTransformation frame1;
  ZuCoordinateSystemTransformation frame2;
  if (other == nullptr || !activeState.linkFrame(data.descriptor.key1, frame1) ||
      !activeState.linkFrame(data.descriptor.key2, frame2)) {
    return false;
  }
  ZuShapeQueryResult result;
  result.distance = data.descriptor.bound;
  if (!distanceAndWitnessPointsQuery(*other, data.descriptor.key1, data.descriptor.key2, frame1.inverse() * frame2,
                                     computePenetration, activeState.proximityState(),
                                     data.descriptor.useBoundingVolumes, result.distance, result.witness1,
                                     result.witness2, pairs, nullptr)) {
    return false;
  }
  data.result = result;
  return true;
}

bool ZuShape::computePenetrationDistanceAndSupportPoints(ZuShape const& other,
                                                         ZuCoordinateSystemTransformation const& xform,
                                                         ZuVector& witness1, ZuVector& witness2, double& distance,
                                                         ZuVector& direction) const {
  auto const usedEngine = [this]() -> ZuGJK& { return engine(); };
  return runPair(usedEngine, *this, other, xform, true, witness1, witness2, distance, direction);
}

bool ZuShape::computePenetrationDistanceAndNearestPointsByAABBProcessor(ZuShape const& other,
                                                                        ZuCoordinateSystemTransformation const& xform,
                                                                        ZuShapeProximityData& data, ZuVector& witness1,
                                                                        ZuVector& witness2, double& distance) const {
  return getAABBProcessor().nearestPoints(*this, other, xform, &data, witness1, witness2, distance);
}

bool ZuShape::penetrationDistanceByAABBProcessor(ZuShape const& other, ZuVector& witness1, ZuVector& witness2,
                                                 double& distance) const {
  return getAABBProcessor().nearestPoints(*this, other, ZuCoordinateSystemTransformation::nullObject(), nullptr,
                                          witness1, witness2, distance);
}

void ZuShape::boundingVolumes(std::vector<ZuShape const*>& volumes, unsigned int level) const {
  ZuShape const* volume = m_LowerFidelityRepresentation.get();
  for (unsigned int i = 1; i < level && volume != nullptr; ++i) volume = volume->lowerFidelityRepresentation();
  if (volume != nullptr) volumes.push_back(volume);
}

double ZuShape::distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                           ZuShapeProximityDescriptor const& descriptor,
                                           ZuSystemShapeProximityState& state, ZuVector& witness1,
                                           ZuVector& witness2) const {
  double distance = 0.0;
  if (!gjkDistanceAndWitnessPointsQuery(other, descriptor.key1(), descriptor.key2(), xform, true, state, distance,
                                        witness1, witness2)) {
    ++theUnansweredPairs;
    print("ZuShape::distanceAndWitnessPointsTo-->GJK Failed\n");
  }
  return distance;
}

ZuCapsule const& ZuShape::capsuleBoundingVolume() const {
  return m_CapsuleBoundingVolume ? *m_CapsuleBoundingVolume : physicalExtent().capsuleBoundingVolume();
}

void ZuShape::setCapsuleBoundingVolume(ZuCapsule const& capsule) { keepCapsule(capsule); }

bool ZuShape::computePenetrationInformation(ZuShape const& other, ZuShapeStateCacheKey const& key1,
                                            ZuShapeStateCacheKey const& key2,
                                            ZuCoordinateSystemTransformation const& xform,
                                            ZuSystemShapeProximityState& state, double& distance) const {
  ZuShapeProximityData* const record = state.getProximityData(key1, key2);
  ZuVector witness1;
  ZuVector witness2;
  ZuVector direction;
  if (record != nullptr) record->getWitnessPoints(witness1, witness2);  // concentric balls have none of their own
  double found = distance;
  if (!computePenetrationDistanceAndSupportPoints(other, xform, witness1, witness2, found, direction) && found <= 0.0) {
    return false;
  }
  distance = found;
  bool const touching = distance <= 0.0;
  if (!touching || record == nullptr) return touching;
  record->storeResult(distance, direction, witness1, witness2, state.updateTime());
  recordContact(record, witness1, witness2);
  ZuVector const depth = witness1 - xform * witness2;
  record->setLineOfAction((depth != ZuVector() ? depth : direction).unitVector());
  record->setCollisionPointPrimaryObject1(witness1);
  record->setCollisionPointPrimaryObject2(witness2);
  record->setCollisionOccurred(true);
  return true;
}

std::unique_ptr<ZuXmlObject> ZuShape::emptyLikeThis() const {
  std::unique_ptr<ZuXmlObject> fresh = ZuBaseExpressionTreeElement::emptyLikeThis();
  auto& shape = static_cast<ZuShape&>(*fresh);
  shape.m_Link = m_Link;
  shape.m_StatedSystem = m_StatedSystem;
  shape.m_BVHLevel = m_BVHLevel;
  shape.m_ProximityDatabaseIndex = m_ProximityDatabaseIndex;
  return fresh;
}

void ZuShape::setContainer(ZuXmlBaseVariableCompoundType const* container) {
  for (ZuShape* level = this; level != nullptr; level = level->m_LowerFidelityRepresentation.get()) {
    level->ZuBaseExpressionTreeElement::setContainer(container);
  }
}

void ZuShape::registerComponents() {
  ZuBaseExpressionTreeElement::registerComponents();
  registerComponent(ZuGeom::ZuSurfacesToken, &m_Surfaces);
  registerComponent(ZuGeom::ZuDetailLevelToken, &m_DetailLevel);
  registerComponent(ZuGeom::ZuShapeSurfaceProperyToken, &m_ShapeSurfaceProperty);
  registerComponent(ZuGeom::ZuShapeIdentifierToken, &m_ShapeIdentifier);
  registerComponent(ZuGeom::ZuDeformableToken, &m_Deformable);
  registerComponent(ZuGeom::ZuCanDeformToken, &m_CanDeform);
  registerComponent(ZuGeom::ZuUseAABBToken, &m_UseAABB);
  registerComponent(ZuGeom::ZuBypassDynamicsToken, &m_BypassDynamics);
}

bool ZuShape::write(ZuXmlWriter& writer) const {
  if (!ZuBaseExpressionTreeElement::write(writer)) return false;
  if (!m_LowerFidelityRepresentation) return true;
  writer.open(m_LowerFidelityRepresentation->token());
  bool const written = !writer.failed() && m_LowerFidelityRepresentation->write(writer);
  writer.close();
  return written;
}

bool ZuShape::writeSchema(ZuXmlSchema& schema) const { return ZuBaseExpressionTreeElement::writeSchema(schema); }

void ZuShape::createSpecialDescriptorMap() {
  ZuBaseExpressionTreeElement::createSpecialDescriptorMap();
  if (container() == nullptr) return;
  for (auto const& [name, create] : container()->creatorMap()) addSpecialDescriptor(name, create);
}

bool ZuShape::readValueFromSpecialToken(ZuToken const& token, ZuXmlReader& reader) {
  if (container() == nullptr) {
    Zu::Print::instance().write(
        Zu::PRINT_WARNING,
        "ZuShape::readValueFromSpecialToken(): Unable to read token: %s on line %d due to NULL container pointer.\n",
        token.token().c_str(), static_cast<int>(reader.line()));
    return false;
  }
  std::unique_ptr<ZuXmlObject> object(container()->newObjectFromToken(token));
  auto* const shape = dynamic_cast<ZuShape*>(object.get());
  bool isRead = false;
  if (shape != nullptr) {
    shape->setContainer(container());
    shape->setHigherFidelityRepresentation(this);
    isRead = shape->read(reader);
    static_cast<void>(object.release());
  } else {
    reader.refuse("<%.64s> is no shape", token.token().c_str());
  }
  setLowerFidelityRepresentation(shape);
  return isRead;
}

void ZuShape::fillForTest() {
  m_DetailLevel = 2U;
  setSurfaceProperties("Top", ZuDataMap::defaultManipColor());
  m_ShapeSurfaceProperty = std::string("Top");
  m_ShapeIdentifier = std::string("sample <1>");
  m_Deformable = true;
  m_CanDeform = true;
  m_UseAABB = true;
  m_BypassDynamics = true;
}

std::uint64_t ZuShape::unansweredPairs() { return theUnansweredPairs; }

void ZuShape::printNotSupported(char const* operation, ZuShape const& other) const {
  ++theUnansweredPairs;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "%s from shapeID (%d) to shapeID (%d) not supported", operation,
                              static_cast<int>(type()), static_cast<int>(other.type()));
}

bool ZuShape::report(bool touching, ZuShapeProximityDescriptor const& descriptor, KeyPairs* pairs) {
  if (touching && pairs != nullptr) pairs->emplace_back(descriptor.key1(), descriptor.key2());
  return touching;
}

void ZuShape::geometryChanged() {
  m_PhysicalExtent.reset();
  m_CapsuleBoundingVolume.reset();
}

ZuCapsule const& ZuShape::capsuleAround() const {
  if (m_CapsuleBoundingVolume) return *m_CapsuleBoundingVolume;
  ZuCapsule around;
  around.fitFromShape(*this);
  return keepCapsule(around);
}

bool ZuShape::capsuleMeets(ZuLineSegment const& core, double radius, ZuShape const& meshOrSphere) {
  if (isMesh(meshOrSphere.type())) return meshOrSphere.distanceTo(core) - radius <= 0.0;
  ZuSphere const& sphere = as<ZuSphere>(meshOrSphere);
  double const reach = radius + sphere.radius();
  return core.distanceSquaredTo(sphere.center()) <= reach * reach;
}

ZuCapsule const& ZuShape::keepCapsule(ZuCapsule const& capsule) const {
  m_CapsuleBoundingVolume = std::make_unique<ZuCapsule>(capsule);
  return *m_CapsuleBoundingVolume;
}

void ZuShape::scaleChainBy(double factor) {
  if (m_LowerFidelityRepresentation) m_LowerFidelityRepresentation->scaleBy(factor);
}

void ZuShape::keepExtent(std::unique_ptr<ZuBasePhysicalExtent> extent) const { m_PhysicalExtent = std::move(extent); }

void ZuShape::dressExtent(ZuBasePhysicalExtent& extent) const {
  extent.setDetailLevel(detailLevel());
  extent.setIdentifier(identifier());
  extent.setDeformable(deformable());
  extent.setCanDeform(canDeform());
  extent.setBypassDynamics(bypassDynamics());
  extent.setStatedSystem(m_StatedSystem);
  extent.setBVHLevel(m_BVHLevel);
  if (m_BVHLevel == 0) {
    extent.setSurfaces(m_Surfaces);
    extent.setSurfaceProperty(surfaceProperty());
  } else {
    giveBoundingSurface(extent);
  }
}

ZuGJK& ZuShape::engine() const {
  if (!m_Engine) m_Engine = enginePrototype()->clone();
  return *m_Engine;
}

ZuGJK const& ZuShape::gjkEngine() const { return engine(); }

void ZuShape::setGjkEngine(ZuGJK const& engine) { m_Engine = engine.clone(); }

ZuGJK const& ZuShape::gjkEnginePrototype() { return *enginePrototype(); }

void ZuShape::setGjkEnginePrototype(ZuGJK const& engine) { enginePrototype() = engine.clone(); }
