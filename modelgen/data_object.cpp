#include "modelgen/data_object.hpp"

#include <cctype>

namespace modelgen {
namespace {

std::string presenceKey(std::string key) {
  key.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(key.front())));
  return "has" + key;
}

}  // namespace

void setList(Data& object, const std::string& key, std::vector<Data> items) {
  Data list(Data::type::list);
  for (std::size_t i = 0; i < items.size(); ++i) {
    items[i].set("first", i == 0);
    items[i].set("last", i + 1 == items.size());
    list.push_back(items[i]);
  }
  object.set(key, list);
  object.set(presenceKey(key), !items.empty());
}

void setLines(Data& object, const std::string& key, const std::vector<std::string>& lines) {
  Data list(Data::type::list);
  for (const std::string& line : lines) list.push_back(line);
  object.set(key, list);
  object.set(presenceKey(key), !lines.empty());
}

void setNumber(Data& object, const std::string& key, long long number) { object.set(key, std::to_string(number)); }

}  // namespace modelgen
