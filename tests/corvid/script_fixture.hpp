// The fixture of the front end's tests: an interpreter on the zoo, and the census once it is closed.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "Interpreter.hpp"
#include "corvid/Host.hpp"
#include "kestrel/ArrayBase.hpp"
#include "zoo.hpp"
#include "zoo_classes.hpp"

namespace luafront {

class ScriptTest : public ::testing::Test {
 protected:
  void SetUp() override {
    zoo::registerZoo();
    m_interpreter = std::make_unique<Interpreter>(m_output, m_errors);
    run("residents = zoo.residents  Animal, Cat, Place = residents.Animal, residents.Cat, residents.Place");
  }
  void TearDown() override {
    m_interpreter.reset();
    EXPECT_EQ(corvid::liveObjectCount(), 0);
    EXPECT_EQ(zoo::Animal::instances, 0);
    ASSERT_NO_THROW(corvid::shutDown());
    EXPECT_EQ(kestrel::liveArrayCount(), 0);
    EXPECT_EQ(corvid::liveDescriptionCount(), 0);
  }

  /// Runs a script that checks itself with assert.
  void run(std::string const& script) { EXPECT_TRUE(m_interpreter->runText(script, "=script")) << takeErrors(); }
  /// Runs a script that has to fail, and gives what was written of it.
  std::string failureOf(std::string const& script) {
    EXPECT_FALSE(m_interpreter->runText(script, "=script")) << script;
    return takeErrors();
  }
  std::string takeErrors() {
    std::string const written = m_errors.str();
    m_errors.str("");
    return written;
  }

  std::ostringstream m_output;
  std::ostringstream m_errors;
  std::unique_ptr<Interpreter> m_interpreter;
};

}  // namespace luafront
