#include "HostArrayMarshaler.hpp"

#include <algorithm>

#include "corvid/CorvidClass.hpp"
#include "corvid/HostError.hpp"
#include "kestrel/Array.hpp"
#include "plinth/Messages.hpp"
#include "tessel_config_datamodel/frame/HostArray.hpp"

namespace plinth::bridge {

using tessel::frame::HostArray;

namespace {

[[noreturn]] void refuse(meta::Type const& type) {
  reportException(messages::CannotCastIncompatibleTypes(type->getQualifiedName(), type->narrowName(), "single",
                                                        "collection of values"));
}

// Handles on a model, and on what is in one.
constexpr char const* HANDLE_CLASSES[] = {"plinth.ModelElement", "plinth.Model", "plinth.Transaction",
                                          "plinth.Sequence",     "plinth.Set",   "plinth.Map",
                                          "plinth.Multimap"};

bool isModelHandle(kestrel::ObjectRef const& object) {
  auto const* const hostClass = object ? corvid::CorvidClass::getClass(object->className()) : nullptr;
  if (hostClass == nullptr) return false;
  static std::vector<corvid::Identifier> const handles = [] {
    std::vector<corvid::Identifier> names;
    for (char const* name : HANDLE_CLASSES) names.push_back(corvid::internal::makeInterned(name));
    return names;
  }();
  return std::any_of(handles.begin(), handles.end(),
                     [&](corvid::Identifier name) { return hostClass->isSubclassOf(name); });
}

// An element that held a handle would keep the handle's model alive, and by it itself: for ever.
void refuseModelHandle(kestrel::ObjectRef const& object) {
  if (isModelHandle(object))
    throw corvid::HostError(corvid::ErrorKey::WRONG_TYPE,
                            "A host array keeps values, not the handle '" + object->className().text() +
                                "', which would keep its model alive; keep the UUID of an element instead.");
}

// Looks into one array; what it holds is looked into later, since arrays may be nested deeper than a stack is long.
void refuseModelHandles(kestrel_array const& array, std::vector<kestrel_array const*>& open) {
  auto const later = [&](kestrel_array const* held) {
    if (held != nullptr) open.push_back(held);
  };
  for (std::size_t i = 0; i < kestrel::numberOfElements(array); ++i) {
    switch (kestrel::baseClass(array)) {
      case kestrel::ClassId::Object:
        refuseModelHandle(kestrel::object(array, i));
        break;
      case kestrel::ClassId::Cell:
        later(kestrel::cell(array, i));
        break;
      case kestrel::ClassId::Struct:
        for (std::string const& name : kestrel::fieldNames(array)) later(kestrel::field(array, i, name));
        break;
      default:
        return;
    }
  }
}

}  // namespace

kestrel::OwnedArray HostArrayMarshaler::fromCollection(AbstractPrimitiveCollection const&) const { refuse(type()); }

kestrel::OwnedArray HostArrayMarshaler::fromValueVector(std::vector<Value> const&) const { refuse(type()); }

std::vector<Value> HostArrayMarshaler::toValueVector(kestrel_array const&) const { refuse(type()); }

Value HostArrayMarshaler::toUnmanagedSequence(kestrel_array const&) const { refuse(type()); }

Value HostArrayMarshaler::toUnmanagedSetValue(kestrel_array const&) const { refuse(type()); }

kestrel::OwnedArray HostArrayMarshaler::toHost(Value const& value) const {
  value.checkCompatible<HostArray>();
  auto const* const content = static_cast<HostArray const*>(value.content());
  kestrel_array const* const array = content != nullptr ? content->get() : nullptr;
  return array != nullptr ? kestrel::deepCopy(array) : kestrel::createEmpty(kestrel::ClassId::Double);
}

Value HostArrayMarshaler::fromHost(kestrel_array const& array) const {
  bool const isNothing = kestrel::isEmpty(array) &&
                         kestrel::classIdentifier(array) == static_cast<std::uint32_t>(kestrel::ClassId::Double);
  return Value::make(metaOf(meta::SINGLE), isNothing ? HostArray() : HostArray(&array));
}

Value HostArrayMarshaler::fromKestrelArray(kestrel_array const& array) const {
  std::vector<kestrel_array const*> open{&array};
  while (!open.empty()) {
    kestrel_array const* const each = open.back();
    open.pop_back();
    refuseModelHandles(*each, open);
  }
  return fromHost(array);
}

corvid::Identifier HostArrayMarshaler::dataType() const {
  static corvid::Identifier const any = corvid::internal::makeInterned("any");
  return any;
}

}  // namespace plinth::bridge
