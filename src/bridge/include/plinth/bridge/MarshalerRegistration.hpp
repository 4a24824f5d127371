// What a static object of a library does for the types of its package: their marshalers are known from when it is
// loaded until the process ends. Ownership: the registry owns the marshalers. Thread rule: the thread that loads the
// library, or ends the process.
#pragma once

#include <memory>
#include <vector>

#include "groundwork/export.hpp"
#include "plinth/bridge/PolicyBasedValueMarshaler.hpp"
#include "plinth/bridge/RowProperties.hpp"

namespace plinth::bridge {

/// Registers marshalers while a library loads, and takes them out when the process ends. A library that is closed with
/// dlclose stays loaded until then, and so do its marshalers: the metamodel, which knows its types, is never taken
/// down.
class TESSEL_EXPORT MarshalerRegistration {
 public:
  using Make = std::unique_ptr<ValueMarshaler> (*)(meta::Type const& type);
  struct Row {
    meta::Type type;
    Make make;
  };

  [[nodiscard]] explicit MarshalerRegistration(std::vector<Row> const& rows);
  MarshalerRegistration(MarshalerRegistration const&) = delete;
  MarshalerRegistration& operator=(MarshalerRegistration const&) = delete;
  ~MarshalerRegistration();

 private:
  std::vector<meta::Type> m_types;
};

/// The row of T, a datatype or an enumeration of a model: makes T known to the bridge.
template <class T>
MarshalerRegistration::Row marshalerOf() {
  using M = std::conditional_t<std::is_enum_v<T>, PolicyBasedEnumValueMarshaler<T>, PolicyBasedValueMarshaler<T>>;
  auto const make = [](meta::Type const& type) -> std::unique_ptr<ValueMarshaler> {
    return std::make_unique<FieldMarshaler<T, M>>(type);
  };
  return {meta::Type(MetaTypeOf<T>::type()), make};
}

}  // namespace plinth::bridge
