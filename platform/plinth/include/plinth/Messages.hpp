// The messages of the catalogue "plinth:messages" and the one place that raises them.
// Thread rule: pure functions and plain values.
#pragma once

#include <string>
#include <utility>

#include "groundwork/Except.hpp"

namespace plinth {
namespace messages {

/// Base of every record of the catalogue.
struct Record : groundwork::MessageRecord {
  explicit Record(char const* messageKey, std::vector<groundwork::MessageArgument> messageArguments = {})
      : MessageRecord{std::move(messageArguments), "plinth:messages", messageKey} {}
};

struct CannotModifyProxy : Record {
  CannotModifyProxy() : Record("CannotModifyProxy") {}
};
struct UniquenessConstraint : Record {
  UniquenessConstraint() : Record("UniquenessConstraint") {}
};
/// Arguments: the type of the value, the type that was expected, and the shapes of both.
struct CannotCastIncompatibleTypes : Record {
  CannotCastIncompatibleTypes(std::u16string actual, std::string expected, std::string actualShape,
                              std::string expectedShape)
      : Record("CannotCastIncompatibleTypes",
               {std::move(actual), std::move(expected), std::move(actualShape), std::move(expectedShape)}) {}
};
struct CannotCreateCrossModelAssociation : Record {
  CannotCreateCrossModelAssociation() : Record("CannotCreateCrossModelAssociation") {}
};
struct CannotCreateWithoutModel : Record {
  CannotCreateWithoutModel() : Record("CannotCreateWithoutModel") {}
};
/// Arguments: qualified names of the collection's type and of the element's type.
struct CannotAddIncompatibleTypes : Record {
  CannotAddIncompatibleTypes(std::u16string expected, std::u16string actual)
      : Record("CannotAddIncompatibleTypes", {std::move(expected), std::move(actual)}) {}
};
struct CannotAddIncompatibleObjectSubset : Record {
  CannotAddIncompatibleObjectSubset() : Record("CannotAddIncompatibleObjectSubset") {}
};
struct CannotAddNonExistentObject : Record {
  CannotAddNonExistentObject() : Record("CannotAddNonExistentObject") {}
};
struct CannotAddSecondObject : Record {
  CannotAddSecondObject() : Record("CannotAddSecondObject") {}
};
/// Argument: the property's qualified name.
struct CannotSetReadOnlyProperty : Record {
  explicit CannotSetReadOnlyProperty(std::u16string property)
      : Record("CannotSetReadOnlyProperty", {std::move(property)}) {}
};
struct InvalidValue : Record {
  InvalidValue() : Record("InvalidValue") {}
};
/// Arguments: the property's name (empty for an empty handle), the type's qualified name.
struct NoSuchProperty : Record {
  NoSuchProperty(std::u16string property, std::u16string type)
      : Record("NoSuchProperty", {std::move(property), std::move(type)}) {}
};
/// Argument: the type's name.
struct NoSuchType : Record {
  explicit NoSuchType(std::u16string type) : Record("NoSuchType", {std::move(type)}) {}
};

// What the foundation itself refuses.

struct CannotModifyDestroyedElement : Record {
  CannotModifyDestroyedElement() : Record("CannotModifyDestroyedElement") {}
};
struct CannotModifyFrozenModel : Record {
  CannotModifyFrozenModel() : Record("CannotModifyFrozenModel") {}
};
struct CannotFreezeOpenModel : Record {
  CannotFreezeOpenModel() : Record("CannotFreezeOpenModel") {}
};
struct CannotModifyOutsideTransaction : Record {
  CannotModifyOutsideTransaction() : Record("CannotModifyOutsideTransaction") {}
};
struct CannotContainAncestor : Record {
  CannotContainAncestor() : Record("CannotContainAncestor") {}
};
struct TransactionNotInnermost : Record {
  TransactionNotInnermost() : Record("TransactionNotInnermost") {}
};
struct TransactionEnded : Record {
  TransactionEnded() : Record("TransactionEnded") {}
};
/// Arguments: the names of the model that is being changed and of the one that the change reaches into.
struct OtherModelInTransaction : Record {
  OtherModelInTransaction(std::u16string near, std::u16string far)
      : Record("OtherModelInTransaction", {std::move(near), std::move(far)}) {}
};
/// Arguments: the names of the model that was asked and of the element's own.
struct CannotUnloadForeignElement : Record {
  CannotUnloadForeignElement(std::u16string asked, std::u16string own)
      : Record("CannotUnloadForeignElement", {std::move(asked), std::move(own)}) {}
};
/// Argument: how many can be open at once.
struct TransactionsNestedTooDeeply : Record {
  explicit TransactionsNestedTooDeeply(std::size_t limit)
      : Record("TransactionsNestedTooDeeply", {static_cast<std::int64_t>(limit)}) {}
};
struct NoModel : Record {
  NoModel() : Record("NoModel") {}
};
struct NoListener : Record {
  NoListener() : Record("NoListener") {}
};
/// Argument: the name that another model bears.
struct ModelNameTaken : Record {
  explicit ModelNameTaken(std::u16string name) : Record("ModelNameTaken", {std::move(name)}) {}
};
/// Argument: the class's qualified name.
struct CannotCreateAbstractClass : Record {
  explicit CannotCreateAbstractClass(std::u16string type) : Record("CannotCreateAbstractClass", {std::move(type)}) {}
};

}  // namespace messages

namespace detail {
/// The full sentence of a record, headed by its key.
TESSEL_EXPORT std::string sentenceOf(groundwork::MessageRecord const& record);
}  // namespace detail

/// Throws groundwork::except::Exception<M, std::exception> built from a copy of `message`, with the catalogue's
/// sentence or one that tells more than the arguments do. Never returns.
template <class M>
[[noreturn]] void reportException(M const& message, std::string sentence) {
  groundwork::except::Exception<M, std::exception> exception(message, std::move(sentence));
  exception.get_error_id() = {message.catalog, message.key};
  throw exception;
}
template <class M>
[[noreturn]] void reportException(M const& message) {
  reportException(message, detail::sentenceOf(message));
}

}  // namespace plinth
