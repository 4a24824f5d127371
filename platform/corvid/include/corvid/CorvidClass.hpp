// The host's class object. A description fills it at the first use of the class; afterwards it answers for the class
// and all that the class inherits. The host owns it. Thread rule: the host's thread.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "corvid/CorvidClassInfo.hpp"
#include "corvid/CorvidEnumInfo.hpp"
#include "corvid/CorvidMethodInfo.hpp"
#include "corvid/CorvidPropInfo.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"

namespace corvid {

class CorvidPackage;

class TESSEL_EXPORT CorvidClass {
 public:
  /// The class of that dotted name, initialised; null when there is none. With a scope, a name without a dot is
  /// searched in that package. Raises what the description of the package or class raises. Cost: a hash look-up after
  /// the first time.
  static CorvidClass* getClass(Identifier fullName, CorvidPackage* scope = nullptr);
  /// The same for who cannot go on without it: raises NoSuchClass.
  static CorvidClass& requireClass(Identifier fullName);

  explicit CorvidClass(std::unique_ptr<CorvidClassInfo> info);
  ~CorvidClass();
  CorvidClass(CorvidClass const&) = delete;
  CorvidClass& operator=(CorvidClass const&) = delete;

  // For the description, while the class is initialised.

  /// `described` is 0 for a built-in type that the class stands over ("int32") and 1 for a class; a superclass that is
  /// `hidden` is left out of listings; only one that is `inherited` gives its members to this class.
  void addSuperclass(Identifier name, int described, int hidden, int inherited);
  /// Raises DuplicateName.
  void addProperty(std::unique_ptr<CorvidPropInfo> property);
  /// Several methods may have one name; a call takes the last one added that accepts the number of arguments.
  void addMethod(std::unique_ptr<CorvidMethodInfo> method);
  /// Makes a method known by name. Without a description and signature a call of it raises NotImplemented.
  void announceOperation(Identifier name, std::unique_ptr<CorvidMethodInfo> method,
                         std::unique_ptr<CorvidMethodSignature> signature);
  /// Raises DuplicateName.
  void addEnumValue(std::unique_ptr<CorvidEnumInfo> value);

  // For everybody, once the class is initialised.

  /// The last part of the dotted name.
  Identifier getName() const noexcept { return m_name; }
  Identifier getFullName() const noexcept { return m_fullName; }
  CorvidClassInfo const& getInfo() const noexcept { return *m_info; }
  /// The built-in type that the class stands over, empty for most classes.
  Identifier getUnderlyingType() const noexcept { return m_underlyingType; }

  /// True for the class itself too. Cost: linear in the number of ancestors.
  [[nodiscard]] bool isSubclassOf(Identifier fullName) const noexcept {
    return fullName == m_fullName || hasAncestor(fullName);
  }
  /// This class first, then its ancestors, each once, nearest first; without hidden ones.
  [[nodiscard]] std::vector<CorvidClass const*> lineage() const;

  /// Own or inherited; null when there is none. Cost: a hash look-up.
  [[nodiscard]] CorvidPropInfo const* findProperty(Identifier name) const;
  /// The methods of a name, inherited ones first, then the class's own in the order of their addition. Constructors are
  /// not inherited.
  [[nodiscard]] std::vector<CorvidMethodInfo const*> const& getMethods(Identifier name) const;
  /// The members of an enumeration in the order of their addition.
  std::vector<std::unique_ptr<CorvidEnumInfo>> const& getEnumValues() const noexcept { return m_enumValues; }
  [[nodiscard]] CorvidEnumInfo const* findEnumValue(Identifier name) const;

  /// What a script can name on an object of the class, the class's own first, hidden ones and constructors left out.
  [[nodiscard]] std::vector<CorvidPropInfo const*> listProperties() const;
  [[nodiscard]] std::vector<CorvidMethodInfo const*> listMethods() const;

 private:
  enum class State { New, Describing, Ready };
  struct Superclass;

  friend class CorvidPackage;
  bool hasAncestor(Identifier fullName) const noexcept;
  void initialize();
  void inherit();
  void inheritFrom(CorvidClass const& superclass, bool withMembers);
  void forgetDescription() noexcept;

  std::unique_ptr<CorvidClassInfo> m_info;
  Identifier m_fullName;
  Identifier m_name;
  Identifier m_underlyingType;
  State m_state = State::New;
  std::vector<Superclass> m_superclasses;
  std::vector<std::unique_ptr<CorvidPropInfo>> m_ownProperties;
  std::vector<std::unique_ptr<CorvidMethodInfo>> m_ownMethods;
  std::vector<std::unique_ptr<CorvidEnumInfo>> m_enumValues;
  // Own and inherited together.
  std::vector<CorvidClass const*> m_ancestors;
  std::unordered_map<Identifier, CorvidPropInfo const*> m_properties;
  std::unordered_map<Identifier, std::vector<CorvidMethodInfo const*>> m_methods;
};

}  // namespace corvid
