#include "geometry/zuFacetGroups.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlWriter.h"
#include "geometry/zuGeomTokens.h"

namespace {

constexpr unsigned int theSmallestLoop = 3;

/// Takes whole numbers, separated by white space, until the text ends; false for anything else.
bool takeIndices(std::string_view text, std::vector<unsigned int>& indices) {
  indices.clear();
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (text.empty()) return true;
    unsigned int index = 0;
    auto const result = std::from_chars(text.data(), text.data() + text.size(), index);
    if (result.ec != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    if (!text.empty() && text.find_first_of(" \t\r\n") != 0) return false;
    indices.push_back(index);
  }
}

std::string textOf(ZuListView<unsigned int> indices) {
  std::string text;
  for (unsigned int const index : indices) {
    if (!text.empty()) text += ' ';
    text += std::to_string(index);
  }
  return text;
}

/// The first index at or past the limit; null when there is none.
unsigned int const* firstBeyond(ZuListView<unsigned int> indices, std::size_t limit) {
  auto const found = std::find_if(indices.begin(), indices.end(), [limit](unsigned int i) { return i >= limit; });
  return found == indices.end() ? nullptr : found;
}

bool readIndices(ZuXmlReader& reader, std::size_t limit, std::vector<unsigned int>& indices) {
  std::string_view const text = reader.text();
  if (reader.refused()) return false;
  std::string const name(reader.name());
  if (!takeIndices(text, indices)) return reader.refuse("<%.64s> is not a list of indices", name.c_str());
  unsigned int const* const beyond = firstBeyond({indices.data(), indices.size()}, limit);
  return beyond == nullptr || reader.refuse("<%.64s> has index %u of %zu", name.c_str(), *beyond, limit);
}

}  // namespace

ZuFacetGroups& ZuFacetGroups::operator=(ZuFacetGroups const& other) {
  ZuXmlClass::operator=(other);
  m_Groups = other.m_Groups;
  return *this;
}

unsigned int ZuFacetGroups::numberOfFacets(unsigned int group) const {
  return group < m_Groups.size() ? static_cast<unsigned int>(m_Groups[group].points.size()) : 0;
}

ZuListView<unsigned int> ZuFacetGroups::loop(unsigned int group, unsigned int facet) const {
  return hasFacet(group, facet) ? loopNoCheck(group, facet) : ZuListView<unsigned int>();
}

ZuListView<unsigned int> ZuFacetGroups::normals(unsigned int group, unsigned int facet) const {
  return hasFacet(group, facet) ? normalsNoCheck(group, facet) : ZuListView<unsigned int>();
}

std::string const* ZuFacetGroups::surfaceKey(unsigned int group) const {
  return group < m_Groups.size() ? &m_Groups[group].key : nullptr;
}

unsigned int ZuFacetGroups::addGroup(std::string const& surfaceKey) {
  m_Groups.push_back({surfaceKey, {}, {}});
  return numberOfGroups() - 1;
}

unsigned int ZuFacetGroups::groupOf(std::string const& surfaceKey) {
  auto const found = std::find_if(m_Groups.begin(), m_Groups.end(),
                                  [&surfaceKey](Group const& group) { return group.key == surfaceKey; });
  return found == m_Groups.end() ? addGroup(surfaceKey) : static_cast<unsigned int>(found - m_Groups.begin());
}

void ZuFacetGroups::setSurfaceKey(unsigned int group, std::string const& surfaceKey) {
  if (group < m_Groups.size()) m_Groups[group].key = surfaceKey;
}

bool ZuFacetGroups::addFacet(unsigned int group, ZuListView<unsigned int> loop, ZuListView<unsigned int> normals) {
  bool const allowed = m_Corners == 0 ? loop.size() >= theSmallestLoop : loop.size() == m_Corners;
  if (group >= m_Groups.size() || !allowed) return false;
  m_Groups[group].points.append(loop);
  m_Groups[group].normals.append(normals);
  return true;
}

void ZuFacetGroups::reverse() {
  for (Group& group : m_Groups) {
    for (auto* const lists : {&group.points, &group.normals}) {
      for (std::size_t i = 0; i < lists->size(); ++i) lists->reverse(i);
    }
  }
}

bool ZuFacetGroups::isWithin(Limits const& limits, std::string& message) const {
  for (unsigned int group = 0; group < numberOfGroups(); ++group) {
    for (unsigned int facet = 0; facet < numberOfFacets(group); ++facet) {
      unsigned int const* const point = firstBeyond(loopNoCheck(group, facet), limits.points);
      unsigned int const* const normal = firstBeyond(normalsNoCheck(group, facet), limits.normals);
      if (point == nullptr && normal == nullptr) continue;
      message = "facet " + std::to_string(facet) + " of group " + std::to_string(group) + " has ";
      message += point != nullptr ? "point " + std::to_string(*point) + " of " + std::to_string(limits.points)
                                  : "normal " + std::to_string(*normal) + " of " + std::to_string(limits.normals);
      return false;
    }
  }
  return true;
}

bool ZuFacetGroups::read(ZuXmlReader& reader) {
  std::vector<Group> groups;
  for (bool more = reader.firstChild(); more; more = reader.nextSibling()) {
    if (reader.name() != ZuGeom::ZuFacetGroupToken.token()) {
      return reader.refuse("an element other than <%s>", ZuGeom::ZuFacetGroupToken.token().c_str());
    }
    groups.emplace_back();
    if (!readGroup(reader, groups.back())) return reader.refuseSilently();
  }
  if (reader.refused()) return false;
  m_Groups = std::move(groups);
  return true;
}

bool ZuFacetGroups::readGroup(ZuXmlReader& reader, Group& group) const {
  bool hasKey = false;
  for (bool more = reader.firstChild(); more; more = reader.nextSibling()) {
    std::string_view const name = reader.name();
    if (name == ZuGeom::ZuFacetToken.token()) {
      if (!readFacet(reader, group)) return false;
    } else if (name == ZuGeom::ZuFacetNormalsToken.token()) {
      if (!readNormals(reader, group)) return false;
    } else if (name == ZuGeom::ZuSurfaceKeyToken.token() && !hasKey) {
      group.key = std::string(reader.text());
      hasKey = true;
    } else {
      return reader.refuse("<%.64s> is not expected in a group of facets", std::string(name).c_str());
    }
  }
  while (group.normals.size() < group.points.size()) group.normals.beginList();
  return !reader.refused();
}

bool ZuFacetGroups::readFacet(ZuXmlReader& reader, Group& group) const {
  std::vector<unsigned int> indices;
  if (!readIndices(reader, m_Limits.points, indices)) return false;
  if (m_Corners != 0 && indices.size() != m_Corners) {
    return reader.refuse("a facet of %zu corners and not of %u", indices.size(), m_Corners);
  }
  if (indices.size() < theSmallestLoop) return reader.refuse("a facet of %zu corners", indices.size());
  while (group.normals.size() < group.points.size()) group.normals.beginList();
  group.points.append({indices.data(), indices.size()});
  return true;
}

bool ZuFacetGroups::readNormals(ZuXmlReader& reader, Group& group) const {
  std::vector<unsigned int> indices;
  if (group.normals.size() >= group.points.size()) return reader.refuse("normals without a facet before them");
  if (!readIndices(reader, m_Limits.normals, indices)) return false;
  group.normals.append({indices.data(), indices.size()});
  return true;
}

bool ZuFacetGroups::write(ZuXmlWriter& writer) const {
  for (unsigned int group = 0; group < numberOfGroups(); ++group) {
    writer.open(ZuGeom::ZuFacetGroupToken);
    writer.open(ZuGeom::ZuSurfaceKeyToken);
    writer.text(m_Groups[group].key);
    writer.close();
    for (unsigned int facet = 0; facet < numberOfFacets(group); ++facet) {
      writer.open(ZuGeom::ZuFacetToken);
      writer.text(textOf(loopNoCheck(group, facet)));
      writer.close();
      if (normalsNoCheck(group, facet).empty()) continue;
      writer.open(ZuGeom::ZuFacetNormalsToken);
      writer.text(textOf(normalsNoCheck(group, facet)));
      writer.close();
    }
    writer.close();
  }
  return !writer.failed();
}

bool ZuFacetGroups::writeSchema(ZuXmlSchema& schema) const {
  if (!schema.beginType("facet_groups")) return true;
  schema.beginGroup("sequence");
  schema.beginElement(ZuGeom::ZuFacetGroupToken, 0, ZuXmlSchema::m_theUnbounded);
  if (schema.beginType("facet_group")) {
    schema.beginGroup("sequence");
    schema.beginElement(ZuGeom::ZuSurfaceKeyToken);
    schema.simple("xs:string");
    schema.endElement();
    schema.beginGroup("sequence", 0, ZuXmlSchema::m_theUnbounded);
    schema.beginElement(ZuGeom::ZuFacetToken, 1, 1);
    schema.simple("xs:string");
    schema.endElement();
    schema.beginElement(ZuGeom::ZuFacetNormalsToken);
    schema.simple("xs:string");
    schema.endElement();
    schema.endGroup();
    schema.endGroup();
    schema.endType();
  }
  schema.endElement();
  schema.endGroup();
  schema.endType();
  return true;
}

ZuToken const& ZuFacetGroups::classToken() { return ZuGeom::ZuFacetGroupsToken; }

ZuFacetGroups ZuFacetGroups::testObject() {
  unsigned int const corners[] = {0, 2, 1, 3}, normals[] = {0, 0, 1};
  ZuFacetGroups sample;
  sample.addFacet(sample.addGroup("Top"), {corners, 4});
  sample.addFacet(0, {corners, 3}, {normals, 3});
  sample.addFacet(sample.addGroup(""), {corners + 1, 3});
  return sample;
}
