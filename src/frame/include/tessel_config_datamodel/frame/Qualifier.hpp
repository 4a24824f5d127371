// Setters of properties that key a map of the container. The element leaves the map under its old key and enters it
// under the new one, in one transaction; a key that is taken is refused before it begins.
//
// Which map it is follows from the element's containment feature: the one that is qualified by this property. So one
// setter serves a property that several maps are keyed by. Thread rule: the model's thread.
#pragma once

#include <string>

#include "tessel_config_datamodel/frame/Attribute.hpp"

namespace tessel::frame {

/// A qualifier that the class itself declares.
class TESSEL_EXPORT QualifierKind final : public AttributeKind<std::u16string> {
 public:
  void set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const override;
};

inline constexpr QualifierKind qualifierKind{};

}  // namespace tessel::frame
