#include "forms/headless/headless_toolkit.h"

#include <set>

namespace rotacasts::headless {
namespace {

using namespace forms;

/// A view without a screen: runs the form's timers and passes everything else to the toolkit.
class HeadlessView final : public FormView {
 public:
  HeadlessView(HeadlessToolkit& toolkit, Form& form, WindowHandle handle)
      : toolkit_(toolkit), form_(form), handle_(handle) {}
  ~HeadlessView() override { HeadlessView::Close(); }

  void Close() override {
    for (const std::int16_t index : running_) toolkit_.Timers().Stop(TimerId(index));
    running_.clear();
  }

  bool IsAlive() const override { return true; }
  WindowHandle Handle() const override { return handle_; }
  void SetVisible(bool) override {}
  void Added(Control&) override {}
  void Changed(Control&, Property) override {}
  void ItemsCleared(ListBox&) override {}
  void ItemAdded(ListBox&) override {}
  void ItemChanged(ListBox&, std::int32_t) override {}

  void LoadPicture(Control&, const std::string& path) override {
    if (toolkit_.onLoadPicture) toolkit_.onLoadPicture(path);
  }

  void SetTimer(std::int16_t index, std::int32_t milliseconds) override {
    if (milliseconds <= 0) {
      running_.erase(index);
      toolkit_.Timers().Stop(TimerId(index));
      return;
    }
    running_.insert(index);
    toolkit_.Timers().Start(TimerId(index), milliseconds,
                            [this, index] { form_.Timers().Tick(index); });
  }

  void PopUp(MenuItem& menu) override {
    if (!toolkit_.onPopUp) return;
    if (MenuItem* chosen = toolkit_.onPopUp(menu)) chosen->UserClicked();
  }

  TextSelection Selection(const TextBox&) const override { return {}; }

  void Edit(TextBox&, TextEdit) override {}
  std::int32_t RowAt(const ListBox& list, std::int32_t x, std::int32_t y) const override {
    return toolkit_.onRowAt ? toolkit_.onRowAt(list, x, y) : ListBox::kNone;
  }
  std::int32_t TopRow(const ListBox&) const override { return 0; }
  void ScrollTo(ListBox&, std::int32_t) override {}

 private:
  /// Several forms share a loop, so the identifier combines the form's handle and the element.
  TimerLoop::Id TimerId(std::int16_t index) const { return handle_ * 0x10000 + index; }

  HeadlessToolkit& toolkit_;
  Form& form_;
  const WindowHandle handle_;
  std::set<std::int16_t> running_;
};

}  // namespace

std::shared_ptr<FormView> HeadlessToolkit::CreateView(Form& form) {
  return std::make_shared<HeadlessView>(*this, form, ++lastHandle_);
}

void HeadlessToolkit::MoveWindow(WindowHandle window, std::int32_t x, std::int32_t y,
                                 std::int32_t width, std::int32_t height, bool) {
  Placement& placement = placements_[window];
  placement = {x, y, width, height, placement.parent};
}

void HeadlessToolkit::SetParent(WindowHandle child, WindowHandle newParent) {
  placements_[child].parent = newParent;
}

}  // namespace rotacasts::headless
