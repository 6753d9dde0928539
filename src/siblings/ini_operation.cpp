#include "siblings/ini_operation.h"

namespace rotacasts::host {

IniImage ReadImage(FileLayer& layer, const std::string& path) {
  FileBytes bytes = layer.Read(path);
  const bool exists = bytes.has_value();
  return {IniOf(path, exists ? std::move(*bytes) : ""), exists};
}

std::optional<RuntimeError> IniOperation::Failure() const {
  return state_ == State::Failed ? failure_ : std::nullopt;
}

IniText* IniOperation::Image(const std::string& path) {
  if (state_ == State::Settled || state_ == State::Failed) return nullptr;
  if (latest_ == nullptr || latest_->first != path) {
    auto known = images_.find(path);
    if (known == images_.end()) known = images_.emplace(path, ReadImage(layer_, path)).first;
    latest_ = &*known;
  }
  return &latest_->second.text;
}

IniText* IniOperation::ImageToChange(const std::string& path) {
  if (state_ == State::Failed) throw RuntimeError(*failure_);
  IniText* const text = Image(path);
  if (text != nullptr && !text->IsChanged()) {
    IniImage& image = latest_->second;
    image.seen.reset();
    if (image.exists) image.seen = text->Bytes();
  }
  return text;
}

bool IniOperation::HasChanged(const std::string& path) const {
  const auto known = images_.find(path);
  return known != images_.end() && known->second.text.IsChanged();
}

void IniOperation::Confirm() {
  if (state_ == State::Collecting) Store();
}

void IniOperation::Flush() {
  if (state_ == State::Failed) throw RuntimeError(*failure_);
  try {
    Confirm();
  } catch (...) {
    state_ = State::Failed;
    throw;
  }
}

void IniOperation::Settle() {
  if (state_ == State::Collecting && failure_) state_ = State::Failed;
  End();
}

void IniOperation::End() {
  if (state_ != State::Collecting) return;
  try {
    Store();
    if (state_ != State::Collecting) return;
    state_ = State::Settled;
    DropImages();
  } catch (...) {  // it is kept
    state_ = State::Failed;
  }
}

void IniOperation::Store() {
  try {
    for (auto& [path, image] : images_) {
      if (state_ == State::Collecting) StoreImage(path, image);
    }
  } catch (...) {
    failure_ = CurrentRuntimeError();
    DropImages();
    onProblem_(*failure_);
    throw;
  }
}

void IniOperation::StoreImage(const std::string& path, IniImage& image) {
  if (!image.text.IsChanged()) return;
  const std::string bytes = image.text.Bytes();
  Replaced replaced;
  if (image.seen != bytes) replaced = layer_.Replace(path, bytes, &image.seen);
  if (!replaced.warning.empty()) {
    onProblem_(RuntimeError(static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
                            std::move(replaced.warning)));
  }
  if (replaced.isDone) {
    image.text.MarkUnchanged();
    image.exists = true;
    return;
  }
  if (isLastRun_) {
    throw RuntimeError(ErrorNumber::PermissionDenied,
                       NativePath(path).string() +
                           " is being changed by another program all the time; try again later");
  }
  state_ = State::InConflict;
}

void IniOperation::DropImages() {
  latest_ = nullptr;
  images_.clear();
}

}  // namespace rotacasts::host
