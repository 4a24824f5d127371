#include "reader/TreeReader.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <unordered_map>
#include <vector>

#include "reader/DefinitionBuilder.hpp"
#include "reader/FileParser.hpp"

namespace kconfig {

namespace {

// An open file, closed with the object.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
  ~Descriptor() {
    if (m_descriptor >= 0) {
      ::close(m_descriptor);
    }
  }
  Descriptor(Descriptor const&) = delete;
  Descriptor& operator=(Descriptor const&) = delete;

  int get() const { return m_descriptor; }

 private:
  int m_descriptor;
};

// One reading: the files that are open inside each other, and the texts of those read before.
class Reading {
 public:
  Reading(plinth::Model const& model, Surroundings const& surroundings, Diagnostics& diagnostics)
      : m_builder(model, surroundings, diagnostics), m_surroundings(surroundings), m_diagnostics(diagnostics) {}

  ReadTree readRoot(std::string const& path);

 private:
  static constexpr std::size_t deepestFile = 100;

  void parse(std::string_view name, std::string_view text, Position from);
  void source(std::string_view name, Position from);
  std::optional<std::string_view> textOf(std::string const& name, std::string& problem);

  DefinitionBuilder m_builder;
  Surroundings const& m_surroundings;
  Diagnostics& m_diagnostics;
  std::vector<std::string> m_open;
  std::unordered_map<std::string, std::string_view> m_texts;
};

ReadTree Reading::readRoot(std::string const& path) {
  std::string problem;
  std::optional<std::string_view> const text = textOf(path, problem);
  if (!text) {
    m_diagnostics.error(path, 0, "the file can't be read: " + problem);
  }
  parse(path, text.value_or(""), {});
  return m_builder.finish();
}

void Reading::parse(std::string_view name, std::string_view text, Position from) {
  std::uint32_t const file = m_builder.addFile(name, from);
  m_open.emplace_back(name);
  FileParser(m_builder, file, text, [this](std::string_view inner, Position position) {
    source(inner, position);
  }).parse();
  m_open.pop_back();
}

void Reading::source(std::string_view name, Position from) {
  std::string const expanded = m_builder.expand(name);
  std::string const shown = "'" + expanded + "'" + (expanded == name ? "" : " ('" + std::string(name) + "')");
  for (std::string const& open : m_open) {
    if (open == expanded) {
      m_builder.error(from, "the file " + shown + " sources itself, directly or through others");
      return;
    }
  }
  if (m_open.size() == deepestFile) {
    m_builder.error(from, "files source each other too deeply, " + shown + " is left out");
    return;
  }
  std::string problem;
  std::optional<std::string_view> const text = textOf(expanded, problem);
  if (!text) {
    m_builder.error(from, "the file " + shown + " can't be read: " + problem);
    return;
  }
  parse(expanded, *text, from);
}

std::optional<std::string_view> Reading::textOf(std::string const& name, std::string& problem) {
  auto const known = m_texts.find(name);
  if (known != m_texts.end()) {
    return known->second;
  }
  std::optional<std::string> text = m_surroundings.file(name, problem);
  std::optional<std::string> const sourceTree = m_surroundings.variable("srctree");
  if (!text && sourceTree && !name.empty() && name.front() != '/') {
    std::string other;
    text = m_surroundings.file(*sourceTree + "/" + name, other);
  }
  if (!text) {
    return std::nullopt;
  }
  return m_texts.emplace(name, m_builder.words().texts.adopt(std::move(*text))).first->second;
}

}  // namespace

Surroundings processSurroundings() {
  auto const variable = [](std::string const& name) -> std::optional<std::string> {
    char const* value = std::getenv(name.c_str());
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
  };
  return {variable, readFile};
}

std::optional<std::string> readFile(std::string const& path, std::string& problem) {
  Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (file.get() < 0 || ::fstat(file.get(), &status) != 0) {
    problem = std::strerror(errno);
    return std::nullopt;
  }
  if (!S_ISREG(status.st_mode)) {
    problem = "it is not a regular file";
    return std::nullopt;
  }
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t length = 0;
  while (length < text.size()) {
    ssize_t const count = ::read(file.get(), &text[length], text.size() - length);
    if (count < 0 && errno != EINTR) {
      problem = std::strerror(errno);
      return std::nullopt;
    }
    if (count == 0) {
      break;
    }
    length += count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  text.resize(length);
  return text;
}

ReadTree readTree(std::string const& rootPath, Surroundings const& surroundings, Diagnostics& diagnostics,
                  plinth::Model const& model) {
  return Reading(model, surroundings, diagnostics).readRoot(rootPath);
}

}  // namespace kconfig
