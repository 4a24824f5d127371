// Host arrays: attributes whose value is an array of the host, held as an owned copy. They are compared by pointer,
// never by contents; null is no value. Ownership: the element owns its copy, change storage another. Thread rule: the
// model's thread.
#pragma once

#include "kestrel/Array.hpp"
#include "tessel_config_datamodel/frame/FieldKind.hpp"
#include "tessel_config_datamodel/frame/Fields.hpp"

namespace tessel::frame {

/// A host array as the content of a value: copied with it.
class TESSEL_EXPORT HostArray {
 public:
  HostArray() = default;
  explicit HostArray(kestrel_array const* array) : m_array(copyOf(array)) {}
  HostArray(HostArray const& other) : m_array(copyOf(other.get())) {}
  HostArray(HostArray&&) noexcept = default;
  HostArray& operator=(HostArray other) noexcept {
    m_array = std::move(other.m_array);
    return *this;
  }
  kestrel_array const* get() const noexcept { return m_array.get(); }
  /// Null when `array` is null.
  static HostArrayField copyOf(kestrel_array const* array);
  friend TESSEL_EXPORT bool operator==(HostArray const& left, HostArray const& right) noexcept;

 private:
  HostArrayField m_array;
};

template <>
struct KeptField<HostArrayField> {
  static HostArrayField copyOf(HostArrayField const& field) { return HostArray::copyOf(field.get()); }
};

class TESSEL_EXPORT HostArrayKind final : public FieldKind<HostArrayField> {
 public:
  FieldGroup group() const noexcept override { return FieldGroup::ATTRIBUTE; }
  bool has(Element const& element, Row const& row) const override;
  plinth::Value get(Element& element, Row const& row, Tag const& tag) const override;
  void set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const override;
  plinth::Value oldValue(ElementStorage& storage, Row const& row) const override;
  bool build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const override;
  using PropertyKind::build;
  void initialize(Element& element, ElementBuilder& builder, Row const& row) const override;
};

inline constexpr HostArrayKind hostArrayKind{};

}  // namespace tessel::frame

namespace plinth {
template <>
struct MetaTypeOf<tessel::frame::HostArray> {
  static meta::TypeImpl* type() { return StandardTypes::kestrelArrayMeta(); }
};
/// Arrays are told apart by their contents' size alone: equal ones hash alike, which is all that is asked of a hash.
template <>
struct ValueHash<tessel::frame::HostArray> {
  TESSEL_EXPORT std::uint64_t operator()(tessel::frame::HostArray const& array) const noexcept;
};
}  // namespace plinth
