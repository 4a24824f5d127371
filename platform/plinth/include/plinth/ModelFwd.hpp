// Forward declarations of the foundation's names.
#pragma once

namespace plinth {

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
