#include "plinth/meta/MetaRegistry.hpp"

#include <array>

#include "groundwork/NameUuid.hpp"
#include "groundwork/Unicode.hpp"
#include "plinth/Messages.hpp"

namespace plinth::meta {
namespace {

struct CoreRow {
  char const* name;
  std::size_t superclass;  // its place in the table; the root names itself
  bool isAbstract;
};

constexpr std::size_t placeOf(CoreClass which) { return 2 + static_cast<std::size_t>(which); }
constexpr std::size_t ROOT = 0;

// In the order of CoreClass, behind the two of the foundation's elements.
constexpr std::array<CoreRow, 13> CORE_CLASSES{{
    {"plinth.ModelElement", ROOT, true},
    {"plinth.Model", ROOT, false},
    {"plinth.meta.Type", ROOT, true},
    {"plinth.meta.StructuredType", placeOf(CoreClass::TYPE), true},
    {"plinth.meta.TypedElement", ROOT, true},
    {"plinth.meta.Package", ROOT, false},
    {"plinth.meta.Class", placeOf(CoreClass::STRUCTURED_TYPE), false},
    {"plinth.meta.DataType", placeOf(CoreClass::STRUCTURED_TYPE), false},
    {"plinth.meta.Enum", placeOf(CoreClass::TYPE), false},
    {"plinth.meta.EnumLiteral", ROOT, false},
    {"plinth.meta.PrimitiveType", placeOf(CoreClass::TYPE), false},
    {"plinth.meta.Property", placeOf(CoreClass::TYPED_ELEMENT), false},
    {"plinth.meta.Operation", placeOf(CoreClass::TYPED_ELEMENT), false},
}};

constexpr std::array<char const*, 8> PRIMITIVES{"Boolean",    "String",           "Real",        "Integer", "Integer64",
                                                "UInteger64", "UnlimitedNatural", "KestrelArray"};

std::u16string simpleName(std::string const& qualifiedName) {
  return groundwork::toUtf16(qualifiedName.substr(qualifiedName.rfind('.') + 1));
}

}  // namespace

MetaRegistry* MetaRegistry::s_current = nullptr;

MetaRegistry& MetaRegistry::getInstance() {
  static MetaRegistry* const instance = new MetaRegistry();  // never destroyed: the metamodel outlives static objects
  return *instance;
}

MetaRegistry::MetaRegistry() : m_model(Model::create()), m_freezer(m_model) {
  s_current = this;  // the core elements ask for their classes while this constructor runs
  buildCore();
}

void MetaRegistry::buildCore() {
  auto const thawer = m_freezer.thaw();
  Transaction transaction = m_model->beginTransaction(true);
  for (CoreRow const& row : CORE_CLASSES) {
    Class core;
    static_cast<ModelElement&>(core) =
        ModelElement(new ClassImpl(m_model, groundwork::nameUuid(row.name), row.name, row.isAbstract), Adopt{});
    core->setName(simpleName(row.name));
    if (!m_coreClasses.empty()) core->setSuperclass(m_coreClasses[row.superclass]);
    m_coreClasses.push_back(core);
    m_types.emplace(row.name, core);
  }
  for (char const* name : PRIMITIVES) {
    PrimitiveType primitive;
    static_cast<ModelElement&>(primitive) =
        ModelElement(new PrimitiveTypeImpl(m_model, groundwork::nameUuid(name), name), Adopt{});
    primitive->setName(groundwork::toUtf16(name));
    m_primitives.emplace(name, primitive);
    m_types.emplace(name, primitive);
  }
  // Announced once all of them stand: each is of a class that is one of them.
  for (Class const& core : m_coreClasses) core->notifyCreated();
  for (auto const& [name, primitive] : m_primitives) primitive->notifyCreated();
  transaction.commit();
}

void MetaRegistry::registerType(Type const& type, CollectionFactory collections, BuilderFactory builders) {
  type->m_collectionFactory = collections;
  if (auto* const metaClass = dynamic_cast<ClassImpl*>(type.impl())) metaClass->m_builderFactory = builders;
}

void MetaRegistry::registerTypeNames(Type const& type, std::string const& nativeName, std::string const& dottedName,
                                     std::string const& aliasName) {
  for (std::string const* name : {&nativeName, &dottedName, &aliasName}) {
    if (!name->empty()) m_types.insert_or_assign(*name, type);
  }
}

Type MetaRegistry::findType(std::string_view name) const {
  auto const found = m_types.find(name);
  return found == m_types.end() ? Type() : found->second;
}

Type MetaRegistry::getType(std::u16string const& name) const {
  Type type = findType(groundwork::toUtf8(name));
  if (type.isEmpty()) reportException(messages::NoSuchType(name));
  return type;
}

PrimitiveType MetaRegistry::getPrimitiveType(std::string_view name) const {
  auto const found = m_primitives.find(name);
  return found == m_primitives.end() ? PrimitiveType() : found->second;
}

std::vector<Package> MetaRegistry::rootPackages() const {
  std::vector<Package> packages;
  for (auto const& [uri, package] : m_rootPackages) packages.push_back(package);
  return packages;
}

namespace {
Class const& builtClass(CoreClass which) { return MetaRegistry::getInstance().coreClass(which); }
}  // namespace

Class const& Type::metaClass() { return builtClass(CoreClass::TYPE); }
Class const& StructuredType::metaClass() { return builtClass(CoreClass::STRUCTURED_TYPE); }
Class const& TypedElement::metaClass() { return builtClass(CoreClass::TYPED_ELEMENT); }
Class const& Package::metaClass() { return builtClass(CoreClass::PACKAGE); }
Class const& Class::metaClass() { return builtClass(CoreClass::CLASS); }
Class const& DataType::metaClass() { return builtClass(CoreClass::DATATYPE); }
Class const& Enum::metaClass() { return builtClass(CoreClass::ENUM); }
Class const& EnumLiteral::metaClass() { return builtClass(CoreClass::ENUM_LITERAL); }
Class const& PrimitiveType::metaClass() { return builtClass(CoreClass::PRIMITIVE); }
Class const& Property::metaClass() { return builtClass(CoreClass::PROPERTY); }
Class const& Operation::metaClass() { return builtClass(CoreClass::OPERATION); }

}  // namespace plinth::meta

plinth::meta::PrimitiveType plinth::internal::getPrimitiveTypeFromMetaRegistry(std::string_view name) {
  meta::PrimitiveType type = meta::MetaRegistry::getInstance().getPrimitiveType(name);
  if (type.isEmpty()) reportException(messages::NoSuchType(groundwork::toUtf16(std::string(name))));
  return type;
}
