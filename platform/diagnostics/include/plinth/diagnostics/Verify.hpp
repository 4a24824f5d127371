// The integrity check of a model: what must hold of any model at any time, looked at from the outside.
// Ownership: findings are plain texts. Thread rule: the model's thread; models that it refers to must not change
// meanwhile.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "plinth/Model.hpp"

namespace plinth {

/// One breach of a rule.
struct TESSEL_EXPORT Finding {
  std::string rule;      ///< one of the names told at `verify`
  std::string path;      ///< of the element, see ElementPath.hpp; empty for the model as a whole
  std::string property;  ///< empty where the rule is not about one
  std::string expected;
  std::string found;

  /// All of it in one line.
  std::string text() const;
};

TESSEL_EXPORT std::ostream& operator<<(std::ostream& stream, Finding const& finding);

/// Checks the model; a sound one gives no finding. The rules:
/// - "directory": an element is live, announced and real, is found by its UUID, and stands in the list of its class;
/// - "containment": what a containment property holds names this element and property as where it lies, and what
///   names them is held there;
/// - "containment cycle": no element contains itself;
/// - "opposite": both ends of an opposite link list each other, also across models; an end that is a proxy need not be
///   listed by what it names, but counts as it where the other end lists an element;
/// - "proxy": a proxy lies in no container and holds no elements;
/// - "key": an element stands in a map under the key that it bears;
/// - "uniqueness": a unique sequence holds an element once, proxies not counted;
/// - "class": a target is of the property's class;
/// - "target": a live target is in its model's directory, and a containment, or an opposite within the model, holds no
///   dead one;
/// - "reference count": an element is counted at least as often as the model and its properties hold it;
/// - "undo": outside a transaction nothing is kept for an undo.
/// A dead target of a plain reference is sound: a getter deals with it. Resolves no proxy and changes nothing. Not to
/// be called by a listener, whose transaction still has its undo. Linear in the model, without recursion.
[[nodiscard]] TESSEL_EXPORT std::vector<Finding> verify(Model const& model);

/// Checks all models that have a name, which are those that links may lead to; paths begin with the name and a colon.
/// Thread rule: that of all these models.
[[nodiscard]] TESSEL_EXPORT std::vector<Finding> verifyNamedModels();

}  // namespace plinth
