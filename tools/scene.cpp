#include "tools/scene.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <map>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlWriter.h"
#include "geometry/zuBasePhysicalExtent.h"

namespace {

ZuToken const theIgnoredPairToken("ignoredPair");

bool refuse(char const* format, ...) __attribute__((format(printf, 1, 2)));

bool refuse(char const* format, ...) {
  char message[512];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(message, sizeof message, format, arguments);
  va_end(arguments);
  Zu::Print::instance().write(Zu::PRINT_WARNING, "Scene::load-->%s", message);
  return false;
}

bool isFinite(ZuVector const& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }

/// The farthest points along the axes are finite: no number of the shape is nan or infinite.
bool isFinite(ZuShape const& shape) {
  for (double const sign : {1.0, -1.0}) {
    if (!isFinite(shape.computeSupportPoint(ZuVector::xVector(sign)))) return false;
    if (!isFinite(shape.computeSupportPoint(ZuVector::yVector(sign)))) return false;
    if (!isFinite(shape.computeSupportPoint(ZuVector::zVector(sign)))) return false;
  }
  return true;
}

bool checkBody(Body const& body) {
  for (std::size_t i = 0; i < body.shapes().size(); ++i) {
    ZuShape const* const shape = body.shapes().shape(i);
    if (shape == nullptr || !isFinite(*shape)) {
      return refuse("body \"%s\": shape %zu is not finite", body.name().c_str(), i);
    }
  }
  for (std::size_t k = 0; k < body.numberOfFrames(); ++k) {
    if (!isFinite(body.frame(k).translation())) {
      return refuse("body \"%s\": frame %zu is not finite", body.name().c_str(), k);
    }
  }
  return true;
}

}  // namespace

ZuCoordinateSystemTransformation Body::frame(std::size_t cycle) const {
  if (m_Frames.empty()) return ZuCoordinateSystemTransformation();
  return m_Frames[std::min(cycle, m_Frames.size() - 1)];
}

std::size_t Body::numberOfVertices() const {
  std::size_t count = 0;
  for (std::size_t i = 0; i < m_Shapes.size(); ++i) {
    auto const* const mesh = dynamic_cast<ZuBasePhysicalExtent const*>(m_Shapes.shape(i));
    if (mesh != nullptr) count += mesh->numberOfPoints();
  }
  return count;
}

void Body::setKeys(std::string const& name, unsigned int manipulator, unsigned int link) {
  m_Name = name;
  m_Manipulator = manipulator;
  m_Link = link;
}

bool Body::operator==(Body const& other) const {
  return m_Name == other.m_Name && m_Manipulator == other.m_Manipulator && m_Link == other.m_Link &&
         m_Shapes == other.m_Shapes && m_Frames == other.m_Frames;
}

void Body::registerComponents() {
  registerComponent("name", &m_Name);
  registerComponent("manipulator", &m_Manipulator);
  registerComponent("link", &m_Link);
  registerComponent("shapes", &m_Shapes);
  registerComponent("frames", &m_Frames);
}

ZuToken const& Body::classToken() {
  static ZuToken const theToken("body");
  return theToken;
}

Body Body::testObject() {
  Body sample;
  sample.m_Name = std::string("arm");
  sample.m_Manipulator = 1U;
  sample.m_Link = 2U;
  sample.m_Shapes = ZuShapeContainer::testObject();
  sample.m_Frames.pushBack(ZuXmlCoordinateSystemTransformation::testObject());
  return sample;
}

std::size_t Scene::numberOfCycles() const {
  std::size_t cycles = 1;
  for (Body const& body : m_Bodies) cycles = std::max(cycles, body.numberOfFrames());
  return cycles;
}

bool Scene::isCompared(std::size_t body1, std::size_t body2) const {
  return body1 != body2 && m_IgnoredIndices.count(std::minmax(body1, body2)) == 0;
}

Body* Scene::body(std::string const& name) {
  auto const found =
      std::find_if(m_Bodies.begin(), m_Bodies.end(), [&name](Body const& body) { return body.name() == name; });
  return found == m_Bodies.end() ? nullptr : &*found;
}

Body& Scene::addBody(std::string const& name) {
  unsigned int const manipulator = numberOfManipulators();
  m_Bodies.emplace_back().setKeys(name, manipulator, 0);
  return m_Bodies.back();
}

bool Scene::load(std::string const& fileName) { return readFromFile(fileName) && check(); }

bool Scene::check() {
  std::set<std::pair<unsigned int, unsigned int>> links;
  for (Body const& body : m_Bodies) {
    if (body.manipulator() >= m_theMaximumNumber || body.link() >= m_theMaximumNumber) {
      return refuse("body \"%s\": manipulator %u or link %u is not below %u", body.name().c_str(), body.manipulator(),
                    body.link(), m_theMaximumNumber);
    }
    if (!links.emplace(body.manipulator(), body.link()).second) {
      return refuse("body \"%s\": manipulator %u has a second link %u", body.name().c_str(), body.manipulator(),
                    body.link());
    }
    if (!checkBody(body)) return false;
  }
  return resolveIgnored();
}

bool Scene::resolveIgnored() {
  std::map<std::string, std::size_t> indices;
  for (std::size_t i = 0; i < m_Bodies.size(); ++i) {
    if (!indices.emplace(m_Bodies[i].name(), i).second) {
      return refuse("two bodies are named \"%s\"", m_Bodies[i].name().c_str());
    }
  }
  m_IgnoredIndices.clear();
  for (auto const& pair : m_Ignored) {
    for (Name const* name : {&pair.first(), &pair.second()}) {
      if (indices.count(*name) == 0) return refuse("no body is named \"%s\"", name->value().c_str());
    }
    m_IgnoredIndices.insert(std::minmax(indices[pair.first()], indices[pair.second()]));
  }
  return true;
}

bool Scene::readValueFromSpecialToken(ZuToken const& token, ZuXmlReader& reader) {
  if (token == Body::classToken()) return m_Bodies.emplace_back().read(reader);
  if (token == theIgnoredPairToken) return m_Ignored.emplace_back().read(reader);
  return ZuXmlCompoundType::readValueFromSpecialToken(token, reader);
}

bool Scene::writeElements(ZuXmlWriter& writer) const {
  auto const writeAll = [&writer](auto const& objects, ZuToken const& token) {
    for (auto const& object : objects) {
      writer.open(token);
      if (!object.write(writer)) return false;
      writer.close();
    }
    return true;
  };
  return writeAll(m_Bodies, Body::classToken()) && writeAll(m_Ignored, theIgnoredPairToken) && !writer.failed();
}

ZuToken const& Scene::classToken() {
  static ZuToken const theToken("scene");
  return theToken;
}

Scene Scene::testObject() {
  Scene sample;
  sample.m_Bodies = {Body::testObject()};
  sample.m_Ignored = {{Name("arm"), Name("arm")}};
  return sample;
}

unsigned int Scene::numberOfManipulators() const {
  unsigned int count = 0;
  for (Body const& body : m_Bodies) count = std::max(count, body.manipulator() + 1);
  return count;
}

unsigned int Scene::numberOfLinks(unsigned int manipulator) const {
  unsigned int count = 0;
  for (Body const& body : m_Bodies) {
    if (body.manipulator() == manipulator) count = std::max(count, body.link() + 1);
  }
  return count;
}

unsigned int Scene::numberOfShapes(unsigned int manipulator, unsigned int link) const {
  for (Body const& body : m_Bodies) {
    if (body.manipulator() == manipulator && body.link() == link)
      return static_cast<unsigned int>(body.shapes().size());
  }
  return 0;
}
