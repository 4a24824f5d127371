// The host's conversion from any value to an enumeration: the text of a literal, or a row of such texts, becomes a
// member. Thread rule: the host's thread.
#pragma once

#include "corvid/CorvidTypeRepository.hpp"
#include "groundwork/export.hpp"
#include "plinth/meta/Enum.hpp"

namespace plinth::bridge {

class TESSEL_EXPORT FromAnyAsStringTypeConverter final : public corvid::CorvidTypeConverter {
 public:
  FromAnyAsStringTypeConverter(corvid::Identifier className, meta::Enum type)
      : m_className(className), m_enum(std::move(type)) {}

  /// Null for what is no text, and for a text that is neither the name nor the public identifier of a literal.
  kestrel::OwnedArray convert(kestrel_array const& value) const override;

  /// Gives the host a converter for each of the three data types that ask for a member; one that it has is replaced.
  static void install(corvid::Identifier className, meta::Enum const& type);

 private:
  corvid::Identifier m_className;
  meta::Enum m_enum;
};

}  // namespace plinth::bridge
