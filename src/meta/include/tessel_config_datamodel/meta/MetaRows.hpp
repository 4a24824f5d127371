// The rows from which a metamodel is made: what the tables say of each package, datatype, enumeration and literal; that
// of a class stands in its frame::ClassTable. Types and properties are named, handles are told by their offset in the
// meta package. Ownership: static data, laid out by the compiler. Thread rule: read under the registry's mutex.
#pragma once

#include <memory>
#include <vector>

#include "plinth/meta/AbstractMetaPackage.hpp"
#include "plinth/meta/Serializers.hpp"
#include "tessel_config_datamodel/frame/PropertyDescriptor.hpp"

namespace tessel::metamodel {

/// The rows of an array that is laid out elsewhere.
template <class Row>
struct RowsOf {
  Row const* first = nullptr;
  std::size_t count = 0;

  constexpr RowsOf() = default;
  template <std::size_t N>
  constexpr RowsOf(Row const (&rows)[N]) : first(rows), count(N) {}  // NOLINT(google-explicit-constructor)
  Row const* begin() const noexcept { return first; }
  Row const* end() const noexcept { return first + count; }
};

struct OperationRow {
  char16_t const* name;
  std::size_t slot;
  char16_t const* type;
};

struct DatatypeRow {
  frame::TypeFacts facts;
  RowsOf<frame::PropertyFacts> properties;
  RowsOf<OperationRow> operations;
  plinth::meta::CollectionFactory collections;
  std::unique_ptr<plinth::meta::DatatypeSerializer> (*serializer)();
};

struct LiteralRow {
  char16_t const* name;
  std::size_t slot;
  int value;
};

struct EnumRow {
  frame::TypeFacts facts;
  RowsOf<LiteralRow> literals;
  plinth::meta::CollectionFactory collections;
  void (*registerSerializers)(plinth::meta::PropertySerializerRegistry& registry, plinth::meta::Enum const& type);
};

/// A class or a datatype.
struct TypeRow {
  frame::ClassTable* table;
  DatatypeRow const* datatype = nullptr;

  frame::TypeFacts const& facts() const noexcept { return table != nullptr ? table->facts : datatype->facts; }
};

struct PrimitiveRow {
  std::size_t slot;
  char const* name;
};

struct PackageRow {
  plinth::meta::Package* handle;
  char16_t const* name;
  char16_t const* uri;
  plinth::meta::Package* parent;
  RowsOf<TypeRow> types{};  ///< classes and datatypes by simple name
  RowsOf<PrimitiveRow> primitives{};
  RowsOf<EnumRow const*> enums{};
};

/// The root of a model.
struct RootRow {
  plinth::meta::Package* handle;
  char const* modelName;  ///< its UUID is the root package's
  char16_t const* uri;
  std::vector<std::u16string> importedUris;
  std::vector<void (*)()> imports;  ///< brings up the meta packages that this one takes types from
};

}  // namespace tessel::metamodel
