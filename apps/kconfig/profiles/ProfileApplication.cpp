#include "profiles/ProfileApplication.hpp"

#include <string>

namespace kconfig {

namespace {

// What to say about an assignment, nothing if it went well.
std::string complaintAbout(Assignment result, ProfileLine const& line, Symbol const& symbol) {
  std::string const name = "'" + std::string(line.name) + "'";
  switch (result) {
    case Assignment::Override:
      return name + " has a value from an earlier line already, this one replaces it";
    case Assignment::Inconsistent:
      return name + " contradicts what another member of its choice is given";
    case Assignment::InvalidValue:
      return "'" + std::string(line.value) + "' is no value for " + name + ", which is " + keywordOf(symbol.type);
    case Assignment::InvalidString:
      return "the string for " + name + " does not stand in quotes";
    case Assignment::Untyped:
      return name + " has no type and can't have a value";
    case Assignment::Done:
      break;
  }
  return {};
}

}  // namespace

std::string assignLine(ProfileLine const& line, SymbolTable const& symbols, UserValues& users) {
  SymbolId const symbol = symbols.findDefined(line.name);
  if (symbol == noSymbol) {
    return "there is no symbol '" + std::string(line.name) + "'";
  }
  Assignment const result = line.set ? users.assign(symbol, line.value, line.line) : users.unset(symbol, line.line);
  return complaintAbout(result, line, symbols[symbol]);
}

void applyProfile(std::vector<ProfileLine> const& lines, std::string_view fileName, SymbolTable const& symbols,
                  UserValues& users, Diagnostics& diagnostics) {
  for (ProfileLine const& line : lines) {
    std::string complaint = assignLine(line, symbols, users);
    if (!complaint.empty()) {
      diagnostics.warning(fileName, line.line, std::move(complaint));
    }
  }
}

}  // namespace kconfig
