// Texts on their way between files, which hold bytes, and the model, which holds UTF-16. Pure functions.
#pragma once

#include <string>
#include <string_view>

namespace kconfig {

// Every text comes back from the model as it went in, also one that is no UTF-8.
std::u16string toModel(std::string_view text);
std::string fromModel(std::u16string_view text);

}  // namespace kconfig
