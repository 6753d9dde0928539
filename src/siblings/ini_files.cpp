#include "siblings/ini_files.h"

namespace rotacasts::host {
namespace {

/// How often an operation is run before it gives up because another program keeps changing the
/// file.
constexpr int kMostRuns = 30;

}  // namespace

/// One run of an operation; cleans up before and after it.
class IniFiles::Running {
 public:
  explicit Running(IniFiles& files) : files_(files) {
    Clear();
    files_.isRunning_ = true;
  }
  ~Running() { Clear(); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  void Clear() {
    files_.isRunning_ = files_.isSettled_ = false;
    files_.changedByOther_.reset();
    files_.failure_.reset();
    files_.DropImages();
  }
  IniFiles& files_;
};

std::optional<RuntimeError> IniFiles::Run(const std::function<void()>& operation) {
  if (isRunning_) return operation(), std::nullopt;
  for (int run = 1;; ++run) {
    const Running running(*this);
    operation();
    if (Settle()) return failure_;
    if (run < kMostRuns) continue;
    return RuntimeError(ErrorNumber::PermissionDenied,
                        NativePath(*changedByOther_).string() +
                            " is being changed by another program all the time; try again later");
  }
}

bool IniFiles::Flush() {
  if (failure_) throw RuntimeError(*failure_);
  try {
    for (auto& [path, image] : images_) Store(path, image);
  } catch (...) {
    failure_ = CurrentRuntimeError();
    DropImages();
    throw;
  }
  return !changedByOther_;
}

bool IniFiles::Settle() {
  isSettled_ = true;
  try {
    return Flush();
  } catch (const RuntimeError&) {  // kept in failure_
    return true;
  }
}

void IniFiles::Store(const std::string& path, Image& image) {
  if (changedByOther_ || !image.text.IsChanged()) return;
  if (image.seen == image.text.Bytes() || layer_.Replace(path, image.text.Bytes(), &image.seen)) {
    image.text.TakeAsUnchanged();
    image.exists = true;
  } else {
    changedByOther_ = path;
  }
}

IniFiles::Image IniFiles::ReadImage(const std::string& path) {
  FileBytes bytes = layer_.Read(path);
  const bool exists = bytes.has_value();
  return {IniOf(path, exists ? std::move(*bytes) : ""), exists};
}

IniFiles::Image& IniFiles::ImageOf(const std::string& path) {
  if (latest_ == nullptr || latest_->first != path) {
    auto known = images_.find(path);
    if (known == images_.end()) known = images_.emplace(path, ReadImage(path)).first;
    latest_ = &*known;
  }
  return latest_->second;
}

void IniFiles::DropImages() {
  latest_ = nullptr;
  images_.clear();
}

void IniFiles::Read(const std::string& path, const std::function<void(const IniText&)>& read) {
  if (isRunning_) return read(ImageOf(path).text);
  read(ReadImage(path).text);
}

IniText& IniFiles::ToChange(const std::string& path) {
  Image& image = ImageOf(path);
  if (!image.text.IsChanged()) {
    image.seen.reset();
    if (image.exists) image.seen = image.text.Bytes();
  }
  return image.text;
}

bool IniFiles::Exists(const std::string& path) {
  const auto known = images_.find(path);
  return (known != images_.end() && known->second.text.IsChanged()) || layer_.FileExists(path);
}

}  // namespace rotacasts::host
