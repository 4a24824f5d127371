#include "modelgen/TemplateSet.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

namespace modelgen {
namespace {

namespace mustache = kainjow::mustache;

using Component = mustache::component<std::string>;
using Context = mustache::context<std::string>;

constexpr int deepestPartial = 30;

// The library keeps or drops whole lines by rules of its own that lose blank lines and make others. It never gets to
// see a line end, therefore: outside of tags each is this character until rendering is done.
constexpr char lineEnd = '\x01';

// How a template asks for a text of a property's kind, and where the kinds are described.
char const* const kindPrefix = "kind.";
char const* const kindFolder = "kinds/";
char const* const kindKey = "scheme";
char const* const everyKind = "every";
char const* const likeText = "like";

bool isBlank(char c) { return c == ' ' || c == '\t'; }

bool isKindText(std::string const& partial) { return partial.rfind(kindPrefix, 0) == 0; }

std::string kindFile(std::string const& kind) { return kindFolder + kind + ".mustache"; }

// A text of a kind differs from property to property, any other partial is the same everywhere.
std::string partialKey(std::string const& partial, Context const& context) {
  Data const* const kind = isKindText(partial) ? context.get(kindKey) : nullptr;
  return kind == nullptr || !kind->is_string() ? partial : kindFolder + kind->string_value() + "/" + partial;
}

// A tag that stands alone on its line takes the whole line with it: the blanks before it and the line end behind it
// move into the tag, where they mean nothing. Lengths stay, so that an offset in the result is one in the file.
std::string prepared(std::string text) {
  std::size_t tagEnd = 0;
  std::size_t lineStart = 0;  // behind the last tag that took its line end with it
  for (std::size_t start = text.find("{{"); start != std::string::npos; start = text.find("{{", tagEnd)) {
    std::replace(text.begin() + static_cast<std::ptrdiff_t>(tagEnd), text.begin() + static_cast<std::ptrdiff_t>(start),
                 '\n', lineEnd);
    tagEnd = text.find("}}", start);
    if (tagEnd == std::string::npos) return text;
    tagEnd += 2;
    if (std::string("#^/!>=").find(text[start + 2]) == std::string::npos) continue;
    std::size_t first = start;
    while (first > 0 && isBlank(text[first - 1])) --first;
    std::size_t last = tagEnd;
    while (last < text.size() && isBlank(text[last])) ++last;
    bool const atStart = first == lineStart || (first > 0 && text[first - 1] == lineEnd);
    bool const atEnd = last == text.size() || text[last] == '\n';
    if (!atStart || !atEnd) continue;
    if (last < text.size()) ++last;
    std::string const inside = text.substr(start, tagEnd - 2 - start);
    std::string const blanks = text.substr(first, start - first) + text.substr(tagEnd, last - tagEnd);
    text.replace(first, last - first, inside + blanks + "}}");
    lineStart = tagEnd = last;
  }
  std::replace(text.begin() + static_cast<std::ptrdiff_t>(tagEnd), text.end(), '\n', lineEnd);
  return text;
}

// The place of a tag, given where it begins in the prepared text; there it may have moved to the start of its line.
Position positionAt(std::string const& original, std::size_t offset, Position const& start) {
  Position result = start;
  for (std::size_t i = 0; i < original.size() && (i < offset || isBlank(original[i])); ++i) {
    if (original[i] == '\n') {
      ++result.line;
      result.column = 1;
    } else {
      ++result.column;
    }
  }
  return result;
}

// The library tells a syntax error as "<what> at <offset>".
void reportSyntax(std::string const& message, std::string const& text, Position const& start,
                  Diagnostics& diagnostics) {
  std::size_t const at = message.rfind(" at ");
  std::size_t const offset = at == std::string::npos ? 0 : std::strtoul(message.c_str() + at + 4, nullptr, 10);
  diagnostics.report(positionAt(text, offset, start), "not a template: " + message.substr(0, at), "Mustache");
}

// Gives partials by the name of their file instead of looking for them in the data.
class PartialContext : public Context {
 public:
  PartialContext(Data const* data, std::map<std::string, Data> partials)
      : Context(data), m_partials(std::move(partials)) {}

  Data const* get_partial(std::string const& name) const override {
    auto const found = m_partials.find(partialKey(name, *this));
    return found == m_partials.end() ? nullptr : &found->second;
  }

 private:
  std::map<std::string, Data> m_partials;
};

}  // namespace

struct TemplateSet::Template {
  Template(std::string source, Position first)
      : original(std::move(source)), text(prepared(original)), start(std::move(first)) {}

  // Reports what the parser has against the text; true where it has nothing.
  bool parse(Diagnostics& diagnostics) {
    Context none;
    mustache::context_internal<std::string> internal{none};
    std::string error;
    mustache::parser<std::string> parser{text, internal, root, error};
    if (!error.empty()) reportSyntax(error, original, start, diagnostics);
    return error.empty();
  }

  // Takes each section at the top of the file as a text of that name. `every` tells which names there are; null for
  // that file itself.
  void takeTexts(Template const* every, Diagnostics& diagnostics) {
    for (Component const& each : root.children) {
      bool const isSpace = each.text.find_first_not_of({' ', '\t', lineEnd}) == std::string::npos;
      if (each.tag.type == mustache::tag_type::comment || (each.is_text() && isSpace)) continue;
      Position const at = positionAt(original, each.position, start);
      if (each.tag.type != mustache::tag_type::section_begin) {
        diagnostics.report(at, "this belongs to no text of the kind", "a section for each text");
      } else if (every != nullptr && every->texts.count(each.tag.name) == 0) {
        diagnostics.report(at, "unknown text '" + each.tag.name + "' of a kind", every->textNames());
      } else if (!texts.emplace(each.tag.name, &each).second) {
        diagnostics.report(at, "the text '" + each.tag.name + "' stands twice", "it once");
      }
    }
  }

  std::string textNames() const {
    std::vector<std::string> names;
    for (auto const& each : texts) names.push_back(each.first);
    return alternatives(names);
  }

  std::string render(mustache::basic_context<std::string>& context) const {
    mustache::mustache renderer(text);
    renderer.set_custom_escape([](std::string const& each) { return each; });
    std::string result = renderer.render(context);
    std::replace(result.begin(), result.end(), lineEnd, '\n');
    return result;
  }

  std::string original;
  std::string text;
  Position start;
  Component root;
  std::map<std::string, Component const*> texts;  // of a kind, by name
  Template const* like = nullptr;                 // the kind whose texts stand where this one has none
};

// Walks a template along the data as rendering would and reports each tag that the data does not answer.
class TemplateSet::Validator {
 public:
  explicit Validator(TemplateSet& set) : m_set(set) {}

  void walk(Template const& source, std::vector<Component> const& components, Context& context) {
    for (Component const& each : components) {
      switch (each.tag.type) {
        case mustache::tag_type::variable:
        case mustache::tag_type::unescaped_variable:
          variable(source, each, context);
          break;
        case mustache::tag_type::section_begin:
        case mustache::tag_type::section_begin_inverted:
          section(source, each, context);
          break;
        case mustache::tag_type::partial:
          partial(source, each, context);
          break;
        case mustache::tag_type::set_delimiter:
          refuse(source, each, "the delimiters of tags are changed", "{{ and }} throughout");
          break;
        default:
          break;
      }
    }
  }

  std::map<std::string, Data> takePartials() { return std::move(m_partials); }

 private:
  void refuse(Template const& source, Component const& tag, std::string const& wrong, std::string const& expected) {
    m_set.m_diagnostics.report(positionAt(source.original, tag.position, source.start), wrong, expected);
  }

  Data const* find(Template const& source, Component const& tag, Context const& context, std::string const& key) {
    Data const* const value = context.get(key);
    if (value == nullptr) refuse(source, tag, "undefined key '" + key + "'", "a key of the data in this place");
    return value;
  }

  void variable(Template const& source, Component const& tag, Context const& context) {
    Data const* const value = find(source, tag, context, tag.tag.name);
    if (value != nullptr && !value->is_string())
      refuse(source, tag, "the key '" + tag.tag.name + "' is no text", "a text");
  }

  void section(Template const& source, Component const& tag, Context& context) {
    Data const* const value = find(source, tag, context, tag.tag.name);
    if (value == nullptr) return;
    if (!value->is_bool() && !value->is_list() && !value->is_object()) {
      refuse(source, tag, "the key '" + tag.tag.name + "' is a text", "a list, an object or a flag for a section");
      return;
    }
    bool const given = !value->is_false() && !value->is_empty_list();
    if (given != (tag.tag.type == mustache::tag_type::section_begin)) return;
    if (!value->is_non_empty_list()) return walkInside(source, tag, context, value);
    for (Data const& item : value->list_value()) walkInside(source, tag, context, &item);
  }

  void walkInside(Template const& source, Component const& tag, Context& context, Data const* value) {
    context.push(value);
    walk(source, tag.children, context);
    context.pop();
  }

  void partial(Template const& source, Component const& tag, Context& context) {
    Position const at = positionAt(source.original, tag.position, source.start);
    if (++m_depth > deepestPartial) {
      refuse(source, tag, "the partial '" + tag.tag.name + "' reaches itself", "partials that end");
    } else if (isKindText(tag.tag.name)) {
      kindText(source, tag, context, at);
    } else if (Template const* const found = m_set.load(tag.tag.name + ".mustache", at)) {
      m_partials[tag.tag.name] = Data(found->text);
      walk(*found, found->root.children, context);
    }
    --m_depth;
  }

  void kindText(Template const& source, Component const& tag, Context& context, Position const& at) {
    Data const* const kind = find(source, tag, context, kindKey);
    if (kind == nullptr) return;
    Template const* each = m_set.loadKind(kind->string_value(), at);
    if (each == nullptr) return;
    std::string const name = tag.tag.name.substr(std::string(kindPrefix).size());
    while (each->texts.count(name) == 0) {
      if (each->like == nullptr) return refuse(source, tag, "unknown text '" + name + "' of a kind", each->textNames());
      each = each->like;
    }
    Component const& text = *each->texts.at(name);
    m_partials[partialKey(tag.tag.name, context)] = Data(*text.tag.section_text);
    walk(*each, text.children, context);
  }

  TemplateSet& m_set;
  std::map<std::string, Data> m_partials;
  int m_depth = 0;
};

TemplateSet::TemplateSet(std::string folder, Diagnostics& diagnostics)
    : m_folder(std::move(folder)), m_diagnostics(diagnostics) {}

TemplateSet::~TemplateSet() = default;

TemplateSet::Template* TemplateSet::load(std::string const& file, Position const& namedAt) {
  auto const known = m_templates.find(file);
  if (known != m_templates.end()) return known->second.get();
  std::string const path = m_folder + "/" + file;
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  if (!stream || !(content << stream.rdbuf())) {
    m_diagnostics.report(namedAt, "cannot read the template " + path, "a readable file that is not empty");
    return nullptr;
  }
  auto loaded = std::make_unique<Template>(content.str(), Position{path, 1, 1});
  if (!loaded->parse(m_diagnostics)) loaded = nullptr;
  return (m_templates[file] = std::move(loaded)).get();
}

TemplateSet::Template* TemplateSet::loadKind(std::string const& kind, Position const& namedAt) {
  bool const isKnown = m_templates.count(kindFile(kind)) != 0;
  Template* const loaded = load(kindFile(kind), namedAt);
  if (isKnown || loaded == nullptr) return loaded;
  Template const* const every = kind == everyKind ? nullptr : loadKind(everyKind, namedAt);
  loaded->takeTexts(every, m_diagnostics);
  loaded->like = every;
  if (auto const named = loaded->texts.find(likeText); every != nullptr && named != loaded->texts.end()) {
    Position const at = positionAt(loaded->original, named->second->position, loaded->start);
    loaded->like = loadKind(*named->second->tag.section_text, at);
    for (Template const* each = loaded->like; each != nullptr; each = each->like) {
      if (each != loaded) continue;
      m_diagnostics.report(at, "this kind is like itself", "another kind that is not like this one");
      loaded->like = every;
    }
  }
  return loaded;
}

std::string TemplateSet::render(std::string const& file, Position const& namedAt, Data const& data) {
  Template* const source = load(file, namedAt);
  if (source == nullptr) return "";
  Context plain(&data);
  Validator validator(*this);
  validator.walk(*source, source->root.children, plain);
  if (!m_diagnostics.empty()) return "";
  PartialContext context(&data, validator.takePartials());
  return source->render(context);
}

std::string TemplateSet::renderText(std::string const& text, Position const& at, Data const& data) {
  Template source(text, at);
  if (!source.parse(m_diagnostics)) return "";
  Context plain(&data);
  Validator(*this).walk(source, source.root.children, plain);
  if (!m_diagnostics.empty()) return "";
  return source.render(plain);
}

std::vector<std::string> TemplateSet::filesRead() const {
  std::vector<std::string> result;
  for (auto const& each : m_templates) result.push_back(m_folder + "/" + each.first);
  return result;
}

}  // namespace modelgen
