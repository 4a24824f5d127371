// Method descriptions: name, attributes and signature; what a call does stands in a subclass, or in a function.
// Thread rule: the host's thread.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "corvid/CorvidMethodInfo.hpp"
#include "groundwork/export.hpp"

namespace corvid::factory {

/// The attribute word of a method: bits of MethodAttribute.
class MethodAttributes {
 public:
  constexpr explicit MethodAttributes(unsigned word = 0) noexcept : m_word(word) {}
  constexpr unsigned word() const noexcept { return m_word; }

 private:
  unsigned m_word;
};

class TESSEL_EXPORT CorvidMethod : public CorvidMethodInfo {
 public:
  CorvidMethod(Identifier name, MethodAttributes attributes, std::unique_ptr<CorvidMethodSignature> signature);

  Identifier getName() const override { return m_name; }
  std::string const& getDescription() const override;
  unsigned getAttributes() const override { return m_attributes.word(); }
  CorvidMethodSignature const& getSignature() const override { return *m_signature; }

 private:
  Identifier m_name;
  MethodAttributes m_attributes;
  std::unique_ptr<CorvidMethodSignature> m_signature;
};

namespace impl {

/// A constructor binds call.newObject() to a native through the binding registry. It has the short name of its class.
class TESSEL_EXPORT CorvidConstructor : public CorvidMethod {
 public:
  CorvidConstructor(Identifier name, std::unique_ptr<CorvidMethodSignature> signature)
      : CorvidMethod(name, MethodAttributes(), std::move(signature)) {}
};

/// A method that is one function.
class TESSEL_EXPORT FunctionMethod final : public CorvidMethod {
 public:
  using Function = std::function<void(MethodCall&)>;

  FunctionMethod(Identifier name, MethodAttributes attributes, std::unique_ptr<CorvidMethodSignature> signature,
                 Function function)
      : CorvidMethod(name, attributes, std::move(signature)), m_function(std::move(function)) {}

  void invoke(MethodCall& call) const override { m_function(call); }

 private:
  Function m_function;
};

class TESSEL_EXPORT Invoker {
 public:
  /// A signature of argument names (blank separated, perhaps none), a result type (empty for none) and input types, of
  /// which the last `optionalTrailing` may be left out. Raises NoSuchType.
  [[nodiscard]] static std::unique_ptr<CorvidMethodSignature> createSignature(
      std::string_view argumentNames, std::string_view resultType, std::initializer_list<std::string_view> inputTypes,
      std::size_t optionalTrailing = 0);
};

}  // namespace impl
}  // namespace corvid::factory
