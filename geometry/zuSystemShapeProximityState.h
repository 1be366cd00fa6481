// zuSystemShapeProximityState.h - the memory of all pairs of shapes of a system. Group: proximity memory.
#pragma once

#include "geometry/zuBaseShapeDataCache.h"
#include "geometry/zuShapeProximityData.h"

extern template class ZuBaseShapeDataCache<ZuShapeProximityData>;

/// One ZuShapeProximityData for each pair of shapes of a system, and the time by which their results are current.
///
/// A result is current when the record's stamp of it equals the state's update time: a cycle starts with
/// invalidateAll(), or with setUpdateTime() to a time that was not used before, which makes every record stale without
/// touching any. setDistance() and setWitnessPoints() stamp what they store. Nothing but setValid() stamps the record
/// as a whole: queries answer from memory only where isValid(), so a caller that asks a pair again in the same cycle
/// calls setValid() after the first query, having seen that the result is what it takes to be valid.
///
/// The operations on a pair look its record up each time; code that needs several of them takes the record once, by
/// getProximityData(), and works on that. For a pair without record, every setter does nothing, every getter reads
/// m_theNullShapeData, and nothing is ever valid.
///
/// Shape 1 of a record is the shape of the first key in the call that stored it. Nothing is exchanged on the way back:
/// for shapes of different manipulators, asking (b, a) after (a, b) finds the same record, gives a's witness point
/// first and the direction of (a, b), and puts b's penetration points into a's ring. Ask a pair in one order.
///
/// See ZuBaseShapeDataCache for the order of keys, costs and threads.
/// Memory: 144 bytes for each record that never touched; 161 bytes for each pair of shapes in a system of ten
/// manipulators with ten links of one shape, 159 with ten links of ten shapes.
class ZU_API ZuSystemShapeProximityState
    : public ZuXmlClass<ZuSystemShapeProximityState, ZuBaseShapeDataCache<ZuShapeProximityData>> {
 public:
  using Key = ZuShapeStateCacheKey;

  /// What is read of a pair without record: a default record, with distance 0 and a zero proximity vector.
  static ZuShapeProximityData const m_theNullShapeData;

  /// Sizes the memory to the manipulators, links and shapes of the system; the state is initialized then. Records of
  /// pairs that the system still has keep their values; where the system has shrunk, the other records are given up.
  /// False, with a message, when there is no memory: nothing changes.
  virtual bool resizeDatabaseToSystem(ZuManipulatorSystem const& system);

  // What begins with allocateAnd first grows the memory to the system, if need be, and gives up nothing.

  virtual bool allocateAndSetProximityVector(Key const& key1, Key const& key2, ZuManipulatorSystem const& system,
                                             ZuVector const& direction);
  virtual ZuVector const& allocateAndGetProximityVector(Key const& key1, Key const& key2,
                                                        ZuManipulatorSystem const& system) const;
  /// The last separating direction of the pair, with which its next iteration starts.
  virtual void setProximityVector(Key const& key1, Key const& key2, ZuVector const& direction);
  virtual ZuVector const& getProximityVector(Key const& key1, Key const& key2) const;
  /// Stores the distance, m, as current; false when the pair has no record.
  virtual bool setDistance(Key const& key1, Key const& key2, double const& distance);
  virtual double getDistance(Key const& key1, Key const& key2) const;
  /// As setDistance().
  virtual bool allocateAndSetProximityDistance(Key const& key1, Key const& key2, ZuManipulatorSystem const& system,
                                               double const& distance);
  virtual double allocateAndGetProximityDistance(Key const& key1, Key const& key2,
                                                 ZuManipulatorSystem const& system) const;

  /// Adds 1 to the update time: no result is current any more.
  virtual void invalidateAll();
  /// Whether distance and witness points may be taken from memory: the record was stamped by setValid() at this time.
  virtual bool isValid(Key const& key1, Key const& key2) const;
  virtual bool isDistanceValid(Key const& key1, Key const& key2) const;
  /// The largest number is the time of what was never stored: it is refused with a message, and invalidateAll() passes
  /// it over.
  virtual void setUpdateTime(std::uint64_t const& time);
  /// 0 at first.
  virtual std::uint64_t updateTime() const;
  /// Stamps the record, and its distance, with the update time.
  virtual void setValid(Key const& key1, Key const& key2);

  virtual bool allocateAndSetProximityData(Key const& key1, Key const& key2, ZuManipulatorSystem const& system,
                                           ZuShapeProximityData const& data);
  virtual ZuShapeProximityData const* allocateAndGetProximityData(Key const& key1, Key const& key2,
                                                                  ZuManipulatorSystem const& system) const;
  virtual ZuShapeProximityData* allocateAndGetProximityData(Key const& key1, Key const& key2,
                                                            ZuManipulatorSystem const& system);
  /// Stores a copy; false when the pair has no record.
  virtual bool setProximityData(Key const& key1, Key const& key2, ZuShapeProximityData const& data);
  /// The record of the pair, or null.
  virtual ZuShapeProximityData const* getProximityData(Key const& key1, Key const& key2) const;
  virtual ZuShapeProximityData* getProximityData(Key const& key1, Key const& key2);

  // See the operations of ZuShapeProximityData.

  virtual void insertPenetrationPointShape1Primary(Key const& key1, Key const& key2, ZuVector const& p_1);
  virtual void insertPenetrationPointShape2Primary(Key const& key1, Key const& key2, ZuVector const& p_2);
  virtual void setFrictionMode(Key const& key1, Key const& key2, ZuShapeProximityData::ZuFrictionMode const& mode);
  virtual bool collisionOccured(Key const& key1, Key const& key2) const;
  virtual void setCollisionOccured(Key const& key1, Key const& key2, bool occurred);
  virtual void resetPenetrationPointBuffers(Key const& key1, Key const& key2);

  virtual void setIsInitialized(bool const& isInitialized);
  /// False until the memory was sized to a system, or the flag set; queries refuse to work then.
  virtual bool isInitialized() const;

  /// Stores the points as current; not exchanged for (key2, key1).
  virtual void setWitnessPoints(Key const& key1, Key const& key2, ZuVector const& witness1, ZuVector const& witness2);
  /// The points are zero vectors for a pair without record.
  virtual void getWitnessPoints(Key const& key1, Key const& key2, ZuVector& witness1, ZuVector& witness2) const;
  virtual bool areWitnessPointsValid(Key const& key1, Key const& key2) const;

  bool operator==(ZuSystemShapeProximityState const& other) const {
    return ZuBaseShapeDataCache::operator==(other) && m_UpdateTime == other.m_UpdateTime;
  }

  // See ZuXmlObject
  bool selfTest() const override;

  static ZuToken const& classToken();
  /// Two shapes on one link, of which one pair has touched.
  static ZuSystemShapeProximityState testObject();

 private:
  std::uint64_t m_UpdateTime = 0;
};
