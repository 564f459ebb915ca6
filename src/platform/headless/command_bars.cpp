#include "platform/headless/command_bars.h"

#include "runtime/text.h"

namespace sentrune::headless {
namespace {

std::string WithoutAccelerator(const std::string& caption) {
  std::string out;
  for (size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&' && i + 1 < caption.size()) ++i;  // "&&" is a literal "&"
    out += caption[i];
  }
  return out;
}

rt::VbError Gone() { return rt::MakeError(rt::errnum::kInvalidProcedureCall, "The menu control was deleted"); }

}  // namespace

HeadlessControl::HeadlessControl(int type, std::weak_ptr<HeadlessControls> parent, std::weak_ptr<EventHub> events)
    : type_(type), parent_(std::move(parent)), events_(std::move(events)) {
  if (type_ == platform::msoControlPopup) children_ = std::make_shared<HeadlessControls>(events_);
}

rt::Status HeadlessControl::Delete() {
  const auto parent = parent_.lock();
  if (deleted_ || !parent || !parent->Remove(this)) return Gone();
  MarkDeleted();
  return {};
}

void HeadlessControl::MarkDeleted() {
  deleted_ = true;
  if (const auto events = events_.lock()) events->ForgetControl(this);
  if (children_) children_->MarkDeleted();
}

std::shared_ptr<platform::CommandBarControls> HeadlessControl::Controls() { return children_; }

std::vector<std::shared_ptr<platform::CommandBarControl>> HeadlessControls::Items() {
  return {controls_.begin(), controls_.end()};
}

rt::Result<std::shared_ptr<platform::CommandBarControl>> HeadlessControls::Add(int type) {
  if (deleted_) return Gone();
  if (type != platform::msoControlButton && type != platform::msoControlPopup)
    return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                         "Unsupported command bar control type " + std::to_string(type));
  controls_.push_back(std::make_shared<HeadlessControl>(type, weak_from_this(), events_));
  return std::shared_ptr<platform::CommandBarControl>(controls_.back());
}

bool HeadlessControls::Remove(const HeadlessControl* control) {
  return std::erase_if(controls_, [control](const auto& item) { return item.get() == control; }) > 0;
}

std::shared_ptr<HeadlessControl> HeadlessControls::FindCaption(const std::string& caption) const {
  const std::string wanted = WithoutAccelerator(caption);
  for (const auto& control : controls_)
    if (control->Visible() && rt::IEquals(WithoutAccelerator(control->Caption()), wanted)) return control;
  return nullptr;
}

void HeadlessControls::MarkDeleted() {
  deleted_ = true;
  for (const auto& control : controls_) control->MarkDeleted();
}

HeadlessCommandBars::HeadlessCommandBars(std::weak_ptr<EventHub> events) {
  bars_.push_back(std::make_shared<HeadlessCommandBar>("Add-Ins", std::move(events)));
}

std::shared_ptr<platform::CommandBar> HeadlessCommandBars::Item(const std::string& name) {
  for (const auto& bar : bars_)
    if (rt::IEquals(bar->Name(), name)) return bar;
  return nullptr;
}

}  // namespace sentrune::headless
