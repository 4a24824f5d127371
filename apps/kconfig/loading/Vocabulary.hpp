// The words by which the parts of a definition are told apart in the model: what a FollowsDef gives, what an EvalDef
// says, how keys of categories begin, which metadata there are. Writing and reading definitions agree through this
// file alone; mapping.md explains each word.
#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "language/MenuTree.hpp"

namespace kconfig {

// What an attribute or option of the model is among the properties of an entry.
template <class Text>
struct PropertyWord {
  PropertyKind kind;
  Text word;
};

namespace follows {
constexpr PropertyWord<std::u16string_view> words[] = {
    {PropertyKind::DependsOn, u"Enabled"}, {PropertyKind::VisibleIf, u"ContentsVisible"},
    {PropertyKind::Prompt, u"Name"},       {PropertyKind::Default, u"Value"},
    {PropertyKind::Range, u"Range"},       {PropertyKind::Environment, u"Imported"},
    {PropertyKind::Select, u"Select"},     {PropertyKind::Imply, u"Imply"}};
}  // namespace follows

namespace logic {
constexpr std::u16string_view name = u"Name";
constexpr std::u16string_view type = u"Type";
constexpr std::u16string_view entry = u"Entry";
constexpr std::u16string_view option = u"Option";

constexpr std::string_view menuConfig = "menuconfig";
constexpr std::string_view predefined = "predefined";
constexpr PropertyWord<std::string_view> options[] = {{PropertyKind::Optional, "optional"},
                                                      {PropertyKind::Modules, "modules"},
                                                      {PropertyKind::DefconfigList, "defconfig_list"},
                                                      {PropertyKind::AllNoConfigY, "allnoconfig_y"}};
constexpr std::string_view environment = "env=";  // with the name of the variable behind it
}  // namespace logic

namespace key {
constexpr std::string_view tree = "tree";
constexpr std::string_view menu = "menu:";
constexpr std::string_view comment = "comment:";
constexpr std::string_view conditional = "if:";
constexpr std::string_view choice = "choice:";     // with its name
constexpr std::string_view nameless = "choice:#";  // with the number of its entry
constexpr std::string_view entry = "entry:";       // a further entry of a symbol
constexpr std::string_view below = "below:";       // in the state: what lies below a symbol

// How the keys of categories of a kind begin.
constexpr std::pair<EntryKind, std::string_view> kinds[] = {{EntryKind::Menu, menu},
                                                            {EntryKind::Comment, comment},
                                                            {EntryKind::If, conditional},
                                                            {EntryKind::Choice, choice},
                                                            {EntryKind::Config, entry}};

constexpr std::u16string_view configuration = u"configuration";
constexpr std::u16string_view header = u"header";
constexpr std::u16string_view settable = u"settable";
}  // namespace key

// The word for a kind and the kind that a word is for; null where there is none.
template <class Words>
auto const* wordFor(Words const& words, PropertyKind kind) {
  auto const found =
      std::find_if(std::begin(words), std::end(words), [&](auto const& row) { return row.kind == kind; });
  return found != std::end(words) ? &found->word : nullptr;
}
template <class Words, class Text>
PropertyKind const* kindFor(Words const& words, Text const& word) {
  auto const found =
      std::find_if(std::begin(words), std::end(words), [&](auto const& row) { return row.word == word; });
  return found != std::end(words) ? &found->kind : nullptr;
}

namespace metadata {
constexpr std::u16string_view title = u"title";
constexpr std::u16string_view files = u"files";
constexpr std::u16string_view sourcedFrom = u"sourcedFrom";
constexpr std::u16string_view positions = u"positions";
constexpr std::u16string_view environment = u"environment:";
}  // namespace metadata

}  // namespace kconfig
