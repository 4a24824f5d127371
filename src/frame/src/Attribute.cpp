#include "tessel_config_datamodel/frame/Attribute.hpp"

namespace tessel::frame {

template TESSEL_EXPORT void setAttribute<bool>(Element&, bool&, bool, PropertyDescriptor const&);
template TESSEL_EXPORT void setAttribute<double>(Element&, double&, double, PropertyDescriptor const&);
template TESSEL_EXPORT void setAttribute<int>(Element&, int&, int, PropertyDescriptor const&);
template TESSEL_EXPORT void setAttribute<long>(Element&, long&, long, PropertyDescriptor const&);
template TESSEL_EXPORT void setAttribute<unsigned long>(Element&, unsigned long&, unsigned long,
                                                        PropertyDescriptor const&);
template TESSEL_EXPORT void setAttribute<unsigned int>(Element&, unsigned int&, unsigned int,
                                                       PropertyDescriptor const&);
template TESSEL_EXPORT void setAttribute<std::u16string>(Element&, std::u16string&, std::u16string const&,
                                                         PropertyDescriptor const&);
template TESSEL_EXPORT void setOptional<unsigned int>(Element&, boost::optional<unsigned int>&,
                                                      boost::optional<unsigned int> const&, PropertyDescriptor const&);
template TESSEL_EXPORT void setOptional<std::u16string>(Element&, boost::optional<std::u16string>&,
                                                        boost::optional<std::u16string> const&,
                                                        PropertyDescriptor const&);

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
