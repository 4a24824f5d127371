// Tells a model's listeners what each outermost commit did.
// Ownership: the model owns its publisher; the publisher owns the records of the commit that it is publishing.
// Thread rule: the model's thread.
#pragma once

#include <deque>
#include <exception>
#include <memory>
#include <vector>

#include "plinth/ChangeSet.hpp"
#include "plinth/Model.hpp"

namespace plinth {

class ChangePublisher {
 public:
  explicit ChangePublisher(ModelImpl& model) noexcept : m_model(&model) {}
  ~ChangePublisher();
  ChangePublisher(ChangePublisher const&) = delete;
  ChangePublisher& operator=(ChangePublisher const&) = delete;

  ListenerRegistration add(ChangeListener listener);
  bool isWatched() const noexcept { return m_listeners->live > 0; }
  std::size_t const& listenerCount() const noexcept { return m_listeners->live; }

  /// Gathers what the log tells; raises std::bad_alloc, and then nothing has been taken.
  void collect(UndoLog& log);
  /// Takes the records from their elements, so that listeners may open transactions of their own.
  void takeOver(UndoLog& log) noexcept;
  /// Tells what has been taken over, unless a listener further up the stack is being told: it goes on with this one.
  void publish() noexcept;

  std::vector<std::exception_ptr> takeErrors();

 private:
  struct Listener {
    ChangeListener function;
    bool registered = true;
  };
  struct Listeners {
    std::vector<std::shared_ptr<Listener>> all;
    std::size_t live = 0;
  };
  struct Pending {
    ChangeSet changes;
    std::vector<Storage*> records;
    void clear() noexcept;
  };

  void tell(ChangeSet const& changes) noexcept;
  std::unique_ptr<Pending> freshPending();

  ModelImpl* m_model;
  std::shared_ptr<Listeners> m_listeners = std::make_shared<Listeners>();
  std::deque<std::unique_ptr<Pending>> m_queue;
  std::unique_ptr<Pending> m_gathered;
  std::unique_ptr<Pending> m_spare;  ///< kept for its vectors
  std::vector<std::exception_ptr> m_errors;
  bool m_publishing = false;
};

}  // namespace plinth
