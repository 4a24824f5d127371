#include "plinth/Freezer.hpp"

#include "plinth/Messages.hpp"

namespace plinth {

Model::Freezer::Freezer(Model model) : m_model(std::move(model)) {
  if (m_model.require().level() > 0) reportException(messages::CannotFreezeOpenModel());
  ++internal::stepOf(*m_model.impl()).freezes;
}

Model::Freezer::~Freezer() { --internal::stepOf(*m_model.impl()).freezes; }

Model::Thawer Model::Freezer::thaw() noexcept { return Thawer(*this); }

Model::Thawer::Thawer(Freezer& freezer) noexcept : m_freezer(&freezer) {
  if (freezer.m_thaws++ == 0) --internal::stepOf(*freezer.m_model.impl()).freezes;
}

Model::Thawer::~Thawer() {
  if (m_freezer != nullptr && --m_freezer->m_thaws == 0) ++internal::stepOf(*m_freezer->m_model.impl()).freezes;
}

}  // namespace plinth
