// Serializers: by these the foundation reads and writes the fields of datatypes and the text forms of enumerations.
// Ownership: the registry owns what is registered, until the process ends.
// Thread rule: registered under the meta registry's mutex, read without locks afterwards.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "plinth/Value.hpp"
#include "plinth/meta/Enum.hpp"

namespace plinth::meta {

/// Reads and writes a datatype field by field. A datatype is never changed in place: the result of a write is a new
/// value.
class TESSEL_EXPORT DatatypeSerializer {
 public:
  virtual ~DatatypeSerializer();
  /// The field's value. Raises NoSuchProperty for a property of another type, CannotCastIncompatibleTypes for an object
  /// of another type.
  virtual Value getPropertyValue(Value const& object, Property const& property) const = 0;
  /// A copy of `object` with the field set. Raises as getPropertyValue does, and CannotCastIncompatibleTypes for a new
  /// value of another type.
  virtual Value setPropertyValue(Value const& object, Property const& property, Value const& newValue) const = 0;
  virtual Value createDefaultValue() const = 0;
  virtual Value createEmptyOptionalValue() const = 0;
  /// The values, each a single one, as one sequence or set; the caller ends it by Value::release. Raises
  /// CannotCastIncompatibleTypes for a value of another type, and where `type` is not the datatype.
  virtual Value combineAsUnmanagedSequenceValue(Type const& type, std::vector<Value> const& values) const = 0;
  virtual Value combineAsUnmanagedSetValue(Type const& type, std::vector<Value> const& values) const = 0;
  /// The content of a set optional as a single value, and the other way round. Raise CannotCastIncompatibleTypes for a
  /// value of another type, and the first InvalidValue for an empty optional.
  virtual Value fromOptionalValue(Value const& value) const = 0;
  virtual Value toOptionalValue(Value const& value) const = 0;
};

/// Turns the values of a type into text and back. Parsing raises boost::bad_lexical_cast for a text that names no
/// value. All raise CannotCastIncompatibleTypes for a value of another type or shape, and where the `type` that a
/// result is to have is not the serializer's.
class TESSEL_EXPORT PropertySerializer {
 public:
  virtual ~PropertySerializer();
  /// The text of an optional's content; empty for none, which parses as no value.
  virtual std::u16string serializeOptionalValue(Value const& value) const = 0;
  /// A single value as one that is present.
  virtual Value toOptionalValue(Value const& value) const = 0;
  /// The text of a single value; one with no content counts as 0.
  virtual std::u16string serializeValue(Value const& value) const = 0;
  /// A managed value, single or one that is present.
  virtual Value parseValue(std::u16string const& text, Type const& type) const = 0;
  virtual Value parseOptionalValue(std::u16string const& text, Type const& type) const = 0;
  virtual Value createEmptyOptionalValue(Type const& type) const = 0;
  /// A single value of 0, whether or not that is a literal.
  virtual Value createDefaultValue(Type const& type) const = 0;
  /// Ends a value, also one that was combined; it has no content then.
  virtual void releaseValue(Value& value) const = 0;
  /// The values, each a single one, as one sequence or set; the caller ends it by releaseValue.
  virtual Value combineAsUnmanagedSequenceValue(Type const& type, std::vector<Value> const& values) const = 0;
  virtual Value combineAsUnmanagedSetValue(Type const& type, std::vector<Value> const& values) const = 0;
};

class TESSEL_EXPORT PropertySerializerRegistry {
 public:
  static PropertySerializerRegistry& getInstance();

  /// A serializer registered earlier for the same type, or type and format, is replaced.
  void registerDatatypeSerializer(DataType const& type, std::unique_ptr<DatatypeSerializer> serializer);
  void registerPropertySerializer(Type const& type, std::unique_ptr<PropertySerializer> serializer,
                                  std::string const& formatName);
  /// Null where none is registered.
  DatatypeSerializer const* datatypeSerializer(Type const& type) const;
  PropertySerializer const* propertySerializer(Type const& type, std::string const& formatName) const;

 private:
  PropertySerializerRegistry() = default;
  std::map<TypeImpl const*, std::unique_ptr<DatatypeSerializer>> m_datatypes;
  std::map<std::pair<TypeImpl const*, std::string>, std::unique_ptr<PropertySerializer>> m_properties;
};

}  // namespace plinth::meta
