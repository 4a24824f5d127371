#include "tessel_config_datamodel/frame/Attribute.hpp"

namespace tessel::frame {

template class AttributeKind<bool>;
template class AttributeKind<double>;
template class AttributeKind<long>;
template class AttributeKind<unsigned long>;
template class AttributeKind<unsigned int>;
template class AttributeKind<std::u16string>;
template class OptionalKind<unsigned int>;
template class OptionalKind<std::u16string>;

void TextKeyKind::set(Element& element, Row const& row, plinth::Value const& value, Tag const&) const {
  row.setText(element, value.getValue<std::u16string>());
}

}  // namespace tessel::frame
