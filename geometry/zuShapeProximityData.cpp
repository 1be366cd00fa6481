#include "geometry/zuShapeProximityData.h"

#include <algorithm>

#include "foundation/zuPrint.h"
#include "geometry/zuGeneralMotion.h"

/// What only pairs have that have touched; index 0 for object 1, index 1 for object 2.
struct ZuShapeProximityData::Contact {
  ZuVector lineOfAction;
  ZuVector collisionPoints[2];
  ZuVector staticStartPoints[2];
  ZuCoordinateSystemTransformation relXformObject1;
  ZuGeneralMotion lastVelocities[2];
  ZuGeneralMotion velocities[2];
  ZuCoordinateSystemTransformation staticStartFrames[2];
  std::vector<ZuVector> penetrationPoints[2];
  int penetrationIndices[2] = {m_theEmptyIndex, m_theEmptyIndex};

  /// The first insertion goes on to index 0, where it puts its point.
  static constexpr int m_theEmptyIndex = -1;

  bool operator==(Contact const& other) const {
    return lineOfAction == other.lineOfAction && relXformObject1 == other.relXformObject1 && sidesAreEqual(other, 0) &&
           sidesAreEqual(other, 1);
  }
  bool sidesAreEqual(Contact const& other, unsigned int side) const {
    return collisionPoints[side] == other.collisionPoints[side] &&
           staticStartPoints[side] == other.staticStartPoints[side] &&
           lastVelocities[side] == other.lastVelocities[side] && velocities[side] == other.velocities[side] &&
           staticStartFrames[side] == other.staticStartFrames[side] &&
           penetrationPoints[side] == other.penetrationPoints[side] &&
           penetrationIndices[side] == other.penetrationIndices[side];
  }
};

namespace {

/// The place in the ring of a count that may be negative.
std::size_t placeInRing(long long count) {
  long long const size = ZuShapeProximityData::m_thePenetrationPointBufferSize;
  return static_cast<std::size_t>((count % size + size) % size);
}

}  // namespace

ZuShapeProximityData::ZuShapeProximityData() = default;

ZuShapeProximityData::ZuShapeProximityData(ZuShapeProximityData const& other)
    : ZuXmlClass(other),
      m_Result(other.m_Result),
      m_Flags(other.m_Flags),
      m_Contact(other.m_Contact ? std::make_unique<Contact>(*other.m_Contact) : nullptr) {}

ZuShapeProximityData::ZuShapeProximityData(ZuShapeProximityData&& other) noexcept
    : ZuXmlClass(other), m_Result(other.m_Result), m_Flags(other.m_Flags), m_Contact(std::move(other.m_Contact)) {}

ZuShapeProximityData& ZuShapeProximityData::operator=(ZuShapeProximityData const& other) {
  if (&other == this) return *this;
  ZuXmlClass::operator=(other);
  m_Result = other.m_Result;
  m_Flags = other.m_Flags;
  if (!other.m_Contact) {
    m_Contact.reset();
  } else {
    contactToChange() = *other.m_Contact;
  }
  return *this;
}

ZuShapeProximityData& ZuShapeProximityData::operator=(ZuShapeProximityData&& other) noexcept {
  ZuXmlClass::operator=(other);
  m_Result = other.m_Result;
  m_Flags = other.m_Flags;
  m_Contact = std::move(other.m_Contact);
  return *this;
}

ZuShapeProximityData::~ZuShapeProximityData() = default;

bool ZuShapeProximityData::operator==(ZuShapeProximityData const& other) const {
  return m_Result == other.m_Result && m_Flags == other.m_Flags && contact() == other.contact();
}

bool ZuShapeProximityData::Result::operator==(Result const& other) const {
  return distance == other.distance && proximityVector == other.proximityVector && witnesses[0] == other.witnesses[0] &&
         witnesses[1] == other.witnesses[1] && updateTime == other.updateTime &&
         distanceUpdateTime == other.distanceUpdateTime && witnessPointsUpdateTime == other.witnessPointsUpdateTime;
}

bool ZuShapeProximityData::Flags::operator==(Flags const& other) const {
  return collisionOccurred == other.collisionOccurred && firstCollisionOccurred == other.firstCollisionOccurred &&
         proximitySense == other.proximitySense && frictionMode == other.frictionMode &&
         closestPoint1 == other.closestPoint1 && closestPoint2 == other.closestPoint2;
}

void ZuShapeProximityData::startContact() {
  setVelocityPrimaryObject1(ZuGeneralMotion::nullObject());
  setVelocityPrimaryObject2(ZuGeneralMotion::nullObject());
  setFrictionMode(NEW_CONTACT);
  resetPenetrationPointBuffers();
}

void ZuShapeProximityData::setLineOfAction(ZuVector const& direction) { contactToChange().lineOfAction = direction; }

ZuVector const& ZuShapeProximityData::lineOfAction() const { return contact().lineOfAction; }

void ZuShapeProximityData::setCollisionPointPrimaryObject1(ZuVector const& p_1) {
  contactToChange().collisionPoints[0] = p_1;
}

ZuVector const& ZuShapeProximityData::collisionPointPrimaryObject1() const { return contact().collisionPoints[0]; }

void ZuShapeProximityData::setCollisionPointPrimaryObject2(ZuVector const& p_2) {
  contactToChange().collisionPoints[1] = p_2;
}

ZuVector const& ZuShapeProximityData::collisionPointPrimaryObject2() const { return contact().collisionPoints[1]; }

void ZuShapeProximityData::setStaticStartCollisionPointInPrimary1(ZuVector const& p_1) {
  contactToChange().staticStartPoints[0] = p_1;
}

ZuVector const& ZuShapeProximityData::staticStartCollisionPointInPrimary1() const {
  return contact().staticStartPoints[0];
}

void ZuShapeProximityData::setStaticStartCollisionPointInPrimary2(ZuVector const& p_2) {
  contactToChange().staticStartPoints[1] = p_2;
}

ZuVector const& ZuShapeProximityData::staticStartCollisionPointInPrimary2() const {
  return contact().staticStartPoints[1];
}

ZuCoordinateSystemTransformation const& ZuShapeProximityData::relXformObject1() const {
  return contact().relXformObject1;
}

void ZuShapeProximityData::setRelXformObject1(ZuCoordinateSystemTransformation const& xform) {
  contactToChange().relXformObject1 = xform;
}

void ZuShapeProximityData::setLastVelocityPrimaryObject1(ZuGeneralMotion const& velocity) {
  contactToChange().lastVelocities[0] = velocity;
}

ZuGeneralMotion const& ZuShapeProximityData::lastVelocityPrimaryObject1() const { return contact().lastVelocities[0]; }

void ZuShapeProximityData::setLastVelocityPrimaryObject2(ZuGeneralMotion const& velocity) {
  contactToChange().lastVelocities[1] = velocity;
}

ZuGeneralMotion const& ZuShapeProximityData::lastVelocityPrimaryObject2() const { return contact().lastVelocities[1]; }

void ZuShapeProximityData::setVelocityPrimaryObject1(ZuGeneralMotion const& velocity) {
  contactToChange().velocities[0] = velocity;
}

ZuGeneralMotion const& ZuShapeProximityData::velocityPrimaryObject1() const { return contact().velocities[0]; }

void ZuShapeProximityData::setVelocityPrimaryObject2(ZuGeneralMotion const& velocity) {
  contactToChange().velocities[1] = velocity;
}

ZuGeneralMotion const& ZuShapeProximityData::velocityPrimaryObject2() const { return contact().velocities[1]; }

ZuCoordinateSystemTransformation const& ZuShapeProximityData::staticStartPrimaryFrame1InSystem() const {
  return contact().staticStartFrames[0];
}

void ZuShapeProximityData::setStaticStartPrimaryFrame1InSystem(ZuCoordinateSystemTransformation const& frame) {
  contactToChange().staticStartFrames[0] = frame;
}

ZuCoordinateSystemTransformation const& ZuShapeProximityData::staticStartPrimaryFrame2InSystem() const {
  return contact().staticStartFrames[1];
}

void ZuShapeProximityData::setStaticStartPrimaryFrame2InSystem(ZuCoordinateSystemTransformation const& frame) {
  contactToChange().staticStartFrames[1] = frame;
}

void ZuShapeProximityData::setDynamicSimulationDataFromLast(ZuShapeProximityData const& last) {
  takeOverFromLast(last, 0, 1);
}

void ZuShapeProximityData::setAndInvertDynamicSimulationDataFromLast(ZuShapeProximityData const& last) {
  takeOverFromLast(last, 1, 0);
}

void ZuShapeProximityData::takeOverFromLast(ZuShapeProximityData const& last, unsigned int sourceOf1,
                                            unsigned int sourceOf2) {
  if (&last == this) return takeOverFromLast(ZuShapeProximityData(last), sourceOf1, sourceOf2);
  m_Flags.frictionMode = last.m_Flags.frictionMode;
  if (!m_Contact && !last.m_Contact) return;
  Contact const& source = last.contact();
  Contact& target = contactToChange();
  for (unsigned int side : {0U, 1U}) {
    unsigned int const sourceSide = side == 0 ? sourceOf1 : sourceOf2;
    target.staticStartPoints[side] = source.staticStartPoints[sourceSide];
    target.staticStartFrames[side] = source.staticStartFrames[sourceSide];
    target.lastVelocities[side] = source.velocities[sourceSide];
    target.penetrationPoints[side] = source.penetrationPoints[sourceSide];
    target.penetrationIndices[side] = source.penetrationIndices[sourceSide];
  }
}

void ZuShapeProximityData::insertPenetrationPointShape1Primary(ZuVector const& p_1) {
  Contact& contact = contactToChange();
  insertPenetrationPoint(p_1, contact.penetrationPoints[0], contact.penetrationIndices[0]);
}

void ZuShapeProximityData::insertPenetrationPointShape2Primary(ZuVector const& p_2) {
  Contact& contact = contactToChange();
  insertPenetrationPoint(p_2, contact.penetrationPoints[1], contact.penetrationIndices[1]);
}

ZuVector const* ZuShapeProximityData::getPenetrationPointShape1Primary(unsigned int const& i) const {
  return penetrationPoint(i, contact().penetrationPoints[0], contact().penetrationIndices[0]);
}

ZuVector const* ZuShapeProximityData::getPenetrationPointShape2Primary(unsigned int const& i) const {
  return penetrationPoint(i, contact().penetrationPoints[1], contact().penetrationIndices[1]);
}

ZuVector const* ZuShapeProximityData::penetrationPointPrimary(unsigned int shape, unsigned int i) const {
  if (shape == 1) return getPenetrationPointShape1Primary(i);
  if (shape == 2) return getPenetrationPointShape2Primary(i);
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "ZuShapeProximityData::penetrationPointPrimary-->no shape %u, but 1 and 2", shape);
  return nullptr;
}

unsigned int ZuShapeProximityData::numPenetrationPoints() const {
  auto const& points = contact().penetrationPoints;
  return static_cast<unsigned int>(std::min(points[0].size(), points[1].size()));
}

void ZuShapeProximityData::resetPenetrationPointBuffers() {
  if (!m_Contact) return;
  for (unsigned int side : {0U, 1U}) {
    m_Contact->penetrationPoints[side].clear();
    m_Contact->penetrationIndices[side] = Contact::m_theEmptyIndex;
  }
}

void ZuShapeProximityData::copyDataWithDirectionalInversion(ZuShapeProximityData const& other) {
  *this = other;
  setAndInvertDynamicSimulationDataFromLast(other);
}

void ZuShapeProximityData::insertPenetrationPoint(ZuVector const& p, std::vector<ZuVector>& buffer, int& index) const {
  ZuVector const point = p;
  std::size_t const place = placeInRing(static_cast<long long>(index) + 1);
  index = static_cast<int>(place);
  if (buffer.size() >= m_thePenetrationPointBufferSize) {
    buffer[place] = point;
    return;
  }
  buffer.reserve(m_thePenetrationPointBufferSize);
  buffer.push_back(point);
}

ZuVector const* ZuShapeProximityData::penetrationPoint(unsigned int const& i, std::vector<ZuVector> const& buffer,
                                                       int const& index) const {
  long long const place = static_cast<long long>(index) - i;
  if (buffer.size() >= m_thePenetrationPointBufferSize) return &buffer[placeInRing(place)];
  return place >= 0 && place < static_cast<long long>(buffer.size()) ? &buffer[static_cast<std::size_t>(place)]
                                                                     : nullptr;
}

bool ZuShapeProximityData::selfTest() const {
  return ZuShapeProximityData(*this) == *this && !(testObject() == ZuShapeProximityData());
}

ZuToken const& ZuShapeProximityData::classToken() {
  static ZuToken const theToken("shapeProximityData");
  return theToken;
}

ZuShapeProximityData ZuShapeProximityData::testObject() {
  ZuShapeProximityData sample;
  sample.storeResult(-0.25, ZuVector(0.0, 0.0, 0.25), ZuVector(1.0, 2.0, 3.25), ZuVector(1.0, 2.0, 3.0), 7);
  sample.setUpdateTime(7);
  sample.startContact();
  sample.insertPenetrationPointShape1Primary(ZuVector(1.0, 2.0, 3.25));
  sample.insertPenetrationPointShape2Primary(ZuVector(1.0, 2.0, 3.0));
  return sample;
}

ZuShapeProximityData::Contact const& ZuShapeProximityData::contact() const {
  static Contact const theNone;
  return m_Contact ? *m_Contact : theNone;
}

ZuShapeProximityData::Contact& ZuShapeProximityData::contactToChange() {
  if (!m_Contact) m_Contact = std::make_unique<Contact>();
  return *m_Contact;
}
