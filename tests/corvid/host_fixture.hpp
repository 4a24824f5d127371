// The fixture of the host's tests: a fresh host with the zoo registered, and the census at the end of each test.
#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <string>

#include "corvid/Host.hpp"
#include "corvid/HostError.hpp"
#include "corvid/Invocation.hpp"
#include "kestrel/Array.hpp"
#include "zoo.hpp"
#include "zoo_classes.hpp"

namespace corvid {

class HostTest : public ::testing::Test {
 protected:
  void SetUp() override {
    zoo::calls = {};
    zoo::registerZoo();
  }
  void TearDown() override {
    EXPECT_EQ(liveObjectCount(), 0);
    ASSERT_NO_THROW(shutDown());
    EXPECT_EQ(zoo::Animal::instances, 0);
    EXPECT_EQ(liveDescriptionCount(), 0);
    EXPECT_EQ(kestrel::liveArrayCount(), 0);
  }

  static CorvidClass& classNamed(char const* name) { return CorvidClass::requireClass(internal::makeInterned(name)); }
  static CorvidClass& animalClass() { return classNamed("zoo.residents.Animal"); }
  static kestrel::OwnedArray newAnimal(char const* className = "zoo.residents.Animal") {
    return construct(classNamed(className), {});
  }

  static kestrel::OwnedArray get(kestrel::OwnedArray const& self, char const* name) {
    return getProperty(*self, requireProperty(*classOf(*self), internal::makeInterned(name)));
  }
  static void set(kestrel::OwnedArray const& self, char const* name, kestrel::OwnedArray const& value) {
    setProperty(*self, requireProperty(*classOf(*self), internal::makeInterned(name)), *value);
  }
  static kestrel::OwnedArray call(kestrel::OwnedArray const& self, char const* name, Inputs inputs = {}) {
    inputs.insert(inputs.begin(), self.get());
    return invoke(*classOf(*self), internal::makeInterned(name), inputs);
  }

  /// The identifier of the error that a function ends with, "none" without one.
  template <class Function>
  static std::string errorOf(Function&& function) {
    try {
      function();
    } catch (std::exception const& error) {
      ErrorDescription const description = describeError(error);
      EXPECT_GT(description.sentence.size(), 10u);
      return description.identifier;
    }
    return "none";
  }
};

}  // namespace corvid
