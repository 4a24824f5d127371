#include "plinth/meta/AbstractMetaPackage.hpp"

#include "plinth/FailurePoint.hpp"

namespace plinth::meta {
namespace {

Model const& metaModel() { return MetaRegistry::getInstance().model(); }

template <class H, class I>
H announced(I* implementation, std::u16string const& name) {
  H handle;
  static_cast<ModelElement&>(handle) = ModelElement(implementation, Adopt{});
  implementation->setName(name);
  core(*implementation).notifyCreated();
  return handle;
}

}  // namespace

AbstractMetaPackage::~AbstractMetaPackage() = default;

void AbstractMetaPackage::registerRootPackage(Package const& package) {
  MetaRegistry::getInstance().m_rootPackages.insert_or_assign(package->uri(), package);
}

void AbstractMetaPackage::unregisterRootPackage(std::u16string const& uri) {
  MetaRegistry& registry = MetaRegistry::getInstance();
  auto const found = registry.m_rootPackages.find(uri);
  if (found == registry.m_rootPackages.end()) return;
  registry.m_retired.push_back(found->second);
  registry.m_rootPackages.erase(found);
}

Package AbstractMetaPackage::createPackage(std::u16string const& name, std::u16string const& uri) {
  failurePoint("create-package");
  auto package = announced<Package>(new PackageImpl(metaModel(), {}), name);
  package->setUri(uri);
  return package;
}

Class AbstractMetaPackage::createClass(std::u16string const& name, std::string const& qualifiedName, bool isAbstract,
                                       boost::uuids::uuid const& uuid) {
  failurePoint("create-class");
  return announced<Class>(new ClassImpl(metaModel(), uuid, qualifiedName, isAbstract), name);
}

DataType AbstractMetaPackage::createDataType(std::u16string const& name, std::string const& qualifiedName,
                                             boost::uuids::uuid const& uuid) {
  return announced<DataType>(new DataTypeImpl(metaModel(), uuid, qualifiedName), name);
}

Enum AbstractMetaPackage::createEnum(std::u16string const& name, std::string const& qualifiedName,
                                     boost::uuids::uuid const& uuid) {
  return announced<Enum>(new EnumImpl(metaModel(), uuid, qualifiedName), name);
}

EnumLiteral AbstractMetaPackage::createEnumLiteral(std::u16string const& name, int value,
                                                   boost::uuids::uuid const& uuid) {
  return announced<EnumLiteral>(new EnumLiteralImpl(metaModel(), uuid, value), name);
}

Property AbstractMetaPackage::createProperty(std::u16string const& name, ValueFlags flags, bool isComposite,
                                             boost::uuids::uuid const& uuid) {
  return announced<Property>(new PropertyImpl(metaModel(), uuid, flags, isComposite), name);
}

Operation AbstractMetaPackage::createOperation(std::u16string const& name, boost::uuids::uuid const& uuid) {
  return announced<Operation>(new OperationImpl(metaModel(), uuid), name);
}

void AbstractMetaPackage::setPropertyIndex(Property const& property, int index) { property->setIndex(index); }

}  // namespace plinth::meta
