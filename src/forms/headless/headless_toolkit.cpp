#include "forms/headless/headless_toolkit.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "base/text.h"
#include "forms/window_messages.h"

namespace rotacasts::headless {
namespace {

using namespace forms;

/// A form without pixels: keeps what only a screen would know (text selections, running timers).
class HeadlessView final : public FormView {
 public:
  HeadlessView(HeadlessToolkit& toolkit, Form& form, WindowHandle handle)
      : toolkit_(toolkit), form_(form), handle_(handle) {}
  ~HeadlessView() override { HeadlessView::Close(); }

  void Close() override {
    for (const std::int16_t index : running_) toolkit_.Timers().Stop(TimerId(index));
    running_.clear();
  }

  WindowHandle Handle() const override { return handle_; }
  void SetVisible(bool) override {}
  void Added(Control&) override {}
  void ItemsCleared(ListBox&) override {}
  void ItemAdded(ListBox&) override {}
  void ItemChanged(ListBox&, std::int32_t) override {}

  void Changed(Control& control, Property property) override {
    if (property == Property::Text && control.GetKind() == Kind::TextBox) {
      selections_[&control] = {std::exchange(caretAfterReplacing_, std::nullopt).value_or(0), 0};
    }
  }

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

  TextSelection Selection(const TextBox& box) const override {
    const auto found = selections_.find(&box);
    return found != selections_.end() ? found->second : TextSelection{};
  }

  std::intptr_t Send(Control& control, std::uint32_t message, std::uintptr_t wParam,
                     std::intptr_t lParam) override {
    if (auto* list = dynamic_cast<ListBox*>(&control)) {
      return message == kLbItemFromPoint ? ItemFromPoint(*list, lParam) : 0;
    }
    if (auto* box = dynamic_cast<TextBox*>(&control)) Edit(*box, message, wParam, lParam);
    return 0;
  }

 private:
  /// Timers of several forms share a loop: a form's handle and the element make one number.
  TimerLoop::Id TimerId(std::int16_t index) const { return handle_ * 0x10000 + index; }

  static std::intptr_t ItemFromPoint(const ListBox& list, std::intptr_t point) {
    const auto row = static_cast<std::int32_t>(point >> 16) / kRowHeight;
    if (row < list.Count()) return row;
    return kLbOutsideItems | ((list.Count() - 1) & 0xFFFF);
  }

  void Edit(TextBox& box, std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
    switch (message) {
      case kWmCut:
        toolkit_.Clipboard() = SelectedText(box);
        return Replace(box, "");
      case kWmCopy:
        toolkit_.Clipboard() = SelectedText(box);
        return;
      case kWmPaste:
        return Replace(box, toolkit_.Clipboard());
      case kEmReplaceSel:
        return Replace(box, FromWindows1252(reinterpret_cast<const char*>(lParam)));
      case kEmSetSel: {
        const std::size_t length = CountCharacters(box.Text());
        const std::size_t end = lParam < 0 ? length : static_cast<std::size_t>(lParam);
        const std::size_t start = std::min<std::size_t>(wParam, length);
        selections_[&box] = {start, std::max(start, std::min(end, length)) - start};
        return;
      }
      default:
        return;
    }
  }

  /// The text before the selection, the selection and the text after it.
  struct Pieces {
    std::string before, selected, after;
  };

  Pieces Split(const TextBox& box) const {
    const TextSelection selection = Selection(box);
    const std::string& text = box.Text();
    const std::string_view before = FirstCharacters(text, selection.start);
    const std::string_view upTo = FirstCharacters(text, selection.start + selection.length);
    return {std::string(before), std::string(upTo.substr(before.size())), text.substr(upTo.size())};
  }

  std::string SelectedText(const TextBox& box) const { return Split(box).selected; }

  /// Replaces the selection as an edit control does: at most as much as the typing limit leaves.
  void Replace(TextBox& box, std::string_view replacement) {
    const Pieces pieces = Split(box);
    if (box.MaxLength() > 0) {
      const std::size_t kept = CountCharacters(pieces.before) + CountCharacters(pieces.after);
      replacement = FirstCharacters(replacement, box.MaxLength() - std::min(box.MaxLength(), kept));
    }
    const std::string head = pieces.before + std::string(replacement);
    caretAfterReplacing_ = CountCharacters(head);
    if (head + pieces.after == box.Text()) Changed(box, Property::Text);  // no event, a new caret
    box.UserChangedText(head + pieces.after);
  }

  HeadlessToolkit& toolkit_;
  Form& form_;
  const WindowHandle handle_;
  std::set<std::int16_t> running_;
  std::map<const Control*, TextSelection> selections_;
  std::optional<std::size_t> caretAfterReplacing_;
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
