// zuXmlMapType.h - XML objects found by keys that are XML objects. Group: XML objects.
#pragma once

#include <iterator>
#include <map>
#include <utility>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlObjectVisitor.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlWriter.h"

/// A map, written as one element "entry" per key, in the order of the keys (K's operator<), each with a "key" and a
/// "value".
///
/// Looking up costs O(log n) comparisons of keys. An empty map owns no memory. A document with a key twice is refused.
template <class K, class V>
class ZU_API ZuXmlMapType : public ZuXmlClass<ZuXmlMapType<K, V>, ZuXmlObject> {
 public:
  ZuXmlMapType() = default;

  /// Adds the value under the key, in place of the one that may be there. A NaN is no key: it prints a message, and
  /// nothing is added.
  void add(K const& key, V const& value) {
    if (key == key) {
      m_Entries.insert_or_assign(key, value);
    } else {
      Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlMapType::add-->a key that is not a number");
    }
  }
  void clear() { m_Entries.clear(); }
  /// Copies the value of the key into `value`; false, and `value` is unchanged, when the key is not there.
  bool lookup(K const& key, V& value) const {
    V const* const found = lookupPointer(key);
    if (found != nullptr) value = *found;
    return found != nullptr;
  }
  /// Null when the key is not there; valid until that key is removed.
  V const* lookupPointer(K const& key) const {
    auto const found = m_Entries.find(key);
    return found == m_Entries.end() ? nullptr : &found->second;
  }
  V* lookupPointer(K const& key) {
    auto const found = m_Entries.find(key);
    return found == m_Entries.end() ? nullptr : &found->second;
  }
  /// The place of the key in the order of the keys; false, and `index` is unchanged, when it is not there. O(n).
  bool keyIndex(K const& key, unsigned int& index) const {
    auto const found = m_Entries.find(key);
    if (found == m_Entries.end()) return false;
    index = static_cast<unsigned int>(std::distance(m_Entries.begin(), found));
    return true;
  }
  std::size_t size() const { return m_Entries.size(); }
  typename std::map<K, V>::const_iterator begin() const { return m_Entries.begin(); }
  typename std::map<K, V>::const_iterator end() const { return m_Entries.end(); }

  bool operator==(ZuXmlMapType const& other) const { return m_Entries == other.m_Entries; }

  // See ZuXmlObject
  /// Shows the values; a key is not to be changed.
  void accept(ZuXmlObjectVisitor* visitor) override {
    if (visitor == nullptr || !visitor->visit(*this)) return;
    for (auto& entry : m_Entries) entry.second.accept(visitor);
    visitor->leave(*this);
  }
  void xmlInit() override {
    for (auto& entry : m_Entries) entry.second.xmlInit();
    this->setXmlInitialized(true);
  }
  bool read(ZuXmlReader& reader) override {
    ZuXmlReadScope const scope(reader);
    std::map<K, V> entries;
    for (bool more = reader.firstItem(); more; more = reader.nextSibling()) {
      Entry entry;
      if (reader.name() != Entry::classToken().token()) return reader.refuse("an element other than <entry>");
      if (!entry.read(reader)) return reader.refuseSilently();
      if (!(entry.key == entry.key)) return reader.refuse("a key that is not a number");
      entry.value.setSpecified(true);
      if (!entries.emplace(entry.key, entry.value).second) return reader.refuse("a key stands there twice");
    }
    if (reader.refused()) return false;
    m_Entries = std::move(entries);
    return true;
  }
  bool write(ZuXmlWriter& writer) const override {
    if (writer.failed()) return false;
    for (auto const& [key, value] : m_Entries) {
      writer.open(Entry::classToken());
      writer.open(keyToken());
      if (!key.write(writer)) return false;
      writer.close();
      writer.open(valueToken());
      if (!value.write(writer)) return false;
      writer.close();
      writer.close();
    }
    return !writer.failed();
  }
  bool writeSchema(ZuXmlSchema& schema) const override {
    if (!schema.beginType(*this)) return true;
    schema.beginGroup("sequence");
    schema.beginElement(Entry::classToken(), 0, ZuXmlSchema::m_theUnbounded);
    Entry().writeSchema(schema);
    schema.endElement();
    schema.endGroup();
    schema.endType();
    return true;
  }

  static ZuToken const& classToken() {
    static ZuToken const theToken("map");
    return theToken;
  }
  static ZuXmlMapType testObject() {
    ZuXmlMapType sample;
    sample.add(K(), V());
    sample.add(K::testObject(), V::testObject());
    return sample;
  }

 private:
  static ZuToken const& keyToken() {
    static ZuToken const theToken("key");
    return theToken;
  }
  static ZuToken const& valueToken() {
    static ZuToken const theToken("value");
    return theToken;
  }

  struct Entry : ZuXmlClass<Entry, ZuXmlCompoundType> {
    K key;
    V value;
    bool operator==(Entry const& other) const { return key == other.key && value == other.value; }
    void registerComponents() override {
      this->registerComponent(keyToken(), &key);
      this->registerComponent(valueToken(), &value);
    }
    static ZuToken const& classToken() {
      static ZuToken const theToken("entry");
      return theToken;
    }
    static Entry testObject() { return Entry(); }
  };

  std::map<K, V> m_Entries;
};
