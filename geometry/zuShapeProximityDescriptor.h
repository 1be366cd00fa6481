// zuShapeProximityDescriptor.h - the pair that a query is about. Group: proximity memory.
#pragma once

#include "foundation/zuXmlCompoundType.h"
#include "geometry/zuShapeStateCacheKey.h"

class ZuStatedSystem;

/// The addresses of the two shapes of a query, the asked one first, and the system that they belong to (not owned, null
/// by default).
///
/// Never persisted: it has no components, writes an empty element and reads to its default. Made per query: 80 bytes,
/// no allocation. Equality compares the keys and the identity of the system.
class ZU_API ZuShapeProximityDescriptor : public ZuXmlClass<ZuShapeProximityDescriptor, ZuXmlCompoundType> {
 public:
  ZuShapeProximityDescriptor() = default;
  ZuShapeProximityDescriptor(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2,
                             ZuStatedSystem const* statedSystem = nullptr)
      : m_Key1(key1), m_Key2(key2), m_StatedSystem(statedSystem) {}

  virtual ZuShapeStateCacheKey const& key1() const { return m_Key1; }
  virtual void setKey1(ZuShapeStateCacheKey const& key1) { m_Key1 = key1; }
  virtual ZuShapeStateCacheKey const& key2() const { return m_Key2; }
  virtual void setKey2(ZuShapeStateCacheKey const& key2) { m_Key2 = key2; }
  virtual ZuStatedSystem const* statedSystem() const { return m_StatedSystem; }
  virtual void setStatedSystem(ZuStatedSystem const* statedSystem) { m_StatedSystem = statedSystem; }

  bool operator==(ZuShapeProximityDescriptor const& other) const {
    return m_Key1 == other.m_Key1 && m_Key2 == other.m_Key2 && m_StatedSystem == other.m_StatedSystem;
  }

  // See ZuXmlObject
  bool selfTest() const override;

  static ZuToken const& classToken();
  static ZuShapeProximityDescriptor testObject();

 private:
  ZuShapeStateCacheKey m_Key1;
  ZuShapeStateCacheKey m_Key2;
  ZuStatedSystem const* m_StatedSystem = nullptr;
};
