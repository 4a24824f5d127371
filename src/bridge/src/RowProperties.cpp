#include "plinth/bridge/RowProperties.hpp"

#include "plinth/bridge/ElementShapes.hpp"
#include "plinth/bridge/MetaMarshalerRegistry.hpp"
#include "plinth/collections/ReferenceSequence.hpp"
#include "tessel_config_datamodel/frame/ElementCollection.hpp"
#include "tessel_config_datamodel/frame/SingleElement.hpp"
#include "tessel_config_datamodel/frame/ValueCollection.hpp"

namespace plinth::bridge {

namespace frame = tessel::frame;
using corvid::Identifier;
using corvid::Multiplicity;
using corvid::factory::impl::PropertyGetter;
using corvid::factory::impl::PropertySetter;
using corvid::internal::makeInterned;

namespace {

std::vector<ModelElement> elementsFrom(kestrel_array const& objects, Identifier className) {
  std::vector<ModelElement> elements;
  elements.reserve(kestrel::numberOfElements(objects));
  for (std::size_t i = 0; i < kestrel::numberOfElements(objects); ++i) {
    void* const native = corvid::factory::impl::nativeOf(objects, className, i);
    elements.push_back(corvid::factory::SelfTraits<ModelElement>::fromNative(native));
  }
  return elements;
}

/// Clears the sequence and adds the elements, as one change.
void assignMembers(ReferenceCollection& sequence, std::vector<ModelElement> const& elements) {
  Transaction transaction = sequence.owner()->model().beginTransaction(false);
  GenericCollectionInterface& view = *sequence.getGenericInterface();
  view.genericClear();
  for (ModelElement const& element : elements) view.genericAdd(element);
  transaction.commit();
}

// One class for each way to cross. Each has the host data type of its values and their multiplicity, reads, and, unless
// scripts only read it, writes.

class OneElement {
 public:
  static constexpr Multiplicity MULTIPLICITY = Multiplicity::Single;

  static Identifier dataType(Row const& row) { return hostName(*row.property->type()); }
  static kestrel::OwnedArray read(frame::Element& self, Row const& row, Identifier declared) {
    return announceElement(frame::readElement(self, frame::fieldOf<frame::ElementField>(self, row), row), declared);
  }
  static void write(frame::Element& self, Row const& row, kestrel_array const& value, Identifier declared) {
    void* const native = corvid::factory::impl::nativeOf(value, declared);
    auto const element = corvid::factory::SelfTraits<ModelElement>::fromNative(native);
    Value const target = Value::createElementValue(meta::Property(row.property), element);
    row.kind->set(self, row, target, ReflectionPrivateTag::PUBLIC_ACCESS);
  }
};

/// A sequence is an array, read and written as a whole.
class ElementRow {
 public:
  static constexpr Multiplicity MULTIPLICITY = Multiplicity::Many;

  static Identifier dataType(Row const& row) { return OneElement::dataType(row); }
  static kestrel::OwnedArray read(frame::Element& self, Row const& row, Identifier declared) {
    auto& sequence = static_cast<ReferenceSequence&>(*frame::readCollection(self, row));
    sequence.resolveAll();
    std::vector<ModelElement> const members = sequence.raw();
    return detail::announceRow(members.size(), declared,
                               [&](std::size_t i) -> ModelElement const& { return members[i]; });
  }
  static void write(frame::Element& self, Row const& row, kestrel_array const& value, Identifier declared) {
    auto const elements = elementsFrom(value, declared);
    assignMembers(*frame::readCollection(self, row), elements);
  }
};

/// A set or map is an object that scripts walk and change by its methods.
class ElementObject {
 public:
  static constexpr Multiplicity MULTIPLICITY = Multiplicity::Single;

  static Identifier dataType(Row const& row) {
    return makeInterned(row.facts.flags == meta::MAP ? "plinth.Map" : "plinth.Set");
  }
  static kestrel::OwnedArray read(frame::Element& self, Row const& row, Identifier) {
    return announceCollection(frame::readCollection(self, row));
  }
};

/// A set or map of values reads as an array.
class ValueArray {
 public:
  static constexpr Multiplicity MULTIPLICITY = Multiplicity::Many;

  static Identifier dataType(Row const& row) {
    return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(row.property->getType()).rowDataType();
  }
  static kestrel::OwnedArray read(frame::Element& self, Row const& row, Identifier) {
    return marshalCollection(frame::readValues(self, row));
  }
};

template <class Crossing>
class CrossingGetter final : public PropertyGetter {
 public:
  explicit CrossingGetter(Row const& row) : m_row(row), m_dataType(Crossing::dataType(row)) {}

  Identifier dataType() const override { return m_dataType; }
  Multiplicity multiplicity() const override { return Crossing::MULTIPLICITY; }
  kestrel::OwnedArray get(kestrel_array const& self) const override {
    return Crossing::read(m_row.elementOf(self), *m_row, m_dataType);
  }

 private:
  detail::RowOfElements m_row;
  Identifier m_dataType;
};

template <class Crossing>
class CrossingSetter final : public PropertySetter {
 public:
  explicit CrossingSetter(Row const& row) : m_row(row), m_dataType(Crossing::dataType(row)) {}

  void set(kestrel_array const& self, kestrel_array const& value) const override {
    Crossing::write(m_row.elementOf(self), *m_row, value, m_dataType);
  }

 private:
  detail::RowOfElements m_row;
  Identifier m_dataType;
};

template <class Crossing>
std::unique_ptr<corvid::CorvidPropInfo> readOnly(Row const& row) {
  return detail::describeProperty(*row.property, 0, std::make_unique<CrossingGetter<Crossing>>(row), nullptr);
}
template <class Crossing>
std::unique_ptr<corvid::CorvidPropInfo> readWrite(Row const& row) {
  return detail::describeProperty(*row.property, 0, std::make_unique<CrossingGetter<Crossing>>(row),
                                  std::make_unique<CrossingSetter<Crossing>>(row));
}

template <class Kind>
bool isOf(Row const& row) {
  return dynamic_cast<Kind const*>(row.kind) != nullptr;
}

}  // namespace

std::unique_ptr<corvid::CorvidPropInfo> makeProperty(Row const& row) {
  bool const isSequence = row.facts.flags == meta::SEQUENCE;
  if (isOf<frame::SingleElementKind>(row)) return readWrite<OneElement>(row);
  if (isOf<frame::ElementCollectionKind>(row))
    return isSequence ? readWrite<ElementRow>(row) : readOnly<ElementObject>(row);
  if (isOf<frame::ValueCollectionKind>(row) && !isSequence) return readOnly<ValueArray>(row);
  return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(row.property->getType()).makeProperty(row);
}

std::unique_ptr<corvid::CorvidPropInfo> detail::describeProperty(meta::PropertyImpl const& property, unsigned flags,
                                                                 std::unique_ptr<PropertyGetter> getter,
                                                                 std::unique_ptr<PropertySetter> setter) {
  return std::make_unique<corvid::factory::impl::PropertyImpl>(
      memberName(property), property.isCorvidHidden() ? corvid::HIDDEN_PROPERTY : flags, std::move(getter),
      std::move(setter));
}

}  // namespace plinth::bridge
