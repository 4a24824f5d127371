#include "plinth/Messages.hpp"

#include <array>

namespace plinth::detail {
namespace {

struct Text {
  char const* key;
  char const* pattern;
};

constexpr std::array<Text, 25> TEXTS{{
    {"CannotModifyProxy",
     "the element is a proxy for one that is not in memory and can be neither modified nor asked for its collections; "
     "resolve it first"},
    {"UniquenessConstraint", "another element of the same map or model already bears this key; choose another key"},
    {"CannotCastIncompatibleTypes",
     "a value of type \"{0}\" ({2}) was given where one of type \"{1}\" ({3}) is needed"},
    {"CannotCreateCrossModelAssociation",
     "the element lies in another model; only elements of one model can be linked or contained"},
    {"CannotCreateWithoutModel", "an element can't be created without a valid model; give one"},
    {"CannotAddIncompatibleTypes", "the collection takes elements of type \"{0}\", but was given one of type \"{1}\""},
    {"CannotAddIncompatibleObjectSubset", "the subset's filter rejects the element"},
    {"CannotAddNonExistentObject", "an empty or destroyed element can't be linked; give a live one"},
    {"CannotAddSecondObject", "the sequence is unique and holds this element already"},
    {"CannotSetReadOnlyProperty",
     "the property \"{0}\" is derived and can't be set; change the collection that feeds it"},
    {"InvalidValue", "the value has no valid form here"},
    {"NoSuchProperty", "there is no property \"{0}\" on the type \"{1}\" that can be used this way"},
    {"NoSuchType", "there is no type \"{0}\" in the metamodel registry"},
    {"CannotModifyDestroyedElement", "the element has been destroyed and can't be modified; let go of its handle"},
    {"CannotModifyFrozenModel", "the model is frozen; thaw it before changing it"},
    {"CannotFreezeOpenModel", "the model has an open transaction; end it before freezing the model"},
    {"CannotModifyOutsideTransaction", "a change was announced with no transaction open; begin one first"},
    {"CannotContainAncestor", "an element can't be contained by itself or by an element below it"},
    {"TransactionNotInnermost", "only the innermost open transaction can be committed; end the inner ones first"},
    {"TransactionEnded", "the transaction has ended already; begin another one"},
    {"TransactionsNestedTooDeeply", "at most {0} transactions can be open in one another; end some first"},
    {"NoModel", "the model's handle is empty; give a model"},
    {"NoListener", "an empty function can't be told of changes; give one that can be called"},
    {"ModelNameTaken", "another model bears the name \"{0}\"; choose another one"},
    {"CannotCreateAbstractClass", "the class \"{0}\" is abstract and has no elements of its own"},
}};

}  // namespace

std::string sentenceOf(groundwork::MessageRecord const& record) {
  for (Text const& text : TEXTS) {
    if (record.key == text.key) {
      return record.key + ": " + groundwork::formatMessage(text.pattern, record.arguments) + ".";
    }
  }
  return record.key + ": an error without a text of its own.";
}

}  // namespace plinth::detail
