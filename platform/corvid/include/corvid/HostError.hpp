// The host's error channel. The host raises HostError; natives raise what they like, and a front end asks describeError
// for the identifier and the sentence to show to a script. Thread rule: plain values.
#pragma once

#include <exception>
#include <string>

#include "groundwork/Except.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid {

/// An error of the host itself, of the catalogue "Kestrel:class". The keys stand in ErrorKey.
class TESSEL_EXPORT HostError : public groundwork::except::Exception<groundwork::MessageRecord, std::exception> {
 public:
  /// `sentence` is a whole English sentence; what() heads it by the key.
  HostError(char const* key, std::string const& sentence);

  std::string const& key() const noexcept { return get_error_id().key; }
  /// The same error with the place in front of its sentence, for who knows where it belongs: "Property 'Key'".
  [[nodiscard]] HostError at(std::string const& place) const;
};

namespace ErrorKey {
/// The native behind a script object is gone, or there is none.
constexpr char const* INVALID_HANDLE = "InvalidHandle";
constexpr char const* NO_SUCH_CLASS = "NoSuchClass";
constexpr char const* NO_SUCH_MEMBER = "NoSuchMember";
constexpr char const* NO_SUCH_TYPE = "NoSuchType";
/// A package, class or member is described twice under one name.
constexpr char const* DUPLICATE_NAME = "DuplicateName";
/// A description does not hold together: a class that is its own superclass, a method without signature.
constexpr char const* BAD_DESCRIPTION = "BadDescription";
constexpr char const* READ_ONLY_PROPERTY = "ReadOnlyProperty";
/// Construction of an abstract class, or of a class that has no constructor.
constexpr char const* ABSTRACT_CLASS = "AbstractClass";
constexpr char const* NO_CONSTRUCTOR = "NoConstructor";
constexpr char const* WRONG_ARGUMENT_COUNT = "WrongArgumentCount";
constexpr char const* WRONG_TYPE = "WrongType";
/// A number that the wanted numeric class cannot hold exactly.
constexpr char const* VALUE_OUT_OF_RANGE = "ValueOutOfRange";
/// A value that was read from a property is to be changed there, and the property holds another one by now.
constexpr char const* STALE_VALUE = "StaleValue";
/// A method that is announced by name only.
constexpr char const* NOT_IMPLEMENTED = "NotImplemented";
/// The host is shut down while script objects exist.
constexpr char const* HOST_IN_USE = "HostInUse";
}  // namespace ErrorKey

/// What a script is told of an error.
struct ErrorDescription {
  /// "catalogue:key", such as "Kestrel:class:InvalidHandle".
  std::string identifier;
  /// The sentence of the error.
  std::string sentence;
};

/// Describes any exception: those with a message identifier under that, out of memory and all others under identifiers
/// of the catalogue "Kestrel:native".
[[nodiscard]] TESSEL_EXPORT ErrorDescription describeError(std::exception const& error);

/// What a sentence calls a value, in words of scripts: the string (its beginning, when it is long) or number itself
/// where there is one, "nil" for an empty plain array, "a list of 3 numbers", "an object of the class 'x.Y'".
[[nodiscard]] TESSEL_EXPORT std::string describeValue(kestrel_array const& value);
/// The same for one element of a plain array of numbers.
[[nodiscard]] TESSEL_EXPORT std::string describeNumber(kestrel_array const& numbers, std::size_t index);

}  // namespace corvid
