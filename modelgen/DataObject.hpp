// Building blocks of template data. Free functions without state.
#pragma once

#include <string>
#include <vector>

#include "modelgen/TemplateSet.hpp"

namespace modelgen {

// Sets `key` to the list, and the flag "has<Key>" beside it; gives each object of the list the flags first and last.
void setList(Data& object, std::string const& key, std::vector<Data> items);

// The same for a list of plain texts, which a template reads as {{.}}.
void setLines(Data& object, std::string const& key, std::vector<std::string> const& lines);

void setNumber(Data& object, std::string const& key, long long number);

// Maps a sequence to a list of objects.
template <class Range, class Make>
std::vector<Data> objectsOf(Range const& range, Make const& make) {
  std::vector<Data> result;
  for (auto const& each : range) result.push_back(make(each));
  return result;
}

}  // namespace modelgen
