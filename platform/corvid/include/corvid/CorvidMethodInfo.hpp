// The description of one method of a class, and one call of it.
// Thread rule: the host's thread.
#pragma once

#include <string>
#include <vector>

#include "corvid/CorvidMethodSignature.hpp"
#include "corvid/HostAllocated.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid {

/// Borrowed arrays; null for an argument that is left out.
using Inputs = std::vector<kestrel_array const*>;

/// The arguments and the results of one call. Inputs are of the signature's data types already, but for optional ones
/// that could not be converted or are left out; an instance method has its object as the first of them. Of optional
/// ones at the end that are left out there is none.
class TESSEL_EXPORT MethodCall {
 public:
  MethodCall(Inputs const& inputs, bool wantsOutput, kestrel_array* newObject = nullptr)
      : m_inputs(inputs), m_wantsOutput(wantsOutput), m_newObject(newObject) {}

  std::size_t inputCount() const noexcept { return m_inputs.size(); }
  /// An empty double for one that is left out.
  kestrel_array const& input(std::size_t index) const;
  bool isLeftOut(std::size_t index) const { return m_inputs.at(index) == nullptr; }

  /// False when the caller drops the result: a method may then save making it.
  bool wantsOutput() const noexcept { return m_wantsOutput; }
  void setOutput(kestrel::OwnedArray output) { m_output = std::move(output); }
  /// For a method of several results: one more behind the first.
  void addOutput(kestrel::OwnedArray output) { m_furtherOutputs.push_back(std::move(output)); }
  /// Null when the method gave no result.
  [[nodiscard]] kestrel::OwnedArray takeOutput() { return std::move(m_output); }
  [[nodiscard]] std::vector<kestrel::OwnedArray> takeFurtherOutputs() { return std::move(m_furtherOutputs); }

  /// For a constructor: the array of the script object that waits to be bound. Raises BadDescription in any other call.
  kestrel_array& newObject() const;

 private:
  Inputs const& m_inputs;
  bool m_wantsOutput;
  kestrel_array* m_newObject;
  kestrel::OwnedArray m_output;
  std::vector<kestrel::OwnedArray> m_furtherOutputs;
  mutable kestrel::OwnedArray m_leftOut;
};

class TESSEL_EXPORT CorvidMethodInfo : public HostAllocated {
 public:
  virtual ~CorvidMethodInfo();

  virtual Identifier getName() const = 0;
  virtual std::string const& getDescription() const = 0;
  /// Bits of MethodAttribute.
  virtual unsigned getAttributes() const = 0;
  virtual CorvidMethodSignature const& getSignature() const = 0;
  virtual void invoke(MethodCall& call) const = 0;
};

/// The bits of a method's attribute word that the host knows.
namespace MethodAttribute {
/// Has no effect on the model or on its object.
constexpr unsigned PURE = 0x2;
/// Belongs to the class, not to one object.
constexpr unsigned STATIC = 0x8;
/// Works as any other, and is left out of listings.
constexpr unsigned HIDDEN = 0x200;
/// Judges its own self: the host converts it if it can, and passes it as it is if it can't.
constexpr unsigned LENIENT_SELF = 0x1000;
}  // namespace MethodAttribute

}  // namespace corvid
