// Long lines of generated C++ source. Templates write each statement on one line, as they can't know how long its names
// are. What a formatter would do stands here because a formatter would have to be there wherever the library is built,
// and be run over every generated file. Free functions without state.
#pragma once

#include <string>

namespace modelgen {

// The source with lines of at most `width` characters, as far as there is a place to break them, and broken as
// clang-format does by the style of this repository: a body that stands on the line of its function moves below it;
// bases and initializers go below their head; what an outermost bracket holds goes on below its first character or,
// where that is too narrow, behind the bracket; a name without parameters goes below its type. A line of comment breaks
// at spaces. Preprocessor lines, texts in quotes and comments behind code stay whole. The same source always gives the
// same result.
std::string foldLongLines(std::string const& source, std::size_t width);

}  // namespace modelgen
