// Every name that is formed anywhere in generated code: which names tables may use, and how C++ identifiers, files,
// URIs and slots of the meta package follow from them. Free functions without state.
#pragma once

#include <string>

#include "modelgen/model.hpp"

namespace modelgen::naming {

// Names in tables. All are ASCII; a name never has two underscores in a row or one at an end.
bool isUpperCamel(const std::string& name);   // classes, datatypes, enumerations, properties
bool isLowerCamel(const std::string& name);   // operations
bool isUpperSnake(const std::string& name);   // literals
bool isLowerSnake(const std::string& name);   // models and include folders
bool isPackageName(const std::string& name);  // dotted; each component a lower-case word

bool isRelease(const std::string& text);  // releases and revisions: letters, digits, points, hyphens, underscores

// Words that C++ keeps to itself, alternative tokens included.
bool isReservedWord(const std::string& word);
// Macros of the standard headers that have the form of a literal, such as EOF.
bool isMacro(const std::string& name);
// The component of a package name whose namespace would hide one that generated code means, such as the "std" of
// "tessel.std"; empty where there is none.
std::string hidingComponent(const std::string& package);
// Type names that the class family itself declares inside every class, such as Builder.
bool isFamilyName(const std::string& name);
// Properties whose accessors would hide an operation that every element or handle has, such as MetaClass.
bool isElementOperation(const std::string& property);

// "ExprType" -> "exprType"; a reserved word takes a trailing underscore: "Operator" -> "operator_".
std::string lowerCamel(const std::string& name);

// Members of the class family for a property: "ExprType" -> "m_exprType", "getExprType" and so on.
std::string field(const std::string& property);
std::string getter(const std::string& property);
std::string mutableGetter(const std::string& property);
std::string setter(const std::string& property);
std::string basicSetter(const std::string& property);
std::string presenceTest(const std::string& property);
std::string childCreator(const std::string& property);
std::string builderSetter(const std::string& property);
std::string adder(const std::string& property);
std::string builderAdder(const std::string& property);
std::string builderClearer(const std::string& property);

// Namespaces and types. "tessel.internal.ext" -> "tessel::internal::ext".
std::string cppNamespace(const std::string& package);
std::string cppTypeName(const Type& type);
// The C++ type of one value or element: the handle class for a class.
std::string cppBaseTypeName(const Class& type);
// The C++ type of a property's field in the implementation class, without its name.
std::string fieldType(const Property& property);
// The C++ types of the property's field in the implementation class, of its slot in the change storage and of its field
// in the builder, as the scheme keeps them.
std::string implFieldType(const Property& property);
std::string oldFieldType(const Property& property);
std::string builderFieldType(const Property& property);
// How a value of the property is passed and returned: by value where it is a number, a truth value or a literal.
std::string parameterType(const Property& property);
// The function of the scheme that sets a property of one element.
std::string elementSetter(const Property& property);
// The object of the scheme that holds the behaviour of the property: its kind.
std::string rowKind(const Property& property);
// What setter and single getter of the property pass: the value, or an optional of it.
std::string valueType(const Property& property);

// Files, as they are included. "tessel_config_datamodel/ext/ConfigEntry.hpp".
std::string typeHeader(const Type& type);
std::string metaPackageHeader(const Model& model);

// The meta package: its class, its functions for one package, and the entry points of the library.
std::string metaPackageClass(const std::string& model);
std::string instantiateFunction(const std::string& package);
std::string weaveFunction(const std::string& package);
std::string initializeEntryPoint(const std::string& model);
std::string terminateEntryPoint(const std::string& model);

// Slots of the meta package. Packages are named in full, the rest by the package's folder; that keeps them apart, as a
// package has no upper-case letter.
std::string packageSlot(const std::string& package);
std::string typeSlot(const Package& package, const std::string& type);
std::string memberSlot(const Package& package, const std::string& type, const std::string& member);
std::string handleType(HandleKind kind);

// "https://<host>/plinth/<model>/<release><revision>", and for a package below the root "/<dotted name>" behind it.
std::string packageUri(const ModelRow& model, const std::string& package);

// The value of a property of the metamodel: "single", "attribute", "optionalAttribute".
std::string shapeName(Shape shape);
std::string kindName(Kind kind);
std::string schemeName(Scheme scheme);

}  // namespace modelgen::naming
