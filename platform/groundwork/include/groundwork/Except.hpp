// Exceptions that carry a message record. Callers catch std::exception for the sentence, IMsgIDException for catalogue
// and key, or Exception<M, std::exception> for one message type. Thread rule: plain values.
#pragma once

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "groundwork/Message.hpp"
#include "groundwork/export.hpp"

namespace groundwork::except {

/// Names a message: "catalogue:key".
struct ErrorId {
  std::string catalog;
  std::string key;
  std::string text() const { return catalog + ":" + key; }
};

class TESSEL_EXPORT IMsgIDException {
 public:
  virtual ~IMsgIDException();

  /// The message's record: arguments, catalogue and key.
  virtual MessageRecord const& GetBaseMsgIDObj() const noexcept = 0;
  [[nodiscard]] virtual std::unique_ptr<IMsgIDException> clone() const = 0;
  [[noreturn]] virtual void rethrow() const = 0;

  /// "catalogue:key".
  std::string GetID() const { return m_id.text(); }
  ErrorId& get_error_id() noexcept { return m_id; }
  ErrorId const& get_error_id() const noexcept { return m_id; }

 private:
  ErrorId m_id;
};

/// The exception of message type M (a MessageRecord). `what()` is the sentence, headed by the key.
template <class M, class Base>
class Exception : public IMsgIDException, public Base {
 public:
  Exception(M record, std::string sentence) : m_record(std::move(record)), m_sentence(std::move(sentence)) {}

  char const* what() const noexcept override { return m_sentence.c_str(); }
  MessageRecord const& GetBaseMsgIDObj() const noexcept override { return m_record; }
  [[nodiscard]] std::unique_ptr<IMsgIDException> clone() const override { return std::make_unique<Exception>(*this); }
  [[noreturn]] void rethrow() const override { throw *this; }

 private:
  M m_record;
  std::string m_sentence;
};

/// Reports that a description could not be allocated.
[[noreturn]] TESSEL_EXPORT void bad_alloc();

}  // namespace groundwork::except
