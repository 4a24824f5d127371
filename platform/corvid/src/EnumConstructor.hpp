// The constructor that the host itself gives to every enumeration class: a member from a member, from the text of a
// literal, or from a number of the underlying type.
#pragma once

#include "corvid/CorvidMethodInfo.hpp"

namespace corvid {

class CorvidClass;

class EnumConstructor final : public CorvidMethodInfo {
 public:
  explicit EnumConstructor(CorvidClass const& hostClass);

  Identifier getName() const override;
  std::string const& getDescription() const override { return m_description; }
  unsigned getAttributes() const override { return 0; }
  CorvidMethodSignature const& getSignature() const override { return m_signature; }
  /// Raises WrongType for a text that is no literal and for whatever is neither text nor number.
  void invoke(MethodCall& call) const override;

 private:
  CorvidClass const& m_class;
  std::string m_description;
  CorvidMethodSignature m_signature;
};

}  // namespace corvid
