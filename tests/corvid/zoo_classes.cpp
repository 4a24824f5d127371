#include "zoo_classes.hpp"

#include <map>
#include <stdexcept>

#include "corvid/Callable.hpp"
#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidPackage.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/HostError.hpp"
#include "corvid/Invocation.hpp"
#include "corvid/factory/AdaptedClass.hpp"
#include "corvid/factory/BindingRegistry.hpp"
#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "corvid/factory/CorvidMethod.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "groundwork/Unicode.hpp"
#include "kestrel/Array.hpp"
#include "zoo.hpp"

using corvid::internal::makeInterned;

namespace zoo {

Calls calls;
bool catDescriptionFails = false;

namespace {

constexpr char const* ANIMAL = "zoo.residents.Animal";
constexpr char const* DIET = "zoo.residents.Diet";
constexpr char const* PLACE = "zoo.residents.Place";
constexpr char const* HERD = "zoo.residents.Herd";

kestrel::OwnedArray announce(AnimalHandle const& animal) {
  bool isNew = false;
  auto array = corvid::factory::basic::BindingRegistry::announce(
      animal.get(), makeInterned(animal.get() != nullptr ? animal->className() : ANIMAL), isNew);
  if (isNew) animal->addRef();
  return array;
}

/// The herd of an animal: its offspring as an object that a script walks and changes.
struct Herd {
  AnimalHandle owner;
};

}  // namespace
}  // namespace zoo

namespace corvid::factory {

template <>
struct SelfTraits<zoo::Animal> {
  using Self = zoo::AnimalHandle;
  static Identifier className() {
    static Identifier const name = makeInterned(zoo::ANIMAL);
    return name;
  }
  static Self fromNative(void* native) { return Self(static_cast<zoo::Animal*>(native)); }
};

template <>
struct SelfTraits<zoo::Place> : PointerSelf<zoo::Place> {
  static Identifier className() { return makeInterned(zoo::PLACE); }
};

template <>
struct SelfTraits<zoo::Herd> : PointerSelf<zoo::Herd> {
  static Identifier className() { return makeInterned(zoo::HERD); }
};

template <>
struct ValueShape<zoo::AnimalHandle> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return SelfTraits<zoo::Animal>::className(); }
  static kestrel::OwnedArray toHost(zoo::AnimalHandle const& animal) { return zoo::announce(animal); }
  static zoo::AnimalHandle fromHost(kestrel_array const& value) { return impl::selfOf<zoo::Animal>(value); }
};

template <>
struct ValueShape<std::vector<zoo::AnimalHandle>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Many;
  static Identifier dataType() { return SelfTraits<zoo::Animal>::className(); }
  static kestrel::OwnedArray toHost(std::vector<zoo::AnimalHandle> const& animals) {
    if (animals.empty()) return kestrel::createObjects(dataType(), kestrel::EMPTY);
    auto array = kestrel::createObjects(makeInterned(kestrel::HETEROGENEOUS), kestrel::row(animals.size()));
    for (std::size_t i = 0; i < animals.size(); ++i)
      kestrel::setObject(*array, i, kestrel::object(*zoo::announce(animals[i])));
    settleClass(*array);
    return array;
  }
  static std::vector<zoo::AnimalHandle> fromHost(kestrel_array const& value) {
    std::vector<zoo::AnimalHandle> animals;
    for (std::size_t i = 0; i < kestrel::numberOfElements(value); ++i)
      animals.push_back(impl::selfOf<zoo::Animal>(value, i));
    return animals;
  }
};

template <>
struct ValueShape<zoo::Diet> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return makeInterned(std::string(zoo::DIET) + " scalar"); }
  static kestrel::OwnedArray toHost(zoo::Diet diet) {
    return kestrel::createBuiltInBased(makeInterned(zoo::DIET), kestrel::createScalar(static_cast<std::int32_t>(diet)));
  }
  static zoo::Diet fromHost(kestrel_array const& value) {
    return static_cast<zoo::Diet>(kestrel::element<std::int32_t>(value));
  }
};

template <>
struct ValueShape<zoo::Herd*> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return SelfTraits<zoo::Herd>::className(); }
  static kestrel::OwnedArray toHost(zoo::Herd* herd) {
    auto array = basic::BindingRegistry::announceWithoutStoring(herd, dataType(), nullptr);
    return array;
  }
};

}  // namespace corvid::factory

namespace zoo {
namespace {

using corvid::CorvidClass;
using corvid::MethodCall;
using corvid::factory::AdaptedClassGetter;
using corvid::factory::AdaptedClassSetter;
using corvid::factory::MethodAttributes;
using corvid::factory::impl::CorvidConstructor;
using corvid::factory::impl::FunctionMethod;
using corvid::factory::impl::Invoker;
using corvid::factory::impl::PropertyImpl;
using corvid::factory::impl::selfOf;

template <class V, class T>
void addProperty(CorvidClass& hostClass, char const* name, typename AdaptedClassGetter<V, T>::Adapter read,
                 void (*write)(typename corvid::factory::SelfTraits<T>::Self const&, V), unsigned flags = 0) {
  auto getter = std::make_unique<AdaptedClassGetter<V, T>>(read);
  std::unique_ptr<corvid::factory::impl::PropertySetter> setter;
  if constexpr (!std::is_pointer_v<V>) {
    if (write != nullptr) setter = std::make_unique<AdaptedClassSetter<V, T>>(write);
  }
  hostClass.addProperty(
      std::make_unique<PropertyImpl>(makeInterned(name), flags, std::move(getter), std::move(setter)));
}

void addMethod(CorvidClass& hostClass, char const* name, unsigned attributes,
               std::unique_ptr<corvid::CorvidMethodSignature> signature, FunctionMethod::Function function) {
  hostClass.addMethod(std::make_unique<FunctionMethod>(makeInterned(name), MethodAttributes(attributes),
                                                       std::move(signature), std::move(function)));
}

/// Reads the name from a struct and the weight from a number, both optional; given an animal it makes no other one.
template <class Native>
class AnimalConstructor final : public CorvidConstructor {
 public:
  using CorvidConstructor::CorvidConstructor;

  void invoke(MethodCall& call) const override {
    AnimalHandle animal(new Native);
    for (std::size_t i = 0; i < call.inputCount(); ++i) {
      kestrel_array const& input = call.input(i);
      if (call.isLeftOut(i)) continue;
      if (kestrel::isObject(input)) {
        animal = selfOf<Animal>(input);
      } else if (kestrel::isStruct(input)) {
        animal->name = kestrel::scalarText(*kestrel::field(input, 0, "Name"));
      } else {
        animal->weight = kestrel::elementAsDouble(input);
      }
    }
    bool const isNew = corvid::factory::basic::BindingRegistry::announceForConstructor(
        animal.get(), makeInterned(animal->className()), call.newObject(), true);
    if (isNew) animal->addRef();
  }
};

template <class Native>
std::unique_ptr<corvid::CorvidMethodInfo> animalConstructor(char const* name) {
  return std::make_unique<AnimalConstructor<Native>>(
      makeInterned(name),
      Invoker::createSignature("opt_init opt_weight", std::string("zoo.residents.") + name, {"any", "any"}, 2));
}

class AnimalInfo : public corvid::factory::HandleClassInfo<Animal, false> {
 public:
  using HandleClassInfo::HandleClassInfo;

  void initializeClass(CorvidClass* hostClass) override {
    ++calls.animalsDescribed;
    corvid::factory::detail::initStringDataTypes();
    hostClass->addMethod(animalConstructor<Animal>("Animal"));
    addProperties(*hostClass);
    addMethods(*hostClass);
  }
  void destroyInstance(void* native) const override {
    if (corvid::factory::basic::BindingRegistry::remove(native)) static_cast<Animal*>(native)->removeRef();
  }
  bool isLive(void const* native) const override { return static_cast<Animal const*>(native)->alive; }

 private:
  static void addProperties(CorvidClass& hostClass) {
    addProperty<std::u16string, Animal>(
        hostClass, "Name", [](AnimalHandle const& self) { return self->name; },
        [](AnimalHandle const& self, std::u16string value) {
          if (value == u"Nobody") throw std::runtime_error("An animal can't be called Nobody.");
          self->name = value;
        });
    addProperty<double, Animal>(
        hostClass, "Weight", [](AnimalHandle const& self) { return self->weight; },
        [](AnimalHandle const& self, double value) { self->weight = value; });
    addProperty<bool, Animal>(
        hostClass, "Tame", [](AnimalHandle const& self) { return self->tame; },
        [](AnimalHandle const& self, bool value) { self->tame = value; });
    addProperty<boost::optional<std::uint32_t>, Animal>(
        hostClass, "Age", [](AnimalHandle const& self) { return self->age; },
        [](AnimalHandle const& self, boost::optional<std::uint32_t> value) { self->age = value; });
    addProperty<Diet, Animal>(
        hostClass, "Diet", [](AnimalHandle const& self) { return self->diet; },
        [](AnimalHandle const& self, Diet value) { self->diet = value; });
    addProperty<AnimalHandle, Animal>(
        hostClass, "Mother", [](AnimalHandle const& self) { return self->mother; },
        [](AnimalHandle const& self, AnimalHandle value) { self->mother = std::move(value); });
    addProperty<std::vector<AnimalHandle>, Animal>(
        hostClass, "Offspring", [](AnimalHandle const& self) { return self->offspring; },
        [](AnimalHandle const& self, std::vector<AnimalHandle> value) { self->offspring = std::move(value); });
    addProperty<Herd*, Animal>(
        hostClass, "Herd", [](AnimalHandle const& self) { return new Herd{self}; }, nullptr);
    addProperty<bool, Animal>(
        hostClass, "Alive", [](AnimalHandle const& self) { return self->alive; }, nullptr, corvid::HIDDEN_PROPERTY);
  }

  static void addMethods(CorvidClass& hostClass) {
    addMethod(hostClass, "feed", 0,
              Invoker::createSignature("self amount opt_note", "double scalar", {ANIMAL, "double scalar", "char"}, 1),
              [](MethodCall& call) {
                AnimalHandle const self = selfOf<Animal>(call.input(0));
                self->weight += kestrel::element<double>(call.input(1));
                if (call.wantsOutput()) call.setOutput(kestrel::createScalar(self->weight));
              });
    addMethod(hostClass, "die", 0, Invoker::createSignature("", "", {ANIMAL}),
              [](MethodCall& call) { selfOf<Animal>(call.input(0))->alive = false; });
    addMethod(hostClass, "trial", 0, Invoker::createSignature("", "any", {ANIMAL, "function"}), &trial);
    addMethod(hostClass, "count", corvid::MethodAttribute::STATIC | corvid::MethodAttribute::HIDDEN,
              Invoker::createSignature("", "double scalar", {}),
              [](MethodCall& call) { call.setOutput(kestrel::createScalar<double>(Animal::instances)); });
    addMethod(hostClass, "look", corvid::MethodAttribute::STATIC | corvid::MethodAttribute::HIDDEN,
              Invoker::createSignature("", "char", {"any", "char", "double scalar"}, 2), [](MethodCall& call) {
                std::string seen;
                for (std::size_t i = 0; i < call.inputCount(); ++i)
                  seen += kestrel::className(call.input(i)).text() + " ";
                call.setOutput(kestrel::createChar(groundwork::toUtf16(seen)));
              });
    hostClass.announceOperation(makeInterned("sing"), nullptr, nullptr);
  }

  /// Runs a function with the animal; when the function fails the animal's weight is as before.
  static void trial(MethodCall& call) {
    AnimalHandle const self = selfOf<Animal>(call.input(0));
    double const before = self->weight;
    try {
      auto results = corvid::Callable::in(call.input(1)).call({&call.input(0)});
      if (!results.empty()) call.setOutput(std::move(results.front()));
    } catch (...) {
      self->weight = before;
      throw;
    }
  }
};

class CatInfo final : public AnimalInfo {
 public:
  using AnimalInfo::AnimalInfo;

  void initializeClass(CorvidClass* hostClass) override {
    hostClass->addSuperclass(makeInterned(ANIMAL), 1, 0, 1);
    corvid::factory::detail::initStringDataTypes();
    hostClass->addMethod(animalConstructor<Cat>("Cat"));
    if (catDescriptionFails) throw std::runtime_error("The cat hides.");
    addMethod(*hostClass, "purr", 0, Invoker::createSignature("", "CorvidFactoryString scalar", {"zoo.residents.Cat"}),
              [](MethodCall& call) { call.setOutput(kestrel::createChar(u"purr")); });
  }
};

class GhostInfo final : public AnimalInfo {
 public:
  using AnimalInfo::AnimalInfo;
  void initializeClass(CorvidClass* hostClass) override { hostClass->addSuperclass(makeInterned(ANIMAL), 1, 0, 1); }
  bool isAbstract() const override { return true; }
  bool isHidden() const override { return true; }
};

class PlaceInfo final : public corvid::factory::NonHandleClassInfo<Place, Place> {
 public:
  using NonHandleClassInfo::NonHandleClassInfo;

  void initializeClass(CorvidClass* hostClass) override {
    addProperty<double, Place>(
        *hostClass, "Latitude", [](Place* const& self) { return self->latitude; },
        [](Place* const& self, double value) { self->latitude = value; }, 0x40);
    addProperty<double, Place>(
        *hostClass, "Longitude", [](Place* const& self) { return self->longitude; },
        [](Place* const& self, double value) { self->longitude = value; }, 0x40);
    addMethod(*hostClass, "eq", 0, Invoker::createSignature("", "logical scalar", {PLACE, PLACE}),
              [](MethodCall& call) {
                call.setOutput(kestrel::createScalar(*selfOf<Place>(call.input(0)) == *selfOf<Place>(call.input(1))));
              });
  }
};

class HerdInfo final : public corvid::factory::NonHandleClassInfo<Herd, Herd> {
 public:
  using NonHandleClassInfo::NonHandleClassInfo;

  void initializeClass(CorvidClass* hostClass) override {
    addMethod(*hostClass, "size", 0, Invoker::createSignature("", "uint64 scalar", {HERD}), [](MethodCall& call) {
      call.setOutput(kestrel::createScalar<std::uint64_t>(selfOf<Herd>(call.input(0))->owner->offspring.size()));
    });
    addMethod(*hostClass, "at", 0, Invoker::createSignature("", ANIMAL, {HERD, "uint64 scalar"}), [](MethodCall& call) {
      auto const& offspring = selfOf<Herd>(call.input(0))->owner->offspring;
      std::uint64_t const position = kestrel::element<std::uint64_t>(call.input(1));
      bool const exists = position >= 1 && position <= offspring.size();
      call.setOutput(announce(exists ? offspring[position - 1] : AnimalHandle()));
    });
    addMethod(*hostClass, "close", 0, Invoker::createSignature("", "", {HERD}),
              [](MethodCall& call) { selfOf<Herd>(call.input(0))->owner->offspring.clear(); });
  }
};

class DietMember final : public corvid::CorvidEnumInfo {
 public:
  DietMember(char const* name, Diet value)
      : m_name(makeInterned(name)), m_value(corvid::factory::ValueShape<Diet>::toHost(value)) {}
  corvid::Identifier getName() const override { return m_name; }
  kestrel_array const& getValue() const override { return *m_value; }

 private:
  corvid::Identifier m_name;
  kestrel::OwnedArray m_value;
};

class DietInfo final : public corvid::factory::CorvidFactoryClassInfo {
 public:
  using CorvidFactoryClassInfo::CorvidFactoryClassInfo;

  void initializeClass(CorvidClass* hostClass) override {
    hostClass->addSuperclass(makeInterned("int32"), 0, 0, 1);
    hostClass->addEnumValue(std::make_unique<DietMember>("PLANTS", Diet::PLANTS));
    hostClass->addEnumValue(std::make_unique<DietMember>("MEAT", Diet::MEAT));
    hostClass->addEnumValue(std::make_unique<DietMember>("EVERYTHING", Diet::EVERYTHING));
    addMethod(*hostClass, "getValue", 4098, Invoker::createSignature("", "int32 scalar", {DIET}), [](MethodCall& call) {
      bool const isMember = kestrel::className(call.input(0)).text() == DIET;
      call.setOutput(kestrel::createScalar<std::int32_t>(isMember ? kestrel::element<std::int32_t>(call.input(0)) : 0));
    });
  }
  void destroyInstance(void*) const override {}
  bool isHandle() const override { return false; }
  bool isEnumeration() const override { return true; }
  bool isConstructedOnLoad() const override { return false; }
};

/// Turns the text of a literal into the member.
class DietFromText final : public corvid::CorvidTypeConverter {
 public:
  kestrel::OwnedArray convert(kestrel_array const& value) const override {
    if (!kestrel::isText(value) || kestrel::isEmpty(value)) return nullptr;
    CorvidClass const& diets = CorvidClass::requireClass(makeInterned(DIET));
    auto const* member = diets.findEnumValue(makeInterned(groundwork::toUtf8(kestrel::scalarText(value))));
    return member != nullptr ? kestrel::deepCopy(&member->getValue()) : nullptr;
  }
};

class ZooPackage final : public corvid::CorvidPackageInfo {
 public:
  explicit ZooPackage(std::string name) : m_name(std::move(name)) {}
  std::string const& getName() const override { return m_name; }
  void initializePackage(corvid::CorvidPackage* package) override {
    if (m_name != "residents") return;
    ++calls.packagesInitialized;
    auto const add = [&](auto info) { package->addClass(std::move(info), corvid::NATIVE_CLASS); };
    add(std::make_unique<AnimalInfo>("Animal", ANIMAL));
    add(std::make_unique<CatInfo>("Cat", "zoo.residents.Cat"));
    add(std::make_unique<GhostInfo>("Ghost", "zoo.residents.Ghost"));
    add(std::make_unique<HerdInfo>("Herd", HERD));
    add(std::make_unique<PlaceInfo>("Place", PLACE));
    add(std::make_unique<DietInfo>("Diet", DIET));
    for (char const* ending : {"", " property", " scalar"}) {
      corvid::CorvidTypeRepository::removeConversion("any", std::string(DIET) + ending);
      corvid::CorvidTypeRepository::addConversion("any", std::string(DIET) + ending, std::make_unique<DietFromText>());
    }
  }

 private:
  std::string m_name;
};

}  // namespace

void registerZoo() {
  auto* const zoo = corvid::CorvidPackage::addPackage(std::make_unique<ZooPackage>("zoo"));
  zoo->addSubpackage(std::make_unique<ZooPackage>("residents"));
}

}  // namespace zoo
