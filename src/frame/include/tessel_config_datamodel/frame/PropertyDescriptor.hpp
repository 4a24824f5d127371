// The description of a model class that the scheme works on: one row per property, one table per class.
//
// A row ties a property's kind, which holds the behaviour, to the places where one class keeps the property: the field
// in its implementation, the slot in its change storage and the field in its builder. Every operation of the scheme
// walks the rows of a class's table and then those of the base's. Ownership: static data, written once, by the weaving
// of the metamodel. Thread rule: read from any thread once the metamodel stands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "plinth/Model.hpp"
#include "plinth/meta/Property.hpp"

namespace tessel::frame {

class Element;
class PropertyKind;

/// Where no place is: a derived property has neither a slot nor a builder field.
inline constexpr std::uint16_t NOWHERE = 0xFFFF;

struct PropertyDescriptor {
  PropertyKind const* kind;
  std::uint8_t index;     ///< property index along the class chain; 0 for a derived property
  std::uint16_t field;    ///< offset in the implementation
  std::uint16_t old;      ///< offset of the slot in the change storage
  std::uint16_t builder;  ///< offset in the builder
  /// For a property with a setter that a subclass overrides: calls the virtual setter.
  void (*setText)(Element& element, std::u16string const& value) = nullptr;
  plinth::meta::PropertyImpl* property = nullptr;  ///< set when the metamodel is woven
};

struct ClassTable;

/// An inherited enumeration that a class stamps on its new elements.
struct TypeStamp {
  ClassTable* declaringClass;
  std::size_t position;  ///< of the property among its class's own
  int value;
};

/// The rows of a class and of its bases in one, for what is done often.
struct ClassChain {
  std::vector<PropertyDescriptor const*> byIndex;  ///< the row of each index; null at 0
  /// Rows of properties that hold elements, without the derived ones: in the order of the fields, the class itself
  /// first.
  std::vector<PropertyDescriptor const*> links;
};

struct ClassTable {
  ClassTable* base;  ///< null at a root class
  plinth::meta::Class const& (*metaClass)();
  PropertyDescriptor* properties;  ///< the class's own, in metamodel order
  std::size_t count;
  unsigned long lastIndex;  ///< N, along the chain
  TypeStamp const* stamps;
  std::size_t stampCount;
  /// Makes an element with its fields at their defaults, not yet announced; null for an abstract class.
  Element* (*allocate)(plinth::ModelImpl& model, boost::uuids::uuid const& uuid);

  // Set when the metamodel is woven.
  plinth::meta::Class const* handle = nullptr;
  ClassChain const* chain = nullptr;  ///< until the process ends

  PropertyDescriptor* begin() const noexcept { return properties; }
  PropertyDescriptor* end() const noexcept { return properties + count; }
};

/// Ties the table to its class, which the metamodel has woven.
void bind(ClassTable& table, plinth::meta::Class const& metaClass);

/// The row of that index in the chain of `table`, or null. O(1).
inline PropertyDescriptor const* findDescriptor(ClassTable const& table, unsigned long index) noexcept {
  auto const& byIndex = table.chain->byIndex;
  return index < byIndex.size() ? byIndex[index] : nullptr;
}

/// The row of `property` in the chain of `table`, or null. Compares identities. O(1); for a derived one O(length of the
/// chain).
inline PropertyDescriptor const* findDescriptor(ClassTable const& table,
                                                plinth::meta::PropertyImpl const& property) noexcept {
  if (int const index = property.index(); index != 0) {
    auto const* const row = findDescriptor(table, static_cast<unsigned long>(index));
    return row != nullptr && row->property == &property ? row : nullptr;
  }
  std::size_t const position = property.position();
  for (ClassTable const* each = &table; each != nullptr; each = each->base) {
    if (position < each->count && each->properties[position].property == &property) return &each->properties[position];
  }
  return nullptr;
}

}  // namespace tessel::frame
