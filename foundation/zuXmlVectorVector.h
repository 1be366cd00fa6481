// zuXmlVectorVector.h - list of vectors that persists as XML. Group: XML objects.
#pragma once

#include <algorithm>
#include <vector>

#include "foundation/zuVector.h"
#include "foundation/zuXmlObject.h"

/// Vectors side by side in memory; written as one element "vector" each. Indices are not checked.
///
/// An empty list owns no memory; copying costs one allocation.
class ZU_API ZuXmlVectorVector : public ZuXmlClass<ZuXmlVectorVector, ZuXmlObject> {
 public:
  ZuXmlVectorVector() = default;
  explicit ZuXmlVectorVector(std::vector<ZuVector> const& vectors) : m_Vectors(vectors) {}

  ZuVector const& operator[](std::size_t i) const { return m_Vectors[i]; }
  ZuVector& operator[](std::size_t i) { return m_Vectors[i]; }
  std::size_t size() const { return m_Vectors.size(); }
  bool empty() const { return m_Vectors.empty(); }
  void resize(std::size_t size) { m_Vectors.resize(size); }
  void reserve(std::size_t size) { m_Vectors.reserve(size); }
  void clear() { m_Vectors.clear(); }
  void pushBack(ZuVector const& vector) { m_Vectors.push_back(vector); }
  ZuVector const* data() const { return m_Vectors.data(); }
  ZuVector* data() { return m_Vectors.data(); }
  std::vector<ZuVector>::const_iterator begin() const { return m_Vectors.begin(); }
  std::vector<ZuVector>::const_iterator end() const { return m_Vectors.end(); }
  std::vector<ZuVector>::iterator begin() { return m_Vectors.begin(); }
  std::vector<ZuVector>::iterator end() { return m_Vectors.end(); }

  bool operator==(ZuXmlVectorVector const& other) const { return m_Vectors == other.m_Vectors; }

  // See ZuXmlObject
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;

  static ZuToken const& classToken();
  static ZuXmlVectorVector testObject();

 private:
  std::vector<ZuVector> m_Vectors;
};
