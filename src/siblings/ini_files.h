// The INI files of a plugin: what one operation changes reaches the disk as one change.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "base/runtime_error.h"
#include "siblings/file_layer.h"
#include "siblings/ini_text.h"

namespace rotacasts::host {

/// Within an operation a file is read once, later reads see what has been written since, and all
/// of it is put on the disk together. Outside of one every change is on the disk at once.
/// Errors are those of the layer, and 321 for a file that is no Windows-1252 text.
class IniFiles {
 public:
  /// `layer` outlives this.
  explicit IniFiles(FileLayer& layer) : layer_(layer) {}

  /// Runs an operation and puts what it has changed on the disk. Where another program has changed
  /// a file since it was read, the file is left as it is and the operation run again on what it
  /// holds now; so before it does what must not be done twice it asks Flush. Returns the error that
  /// has kept changes from the disk, where they are dropped; what the operation itself throws
  /// passes, and the changes that are not on the disk by then are dropped too. An operation within
  /// another belongs to that one.
  std::optional<RuntimeError> Run(const std::function<void()>& operation);
  /// Puts what has been changed so far on the disk, before it is told of. False when the operation
  /// will be run again: then it is not to be told of yet. Raises what Run will return.
  bool Flush();
  /// The same before an error is told of, raising nothing. From then on every change is on the disk
  /// at once: someone may take his time over an error.
  bool Settle();

  /// Calls `read` with the file's text, empty when there is no such file.
  void Read(const std::string& path, const std::function<void(const IniText&)>& read);
  /// Has `change` change it.
  template <class Function>
  void Change(const std::string& path, const Function& change) {
    if (!isRunning_) {
      const auto failure = Run([&] { Change(path, change); });
      if (failure) throw RuntimeError(*failure);
    } else {
      change(ToChange(path));
      if (isSettled_) Flush();
    }
  }
  /// Whether there is such a file, or will be once the operation has ended.
  bool Exists(const std::string& path);

  /// What lies beneath, for files of other kinds.
  FileLayer& Layer() { return layer_; }

 private:
  struct Image {
    IniText text;
    bool exists = false;
    FileBytes seen = {};  // before the first change
  };
  class Running;

  Image ReadImage(const std::string& path);
  Image& ImageOf(const std::string& path);
  IniText& ToChange(const std::string& path);
  void DropImages();
  void Store(const std::string& path, Image& image);

  FileLayer& layer_;
  // Of the operation that runs:
  bool isRunning_ = false;
  bool isSettled_ = false;
  std::optional<std::string> changedByOther_;  // the file for which it must be run again
  std::optional<RuntimeError> failure_;
  std::map<std::string, Image> images_;              // by path
  decltype(images_)::value_type* latest_ = nullptr;  // that was asked for; most often the next too
};

}  // namespace rotacasts::host
