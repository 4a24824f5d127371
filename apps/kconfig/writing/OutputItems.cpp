#include "writing/OutputItems.hpp"

namespace kconfig {

namespace {

// Pieces are appended one by one: a file has tens of thousands of lines.
template <class... Pieces>
void append(std::string& file, Pieces const&... pieces) {
  (file.append(pieces), ...);
}

// A comment line without a text ends at its sign.
std::string titleBehindSign(Output const& output) {
  return output.title.empty() ? std::string() : " " + std::string(output.title);
}

void appendSymbol(std::string& file, std::string_view prefix, OutputItem const& item) {
  switch (item.type) {
    case SymbolType::Boolean:
    case SymbolType::Tristate:
      if (item.value == Tristate::No) {
        append(file, "# ", prefix, item.name, " is not set\n");
      } else {
        append(file, prefix, item.name, item.value == Tristate::Yes ? "=y\n" : "=m\n");
      }
      break;
    case SymbolType::String:
      append(file, prefix, item.name, "=", quote(item.text), "\n");
      break;
    case SymbolType::Integer:
    case SymbolType::Hexadecimal:
      append(file, prefix, item.name, "=", item.text, "\n");
      break;
    case SymbolType::Unknown:
      break;
  }
}

void appendMacro(std::string& file, std::string_view prefix, OutputItem const& item) {
  switch (item.type) {
    case SymbolType::Boolean:
    case SymbolType::Tristate:
      if (item.value != Tristate::No) {
        append(file, "#define ", prefix, item.name, item.value == Tristate::Mod ? "_MODULE 1\n" : " 1\n");
      }
      break;
    case SymbolType::String:
      append(file, "#define ", prefix, item.name, " ", quote(item.text), "\n");
      break;
    case SymbolType::Hexadecimal: {
      bool const prefixed = item.text.size() > 1 && item.text[0] == '0' && (item.text[1] == 'x' || item.text[1] == 'X');
      append(file, "#define ", prefix, item.name, prefixed ? " " : " 0x", item.text, "\n");
      break;
    }
    case SymbolType::Integer:
      append(file, "#define ", prefix, item.name, " ", item.text, "\n");
      break;
    case SymbolType::Unknown:
      break;
  }
}

}  // namespace

std::string quote(std::string_view text) {
  std::string quoted = "\"";
  for (char const c : text) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
    }
    quoted += c;
  }
  return quoted += '"';
}

std::string formatConfiguration(Output const& output) {
  std::string file;
  append(file, "#\n# Automatically generated file; DO NOT EDIT.\n#", titleBehindSign(output), "\n#\n");
  for (OutputItem const& item : output.items) {
    if (item.kind == OutputItem::Kind::Heading) {
      append(file, "\n#\n# ", item.name, "\n#\n");
    } else {
      appendSymbol(file, output.prefix, item);
    }
  }
  return file;
}

std::string formatSetting(std::string_view prefix, OutputItem const& item) {
  std::string line;
  appendSymbol(line, prefix, item);
  return line;
}

std::string formatHeader(Output const& output) {
  std::string file;
  append(file, "/*\n *\n * Automatically generated file; DO NOT EDIT.\n *", titleBehindSign(output), "\n *\n */\n");
  for (OutputItem const& item : output.items) {
    if (item.kind == OutputItem::Kind::Symbol) {
      appendMacro(file, output.prefix, item);
    }
  }
  return file;
}

}  // namespace kconfig
