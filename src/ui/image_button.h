// Image buttons: a picture with a transparent caption over it, in a released and a pressed look.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "forms/form.h"

namespace rotacasts {

/// What both builders take; each uses what concerns it.
struct ImageButtonArguments {
  forms::Rectangle bounds;  // of the picture, twips from the container's corner
  std::string caption;
  bool enabled = true;
  bool visible = true;
  forms::Form& window;
  std::string name;                     // of the control to create
  forms::Control* container = nullptr;  // null: the window itself
  std::int32_t fontSize = 0;            // points; below 1 stands for 8
};

/// Builds and animates the image buttons of the host installation's two pictures, which are read
/// from disk each time they are shown. A picture that cannot be read is done without: the button
/// keeps what it showed and works.
class ImageButtons {
 public:
  explicit ImageButtons(std::string hostFolder) : hostFolder_(std::move(hostFolder)) {}

  /// Creates the picture, released, in front of its siblings. By convention its name is the
  /// button's followed by "Img".
  forms::Image& CreateButtonImage(const ImageButtonArguments& arguments) const;
  /// Creates the caption over the picture named name + "Img", which must exist, and shows the
  /// button released.
  forms::Label& CreateButtonLabel(const ImageButtonArguments& arguments) const;
  /// Shows the button pressed for the state "Down", released for any other. Error 91 when either of
  /// its controls is missing.
  void SetButtonState(forms::Form& window, std::string_view pictureName,
                      std::string_view state) const;

 private:
  void ShowPicture(forms::Image& picture, std::string_view state) const;

  const std::string hostFolder_;
};

}  // namespace rotacasts
