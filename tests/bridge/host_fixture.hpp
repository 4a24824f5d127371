// The fixture of the bridge's tests: a host that has just loaded the library, and the census once it is shut down.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidPackage.hpp"
#include "corvid/Host.hpp"
#include "corvid/HostError.hpp"
#include "corvid/Invocation.hpp"
#include "kestrel/Array.hpp"
#include "plinth/bridge/ElementBinding.hpp"
#include "tessel_config_datamodel/bridge/EntryPoints.hpp"

namespace plinth::bridge {

using corvid::CorvidClass;
using corvid::CorvidPackage;
using corvid::Identifier;
using corvid::internal::makeInterned;

class BridgeTest : public ::testing::Test {
 protected:
  void SetUp() override { MLInitialize_tessel_config_datamodel(); }
  void TearDown() override {
    MLTerminate_tessel_config_datamodel();
    EXPECT_EQ(corvid::liveObjectCount(), 0);
    ASSERT_NO_THROW(corvid::shutDown());
    EXPECT_EQ(corvid::liveDescriptionCount(), 0);
    EXPECT_EQ(kestrel::liveArrayCount(), 0);
  }

  static CorvidClass& classNamed(std::string const& name) { return CorvidClass::requireClass(makeInterned(name)); }
  static kestrel::OwnedArray get(kestrel::OwnedArray const& self, char const* name) {
    return corvid::getProperty(*self, corvid::requireProperty(*corvid::classOf(*self), makeInterned(name)));
  }
  static void set(kestrel::OwnedArray const& self, char const* name, kestrel::OwnedArray const& value) {
    corvid::setProperty(*self, corvid::requireProperty(*corvid::classOf(*self), makeInterned(name)), *value);
  }
  static kestrel::OwnedArray call(kestrel::OwnedArray const& self, char const* name, corvid::Inputs inputs = {},
                                  bool wantsOutput = true) {
    inputs.insert(inputs.begin(), self.get());
    return corvid::invoke(*corvid::classOf(*self), makeInterned(name), inputs, wantsOutput);
  }
  static kestrel::OwnedArray announce(ModelElement const& element) { return announceElement(element, Identifier()); }
  static kestrel::OwnedArray text(char16_t const* value) { return kestrel::createChar(value); }

  /// The identifier of the error that a function ends with, "none" without one.
  template <class Function>
  static std::string errorOf(Function&& function) {
    try {
      function();
    } catch (std::exception const& error) {
      return corvid::describeError(error).identifier;
    }
    return "none";
  }
};

}  // namespace plinth::bridge
