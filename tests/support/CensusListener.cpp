// Counts elements and models around every test, and fails the test that leaves some behind. What a suite's set-up or a
// static object keeps is there before the test starts and doesn't count. Ownership: GoogleTest owns the listener.
// Thread rule: a test's own threads have ended when the test has.
#include <gtest/gtest.h>

#include "plinth/diagnostics/Census.hpp"

namespace {

class CensusListener : public ::testing::EmptyTestEventListener {
 public:
  void OnTestStart(::testing::TestInfo const&) override { m_before = plinth::census(); }

  void OnTestEnd(::testing::TestInfo const&) override {
    plinth::Census const left = plinth::surplus(m_before, plinth::census());
    if (left.elements() == 0 && left.models == 0 && left.others == 0) return;
    ADD_FAILURE() << "The test leaves behind:\n" << left.text();
  }

 private:
  plinth::Census m_before;
};

bool const isRegistered = [] {
  ::testing::UnitTest::GetInstance()->listeners().Append(new CensusListener());
  return true;
}();

}  // namespace
