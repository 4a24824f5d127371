// Forward declarations of the foundation's names.
#pragma once

#include <cstdint>
#include <string>

namespace boost {
template <class T>
class optional;
template <typename Block, typename Allocator>
class dynamic_bitset;
}  // namespace boost

namespace plinth {

/// The form in which change bits and set masks are handed out.
using BitSet = boost::dynamic_bitset<std::uint64_t, std::allocator<std::uint64_t>>;

namespace internal {
class ElementCore;
class ModelState;
struct RecordAccess;
}  // namespace internal

class ElementImpl;
class Model;
class ModelImpl;
class ModelElement;
class ModelElementImpl;
class ModelElementBuilder;
class Transaction;
class Value;
struct ProxyId;
class Changes;
class Storage;
class RecordPool;
class AbstractOwnedCollection;
class ReferenceCollection;

namespace meta {
class Type;
class TypeImpl;
class Class;
class ClassImpl;
class Property;
class PropertyImpl;
class Operation;
class OperationImpl;
class Package;
class PackageImpl;
}  // namespace meta

}  // namespace plinth
