// A function of a script as a value of the host: what a method with an input of the data type "function" is given.
// Ownership: counted, as every object in a host array; it may outlive the script, and a call then raises an error.
// Thread rule: the host's thread.
#pragma once

#include <vector>

#include "corvid/CorvidMethodInfo.hpp"
#include "groundwork/export.hpp"
#include "kestrel/Object.hpp"

namespace corvid {

class TESSEL_EXPORT Callable : public kestrel::Object {
 public:
  /// Runs the function. An error of the script comes out as an exception, which the method lets pass: the caller's
  /// script sees its own error again. A method that opens something before the call closes it when the exception
  /// passes.
  virtual std::vector<kestrel::OwnedArray> call(Inputs const& inputs) = 0;
  /// The same for who hands the results back to the script and doesn't look at them: nothing is converted, and so
  /// nothing fails once the function has returned. By default what `call` gives.
  virtual std::vector<kestrel::OwnedArray> callForScript(Inputs const& inputs) { return call(inputs); }

  /// "function".
  Identifier className() const noexcept final;
  void* native(Identifier className) const noexcept final;

  /// The function in an array of the data type "function". Raises WrongType.
  static Callable& in(kestrel_array const& array);

 protected:
  ~Callable() = default;
};

}  // namespace corvid
