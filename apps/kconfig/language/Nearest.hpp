// Finds which of several names somebody may have meant.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kconfig {

// How many letters have to be put in, taken out or changed to get from one name to the other.
inline std::size_t distance(std::string_view left, std::string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  for (std::size_t column = 0; column < row.size(); ++column) {
    row[column] = column;
  }
  for (std::size_t line = 0; line < left.size(); ++line) {
    std::size_t diagonal = std::exchange(row[0], line + 1);
    for (std::size_t column = 0; column < right.size(); ++column) {
      std::size_t const changed = diagonal + (left[line] == right[column] ? 0 : 1);
      diagonal = row[column + 1];
      row[column + 1] = std::min({changed, diagonal + 1, row[column] + 1});
    }
  }
  return row.back();
}

// Looks at one name after the other and keeps the nearest, as long as less than half of it is another.
class Nearest {
 public:
  explicit Nearest(std::string_view wanted) : m_wanted(wanted), m_distance(wanted.size() / 2 + 1) {}

  void consider(std::string_view name) {
    std::size_t const difference = std::max(name.size(), m_wanted.size()) - std::min(name.size(), m_wanted.size());
    std::size_t const found = difference < m_distance ? distance(m_wanted, name) : m_distance;
    if (found < m_distance) {
      m_distance = found;
      m_name = name;
    }
  }
  // "; did you mean 'NAME'?", empty where nothing comes near.
  std::string question() const {
    return m_name.empty() ? std::string() : "; did you mean '" + std::string(m_name) + "'?";
  }

 private:
  std::string_view m_wanted;
  std::string_view m_name;
  std::size_t m_distance;
};

}  // namespace kconfig
