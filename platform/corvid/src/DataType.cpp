#include "DataType.hpp"

#include <array>
#include <string_view>

#include "HostState.hpp"
#include "corvid/HostError.hpp"

namespace corvid {
namespace {

struct NamedKind {
  std::string_view name;
  DataType::Kind kind;
};

constexpr std::array<NamedKind, 7> NAMED_KINDS = {{{"any", DataType::Kind::Any},
                                                   {"function", DataType::Kind::Function},
                                                   {"char", DataType::Kind::Char},
                                                   {"string", DataType::Kind::String},
                                                   {"struct", DataType::Kind::Struct},
                                                   {"cell", DataType::Kind::Cell},
                                                   {"CorvidFactoryString", DataType::Kind::FactoryString}}};

constexpr std::array<kestrel::ClassId, 11> NUMBERS = {
    kestrel::ClassId::Logical, kestrel::ClassId::Double, kestrel::ClassId::Single, kestrel::ClassId::Int8,
    kestrel::ClassId::UInt8,   kestrel::ClassId::Int16,  kestrel::ClassId::UInt16, kestrel::ClassId::Int32,
    kestrel::ClassId::UInt32,  kestrel::ClassId::Int64,  kestrel::ClassId::UInt64};

bool removeEnding(std::string_view& text, std::string_view ending) {
  if (text.size() < ending.size() || text.substr(text.size() - ending.size()) != ending) return false;
  text.remove_suffix(ending.size());
  return true;
}

void readBase(std::string_view base, DataType& type) {
  type.base = internal::makeInterned(base);
  for (NamedKind const& named : NAMED_KINDS) {
    if (base != named.name) continue;
    type.kind = named.kind;
    return;
  }
  for (kestrel::ClassId const id : NUMBERS) {
    if (type.base != kestrel::nameOf(id)) continue;
    type.kind = DataType::Kind::Number;
    type.id = id;
    return;
  }
  type.kind = DataType::Kind::Class;
}

}  // namespace

DataType DataType::read(Identifier name) {
  DataType type;
  std::string_view base = name.text();
  if (removeEnding(base, " scalar")) {
    type.shape = Shape::Scalar;
  } else if (removeEnding(base, " vector")) {
    type.shape = Shape::Vector;
  } else {
    removeEnding(base, " property");
  }
  readBase(base, type);
  bool const unknownString = type.kind == Kind::FactoryString && !hostState().factoryStringKnown;
  // What is no other base is the name of a class, which may be described later; only its form can be checked.
  if (base.empty() || base.find(' ') != std::string_view::npos || unknownString)
    throw HostError(ErrorKey::NO_SUCH_TYPE, "There is no data type '" + name.text() + "'.");
  return type;
}

DataType const& dataType(Identifier name) {
  auto& types = hostState().types;
  auto const found = types.find(name);
  return found != types.end() ? found->second : types.emplace(name, DataType::read(name)).first->second;
}

}  // namespace corvid
