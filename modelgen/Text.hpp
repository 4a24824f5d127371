// Texts on their way into C++ source. Free functions without state.
#pragma once

#include <string>
#include <vector>

namespace modelgen {

// A C++ literal u"..." for a well-formed UTF-8 text, as the YAML reader gives it. Characters beyond printable ASCII are
// written as universal character names, so that the result does not depend on the compiler's idea of the source
// encoding.
std::string utf16Literal(std::string const& utf8);

// Where the first byte stands that is part of no well-formed UTF-8 character or is a control character other than tab
// and line end; the size of the text where there is none.
std::size_t firstBadCharacter(std::string const& text);

// The text as lines of at most `width` characters, broken at spaces; a blank line parts paragraphs and stands for
// itself. A word longer than the width has a line of its own.
std::vector<std::string> wrap(std::string const& text, std::size_t width);

// C++ source in which the lines of each run of `#include <...>`, or of templates that are instantiated for export,
// stand in order, each once.
std::string sortRuns(std::string const& source);

// C++ source with no blank lines at the head of a section of a class or at the end, and never two in a row: a template
// can't know which of its lists are empty.
std::string dropNeedlessBlankLines(std::string const& source);

// C++ source in which a namespace's own names are written without it: N::X as X, from a line "namespace N {" to the
// line "}  // namespace N". So templates can qualify every name and need not know where it is read.
std::string shortenOwnNames(std::string const& source);

}  // namespace modelgen
