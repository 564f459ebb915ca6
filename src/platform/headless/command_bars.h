#pragma once
// The headless IDE's command bars: one bar, "Add-Ins", that add-ins fill
// with their menus, and a way for the host to pick a menu item by captions.
#include <memory>
#include <string>
#include <vector>

#include "platform/headless/event_hub.h"
#include "platform/ide.h"

namespace sentrune::headless {

class HeadlessControls;

class HeadlessControl : public platform::CommandBarControl,
                        public std::enable_shared_from_this<HeadlessControl> {
 public:
  HeadlessControl(int type, std::weak_ptr<HeadlessControls> parent, std::weak_ptr<EventHub> events);

  int Type() const override { return type_; }
  std::string Caption() const override { return caption_; }
  void SetCaption(const std::string& caption) override { caption_ = caption; }
  bool BeginGroup() const override { return beginGroup_; }
  void SetBeginGroup(bool beginGroup) override { beginGroup_ = beginGroup; }
  bool Enabled() const override { return enabled_; }
  void SetEnabled(bool enabled) override { enabled_ = enabled; }
  bool Visible() const override { return visible_; }
  void SetVisible(bool visible) override { visible_ = visible; }
  std::string Tag() const override { return tag_; }
  void SetTag(const std::string& tag) override { tag_ = tag; }
  rt::Status Delete() override;
  std::shared_ptr<platform::CommandBarControls> Controls() override;

  const std::shared_ptr<HeadlessControls>& Children() const { return children_; }
  bool IsDeleted() const { return deleted_; }
  // Marks this control and everything below it deleted.
  void MarkDeleted();

 private:
  int type_;
  std::weak_ptr<HeadlessControls> parent_;
  std::weak_ptr<EventHub> events_;
  std::shared_ptr<HeadlessControls> children_;  // pop-ups only
  std::string caption_;
  std::string tag_;
  bool beginGroup_ = false;
  bool enabled_ = true;
  bool visible_ = true;
  bool deleted_ = false;
};

class HeadlessControls : public platform::CommandBarControls,
                         public std::enable_shared_from_this<HeadlessControls> {
 public:
  explicit HeadlessControls(std::weak_ptr<EventHub> events) : events_(std::move(events)) {}

  std::vector<std::shared_ptr<platform::CommandBarControl>> Items() override;
  rt::Result<std::shared_ptr<platform::CommandBarControl>> Add(int type) override;

  // Takes a control out of the list; false when it is not there.
  bool Remove(const HeadlessControl* control);
  // The list of a deleted pop-up takes no new controls.
  void MarkDeleted();
  // The first visible control with this caption, both compared without
  // their "&" and without regard to case; null when there is none.
  std::shared_ptr<HeadlessControl> FindCaption(const std::string& caption) const;

 private:
  std::weak_ptr<EventHub> events_;
  std::vector<std::shared_ptr<HeadlessControl>> controls_;
  bool deleted_ = false;
};

class HeadlessCommandBar : public platform::CommandBar {
 public:
  HeadlessCommandBar(std::string name, std::weak_ptr<EventHub> events)
      : name_(std::move(name)), controls_(std::make_shared<HeadlessControls>(std::move(events))) {}
  std::string Name() const override { return name_; }
  std::shared_ptr<platform::CommandBarControls> Controls() override { return controls_; }
  const std::shared_ptr<HeadlessControls>& Items() const { return controls_; }

 private:
  std::string name_;
  std::shared_ptr<HeadlessControls> controls_;
};

class HeadlessCommandBars : public platform::CommandBars {
 public:
  // Starts with an empty "Add-Ins" bar.
  explicit HeadlessCommandBars(std::weak_ptr<EventHub> events);
  std::shared_ptr<platform::CommandBar> Item(const std::string& name) override;

  const std::shared_ptr<HeadlessControls>& AddIns() const { return bars_.front()->Items(); }

 private:
  std::vector<std::shared_ptr<HeadlessCommandBar>> bars_;
};

}  // namespace sentrune::headless
