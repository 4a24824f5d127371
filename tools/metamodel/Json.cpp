#include "Json.hpp"

#include <boost/optional.hpp>
#include <groundwork/Unicode.hpp>
#include <nlohmann/json.hpp>

namespace metamodel {
namespace {

using Json = nlohmann::ordered_json;

std::string qualifiedName(meta::TypedElementImpl const& element) { return groundwork::toUtf8(element.qualifiedName()); }

Json nameOrNull(meta::PropertyImpl const* property) {
  return property == nullptr ? Json() : Json(qualifiedName(*property));
}

Json json(meta::PackageImpl const& package) {
  auto const* const parent = package.parentPackage();
  // A root is told apart by its UUID, which its model's name gives; the others have none that says anything.
  return {{"name", metamodel::qualifiedName(package)},
          {"uri", groundwork::toUtf8(package.uri())},
          {"uuid", parent == nullptr ? Json(uuid(package)) : Json()},
          {"parent", parent == nullptr ? Json() : Json(metamodel::qualifiedName(*parent))}};
}

Json json(meta::PropertyImpl const& property) {
  auto const& defaultValue = property.defaultValue();
  return {{"name", qualifiedName(property)},
          {"uuid", uuid(property)},
          {"type", property.type()->narrowName()},
          {"flags", static_cast<int>(property.valueFlags())},
          {"composite", property.isComposite()},
          {"ordered", property.isOrdered()},
          {"unique", property.isUnique()},
          {"default", defaultValue ? Json(groundwork::toUtf8(*defaultValue)) : Json()},
          {"derived", property.isDerived()},
          {"transient", property.isTransient()},
          {"hidden", property.isCorvidHidden()},
          {"index", property.index() == 0 ? Json() : Json(property.index())},
          {"qualifiedBy", nameOrNull(property.qualifiedBy())},
          {"qualificationUnique", property.isQualificationUnique()},
          {"opposite", nameOrNull(property.opposite())}};
}

Json json(meta::OperationImpl const& operation) {
  auto const& traits = operation.traits();
  return {{"name", qualifiedName(operation)},
          {"uuid", uuid(operation)},
          {"type", operation.type()->narrowName()},
          {"abstract", traits.isAbstract},
          {"static", traits.isStatic},
          {"public", traits.isPublic},
          {"lower", traits.lower},
          {"upper", traits.upper}};
}

template <class T>
Json list(std::vector<T*> const& elements) {
  Json result = Json::array();
  for (T const* element : elements) result.push_back(json(*element));
  return result;
}

Json json(meta::ClassImpl const& metaClass) {
  auto const* const superclass = metaClass.superclass();
  return {{"name", metaClass.narrowName()},
          {"uuid", uuid(metaClass)},
          {"superclass", superclass == nullptr ? Json() : Json(superclass->narrowName())},
          {"abstract", metaClass.isAbstract()},
          {"hidden", metaClass.isCorvidHidden()},
          {"properties", list(metaClass.ownProperties())}};
}

Json json(meta::DataTypeImpl const& type) {
  return {{"name", type.narrowName()},
          {"uuid", uuid(type)},
          {"properties", list(type.ownProperties())},
          {"operations", list(type.ownOperations())}};
}

Json json(meta::EnumImpl const& type) {
  Json literals = Json::array();
  for (meta::EnumLiteralImpl const* literal : type.getLiterals()) {
    literals.push_back(
        {{"name", type.narrowName() + "." + name(*literal)}, {"value", literal->value()}, {"uuid", uuid(*literal)}});
  }
  return {{"name", type.narrowName()},
          {"uuid", uuid(type)},
          {"underlying", type.underlyingType()->narrowName()},
          {"literals", std::move(literals)}};
}

/// The types of class T of all packages, one package after the other.
template <class T>
Json types(Selection const& selection) {
  Json result = Json::array();
  for (meta::PackageImpl const* package : selection.packages) {
    for (T const* type : typesOf<T>(*package)) result.push_back(json(*type));
  }
  return result;
}

}  // namespace

void printJson(Selection const& selection, std::ostream& out) {
  Json document = {{"packages", list(selection.packages)},
                   {"classes", types<meta::ClassImpl>(selection)},
                   {"datatypes", types<meta::DataTypeImpl>(selection)},
                   {"enums", types<meta::EnumImpl>(selection)}};
  for (meta::ClassImpl const* core : selection.coreClasses) document["classes"].push_back(json(*core));
  out << document.dump(2) << '\n';
}

}  // namespace metamodel
