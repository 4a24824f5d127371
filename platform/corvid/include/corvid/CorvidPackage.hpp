// Packages of the host: a tree by dotted name. The host owns them and their descriptions.
//
// A package is initialised at its first use, which is the first search for a class in it or the first listing of its
// classes; registering a package, or finding one, does not initialise it.
// Thread rule: the host's thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corvid/HostAllocated.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"

namespace corvid {

class CorvidClass;
class CorvidClassInfo;
class CorvidPackage;

/// The description of a package, by whoever provides it.
class TESSEL_EXPORT CorvidPackageInfo : public HostAllocated {
 public:
  virtual ~CorvidPackageInfo();

  /// The package's own name, the last part of its dotted name.
  virtual std::string const& getName() const = 0;
  /// Adds the package's classes. What it raises passes to the user of the package; the package is then as before.
  virtual void initializePackage(CorvidPackage* package) = 0;
};

/// Goes with addClass: the class is described by a library, not by a script.
constexpr int NATIVE_CLASS = 2;

class TESSEL_EXPORT CorvidPackage {
 public:
  /// Adds a top-level package. Raises DuplicateName.
  static CorvidPackage* addPackage(std::unique_ptr<CorvidPackageInfo> info);
  /// The package of that dotted name, null when there is none.
  [[nodiscard]] static CorvidPackage* getPackage(Identifier fullName);
  [[nodiscard]] static std::vector<CorvidPackage*> topLevelPackages();
  /// The top-level package of that name, null when there is none. Interns nothing. Cost: linear in their number.
  [[nodiscard]] static CorvidPackage* findTopLevelPackage(std::string_view name);

  ~CorvidPackage();
  CorvidPackage(CorvidPackage const&) = delete;
  CorvidPackage& operator=(CorvidPackage const&) = delete;

  /// Raises DuplicateName.
  CorvidPackage* addSubpackage(std::unique_ptr<CorvidPackageInfo> info);
  /// Adds a class; its full name must be this package's and its short name. `origin` is NATIVE_CLASS. Raises
  /// DuplicateName, BadDescription.
  CorvidClass* addClass(std::unique_ptr<CorvidClassInfo> info, int origin);

  Identifier getName() const noexcept { return m_name; }
  Identifier getFullName() const noexcept { return m_fullName; }

  /// Null when there is none. The second initialises the package, not the class.
  [[nodiscard]] CorvidPackage* findSubpackage(std::string_view shortName) const;
  CorvidClass* findClass(std::string_view shortName);

  [[nodiscard]] std::vector<CorvidPackage*> subpackages() const;
  /// In the order of registration; initialises the package.
  std::vector<CorvidClass*> classes();

 private:
  enum class State { New, Initializing, Ready };

  CorvidPackage(std::unique_ptr<CorvidPackageInfo> info, CorvidPackage* parent);
  void initialize();

  std::unique_ptr<CorvidPackageInfo> m_info;
  Identifier m_name;
  Identifier m_fullName;
  State m_state = State::New;
  std::vector<std::unique_ptr<CorvidPackage>> m_subpackages;
  std::vector<std::unique_ptr<CorvidClass>> m_classes;
};

}  // namespace corvid
