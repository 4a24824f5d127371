#include "corvid/CorvidPackage.hpp"

#include <algorithm>

#include "HostState.hpp"
#include "corvid/CorvidClass.hpp"
#include "corvid/HostError.hpp"

namespace corvid {
namespace {

std::string dotted(Identifier parent, std::string const& name) {
  return parent.empty() ? name : parent.text() + "." + name;
}

void refuseDuplicate(Identifier fullName) {
  HostState const& host = hostState();
  if (host.packagesByName.count(fullName) == 0 && host.classesByName.count(fullName) == 0) return;
  throw HostError(ErrorKey::DUPLICATE_NAME,
                  "The host has a package or class with the name '" + fullName.text() + "' already.");
}

template <class T>
std::vector<T*> borrowed(std::vector<std::unique_ptr<T>> const& owned) {
  std::vector<T*> pointers;
  for (std::unique_ptr<T> const& one : owned) pointers.push_back(one.get());
  return pointers;
}

// Registers a package under its name and with its owner, or in neither.
CorvidPackage* keep(std::unique_ptr<CorvidPackage> package, std::vector<std::unique_ptr<CorvidPackage>>& owner) {
  refuseDuplicate(package->getFullName());
  owner.reserve(owner.size() + 1);
  CorvidPackage* const kept = package.get();
  hostState().packagesByName.emplace(kept->getFullName(), kept);
  owner.push_back(std::move(package));
  return kept;
}

}  // namespace

CorvidPackage::CorvidPackage(std::unique_ptr<CorvidPackageInfo> info, CorvidPackage* parent)
    : m_info(std::move(info)),
      m_name(internal::makeInterned(m_info->getName())),
      m_fullName(
          internal::makeInterned(dotted(parent != nullptr ? parent->m_fullName : Identifier(), m_info->getName()))) {}

CorvidPackage::~CorvidPackage() = default;

CorvidPackage* CorvidPackage::addPackage(std::unique_ptr<CorvidPackageInfo> info) {
  return keep(std::unique_ptr<CorvidPackage>(new CorvidPackage(std::move(info), nullptr)), hostState().packages);
}

CorvidPackage* CorvidPackage::addSubpackage(std::unique_ptr<CorvidPackageInfo> info) {
  return keep(std::unique_ptr<CorvidPackage>(new CorvidPackage(std::move(info), this)), m_subpackages);
}

CorvidPackage* CorvidPackage::getPackage(Identifier fullName) {
  auto const& packages = hostState().packagesByName;
  auto const found = packages.find(fullName);
  return found == packages.end() ? nullptr : found->second;
}

std::vector<CorvidPackage*> CorvidPackage::topLevelPackages() { return borrowed(hostState().packages); }

CorvidPackage* CorvidPackage::findTopLevelPackage(std::string_view name) {
  auto const& packages = hostState().packages;
  auto const found = std::find_if(packages.begin(), packages.end(),
                                  [&](auto const& package) { return package->m_name.text() == name; });
  return found == packages.end() ? nullptr : found->get();
}

CorvidClass* CorvidPackage::addClass(std::unique_ptr<CorvidClassInfo> info, int origin) {
  std::string const expected = dotted(m_fullName, info->getName());
  if (origin != NATIVE_CLASS || info->getFullName() != expected)
    throw HostError(ErrorKey::BAD_DESCRIPTION, "Package '" + m_fullName.text() + "' was given the class '" +
                                                   info->getFullName() + "', expected the native class '" + expected +
                                                   "'.");
  auto hostClass = std::make_unique<CorvidClass>(std::move(info));
  refuseDuplicate(hostClass->getFullName());
  m_classes.reserve(m_classes.size() + 1);
  hostState().classesByName.emplace(hostClass->getFullName(), hostClass.get());
  m_classes.push_back(std::move(hostClass));
  return m_classes.back().get();
}

void CorvidPackage::initialize() {
  if (m_state != State::New) return;
  m_state = State::Initializing;
  std::size_t const classesBefore = m_classes.size();
  try {
    m_info->initializePackage(this);
  } catch (...) {
    for (std::size_t i = classesBefore; i < m_classes.size(); ++i)
      hostState().classesByName.erase(m_classes[i]->getFullName());
    m_classes.resize(classesBefore);
    m_state = State::New;
    throw;
  }
  m_state = State::Ready;
}

CorvidPackage* CorvidPackage::findSubpackage(std::string_view shortName) const {
  auto const found = std::find_if(m_subpackages.begin(), m_subpackages.end(),
                                  [&](auto const& package) { return package->m_name.text() == shortName; });
  return found == m_subpackages.end() ? nullptr : found->get();
}

CorvidClass* CorvidPackage::findClass(std::string_view shortName) {
  initialize();
  auto const found = std::find_if(m_classes.begin(), m_classes.end(),
                                  [&](auto const& hostClass) { return hostClass->getName().text() == shortName; });
  return found == m_classes.end() ? nullptr : found->get();
}

std::vector<CorvidPackage*> CorvidPackage::subpackages() const { return borrowed(m_subpackages); }

std::vector<CorvidClass*> CorvidPackage::classes() {
  initialize();
  return borrowed(m_classes);
}

}  // namespace corvid
