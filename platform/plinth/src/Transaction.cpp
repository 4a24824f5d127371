#include "plinth/Transaction.hpp"

#include "ModelState.hpp"
#include "plinth/Messages.hpp"
#include "plinth/Value.hpp"

namespace plinth {
namespace {

internal::ModelState& stateIn(Handle const& model) noexcept {
  return internal::stateOf(static_cast<ModelImpl&>(*model.elementImpl()));
}

}  // namespace

Transaction::Transaction(ModelImpl& model, unsigned level, unsigned long serial) noexcept
    : m_model(&model), m_level(level), m_serial(serial) {}

Transaction::Transaction(Transaction&& other) noexcept
    : m_model(std::move(other.m_model)),
      m_level(other.m_level),
      m_serial(other.m_serial),
      m_open(std::exchange(other.m_open, false)) {}

Transaction::~Transaction() {
  if (!isOpen()) return;
  internal::ModelState& model = stateIn(m_model);
  while (model.level() >= m_level) model.rollBack();
}

void Transaction::commit() {
  if (!isOpen()) reportException(messages::TransactionEnded());
  internal::ModelState& model = stateIn(m_model);
  if (model.level() != m_level) reportException(messages::TransactionNotInnermost());
  model.commit();
  m_open = false;
}

bool Transaction::isOpen() const noexcept {
  if (!m_open) return false;
  // Inner transactions that outlive an outer one ended with it: their level has another serial by then, or is gone.
  internal::ModelState const& model = stateIn(m_model);
  return model.level() >= m_level && model.log.serialAt(m_level) == m_serial;
}

void Transaction::commit(boost::optional<Value> const&) { commit(); }

}  // namespace plinth
