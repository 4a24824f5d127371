// Base of the metamodel's own objects. They are elements of the registry's model; what they hold is written while they
// are new, inside the transaction that creates them, and read without locks ever after. Ownership: the registry's model
// holds them. Links between them are plain pointers: a package that is replaced is retired, not freed, so that what
// still refers to it stays readable. Thread rule: written under the registry's mutex; read from any thread once
// registered.
#pragma once

#include <string>

#include "plinth/Model.hpp"

namespace plinth::meta {

/// Value flags: the shape of a property's value.
enum ValueFlags : int { OPTIONAL = 0, SINGLE = 1, SEQUENCE = 2, SET = 4, MAP = 6 };

/// The classes of the metamodel's own elements, in the order of the registry's table; the first three are abstract.
enum class CoreClass {
  TYPE,
  STRUCTURED_TYPE,
  TYPED_ELEMENT,
  PACKAGE,
  CLASS,
  DATATYPE,
  ENUM,
  ENUM_LITERAL,
  PRIMITIVE,
  PROPERTY,
  OPERATION
};

class TESSEL_EXPORT MetaElementImpl : public ModelElementImpl {
 public:
  std::u16string const& getName() const noexcept { return m_name; }
  void setName(std::u16string name);

  meta::Class const& getMetaClass() const override;
  Changes* createChanges() const override;
  Storage* createStorage() const override;

 protected:
  MetaElementImpl(Model const& model, boost::uuids::uuid const& uuid, CoreClass coreClass);
  ~MetaElementImpl() override;
  CoreClass coreClass() const noexcept { return m_coreClass; }
  /// Raises CannotModifyFrozenModel once the element's own transaction has ended.
  void requireNew() const;
  void becomePartOf(ModelElementImpl& owner);

 private:
  CoreClass m_coreClass;
  std::u16string m_name;
};

}  // namespace plinth::meta
