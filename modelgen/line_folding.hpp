// Long lines of generated C++ source. Templates write each statement on one line, as they can't know how long its names
// are. Free functions without state.
#pragma once

#include <string>

namespace modelgen {

// The source with lines of at most `width` characters, as far as there is a place to break them: a body that stands on
// the line of its function moves below it; then lines break behind an opening parenthesis, a comma or the type that a
// function gives, or before the colon of bases and initializers, the outermost place that fits, and go on four columns
// further in. A line of comment breaks at spaces. Preprocessor lines, texts in quotes and comments behind code stay
// whole. The same source always gives the same result.
std::string foldLongLines(std::string const& source, std::size_t width);

}  // namespace modelgen
