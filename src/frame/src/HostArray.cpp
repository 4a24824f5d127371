#include "tessel_config_datamodel/frame/HostArray.hpp"

#include "plinth/FailurePoint.hpp"
#include "plinth/Step.hpp"

namespace tessel::frame {

HostArrayField HostArray::copyOf(kestrel_array const* array) {
  if (array == nullptr) return nullptr;
  plinth::failurePoint("host-array-copy");
  return kestrel::copyForPropertyContainment(array);
}

bool operator==(HostArray const& left, HostArray const& right) noexcept {
  if (left.get() == nullptr || right.get() == nullptr) return left.get() == right.get();
  return kestrel::equalContents(left.get(), right.get());
}

void setHostArray(Element& self, HostArrayField& field, kestrel_array const* array, PropertyDescriptor const& row) {
  core(self).requireModifiable();
  if (field.get() == array) return;
  HostArrayField copy = HostArray::copyOf(array);
  plinth::Step step(self.model(), plinth::Step::STORE);
  core(self).notifyModifying(row.index);
  field = std::move(copy);
  step.commit();
}

bool HostArrayKind::has(Element const& element, Row const& row) const {
  return fieldOf<HostArrayField>(element, row) != nullptr;
}

plinth::Value HostArrayKind::get(Element& element, Row const& row, Tag const&) const {
  return plinth::Value::make(plinth::ValueMeta(*row.property), HostArray(fieldOf<HostArrayField>(element, row).get()));
}

void HostArrayKind::set(Element& element, Row const& row, plinth::Value const& value, Tag const&) const {
  value.checkCompatible<HostArray>();
  auto const* const content = static_cast<HostArray const*>(value.content());
  setHostArray(element, fieldOf<HostArrayField>(element, row), content == nullptr ? nullptr : content->get(), row);
}

plinth::Value HostArrayKind::oldValue(ElementStorage& storage, Row const& row) const {
  return plinth::Value::make(plinth::ValueMeta(*row.property), HostArray(slotOf<HostArrayField>(storage, row).get()));
}

bool HostArrayKind::build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const {
  value.checkCompatible<HostArray>();
  auto const* const content = static_cast<HostArray const*>(value.content());
  builderFieldOf<HostArrayField>(builder, row) = HostArray::copyOf(content == nullptr ? nullptr : content->get());
  return true;
}

void HostArrayKind::initialize(Element& element, ElementBuilder& builder, Row const& row) const {
  fieldOf<HostArrayField>(element, row) = HostArray::copyOf(builderFieldOf<HostArrayField>(builder, row).get());
}

}  // namespace tessel::frame

namespace plinth {

std::uint64_t ValueHash<tessel::frame::HostArray>::operator()(tessel::frame::HostArray const& array) const noexcept {
  return array.get() == nullptr ? 0 : kestrel::numberOfElements(*array.get());
}

}  // namespace plinth
