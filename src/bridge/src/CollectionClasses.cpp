// "plinth.Sequence", "plinth.Set", "plinth.Map" and "plinth.Multimap": collections of elements as objects that scripts
// walk and change.
#include "FoundationClasses.hpp"
#include "ModelErrors.hpp"
#include "corvid/HostError.hpp"
#include "corvid/Invocation.hpp"
#include "corvid/factory/BindingRegistry.hpp"
#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "kestrel/Array.hpp"
#include "plinth/bridge/ElementShapes.hpp"
#include "plinth/collections/ReferenceAssociative.hpp"
#include "plinth/collections/ReferenceSequence.hpp"
#include "plinth/collections/SubsetView.hpp"

namespace plinth::bridge {
namespace {

/// A collection with the view that its methods go through. Usable as long as its owner is.
class Collection {
 public:
  Collection() = default;
  explicit Collection(ReferenceCollection* collection) : m_collection(collection), m_owner(collection->owner()) {}

  explicit operator bool() const noexcept { return static_cast<bool>(m_owner); }
  ReferenceCollection& operator*() const noexcept { return *m_collection; }
  ReferenceCollection* operator->() const noexcept { return m_collection; }
  GenericCollectionInterface& view() const { return *m_collection->getGenericInterface(); }
  GenericSequenceInterface& sequence() const { return static_cast<GenericSequenceInterface&>(view()); }
  GenericMapInterface& map() const { return static_cast<GenericMapInterface&>(view()); }

 private:
  ReferenceCollection* m_collection = nullptr;
  ModelElement m_owner;
};

/// Tags for SelfTraits: the shapes differ in their class and in nothing else.
struct SequenceTag {
  static constexpr std::string_view CLASS = "plinth.Sequence";
};
struct SetTag {
  static constexpr std::string_view CLASS = "plinth.Set";
};
struct MapTag {
  static constexpr std::string_view CLASS = "plinth.Map";
};
struct MultimapTag {
  static constexpr std::string_view CLASS = "plinth.Multimap";
};

}  // namespace
}  // namespace plinth::bridge

namespace corvid::factory {

template <class Tag>
struct SelfTraits<Tag, std::void_t<decltype(Tag::CLASS)>> {
  using Self = plinth::bridge::Collection;
  static Identifier className() {
    static Identifier const name = internal::makeInterned(Tag::CLASS);
    return name;
  }
  static Self fromNative(void* native) {
    return native != nullptr ? Self(static_cast<plinth::ReferenceCollection*>(native)) : Self();
  }
};

}  // namespace corvid::factory

namespace plinth::bridge {
namespace {

using corvid::CorvidClass;
using corvid::MethodCall;

constexpr std::string_view POSITION = "uint32 scalar";

ModelElement elementAt(MethodCall const& call, std::size_t input) {
  return corvid::factory::impl::selfOf<ModelElement>(call.input(input));
}

/// For what changes a collection: nothing is no element. Raises InvalidHandle.
void requireGiven(ModelElement const& element) {
  if (element.isEmpty()) throw corvid::HostError(corvid::ErrorKey::INVALID_HANDLE, "Expected an element, not nil.");
}

ModelElement requireElement(MethodCall const& call, std::size_t input) {
  ModelElement element = elementAt(call, input);
  requireGiven(element);
  corvid::factory::impl::validateSelfPointer<ModelElement>(element);
  return element;
}

/// For what only looks for an element: nothing is nowhere, and of one that is destroyed no question can be answered.
/// Raises InvalidHandle.
ModelElement soughtElement(MethodCall const& call, std::size_t input) {
  ModelElement const element = elementAt(call, input);
  return element.isEmpty() ? element : requireElement(call, input);
}

/// A member that is destroyed can still be taken out; the untyped view would do nothing.
void removeDestroyed(ReferenceCollection& collection, ModelElement const& element) {
  if (auto* const view = dynamic_cast<SubsetView*>(&collection)) {
    removeDestroyed(view->parent(), element);
  } else if (auto* const sequence = dynamic_cast<ReferenceSequence*>(&collection)) {
    sequence->removeElement(element);
  } else if (auto* const others = dynamic_cast<ReferenceAssociative*>(&collection)) {
    others->removeMember(element);
  }
}

void remove(Collection const& self, MethodCall& call) {
  ModelElement const element = elementAt(call, 1);
  requireGiven(element);
  element ? self.view().genericRemove(element) : removeDestroyed(*self, element);
}

void outputElement(MethodCall& call, ModelElement const& element) {
  call.setOutput(announceElement(element, corvid::internal::makeInterned(ELEMENT)));
}

void outputElements(MethodCall& call, std::vector<ModelElement> const& elements) {
  call.setOutput(corvid::factory::ValueShape<std::vector<ModelElement>>::toHost(elements));
}

Value keyOf(Collection const& self, kestrel_array const& key) {
  ValueMeta const meta(self.map().getQualifierType().impl(), meta::SINGLE);
  return Value::make<std::u16string>(meta, std::u16string(kestrel::scalarText(key)));
}

void get(Collection const& self, MethodCall& call) {
  outputElement(call, self.map().genericGet(keyOf(self, call.input(1))));
}

/// A position counted from 1; 0 where there is none of that number.
std::uint32_t positionOf(Collection const& self, MethodCall const& call, std::size_t input) {
  auto const position = kestrel::element<std::uint32_t>(call.input(input));
  return position <= self.view().genericSize() ? position : 0;
}

[[noreturn]] void refusePosition(Collection const& self, MethodCall const& call, std::size_t input) {
  reportInvalidValue("there is no position " + corvid::describeValue(call.input(input)) + " in a sequence of " +
                     std::to_string(self.view().genericSize()) + " elements.");
}

std::uint32_t requirePosition(Collection const& self, MethodCall const& call, std::size_t input) {
  std::uint32_t const position = positionOf(self, call, input);
  if (position == 0) refusePosition(self, call, input);
  return position;
}

/// What every shape has.
template <class Tag>
void addCommon(MethodAdder<Tag> const& methods) {
  methods.read("size", COUNT, {}, [](Collection const& self, MethodCall& call) {
    call.setOutput(kestrel::createScalar<std::uint64_t>(self.view().genericSize()));
  });
  methods.read("values", ELEMENTS, {},
               [](Collection const& self, MethodCall& call) { outputElements(call, self->getAllValues()); });
  methods.read("contains", TRUTH, {ELEMENT}, [](Collection const& self, MethodCall& call) {
    call.setOutput(kestrel::createScalar(self.view().genericContains(soughtElement(call, 1))));
  });
  methods.add("add", "", {ELEMENT},
              [](Collection const& self, MethodCall& call) { self.view().genericAdd(requireElement(call, 1)); });
  methods.add("remove", "", {ELEMENT}, &remove);
  methods.add("clear", "", {}, [](Collection const& self, MethodCall&) { self.view().genericClear(); });
}

void addPositional(MethodAdder<SequenceTag> const& methods) {
  methods.read("at", ELEMENT, {POSITION}, [](Collection const& self, MethodCall& call) {
    std::uint32_t const position = positionOf(self, call, 1);
    outputElement(call, position == 0 ? ModelElement() : self.sequence().genericAt(position - 1));
  });
  methods.read("indexOf", COUNT, {ELEMENT}, [](Collection const& self, MethodCall& call) {
    std::uint32_t const index = self.sequence().genericIndexOf(soughtElement(call, 1));
    bool const isAbsent = index == GenericSequenceInterface::ABSENT;
    call.setOutput(kestrel::createScalar<std::uint64_t>(isAbsent ? 0 : std::uint64_t{index} + 1));
  });
  methods.add("insert", "", {POSITION, ELEMENT}, [](Collection const& self, MethodCall& call) {
    auto const position = kestrel::element<std::uint32_t>(call.input(1));
    if (position == 0 || position > self.view().genericSize() + 1) refusePosition(self, call, 1);
    self.sequence().genericInsert(requireElement(call, 2), position - 1);
  });
  methods.add("replace", "", {POSITION, ELEMENT}, [](Collection const& self, MethodCall& call) {
    self.sequence().genericReplace(requireElement(call, 2), requirePosition(self, call, 1) - 1);
  });
  methods.add("removeAt", "", {POSITION}, [](Collection const& self, MethodCall& call) {
    self.sequence().genericRemoveAt(requirePosition(self, call, 1) - 1);
  });
}

template <class Tag>
void addKeyed(MethodAdder<Tag> const& methods) {
  methods.read("at", ELEMENT, {TEXT}, &get);
  methods.read("get", ELEMENT, {TEXT}, &get);
  methods.read("keys", "CorvidFactoryString vector", {}, [](Collection const& self, MethodCall& call) {
    std::vector<std::u16string> keys;
    for (Value const& key : self.map().genericKeys()) keys.push_back(key.getValue<std::u16string>());
    call.setOutput(kestrel::createStringRow(keys));
  });
}

template <class Tag>
class CollectionWrapper final : public corvid::factory::HandleClassInfo<ReferenceCollection, false> {
 public:
  using HandleClassInfo::HandleClassInfo;

  void initializeClass(CorvidClass* hostClass) override {
    MethodAdder<Tag> const methods(*hostClass);
    addCommon(methods);
    if constexpr (std::is_same_v<Tag, SequenceTag>) addPositional(methods);
    if constexpr (std::is_same_v<Tag, MapTag> || std::is_same_v<Tag, MultimapTag>) addKeyed(methods);
  }
  void destroyInstance(void* native) const override { releaseCollection(native); }
  bool isLive(void const* native) const override {
    ModelElementImpl const* const owner = static_cast<ReferenceCollection const*>(native)->owner();
    return owner != nullptr && owner->isLive();
  }
  bool isAbstract() const override { return true; }
};

}  // namespace

void addCollectionClasses(corvid::CorvidPackage& package) {
  addClass<CollectionWrapper<SequenceTag>>(package, "Sequence");
  addClass<CollectionWrapper<SetTag>>(package, "Set");
  addClass<CollectionWrapper<MapTag>>(package, "Map");
  addClass<CollectionWrapper<MultimapTag>>(package, "Multimap");
}

}  // namespace plinth::bridge
