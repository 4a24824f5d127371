#include "writing/Productions.hpp"

#include <tessel_config_datamodel/runtime/ProductionState.hpp>
#include <tessel_utils_datamodel/script/AnnotatedScript.hpp>

#include "loading/ModelText.hpp"
#include "loading/Vocabulary.hpp"

namespace kconfig {

namespace {

void writeScript(const runtime::ProductionState& production, const char16_t* name, const char16_t* language,
                 const std::string& text) {
  if (!production->hasScript()) {
    const script::AnnotatedScript made = script::AnnotatedScript::create(production->getModel());
    made->setName(name);
    made->setLanguage(language);
    production->setScript(made);
  }
  const script::AnnotatedScript script = production->getScript();
  const std::u16string converted = toModel(text);
  if (script->getText() != converted) {
    script->setText(converted);
    script->setRevision(script->getRevision() + 1);
  }
}

}  // namespace

void produce(const runtime::ConfigurationState& state, const Output& output) {
  const plinth::Model model = state->getModel();
  plinth::Transaction transaction = model.beginTransaction();
  const auto& productions = *state->getProductions();
  writeScript(productions.find(key::configuration), u".config", u"configuration", formatConfiguration(output));
  writeScript(productions.find(key::header), u"config.h", u"C", formatHeader(output));
  transaction.commit();
}

std::string scriptOf(const runtime::ConfigurationState& state, std::u16string_view production) {
  const runtime::ProductionState found = state->getProductions()->find(production);
  return found && found->hasScript() ? fromModel(found->getScript()->getText()) : std::string();
}

}  // namespace kconfig
