// Every name that is formed anywhere in generated code: which names tables may use, and how C++ identifiers, files,
// URIs and slots of the meta package follow from them. Free functions without state.
#pragma once

#include <string>

#include "modelgen/model.hpp"

namespace modelgen::naming {

// Names in tables. All are ASCII; a name never has two underscores in a row or one at an end.
bool isUpperCamel(std::string const& name);   // classes, datatypes, enumerations, properties
bool isLowerCamel(std::string const& name);   // operations
bool isUpperSnake(std::string const& name);   // literals
bool isLowerSnake(std::string const& name);   // models and include folders
bool isPackageName(std::string const& name);  // dotted; each component a lower-case word

bool isRelease(std::string const& text);  // releases and revisions: letters, digits, points, hyphens, underscores

// Words that C++ keeps to itself, alternative tokens included.
bool isReservedWord(std::string const& word);
// Macros of the standard headers that have the form of a literal, such as EOF.
bool isMacro(std::string const& name);
// The component of a package name whose namespace would hide one that generated code means, such as the "std" of
// "tessel.std"; empty where there is none.
std::string hidingComponent(std::string const& package);
// Type names that the class family itself declares inside every class, such as Builder.
bool isFamilyName(std::string const& name);
// Properties whose accessors would hide an operation that every element or handle has, such as MetaClass.
bool isElementOperation(std::string const& property);

// "ExprType" -> "exprType"; a reserved word takes a trailing underscore: "Operator" -> "operator_".
std::string lowerCamel(std::string const& name);

// Members of the class family for a property: "ExprType" -> "m_exprType", "getExprType" and so on.
std::string field(std::string const& property);
std::string start(std::string const& property);
std::string getter(std::string const& property);
std::string mutableGetter(std::string const& property);
std::string setter(std::string const& property);
std::string presenceTest(std::string const& property);
std::string childCreator(std::string const& property);
std::string adder(std::string const& property);
std::string clearer(std::string const& property);

// Namespaces and types. "tessel.internal.ext" -> "tessel::internal::ext".
std::string cppNamespace(std::string const& package);
std::string cppTypeName(Type const& type);
// The C++ type of one value or element: the handle class for a class.
std::string cppBaseTypeName(Class const& type);
// Files, as they are included. "tessel_config_datamodel/ext/ConfigEntry.hpp".
std::string typeHeader(Type const& type);
// Beside the header of a class that of its builder, and for each package one of what queries ask of its classes.
std::string builderHeader(Type const& type);
std::string queryHeader(Package const& package);
// The header that includes all of a package.
std::string packageHeader(Package const& package);
std::string metaPackageHeader(Model const& model);

// The meta package: its class, its functions for one package, and the entry points of the library.
std::string metaPackageClass(std::string const& model);
std::string instantiateFunction(std::string const& package);
std::string weaveFunction(std::string const& package);
std::string initializeEntryPoint(std::string const& model);
std::string terminateEntryPoint(std::string const& model);

// Slots of the meta package. Packages are named in full, the rest by the package's folder; that keeps them apart, as a
// package has no upper-case letter.
std::string packageSlot(std::string const& package);
std::string typeSlot(Package const& package, std::string const& type);
std::string memberSlot(Package const& package, std::string const& type, std::string const& member);
std::string handleType(HandleKind kind);

// "https://<host>/plinth/<model>/<release><revision>", and for a package below the root "/<dotted name>" behind it.
std::string packageUri(ModelRow const& model, std::string const& package);

// The value of a property of the metamodel: "single", "SINGLE", "attribute".
std::string shapeName(Shape shape);
std::string flagsName(Shape shape);
std::string kindName(Kind kind);

}  // namespace modelgen::naming
