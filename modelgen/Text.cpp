#include "modelgen/Text.hpp"

#include <algorithm>
#include <boost/locale/utf.hpp>
#include <cctype>
#include <cstdint>
#include <set>
#include <sstream>

namespace modelgen {
namespace {

namespace utf = boost::locale::utf;

std::string digits(std::uint32_t number, unsigned base, std::size_t count) {
  std::string result(count, '0');
  for (std::size_t i = count; i-- > 0; number /= base) result[i] = "0123456789abcdef"[number % base];
  return result;
}

std::string escaped(std::uint32_t character) {
  if (character == '\n') return "\\n";
  if (character == '\t') return "\\t";
  if (character == '"' || character == '\\') return {'\\', static_cast<char>(character)};
  if (character >= 0x20 && character < 0x7f) return {static_cast<char>(character)};
  // Universal character names may not stand for control characters; octal escapes may.
  if (character < 0xa0) return "\\" + digits(character, 8, 3);
  return character > 0xffff ? "\\U" + digits(character, 16, 8) : "\\u" + digits(character, 16, 4);
}

std::string const opening = "namespace ";

// "N::" for a line "namespace N {", otherwise nothing.
std::string openedNamespace(std::string const& line) {
  bool const opens = line.size() > opening.size() + 2 && line.compare(0, opening.size(), opening) == 0 &&
                     line.compare(line.size() - 2, 2, " {") == 0;
  return opens ? line.substr(opening.size(), line.size() - opening.size() - 2) + "::" : "";
}

std::string closingLine(std::string const& qualifier) {
  return "}  // namespace " + qualifier.substr(0, qualifier.size() - 2);
}

// Where `mayGo` holds of what follows.
template <class MayGo>
std::string withoutQualifier(std::string line, std::string const& qualifier, MayGo const& mayGo) {
  for (std::size_t at = line.find(qualifier); at != std::string::npos; at = line.find(qualifier, at)) {
    char const before = at == 0 ? ' ' : line[at - 1];
    bool const isWhole = before != ':' && before != '_' && std::isalnum(static_cast<unsigned char>(before)) == 0;
    if (isWhole && mayGo(line.substr(at + qualifier.size()))) {
      line.erase(at, qualifier.size());
    } else {
      at += qualifier.size();
    }
  }
  return line;
}

// "a::b::c::" -> "a::b::"; empty where less than two components would be left: what stands so high has other names too.
std::string enclosing(std::string const& qualifier) {
  std::size_t const end = qualifier.rfind("::", qualifier.size() - 3);
  if (end == std::string::npos || qualifier.find("::") == end) return "";
  return qualifier.substr(0, end + 2);
}

// Whether `rest` goes on with a namespace that nothing inside `own` hides.
bool isVisibleNamespace(std::string const& rest, std::string const& own) {
  std::size_t const end = rest.find("::");
  if (end == std::string::npos || end == 0) return false;
  std::string const name = rest.substr(0, end);
  auto const isLower = [](unsigned char c) { return std::islower(c) != 0 || std::isdigit(c) != 0 || c == '_'; };
  bool const isHidden = ("::" + own).find("::" + name + "::") != std::string::npos || name == "frame" ||
                        name == "meta" || name == "bridge";
  return std::all_of(name.begin(), name.end(), isLower) && !isHidden;
}

}  // namespace

std::string utf16Literal(std::string const& utf8) {
  std::string result = "u\"";
  for (auto at = utf8.begin(); at != utf8.end();) {
    result += escaped(utf::utf_traits<char>::decode_valid(at));
  }
  return result + '"';
}

std::size_t firstBadCharacter(std::string const& text) {
  for (auto at = text.begin(); at != text.end();) {
    auto const start = at;
    utf::code_point const character = utf::utf_traits<char>::decode(at, text.end());
    bool const isControl = character < 0x20 && character != '\t' && character != '\n' && character != '\r';
    if (isControl || !utf::is_valid_codepoint(character)) return static_cast<std::size_t>(start - text.begin());
  }
  return text.size();
}

std::vector<std::string> wrap(std::string const& text, std::size_t width) {
  std::vector<std::string> lines;
  bool paragraphOpen = false;
  std::istringstream source(text);
  for (std::string line; std::getline(source, line);) {
    std::istringstream words(line);
    std::string word;
    if (!(words >> word)) {
      paragraphOpen = false;
      continue;
    }
    if (!paragraphOpen) lines.insert(lines.end(), lines.empty() ? 1 : 2, std::string());
    paragraphOpen = true;
    do {
      std::string& last = lines.back();
      if (last.empty()) {
        last = word;
      } else if (last.size() + 1 + word.size() <= width) {
        last += ' ' + word;
      } else {
        lines.push_back(word);
      }
    } while (words >> word);
  }
  return lines;
}

std::string sortRuns(std::string const& source) {
  std::string result;
  std::set<std::string> run;  // the lines to be sorted since the last line of another kind
  auto const flush = [&] {
    for (std::string const& each : run) result += each + '\n';
    run.clear();
  };
  std::istringstream lines(source);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("#include <", 0) == 0 || line.rfind("template TESSEL_EXPORT ", 0) == 0) {
      run.insert(line);
      continue;
    }
    flush();
    result += line + '\n';
  }
  flush();
  return result;
}

std::string dropNeedlessBlankLines(std::string const& source) {
  std::string result;
  std::istringstream lines(source);
  bool isNeedless = true;  // what a blank line here would be
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() || !isNeedless) result += line + '\n';
    bool const opensSection = line == " public:" || line == " protected:" || line == " private:";
    isNeedless = line.empty() || opensSection;
  }
  if (result.size() > 1 && result.compare(result.size() - 2, 2, "\n\n") == 0) result.pop_back();
  return result;
}

std::string shortenOwnNames(std::string const& source) {
  std::string result;
  std::string own;  // the open namespace with "::" behind it
  std::istringstream lines(source);
  for (std::string line; std::getline(lines, line);) {
    if (own.empty()) {
      own = openedNamespace(line);
    } else if (line == closingLine(own)) {
      own.clear();
    } else {
      line = withoutQualifier(line, own, [](std::string const&) { return true; });
      std::string const above = enclosing(own);
      auto const isSeen = [&own](std::string const& rest) { return isVisibleNamespace(rest, own); };
      if (!above.empty()) line = withoutQualifier(line, above, isSeen);
    }
    result += line + '\n';
  }
  return result;
}

}  // namespace modelgen
