// How a front end drives classes and objects: construct, read, write, call and compare, each with the checks that a
// script relies on. Every operation makes its checks before the native is reached.
//
// Errors: what the native raises, and HostError for a missing or read-only member, an abstract class, a wrong number or
// type of arguments, and for an object whose native is gone.
// Thread rule: the host's thread.
#pragma once

#include "corvid/CorvidClass.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid {

/// The class of an array of objects or of enumeration members; null for any other array.
[[nodiscard]] TESSEL_EXPORT CorvidClass* classOf(kestrel_array const& array);

/// A new object of a class, in a 1 by 1 array. An input may be null here and in `invoke`: an optional argument is then
/// left out, any other is an empty double.
[[nodiscard]] TESSEL_EXPORT kestrel::OwnedArray construct(CorvidClass& hostClass, Inputs const& inputs);

/// `self` has one object.
TESSEL_EXPORT kestrel::OwnedArray getProperty(kestrel_array const& self, CorvidPropInfo const& property);
TESSEL_EXPORT void setProperty(kestrel_array const& self, CorvidPropInfo const& property, kestrel_array const& value);
/// The property of the object's class; raises NoSuchMember.
TESSEL_EXPORT CorvidPropInfo const& requireProperty(CorvidClass const& hostClass, Identifier name);

/// Calls a method; `inputs` begins with the object unless the method is static. The result is null when the method
/// gives none or when it is not wanted; what follows the first of several is put into `further`.
TESSEL_EXPORT kestrel::OwnedArray invoke(CorvidClass const& hostClass, Identifier method, Inputs const& inputs,
                                         bool wantsOutput = true, std::vector<kestrel::OwnedArray>* further = nullptr);
/// The method that a call with that many inputs reaches. Raises NoSuchMember, WrongArgumentCount.
TESSEL_EXPORT CorvidMethodInfo const& requireMethod(CorvidClass const& hostClass, Identifier name, std::size_t inputs);

/// Whether the objects' natives can be used; true for an array without objects.
[[nodiscard]] TESSEL_EXPORT bool isLive(kestrel_array const& objects);

/// Gives an array of objects their nearest common class; HETEROGENEOUS stays where there is none, or no object.
TESSEL_EXPORT void settleClass(kestrel_array& objects);

/// Methods by which a front end walks an object that is a collection, whatever its class: any class may have them.
namespace ContainerMethod {
/// The number of elements, a "uint64 scalar" or any other number.
constexpr char const* SIZE = "size";
/// The element at a position counted from 1, or under a key for a class with KEYS.
constexpr char const* AT = "at";
/// The keys of a map, in their order.
constexpr char const* KEYS = "keys";
/// All elements as one array. A walk of a class that has it and no KEYS goes over what was there when it began.
constexpr char const* VALUES = "values";
/// Whether an element is there. A walk of what was there when it began leaves out what isn't any more.
constexpr char const* CONTAINS = "contains";
}  // namespace ContainerMethod

/// The method that ends the use of an object before it is released, called at the end of the block that declared it.
constexpr char const* CLOSE_METHOD = "close";

}  // namespace corvid
