#include "foundation/zuXmlCompoundType.h"

#include "foundation/zuBaseExpressionTreeElement.h"
#include "foundation/zuXmlObjectVisitor.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlWriter.h"

namespace {

void writeSchemaOf(ZuXmlComponentMap const& map, ZuXmlSchema& schema) {
  for (ZuXmlComponent const& component : map.components()) {
    schema.beginElement(component.token);
    component.object->writeSchema(schema);
    schema.endElement();
  }
}

/// A child knows the container of its parent, which tells what the child may hold in turn.
void shareContainer(ZuXmlCompoundType const& parent, ZuXmlObject& child) {
  auto const* const owned = dynamic_cast<ZuBaseExpressionTreeElement const*>(&parent);
  auto* const element = dynamic_cast<ZuBaseExpressionTreeElement*>(&child);
  if (owned != nullptr && element != nullptr) element->setContainer(owned->container());
}

bool isReadOnly(ZuXmlComponentMap const& map, ZuToken const& token) {
  ZuXmlComponent const* const component = map.find(token.token());
  return component != nullptr && component->readOnly;
}

}  // namespace

void ZuXmlComponentMap::add(ZuXmlComponent const& component) {
  for (ZuXmlComponent& existing : m_Components) {
    if (existing.token == component.token) {
      existing = component;
      return;
    }
  }
  m_Components.push_back(component);
}

ZuXmlComponent const* ZuXmlComponentMap::find(std::string_view name) const {
  for (ZuXmlComponent const& component : m_Components) {
    if (component.token.token() == name) return &component;
  }
  return nullptr;
}

void ZuXmlCompoundType::accept(ZuXmlObjectVisitor* visitor) {
  if (visitor == nullptr || !visitor->visit(*this)) return;
  for (ZuXmlComponent const& component : attributeComponentMap().components()) component.object->accept(visitor);
  for (ZuXmlComponent const& component : componentMap().components()) component.object->accept(visitor);
  visitor->leave(*this);
}

void ZuXmlCompoundType::xmlInit() {
  specialDescriptorMap();
  for (ZuXmlComponent const& component : attributeComponentMap().components()) component.object->xmlInit();
  for (ZuXmlComponent const& component : componentMap().components()) component.object->xmlInit();
  setXmlInitialized(true);
}

bool ZuXmlCompoundType::read(ZuXmlReader& reader) {
  if (ZuXmlReadScope::isOutermost(reader)) return readIntoFreshObject(reader);
  return readAttributes(reader) && readElements(reader);
}

bool ZuXmlCompoundType::readIntoFreshObject(ZuXmlReader& reader) {
  ZuXmlReadScope const scope(reader);
  std::unique_ptr<ZuXmlObject> const fresh = emptyLikeThis();
  if (!fresh->read(reader) || reader.refused() || !assignFrom(*fresh)) return false;
  setSpecified(true);
  return true;
}

bool ZuXmlCompoundType::write(ZuXmlWriter& writer) const {
  // The check ends the recursion where the nesting became too deep.
  return !writer.failed() && writeAttributes(writer) && writeElements(writer);
}

bool ZuXmlCompoundType::writeSchema(ZuXmlSchema& schema) const {
  if (!schema.beginType(*this)) return true;
  schema.beginGroup("sequence");
  bool const described = writeSchemaElements(schema);
  schema.endGroup();
  bool const attributesDescribed = writeSchemaAttributes(schema);
  schema.endType();
  return described && attributesDescribed;
}

bool ZuXmlCompoundType::readAttributes(ZuXmlReader& reader) {
  std::vector<bool> seen;
  for (bool more = reader.firstAttribute(); more; more = reader.nextAttribute()) {
    ZuXmlComponent const* const component = attributeComponentMap().find(reader.name());
    if (component == nullptr) {
      return reader.refuse("unknown attribute \"%.64s\"", std::string(reader.name()).c_str());
    }
    auto const index = static_cast<std::size_t>(component - attributeComponentMap().components().data());
    seen.resize(attributeComponentMap().components().size());
    if (seen[index]) return reader.refuse("a second attribute \"%s\"", component->token.token().c_str());
    seen[index] = true;
    if (!readAttributeFromToken(component->token, reader)) return reader.refuseSilently();
  }
  return !reader.refused();
}

bool ZuXmlCompoundType::readElements(ZuXmlReader& reader) {
  auto const& components = componentMap().components();
  std::vector<bool> seen(components.size(), false);
  for (bool more = reader.firstChild(); more; more = reader.nextSibling()) {
    ZuXmlComponent const* const component = componentMap().find(reader.name());
    if (component == nullptr) {
      if (readValueFromSpecialToken(reader.token(), reader)) continue;
      return reader.refuseSilently();
    }
    auto const index = static_cast<std::size_t>(component - components.data());
    if (seen[index]) return reader.refuse("a second <%s>", component->token.token().c_str());
    seen[index] = true;
    if (!component->readOnly && !readValueFromToken(component->token, reader)) return reader.refuseSilently();
  }
  return !reader.refused();
}

bool ZuXmlCompoundType::writeAttributes(ZuXmlWriter& writer) const {
  for (ZuXmlComponent const& component : attributeComponentMap().components()) {
    writer.beginAttribute(component.token);
    if (!component.object->write(writer)) return false;
    writer.endAttribute();
  }
  return true;
}

bool ZuXmlCompoundType::writeElements(ZuXmlWriter& writer) const {
  for (ZuXmlComponent const& component : componentMap().components()) {
    writer.open(component.token);
    if (!component.object->write(writer)) return false;
    writer.close();
  }
  return !writer.failed();
}

bool ZuXmlCompoundType::writeSchemaAttributes(ZuXmlSchema& schema) const {
  for (ZuXmlComponent const& component : attributeComponentMap().components()) {
    schema.beginAttribute(component.token);
    component.object->writeSchema(schema);
    schema.endAttribute();
  }
  return true;
}

bool ZuXmlCompoundType::writeSchemaElements(ZuXmlSchema& schema) const {
  writeSchemaOf(componentMap(), schema);
  if (specialDescriptorMap().empty()) return true;
  schema.beginGroup("choice", 0, ZuXmlSchema::m_theUnbounded);
  for (auto const& [token, creator] : specialDescriptorMap()) {
    std::unique_ptr<ZuXmlObject> const sample(creator != nullptr ? creator() : nullptr);
    if (!sample) continue;
    shareContainer(*this, *sample);
    schema.beginElement(token, 1, 1);
    sample->writeSchema(schema);
    schema.endElement();
  }
  schema.endGroup();
  return true;
}

void ZuXmlCompoundType::registerComponents() {}

void ZuXmlCompoundType::registerComponent(ZuToken const& token, ZuXmlObject* component) {
  bindings().elements->add({token, component, false});
}

void ZuXmlCompoundType::registerComponentReadOnly(ZuToken const& token, ZuXmlObject* component) {
  bindings().elements->add({token, component, true});
}

ZuXmlComponentMap const& ZuXmlCompoundType::componentMap() const { return *bindings().elements; }

void ZuXmlCompoundType::registerAttributeComponent(ZuToken const& token, ZuXmlObject* component) {
  bindings().attributes->add({token, component, false});
}

void ZuXmlCompoundType::registerAttributeComponentReadOnly(ZuToken const& token, ZuXmlObject* component) {
  bindings().attributes->add({token, component, true});
}

ZuXmlComponentMap const& ZuXmlCompoundType::attributeComponentMap() const { return *bindings().attributes; }

ZuXmlSpecialDescriptorMap const& ZuXmlCompoundType::specialDescriptorMap() const {
  if (!bindings().specials) const_cast<ZuXmlCompoundType*>(this)->createSpecialDescriptorMap();
  return *bindings().specials;
}

bool ZuXmlCompoundType::hasChildren() const { return !componentMap().components().empty(); }

bool ZuXmlCompoundType::hasAttributes() const { return !attributeComponentMap().components().empty(); }

bool ZuXmlCompoundType::readValueFromToken(ZuToken const& token, ZuXmlReader& reader) {
  ZuXmlComponent const* const component = componentMap().find(token.token());
  if (component == nullptr) return false;
  if (!component->object->read(reader)) return false;
  component->object->setSpecified(true);
  return true;
}

bool ZuXmlCompoundType::readValueFromSpecialToken(ZuToken const& token, ZuXmlReader& reader) {
  return reader.refuse("unknown element <%.64s>", token.token().c_str());
}

bool ZuXmlCompoundType::readAttributeFromToken(ZuToken const& token, ZuXmlReader& reader) {
  ZuXmlComponent const* const component = attributeComponentMap().find(token.token());
  if (component == nullptr) return false;
  if (component->readOnly) return true;
  if (!component->object->readAttribute(reader)) return false;
  component->object->setSpecified(true);
  return true;
}

ZuXmlComponentMap* ZuXmlCompoundType::newComponentMap() const { return new ZuXmlComponentMap(); }

ZuXmlSpecialDescriptorMap* ZuXmlCompoundType::newSpecialDescriptorMap() const {
  return new ZuXmlSpecialDescriptorMap();
}

void ZuXmlCompoundType::createComponentMap() {
  bindings().elements.reset(newComponentMap());
  registerComponents();
}

void ZuXmlCompoundType::createAttributeComponentMap() {
  bindings().attributes.reset(newComponentMap());
  registerComponents();
}

void ZuXmlCompoundType::createSpecialDescriptorMap() { bindings().specials.reset(newSpecialDescriptorMap()); }

bool ZuXmlCompoundType::isReadOnlyComponent(ZuToken const& token) const { return isReadOnly(componentMap(), token); }

bool ZuXmlCompoundType::isReadOnlyAttribute(ZuToken const& token) const {
  return isReadOnly(attributeComponentMap(), token);
}

void ZuXmlCompoundType::addSpecialDescriptor(ZuToken const& token, ZuXmlObject* (*creator)()) {
  bindings().specials->emplace(token, creator);
}

ZuXmlCompoundType::Bindings& ZuXmlCompoundType::bindings() const {
  if (m_Bindings == nullptr) {
    m_Bindings = new Bindings;
    m_Bindings->elements.reset(newComponentMap());
    m_Bindings->attributes.reset(newComponentMap());
    // The table holds addresses for reading and for writing; a const object is only ever written through it.
    const_cast<ZuXmlCompoundType*>(this)->registerComponents();
    const_cast<ZuXmlCompoundType*>(this)->setXmlInitialized(true);
  }
  return *m_Bindings;
}

void ZuXmlCompoundType::dropBindings() {
  delete m_Bindings;
  m_Bindings = nullptr;
  ZuXmlCompoundType::setXmlInitialized(false);
}
