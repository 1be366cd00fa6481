#include <map>
#include <tuple>

#include "geometry/zuGeneralMotion.h"
#include "tests/allocationCounter.h"
#include "tests/proximityFixture.h"

namespace {

using Key = ZuShapeStateCacheKey;
using Data = ZuShapeProximityData;
using State = ZuSystemShapeProximityState;
using Motion = ZuGeneralMotion;
using Transformation = ZuCoordinateSystemTransformation;
using Numbers = std::vector<double>;

int constexpr theReserved = -2;

/// A system given by its counts: shapes[manipulator][slot], slot 0 being that of the reserved link.
struct CountedSystem : ZuManipulatorSystem {
  std::vector<std::vector<unsigned int>> shapes;

  CountedSystem(std::vector<std::vector<unsigned int>> counts) : shapes(std::move(counts)) {}  // NOLINT
  unsigned int numberOfManipulators() const override { return static_cast<unsigned int>(shapes.size()); }
  unsigned int numberOfLinks(unsigned int manipulator) const override {
    return static_cast<unsigned int>(shapes.at(manipulator).size() - 1);
  }
  unsigned int numberOfShapes(unsigned int manipulator, unsigned int link) const override {
    return shapes.at(manipulator).at(link == m_theReservedLink ? 0 : link + 1);
  }
  std::vector<Key> keys() const {
    std::vector<Key> all;
    int manipulator = -1;
    for (auto const& slots : shapes) {
      int link = theReserved;
      ++manipulator;
      for (unsigned int const count : slots) {
        for (unsigned int id = 0; id < count; ++id) all.emplace_back(manipulator, link, static_cast<int>(id));
        link = std::max(link + 1, 0);
      }
    }
    return all;
  }
};

/// Distances by the numbers of both keys, that of the greater manipulator first.
using Model = std::map<std::tuple<unsigned, unsigned, unsigned, unsigned, unsigned, unsigned>, double>;
Model::key_type orderedPair(Key const& a, Key const& b) {
  auto const& [first, second] = a.manipID() < b.manipID() ? std::tie(b, a) : std::tie(a, b);
  return {first.manipID(), first.linkID(), first.shapeID(), second.manipID(), second.linkID(), second.shapeID()};
}

/// Every pair of the system has exactly the distance of the model, 0 where the model has none; the rest of the model
/// is dropped.
void compareWithModel(State& state, CountedSystem const& system, Model& model) {
  Model found;
  for (Key const& a : system.keys()) {
    for (Key const& b : system.keys()) {
      auto const entry = model.find(orderedPair(a, b));
      EXPECT_NE(state.getProximityData(a, b), nullptr);
      EXPECT_EQ(state.getDistance(a, b), entry == model.end() ? 0.0 : entry->second);
      if (entry != model.end()) found.insert(*entry);
    }
  }
  model = found;
}

/// Every field different from its default and from every other field of its type.
Data distinctData() {
  Data data;
  data.storeResult(1.0, {0, 0, 1}, {0, 0, 2}, {0, 0, 3}, 4);
  data.setUpdateTime(5);
  data.setDistanceUpdateTime(6);
  data.setCollisionOccurred(true);
  data.setFirstCollisionOccurred(true);
  data.setProximitySense(true);
  data.setFrictionMode(Data::STATIC_FRICTION);
  data.setClosestPoint1(Data::LINE);
  data.setClosestPoint2(Data::FACET);
  data.setLineOfAction({1, 0, 0});
  data.setCollisionPointPrimaryObject1({2, 0, 0});
  data.setCollisionPointPrimaryObject2({3, 0, 0});
  data.setStaticStartCollisionPointInPrimary1({4, 0, 0});
  data.setStaticStartCollisionPointInPrimary2({5, 0, 0});
  data.setRelXformObject1(Transformation({6, 0, 0}));
  data.setLastVelocityPrimaryObject1(Motion({7, 0, 0}, {}));
  data.setLastVelocityPrimaryObject2(Motion({8, 0, 0}, {}));
  data.setVelocityPrimaryObject1(Motion({9, 0, 0}, {}));
  data.setVelocityPrimaryObject2(Motion({10, 0, 0}, {}));
  data.setStaticStartPrimaryFrame1InSystem(Transformation({11, 0, 0}));
  data.setStaticStartPrimaryFrame2InSystem(Transformation({12, 0, 0}));
  data.insertPenetrationPointShape1Primary({13, 0, 0});
  for (double x : {14, 15}) data.insertPenetrationPointShape2Primary({x, 0, 0});
  return data;
}

/// The numbers that distinctData() gave the fields from the line of action on; 1 to 15.
Numbers contactNumbers(Data const& d) {
  auto const newest = [](ZuVector const* p) { return p == nullptr ? 0.0 : p->x(); };
  auto const list = [](auto... numbers) { return Numbers{numbers...}; };
  return list(d.lineOfAction().x(), d.collisionPointPrimaryObject1().x(), d.collisionPointPrimaryObject2().x(),
              d.staticStartCollisionPointInPrimary1().x(), d.staticStartCollisionPointInPrimary2().x(),
              d.relXformObject1().translation().x(), d.lastVelocityPrimaryObject1()[0],
              d.lastVelocityPrimaryObject2()[0], d.velocityPrimaryObject1()[0], d.velocityPrimaryObject2()[0],
              d.staticStartPrimaryFrame1InSystem().translation().x(),
              d.staticStartPrimaryFrame2InSystem().translation().x(), newest(d.getPenetrationPointShape1Primary(0)),
              newest(d.getPenetrationPointShape2Primary(1)), newest(d.getPenetrationPointShape2Primary(0)));
}

}  // namespace

TEST(CacheKey, IdsDefaultToNoneAndAllCountInEquality) {
  Key const key(1, 2, 3), none;
  for (Key const& other : {Key(0, 2, 3), Key(1, 0, 3), Key(1, 2, 0), Key(ZuLinkStateCacheKey(1, 2)), none})
    EXPECT_NE(key, other);
  EXPECT_EQ(none.manipID() & none.linkID() & none.shapeID(), 4294967295U);
  EXPECT_EQ(Key(ZuLinkStateCacheKey(ZuManipulatorStateCacheKey(7))), Key(7, -1, -1));
  EXPECT_TRUE(none == Key::invalidKey() && none == Key::nullObject() && ZuShapeProximityDescriptor().key1() == none);
}

TEST(ProximityData, EveryFieldIsStoredInItsOwnPlaceAndCopiedDeep) {
  Data const data = distinctData();
  EXPECT_EQ(contactNumbers(data), (Numbers{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
  ZuVector w1, w2;
  data.getWitnessPoints(w1, w2);
  EXPECT_EQ(std::make_tuple(data.distance(), data.proximityVector().z(), w1.z(), w2.z(), data.witnessPointsUpdateTime(),
                            data.updateTime(), data.distanceUpdateTime()),
            std::make_tuple(1.0, 1.0, 2.0, 3.0, 4U, 5U, 6U));
  EXPECT_TRUE(data.collisionOccurred() && data.firstCollisionOccurred() && data.proximitySense());
  EXPECT_EQ(std::make_tuple(data.frictionMode(), data.closestPoint1(), data.closestPoint2()),
            std::make_tuple(Data::STATIC_FRICTION, Data::LINE, Data::FACET));
  Data copy(data), assigned = Data::testObject();
  assigned = data;
  EXPECT_TRUE(copy == data && assigned == data && data.selfTest());
  copy.insertPenetrationPointShape1Primary({1, 1, 1});
  EXPECT_TRUE(!(copy == data) && contactNumbers(data)[12] == 13.0);
  assigned = Data();
  EXPECT_FALSE(assigned.hasContactData());
  assigned.setLineOfAction({});
  EXPECT_TRUE(assigned.hasContactData() && assigned == Data()) << "contact data of initial values";
  copy = data;
  copy.startContact();
  EXPECT_EQ(contactNumbers(copy), (Numbers{1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 11, 12, 0, 0, 0})) << "at rest";
  EXPECT_EQ(copy.frictionMode(), 2);
}

TEST(ProximityData, APairThatNeverTouchedAllocatesNothingAndItsRecordIsSmall) {
  contactNumbers(Data());  // whatever is made once per process is made here
  AllocationCounter const counter;
  Data data;
  data.storeResult(1.0, {0, 0, 1}, {0, 0, 2}, {0, 0, 3}, 4);
  data.setCollisionOccurred(false);
  data.setFrictionMode(Data::NO_FRICTION);
  data.resetPenetrationPointBuffers();
  data.setDynamicSimulationDataFromLast(Data());
  EXPECT_TRUE(data.lineOfAction() == ZuVector() && data.velocityPrimaryObject1() == Motion::nullObject());
  EXPECT_TRUE(data.numPenetrationPoints() == 0U && data.penetrationPointPrimary(2, 0) == nullptr);
  EXPECT_EQ(counter.count(), 0U);
  // Manipulators, links of each, shapes of a link.
  for (auto const& [m, l, n] : {std::make_tuple(10U, 10U, 1U), {10U, 10U, 10U}, {2U, 7U, 7U}, {100U, 1U, 1U}}) {
    CountedSystem const system(std::vector<std::vector<unsigned int>>(m, std::vector<unsigned int>(l, n)));
    double const shapes = m * l * n;
    AllocationCounter const ofSystem;
    State state;
    ASSERT_TRUE(state.resizeDatabaseToSystem(system));
    EXPECT_LE(static_cast<double>(ofSystem.bytes()) / (shapes * (shapes - 1.0) / 2.0), 400.0) << shapes;
  }
}

TEST(ProximityData, TheStepBeforeIsTakenOverStraightOrExchanged) {
  Data const last = distinctData();
  Data straight, exchanged, itself(last), copied = Data::testObject();
  straight.setDynamicSimulationDataFromLast(last);
  exchanged.setAndInvertDynamicSimulationDataFromLast(last);
  itself.setAndInvertDynamicSimulationDataFromLast(itself);
  copied.copyDataWithDirectionalInversion(last);
  EXPECT_EQ(contactNumbers(straight), (Numbers{0, 0, 0, 4, 5, 0, 9, 10, 0, 0, 11, 12, 13, 14, 15}));
  EXPECT_EQ(contactNumbers(exchanged), (Numbers{0, 0, 0, 5, 4, 0, 10, 9, 0, 0, 12, 11, 15, 0, 13}));
  EXPECT_EQ(contactNumbers(copied), (Numbers{1, 2, 3, 5, 4, 6, 10, 9, 9, 10, 12, 11, 15, 0, 13}));
  EXPECT_EQ(itself, copied);
  EXPECT_TRUE(straight.frictionMode() == Data::STATIC_FRICTION && exchanged.frictionMode() == Data::STATIC_FRICTION);
  exchanged.insertPenetrationPointShape1Primary({16, 0, 0});
  EXPECT_EQ(exchanged.getPenetrationPointShape1Primary(2)->x(), 14.0) << "the indices go with their rings";
}

TEST(ProximityData, TheRingKeepsTheLastFortyPoints) {
  Data data;
  for (int i = 0; i < 130; ++i) {
    unsigned int const before = static_cast<unsigned int>(std::min(i, 40)), count = std::min(before + 1, 40U);
    data.insertPenetrationPointShape1Primary({static_cast<double>(i), 0, 0});
    EXPECT_EQ(data.numPenetrationPoints(), before) << "the points of both shapes count";
    data.insertPenetrationPointShape2Primary({0, static_cast<double>(i), 0});
    EXPECT_EQ(data.numPenetrationPoints(), count);
    for (unsigned int k = 0; k < count; ++k) {
      EXPECT_EQ(*data.penetrationPointPrimary(1, k), ZuVector(i - static_cast<int>(k), 0, 0));
      EXPECT_EQ(*data.getPenetrationPointShape2Primary(k), ZuVector(0, i - static_cast<int>(k), 0));
    }
    EXPECT_EQ(data.getPenetrationPointShape1Primary(count),
              count < 40 ? nullptr : data.getPenetrationPointShape1Primary(0));
    EXPECT_EQ(data.getPenetrationPointShape1Primary(4294967295U) == nullptr, count < 40);
  }
  PrintSink const sink;
  EXPECT_TRUE(data.penetrationPointPrimary(0, 0) == nullptr && sink.messages().size() == 1);
  data.resetPenetrationPointBuffers();
  EXPECT_EQ(data.getPenetrationPointShape2Primary(0), nullptr);
  data.insertPenetrationPointShape1Primary({7, 7, 7});
  EXPECT_EQ(*data.getPenetrationPointShape1Primary(0), ZuVector(7, 7, 7));
}

TEST(ProximityState, HoldsOneRecordForEachPairThroughGrowingAndShrinking) {
  TracedValues random(431);
  State state;
  Model model;
  std::size_t kept = 0;
  for (int step = 0; step < 25; ++step) {
    CountedSystem next(std::vector<std::vector<unsigned int>>(random.index(4) + (step > 0 ? 0 : 1)));
    for (auto& slots : next.shapes) {
      slots.resize(random.index(3) + 1);
      for (unsigned int& count : slots) count = random.index(3);
    }
    ASSERT_TRUE(state.resizeDatabaseToSystem(next));
    compareWithModel(state, next, model);
    kept += model.size();
    for (Key const& a : next.keys()) {
      for (Key const& b : next.keys()) EXPECT_TRUE(state.setDistance(a, b, model[orderedPair(a, b)] = random.real()));
      for (Key const& beyond : {Key(a.manipID(), a.linkID(), 9), Key(a.manipID(), 9, 0), Key(9, 0, 0),
                                Key(a.manipID(), -1, 0), Key(a.manipID(), a.linkID(), -1), Key::invalidKey()})
        EXPECT_TRUE(!state.getProximityData(a, beyond) && !state.getProximityData(beyond, a));
    }
    compareWithModel(state, next, model);
  }
  EXPECT_GT(kept, 25U) << "records have been kept";
}

TEST(ProximityState, PairsOfDifferentManipulatorsAreStoredInOneOrder) {
  Key const a(0, 0, 1), b(1, 1, 0);
  Key first(a), second(b);
  for (int time = 0; time < 2; ++time)
    EXPECT_TRUE(State().makeKeysCompatible(first, second) && first == b && second == a) << time;
}

TEST(ProximityState, AllocatingOperationsGrowAndGiveUpNothing) {
  State state;
  CountedSystem const arm({{0, 1, 1}}), scene({{1}, {0, 3}});
  Key const base(0, theReserved, 0), link(0, 1, 0), other(1, 0, 2);
  EXPECT_FALSE(state.isInitialized());
  EXPECT_TRUE(state.allocateAndSetProximityDistance(link, link, arm, 5.0) && state.isInitialized());
  EXPECT_TRUE(state.allocateAndSetProximityVector(base, other, scene, {1, 2, 3}));
  EXPECT_EQ(state.getDistance(link, link), 5.0) << "a link that only the first system has";
  EXPECT_EQ(state.allocateAndGetProximityVector(other, base, scene), ZuVector(1, 2, 3));
  EXPECT_EQ(state.allocateAndGetProximityDistance(link, link, scene), 5.0);
  EXPECT_NE(state.getProximityData(link, other), nullptr);
  EXPECT_FALSE(state.allocateAndSetProximityData(Key(0, 5, 0), link, scene, Data::testObject()));
  EXPECT_TRUE(state.allocateAndSetProximityData(other, other, scene, Data::testObject()));
  EXPECT_EQ(*static_cast<State const&>(state).allocateAndGetProximityData(other, other, scene), Data::testObject());
  AllocationCounter const counter;
  EXPECT_EQ(state.allocateAndGetProximityData(other, link, scene), state.getProximityData(other, link));
  EXPECT_EQ(counter.count(), 0U);
}

TEST(ProximityState, ResultsAreCurrentUntilTheTimeMovesOn) {
  State state;
  ASSERT_TRUE(state.resizeDatabaseToSystem(CountedSystem({{0, 1}, {0, 1}})));
  Key const a(1, 0, 0), b(0, 0, 0);
  auto const validity = [&] {
    return std::make_tuple(state.isValid(a, b), state.isDistanceValid(a, b), state.areWitnessPointsValid(a, b));
  };
  EXPECT_EQ(validity(), std::make_tuple(false, false, false)) << "nothing was stored at time 0";
  EXPECT_TRUE(state.setDistance(a, b, 1.0));
  EXPECT_EQ(validity(), std::make_tuple(false, true, false));
  state.setWitnessPoints(a, b, {1, 0, 0}, {2, 0, 0});
  EXPECT_EQ(validity(), std::make_tuple(false, true, true));
  state.setValid(a, b);
  EXPECT_EQ(validity(), std::make_tuple(true, true, true));
  state.invalidateAll();
  EXPECT_TRUE(state.updateTime() == 1U && validity() == std::make_tuple(false, false, false));
  state.setValid(a, b);
  EXPECT_EQ(validity(), std::make_tuple(true, true, false));
  state.setUpdateTime(77);
  state.getProximityData(a, b)->storeResult(2.0, {0, 0, 1}, {3, 0, 0}, {4, 0, 0}, 77);
  EXPECT_EQ(validity(), std::make_tuple(false, true, true));
}

TEST(ProximityState, OperationsReachTheRecordAndWithoutOneDoNothing) {
  Key const a(0, 0, 0), b(0, 0, 1);
  State built, missing;
  ASSERT_TRUE(built.resizeDatabaseToSystem(CountedSystem({{0, 2}})));
  missing.setIsInitialized(true);
  for (State* state : {&built, &missing}) {
    bool const has = state == &built;
    auto const set = [has](double value) { return has ? value : 0.0; };
    EXPECT_EQ(state->setDistance(a, b, 1.0), has);
    state->setProximityVector(a, b, {2, 0, 0});
    state->setWitnessPoints(a, b, {4, 0, 0}, {5, 0, 0});
    state->setCollisionOccured(a, b, true);
    state->setFrictionMode(a, b, Data::NEW_CONTACT);
    state->insertPenetrationPointShape1Primary(a, b, {6, 0, 0});
    state->insertPenetrationPointShape2Primary(a, b, {7, 0, 0});
    ZuVector w1(1, 1, 1), w2(1, 1, 1);
    state->getWitnessPoints(a, b, w1, w2);
    Data const& record = state->datum(a, b);
    Numbers const numbers = contactNumbers(record);
    EXPECT_EQ((Numbers{state->getDistance(a, b), state->getProximityVector(a, b).x(), w1.x(), w2.x(), numbers[12],
                       numbers[14]}),
              (Numbers{set(1.0), set(2.0), set(4.0), set(5.0), set(6.0), set(7.0)}));
    EXPECT_EQ(state->collisionOccured(a, b), has);
    EXPECT_EQ(record.frictionMode(), has ? Data::NEW_CONTACT : Data::NO_FRICTION);
    State const copy(*state);
    EXPECT_TRUE(copy == *state && state->selfTest() && state->isInitialized());
    state->resetPenetrationPointBuffers(a, b);
    EXPECT_EQ(state->datum(a, b).numPenetrationPoints(), 0U);
    EXPECT_EQ(copy == *state, !has);
    EXPECT_EQ(state->setProximityData(b, a, record), has);
    state->setValid(a, b);
    EXPECT_EQ(state->isValid(a, b) + state->isDistanceValid(a, b) + state->areWitnessPointsValid(a, b), has ? 3 : 0);
  }
  EXPECT_EQ(State::m_theNullShapeData, Data());
}

TEST(ProximityState, ASystemTooLargeToHoldIsRefusedAndChangesNothing) {
  State state;
  ASSERT_TRUE(state.allocateAndSetProximityDistance({0, 0, 0}, {0, 0, 0}, CountedSystem({{0, 1}}), 3.0));
  PrintSink sink;
  // Too many shapes to number, too many pairs to number, too many pairs to hold.
  for (auto const& counts : {std::vector<unsigned int>{4294967295U, 1}, {0, 4294967295U}, {0, 2000000000U}}) {
    EXPECT_FALSE(state.resizeDatabaseToSystem(CountedSystem({counts})));
    EXPECT_EQ(sink.take(), Messages{"ZuBaseShapeDataCache::fitTo-->no memory for the pairs of 1 manipulators"});
    EXPECT_EQ(state.getDistance({0, 0, 0}, {0, 0, 0}), 3.0);
  }
}
