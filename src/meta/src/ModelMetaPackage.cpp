#include "tessel_config_datamodel/meta/ModelMetaPackage.hpp"

#include <mutex>

#include "groundwork/NameUuid.hpp"
#include "plinth/diagnostics/ValueText.hpp"
#include "tessel_config_datamodel/frame/HostArrayText.hpp"
#include "tessel_config_datamodel/frame/PropertyKind.hpp"

namespace tessel::metamodel {

using plinth::meta::Property;
using plinth::meta::Type;

namespace {

/// Reference order: the mutex is taken first and given back last.
struct OpenRegistry {
  explicit OpenRegistry(plinth::meta::MetaRegistry& registry)
      : lock(registry.mutex()), model(registry.model()), thawer(registry.freezer().thaw()) {}
  std::unique_lock<std::recursive_mutex> lock;
  plinth::Model model;
  plinth::Model::Thawer thawer;
};

void destroyIncarnation(plinth::ModelElement const& found, plinth::Model const& model) {
  plinth::Transaction transaction = model->beginTransaction(true);
  auto const package = plinth::meta::Package(static_cast<plinth::meta::PackageImpl*>(found.impl()));
  plinth::meta::AbstractMetaPackage::unregisterRootPackage(package->uri());
  package->destroy();
  transaction.commit();
}

}  // namespace

void ModelMetaPackage::initialize(RootRow const& root) {
  MetaRegistry& registry = MetaRegistry::getInstance();
  OpenRegistry const open(registry);
  plinth::setOpaqueText(&tessel::frame::hostArrayValueText);
  for (auto const bringUp : root.imports) bringUp();
  PropertySerializerRegistry& serializers = PropertySerializerRegistry::getInstance();
  boost::uuids::uuid const uuid = groundwork::nameUuid(root.modelName);
  plinth::ModelElement const found = open.model->findElement(uuid, plinth::FindElementBehavior::IN_MEMORY);
  if (found) destroyIncarnation(found, open.model);

  plinth::Transaction transaction = open.model->beginTransaction(true);
  *root.handle = plinth::meta::Package::create(open.model, uuid);
  (*root.handle)->setName(u"");
  (*root.handle)->setUri(root.uri);
  (*root.handle)->getImportedPackageURIsMutable().insert(root.importedUris);
  instantiateAll(registry);
  weaveAll(registry, serializers);
  transaction.commit();
  m_types.clear();
  m_properties.clear();
  // Registering before the commit would publish a half-built tree.
  registerRootPackage(*root.handle);
}

namespace {

std::u16string widened(std::string const& text) { return {text.begin(), text.end()}; }

/// The last component of a dotted name.
std::u16string simpleName(char const* qualifiedName) {
  std::string const name = qualifiedName;
  return widened(name.substr(name.rfind('.') + 1));
}

/// The name as C++ writes it.
std::string nativeName(std::string const& qualifiedName) {
  std::string result;
  for (char const c : qualifiedName) c == '.' ? void(result += "::") : result.push_back(c);
  return result;
}

bool has(unsigned traits, tessel::frame::Trait trait) noexcept { return (traits & trait) != 0; }

}  // namespace

/// Makes what the rows tell, each thing into its handle.
class ModelMetaPackage::Maker {
 public:
  explicit Maker(ModelMetaPackage& package) : m_package(package) {}

  void make(TypeRow const& row) {
    auto const& facts = row.facts();
    std::u16string const name = simpleName(facts.qualifiedName);
    bool const isAbstract = has(facts.traits, tessel::frame::ABSTRACT);
    if (row.table != nullptr) {
      take(facts, at<plinth::meta::Class>(facts.slot) = createClass(name, facts.qualifiedName, isAbstract, facts.uuid));
      for (auto& property : *row.table) {
        Property const& made = make(property.facts, facts);
        if (property.index != 0) setPropertyIndex(made, property.index);
        property.property = made.impl();
      }
      return;
    }
    take(facts, at<plinth::meta::DataType>(facts.slot) = createDataType(name, facts.qualifiedName, facts.uuid));
    for (auto const& property : row.datatype->properties) make(property, facts);
    for (OperationRow const& operation : row.datatype->operations) {
      at<plinth::meta::Operation>(operation.slot) = createOperation(operation.name, uuidOf(facts, operation.name));
    }
  }

  void make(EnumRow const& row) {
    auto const& facts = row.facts;
    auto& made = at<plinth::meta::Enum>(facts.slot);
    take(facts, made = createEnum(simpleName(facts.qualifiedName), facts.qualifiedName, facts.uuid));
    for (LiteralRow const& literal : row.literals) {
      at<plinth::meta::EnumLiteral>(literal.slot) =
          createEnumLiteral(literal.name, literal.value, uuidOf(facts, literal.name));
    }
  }

 private:
  template <class Handle>
  Handle& at(std::size_t slot) noexcept {
    return m_package.handleAt<Handle>(slot);
  }

  /// A type that rows may name from here on.
  void take(tessel::frame::TypeFacts const& facts, Type const& type) {
    if (has(facts.traits, tessel::frame::HIDDEN)) type->setIsCorvidHidden(true);
    m_package.m_types[widened(facts.qualifiedName)] = type;
  }

  Property const& make(tessel::frame::PropertyFacts const& facts, tessel::frame::TypeFacts const& owner) {
    auto& property = at<Property>(facts.slot);
    property =
        createProperty(facts.name, facts.flags, has(facts.traits, tessel::frame::COMPOSITE), uuidOf(owner, facts.name));
    if (has(facts.traits, tessel::frame::HIDDEN)) property->setIsCorvidHidden(true);
    property->setIsOrdered(has(facts.traits, tessel::frame::ORDERED));
    property->setIsUnique(has(facts.traits, tessel::frame::UNIQUE));
    property->setDefaultValue(facts.defaultText == nullptr ? boost::optional<std::u16string>()
                                                           : std::u16string(facts.defaultText));
    property->setIsDerived(has(facts.traits, tessel::frame::DERIVED));
    if (has(facts.traits, tessel::frame::TRANSIENT)) property->setIsTransient(true);
    m_package.m_properties[memberName(owner, facts.name)] = property;
    return property;
  }

  static std::string memberName(tessel::frame::TypeFacts const& owner, std::u16string const& name) {
    return owner.qualifiedName + ("." + std::string(name.begin(), name.end()));
  }
  static boost::uuids::uuid uuidOf(tessel::frame::TypeFacts const& owner, std::u16string const& member) {
    return groundwork::nameUuid(memberName(owner, member));
  }

  ModelMetaPackage& m_package;
};

/// Connects what was made. A type of this model is found among those that were made, any other in the registry.
class ModelMetaPackage::Weaver {
 public:
  Weaver(ModelMetaPackage& package, plinth::meta::Package const& owner, MetaRegistry& registry,
         PropertySerializerRegistry& serializers)
      : m_package(package), m_owner(owner), m_registry(registry), m_serializers(serializers) {}

  void weave(TypeRow const& row) {
    Type const type = m_package.m_types.at(widened(row.facts().qualifiedName));
    type->setOwningPackage(m_owner);
    if (row.table != nullptr) {
      auto const& made = m_package.handleAt<plinth::meta::Class>(row.table->facts.slot);
      auto const* const base = row.table->base;
      made->setSuperclass(base == nullptr ? plinth::ModelElement::metaClass() : superclass(*base));
      for (auto const& property : *row.table) weave(property.facts, type);
      tessel::frame::bind(*row.table, made);
      enter(type, row.facts(), row.table->make.collection, row.table->make.builder);
      return;
    }
    for (auto const& property : row.datatype->properties) weave(property, type);
    enter(type, row.facts(), row.datatype->collections, nullptr);
    for (OperationRow const& operation : row.datatype->operations) weave(operation, type);
    m_serializers.registerDatatypeSerializer(m_package.handleAt<plinth::meta::DataType>(row.facts().slot),
                                             row.datatype->serializer());
  }

  void weave(EnumRow const& row, Type const& underlying) {
    auto const& type = m_package.handleAt<plinth::meta::Enum>(row.facts.slot);
    type->setOwningPackage(m_owner);
    type->setUnderlyingType(underlying);
    for (LiteralRow const& literal : row.literals) {
      m_package.handleAt<plinth::meta::EnumLiteral>(literal.slot)->setParentEnum(type);
    }
    enter(type, row.facts, row.collections, nullptr);
    row.registerSerializers(m_serializers, type);
  }

 private:
  Type resolve(char16_t const* name) const {
    auto const found = m_package.m_types.find(name);
    return found != m_package.m_types.end() ? found->second : m_registry.getType(name);
  }

  plinth::meta::Class superclass(tessel::frame::ClassTable const& base) const {
    Type const type = resolve(widened(base.facts.qualifiedName).c_str());
    return plinth::meta::Class(static_cast<plinth::meta::ClassImpl*>(type.impl()));
  }

  void weave(tessel::frame::PropertyFacts const& facts, Type const& owner) {
    auto const& property = m_package.handleAt<Property>(facts.slot);
    property->setOwningType(owner);
    property->setType(resolve(facts.type));
    if (facts.qualifier != nullptr) property->setQualifiedBy(propertyNamed(facts.qualifier));
    property->setIsQualificationUnique(true);
    if (facts.opposite != nullptr) property->setOpposite(propertyNamed(facts.opposite));
  }

  /// Of this model, or, for the qualifier of elements of a sibling's class, of another one.
  Property propertyNamed(std::string const& name) const {
    auto const found = m_package.m_properties.find(name);
    if (found != m_package.m_properties.end()) return found->second;
    std::size_t const point = name.rfind('.');
    Type const owner = m_registry.getType(widened(name.substr(0, point)));
    return Property(static_cast<plinth::meta::ClassImpl*>(owner.impl())->findProperty(widened(name.substr(point + 1))));
  }

  void weave(OperationRow const& row, Type const& owner) {
    auto const& operation = m_package.handleAt<plinth::meta::Operation>(row.slot);
    operation->setIsAbstract(false);
    operation->setIsStatic(false);
    operation->setIsPublic(true);
    operation->setIsEvent(false);
    operation->setOwningType(owner);
    operation->setType(resolve(row.type));
    operation->setLower(1);
    operation->setUpper(1);
  }

  void enter(Type const& type, tessel::frame::TypeFacts const& facts, plinth::meta::CollectionFactory collections,
             plinth::meta::BuilderFactory builders) {
    m_registry.registerType(type, collections, builders);
    m_registry.registerTypeNames(type, nativeName(facts.qualifiedName), facts.qualifiedName, "");
  }

  ModelMetaPackage& m_package;
  plinth::meta::Package const& m_owner;
  MetaRegistry& m_registry;
  PropertySerializerRegistry& m_serializers;
};

std::vector<Property const*> ModelMetaPackage::handlesOf(DatatypeRow const& row) {
  std::vector<Property const*> handles;
  for (auto const& each : row.properties) handles.push_back(&handleAt<Property>(each.slot));
  return handles;
}

void ModelMetaPackage::instantiate(PackageRow const& package, MetaRegistry& registry) {
  OpenRegistry const open(registry);
  *package.handle = createPackage(package.name, package.uri);
  Maker maker(*this);
  for (TypeRow const& row : package.types) maker.make(row);
  for (PrimitiveRow const& row : package.primitives) {
    handleAt<plinth::meta::PrimitiveType>(row.slot) = plinth::internal::getPrimitiveTypeFromMetaRegistry(row.name);
  }
  for (EnumRow const* row : package.enums) maker.make(*row);
}

void ModelMetaPackage::weave(PackageRow const& package, MetaRegistry& registry,
                             PropertySerializerRegistry& serializers) {
  (*package.handle)->setParentPackage(*package.parent);
  Weaver weaver(*this, *package.handle, registry, serializers);
  for (TypeRow const& row : package.types) weaver.weave(row);
  if (package.enums.count == 0) return;
  Type const underlying = plinth::internal::getPrimitiveTypeFromMetaRegistry("Integer");
  for (EnumRow const* row : package.enums) weaver.weave(*row, underlying);
}

}  // namespace tessel::metamodel
