// What a method takes and gives: host data types by name, with argument names and optional trailing arguments.
// Thread rule: the host's thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "corvid/HostAllocated.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"

namespace corvid {

class TESSEL_EXPORT CorvidMethodSignature : public HostAllocated {
 public:
  void addInput(Identifier dataType) { m_inputs.push_back(dataType); }
  void addOutput(Identifier dataType) { m_outputs.push_back(dataType); }
  /// Names separated by blanks; none or as many as there are inputs.
  void setArgumentNames(std::string_view names);
  /// That many of the last inputs may be left out. The host converts one that is given where it can, and otherwise
  /// passes it as it is: optional arguments may come in several forms and orders, and only the method can tell which is
  /// wrong.
  void setOptionalTrailing(std::size_t count) { m_optionalTrailing = count; }

  std::vector<Identifier> const& inputs() const noexcept { return m_inputs; }
  std::vector<Identifier> const& outputs() const noexcept { return m_outputs; }
  std::vector<std::string> const& argumentNames() const noexcept { return m_argumentNames; }

  std::size_t maximumInputs() const noexcept { return m_inputs.size(); }
  std::size_t minimumInputs() const noexcept;
  bool accepts(std::size_t count) const noexcept { return count >= minimumInputs() && count <= maximumInputs(); }

 private:
  std::vector<Identifier> m_inputs;
  std::vector<Identifier> m_outputs;
  std::vector<std::string> m_argumentNames;
  std::size_t m_optionalTrailing = 0;
};

}  // namespace corvid
