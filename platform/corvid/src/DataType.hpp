// A host data type, read from its name.
#pragma once

#include "corvid/Identifier.hpp"
#include "kestrel/ClassId.hpp"

namespace corvid {

struct DataType {
  enum class Kind { Any, Function, Number, Char, String, Struct, Cell, FactoryString, Class };
  enum class Shape { Unbounded, Scalar, Vector };

  Kind kind = Kind::Any;
  Shape shape = Shape::Unbounded;
  /// Of a number.
  kestrel::ClassId id = kestrel::ClassId::Double;
  /// The name of a class, without shape.
  Identifier base;

  /// Raises NoSuchType for a name that names no type.
  static DataType read(Identifier name);
};

/// Reads each name once. Raises NoSuchType.
DataType const& dataType(Identifier name);

}  // namespace corvid
