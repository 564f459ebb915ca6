#pragma once
// The pending error (VB's Err): set where an error is trapped, read by
// traces and the message routine, kept across a message box by saving and
// restoring it. Only its observable state is emulated; raising does not
// unwind anything.
#include <cstdint>
#include <string>

#include "runtime/vb_error.h"

namespace sentrune::rt {

class ErrObject {
 public:
  struct Saved {
    int32_t number = 0;
    std::string source;
    std::string description;
    std::string helpFile;
    int32_t helpContext = 0;
  };

  // Makes `number` the pending error. An empty description becomes the run
  // time's text for the number; number 0 is refused the way the run time
  // refuses it, as error 5.
  void Raise(int32_t number, std::string source = {}, std::string description = {},
             std::string helpFile = {}, int32_t helpContext = 0);
  void Set(const VbError& error);
  void Clear() { state_ = Saved{}; }

  Saved Save() const { return state_; }
  void Restore(const Saved& saved) { state_ = saved; }

  bool pending() const { return state_.number != 0; }
  int32_t number() const { return state_.number; }
  const std::string& source() const { return state_.source; }
  const std::string& description() const { return state_.description; }
  const std::string& helpFile() const { return state_.helpFile; }
  int32_t helpContext() const { return state_.helpContext; }

 private:
  Saved state_;
};

}  // namespace sentrune::rt
