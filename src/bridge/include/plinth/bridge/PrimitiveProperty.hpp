// A property that crosses to the host by reflection and the marshaler of its type: value sequences and host arrays.
// Thread rule: the host's thread.
#pragma once

#include "plinth/bridge/RowProperties.hpp"

namespace plinth::bridge {

class TESSEL_EXPORT PrimitiveProperty final : public corvid::factory::impl::PropertyImplBase {
 public:
  /// Raises NoSuchType when the property's type has no marshaler.
  explicit PrimitiveProperty(Row const& row);

  corvid::Identifier getDataType() const override { return m_row.dataType(); }
  corvid::Multiplicity getMultiplicity() const override;
  kestrel::OwnedArray getValue(kestrel_array const& self) const override;
  /// A sequence is cleared and filled in one transaction.
  void setValue(kestrel_array const& self, kestrel_array const& value) const override;
  bool isCorrectType(kestrel_array const& value) const override;
  corvid::Identifier getValueType() const override;

 private:
  meta::PropertyImpl const& property() const noexcept { return *(*m_row).property; }

  detail::RowOfElements m_row;
};

}  // namespace plinth::bridge
