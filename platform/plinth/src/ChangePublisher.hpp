// Tells a model's listeners what each outermost commit did.
// Ownership: the model owns its publisher; the publisher owns the records of the commits that it publishes and keeps
// their elements in memory meanwhile. A listener's function goes with its registration, or right after the telling that
// it may be part of.
// Thread rule: the model's thread.
#pragma once

#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <vector>

#include "UndoLog.hpp"
#include "plinth/ChangeSet.hpp"
#include "plinth/Model.hpp"

namespace plinth {

class ChangePublisher {
 public:
  ChangePublisher() = default;
  ~ChangePublisher();
  ChangePublisher(ChangePublisher const&) = delete;
  ChangePublisher& operator=(ChangePublisher const&) = delete;

  /// A listener of the commits that are taken over from now on; ones that still wait to be told don't count.
  ListenerRegistration add(ChangeListener listener);
  /// Also while anything is published: what a listener destroys then waits in the queue, behind the records of it that
  /// are being told, whether or not anyone still listens.
  bool isWatched() const noexcept { return m_listeners->live > 0 || m_publishing; }
  std::size_t const& listenerCount() const noexcept { return m_listeners->live; }

  /// Gathers what the log tells; raises std::bad_alloc, and then nothing has been taken.
  void collect(UndoLog& log);
  /// What has been collected is not going to be taken over.
  void discard() noexcept;
  /// Takes the records from their elements, so that listeners may open transactions of their own.
  void takeOver(UndoLog& log) noexcept;
  /// Tells what has been taken over, unless a listener further up the stack is being told: it goes on with this one.
  void publish() noexcept;

  std::vector<std::exception_ptr> takeErrors();
  std::size_t errorCount() const noexcept { return m_errorCount; }

 private:
  struct Listener {
    ChangeListener function;
    std::uint64_t since;  ///< the serial of the last commit before it was registered
    bool isRegistered = false;
  };
  struct Listeners {
    std::vector<std::shared_ptr<Listener>> all;
    std::size_t live = 0;
    bool isTelling = false;  ///< one of the functions is running

    void remove(Listener& listener) noexcept;
    /// Takes out what was removed while its function could have been running.
    void prune() noexcept;
  };
  struct Pending : ChangeSet {
    using ChangeSet::m_changed;
    using ChangeSet::m_created;
    using ChangeSet::m_destroyed;
    std::vector<Storage*> records;
    std::uint64_t serial = 0;
    void clear() noexcept;
  };

  /// Fills m_gathered, which is empty, with what the log tells. Raises std::bad_alloc.
  void gather(UndoLog& log);
  void noteError(std::exception_ptr error) noexcept;
  void tell(Pending const& pending) noexcept;
  std::unique_ptr<Pending> freshPending();

  std::shared_ptr<Listeners> m_listeners = std::make_shared<Listeners>();
  std::deque<std::unique_ptr<Pending>> m_queue;
  std::unique_ptr<Pending> m_gathered;
  std::unique_ptr<Pending> m_spare;          ///< kept for its vectors
  std::vector<std::exception_ptr> m_errors;  ///< the last ones
  std::size_t m_errorCount = 0;
  std::uint64_t m_serial = 0;  ///< of the last commit that was taken over
  bool m_publishing = false;
};

}  // namespace plinth
