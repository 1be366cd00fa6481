// zuShapeStateCacheKey.h - address of a manipulator, a link or a shape in a system. Group: proximity memory.
#pragma once

#include "foundation/zuExport.h"
#include "foundation/zuTypes.h"

/// The address of a manipulator. An id of 4294967295 means none; every id defaults to it.
///
/// A plain value without allocation. Ids are not checked here: what has no counterpart in a system is not found there.
/// The constructors take the ids as ints; -1 is none. Equality compares the ids of the class, with no order among keys.
class ZU_API ZuManipulatorStateCacheKey {
 public:
  ZuManipulatorStateCacheKey() = default;
  explicit ZuManipulatorStateCacheKey(int manipID) : m_ManipID(static_cast<unsigned int>(manipID)) {}
  ZuManipulatorStateCacheKey(ZuManipulatorStateCacheKey const&) = default;
  ZuManipulatorStateCacheKey& operator=(ZuManipulatorStateCacheKey const&) = default;
  virtual ~ZuManipulatorStateCacheKey() = default;

  virtual unsigned int manipID() const { return m_ManipID; }
  virtual void setManipID(unsigned int manipID) { m_ManipID = manipID; }
  /// True when copies are equal to their original and differ from it once an id differs.
  virtual bool selfTest() const;

  bool operator==(ZuManipulatorStateCacheKey const& other) const { return m_ManipID == other.m_ManipID; }
  bool operator!=(ZuManipulatorStateCacheKey const& other) const { return !(*this == other); }

  /// The key of no manipulator: every id none.
  static ZuManipulatorStateCacheKey invalidKey() { return {}; }
  /// A key of no manipulator to refer to.
  static ZuManipulatorStateCacheKey const& nullObject();

 private:
  unsigned int m_ManipID = theZuNoIndex;
};

/// The address of a link of a manipulator.
class ZU_API ZuLinkStateCacheKey : public ZuManipulatorStateCacheKey {
 public:
  ZuLinkStateCacheKey() = default;
  ZuLinkStateCacheKey(int manipID, int linkID)
      : ZuManipulatorStateCacheKey(manipID), m_LinkID(static_cast<unsigned int>(linkID)) {}
  /// No link of that manipulator.
  explicit ZuLinkStateCacheKey(ZuManipulatorStateCacheKey const& key) : ZuManipulatorStateCacheKey(key) {}

  bool selfTest() const override;
  virtual unsigned int linkID() const { return m_LinkID; }
  virtual void setLinkID(unsigned int linkID) { m_LinkID = linkID; }

  bool operator==(ZuLinkStateCacheKey const& other) const {
    return ZuManipulatorStateCacheKey::operator==(other) && m_LinkID == other.m_LinkID;
  }
  bool operator!=(ZuLinkStateCacheKey const& other) const { return !(*this == other); }

  static ZuLinkStateCacheKey invalidKey() { return {-1, -1}; }
  static ZuLinkStateCacheKey const& nullObject();

 private:
  unsigned int m_LinkID = theZuNoIndex;
};

/// The address of a shape of a link.
class ZU_API ZuShapeStateCacheKey : public ZuLinkStateCacheKey {
 public:
  ZuShapeStateCacheKey() = default;
  ZuShapeStateCacheKey(int manipID, int linkID, int shapeID)
      : ZuLinkStateCacheKey(manipID, linkID), m_ShapeID(static_cast<unsigned int>(shapeID)) {}
  /// No shape of that link.
  explicit ZuShapeStateCacheKey(ZuLinkStateCacheKey const& key) : ZuLinkStateCacheKey(key) {}

  bool selfTest() const override;
  virtual unsigned int shapeID() const { return m_ShapeID; }
  virtual void setShapeID(unsigned int shapeID) { m_ShapeID = shapeID; }

  bool operator==(ZuShapeStateCacheKey const& other) const {
    return ZuLinkStateCacheKey::operator==(other) && m_ShapeID == other.m_ShapeID;
  }
  bool operator!=(ZuShapeStateCacheKey const& other) const { return !(*this == other); }

  static ZuShapeStateCacheKey invalidKey() { return {-1, -1, -1}; }
  static ZuShapeStateCacheKey testObject() { return {1, 2, 3}; }
  static ZuShapeStateCacheKey const& nullObject();

 private:
  unsigned int m_ShapeID = theZuNoIndex;
};
