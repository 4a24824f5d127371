#include "modelgen/DataObject.hpp"

#include <cctype>

namespace modelgen {
namespace {

std::string presenceKey(std::string key) {
  key.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(key.front())));
  return "has" + key;
}

}  // namespace

void setList(Data& object, std::string const& key, std::vector<Data> items) {
  Data list(Data::type::list);
  for (std::size_t i = 0; i < items.size(); ++i) {
    items[i].set("first", i == 0);
    items[i].set("last", i + 1 == items.size());
    list.push_back(items[i]);
  }
  object.set(key, list);
  object.set(presenceKey(key), !items.empty());
}

void setLines(Data& object, std::string const& key, std::vector<std::string> const& lines) {
  Data list(Data::type::list);
  for (std::string const& line : lines) list.push_back(line);
  object.set(key, list);
  object.set(presenceKey(key), !lines.empty());
}

void setNumber(Data& object, std::string const& key, long long number) { object.set(key, std::to_string(number)); }

}  // namespace modelgen
