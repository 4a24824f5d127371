#include "corvid/Callable.hpp"

#include "corvid/HostError.hpp"
#include "kestrel/ObjectArray.hpp"

namespace corvid {
namespace {

Identifier functionClass() noexcept {
  static Identifier const name = internal::makeInterned("function");
  return name;
}

}  // namespace

Identifier Callable::className() const noexcept { return functionClass(); }

void* Callable::native(Identifier className) const noexcept {
  return className == functionClass() ? const_cast<Callable*>(this) : nullptr;
}

Callable& Callable::in(kestrel_array const& array) {
  if (kestrel::isObject(array) && kestrel::isScalar(array)) {
    if (auto* const callable = dynamic_cast<Callable*>(kestrel::object(array).get())) return *callable;
  }
  throw HostError(ErrorKey::WRONG_TYPE,
                  "Expected a function, not a value of the class '" + kestrel::className(array).text() + "'.");
}

}  // namespace corvid
