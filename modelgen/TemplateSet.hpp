// Renders Mustache templates strictly: a key that the data does not have, or that has the wrong form, is an error with
// the template's file, line and column, where Mustache itself would print nothing. Nothing is escaped, as the output is
// source code. A section, comment or partial tag that stands alone on its line leaves nothing of that line behind. A
// partial {{> name}} is the file name.mustache of the same folder, as it stands: it is not indented. A partial
// {{> kind.name}} is a text of the kind of the property around it: the section `name` of kinds/<scheme>.mustache, where
// `scheme` is a key of the data in that place; where that file has none, of the kind that its section `like` names, and
// then of kinds/every.mustache. That one tells which texts there are; another name in any of the files is an error as
// well. Delimiters stay {{ and }}. Reads each file once and keeps it; one thread.
#pragma once

#include <kainjow/mustache.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "modelgen/Diagnostic.hpp"

namespace modelgen {

using Data = kainjow::mustache::data;

class TemplateSet {
 public:
  TemplateSet(std::string folder, Diagnostics& diagnostics);
  ~TemplateSet();
  TemplateSet(TemplateSet const&) = delete;
  TemplateSet& operator=(TemplateSet const&) = delete;

  // The text of the template in `file`, a name below the folder. Where that file is absent, the problem is reported at
  // `namedAt`. The result is empty once anything was reported.
  std::string render(std::string const& file, Position const& namedAt, Data const& data);

  // The same for a template that stands as a text in a file of another kind, at `at`. It has no partials.
  std::string renderText(std::string const& text, Position const& at, Data const& data);

  // The template files read so far, in name order.
  std::vector<std::string> filesRead() const;

 private:
  struct Template;
  class Validator;

  // Null where the file cannot be read or parsed, which is then reported.
  Template* load(std::string const& file, Position const& namedAt);
  // The same for the description of a kind.
  Template* loadKind(std::string const& kind, Position const& namedAt);

  std::string m_folder;
  Diagnostics& m_diagnostics;
  std::map<std::string, std::unique_ptr<Template>> m_templates;
};

}  // namespace modelgen
