#include <map>
#include <string>

#include "modelgen/Checks.hpp"
#include "modelgen/Primitive.hpp"
#include "modelgen/naming.hpp"

namespace modelgen {
namespace {

constexpr char const* releaseForm = "letters, digits, points, hyphens and underscores";
constexpr char const* snakeForm = "lower-case words and digits, joined by single underscores";

// Reports each name that stands a second time among its like.
class Uniqueness {
 public:
  Uniqueness(std::string scope, Diagnostics& diagnostics) : m_scope(std::move(scope)), m_diagnostics(diagnostics) {}

  // False where the name was there already.
  bool add(char const* what, Text const& name) {
    if (name.value.empty()) return true;
    auto const [first, added] = m_seen.emplace(name.value, name.at);
    if (added) return true;
    m_diagnostics.report(name.at, "duplicate " + std::string(what) + " '" + name.value + "' in " + m_scope,
                         "another name, as line " + std::to_string(first->second.line) + " has this one");
    return false;
  }

 private:
  std::string m_scope;
  Diagnostics& m_diagnostics;
  std::map<std::string, Position> m_seen;
};

class NameChecks {
 public:
  explicit NameChecks(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  void package(Package const& package) {
    Uniqueness types("the package", m_diagnostics);
    for (Class const& each : package.classes) {
      type(each.row->name);
      types.add("class", each.row->name);
      properties(each.row->properties, each.name);
    }
    for (DataType const& each : package.dataTypes) {
      type(each.row->name);
      types.add("datatype", each.row->name);
      properties(each.row->properties, each.name);
      operations(*each.row);
    }
    for (Enum const& each : package.enums) {
      type(each.row->name);
      types.add("enumeration", each.row->name);
      literals(*each.row);
    }
    nameOrder(package.row->classes, "class");
    nameOrder(package.row->dataTypes, "datatype");
    nameOrder(package.row->enums, "enumeration");
  }

 private:
  void upperCamel(Text const& name) {
    if (!naming::isUpperCamel(name.value)) {
      m_diagnostics.report(name.at, "'" + name.value + "' is no upper camel case name",
                           "an upper-case letter, then letters and digits");
    }
  }

  void type(Text const& name) {
    if (name.value.empty()) return;
    upperCamel(name);
    if (findPrimitive(name.value) != nullptr) {
      m_diagnostics.report(name.at, "'" + name.value + "' is the name of a primitive type", "another name");
    }
    if (naming::isFamilyName(name.value)) {
      m_diagnostics.report(name.at, "'" + name.value + "' is declared inside every class", "another name");
    }
  }

  void properties(std::vector<PropertyRow> const& rows, std::string const& owner) {
    Uniqueness names("'" + owner + "'", m_diagnostics);
    for (PropertyRow const& row : rows) {
      names.add("property", row.name);
      if (row.name.value.empty()) continue;
      upperCamel(row.name);
      if (naming::isElementOperation(row.name.value)) {
        m_diagnostics.report(row.name.at, "the accessors of '" + row.name.value + "' hide those of every element",
                             "another name");
      }
    }
  }

  void operations(DataTypeRow const& owner) {
    Uniqueness names("'" + owner.name.value + "'", m_diagnostics);
    for (OperationRow const& row : owner.operations) {
      names.add("operation", row.name);
      if (row.name.value.empty()) continue;
      if (!naming::isLowerCamel(row.name.value) || naming::isReservedWord(row.name.value)) {
        m_diagnostics.report(row.name.at, "'" + row.name.value + "' is no name for an operation",
                             "a lower-case letter, then letters and digits, and no reserved word");
      }
      for (PropertyRow const& property : owner.properties) {
        if (row.name.value != naming::getter(property.name.value) &&
            row.name.value != naming::setter(property.name.value)) {
          continue;
        }
        m_diagnostics.report(row.name.at, "'" + row.name.value + "' is an accessor of '" + property.name.value + "'",
                             "another name");
      }
    }
  }

  void literals(EnumRow const& owner) {
    Uniqueness names("'" + owner.name.value + "'", m_diagnostics);
    std::map<std::int32_t, std::string> values;
    for (LiteralRow const& row : owner.literals) {
      names.add("literal", row.name);
      if (!row.name.value.empty()) literal(row.name);
      auto const [first, added] = values.emplace(row.value.value, row.name.value);
      if (added) continue;
      m_diagnostics.report(row.value.at, "duplicate value " + std::to_string(row.value.value),
                           "another value, as '" + first->second + "' has this one");
    }
  }

  void literal(Text const& name) {
    if (!naming::isUpperSnake(name.value)) {
      m_diagnostics.report(name.at, "'" + name.value + "' is no name for a literal",
                           "upper-case words and digits, joined by single underscores");
    } else if (naming::isMacro(name.value)) {
      m_diagnostics.report(name.at, "'" + name.value + "' is a macro of the standard library", "another name");
    }
  }

  template <class Row>
  void nameOrder(std::vector<Row> const& rows, std::string const& what) {
    for (std::size_t i = 1; i < rows.size(); ++i) {
      Text const& name = rows[i].name;
      if (name.value.empty() || rows[i - 1].name.value <= name.value) continue;
      std::size_t place = 0;
      while (rows[place].name.value <= name.value) ++place;
      m_diagnostics.report(name.at, "the " + what + " '" + name.value + "' is out of name order",
                           "it before '" + rows[place].name.value + "'");
    }
  }

  Diagnostics& m_diagnostics;
};

void checkForm(Text const& name, bool (*isProper)(std::string const&), std::string const& what,
               std::string const& expected, Diagnostics& diagnostics) {
  if (name.value.empty() || isProper(name.value)) return;
  diagnostics.report(name.at, "'" + name.value + "' is no name for " + what, expected);
}

}  // namespace

void checkNames(Model const& model, Diagnostics& diagnostics) {
  NameChecks checks(diagnostics);
  for (Package const& each : model.packages) checks.package(each);
}

bool checkPackages(std::deque<ModelRow> const& models, Diagnostics& diagnostics) {
  bool distinct = true;
  Uniqueness modelNames("this run", diagnostics);
  Uniqueness packageNames("this run", diagnostics);
  for (ModelRow const& model : models) {
    distinct = modelNames.add("model", model.name) && distinct;
    checkForm(model.name, naming::isLowerSnake, "a model", snakeForm, diagnostics);
    checkForm(model.include, naming::isLowerSnake, "the folder of the headers", snakeForm, diagnostics);
    checkForm(model.release, naming::isRelease, "a release", releaseForm, diagnostics);
    checkForm(model.revision, naming::isRelease, "a revision", releaseForm, diagnostics);
    Uniqueness imports("the model", diagnostics);
    for (Text const& each : model.imports) imports.add("import", each);
    Uniqueness folders("the model", diagnostics);
    for (PackageRow const& package : model.packages) {
      distinct = packageNames.add("package", package.name) && distinct;
      folders.add("folder", package.folder);
      checkForm(package.name, naming::isPackageName, "a package",
                "lower-case words joined by points, none of them a reserved word", diagnostics);
      if (std::string const component = naming::hidingComponent(package.name.value); !component.empty()) {
        diagnostics.report(package.name.at,
                           "'" + package.name.value + "' hides the namespace '" + component + "' in its own code",
                           "another word for that component");
      }
      checkForm(package.folder, naming::isLowerSnake, "a folder", snakeForm, diagnostics);
    }
  }
  return distinct;
}

}  // namespace modelgen
