#include "geometry/zuSystemShapeProximityState.h"

#include "foundation/zuPrint.h"

template class ZuBaseShapeDataCache<ZuShapeProximityData>;

ZuShapeProximityData const ZuSystemShapeProximityState::m_theNullShapeData;

namespace {

/// The system of the test object.
class TwoShapes : public ZuManipulatorSystem {
 public:
  unsigned int numberOfManipulators() const override { return 1; }
  unsigned int numberOfLinks(unsigned int) const override { return 1; }
  unsigned int numberOfShapes(unsigned int, unsigned int link) const override { return link == 0 ? 2 : 0; }
};

}  // namespace

bool ZuSystemShapeProximityState::resizeDatabaseToSystem(ZuManipulatorSystem const& system) {
  return fitTo(system, false);
}

bool ZuSystemShapeProximityState::allocateAndSetProximityVector(Key const& key1, Key const& key2,
                                                                ZuManipulatorSystem const& system,
                                                                ZuVector const& direction) {
  ZuShapeProximityData* const record = allocateAndGetData(key1, key2, system);
  if (record != nullptr) record->setProximityVector(direction);
  return record != nullptr;
}

ZuVector const& ZuSystemShapeProximityState::allocateAndGetProximityVector(Key const& key1, Key const& key2,
                                                                           ZuManipulatorSystem const& system) const {
  allocateAndGetData(key1, key2, system);
  return getProximityVector(key1, key2);
}

void ZuSystemShapeProximityState::setProximityVector(Key const& key1, Key const& key2, ZuVector const& direction) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record != nullptr) record->setProximityVector(direction);
}

ZuVector const& ZuSystemShapeProximityState::getProximityVector(Key const& key1, Key const& key2) const {
  return datum(key1, key2, m_theNullShapeData).proximityVector();
}

bool ZuSystemShapeProximityState::setDistance(Key const& key1, Key const& key2, double const& distance) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record == nullptr) return false;
  record->setDistance(distance);
  record->setDistanceUpdateTime(m_UpdateTime);
  return true;
}

double ZuSystemShapeProximityState::getDistance(Key const& key1, Key const& key2) const {
  return datum(key1, key2, m_theNullShapeData).distance();
}

bool ZuSystemShapeProximityState::allocateAndSetProximityDistance(Key const& key1, Key const& key2,
                                                                  ZuManipulatorSystem const& system,
                                                                  double const& distance) {
  allocateAndGetData(key1, key2, system);
  return setDistance(key1, key2, distance);
}

double ZuSystemShapeProximityState::allocateAndGetProximityDistance(Key const& key1, Key const& key2,
                                                                    ZuManipulatorSystem const& system) const {
  allocateAndGetData(key1, key2, system);
  return getDistance(key1, key2);
}

void ZuSystemShapeProximityState::invalidateAll() {
  if (++m_UpdateTime == ZuShapeProximityData::m_theNever) m_UpdateTime = 0;
}

bool ZuSystemShapeProximityState::isValid(Key const& key1, Key const& key2) const {
  ZuShapeProximityData const* const record = getData(key1, key2);
  return record != nullptr && record->updateTime() == m_UpdateTime;
}

bool ZuSystemShapeProximityState::isDistanceValid(Key const& key1, Key const& key2) const {
  ZuShapeProximityData const* const record = getData(key1, key2);
  return record != nullptr && record->distanceUpdateTime() == m_UpdateTime;
}

void ZuSystemShapeProximityState::setUpdateTime(std::uint64_t const& time) {
  if (time == ZuShapeProximityData::m_theNever) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuSystemShapeProximityState::setUpdateTime-->%llu is no time",
                                static_cast<unsigned long long>(time));
    return;
  }
  m_UpdateTime = time;
}

std::uint64_t ZuSystemShapeProximityState::updateTime() const { return m_UpdateTime; }

void ZuSystemShapeProximityState::setValid(Key const& key1, Key const& key2) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record == nullptr) return;
  record->setUpdateTime(m_UpdateTime);
  record->setDistanceUpdateTime(m_UpdateTime);
}

bool ZuSystemShapeProximityState::allocateAndSetProximityData(Key const& key1, Key const& key2,
                                                              ZuManipulatorSystem const& system,
                                                              ZuShapeProximityData const& data) {
  return allocateAndSetData(key1, key2, system, data);
}

ZuShapeProximityData const* ZuSystemShapeProximityState::allocateAndGetProximityData(
    Key const& key1, Key const& key2, ZuManipulatorSystem const& system) const {
  return allocateAndGetData(key1, key2, system);
}

ZuShapeProximityData* ZuSystemShapeProximityState::allocateAndGetProximityData(Key const& key1, Key const& key2,
                                                                               ZuManipulatorSystem const& system) {
  return allocateAndGetData(key1, key2, system);
}

bool ZuSystemShapeProximityState::setProximityData(Key const& key1, Key const& key2, ZuShapeProximityData const& data) {
  return setData(key1, key2, data);
}

ZuShapeProximityData const* ZuSystemShapeProximityState::getProximityData(Key const& key1, Key const& key2) const {
  return getData(key1, key2);
}

ZuShapeProximityData* ZuSystemShapeProximityState::getProximityData(Key const& key1, Key const& key2) {
  return getData(key1, key2);
}

void ZuSystemShapeProximityState::insertPenetrationPointShape1Primary(Key const& key1, Key const& key2,
                                                                      ZuVector const& p_1) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record != nullptr) record->insertPenetrationPointShape1Primary(p_1);
}

void ZuSystemShapeProximityState::insertPenetrationPointShape2Primary(Key const& key1, Key const& key2,
                                                                      ZuVector const& p_2) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record != nullptr) record->insertPenetrationPointShape2Primary(p_2);
}

void ZuSystemShapeProximityState::setFrictionMode(Key const& key1, Key const& key2,
                                                  ZuShapeProximityData::ZuFrictionMode const& mode) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record != nullptr) record->setFrictionMode(mode);
}

bool ZuSystemShapeProximityState::collisionOccured(Key const& key1, Key const& key2) const {
  return datum(key1, key2, m_theNullShapeData).collisionOccurred();
}

void ZuSystemShapeProximityState::setCollisionOccured(Key const& key1, Key const& key2, bool occurred) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record != nullptr) record->setCollisionOccurred(occurred);
}

void ZuSystemShapeProximityState::resetPenetrationPointBuffers(Key const& key1, Key const& key2) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record != nullptr) record->resetPenetrationPointBuffers();
}

void ZuSystemShapeProximityState::setIsInitialized(bool const& isInitialized) { m_IsBuilt = isInitialized; }

bool ZuSystemShapeProximityState::isInitialized() const { return m_IsBuilt; }

void ZuSystemShapeProximityState::setWitnessPoints(Key const& key1, Key const& key2, ZuVector const& witness1,
                                                   ZuVector const& witness2) {
  ZuShapeProximityData* const record = getData(key1, key2);
  if (record == nullptr) return;
  record->setWitnessPoints(witness1, witness2);
  record->setWitnessPointsUpdateTime(m_UpdateTime);
}

void ZuSystemShapeProximityState::getWitnessPoints(Key const& key1, Key const& key2, ZuVector& witness1,
                                                   ZuVector& witness2) const {
  datum(key1, key2, m_theNullShapeData).getWitnessPoints(witness1, witness2);
}

bool ZuSystemShapeProximityState::areWitnessPointsValid(Key const& key1, Key const& key2) const {
  ZuShapeProximityData const* const record = getData(key1, key2);
  return record != nullptr && record->witnessPointsUpdateTime() == m_UpdateTime;
}

bool ZuSystemShapeProximityState::selfTest() const {
  return ZuSystemShapeProximityState(*this) == *this && !(testObject() == ZuSystemShapeProximityState());
}

ZuToken const& ZuSystemShapeProximityState::classToken() {
  static ZuToken const theToken("systemShapeProximityState");
  return theToken;
}

ZuSystemShapeProximityState ZuSystemShapeProximityState::testObject() {
  ZuSystemShapeProximityState sample;
  sample.setUpdateTime(7);
  sample.allocateAndSetProximityData({0, 0, 0}, {0, 0, 1}, TwoShapes(), ZuShapeProximityData::testObject());
  return sample;
}
