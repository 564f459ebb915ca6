#pragma once
// frmTimerJobs: the elapsed time of each component of a project, one grid row
// per timer job, with the size the user last gave the form.
#include <array>
#include <cstdint>
#include <string>

#include "state/addin_state.h"
#include "platform/ui.h"
#include "tracking/jet351.h"

namespace sentrune {

class OptionsHandler;

class frmTimerJobs {
 public:
  // The state and the options store must outlive the form.
  frmTimerJobs(AddinState& state, OptionsHandler& options) : state_(state), options_(options) {}

  // The database whose jobs are shown; must outlive the form.
  void SetTheJetClass(clsJet351* jetClass) { jetClass_ = jetClass; }
  clsJet351* TheJetClass() const { return jetClass_; }

  // Reloads the jobs and rebuilds the caption, columns and rows. The caption
  // names the project after its database file ("Grid" for Grid.stn).
  void FillList();
  // Whole hours (four digits at least), minutes and seconds joined by ":":
  // 3723 gives "0001:02:03". A negative total (the clock was set back) is
  // shown with a leading "-".
  static std::string FormatElapsed(int32_t seconds);

  // Restores the size, fills the list, shows the form modally and then keeps
  // its size for the next time.
  void Show();

  const platform::FormView& View() const { return view_; }
  // The form's size (-1 keeps the designed one) and the column widths in
  // screen pixels, stored as "TimedJobs_ColWidth" and the column's number.
  int32_t height = -1;
  int32_t width = -1;
  std::array<int32_t, 3> colWidths{35, 69, 78};

 private:
  void LoadSize();
  void SaveSize();

  AddinState& state_;
  OptionsHandler& options_;
  clsJet351* jetClass_ = nullptr;
  platform::FormView view_;
};

}  // namespace sentrune
