// Base of the generated meta packages: what the instantiation and the weaving of a metamodel call.
// Thread rule: under the registry's mutex, inside a transaction of the registry's thawed model.
#pragma once

#include <boost/optional.hpp>
#include <string>

#include "plinth/meta/MetaRegistry.hpp"

namespace plinth::meta {

class TESSEL_EXPORT AbstractMetaPackage {
 public:
  AbstractMetaPackage(AbstractMetaPackage const&) = delete;
  AbstractMetaPackage& operator=(AbstractMetaPackage const&) = delete;
  virtual ~AbstractMetaPackage();

  /// Publishes a root package that is complete and committed.
  static void registerRootPackage(Package const& package);
  static void unregisterRootPackage(std::u16string const& uri);

 protected:
  AbstractMetaPackage() = default;

  static Package createPackage(std::u16string const& name, std::u16string const& uri);
  static Class createClass(std::u16string const& name, std::string const& qualifiedName, bool isAbstract,
                           boost::uuids::uuid const& uuid);
  static DataType createDataType(std::u16string const& name, std::string const& qualifiedName,
                                 boost::uuids::uuid const& uuid);
  static Enum createEnum(std::u16string const& name, std::string const& qualifiedName, boost::uuids::uuid const& uuid);
  static EnumLiteral createEnumLiteral(std::u16string const& name, int value, boost::uuids::uuid const& uuid);
  static Property createProperty(std::u16string const& name, ValueFlags flags, bool isComposite,
                                 boost::uuids::uuid const& uuid);
  static Operation createOperation(std::u16string const& name, boost::uuids::uuid const& uuid);
  static void setPropertyIndex(Property const& property, int index);
};

}  // namespace plinth::meta
