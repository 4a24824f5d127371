#include "tessel_config_datamodel/meta/ModelMetaPackage.hpp"

#include <mutex>

#include "groundwork/NameUuid.hpp"
#include "plinth/ValueText.hpp"
#include "tessel_config_datamodel/frame/HostArrayText.hpp"

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

Type resolve(TypeReference const& reference, plinth::meta::MetaRegistry const& registry) {
  return reference.handle != nullptr ? *reference.handle : registry.getType(reference.name);
}

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
  // Registering before the commit would publish a half-built tree.
  registerRootPackage(*root.handle);
}

namespace {

/// The creating operations of the foundation, made available to the functions below.
class Maker : public plinth::meta::AbstractMetaPackage {
 public:
  static void make(StructuredTypeRow const& row) {
    if (row.classHandle != nullptr) {
      *row.classHandle = createClass(row.name, row.qualifiedName, row.isAbstract, row.uuid);
    } else {
      *row.dataTypeHandle = createDataType(row.name, row.qualifiedName, row.uuid);
    }
    if (row.isHidden) row.type()->setIsCorvidHidden(true);
    for (PropertyRow const& property : row.properties) make(property);
    for (OperationRow const& operation : row.operations) {
      *operation.handle = createOperation(operation.name, plinth::meta::parseUuid(operation.uuid));
    }
  }

  static void make(PropertyRow const& row) {
    *row.handle = createProperty(row.name, row.flags, row.isComposite, row.uuid);
    Property const& property = *row.handle;
    if (row.isHidden) property->setIsCorvidHidden(true);
    property->setIsOrdered(row.isOrdered);
    property->setIsUnique(row.isUnique);
    property->setDefaultValue(row.defaultText == nullptr ? boost::optional<std::u16string>()
                                                         : std::u16string(row.defaultText));
    property->setIsDerived(row.isDerived);
    if (row.isTransient) property->setIsTransient(true);
    if (row.index != 0) setPropertyIndex(property, row.index);
  }

  static void make(EnumRow const& row) {
    *row.handle = createEnum(row.name, row.qualifiedName, row.uuid);
    for (LiteralRow const& literal : row.literals) {
      *literal.handle = createEnumLiteral(literal.name, literal.value, literal.uuid);
    }
  }
};

void weaveProperties(StructuredTypeRow const& row, plinth::meta::MetaRegistry const& registry) {
  for (std::size_t i = 0; i < row.properties.size(); ++i) {
    PropertyRow const& each = row.properties[i];
    Property const& property = *each.handle;
    property->setOwningType(row.type());
    property->setType(resolve(each.type, registry));
    if (each.qualifier != nullptr) property->setQualifiedBy(*each.qualifier);
    property->setIsQualificationUnique(true);
    if (each.opposite != nullptr) property->setOpposite(*each.opposite);
    if (row.table != nullptr) row.table->properties[i].property = property.impl();
  }
  if (row.table != nullptr) tessel::frame::bind(*row.table, *row.classHandle);
}

void weaveOperations(StructuredTypeRow const& row, plinth::meta::MetaRegistry const& registry) {
  for (OperationRow const& each : row.operations) {
    plinth::meta::Operation const& operation = *each.handle;
    operation->setIsAbstract(false);
    operation->setIsStatic(false);
    operation->setIsPublic(true);
    operation->setIsEvent(false);
    operation->setOwningType(row.type());
    operation->setType(resolve(each.type, registry));
    operation->setLower(1);
    operation->setUpper(1);
  }
}

void weaveType(StructuredTypeRow const& row, plinth::meta::Package const& package, plinth::meta::MetaRegistry& registry,
               plinth::meta::PropertySerializerRegistry& serializers) {
  row.type()->setOwningPackage(package);
  if (row.classHandle != nullptr) {
    bool const isRoot = row.superclass.handle == nullptr && row.superclass.name == nullptr;
    Type const superclass = isRoot ? Type(plinth::ModelElement::metaClass()) : resolve(row.superclass, registry);
    (*row.classHandle)->setSuperclass(plinth::meta::Class(static_cast<plinth::meta::ClassImpl*>(superclass.impl())));
  }
  weaveProperties(row, registry);
  registry.registerType(row.type(), row.collections, row.builders);
  registry.registerTypeNames(row.type(), row.nativeName, row.qualifiedName, "");
  weaveOperations(row, registry);
  if (row.dataTypeHandle != nullptr) {
    serializers.registerDatatypeSerializer(*row.dataTypeHandle, row.serializer());
  }
}

}  // namespace

void ModelMetaPackage::instantiate(PackageRows const& rows, MetaRegistry& registry) {
  OpenRegistry const open(registry);
  *rows.handle = createPackage(rows.name, rows.uri);
  for (StructuredTypeRow const& row : rows.types) Maker::make(row);
  for (PrimitiveRow const& row : rows.primitives)
    *row.handle = plinth::internal::getPrimitiveTypeFromMetaRegistry(row.name);
  for (EnumRow const& row : rows.enums) Maker::make(row);
}

void ModelMetaPackage::weave(PackageRows const& rows, MetaRegistry& registry, PropertySerializerRegistry& serializers) {
  plinth::meta::Package const& package = *rows.handle;
  package->setParentPackage(*rows.parent);
  for (StructuredTypeRow const& row : rows.types) weaveType(row, package, registry, serializers);
  if (rows.enums.empty()) return;
  Type const underlying = plinth::internal::getPrimitiveTypeFromMetaRegistry("Integer");
  for (EnumRow const& row : rows.enums) {
    plinth::meta::Enum const& type = *row.handle;
    type->setOwningPackage(package);
    type->setUnderlyingType(underlying);
    for (LiteralRow const& literal : row.literals) (*literal.handle)->setParentEnum(type);
    registry.registerType(type, row.collections, nullptr);
    registry.registerTypeNames(type, row.nativeName, row.qualifiedName, "");
    row.registerSerializers(serializers, type);
  }
}

}  // namespace tessel::metamodel
