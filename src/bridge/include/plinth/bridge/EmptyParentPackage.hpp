// Descriptions of the packages of a model: by dotted name, with the packages above made on demand.
// Ownership: the host owns a description once it is registered. Thread rule: the host's thread.
#pragma once

#include <memory>
#include <string>

#include "corvid/CorvidClassInfo.hpp"
#include "corvid/CorvidPackage.hpp"
#include "groundwork/export.hpp"
#include "plinth/bridge/ValueMarshaler.hpp"

namespace plinth::bridge {

class TESSEL_EXPORT EmptyParentPackage : public corvid::CorvidPackageInfo {
 public:
  class Registrar;

  /// Splits the name at its last dot; one without a dot has no parent.
  explicit EmptyParentPackage(std::string const& fullName);

  std::string const& getName() const override { return m_name; }
  std::string const& getParentName() const noexcept { return m_parentName; }

  /// Gives the package to the host, which owns it from then on, and first the packages above that the host lacks. One
  /// that the host knows by this name stays as it is, and the new description goes. Raises DuplicateName where a class
  /// has the name.
  static void registerPackage(std::unique_ptr<EmptyParentPackage> package);

  /// Has no classes.
  void initializePackage(corvid::CorvidPackage* package) override;

 private:
  std::string m_name;
  std::string m_parentName;
};

/// Puts the marshalers of a package's own types into the registry; what static objects of a library call.
class TESSEL_EXPORT EmptyParentPackage::Registrar {
 public:
  static void registerTypeMarshaler(meta::Type const& type, std::unique_ptr<ValueMarshaler> marshaler);
  static void unregisterTypeMarshaler(meta::Type const& type);
};

/// Adds a class W under a package: its description gets the short and the full name.
template <class W>
corvid::CorvidClass* addClass(corvid::CorvidPackage& package, char const* name) {
  auto info = std::make_unique<W>(name, package.getFullName().text() + "." + name);
  return package.addClass(std::move(info), corvid::NATIVE_CLASS);
}

}  // namespace plinth::bridge
