// A marshaler converts between the foundation's values of one type and host arrays, for code that knows no types.
//
// Ownership: the registry owns marshalers; arrays and values that are given out are the caller's. Thread rule: no state
// that changes after construction; the host's thread, since arrays hold script objects.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"
#include "plinth/AbstractPrimitiveCollection.hpp"
#include "plinth/Value.hpp"

namespace plinth::bridge {

class TESSEL_EXPORT ValueMarshaler {
 public:
  explicit ValueMarshaler(meta::Type type, std::string hostClass = {})
      : m_type(std::move(type)), m_hostClass(std::move(hostClass)) {}
  ValueMarshaler(ValueMarshaler const&) = delete;
  ValueMarshaler& operator=(ValueMarshaler const&) = delete;
  virtual ~ValueMarshaler();

  meta::Type const& type() const noexcept { return m_type; }

  /// Called when a property of the type is described to the host, for a marshaler that needs other classes there.
  virtual void initializeDependencies() const {}

  /// All values of a collection as one array.
  virtual kestrel::OwnedArray fromCollection(AbstractPrimitiveCollection const& collection) const = 0;
  virtual kestrel::OwnedArray fromValueVector(std::vector<Value> const& values) const = 0;
  /// One value, single or optional. Raises CannotCastIncompatibleTypes for a value of another type or shape.
  virtual kestrel::OwnedArray toHost(Value const& value) const = 0;
  /// The same for a value that may have no content at all, which gives an empty array.
  virtual kestrel::OwnedArray toKestrelArray(Value const& value) const;
  virtual void dispose(kestrel_array* array) const noexcept { kestrel::destroy(array); }

  /// One value of an array that is of the correct type; empty gives a value without content.
  virtual Value fromHost(kestrel_array const& array) const = 0;
  /// The same, checked. Raises HostError WrongType and what the host's conversions raise.
  virtual Value fromKestrelArray(kestrel_array const& array) const = 0;
  /// Each element of the array as a value, checked.
  virtual std::vector<Value> toValueVector(kestrel_array const& array) const = 0;
  /// All elements as one value of sequence or set shape. The caller ends it by Value::release.
  virtual Value toUnmanagedSequence(kestrel_array const& array) const = 0;
  virtual Value toUnmanagedSetValue(kestrel_array const& array) const = 0;
  /// Clears the collection and fills it from the array, which is checked first.
  virtual void fillCollection(AbstractPrimitiveCollection& collection, kestrel_array const& array) const;

  /// The host class of the values: the one given, or that of the C++ type.
  virtual std::string const& getName() const noexcept { return m_hostClass; }
  /// The host data type of one value.
  virtual corvid::Identifier dataType() const = 0;
  /// The host data type of an array of many.
  virtual corvid::Identifier rowDataType() const = 0;

  /// Whether the array can be converted to one value or to many of them.
  bool isCorrectType(kestrel_array const& array) const;

 protected:
  ValueMeta metaOf(meta::ValueFlags flags) const noexcept { return ValueMeta(m_type.impl(), flags); }
  bool hasHostClass() const noexcept { return !m_hostClass.empty(); }

 private:
  meta::Type m_type;
  std::string m_hostClass;
};

namespace detail {

/// An array as one of a class of the model, which is described to the host first, so that its conversions are known.
/// Raises what CorvidTypeRepository::coerce raises.
TESSEL_EXPORT kestrel_array const& coerceToClass(corvid::Identifier className, kestrel_array const& array,
                                                 kestrel::OwnedArray& made);
/// The same for one value: no array of several passes, and no empty text. Any other empty array does, and stands for no
/// value.
TESSEL_EXPORT kestrel_array const& coerceToOne(corvid::Identifier className, kestrel_array const& array,
                                               kestrel::OwnedArray& made);
/// The member of an enumeration that a text names, by the host's conversion; null for a text that names none.
TESSEL_EXPORT kestrel::OwnedArray memberFromText(corvid::Identifier enumeration, kestrel_array const& text);

}  // namespace detail
}  // namespace plinth::bridge
