// The settings window as tables: its controls and its menus, from which it is built.
#pragma once

#include <span>
#include <string_view>

#include "forms/form.h"

namespace rotacasts::layout {

inline constexpr forms::Colour kFace{236, 233, 216};
inline constexpr forms::Colour kPaper{255, 255, 255};

inline constexpr std::int32_t kClientWidth = 11190;  // twips
inline constexpr std::int32_t kClientHeight = 6000;
/// The height that the window leaves to the host's own heading above it, in pixels.
inline constexpr std::int32_t kHeadingHeight = 28;
inline constexpr const char* kFontFace = "Tahoma";
inline constexpr double kFontSize = 8.25;  // points

enum class Back { Platform, Face, Paper };

/// A control. Geometry in twips from the container's corner.
struct ControlRow {
  std::string_view name;
  forms::Kind kind;
  std::string_view container;  // a frame's name; empty for the window itself
  std::string_view text;
  forms::Rectangle bounds;
  int tabIndex;
  Back back = Back::Platform;
  int maxLength = 0;  // characters that can be typed
  forms::Alignment alignment = forms::Alignment::Left;
  std::string_view label = {};  // the label or frame that says what the control is for
};

/// Every control that exists from the start, in creation order.
std::span<const ControlRow> Controls();

/// A menu or an item. Level 1 is a popup menu, hidden from any menu bar; an item belongs to the
/// nearest row above it of the next lower level.
struct MenuRow {
  int level;
  std::string_view name;
  std::string_view caption;
  /// The placeholder that the item puts into the entry box; empty for an item that does not.
  std::string_view token = {};
};

std::span<const MenuRow> Menus();

/// Builds the controls of the table on an empty form, and the menus of theirs.
void BuildControls(forms::Form& form);
void BuildMenus(forms::Form& form);

/// The picture of the Add button, inside Frame2.
inline constexpr forms::Rectangle kAddButton{9170, 300, 1215, 495};

}  // namespace rotacasts::layout
