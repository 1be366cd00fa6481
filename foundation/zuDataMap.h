// zuDataMap.h - bag of named numbers and texts. Group: values.
#pragma once

#include <map>
#include <string>
#include <variant>

#include "foundation/zuXmlObject.h"

/// Named values, each a double, a string or an unsigned int; the property set of a surface.
///
/// Written as one element "entry" per name, in alphabetical order, with a "key" and one of "real", "text" and
/// "unsigned". Looking up costs O(log n). An empty map owns no memory; a copy costs what its names and texts do.
class ZU_API ZuDataMap : public ZuXmlClass<ZuDataMap, ZuXmlObject> {
 public:
  using Value = std::variant<double, std::string, unsigned int>;

  /// Adds the value under the name, in place of the one that may be there, of whatever kind.
  void add(std::string const& name, double const& value) { m_Values.insert_or_assign(name, value); }
  void add(std::string const& name, std::string const& value) { m_Values.insert_or_assign(name, value); }
  void add(std::string const& name, unsigned int const& value) { m_Values.insert_or_assign(name, value); }
  void clear() { m_Values.clear(); }

  /// Copies the value of the name; false, and `value` is unchanged, when there is none of that name and kind.
  bool lookup(std::string const& name, double& value) const { return lookupKind(name, value); }
  bool lookup(std::string const& name, std::string& value) const { return lookupKind(name, value); }
  bool lookup(std::string const& name, unsigned int& value) const { return lookupKind(name, value); }
  std::size_t size() const { return m_Values.size(); }
  std::map<std::string, Value> const& values() const { return m_Values; }

  /// Exact: the same names with values of the same kinds.
  bool operator==(ZuDataMap const& other) const { return m_Values == other.m_Values; }

  /// The property set of bounding volumes: colour "red", "green", "blue" and opacity "alpha", each in [0, 1].
  static ZuDataMap const& boundingColor();
  /// The property set of a manipulator's shapes that have none of their own; the same names.
  static ZuDataMap const& defaultManipColor();

  // See ZuXmlObject
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;

  static ZuToken const& classToken();
  static ZuDataMap testObject();

 private:
  template <class T>
  bool lookupKind(std::string const& name, T& value) const {
    auto const found = m_Values.find(name);
    T const* const held = found == m_Values.end() ? nullptr : std::get_if<T>(&found->second);
    if (held != nullptr) value = *held;
    return held != nullptr;
  }

  std::map<std::string, Value> m_Values;
};
