#include "Tree.hpp"

#include <algorithm>
#include <boost/optional.hpp>
#include <groundwork/Unicode.hpp>
#include <iomanip>

namespace metamodel {
namespace {

constexpr char const* TYPE_INDENT = "  ";
constexpr char const* MEMBER_INDENT = "    ";

class Printer {
 public:
  Printer(meta::PackageImpl const* home, std::ostream& out) : m_home(home), m_out(out) {}

  void print(meta::ClassImpl const& metaClass);
  void print(meta::DataTypeImpl const& type);
  void print(meta::EnumImpl const& type);

 private:
  void printProperties(meta::TypeImpl const& type);
  std::string remarks(meta::PropertyImpl const& property) const;

  meta::PackageImpl const* m_home;
  std::ostream& m_out;
};

std::string verb(meta::PropertyImpl const& property) {
  if (dynamic_cast<meta::ClassImpl const*>(property.type()) == nullptr) return "";
  if (property.isDerived()) return "shows ";
  return property.isComposite() ? "contains " : "refers to ";
}

/// What is not the rule for a property of its shape.
std::string Printer::remarks(meta::PropertyImpl const& property) const {
  std::string text;
  if (property.defaultValue()) text += "  = \"" + groundwork::toUtf8(*property.defaultValue()) + "\"";
  auto const remark = [&](bool applies, std::string const& word) {
    if (applies) text += "  " + word;
  };
  remark(property.isUnique() && property.valueFlags() == meta::SEQUENCE, "unique");
  remark(property.isDerived(), "derived");
  remark(property.isTransient(), "transient");
  remark(property.isCorvidHidden(), "hidden");
  if (auto const* const opposite = property.opposite()) {
    remark(true, "opposite " + nameFrom(m_home, *opposite->owningType()) + "." + name(*opposite));
  }
  return text;
}

void Printer::printProperties(meta::TypeImpl const& type) {
  std::size_t width = 0;
  for (auto const* property : type.ownProperties()) width = std::max(width, name(*property).size());
  for (auto const* property : type.ownProperties()) {
    std::string const index = property->index() == 0 ? "-" : std::to_string(property->index());
    m_out << MEMBER_INDENT << std::right << std::setw(2) << index << "  " << std::left
          << std::setw(static_cast<int>(width)) << name(*property) << "  " << verb(*property)
          << shapeText(*property, m_home) << remarks(*property) << '\n';
  }
}

void Printer::print(meta::ClassImpl const& metaClass) {
  m_out << TYPE_INDENT << (metaClass.isAbstract() ? "abstract class " : "class ") << name(metaClass);
  if (auto const* const superclass = metaClass.superclass()) m_out << " : " << nameFrom(m_home, *superclass);
  m_out << (metaClass.isCorvidHidden() ? "  hidden" : "") << '\n';
  printProperties(metaClass);
}

void Printer::print(meta::DataTypeImpl const& type) {
  m_out << TYPE_INDENT << "datatype " << name(type) << '\n';
  printProperties(type);
  for (auto const* operation : type.ownOperations()) {
    m_out << MEMBER_INDENT << "    " << name(*operation) << "()  " << nameFrom(m_home, *operation->type()) << '\n';
  }
}

void Printer::print(meta::EnumImpl const& type) {
  m_out << TYPE_INDENT << "enumeration " << name(type) << " : " << nameFrom(m_home, *type.underlyingType()) << '\n';
  for (auto const* literal : type.getLiterals()) {
    m_out << MEMBER_INDENT << std::right << std::setw(2) << literal->value() << "  " << name(*literal) << '\n';
  }
}

void printPackage(meta::PackageImpl const& package, std::ostream& out) {
  std::string const qualified = qualifiedName(package);
  out << (qualified.empty() ? "root package" : "package " + qualified) << "  " << groundwork::toUtf8(package.uri())
      << '\n';
  for (auto const& imported : package.getImportedPackageURIs()) {
    out << TYPE_INDENT << "imports " << groundwork::toUtf8(imported) << '\n';
  }
  Printer printer(&package, out);
  for (auto const* type : typesOf<meta::ClassImpl>(package)) printer.print(*type);
  for (auto const* type : typesOf<meta::DataTypeImpl>(package)) printer.print(*type);
  for (auto const* type : typesOf<meta::EnumImpl>(package)) printer.print(*type);
}

void printCore(Selection const& selection, std::ostream& out) {
  if (selection.coreClasses.empty()) return;
  out << "the foundation, in no package\n";
  Printer printer(nullptr, out);
  for (auto const* core : selection.coreClasses) printer.print(*core);
  for (auto const* primitive : selection.primitives) out << TYPE_INDENT << "primitive " << name(*primitive) << '\n';
}

}  // namespace

std::string shapeText(meta::PropertyImpl const& property, meta::PackageImpl const* home) {
  std::string const type = nameFrom(home, *property.type());
  switch (property.valueFlags()) {
    case meta::OPTIONAL:
      return type + "?";
    case meta::SINGLE:
      return type;
    case meta::SEQUENCE:
      return "sequence of " + type;
    case meta::SET:
      return "set of " + type;
    case meta::MAP:
      break;
  }
  auto const* const qualifier = property.qualifiedBy();
  return "map of " + type + (qualifier == nullptr ? "" : " by " + name(*qualifier));
}

void printTree(Selection const& selection, std::ostream& out) {
  for (auto const* package : selection.packages) printPackage(*package, out);
  printCore(selection, out);
}

}  // namespace metamodel
