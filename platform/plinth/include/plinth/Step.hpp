// The transaction of one step, such as a setter or a change of a collection.
// Ownership: refers to the model, which outlives it. Thread rule: the model's thread.
#pragma once

#include "plinth/Model.hpp"

namespace plinth {

namespace internal {
/// A level of the model's log, nested in the innermost one. Raises as Model::beginTransaction.
TESSEL_EXPORT void beginStep(ModelImpl& model);
TESSEL_EXPORT void commitStep(ModelImpl& model);
TESSEL_EXPORT void rollBackStep(ModelImpl& model) noexcept;
}  // namespace internal

/// What happens as a whole or not at all. A SINGLE step can't fail half-way: inside an
/// open transaction it costs nothing, outside it is one of its own. A STORE is a SINGLE step that only stores: outside
/// a transaction it keeps no old value either, where nobody listens. A WHOLE step is a nested transaction in any case.
class [[nodiscard]] Step {
 public:
  enum Extent { STORE, SINGLE, WHOLE };
  explicit Step(ModelImpl& model, Extent extent = SINGLE) : Step(&model, extent) {}
  Step(Step const&) = delete;
  Step& operator=(Step const&) = delete;
  ~Step() {
    if (m_model == nullptr) return;
    if (m_isUnlogged) {
      internal::stepOf(*m_model).isLogOff = false;
    } else {
      internal::rollBackStep(*m_model);
    }
  }
  void commit() {
    if (m_model == nullptr || m_isUnlogged) return;
    internal::commitStep(*m_model);
    m_model = nullptr;
  }

 protected:
  /// Null: nothing is taken back.
  Step(ModelImpl* model, Extent extent) {
    if (model == nullptr || (extent != WHOLE && model->level() > 0)) return;
    m_isUnlogged = extent == STORE && model->isUnobserved();
    if (m_isUnlogged) {
      internal::stepOf(*model).isLogOff = true;
    } else {
      internal::beginStep(*model);
    }
    m_model = model;
  }

 private:
  ModelImpl* m_model = nullptr;
  bool m_isUnlogged = false;
};

}  // namespace plinth
