// zuXmlBasicType.h - one number, flag or text that persists as XML. Group: XML objects.
#pragma once

#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "foundation/zuXmlObject.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlWriter.h"

/// Holds one T: double, unsigned int, int, unsigned short, bool or std::string. Default: zero, false, empty.
///
/// Converts to and from T. A double reads back bit for bit. Costs no allocation beyond what T's copy does.
template <class T>
class ZU_API ZuXmlBasicType : public ZuXmlClass<ZuXmlBasicType<T>, ZuXmlObject> {
 public:
  ZuXmlBasicType() = default;
  ZuXmlBasicType(T const& value) : m_Value(value) {}  // NOLINT: stands for a T wherever one is expected
  ZuXmlBasicType& operator=(T const& value) {
    m_Value = value;
    return *this;
  }

  T const& value() const { return m_Value; }
  void setValue(T const& value) { m_Value = value; }
  operator T const&() const { return m_Value; }  // NOLINT

  bool operator==(ZuXmlBasicType const& other) const { return m_Value == other.m_Value; }
  bool operator<(ZuXmlBasicType const& other) const { return m_Value < other.m_Value; }

  // See ZuXmlObject
  bool read(ZuXmlReader& reader) override {
    if constexpr (std::is_same_v<T, double>) {
      return reader.readReals(&m_Value, 1);
    } else if constexpr (std::is_same_v<T, bool>) {
      return reader.readBool(m_Value);
    } else if constexpr (std::is_same_v<T, std::string>) {
      std::string text(reader.text());
      if (reader.refused()) return false;
      m_Value = std::move(text);
      return true;
    } else {
      long long value = 0;
      if (!reader.readInteger(std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), value)) return false;
      m_Value = static_cast<T>(value);
      return true;
    }
  }
  bool write(ZuXmlWriter& writer) const override {
    if constexpr (std::is_same_v<T, double>) {
      writer.reals(&m_Value, 1);
    } else if constexpr (std::is_same_v<T, bool>) {
      writer.text(m_Value ? "true" : "false");
    } else if constexpr (std::is_same_v<T, std::string>) {
      writer.text(m_Value);
    } else {
      writer.integer(m_Value);
    }
    return !writer.failed();
  }
  bool writeSchema(ZuXmlSchema& schema) const override {
    schema.simple(schemaType());
    return true;
  }
  bool isBasicType() const override { return true; }

  static ZuToken const& classToken() {
    static ZuToken const theToken("value");
    return theToken;
  }
  static ZuXmlBasicType testObject() {
    if constexpr (std::is_same_v<T, std::string>) {
      return ZuXmlBasicType(std::string(" a <b> & \"c\"\n"));
    } else {
      return ZuXmlBasicType(static_cast<T>(1));
    }
  }

 private:
  static char const* schemaType() {
    if constexpr (std::is_same_v<T, double>) return "real";
    if constexpr (std::is_same_v<T, bool>) return "xs:boolean";
    if constexpr (std::is_same_v<T, std::string>) return "xs:string";
    if constexpr (std::is_same_v<T, unsigned int>) return "xs:unsignedInt";
    if constexpr (std::is_same_v<T, unsigned short>) return "xs:unsignedShort";
    return "xs:int";
  }

  T m_Value{};
};
