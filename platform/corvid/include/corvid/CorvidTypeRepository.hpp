// Host data types by name, the conversions between them, and the check of a value against a type.
//
// A type name is a base and perhaps a shape behind a blank: "scalar" (one element) or "vector" (any number in a row).
// Bases are "any", "function", "char", "string", "struct", "cell", "logical", the numeric classes,
// "CorvidFactoryString" once it is known, and names of classes. "<enumeration> property" is a type of its own. Thread
// rule: the host's thread.
#pragma once

#include <memory>
#include <string_view>

#include "corvid/HostAllocated.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid {

class TESSEL_EXPORT CorvidTypeConverter : public HostAllocated {
 public:
  virtual ~CorvidTypeConverter();

  /// The value as the target type, or null when this converter has nothing to say to it.
  virtual kestrel::OwnedArray convert(kestrel_array const& value) const = 0;
};

class TESSEL_EXPORT CorvidTypeRepository {
 public:
  /// Null when there is none.
  [[nodiscard]] static CorvidTypeConverter* getConversion(std::string_view from, std::string_view to);
  /// Gives the converter back to the caller; null when there is none.
  static std::unique_ptr<CorvidTypeConverter> removeConversion(std::string_view from, std::string_view to);
  /// Raises DuplicateName when there is one already.
  static void addConversion(std::string_view from, std::string_view to, std::unique_ptr<CorvidTypeConverter> converter);

  /// Raises NoSuchType unless the name is that of a data type; a class needs not exist yet.
  static void requireType(Identifier type);

  /// The value as it is when it conforms to the type, otherwise converted and kept in `holder`, first by the conversion
  /// from "any" to the type, then between numbers and between texts as far as nothing is lost; only a double becomes a
  /// single by rounding, as long as it stays finite. An empty value conforms to every class and to every vector; any
  /// number that is not NaN is a logical value. Raises WrongType, ValueOutOfRange, and InvalidHandle for an object that
  /// is gone.
  static kestrel_array const& coerce(Identifier type, kestrel_array const& value, kestrel::OwnedArray& holder);
};

}  // namespace corvid
