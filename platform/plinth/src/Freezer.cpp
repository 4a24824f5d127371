#include "plinth/Freezer.hpp"

#include "plinth/Messages.hpp"

namespace plinth {

Model::Freezer::Freezer(Model model) : m_model(std::move(model)) {
  if (m_model.require().level() > 0) reportException(messages::CannotFreezeOpenModel());
  ++m_model->m_freezes;
}

Model::Freezer::~Freezer() { --m_model->m_freezes; }

Model::Thawer Model::Freezer::thaw() noexcept { return Thawer(*this); }

Model::Thawer::Thawer(Freezer& freezer) noexcept : m_freezer(&freezer) {
  if (freezer.m_thaws++ == 0) --freezer.m_model->m_freezes;
}

Model::Thawer::~Thawer() {
  if (m_freezer != nullptr && --m_freezer->m_thaws == 0) ++m_freezer->m_model->m_freezes;
}

}  // namespace plinth
