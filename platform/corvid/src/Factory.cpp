// The parts of the factory templates that do not depend on a type.
#include "HostState.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/CorvidMethod.hpp"
#include "corvid/factory/PropertyImpl.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "corvid/factory/ValueShape.hpp"

namespace corvid::factory {

CorvidMethod::CorvidMethod(Identifier name, MethodAttributes attributes,
                           std::unique_ptr<CorvidMethodSignature> signature)
    : m_name(name), m_attributes(attributes), m_signature(std::move(signature)) {
  if (m_signature == nullptr)
    throw HostError(ErrorKey::BAD_DESCRIPTION, "The method '" + name.text() + "' has no signature.");
}

std::string const& CorvidMethod::getDescription() const {
  static std::string const empty;
  return empty;
}

namespace detail {

Identifier scalarType(kestrel::ClassId id) {
  static std::unordered_map<kestrel::ClassId, Identifier> const types = [] {
    std::unordered_map<kestrel::ClassId, Identifier> scalars;
    auto const add = [&](kestrel::ClassId one) {
      scalars.emplace(one, internal::makeInterned(kestrel::nameOf(one).text() + " scalar"));
    };
    add(kestrel::ClassId::Logical);
    for (auto one = static_cast<std::uint32_t>(kestrel::ClassId::Double);
         one <= static_cast<std::uint32_t>(kestrel::ClassId::UInt64); ++one)
      add(static_cast<kestrel::ClassId>(one));
    return scalars;
  }();
  return types.at(id);
}

Identifier stringScalarType() {
  static Identifier const type = internal::makeInterned("CorvidFactoryString scalar");
  return type;
}

void initStringDataTypes() { hostState().factoryStringKnown = true; }

}  // namespace detail

namespace impl {

std::unique_ptr<CorvidMethodSignature> Invoker::createSignature(std::string_view argumentNames,
                                                                std::string_view resultType,
                                                                std::initializer_list<std::string_view> inputTypes,
                                                                std::size_t optionalTrailing) {
  auto const known = [](std::string_view name) {
    Identifier const type = internal::makeInterned(name);
    CorvidTypeRepository::requireType(type);
    return type;
  };
  auto signature = std::make_unique<CorvidMethodSignature>();
  signature->setArgumentNames(argumentNames);
  if (!resultType.empty()) signature->addOutput(known(resultType));
  for (std::string_view const type : inputTypes) signature->addInput(known(type));
  signature->setOptionalTrailing(optionalTrailing);
  return signature;
}

PropertyGetter::~PropertyGetter() = default;
PropertySetter::~PropertySetter() = default;

PropertyImpl::PropertyImpl(Identifier name, unsigned flags, std::unique_ptr<PropertyGetter> getter,
                           std::unique_ptr<PropertySetter> setter)
    : PropertyImplBase(name, flags), m_getter(std::move(getter)), m_setter(std::move(setter)) {}

void PropertyImpl::setValue(kestrel_array const& self, kestrel_array const& value) const {
  if (m_setter == nullptr)
    throw HostError(ErrorKey::READ_ONLY_PROPERTY, "The property '" + getName().text() + "' can't be set.");
  m_setter->set(self, value);
}

namespace {

void* nativeOfElement(kestrel_array const& self, Identifier className, std::size_t index) {
  if (!kestrel::isObject(self) || index >= kestrel::numberOfElements(self)) return nullptr;
  kestrel::ObjectRef const& object = kestrel::object(self, index);
  return object ? object->native(className) : nullptr;
}

}  // namespace

// Nearly every array is of one object.
void* nativeOf(kestrel_array const& self, Identifier className, std::size_t index) {
  kestrel::Object* const sole = kestrel::soleObject(self);
  return sole != nullptr && index == 0 ? sole->native(className) : nativeOfElement(self, className, index);
}

void reportInvalidSelf(Identifier className) {
  throw HostError(ErrorKey::INVALID_HANDLE,
                  "There is no object of the class '" + className.text() + "' behind this handle any more.");
}

}  // namespace impl
}  // namespace corvid::factory
