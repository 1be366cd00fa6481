// zuXmlObject.h - base of everything that persists as XML. Group: XML objects.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <typeinfo>

#include "foundation/zuExport.h"
#include "foundation/zuToken.h"

class ZuTcpSocket;
class ZuXmlObjectVisitor;
class ZuXmlReader;
class ZuXmlSchema;
class ZuXmlWriter;

/// A value that can be written as the content of an XML element and read back to an equal value.
///
/// The element itself (its name and its place) belongs to whoever holds the object: `write` writes the content of an
/// element that is open, `read` reads the content of the element that the reader stands on.
///
/// Guarantees of every reading operation, whatever the document, file or peer sends:
/// 1. It returns true and the object has the value of the document, elements that the document lacks having their
///    defaults; or it returns false, one line has been printed, and the object is unchanged.
/// 2. Nesting, sizes and numbers are checked against the limits of ZuXmlReader and of the transport.
///
/// An object is written by one thread at a time, since the first write builds its table of components; after xmlInit(),
/// and until it is changed, by any number.
class ZU_API ZuXmlObject {
 public:
  virtual ~ZuXmlObject() = default;

  /// Shows the object, and what it consists of, to the visitor.
  virtual void accept(ZuXmlObjectVisitor* visitor);
  /// A new heap copy of the most derived type; the caller owns it.
  virtual ZuXmlObject* clone() const = 0;
  /// True when the class passes its own consistency checks; costs a document written and read.
  virtual bool selfTest() const = 0;
  /// Does now, for the object and all that it consists of, what the first XML use would do: builds the tables of
  /// components.
  virtual void xmlInit();

  /// Reads the content of the reader's current element.
  virtual bool read(ZuXmlReader& reader);
  /// Reads the value of the reader's current attribute; only basic types fit into one.
  virtual bool readAttribute(ZuXmlReader& reader);
  /// Writes the content of the writer's open element; false when the value can't be carried by XML.
  virtual bool write(ZuXmlWriter& writer) const;
  /// Describes the content of the schema's current element.
  virtual bool writeSchema(ZuXmlSchema& schema) const;
  /// Writes an XML Schema (XSD 1.0) to the file: documents with this root element validate against it.
  virtual bool createSchema(std::string const& fileName, ZuToken const& root) const;

  // Whole documents. `name` tells the document in messages; `root` is the name of the root element when writing, any
  // root name is accepted when reading. A document that reading would refuse for its size or nesting is not written. A
  // file that is written is there whole or not at all: it takes the place of the old one when it is complete.
  virtual bool readFromStream(std::istream& stream, std::string const& name);
  virtual bool writeToStream(std::ostream& stream, std::string const& name, ZuToken const& root) const;
  /// Takes any of the three forms below and tells them apart by their first bytes.
  virtual bool readFromFile(std::string const& fileName);
  /// Writes the plain form.
  virtual bool writeToFile(std::string const& fileName, ZuToken const& root) const;
  virtual bool readFromFilePlain(std::string const& fileName);
  virtual bool writeToFilePlain(std::string const& fileName, ZuToken const& root) const;
  /// The first compressed form: gzip (RFC 1952), one member.
  virtual bool readFromFileWithCompression(std::string const& fileName);
  /// The second compressed form: Zstandard (RFC 8878), one frame.
  virtual bool readFromFileWithCompression2(std::string const& fileName);
  virtual bool writeToFileWithCompression(std::string const& fileName, ZuToken const& root) const;
  virtual bool writeToFileWithCompression2(std::string const& fileName, ZuToken const& root) const;
  virtual bool readFromBuffer(std::string const& buffer);
  virtual bool writeToBuffer(std::string& buffer, ZuToken const& root) const;
  /// The compressed buffer is in the first compressed form; either form is read.
  virtual bool readFromCompressedBuffer(std::string const& buffer);
  virtual bool writeToCompressedBuffer(std::string& buffer, ZuToken const& root) const;
  /// Reads one message of ZuTcpSocket: a document behind its length.
  virtual bool readFromTcpSocket(ZuTcpSocket const* socket);
  /// Sends one message; compression 0 sends the plain form, 1 the first compressed form, 2 the second.
  virtual bool writeToTcpSocket(ZuTcpSocket const* socket, ZuToken const& root, int compression) const;

  /// True when the object's own table of components has been built; a copy's has not.
  virtual bool xmlInitialized() const;
  virtual void setXmlInitialized(bool initialized);
  /// True when the last document that was read had this object in it.
  virtual bool specified() const;
  virtual void setSpecified(bool specified);
  /// True when the content is text without elements.
  virtual bool isBasicType() const;
  /// True when the object equals a default-constructed one.
  virtual bool equalsDefault() const;
  /// Value equality; false for an object of another type and for null.
  virtual bool equality(ZuXmlObject const* other) const = 0;
  /// A new default-constructed object of the most derived type; the caller owns it.
  virtual ZuXmlObject* newObject() const = 0;

  // Further operations, on which reading rests.

  /// Takes the value of an object of the same most derived type; false, and nothing changes, for any other.
  virtual bool assignFrom(ZuXmlObject const& other) = 0;
  /// What a document is read into before it replaces this object: newObject() in this object's surroundings.
  virtual std::unique_ptr<ZuXmlObject> emptyLikeThis() const;

 protected:
  ZuXmlObject() = default;
  ZuXmlObject(ZuXmlObject const& other) : m_Specified(other.m_Specified) {}
  ZuXmlObject& operator=(ZuXmlObject const& other) {
    m_Specified = other.m_Specified;
    return *this;
  }

 private:
  bool m_XmlInitialized = false;
  bool m_Specified = false;
};

/// The part of every concrete class that is the same for all: `class ZuLine : public ZuXmlClass<ZuLine,
/// ZuXmlCompoundType>`.
///
/// Derived supplies its constructors, `operator==`, and the statics `classToken()` and `testObject()` (a sample that
/// differs from the default in every component). The functions override those of Base where Base has them virtual; they
/// carry no `override` since for token() that depends on Base.
template <class Derived, class Base>
class ZU_API ZuXmlClass : public Base {
 public:
  using Base::Base;
  ZuXmlClass() = default;

  ZuXmlObject* clone() const { return new Derived(self()); }
  ZuXmlObject* newObject() const { return new Derived(); }
  bool equality(ZuXmlObject const* other) const {
    return isSameType(other) && self() == static_cast<Derived const&>(*other);
  }
  bool assignFrom(ZuXmlObject const& other) {
    if (!isSameType(&other)) return false;
    static_cast<Derived&>(*this) = static_cast<Derived const&>(other);
    return true;
  }
  bool selfTest() const {
    Derived const sample(Derived::testObject());
    return sample == sample && !(sample == Derived()) && zuXmlSelfTest(sample) && zuXmlSelfTest(self());
  }
  /// The element name of the class.
  ZuToken const& token() const { return Derived::classToken(); }

  /// For registration with a polymorphic container.
  static ZuXmlObject* creator() { return new Derived(); }
  /// A default-constructed object to refer to where there is none.
  static Derived const& nullObject() {
    static Derived const theNull;
    return theNull;
  }

 private:
  Derived const& self() const { return static_cast<Derived const&>(*this); }
  bool isSameType(ZuXmlObject const* other) const { return other != nullptr && typeid(*other) == typeid(*this); }
};

/// The checks of `selfTest` that need no knowledge of the class: a clone is equal, and so is what is written and read
/// back (an object that holds a NaN equals nothing and fails).
ZU_API bool zuXmlSelfTest(ZuXmlObject const& object);
