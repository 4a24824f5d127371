// Everything that the host knows, in one place. Lives until the process ends, so that exit handlers may still use it.
// Thread rule: the host's thread.
#pragma once

#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "DataType.hpp"
#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidPackage.hpp"
#include "corvid/CorvidTypeRepository.hpp"

namespace corvid {

class ScriptObject;

struct IdentifierPairHash {
  std::size_t operator()(std::pair<Identifier, Identifier> const& pair) const noexcept {
    std::hash<Identifier> const hash;
    return hash(pair.first) * 31 + hash(pair.second);
  }
};

/// The packages own their classes; the maps by name only find them.
struct HostState {
  std::vector<std::unique_ptr<CorvidPackage>> packages;
  std::unordered_map<Identifier, CorvidPackage*> packagesByName;
  std::unordered_map<Identifier, CorvidClass*> classesByName;
  std::unordered_map<std::pair<Identifier, Identifier>, std::unique_ptr<CorvidTypeConverter>, IdentifierPairHash>
      conversions;
  /// Types that were asked for, read once.
  std::unordered_map<Identifier, DataType> types;
  bool factoryStringKnown = false;
};

HostState& hostState();

/// The script objects by native; not part of what shutDown forgets, since it must be empty by then.
std::unordered_map<void*, ScriptObject*>& bindings();

}  // namespace corvid
