#include "corvid/Invocation.hpp"

#include <algorithm>

#include "Coercion.hpp"
#include "ScriptObject.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "kestrel/Array.hpp"

namespace corvid {
namespace {

[[noreturn]] void refuseSelf(Identifier member, kestrel_array const& self) {
  if (kestrel::numberOfElements(self) > 1 || !kestrel::isObject(self))
    throw HostError(ErrorKey::WRONG_TYPE,
                    "'" + member.text() + "' is a member of one object, not of " + describeValue(self) + ".");
  factory::impl::reportInvalidSelf(kestrel::className(self));
}

// One object whose native can be used.
void checkSelf(Identifier member, kestrel_array const& self) {
  kestrel::Object const* const object = kestrel::soleObject(self);
  if (object == nullptr || !object->isLive()) refuseSelf(member, self);
}

bool isSingleObject(Identifier type) {
  DataType const& wanted = dataType(type);
  return wanted.kind == DataType::Kind::Class && wanted.shape != DataType::Shape::Vector;
}

bool has(CorvidMethodInfo const& method, unsigned attribute) { return (method.getAttributes() & attribute) != 0; }

// Inputs of which null are only optional ones in front of others that are given.
class GivenInputs {
 public:
  GivenInputs(Inputs const& inputs, CorvidMethodInfo const* method) : m_inputs(inputs) {
    std::size_t const least = method != nullptr ? method->getSignature().minimumInputs() : inputs.size();
    while (m_inputs.size() > least && m_inputs.back() == nullptr) m_inputs.pop_back();
    for (std::size_t i = 0; i < std::min(least, m_inputs.size()); ++i)
      if (m_inputs[i] == nullptr) m_inputs[i] = &none();
  }

  Inputs const& get() const noexcept { return m_inputs; }

 private:
  kestrel_array const& none() {
    if (m_none == nullptr) m_none = kestrel::createEmpty(kestrel::ClassId::Double);
    return *m_none;
  }

  Inputs m_inputs;
  kestrel::OwnedArray m_none;
};

// Inputs as a method's signature wants them, with the arrays that had to be made for it. Optional ones, and a self that
// its method judges, stay as they are where they can't be converted.
class CoercedInputs {
 public:
  CoercedInputs(CorvidMethodInfo const& method, Inputs const& inputs, std::size_t selves) : m_inputs(inputs) {
    std::vector<Identifier> const& types = method.getSignature().inputs();
    m_made.resize(inputs.size());
    for (std::size_t i = 0; i < inputs.size(); ++i) {
      if (inputs[i] == nullptr) continue;
      bool const isLenientSelf = i == 0 && has(method, MethodAttribute::LENIENT_SELF);
      if (isLenientSelf || i >= method.getSignature().minimumInputs()) {
        m_inputs[i] = &coerceIfPossible(types[i], *inputs[i], m_made[i]);
      } else {
        m_inputs[i] = &coerceArgument(method, i, selves, m_made[i]);
      }
    }
  }

  Inputs const& get() const noexcept { return m_inputs; }

 private:
  // Errors name the argument, counted as a caller does.
  kestrel_array const& coerceArgument(CorvidMethodInfo const& method, std::size_t index, std::size_t selves,
                                      kestrel::OwnedArray& made) const {
    try {
      return coerceToOne(method.getSignature().inputs()[index], *m_inputs[index], made);
    } catch (HostError const& error) {
      if (index < selves) throw;
      throw error.at("Argument " + std::to_string(index + 1 - selves) + " of '" + method.getName().text() + "'");
    }
  }
  // Only a type that is a vector asks for more than one object.
  static kestrel_array const& coerceToOne(Identifier type, kestrel_array const& value, kestrel::OwnedArray& made) {
    kestrel_array const& coerced = CorvidTypeRepository::coerce(type, value, made);
    if (kestrel::numberOfElements(coerced) > 1 && isSingleObject(type))
      throw wrongType(dataType(type), Multiplicity::Single, value);
    return coerced;
  }
  static kestrel_array const& coerceIfPossible(Identifier type, kestrel_array const& value, kestrel::OwnedArray& made) {
    try {
      return CorvidTypeRepository::coerce(type, value, made);
    } catch (HostError const&) {
      return value;
    }
  }

  Inputs m_inputs;
  std::vector<kestrel::OwnedArray> m_made;
};

// Objects that an instance method has among its inputs, in front of its arguments.
std::size_t countSelves(CorvidClass const& hostClass, CorvidMethodInfo const& method) {
  return method.getName() != hostClass.getName() && !has(method, MethodAttribute::STATIC) ? 1 : 0;
}

// Counts as a caller does: without the object that a method is called on.
[[noreturn]] void reportCount(CorvidClass const& hostClass, CorvidMethodInfo const& method, std::size_t inputs) {
  CorvidMethodSignature const& signature = method.getSignature();
  std::size_t const self = countSelves(hostClass, method);
  std::string const name = "'" + method.getName().text() + "'";
  if (inputs < self) throw HostError(ErrorKey::WRONG_ARGUMENT_COUNT, name + " was called without its object.");
  std::size_t const least = signature.minimumInputs() - self;
  std::size_t const most = signature.maximumInputs() - self;
  std::string expected = std::to_string(least);
  if (most != least) expected += " to " + std::to_string(most);
  throw HostError(ErrorKey::WRONG_ARGUMENT_COUNT, name + " takes " + expected +
                                                      (most == 1 ? " argument, not " : " arguments, not ") +
                                                      std::to_string(inputs - self) + ".");
}

// The last method of a name that takes the number of inputs; null when the class has no method of that name.
CorvidMethodInfo const* findMethod(CorvidClass const& hostClass, Identifier name, std::size_t inputs) {
  auto const& methods = hostClass.getMethods(name);
  for (auto method = methods.rbegin(); method != methods.rend(); ++method)
    if ((*method)->getSignature().accepts(inputs)) return *method;
  if (methods.empty()) return nullptr;
  reportCount(hostClass, *methods.back(), inputs);
}

[[noreturn]] void reportWrongValue(CorvidPropInfo const& property, kestrel_array const& value) {
  throw wrongType(dataType(property.getValueType()), property.getMultiplicity(), value);
}

kestrel::OwnedArray newObject(CorvidClass& hostClass) {
  return kestrel::createObject(kestrel::ObjectRef(new ScriptObject(hostClass)));
}

void constructDefault(CorvidClass& hostClass, kestrel_array& self) {
  void* const native = hostClass.getInfo().createDefaultInstance();
  if (native == nullptr)
    throw HostError(ErrorKey::NO_CONSTRUCTOR, "Class '" + hostClass.getFullName().text() + "' has no constructor.");
  bool const stored = hostClass.getInfo().isHandle();
  factory::basic::BindingRegistry::announceForConstructor(native, hostClass.getFullName(), self, stored);
}

}  // namespace

CorvidClass* classOf(kestrel_array const& array) {
  bool const builtInBased = (kestrel::classIdentifier(array) & kestrel::BUILT_IN_BASED_FLAG) != 0;
  return builtInBased || kestrel::isObject(array) ? CorvidClass::getClass(kestrel::className(array)) : nullptr;
}

kestrel::OwnedArray construct(CorvidClass& hostClass, Inputs const& inputs) {
  CorvidClassInfo const& info = hostClass.getInfo();
  if (info.isAbstract())
    throw HostError(ErrorKey::ABSTRACT_CLASS,
                    "Class '" + hostClass.getFullName().text() + "' is abstract: only its subclasses have objects.");
  CorvidMethodInfo const* const constructor = findMethod(hostClass, hostClass.getName(), inputs.size());
  GivenInputs const given(inputs, constructor);
  if (info.isEnumeration()) {
    MethodCall call(given.get(), true);
    constructor->invoke(call);
    return call.takeOutput();
  }
  kestrel::OwnedArray self = newObject(hostClass);
  if (constructor == nullptr) {
    constructDefault(hostClass, *self);
    return self;
  }
  CoercedInputs const coerced(*constructor, given.get(), 0);
  MethodCall call(coerced.get(), false, self.get());
  constructor->invoke(call);
  if (!isLive(*self))
    throw HostError(ErrorKey::BAD_DESCRIPTION,
                    "The constructor of class '" + hostClass.getFullName().text() + "' made no object.");
  return self;
}

CorvidPropInfo const& requireProperty(CorvidClass const& hostClass, Identifier name) {
  if (CorvidPropInfo const* const property = hostClass.findProperty(name)) return *property;
  throw HostError(ErrorKey::NO_SUCH_MEMBER,
                  "Class '" + hostClass.getFullName().text() + "' has no property '" + name.text() + "'.");
}

kestrel::OwnedArray getProperty(kestrel_array const& self, CorvidPropInfo const& property) {
  checkSelf(property.getName(), self);
  return property.getValue(self);
}

void setProperty(kestrel_array const& self, CorvidPropInfo const& property, kestrel_array const& value) {
  if (property.isReadOnly())
    throw HostError(ErrorKey::READ_ONLY_PROPERTY, "The property '" + property.getName().text() + "' can't be set.");
  checkSelf(property.getName(), self);
  bool const isRow = kestrel::isObject(value) && kestrel::numberOfElements(value) > 1;
  if (isRow && property.getMultiplicity() != Multiplicity::Many && isSingleObject(property.getDataType()))
    reportWrongValue(property, value);
  kestrel::OwnedArray made;
  bool const clears = property.getMultiplicity() == Multiplicity::Optional && kestrel::isEmpty(value);
  kestrel_array const* const coerced = clears ? &value : coerceOrNull(property.getDataType(), value, made);
  if (coerced == nullptr || !property.isCorrectType(*coerced)) reportWrongValue(property, value);
  if (!isLive(*coerced)) factory::impl::reportInvalidSelf(kestrel::className(*coerced));
  property.setValue(self, *coerced);
}

CorvidMethodInfo const& requireMethod(CorvidClass const& hostClass, Identifier name, std::size_t inputs) {
  if (CorvidMethodInfo const* const method = findMethod(hostClass, name, inputs)) return *method;
  throw HostError(ErrorKey::NO_SUCH_MEMBER,
                  "Class '" + hostClass.getFullName().text() + "' has no method '" + name.text() + "'.");
}

kestrel::OwnedArray invoke(CorvidClass const& hostClass, Identifier method, Inputs const& inputs, bool wantsOutput,
                           std::vector<kestrel::OwnedArray>* further) {
  CorvidMethodInfo const& reached = requireMethod(hostClass, method, inputs.size());
  GivenInputs const given(inputs, &reached);
  bool const judgesSelf = has(reached, MethodAttribute::STATIC) || has(reached, MethodAttribute::LENIENT_SELF);
  if (!judgesSelf && !given.get().empty()) checkSelf(method, *given.get().front());
  CoercedInputs const coerced(reached, given.get(), countSelves(hostClass, reached));
  MethodCall call(coerced.get(), wantsOutput);
  reached.invoke(call);
  if (further != nullptr) *further = call.takeFurtherOutputs();
  return call.takeOutput();
}

bool isLive(kestrel_array const& objects) {
  if (!kestrel::isObject(objects)) return true;
  for (std::size_t i = 0; i < kestrel::numberOfElements(objects); ++i) {
    kestrel::ObjectRef const& object = kestrel::object(objects, i);
    if (!object || !object->isLive()) return false;
  }
  return true;
}

void settleClass(kestrel_array& objects) {
  std::vector<CorvidClass const*> common;
  Identifier previous;
  for (std::size_t i = 0; i < kestrel::numberOfElements(objects); ++i) {
    kestrel::ObjectRef const& object = kestrel::object(objects, i);
    if (!object || object->className() == previous) continue;
    previous = object->className();
    CorvidClass const& hostClass = CorvidClass::requireClass(object->className());
    if (common.empty()) common = hostClass.lineage();
    while (!common.empty() && !hostClass.isSubclassOf(common.front()->getFullName())) common.erase(common.begin());
    if (common.empty()) break;
  }
  kestrel::setObjectClass(
      objects, common.empty() ? internal::makeInterned(kestrel::HETEROGENEOUS) : common.front()->getFullName());
}

}  // namespace corvid
