#include "foundation/zuXmlBaseVariableCompoundType.h"

#include <dlfcn.h>

#include <exception>
#include <utility>

#include "foundation/zuBaseExpressionTreeElement.h"
#include "foundation/zuPrint.h"
#include "foundation/zuXmlObjectVisitor.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlVector.h"
#include "foundation/zuXmlWriter.h"

namespace {

bool refuse(std::string const& fileName, char const* why) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlBaseVariableCompoundType::processLibraries-->%s: %s",
                              fileName.c_str(), why != nullptr ? why : "it can't be loaded");
  return false;
}

bool loadLibrary(std::string const& fileName, ZuXmlBaseVariableCompoundType& container) {
  if (fileName.empty()) return refuse("\"\"", "no file name");  // for dlopen it would be the program itself
  void* const library = dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return refuse(fileName, dlerror());
  void* const symbol = dlsym(library, "zuRegisterCreators");
  if (symbol == nullptr) {
    dlclose(library);
    return refuse(fileName, "it has no zuRegisterCreators()");
  }
  try {
    reinterpret_cast<void (*)(ZuXmlBaseVariableCompoundType*)>(symbol)(&container);
  } catch (std::exception const& fault) {
    return refuse(fileName, fault.what());
  } catch (...) {
    return refuse(fileName, "its zuRegisterCreators() throws");
  }
  return true;
}

}  // namespace

ZuXmlBaseVariableCompoundType::ZuXmlBaseVariableCompoundType(ZuXmlBaseVariableCompoundType const& other)
    : ZuXmlClass(other), m_Creators(other.m_Creators), m_Libraries(other.m_Libraries) {
  for (Element const& element : other.m_Elements) {
    append(std::unique_ptr<ZuXmlObject>(element.object->clone()), element.token);
  }
}

ZuXmlBaseVariableCompoundType& ZuXmlBaseVariableCompoundType::operator=(ZuXmlBaseVariableCompoundType const& other) {
  if (this == &other) return *this;
  ZuXmlBaseVariableCompoundType copy(other);
  ZuXmlObject::operator=(other);
  m_Elements = std::move(copy.m_Elements);
  m_Creators = std::move(copy.m_Creators);
  m_Libraries = std::move(copy.m_Libraries);
  for (Element const& element : m_Elements) adopt(*element.object);
  return *this;
}

ZuXmlBaseVariableCompoundType::~ZuXmlBaseVariableCompoundType() = default;

bool ZuXmlBaseVariableCompoundType::operator==(ZuXmlBaseVariableCompoundType const& other) const {
  if (m_Elements.size() != other.m_Elements.size()) return false;
  for (std::size_t i = 0; i < m_Elements.size(); ++i) {
    if (m_Elements[i].token != other.m_Elements[i].token) return false;
    if (!m_Elements[i].object->equality(other.m_Elements[i].object.get())) return false;
  }
  return true;
}

ZuXmlObject const* ZuXmlBaseVariableCompoundType::element(std::size_t index) const {
  if (index < m_Elements.size()) return m_Elements[index].object.get();
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlBaseVariableCompoundType::element-->invalid index %zu of %zu",
                              index, m_Elements.size());
  return nullptr;
}

ZuXmlObject* ZuXmlBaseVariableCompoundType::element(std::size_t index) {
  return const_cast<ZuXmlObject*>(std::as_const(*this).element(index));
}

void ZuXmlBaseVariableCompoundType::append(std::unique_ptr<ZuXmlObject> element, ZuToken const& token) {
  if (!element) return;
  adopt(*element);
  m_Elements.push_back({token, std::move(element)});
}

void ZuXmlBaseVariableCompoundType::clear() { m_Elements.clear(); }

void ZuXmlBaseVariableCompoundType::registerComponentCreator(ZuToken const& token, Creator create) {
  m_Creators[token] = create;
}

ZuXmlObject* ZuXmlBaseVariableCompoundType::newObjectFromToken(ZuToken const& token) const {
  auto const found = m_Creators.find(token);
  return found == m_Creators.end() || found->second == nullptr ? nullptr : found->second();
}

std::map<ZuToken, ZuXmlBaseVariableCompoundType::Creator> const& ZuXmlBaseVariableCompoundType::creatorMap() const {
  return m_Creators;
}

std::vector<std::string> const& ZuXmlBaseVariableCompoundType::addLibraries() const { return m_Libraries; }

void ZuXmlBaseVariableCompoundType::setAddLibraries(std::vector<std::string> const& libraries) {
  m_Libraries = libraries;
}

bool ZuXmlBaseVariableCompoundType::processLibraries() {
  bool all = true;
  for (std::string const& library : m_Libraries) all = loadLibrary(library, *this) && all;
  return all;
}

void ZuXmlBaseVariableCompoundType::accept(ZuXmlObjectVisitor* visitor) {
  if (visitor == nullptr || !visitor->visit(*this)) return;
  for (Element const& element : m_Elements) element.object->accept(visitor);
  visitor->leave(*this);
}

void ZuXmlBaseVariableCompoundType::xmlInit() {
  for (Element const& element : m_Elements) element.object->xmlInit();
  setXmlInitialized(true);
}

bool ZuXmlBaseVariableCompoundType::read(ZuXmlReader& reader) {
  ZuXmlReadScope const scope(reader);
  std::vector<Element> elements;
  for (bool more = reader.firstItem(); more; more = reader.nextSibling()) {
    if (!readElement(reader, elements)) return reader.refuseSilently();
  }
  if (reader.refused()) return false;
  m_Elements = std::move(elements);
  return true;
}

bool ZuXmlBaseVariableCompoundType::readElement(ZuXmlReader& reader, std::vector<Element>& elements) {
  std::unique_ptr<ZuXmlObject> object(newObjectFromToken(reader.token()));
  if (!object) return reader.refuse("unknown element <%.64s>", std::string(reader.name()).c_str());
  ZuToken const token = reader.token();
  adopt(*object);
  if (!object->read(reader)) return false;
  object->setSpecified(true);
  elements.push_back({token, std::move(object)});
  return true;
}

bool ZuXmlBaseVariableCompoundType::write(ZuXmlWriter& writer) const {
  if (writer.failed()) return false;
  for (Element const& element : m_Elements) {
    writer.open(element.token);
    if (!element.object->write(writer)) return false;
    writer.close();
  }
  return !writer.failed();
}

bool ZuXmlBaseVariableCompoundType::writeSchema(ZuXmlSchema& schema) const {
  std::string name = "container";
  for (auto const& entry : m_Creators) name += "_" + entry.first.token();
  if (!schema.beginType(name)) return true;
  schema.beginGroup("choice", 0, ZuXmlSchema::m_theUnbounded);
  for (auto const& entry : m_Creators) {
    std::unique_ptr<ZuXmlObject> const sample(newObjectFromToken(entry.first));
    if (!sample) continue;
    schema.beginElement(entry.first, 1, 1);
    const_cast<ZuXmlBaseVariableCompoundType*>(this)->adopt(*sample);
    sample->writeSchema(schema);
    schema.endElement();
  }
  schema.endGroup();
  schema.endType();
  return true;
}

std::unique_ptr<ZuXmlObject> ZuXmlBaseVariableCompoundType::emptyLikeThis() const {
  std::unique_ptr<ZuXmlObject> fresh(newObject());
  auto& container = static_cast<ZuXmlBaseVariableCompoundType&>(*fresh);
  container.m_Creators = m_Creators;
  container.m_Libraries = m_Libraries;
  return fresh;
}

ZuToken const& ZuXmlBaseVariableCompoundType::classToken() {
  static ZuToken const theToken("elements");
  return theToken;
}

ZuXmlBaseVariableCompoundType ZuXmlBaseVariableCompoundType::testObject() {
  ZuXmlBaseVariableCompoundType sample;
  sample.registerComponentCreator(ZuXmlVector::classToken(), &ZuXmlVector::creator);
  sample.append(std::make_unique<ZuXmlVector>(ZuXmlVector::testObject()), ZuXmlVector::classToken());
  sample.append(std::make_unique<ZuXmlVector>(), ZuXmlVector::classToken());
  return sample;
}

void ZuXmlBaseVariableCompoundType::adopt(ZuXmlObject& element) {
  if (auto* const child = dynamic_cast<ZuBaseExpressionTreeElement*>(&element)) child->setContainer(this);
}
