// zuShapeProximityData.h - what is remembered of a pair of shapes. Group: proximity memory.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuXmlCompoundType.h"

class ZuGeneralMotion;

/// The record of one pair of shapes: the last distance, direction and witness points, with the times at which they were
/// stored, and what a simulation keeps of a contact. ZuSystemShapeProximityState holds one for each pair of a system.
///
/// Shape 1 and shape 2 are those of the query that stored the record. A setter stores its value and nothing else: it is
/// the storing code that sets the times (storeResult() does both). A time of m_theNever, the initial one, means that
/// nothing was stored. All other initial values are zero, false, the identity, rest, or the first enumerator.
///
/// Size: a record of a pair that never touched is 144 bytes without further memory. Everything from the line of action
/// to the penetration points, about 1 kB and 1 kB more for each shape with penetration points, is made by the first of
/// its setters that is called; until then its getters give the initial values.
///
/// Never persisted: it has no components, writes an empty element and reads to its default. Equality compares all
/// fields. A copy has its own contact data. Not thread-safe; const operations are safe from several threads.
class ZU_API ZuShapeProximityData : public ZuXmlClass<ZuShapeProximityData, ZuXmlCompoundType> {
 public:
  /// How friction acts in the contact.
  enum ZuFrictionMode {
    NO_FRICTION = 0,
    STATIC_FRICTION = 1,
    NEW_CONTACT = 2,  ///< the contact has just begun
    SLIDING_FRICTION = 3
  };
  /// The feature of a polyhedral shape that is nearest to the other shape.
  enum ZuClosestType { POINT = 0, LINE = 1, FACET = 2 };

  /// The most penetration points that are kept of each shape.
  static constexpr unsigned int m_thePenetrationPointBufferSize = 40;
  /// The time of what was never stored; no state ever counts that far.
  static constexpr std::uint64_t m_theNever = 18446744073709551615U;

  ZuShapeProximityData();
  ZuShapeProximityData(ZuShapeProximityData const& other);
  ZuShapeProximityData(ZuShapeProximityData&& other) noexcept;
  ZuShapeProximityData& operator=(ZuShapeProximityData const& other);
  ZuShapeProximityData& operator=(ZuShapeProximityData&& other) noexcept;
  ~ZuShapeProximityData() override;

  bool operator==(ZuShapeProximityData const& other) const;

  /// What a distance query stores, at the state's time: the distance and the witness points are current then, the
  /// record as a whole is not until its update time is set.
  void storeResult(double distance, ZuVector const& proximityVector, ZuVector const& witness1, ZuVector const& witness2,
                   std::uint64_t time) {
    m_Result = {distance, proximityVector, {witness1, witness2}, m_Result.updateTime, time, time};
  }
  /// What a distance query does at a contact that was not there before: both velocities to rest, the friction mode to
  /// NEW_CONTACT, no penetration points.
  void startContact();
  /// True once a setter of contact data was called.
  bool hasContactData() const { return m_Contact != nullptr; }

  /// The last signed distance, m.
  virtual double distance() const { return m_Result.distance; }
  virtual void setDistance(double const& distance) { m_Result.distance = distance; }
  /// The pair is in contact.
  virtual void setCollisionOccurred(bool occurred) { m_Flags.collisionOccurred = occurred; }
  virtual bool collisionOccurred() const { return m_Flags.collisionOccurred; }
  /// The last separating direction, with which the next iteration starts as it is; the zero vector starts it cold.
  virtual void setProximityVector(ZuVector const& direction) { m_Result.proximityVector = direction; }
  virtual ZuVector const& proximityVector() const { return m_Result.proximityVector; }
  /// The time at which the whole record was current.
  virtual void setUpdateTime(std::uint64_t const& time) { m_Result.updateTime = time; }
  virtual std::uint64_t updateTime() const { return m_Result.updateTime; }
  virtual void setDistanceUpdateTime(std::uint64_t const& time) { m_Result.distanceUpdateTime = time; }
  virtual std::uint64_t distanceUpdateTime() const { return m_Result.distanceUpdateTime; }

  // Contact data.

  /// The normal of the contact.
  virtual void setLineOfAction(ZuVector const& direction);
  virtual ZuVector const& lineOfAction() const;
  /// The contact point of object 1, or 2, in its primary frame.
  virtual void setCollisionPointPrimaryObject1(ZuVector const& p_1);
  virtual ZuVector const& collisionPointPrimaryObject1() const;
  virtual void setCollisionPointPrimaryObject2(ZuVector const& p_2);
  virtual ZuVector const& collisionPointPrimaryObject2() const;
  /// The contact points where static friction began.
  virtual void setStaticStartCollisionPointInPrimary1(ZuVector const& p_1);
  virtual ZuVector const& staticStartCollisionPointInPrimary1() const;
  virtual void setStaticStartCollisionPointInPrimary2(ZuVector const& p_2);
  virtual ZuVector const& staticStartCollisionPointInPrimary2() const;
  /// The relative transformation of object 1.
  virtual ZuCoordinateSystemTransformation const& relXformObject1() const;
  virtual void setRelXformObject1(ZuCoordinateSystemTransformation const& xform);
  /// The velocities at the previous step.
  virtual void setLastVelocityPrimaryObject1(ZuGeneralMotion const& velocity);
  virtual ZuGeneralMotion const& lastVelocityPrimaryObject1() const;
  virtual void setLastVelocityPrimaryObject2(ZuGeneralMotion const& velocity);
  virtual ZuGeneralMotion const& lastVelocityPrimaryObject2() const;
  /// The velocities at this step.
  virtual void setVelocityPrimaryObject1(ZuGeneralMotion const& velocity);
  virtual ZuGeneralMotion const& velocityPrimaryObject1() const;
  virtual void setVelocityPrimaryObject2(ZuGeneralMotion const& velocity);
  virtual ZuGeneralMotion const& velocityPrimaryObject2() const;
  /// The sense may be set in a const record: it is a note of whoever reads the record.
  virtual void setProximitySense(bool const& sense) const { m_Flags.proximitySense = sense; }
  virtual bool proximitySense() const { return m_Flags.proximitySense; }
  virtual void setFrictionMode(ZuFrictionMode const& mode) { m_Flags.frictionMode = static_cast<std::uint8_t>(mode); }
  virtual ZuFrictionMode frictionMode() const { return static_cast<ZuFrictionMode>(m_Flags.frictionMode); }
  /// The primary frames, in the system's frame, where static friction began.
  virtual ZuCoordinateSystemTransformation const& staticStartPrimaryFrame1InSystem() const;
  virtual void setStaticStartPrimaryFrame1InSystem(ZuCoordinateSystemTransformation const& frame);
  virtual ZuCoordinateSystemTransformation const& staticStartPrimaryFrame2InSystem() const;
  virtual void setStaticStartPrimaryFrame2InSystem(ZuCoordinateSystemTransformation const& frame);

  /// Takes over from the record of the previous step what a simulation continues with: the static start points and
  /// frames, the friction mode, the penetration points, and last's velocities as the last velocities.
  virtual void setDynamicSimulationDataFromLast(ZuShapeProximityData const& last);
  /// The same with the objects exchanged: what last had of object 1 becomes that of object 2, and the other way round.
  virtual void setAndInvertDynamicSimulationDataFromLast(ZuShapeProximityData const& last);

  /// Adds a penetration point of shape 1, or 2, in its primary frame; the oldest goes once there are 40.
  virtual void insertPenetrationPointShape1Primary(ZuVector const& p_1);
  virtual void insertPenetrationPointShape2Primary(ZuVector const& p_2);
  /// See penetrationPoint().
  virtual ZuVector const* getPenetrationPointShape1Primary(unsigned int const& i) const;
  virtual ZuVector const* getPenetrationPointShape2Primary(unsigned int const& i) const;
  /// The i-th most recent point of shape 1 or 2; any other shape prints a message and gives null.
  virtual ZuVector const* penetrationPointPrimary(unsigned int shape, unsigned int i) const;
  /// How many points there are of both shapes.
  virtual unsigned int numPenetrationPoints() const;
  virtual void resetPenetrationPointBuffers();

  /// Becomes a copy of the other record with the roles exchanged in the data of the previous step, by
  /// setAndInvertDynamicSimulationDataFromLast(other). All other fields, among them the collision points, the witness
  /// points and the velocities of this step, are copied as they are, not exchanged.
  virtual void copyDataWithDirectionalInversion(ZuShapeProximityData const& other);

  virtual ZuClosestType closestPoint1() const { return static_cast<ZuClosestType>(m_Flags.closestPoint1); }
  virtual void setClosestPoint1(ZuClosestType const& type) { m_Flags.closestPoint1 = static_cast<std::uint8_t>(type); }
  virtual ZuClosestType closestPoint2() const { return static_cast<ZuClosestType>(m_Flags.closestPoint2); }
  virtual void setClosestPoint2(ZuClosestType const& type) { m_Flags.closestPoint2 = static_cast<std::uint8_t>(type); }
  virtual bool firstCollisionOccurred() const { return m_Flags.firstCollisionOccurred; }
  virtual void setFirstCollisionOccurred(bool occurred) { m_Flags.firstCollisionOccurred = occurred; }

  /// The nearest points of the pair, each in the frame in which the query gave it.
  virtual void getWitnessPoints(ZuVector& witness1, ZuVector& witness2) const {
    witness1 = m_Result.witnesses[0];
    witness2 = m_Result.witnesses[1];
  }
  virtual void setWitnessPoints(ZuVector const& witness1, ZuVector const& witness2) {
    m_Result.witnesses[0] = witness1;
    m_Result.witnesses[1] = witness2;
  }
  virtual std::uint64_t witnessPointsUpdateTime() const { return m_Result.witnessPointsUpdateTime; }
  virtual void setWitnessPointsUpdateTime(std::uint64_t time) { m_Result.witnessPointsUpdateTime = time; }

  /// Puts a point into a ring: the index goes on by one, from 39 to 0; a ring of fewer than 40 points gets the point at
  /// its end, a full one in the place of the index. A new ring is empty with index -1. The point may be one of the
  /// ring.
  virtual void insertPenetrationPoint(ZuVector const& p, std::vector<ZuVector>& buffer, int& index) const;
  /// The i-th most recent point of the ring, 0 being the newest. Null when the ring is not full and has no such point.
  /// A full ring goes round: point 40 is point 0 again.
  virtual ZuVector const* penetrationPoint(unsigned int const& i, std::vector<ZuVector> const& buffer,
                                           int const& index) const;

  // See ZuXmlObject
  bool selfTest() const override;

  static ZuToken const& classToken();
  static ZuShapeProximityData testObject();

 private:
  struct Contact;
  /// What every query stores.
  struct Result {
    double distance = 0.0;
    ZuVector proximityVector;
    ZuVector witnesses[2];
    std::uint64_t updateTime = m_theNever;
    std::uint64_t distanceUpdateTime = m_theNever;
    std::uint64_t witnessPointsUpdateTime = m_theNever;

    bool operator==(Result const& other) const;
  };
  struct Flags {
    bool collisionOccurred = false;
    bool firstCollisionOccurred = false;
    mutable bool proximitySense = false;
    std::uint8_t frictionMode = NO_FRICTION;
    std::uint8_t closestPoint1 = POINT;
    std::uint8_t closestPoint2 = POINT;

    bool operator==(Flags const& other) const;
  };

  Contact const& contact() const;
  Contact& contactToChange();
  void takeOverFromLast(ZuShapeProximityData const& last, unsigned int sourceOf1, unsigned int sourceOf2);

  Result m_Result;
  Flags m_Flags;
  std::unique_ptr<Contact> m_Contact;
};

static_assert(sizeof(void*) != 8 || sizeof(ZuShapeProximityData) == 144, "there is one for each pair of shapes");
