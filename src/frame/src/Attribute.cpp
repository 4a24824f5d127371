#include "tessel_config_datamodel/frame/Attribute.hpp"

namespace tessel::frame {

template class AttributeKind<std::u16string>;
template class PlainAttributeKind<bool>;
template class PlainAttributeKind<double>;
template class PlainAttributeKind<long>;
template class PlainAttributeKind<unsigned long>;
template class PlainAttributeKind<unsigned int>;
template class PlainAttributeKind<std::u16string>;
template class OptionalKind<unsigned int>;
template class OptionalKind<std::u16string>;

void TextKeyKind::set(Element& element, Row const& row, plinth::Value const& value, Tag const&) const {
  row.setText(element, value.getValue<std::u16string>());
}

}  // namespace tessel::frame
