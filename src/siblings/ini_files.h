// The plugin's INI files. What one operation changes reaches the disk as one change.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "base/runtime_error.h"
#include "siblings/file_layer.h"
#include "siblings/ini_text.h"

namespace rotacasts::host {

/// Within an operation, each file is read once, later reads see earlier writes, and all changes are
/// written together. Outside an operation, every change is written at once. Errors: those of the
/// layer, and 321 for a file that is not Windows-1252 text.
class IniFiles {
 public:
  /// `layer` must outlive it.
  explicit IniFiles(FileLayer& layer) : layer_(layer) {}

  /// Runs an operation and writes its changes to the disk. A nested operation joins the outer one.
  /// If another program has changed a file since it was read, leaves the file alone and runs the
  /// operation again on its new contents. The operation must therefore call Flush before it does
  /// anything that must not happen twice.
  /// Returns the error that prevented writing; nullopt if there was none. Errors: those of the
  /// operation. After either, changes that are not on the disk are dropped.
  std::optional<RuntimeError> Run(const std::function<void()>& operation);
  /// Writes the changes so far, so that they can be reported. Returns false if the operation will
  /// run again, so that nothing may be reported yet. Errors: those that Run will return.
  bool Flush();
  /// Like Flush, but never throws; called before an error is reported. Afterwards every change is
  /// written at once, because somebody may take long to answer the error.
  bool Settle();

  /// Calls `read` with the file's text, which is empty if there is no such file.
  void Read(const std::string& path, const std::function<void(const IniText&)>& read);
  /// Calls `change` with the file's text, to change it. Errors, outside an operation: those of Run.
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
  /// Whether the file exists, or will once the operation has ended.
  bool Exists(const std::string& path);

  /// The layer below, for other kinds of files.
  FileLayer& Layer() { return layer_; }

 private:
  struct Image {
    IniText text;
    bool exists = false;
    FileBytes seen = {};  // as it was before the first change
  };
  class Running;

  Image ReadImage(const std::string& path);
  Image& ImageOf(const std::string& path);
  IniText& ToChange(const std::string& path);
  void DropImages();
  void Store(const std::string& path, Image& image);

  FileLayer& layer_;
  // Of the current operation:
  bool isRunning_ = false;
  bool isSettled_ = false;
  std::optional<std::string> changedByOther_;  // the file because of which it runs again
  std::optional<RuntimeError> failure_;
  std::map<std::string, Image> images_;              // by path
  decltype(images_)::value_type* latest_ = nullptr;  // used last and probably next
};

}  // namespace rotacasts::host
