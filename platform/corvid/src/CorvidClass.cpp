#include "corvid/CorvidClass.hpp"

#include <algorithm>
#include <unordered_set>

#include "EnumConstructor.hpp"
#include "HostState.hpp"
#include "corvid/CorvidPackage.hpp"
#include "corvid/HostError.hpp"

namespace corvid {

struct CorvidClass::Superclass {
  Identifier name;
  bool hidden;
  bool inherited;
};

namespace {

CorvidClass* findKnown(Identifier fullName) {
  auto const& classes = hostState().classesByName;
  auto const found = classes.find(fullName);
  return found == classes.end() ? nullptr : found->second;
}

// Finds a class by initialising the package that its name is in.
CorvidClass* findInPackage(Identifier fullName, CorvidPackage* scope) {
  std::string const& text = fullName.text();
  std::size_t const dot = text.rfind('.');
  if (dot == std::string::npos) return scope != nullptr ? scope->findClass(text) : nullptr;
  CorvidPackage* const package = CorvidPackage::getPackage(internal::makeInterned(text.substr(0, dot)));
  return package != nullptr ? package->findClass(text.substr(dot + 1)) : nullptr;
}

template <class Infos>
bool hasName(Infos const& infos, Identifier name) {
  return std::any_of(infos.begin(), infos.end(), [&](auto const& info) { return info->getName() == name; });
}

// The members of a lineage, each name once, without those that `isListed` refuses.
template <class Member, class Members, class Predicate>
std::vector<Member const*> listMembers(std::vector<CorvidClass const*> const& lineage, Members members,
                                       Predicate isListed) {
  std::vector<Member const*> listed;
  std::unordered_set<Identifier> seen;
  for (CorvidClass const* hostClass : lineage)
    for (auto const& member : members(*hostClass))
      if (seen.insert(member->getName()).second && isListed(*hostClass, *member)) listed.push_back(member.get());
  return listed;
}

}  // namespace

CorvidClass::CorvidClass(std::unique_ptr<CorvidClassInfo> info)
    : m_info(std::move(info)),
      m_fullName(internal::makeInterned(m_info->getFullName())),
      m_name(internal::makeInterned(m_info->getName())),
      m_ancestors{this} {}

CorvidClass::~CorvidClass() = default;

CorvidClass* CorvidClass::getClass(Identifier fullName, CorvidPackage* scope) {
  CorvidClass* hostClass = findKnown(fullName);
  if (hostClass == nullptr) hostClass = findInPackage(fullName, scope);
  if (hostClass != nullptr) hostClass->initialize();
  return hostClass;
}

CorvidClass& CorvidClass::requireClass(Identifier fullName) {
  if (CorvidClass* const hostClass = getClass(fullName)) return *hostClass;
  throw HostError(ErrorKey::NO_SUCH_CLASS, "There is no class '" + fullName.text() + "'.");
}

void CorvidClass::addSuperclass(Identifier name, int described, int hidden, int inherited) {
  if (described == 0) {
    m_underlyingType = name;
  } else {
    m_superclasses.push_back({name, hidden != 0, inherited != 0});
  }
}

void CorvidClass::addProperty(std::unique_ptr<CorvidPropInfo> property) {
  if (hasName(m_ownProperties, property->getName()))
    throw HostError(ErrorKey::DUPLICATE_NAME,
                    "Class '" + m_fullName.text() + "' has two properties '" + property->getName().text() + "'.");
  m_ownProperties.push_back(std::move(property));
}

void CorvidClass::addMethod(std::unique_ptr<CorvidMethodInfo> method) { m_ownMethods.push_back(std::move(method)); }

void CorvidClass::addEnumValue(std::unique_ptr<CorvidEnumInfo> value) {
  if (hasName(m_enumValues, value->getName()))
    throw HostError(ErrorKey::DUPLICATE_NAME,
                    "Enumeration '" + m_fullName.text() + "' has two members '" + value->getName().text() + "'.");
  m_enumValues.push_back(std::move(value));
}

void CorvidClass::initialize() {
  if (m_state != State::New) return;
  m_state = State::Describing;
  try {
    if (m_info->isEnumeration()) addMethod(std::make_unique<EnumConstructor>(*this));
    m_info->initializeClass(this);
    inherit();
  } catch (...) {
    forgetDescription();
    m_state = State::New;
    throw;
  }
  m_state = State::Ready;
}

void CorvidClass::inherit() {
  for (Superclass const& superclass : m_superclasses) {
    CorvidClass const& ancestor = requireClass(superclass.name);
    if (ancestor.m_state != State::Ready)
      throw HostError(ErrorKey::BAD_DESCRIPTION, "Class '" + m_fullName.text() + "' is among its own superclasses.");
    inheritFrom(ancestor, superclass.inherited);
  }
  for (auto const& property : m_ownProperties) m_properties[property->getName()] = property.get();
  for (auto const& method : m_ownMethods) m_methods[method->getName()].push_back(method.get());
}

void CorvidClass::inheritFrom(CorvidClass const& superclass, bool withMembers) {
  for (CorvidClass const* ancestor : superclass.m_ancestors)
    if (std::find(m_ancestors.begin(), m_ancestors.end(), ancestor) == m_ancestors.end())
      m_ancestors.push_back(ancestor);
  if (!withMembers) return;
  m_properties.insert(superclass.m_properties.begin(), superclass.m_properties.end());
  for (auto const& [name, methods] : superclass.m_methods) {
    if (name == superclass.m_name) continue;
    auto& inherited = m_methods[name];
    inherited.insert(inherited.end(), methods.begin(), methods.end());
  }
}

void CorvidClass::forgetDescription() noexcept {
  m_properties.clear();
  m_methods.clear();
  m_ancestors.resize(1);
  m_superclasses.clear();
  m_underlyingType = Identifier();
  m_ownProperties.clear();
  m_ownMethods.clear();
  m_enumValues.clear();
}

bool CorvidClass::hasAncestor(Identifier fullName) const noexcept {
  return std::any_of(m_ancestors.begin(), m_ancestors.end(),
                     [&](CorvidClass const* ancestor) { return ancestor->m_fullName == fullName; });
}

std::vector<CorvidClass const*> CorvidClass::lineage() const {
  std::vector<CorvidClass const*> visible = m_ancestors;
  std::unordered_set<Identifier> hidden;
  for (CorvidClass const* hostClass : m_ancestors)
    for (Superclass const& superclass : hostClass->m_superclasses)
      if (superclass.hidden) hidden.insert(superclass.name);
  auto const isHidden = [&](CorvidClass const* hostClass) { return hidden.count(hostClass->m_fullName) != 0; };
  visible.erase(std::remove_if(visible.begin(), visible.end(), isHidden), visible.end());
  return visible;
}

CorvidPropInfo const* CorvidClass::findProperty(Identifier name) const {
  auto const found = m_properties.find(name);
  return found == m_properties.end() ? nullptr : found->second;
}

std::vector<CorvidMethodInfo const*> const& CorvidClass::getMethods(Identifier name) const {
  static std::vector<CorvidMethodInfo const*> const none;
  auto const found = m_methods.find(name);
  return found == m_methods.end() ? none : found->second;
}

CorvidEnumInfo const* CorvidClass::findEnumValue(Identifier name) const {
  auto const found = std::find_if(m_enumValues.begin(), m_enumValues.end(),
                                  [&](auto const& value) { return value->getName() == name; });
  return found == m_enumValues.end() ? nullptr : found->get();
}

std::vector<CorvidPropInfo const*> CorvidClass::listProperties() const {
  return listMembers<CorvidPropInfo>(
      lineage(), [](CorvidClass const& hostClass) -> auto const& { return hostClass.m_ownProperties; },
      [](CorvidClass const&, CorvidPropInfo const& property) { return (property.getFlags() & HIDDEN_PROPERTY) == 0; });
}

std::vector<CorvidMethodInfo const*> CorvidClass::listMethods() const {
  return listMembers<CorvidMethodInfo>(
      lineage(), [](CorvidClass const& hostClass) -> auto const& { return hostClass.m_ownMethods; },
      [](CorvidClass const& hostClass, CorvidMethodInfo const& method) {
        return (method.getAttributes() & MethodAttribute::HIDDEN) == 0 && method.getName() != hostClass.m_name;
      });
}

}  // namespace corvid
