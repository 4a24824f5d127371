#include "reader/Token.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace kconfig {

namespace {

using Row = std::pair<std::string_view, Keyword>;

// In the order of the words: they are searched by halves.
constexpr std::array keywords{
    Row{"---help---", Keyword::Help},
    Row{"bool", Keyword::Boolean},
    Row{"boolean", Keyword::Boolean},
    Row{"choice", Keyword::Choice},
    Row{"comment", Keyword::Comment},
    Row{"config", Keyword::Config},
    Row{"def_bool", Keyword::DefaultBoolean},
    Row{"def_tristate", Keyword::DefaultTristate},
    Row{"default", Keyword::Default},
    Row{"depends", Keyword::Depends},
    Row{"endchoice", Keyword::EndChoice},
    Row{"endif", Keyword::EndIf},
    Row{"endmenu", Keyword::EndMenu},
    Row{"help", Keyword::Help},
    Row{"hex", Keyword::Hexadecimal},
    Row{"if", Keyword::If},
    Row{"imply", Keyword::Imply},
    Row{"int", Keyword::Integer},
    Row{"mainmenu", Keyword::MainMenu},
    Row{"menu", Keyword::Menu},
    Row{"menuconfig", Keyword::MenuConfig},
    Row{"option", Keyword::Option},
    Row{"optional", Keyword::Optional},
    Row{"prompt", Keyword::Prompt},
    Row{"range", Keyword::Range},
    Row{"select", Keyword::Select},
    Row{"source", Keyword::Source},
    Row{"string", Keyword::String},
    Row{"tristate", Keyword::Tristate},
    Row{"visible", Keyword::Visible},
};

}  // namespace

Keyword keywordFor(std::string_view word) {
  auto const row =
      std::lower_bound(keywords.begin(), keywords.end(), word,
                       [](Row const& candidate, std::string_view wanted) { return candidate.first < wanted; });
  return row != keywords.end() && row->first == word ? row->second : Keyword::None;
}

}  // namespace kconfig
