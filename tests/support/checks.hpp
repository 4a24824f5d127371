// What the tests of several rooms check with: the message that an action raises, and that a model is sound or
// unchanged.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string>
#include <utility>

#include "groundwork/Except.hpp"
#include "plinth/ChangeSet.hpp"
#include "plinth/diagnostics/Fingerprint.hpp"
#include "plinth/diagnostics/Verify.hpp"
#include "tessel_config_datamodel/frame/SingleElement.hpp"

namespace support {

/// The bare store of one element, past undo, container, opposite and listeners.
inline void basicSet(plinth::ModelElement const& element, char16_t const* property,
                     plinth::ModelElement const& target) {
  tessel::frame::basicSet(element, plinth::meta::Property(element->getMetaClass()->findProperty(property)), target);
}

/// The key of the message that `action` raises; of other exceptions their text; empty when it raises nothing.
template <class Action>
std::string raised(Action&& action) {
  try {
    std::forward<Action>(action)();
  } catch (groundwork::except::IMsgIDException const& exception) {
    return exception.get_error_id().key;
  } catch (std::exception const& exception) {
    return exception.what();
  }
  return {};
}

/// Names the first breach of integrity.
inline testing::AssertionResult isSound(plinth::Model const& model) {
  auto const findings = plinth::verify(model);
  if (findings.empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << findings.size() << " findings, the first: " << findings.front();
}

/// The state of a model, to compare it with a later one.
class Snapshot {
 public:
  explicit Snapshot(plinth::Model model) : m_model(std::move(model)), m_state(plinth::Fingerprint::of(m_model)) {}
  /// Names the first difference, or the first breach of integrity.
  testing::AssertionResult isBack() const {
    if (auto const difference = diff(m_state, plinth::Fingerprint::of(m_model))) {
      return testing::AssertionFailure() << difference->text();
    }
    return isSound(m_model);
  }

 private:
  plinth::Model m_model;
  plinth::Fingerprint m_state;
};

/// Counts the outermost commits of a model that changed something.
class CommitCount {
 public:
  explicit CommitCount(plinth::Model const& model)
      : m_registration(model.addListener([this](plinth::ChangeSet const&) { ++m_count; })) {}
  CommitCount(CommitCount const&) = delete;
  CommitCount& operator=(CommitCount const&) = delete;
  /// Since the last call.
  int take() { return std::exchange(m_count, 0); }

 private:
  int m_count = 0;
  plinth::ListenerRegistration m_registration;
};

/// Runs `action` on a stack of the usual 8 MiB, whatever the shell's limit is.
inline void onUsualStack(std::function<void()> action) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 8U << 20U), 0);
  pthread_t thread{};
  auto const run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &action), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

}  // namespace support
