#include "writing/Productions.hpp"

#include <tessel_config_datamodel/runtime/ProductionState.hpp>
#include <tessel_utils_datamodel/script/AnnotatedScript.hpp>

#include "loading/ModelText.hpp"
#include "loading/Vocabulary.hpp"

namespace kconfig {

namespace {

void writeScript(runtime::ProductionState const& production, char16_t const* name, char16_t const* language,
                 std::string const& text) {
  if (!production->hasScript()) {
    script::AnnotatedScript const made = script::AnnotatedScript::create(production->getModel());
    made->setName(name);
    made->setLanguage(language);
    production->setScript(made);
  }
  script::AnnotatedScript const script = production->getScript();
  std::u16string const converted = toModel(text);
  if (script->getText() != converted) {
    script->setText(converted);
    script->setRevision(script->getRevision() + 1);
  }
}

}  // namespace

void produce(runtime::ConfigurationState const& state, Output const& output) {
  plinth::Model const model = state->getModel();
  plinth::Transaction transaction = model.beginTransaction();
  auto const& productions = *state->getProductions();
  writeScript(productions.find(key::configuration), u".config", u"configuration", formatConfiguration(output));
  writeScript(productions.find(key::header), u"config.h", u"C", formatHeader(output));
  transaction.commit();
}

std::string scriptOf(runtime::ConfigurationState const& state, std::u16string_view production) {
  runtime::ProductionState const found = state->getProductions()->find(production);
  return found && found->hasScript() ? fromModel(found->getScript()->getText()) : std::string();
}

}  // namespace kconfig
