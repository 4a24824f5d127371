// From host structs to builders.
#include <algorithm>
#include <boost/uuid/string_generator.hpp>
#include <string>

#include "ModelErrors.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "corvid/factory/ValueShape.hpp"
#include "groundwork/unicode.hpp"
#include "kestrel/array.hpp"
#include "plinth/Value.hpp"
#include "plinth/bridge/Construct.hpp"
#include "plinth/bridge/ElementBinding.hpp"
#include "plinth/bridge/MetaMarshalerRegistry.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth::bridge::detail {
namespace {

using corvid::HostError;

/// The field that names a subclass; no property has a name in lower case.
constexpr char const* CLASS_FIELD = "class";

meta::Class findClass(std::string const& name, meta::Class const& declared) {
  auto const& registry = meta::MetaRegistry::getInstance();
  meta::Type type = registry.findType(name);
  std::string const& declaredName = declared->narrowName();
  if (type.isEmpty()) type = registry.findType(declaredName.substr(0, declaredName.rfind('.') + 1) + name);
  if (type.isEmpty()) reportException(messages::NoSuchType(groundwork::toUtf16(name)));
  auto* const metaClass = dynamic_cast<meta::ClassImpl*>(type.impl());
  if (metaClass == nullptr || !metaClass->conformsTo(*declared.impl()))
    reportException(messages::CannotAddIncompatibleTypes(declared->getQualifiedName(), type->getQualifiedName()));
  return meta::Class(metaClass);
}

/// The class that a struct names, or the declared one. Raises WrongType for a field that is no text.
meta::Class classToBuild(kestrel_array const& hostStruct, std::size_t index, meta::Class const& declared) {
  kestrel_array const* const named =
      kestrel::hasField(hostStruct, CLASS_FIELD) ? kestrel::field(hostStruct, index, CLASS_FIELD) : nullptr;
  if (named == nullptr || kestrel::isEmpty(*named)) return declared;
  kestrel::OwnedArray made;
  auto const& name = corvid::CorvidTypeRepository::coerce(corvid::factory::detail::stringScalarType(), *named, made);
  return findClass(groundwork::toUtf8(kestrel::scalarText(name)), declared);
}

/// A front end that has one form for both can't tell a struct without fields from a list without elements.
bool isEmptyTable(kestrel_array const& value) {
  return kestrel::isStruct(value) && kestrel::isScalar(value) && kestrel::fieldNames(value).empty();
}

/// Gives the fields of one struct to a builder.
class FieldReader {
 public:
  FieldReader(ModelElementBuilder& builder, Model const& model) : m_builder(builder), m_model(model) {}

  void read(kestrel_array const& hostStruct, std::size_t index) {
    for (std::string const& name : kestrel::fieldNames(hostStruct)) {
      if (name == CLASS_FIELD) continue;
      kestrel_array const* const value = kestrel::field(hostStruct, index, name);
      meta::Property const property = requireProperty(name);
      // Only of a text is the empty one a value.
      if (value == nullptr || (kestrel::isEmpty(*value) && !kestrel::isText(*value))) continue;
      giveNamed(property, *value);
    }
  }

 private:
  meta::Property requireProperty(std::string const& name) const {
    std::u16string const wideName = groundwork::toUtf16(name);
    meta::PropertyImpl* const property = m_builder.getMetaClass()->findProperty(wideName);
    if (property == nullptr) refuseField(wideName);
    return meta::Property(property);
  }

  [[noreturn]] void refuseField(std::u16string name) const {
    // A sentence is told as a C string.
    std::replace(name.begin(), name.end(), u'\0', u'\xfffd');
    reportException(messages::NoSuchProperty(name, m_builder.getMetaClass()->getQualifiedName()));
  }

  /// Errors speak of values and types alone: here they get the name of the property.
  void giveNamed(meta::Property const& property, kestrel_array const& value) {
    try {
      give(property, value);
    } catch (...) {
      rethrowAt("Property '" + memberName(*property.impl()).text() + "'");
    }
  }

  void give(meta::Property const& property, kestrel_array const& value) {
    if (property->isMany() && isEmptyTable(value)) return;
    if (dynamic_cast<meta::ClassImpl const*>(property->type()) == nullptr) {
      giveValues(property, value);
    } else if (property->isComposite()) {
      giveChildren(property, value);
    } else {
      giveElements(property, value);
    }
  }

  void giveValues(meta::Property const& property, kestrel_array const& value) {
    auto const& marshaler = MetaMarshalerRegistry::getInstance().getPropertyMarshaler(property->getType());
    if (!property->isMany()) return m_builder.setOrAdd(property, marshaler.fromKestrelArray(value));
    for (Value const& each : marshaler.toValueVector(value)) m_builder.setOrAdd(property, each);
  }

  void giveElements(meta::Property const& property, kestrel_array const& value) {
    requireOneUnlessMany(property, value);
    kestrel::OwnedArray made;
    kestrel_array const& objects = corvid::CorvidTypeRepository::coerce(hostName(*property->type()), value, made);
    for (std::size_t i = 0; i < kestrel::numberOfElements(objects); ++i) {
      auto const element = corvid::factory::impl::selfOf<ModelElement>(objects, i);
      corvid::factory::impl::validateSelfPointer<ModelElement>(element);
      m_builder.setOrAdd(property, Value::createElementValue(property, element));
    }
  }

  void giveChildren(meta::Property const& property, kestrel_array const& value) {
    if (kestrel::isObject(value)) refuseElement(property);
    requireOneUnlessMany(property, value);
    if (kestrel::baseClass(value) == kestrel::ClassId::Cell) {
      for (std::size_t i = 0; i < kestrel::numberOfElements(value); ++i) {
        kestrel_array const* const cell = kestrel::cell(value, i);
        if (cell != nullptr) giveChildren(property, *cell);
      }
      return;
    }
    if (!kestrel::isStruct(value))
      throw HostError(corvid::ErrorKey::WRONG_TYPE, "Expected a struct of initial values, or a list of them, not " +
                                                        corvid::describeValue(value) + ".");
    meta::Class const declared(static_cast<meta::ClassImpl*>(property->type()));
    for (std::size_t i = 0; i < kestrel::numberOfElements(value); ++i)
      m_builder.setOrAdd(property, createBuilderFromStructFirst(value, i, m_model, declared));
  }

  static void requireOneUnlessMany(meta::Property const& property, kestrel_array const& value) {
    if (property->isMany() || kestrel::numberOfElements(value) <= 1 || kestrel::isText(value)) return;
    throw HostError(corvid::ErrorKey::WRONG_TYPE, "Expected one value, not " + corvid::describeValue(value) + ".");
  }

  /// A builder makes what its element contains.
  [[noreturn]] void refuseElement(meta::Property const& property) const {
    detail::reportCause(
        messages::NoSuchProperty(property->getName(), m_builder.getMetaClass()->getQualifiedName()),
        "an element that is made contains new elements only, each given as a struct of initial values; one that exists "
        "is put in afterwards.");
  }

  ModelElementBuilder& m_builder;
  Model const& m_model;
};

}  // namespace

std::unique_ptr<ModelElementBuilder> createBuilderFromStruct(kestrel_array const& hostStruct, std::size_t index,
                                                             Model const& model, meta::Class const& metaClass) {
  if (index >= kestrel::numberOfElements(hostStruct))
    reportInvalidValue("there are no initial values in " + corvid::describeValue(hostStruct) + ".");
  auto builder = classToBuild(hostStruct, index, metaClass)->instantiateBuilder(model);
  FieldReader(*builder, model).read(hostStruct, index);
  return builder;
}

std::unique_ptr<ModelElementBuilder> createBuilderFromStructFirst(kestrel_array const& hostStruct, std::size_t index,
                                                                  Model const& model, meta::Class const& metaClass) {
  return createBuilderFromStruct(hostStruct, index, model, metaClass);
}

boost::optional<boost::uuids::uuid> extractUuid(kestrel_array const& array) {
  bool const isOneText =
      kestrel::isText(array) && (kestrel::baseClass(array) == kestrel::ClassId::Char ||
                                 (kestrel::isScalar(array) && kestrel::stringElement(array).has_value()));
  if (!isOneText) return boost::none;
  std::string const text = groundwork::toUtf8(kestrel::scalarText(array));
  try {
    return boost::uuids::string_generator()(text);
  } catch (std::runtime_error const&) {
    return boost::none;
  }
}

boost::uuids::uuid requireUuid(kestrel_array const& array) {
  auto const uuid = extractUuid(array);
  if (!uuid) reportInvalidValue("expected the text of a UUID, not " + corvid::describeValue(array) + ".");
  return *uuid;
}

bool isInitialStruct(kestrel_array const& array) { return kestrel::isStruct(array) && kestrel::isScalar(array); }

}  // namespace plinth::bridge::detail
