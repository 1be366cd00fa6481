// zuXmlPairType.h - two XML objects. Group: XML objects.
#pragma once

#include "foundation/zuXmlCompoundType.h"

/// A pair, written as the elements "first" and "second".
template <class A, class B>
class ZU_API ZuXmlPairType : public ZuXmlClass<ZuXmlPairType<A, B>, ZuXmlCompoundType> {
 public:
  ZuXmlPairType() = default;
  ZuXmlPairType(A const& first, B const& second) : m_First(first), m_Second(second) {}

  A const& first() const { return m_First; }
  A& first() { return m_First; }
  B const& second() const { return m_Second; }
  B& second() { return m_Second; }
  void set(A const& first, B const& second) {
    A const newFirst(first);  // either may be part of this pair
    B const newSecond(second);
    m_First = newFirst;
    m_Second = newSecond;
  }
  void setFirst(A const& first) { m_First = first; }
  void setSecond(B const& second) { m_Second = second; }

  bool operator==(ZuXmlPairType const& other) const { return m_First == other.m_First && m_Second == other.m_Second; }

  // See ZuXmlCompoundType
  void registerComponents() override {
    static ZuToken const theFirst("first");
    static ZuToken const theSecond("second");
    this->registerComponent(theFirst, &m_First);
    this->registerComponent(theSecond, &m_Second);
  }

  static ZuToken const& classToken() {
    static ZuToken const theToken("pair");
    return theToken;
  }
  static ZuXmlPairType testObject() { return ZuXmlPairType(A::testObject(), B::testObject()); }

 private:
  A m_First;
  B m_Second;
};
