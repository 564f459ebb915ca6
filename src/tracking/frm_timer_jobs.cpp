#include "tracking/frm_timer_jobs.h"

#include <cstdio>
#include <utility>

#include "runtime/vb_convert.h"
#include "runtime/winpath.h"
#include "settings/options_handler.h"

namespace sentrune {
namespace {

constexpr const char* kSizeKey = "TimedJobs";
constexpr std::array<int32_t, 3> kDesignedColWidths{35, 69, 78};

std::string ColWidthKey(size_t column) { return std::string(kSizeKey) + "_ColWidth" + std::to_string(column + 1); }

int32_t StoredSize(OptionsHandler& options, const std::string& key, int32_t fallback) {
  return rt::CLng(options.GetOption(key, std::to_string(fallback))).value_or(fallback);
}

}  // namespace

std::string frmTimerJobs::FormatElapsed(int32_t seconds) {
  const int64_t total = seconds;
  const int64_t magnitude = total < 0 ? -total : total;
  char text[32];
  std::snprintf(text, sizeof text, "%s%04lld:%02lld:%02lld", total < 0 ? "-" : "",
                static_cast<long long>(magnitude / 3600), static_cast<long long>(magnitude / 60 % 60),
                static_cast<long long>(magnitude % 60));
  return text;
}

void frmTimerJobs::FillList() {
  view_ = platform::FormView{};
  view_.kind = platform::FormView::Kind::kGrid;
  view_.headers = {"Item", "Component", "Elapsed Time"};
  std::string project;
  if (jetClass_ != nullptr) {
    jetClass_->LoadTimerJobs();
    project = rt::GetFileTitle(rt::StripExtension(jetClass_->CurrentDBName()));
    int item = 0;
    for (const auto& entry : jetClass_->TimerJobs()) {
      platform::GridRow row;
      row.cells = {std::to_string(++item), entry.item.Key(), FormatElapsed(entry.item.ElapsedSeconds())};
      view_.rows.push_back(std::move(row));
    }
  }
  view_.caption = "Time Tracking - [" + project + "]";
}

void frmTimerJobs::Show() {
  LoadSize();
  FillList();
  state_.ui().ShowForm(view_);
  SaveSize();
}

void frmTimerJobs::LoadSize() {
  height = StoredSize(options_, std::string(kSizeKey) + "_Height", -1);
  width = StoredSize(options_, std::string(kSizeKey) + "_Width", -1);
  for (size_t column = 0; column < colWidths.size(); ++column) {
    const int32_t stored = StoredSize(options_, ColWidthKey(column), -1);
    colWidths[column] = stored < 0 ? kDesignedColWidths[column] : stored;
  }
}

void frmTimerJobs::SaveSize() {
  options_.SaveOption(std::string(kSizeKey) + "_Height", std::to_string(height));
  options_.SaveOption(std::string(kSizeKey) + "_Width", std::to_string(width));
  for (size_t column = 0; column < colWidths.size(); ++column)
    options_.SaveOption(ColWidthKey(column), std::to_string(colWidths[column]));
}

}  // namespace sentrune
