// What reaches the IDE from a trapped call: an HRESULT, whatever the body
// did, while faults that others handle on purpose are left to them.
#include "com_guard.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <vector>

namespace sentrune::addin {
namespace {

// The top of the address space is the system's, never the program's (page
// zero may be mapped under Wine).
HRESULT WriteToTheSystemsMemory() {
  int* volatile nowhere = reinterpret_cast<int*>(~uintptr_t{0} - 7);
  *nowhere = 1;
  return S_OK;
}

HRESULT DivideByZero() {
  volatile int seven = 7;
  volatile int zero = 0;
  volatile int quotient = seven / zero;
  return quotient == 0 ? S_OK : S_FALSE;
}

class FaultTrap : public ::testing::Test {
 protected:
  void SetUp() override {
    SetFaultReporter([this](const Fault& fault) { heard_.push_back(fault); });
  }
  void TearDown() override { SetFaultReporter(nullptr); }

  std::vector<Fault> heard_;
};

TEST_F(FaultTrap, FaultsAndExceptionsEndTheInnermostCallOnly) {
  EXPECT_EQ(Trap([] { return WriteToTheSystemsMemory(); }), E_UNEXPECTED);
  ASSERT_EQ(heard_.size(), 1u);
  EXPECT_EQ(heard_[0].code, static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION));
  EXPECT_NE(heard_[0].offset, 0u);

  // The outer call goes on after its inner one faulted, and the thread
  // can be trapped again afterwards.
  HRESULT inner = S_OK;
  EXPECT_EQ(Trap([&] {
              inner = Trap([] { return DivideByZero(); });
              return S_FALSE;
            }),
            S_FALSE);
  EXPECT_EQ(inner, E_UNEXPECTED);
  ASSERT_EQ(heard_.size(), 2u);
  EXPECT_EQ(heard_[1].code, static_cast<DWORD>(EXCEPTION_INT_DIVIDE_BY_ZERO));
  EXPECT_EQ(Trap([] { return WriteToTheSystemsMemory(); }), E_UNEXPECTED);

  EXPECT_EQ(Trap([]() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
  EXPECT_EQ(Trap([]() -> HRESULT { throw std::runtime_error("core"); }), E_UNEXPECTED);
  EXPECT_EQ(heard_.size(), 3u);
}

TEST_F(FaultTrap, LeavesFaultsOfOtherModulesToTheirOwnHandlers) {
  // The system probes the address under its own handler: that fault is
  // the system's to take, and the probe must answer.
  EXPECT_EQ(Trap([] { return IsBadReadPtr(nullptr, 4) ? S_FALSE : S_OK; }), S_FALSE);
  EXPECT_TRUE(heard_.empty());
}

}  // namespace
}  // namespace sentrune::addin
