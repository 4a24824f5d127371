// The description of a model class: one row for each property, one table for each class. It is the one place where a
// fact of the tables stands: the scheme, the metamodel and the bridge all read it here.
//
// A row ties a property's kind, which holds the behaviour, to the places where one class keeps the property, the field
// in its implementation and the field in its builder, and to what the tables say of it. Every operation of the scheme
// walks the rows of a class's table and then those of the base's. Ownership: static data, laid out by the compiler;
// what depends on the metamodel is written once, when that is woven. Thread rule: read from any thread once the
// metamodel stands.
#pragma once

#include <boost/uuid/uuid.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "plinth/ModelFwd.hpp"

namespace plinth::meta {
enum ValueFlags : int;
}

namespace tessel::frame {

class Element;
class PropertyKind;
/// Stands for any concrete builder where the layout of a class's builder is told.
struct AnyBuilder;

/// Where no place is: a derived property has no builder field.
inline constexpr std::uint16_t NOWHERE = 0xFFFF;

/// The UUID of a text in the usual 8-4-4-4-12 form, which is known good.
constexpr boost::uuids::uuid uuidOf(char const* text) {
  auto const digit = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
  boost::uuids::uuid result{};
  for (std::uint8_t& byte : result.data) {
    if (*text == '-') ++text;
    byte = static_cast<std::uint8_t>(digit(text[0]) * 16 + digit(text[1]));
    text += 2;
  }
  return result;
}

/// What a type or property is, as a union of bits.
enum Trait : unsigned {
  ABSTRACT = 1,
  HIDDEN = 2,  ///< from scripts
  COMPOSITE = 4,
  ORDERED = 8,
  UNIQUE = 16,
  DERIVED = 32,
  TRANSIENT = 64,
  PLAIN = ORDERED | UNIQUE  ///< as single values are
};

/// What the tables say of a property. Types are named as the registry knows them, properties with their type before
/// them; the UUID follows from that name.
struct PropertyFacts {
  char16_t const* name;
  std::size_t slot;  ///< offset of the handle in the meta package
  char16_t const* type;
  plinth::meta::ValueFlags flags;
  unsigned traits;
  char16_t const* defaultText = nullptr;  ///< null: none
  char const* qualifier = nullptr;        ///< of a map: the property that gives the key
  char const* opposite = nullptr;         ///< the other end of a link
};

struct PropertyDescriptor {
  PropertyKind const* kind;
  std::uint8_t index;     ///< property index along the class chain; 0 for a derived property
  std::uint16_t field;    ///< offset in the implementation
  std::uint16_t builder;  ///< offset in the builder
  PropertyFacts facts;
  /// For a property with a setter that a subclass overrides: calls the virtual setter.
  void (*setText)(Element& element, std::u16string const& value) = nullptr;

  // Set when the metamodel is woven.
  std::uint16_t old = NOWHERE;                     ///< offset of the slot in a change record
  plinth::meta::PropertyImpl* property = nullptr;  ///< set when the property is made
};

struct ClassTable;

/// An inherited enumeration that a class stamps on its new elements.
struct TypeStamp {
  ClassTable* declaringClass;
  std::size_t position;  ///< of the property among its class's own
  int value;
};

struct ClassChain;

/// What the tables say of a type.
struct TypeFacts {
  char const* qualifiedName;
  boost::uuids::uuid uuid;
  std::size_t slot;  ///< offset of the handle in the meta package
  unsigned traits = 0;
};

/// What is made for a class, as its own sources know it.
struct ClassFactories {
  /// An element with its fields at their defaults, not yet announced; null for an abstract class, as is the next.
  Element* (*allocate)(plinth::ModelImpl& model, boost::uuids::uuid const& uuid);
  std::unique_ptr<plinth::ModelElementBuilder> (*builder)(plinth::Model const& model);
  plinth::AbstractOwnedCollection* (*collection)(plinth::ModelElement const& owner,
                                                 plinth::meta::Property const& property);
};

struct ClassTable {
  TypeFacts facts;
  ClassTable* base;  ///< null at a root class
  plinth::meta::Class const& (*metaClass)();
  PropertyDescriptor* properties;  ///< the class's own, in metamodel order
  std::size_t count;
  unsigned long lastIndex;  ///< N, along the chain
  ClassFactories make;
  TypeStamp const* stamps = nullptr;
  std::size_t stampCount = 0;

  // Set when the metamodel is woven.
  plinth::meta::Class const* handle = nullptr;
  ClassChain const* chain = nullptr;  ///< until the process ends

  PropertyDescriptor* begin() const noexcept { return properties; }
  PropertyDescriptor* end() const noexcept { return properties + count; }
};

}  // namespace tessel::frame
