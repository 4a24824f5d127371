// The words by which the parts of a definition are told apart in the model: what a FollowsDef gives, what an EvalDef
// says, how keys of categories begin, which metadata there are. Writing and reading definitions agree through this
// file alone; mapping.md explains each word.
#pragma once

#include <string_view>

namespace kconfig {

namespace follows {
constexpr std::u16string_view enabled = u"Enabled";
constexpr std::u16string_view name = u"Name";
constexpr std::u16string_view contentsVisible = u"ContentsVisible";
constexpr std::u16string_view value = u"Value";
constexpr std::u16string_view imported = u"Imported";
constexpr std::u16string_view range = u"Range";
constexpr std::u16string_view select = u"Select";
constexpr std::u16string_view imply = u"Imply";
}  // namespace follows

namespace logic {
constexpr std::u16string_view name = u"Name";
constexpr std::u16string_view type = u"Type";
constexpr std::u16string_view entry = u"Entry";
constexpr std::u16string_view option = u"Option";

constexpr std::string_view menuConfig = "menuconfig";
constexpr std::string_view optional = "optional";
constexpr std::string_view predefined = "predefined";
constexpr std::string_view modules = "modules";
constexpr std::string_view defconfigList = "defconfig_list";
constexpr std::string_view allNoConfigY = "allnoconfig_y";
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

constexpr std::u16string_view configuration = u"configuration";
constexpr std::u16string_view header = u"header";
constexpr std::u16string_view settable = u"settable";
}  // namespace key

namespace metadata {
constexpr std::u16string_view title = u"title";
constexpr std::u16string_view files = u"files";
constexpr std::u16string_view sourcedFrom = u"sourcedFrom";
constexpr std::u16string_view positions = u"positions";
constexpr std::u16string_view environment = u"environment:";
}  // namespace metadata

}  // namespace kconfig
