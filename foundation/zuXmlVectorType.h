// zuXmlVectorType.h - growable sequence of XML objects. Group: XML objects.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "foundation/zuXmlObject.h"
#include "foundation/zuXmlObjectVisitor.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlWriter.h"

/// A sequence of T, written as one child element per item under T's class token.
///
/// Indices are not checked. An empty sequence owns no memory.
template <class T>
class ZU_API ZuXmlVectorType : public ZuXmlClass<ZuXmlVectorType<T>, ZuXmlObject> {
 public:
  ZuXmlVectorType() = default;

  T const& operator[](std::size_t i) const { return m_Items[i]; }
  T& operator[](std::size_t i) { return m_Items[i]; }
  std::size_t size() const { return m_Items.size(); }
  bool empty() const { return m_Items.empty(); }
  void resize(std::size_t size) { m_Items.resize(size); }
  void reserve(std::size_t size) { m_Items.reserve(size); }
  void clear() { m_Items.clear(); }
  void pushBack(T const& item) { m_Items.push_back(item); }
  /// Rotates the items left by n places: item n becomes the first.
  void leftRotate(std::size_t n) {
    if (m_Items.empty()) return;
    std::rotate(m_Items.begin(), m_Items.begin() + static_cast<std::ptrdiff_t>(n % m_Items.size()), m_Items.end());
  }
  typename std::vector<T>::const_iterator begin() const { return m_Items.begin(); }
  typename std::vector<T>::const_iterator end() const { return m_Items.end(); }
  typename std::vector<T>::iterator begin() { return m_Items.begin(); }
  typename std::vector<T>::iterator end() { return m_Items.end(); }

  bool operator==(ZuXmlVectorType const& other) const { return m_Items == other.m_Items; }

  // See ZuXmlObject
  void accept(ZuXmlObjectVisitor* visitor) override {
    if (visitor == nullptr || !visitor->visit(*this)) return;
    for (T& item : m_Items) item.accept(visitor);
    visitor->leave(*this);
  }
  void xmlInit() override {
    for (T& item : m_Items) item.xmlInit();
    this->setXmlInitialized(true);
  }
  bool read(ZuXmlReader& reader) override {
    ZuXmlReadScope const scope(reader);
    std::vector<T> items;
    for (bool more = reader.firstItem(); more; more = reader.nextSibling()) {
      if (reader.name() != T::classToken().token()) {
        return reader.refuse("an element other than <%s>", T::classToken().token().c_str());
      }
      items.emplace_back();
      if (!items.back().read(reader)) return reader.refuseSilently();
      items.back().setSpecified(true);
    }
    if (reader.refused()) return false;
    m_Items = std::move(items);
    return true;
  }
  bool write(ZuXmlWriter& writer) const override {
    if (writer.failed()) return false;
    for (T const& item : m_Items) {
      writer.open(T::classToken());
      if (!item.write(writer)) return false;
      writer.close();
    }
    return !writer.failed();
  }
  bool writeSchema(ZuXmlSchema& schema) const override {
    if (!schema.beginType(*this)) return true;
    schema.beginGroup("sequence");
    schema.beginElement(T::classToken(), 0, ZuXmlSchema::m_theUnbounded);
    T().writeSchema(schema);
    schema.endElement();
    schema.endGroup();
    schema.endType();
    return true;
  }

  static ZuToken const& classToken() {
    static ZuToken const theToken("list");
    return theToken;
  }
  static ZuXmlVectorType testObject() {
    ZuXmlVectorType sample;
    sample.pushBack(T());
    sample.pushBack(T::testObject());
    return sample;
  }

 private:
  std::vector<T> m_Items;
};
