#include "modelgen/naming.hpp"

#include <algorithm>
#include <cctype>
#include <set>

#include "modelgen/Primitive.hpp"

namespace modelgen::naming {
namespace {

constexpr char const* schemaHost = "https://schema.tessel.invalid";

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isAlphanumeric(char c) { return isUpper(c) || isLower(c) || isDigit(c); }

bool allAlphanumeric(std::string const& name) { return std::all_of(name.begin(), name.end(), isAlphanumeric); }

// Words of one case, joined by single underscores; the first begins with a letter.
bool isSnake(std::string const& name, bool (*isLetter)(char)) {
  if (name.empty() || !isLetter(name.front()) || name.back() == '_') return false;
  if (name.find("__") != std::string::npos) return false;
  return std::all_of(name.begin(), name.end(), [isLetter](char c) { return isLetter(c) || isDigit(c) || c == '_'; });
}

std::string replaceAll(std::string const& text, char from, std::string const& to) {
  std::string result;
  for (char const c : text) {
    if (c == from) {
      result += to;
    } else {
      result += c;
    }
  }
  return result;
}

std::vector<std::string> componentsOf(std::string const& package) {
  std::vector<std::string> result;
  std::size_t start = 0;
  for (std::size_t point = package.find('.'); point != std::string::npos; point = package.find('.', start)) {
    result.push_back(package.substr(start, point - start));
    start = point + 1;
  }
  result.push_back(package.substr(start));
  return result;
}

std::string withLowerFirst(std::string name) {
  if (!name.empty()) name.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(name.front())));
  return name;
}

std::string withUpperFirst(std::string name) {
  if (!name.empty()) name.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(name.front())));
  return name;
}

}  // namespace

bool isUpperCamel(std::string const& name) { return !name.empty() && isUpper(name.front()) && allAlphanumeric(name); }

bool isLowerCamel(std::string const& name) { return !name.empty() && isLower(name.front()) && allAlphanumeric(name); }

bool isUpperSnake(std::string const& name) { return isSnake(name, isUpper); }

bool isLowerSnake(std::string const& name) { return isSnake(name, isLower); }

bool isPackageName(std::string const& name) {
  std::vector<std::string> const components = componentsOf(name);
  return std::all_of(components.begin(), components.end(), [](std::string const& each) {
    return each.find('_') == std::string::npos && isLowerSnake(each) && !isReservedWord(each);
  });
}

bool isRelease(std::string const& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return isAlphanumeric(c) || c == '.' || c == '-' || c == '_'; });
}

std::string hidingComponent(std::string const& package) {
  static std::set<std::string> const namespaces{"boost",     "bridge", "corvid", "frame",
                                                "metamodel", "plinth", "query",  "std"};
  std::vector<std::string> const components = componentsOf(package);
  for (std::size_t i = 0; i < components.size(); ++i) {
    // The outermost "tessel" is the one that generated code means.
    if (namespaces.count(components[i]) != 0 || (i != 0 && components[i] == "tessel")) return components[i];
  }
  return "";
}

// Also of the standards after C++17, which a user of the generated headers may follow, and the two words of modules.
bool isReservedWord(std::string const& word) {
  static std::set<std::string> const words{
      "alignas",       "alignof",     "and",         "and_eq",    "asm",       "auto",         "bitand",
      "bitor",         "bool",        "break",       "case",      "catch",     "char",         "char16_t",
      "char32_t",      "char8_t",     "class",       "co_await",  "co_return", "co_yield",     "compl",
      "concept",       "const",       "const_cast",  "consteval", "constexpr", "constinit",    "continue",
      "decltype",      "default",     "delete",      "do",        "double",    "else",         "enum",
      "explicit",      "export",      "extern",      "false",     "float",     "for",          "friend",
      "goto",          "if",          "import",      "inline",    "int",       "long",         "module",
      "mutable",       "namespace",   "new",         "noexcept",  "not",       "not_eq",       "nullptr",
      "operator",      "or",          "or_eq",       "private",   "protected", "public",       "register",
      "requires",      "return",      "short",       "signed",    "sizeof",    "static",       "struct",
      "switch",        "template",    "this",        "throw",     "true",      "try",          "typedef",
      "typeid",        "typename",    "union",       "unsigned",  "using",     "virtual",      "void",
      "volatile",      "wchar_t",     "while",       "xor",       "xor_eq",    "dynamic_cast", "reinterpret_cast",
      "static_assert", "static_cast", "thread_local"};
  return words.count(word) != 0;
}

bool isMacro(std::string const& name) {
  static std::set<std::string> const macros{
      "BUFSIZ",    "CHAR_BIT", "CHAR_MAX", "CHAR_MIN", "CLOCKS_PER_SEC", "DBL_MAX",      "DBL_MIN",      "DOMAIN",
      "EDOM",      "EILSEQ",   "EOF",      "ERANGE",   "EXIT_FAILURE",   "EXIT_SUCCESS", "FILENAME_MAX", "FLT_MAX",
      "FOPEN_MAX", "HUGE_VAL", "INFINITY", "INT_MAX",  "INT_MIN",        "LC_ALL",       "LC_NUMERIC",   "LONG_MAX",
      "LONG_MIN",  "NAN",      "NDEBUG",   "NULL",     "OVERFLOW",       "RAND_MAX",     "SEEK_CUR",     "SEEK_END",
      "SEEK_SET",  "SHRT_MAX", "SIGABRT",  "SIGINT",   "SIGTERM",        "SIZE_MAX",     "TMP_MAX",      "UNDERFLOW",
      "EACCES",    "EAGAIN",   "EBADF",    "EBUSY",    "EEXIST",         "EINTR",        "EINVAL",       "EIO",
      "EMFILE",    "ENOENT",   "ENOMEM",   "ENOSPC",   "EPERM",          "EPIPE"};
  return macros.count(name) != 0;
}

bool isFamilyName(std::string const& name) {
  static std::set<std::string> const names{"Builder", "BuilderBase",    "BuilderImpl", "BuilderWrapper",
                                           "Changes", "Constrainables", "Impl",        "Storage"};
  return names.count(name) != 0;
}

bool isElementOperation(std::string const& property) {
  static std::set<std::string> const names{"AddRef",
                                           "Container",
                                           "Create",
                                           "ElementImpl",
                                           "Impl",
                                           "IsEmpty",
                                           "Mask",
                                           "MatchMode",
                                           "MetaClass",
                                           "Model",
                                           "OrAdd",
                                           "PersistentProxyId",
                                           "PropertyByIndex",
                                           "PropertyValue",
                                           "ProxyId",
                                           "QueriedClass",
                                           "Query",
                                           "RemoveRef",
                                           "This",
                                           "Uuid"};
  return names.count(property) != 0;
}

std::string lowerCamel(std::string const& name) {
  std::string const result = withLowerFirst(name);
  return isReservedWord(result) ? result + '_' : result;
}

std::string field(std::string const& property) { return "m_" + withLowerFirst(property); }
std::string start(std::string const& property) { return "s_" + withLowerFirst(property); }
std::string getter(std::string const& property) { return "get" + property; }
std::string mutableGetter(std::string const& property) { return "get" + property + "Mutable"; }
std::string setter(std::string const& property) { return "set" + property; }
std::string presenceTest(std::string const& property) { return "has" + property; }
std::string childCreator(std::string const& property) { return "createInto" + property; }
std::string adder(std::string const& property) { return "add" + property; }
std::string clearer(std::string const& property) { return "clear" + property; }

std::string cppNamespace(std::string const& package) { return replaceAll(package, '.', "::"); }

std::string cppTypeName(Type const& type) {
  if (Primitive const* const primitive = asPrimitive(&type)) return primitive->cppType;
  return cppNamespace(type.package->name) + "::" + type.name;
}

std::string cppBaseTypeName(Class const& type) {
  return type.base == nullptr ? "plinth::ModelElement" : cppTypeName(*type.base);
}

std::string typeHeader(Type const& type) {
  return type.package->model->include + "/" + type.package->folder + "/" + type.name + ".hpp";
}

std::string builderHeader(Type const& type) {
  return type.package->model->include + "/" + type.package->folder + "/" + type.name + "Builder.hpp";
}

std::string queryHeader(Package const& package) {
  return package.model->include + "/" + package.folder + "/Queries.hpp";
}

std::string packageHeader(Package const& package) { return package.model->include + "/" + package.folder + ".hpp"; }

std::string metaPackageHeader(Model const& model) {
  return model.include + "/meta/" + metaPackageClass(model.name) + ".hpp";
}

std::string metaPackageClass(std::string const& model) { return "MetaPackage" + withUpperFirst(model); }
std::string instantiateFunction(std::string const& package) { return "instantiate_" + replaceAll(package, '.', "_"); }
std::string weaveFunction(std::string const& package) { return "weave_" + replaceAll(package, '.', "_"); }
std::string initializeEntryPoint(std::string const& model) { return "MLInitialize_" + model; }
std::string terminateEntryPoint(std::string const& model) { return "MLTerminate_" + model; }

std::string packageSlot(std::string const& package) {
  return package.empty() ? "rootPackage" : replaceAll(package, '.', "_");
}

std::string typeSlot(Package const& package, std::string const& type) { return package.folder + "_" + type; }

std::string memberSlot(Package const& package, std::string const& type, std::string const& member) {
  return typeSlot(package, type) + "_" + member;
}

std::string handleType(HandleKind kind) {
  switch (kind) {
    case HandleKind::package:
      return "Package";
    case HandleKind::classType:
      return "Class";
    case HandleKind::dataType:
      return "DataType";
    case HandleKind::enumeration:
      return "Enum";
    case HandleKind::literal:
      return "EnumLiteral";
    case HandleKind::property:
      return "Property";
    case HandleKind::operation:
      return "Operation";
    case HandleKind::primitive:
      break;
  }
  return "PrimitiveType";
}

std::string packageUri(ModelRow const& model, std::string const& package) {
  std::string const root =
      schemaHost + ("/plinth/" + model.name.value + "/" + model.release.value + model.revision.value);
  return package.empty() ? root : root + "/" + package;
}

std::string shapeName(Shape shape) {
  switch (shape) {
    case Shape::optional:
      return "optional";
    case Shape::single:
      return "single";
    case Shape::sequence:
      return "sequence";
    case Shape::set:
      return "set";
    case Shape::map:
      break;
  }
  return "map";
}

std::string flagsName(Shape shape) {
  std::string result = shapeName(shape);
  for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return result;
}

std::string kindName(Kind kind) {
  switch (kind) {
    case Kind::attribute:
      return "attribute";
    case Kind::reference:
      return "reference";
    case Kind::containment:
      break;
  }
  return "containment";
}

}  // namespace modelgen::naming
