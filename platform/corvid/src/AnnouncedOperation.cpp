// Operations that a class announces to the host by name, with or without a body.
#include "corvid/CorvidClass.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/CorvidMethod.hpp"

namespace corvid {
namespace {

// Takes whatever it is called with, and only reports.
class BodilessMethod final : public factory::CorvidMethod {
 public:
  static constexpr std::size_t ANY_NUMBER_OF_INPUTS = 16;

  BodilessMethod(Identifier className, Identifier name)
      : CorvidMethod(name, factory::MethodAttributes(), lenientSignature()), m_className(className) {}

  void invoke(MethodCall&) const override {
    throw HostError(ErrorKey::NOT_IMPLEMENTED,
                    "Class '" + m_className.text() + "' has no body for the method '" + getName().text() + "'.");
  }

 private:
  static std::unique_ptr<CorvidMethodSignature> lenientSignature() {
    auto signature = std::make_unique<CorvidMethodSignature>();
    for (std::size_t i = 0; i < ANY_NUMBER_OF_INPUTS; ++i) signature->addInput(internal::makeInterned("any"));
    signature->setOptionalTrailing(ANY_NUMBER_OF_INPUTS);
    return signature;
  }

  Identifier m_className;
};

// A method under the name and signature of its announcement.
class AnnouncedMethod final : public factory::CorvidMethod {
 public:
  AnnouncedMethod(Identifier name, std::unique_ptr<CorvidMethodInfo> body,
                  std::unique_ptr<CorvidMethodSignature> signature)
      : CorvidMethod(name, factory::MethodAttributes(body->getAttributes()), std::move(signature)),
        m_body(std::move(body)) {}

  void invoke(MethodCall& call) const override { m_body->invoke(call); }

 private:
  std::unique_ptr<CorvidMethodInfo> m_body;
};

}  // namespace

void CorvidClass::announceOperation(Identifier name, std::unique_ptr<CorvidMethodInfo> method,
                                    std::unique_ptr<CorvidMethodSignature> signature) {
  if (method == nullptr) return addMethod(std::make_unique<BodilessMethod>(m_fullName, name));
  if (signature == nullptr) signature = std::make_unique<CorvidMethodSignature>(method->getSignature());
  addMethod(std::make_unique<AnnouncedMethod>(name, std::move(method), std::move(signature)));
}

}  // namespace corvid
