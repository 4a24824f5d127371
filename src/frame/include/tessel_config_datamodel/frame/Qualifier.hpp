// Setters of properties that key a map of the container. The element leaves the map under its old key and enters it
// under the new one, in one transaction; a key that is taken is refused before it begins.
//
// Which map it is follows from the element's containment feature: the one that is qualified by this property. So one
// setter serves a property that several maps are keyed by. Thread rule: the model's thread.
#pragma once

#include <functional>
#include <string>

#include "tessel_config_datamodel/frame/Attribute.hpp"

namespace tessel::frame {

/// The setter of a qualifier that the class itself declares. Raises CannotModifyProxy and UniquenessConstraint.
TESSEL_EXPORT void setQualifier(Element& self, std::u16string& field, std::u16string const& value,
                                PropertyDescriptor const& row);

/// The setter that a subclass wraps around the one of its base: `store` calls that one, which has its own proxy check.
/// Raises UniquenessConstraint, and what `store` raises.
TESSEL_EXPORT void overrideQualifier(Element& self, std::u16string const& present, std::u16string const& value,
                                     PropertyDescriptor const& row,
                                     void (*store)(Element& self, std::u16string const& value));

/// A qualifier that the class itself declares.
class TESSEL_EXPORT QualifierKind final : public AttributeKind<std::u16string> {
 public:
  void set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const override;
};

inline constexpr QualifierKind qualifierKind{};

}  // namespace tessel::frame
