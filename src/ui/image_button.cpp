#include "ui/image_button.h"

#include "base/conversions.h"

namespace rotacasts {
namespace {

constexpr std::string_view kPictureEnding = "Img";
constexpr std::string_view kDown = "Down";
constexpr std::string_view kUp = "Up";
constexpr std::int32_t kSmallestFont = 1;   // points
constexpr std::int32_t kFontByDefault = 8;  // points

// The caption within its button, in twips.
constexpr std::int32_t kInset = 75;      // from the picture's left edge
constexpr std::int32_t kNarrower = 150;  // than the picture
constexpr std::int32_t kPressedRight = 20;
constexpr std::int32_t kPressedDown = 50;

/// Where the caption lies while the button is released: its text about in the picture's middle.
forms::Rectangle CaptionBounds(const forms::Image& picture, const forms::Label& caption) {
  const forms::Rectangle& bounds = picture.Bounds();
  const double twipsPerPixel = caption.GetForm().GetToolkit().ScreenTwipsPerPixel().horizontal;
  const std::int32_t middle = RoundToLong(bounds.top + bounds.height / 2.0);
  return {bounds.left + kInset, RoundToLong(middle - caption.FontSize() * twipsPerPixel),
          bounds.width - kNarrower, bounds.height};
}

}  // namespace

void ImageButtons::ShowPicture(forms::Image& picture, std::string_view state) const {
  try {
    picture.LoadPicture(hostFolder_ +
                        (state == kDown ? "\\imgs\\butdown.gif" : "\\imgs\\butup.gif"));
  } catch (const RuntimeError&) {  // the button is more than its picture
  }
}

forms::Image& ImageButtons::CreateButtonImage(const ImageButtonArguments& arguments) const {
  auto& picture = arguments.window.Add<forms::Image>(arguments.name);
  picture.SetBounds(arguments.bounds);
  picture.SetEnabled(arguments.enabled);
  picture.SetStretched(true);
  picture.SetVisible(arguments.visible);
  picture.BringToFront();
  ShowPicture(picture, kUp);
  if (arguments.container != nullptr) picture.MoveInto(arguments.container);
  return picture;
}

forms::Label& ImageButtons::CreateButtonLabel(const ImageButtonArguments& arguments) const {
  const std::string pictureName = arguments.name + std::string(kPictureEnding);
  const auto& picture = arguments.window.Get<forms::Image>(pictureName);
  auto& caption = arguments.window.Add<forms::Label>(arguments.name);
  if (arguments.container != nullptr) caption.MoveInto(arguments.container);
  caption.SetFontSize(arguments.fontSize >= kSmallestFont ? arguments.fontSize : kFontByDefault);
  caption.SetBounds(CaptionBounds(picture, caption));
  caption.SetEnabled(arguments.enabled);
  caption.SetVisible(arguments.visible);
  caption.SetCaption(arguments.caption);
  caption.BringToFront();
  caption.SetTransparent(true);
  caption.SetAlignment(forms::Alignment::Centre);
  SetButtonState(arguments.window, pictureName, kUp);
  return caption;
}

void ImageButtons::SetButtonState(forms::Form& window, std::string_view pictureName,
                                  std::string_view state) const {
  auto& picture = window.Get<forms::Image>(pictureName);
  ShowPicture(picture, state);
  const std::string_view name = pictureName.substr(
      0, pictureName.size() - std::min(pictureName.size(), kPictureEnding.size()));
  auto& caption = window.Get<forms::Label>(name);
  forms::Rectangle bounds = CaptionBounds(picture, caption);
  if (state == kDown) {
    bounds.left += kPressedRight;
    bounds.top += kPressedDown;
  }
  caption.SetBounds(bounds);
}

}  // namespace rotacasts
