#include "plinth/bridge/RowProperties.hpp"

#include "plinth/bridge/MetaMarshalerRegistry.hpp"
#include "plinth/collections/ReferenceSequence.hpp"
#include "tessel_config_datamodel/frame/ElementCollection.hpp"
#include "tessel_config_datamodel/frame/Qualifier.hpp"
#include "tessel_config_datamodel/frame/SingleElement.hpp"
#include "tessel_config_datamodel/frame/ValueCollection.hpp"

namespace plinth::bridge {

namespace frame = tessel::frame;
using corvid::Identifier;
using corvid::Multiplicity;
using corvid::factory::impl::PropertyGetter;
using corvid::factory::impl::PropertySetter;
using corvid::internal::makeInterned;

using detail::RowOfElements;
using detail::Store;

namespace {

template <class Kind>
bool isOf(Row const& row) {
  return dynamic_cast<Kind const*>(row.kind) != nullptr;
}

ModelElement elementAt(kestrel_array const& objects, Identifier className, std::size_t index = 0) {
  void* const native = corvid::factory::impl::nativeOf(objects, className, index);
  return corvid::factory::SelfTraits<ModelElement>::fromNative(native);
}

class OneElement {
 public:
  using Given = ModelElement;
  static constexpr Multiplicity MULTIPLICITY = Multiplicity::Single;

  static Identifier dataType(Row const& row) { return hostName(*row.property->type()); }
  static kestrel::OwnedArray read(frame::Element& self, RowOfElements const& row) {
    auto const& field = frame::fieldOf<frame::ElementField>(self, *row);
    return announceElement(frame::readElement(self, field, *row), row.dataType());
  }
  static ModelElement fromHost(kestrel_array const& value, Identifier dataType) { return elementAt(value, dataType); }
  static Store<ModelElement> storeOf(Row const& row) {
    if (isOf<frame::ContainmentKind>(row)) return &storeBy<&frame::setContainment>;
    if (isOf<frame::OppositeReferenceKind>(row)) return &storeBy<&frame::setOppositeReference>;
    return isOf<frame::OneWayReferenceKind>(row) ? &storeBy<&frame::setReference> : &storeByKind;
  }

 private:
  template <auto SET>
  static void storeBy(frame::Element& self, ModelElement const& target, Row const& row) {
    SET(self, frame::fieldOf<frame::ElementField>(self, row), target, row);
  }
  static void storeByKind(frame::Element& self, ModelElement const& target, Row const& row) {
    Value const value = Value::createElementValue(meta::Property(row.property), target);
    row.kind->set(self, row, value, ReflectionPrivateTag::PUBLIC_ACCESS);
  }
};

/// A sequence is an array, read and written as a whole.
class ElementRow {
 public:
  using Given = std::vector<ModelElement>;
  static constexpr Multiplicity MULTIPLICITY = Multiplicity::Many;

  static Identifier dataType(Row const& row) { return OneElement::dataType(row); }
  static kestrel::OwnedArray read(frame::Element& self, RowOfElements const& row) {
    auto& sequence = static_cast<ReferenceSequence&>(*frame::readCollection(self, *row));
    sequence.resolveAll();
    return announceElements(sequence.raw(), row.dataType());
  }
  static std::vector<ModelElement> fromHost(kestrel_array const& value, Identifier dataType) {
    std::vector<ModelElement> elements(kestrel::numberOfElements(value));
    for (std::size_t i = 0; i < elements.size(); ++i) elements[i] = elementAt(value, dataType, i);
    return elements;
  }
  static Store<std::vector<ModelElement>> storeOf(Row const&) { return &assign; }

 private:
  /// Clears the sequence and adds the elements, as one change.
  static void assign(frame::Element& self, std::vector<ModelElement> const& elements, Row const& row) {
    ReferenceCollection& sequence = *frame::readCollection(self, row);
    Transaction transaction = self.model().beginTransaction(false);
    GenericCollectionInterface& view = *sequence.getGenericInterface();
    view.genericClear();
    for (ModelElement const& element : elements) view.genericAdd(element);
    transaction.commit();
  }
};

/// A set or map is an object that scripts walk and change by its methods.
class ElementObject {
 public:
  static constexpr Multiplicity MULTIPLICITY = Multiplicity::Single;

  static Identifier dataType(Row const& row) {
    return makeInterned(row.facts.flags == meta::MAP ? "plinth.Map" : "plinth.Set");
  }
  static kestrel::OwnedArray read(frame::Element& self, RowOfElements const& row) {
    return announceCollection(frame::readCollection(self, *row));
  }
};

/// A set or map of values reads as an array.
class ValueArray {
 public:
  static constexpr Multiplicity MULTIPLICITY = Multiplicity::Many;

  static Identifier dataType(Row const& row) {
    return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(row.property->getType()).rowDataType();
  }
  static kestrel::OwnedArray read(frame::Element& self, RowOfElements const& row) {
    return marshalCollection(frame::readValues(self, *row));
  }
};

template <class C>
std::unique_ptr<corvid::CorvidPropInfo> readOnly(Row const& row) {
  return detail::describeProperty(*row.property, 0, std::make_unique<detail::RowGetter<C>>(row), nullptr);
}

}  // namespace

std::unique_ptr<corvid::CorvidPropInfo> makeProperty(Row const& row) {
  bool const isSequence = row.facts.flags == meta::SEQUENCE;
  if (isOf<frame::SingleElementKind>(row)) return detail::readWrite<OneElement>(row);
  if (isOf<frame::ElementCollectionKind>(row))
    return isSequence ? detail::readWrite<ElementRow>(row) : readOnly<ElementObject>(row);
  if (isOf<frame::ValueCollectionKind>(row) && !isSequence) return readOnly<ValueArray>(row);
  return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(row.property->getType()).makeProperty(row);
}

Store<std::u16string> detail::keyStoreOf(Row const& row) {
  if (row.setText != nullptr)
    return [](frame::Element& self, std::u16string const& value, Row const& key) { key.setText(self, value); };
  if (!isOf<frame::QualifierKind>(row)) return nullptr;
  return [](frame::Element& self, std::u16string const& value, Row const& key) {
    frame::setQualifier(self, frame::fieldOf<std::u16string>(self, key), value, key);
  };
}

std::unique_ptr<corvid::CorvidPropInfo> detail::describeProperty(meta::PropertyImpl const& property, unsigned flags,
                                                                 std::unique_ptr<PropertyGetter> getter,
                                                                 std::unique_ptr<PropertySetter> setter) {
  return std::make_unique<corvid::factory::impl::PropertyImpl>(
      memberName(property), property.isCorvidHidden() ? corvid::HIDDEN_PROPERTY : flags, std::move(getter),
      std::move(setter));
}

}  // namespace plinth::bridge
