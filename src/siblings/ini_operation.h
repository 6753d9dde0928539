// One operation on INI files: what it has changed, until that is on the disk.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "base/runtime_error.h"
#include "siblings/file_layer.h"
#include "siblings/ini_text.h"

namespace rotacasts::host {

/// A file as it was read, empty when it does not exist, and as it has been changed since.
struct IniImage {
  IniText text;
  bool exists = false;
  FileBytes seen = {};  // before the first change
};

/// Reads a file. Errors are those of the layer, and 321 for a file that is no Windows-1252 text.
IniImage ReadImage(FileLayer& layer, const std::string& path);

/// One run of an operation. It begins with Collecting and leaves that state at most once.
class IniOperation {
 public:
  enum class State {
    Collecting,  // its own reads see what it has changed; the disk does not yet
    Settled,     // what it has changed is on the disk, and each further call goes there by itself
    InConflict,  // another program has saved a file that it has changed: what this run does counts
                 // for nothing, and the operation is run again
    Failed,      // what it has changed is dropped, because it could not be stored: calls read the
                 // disk, and a change raises the reason
  };

  /// `layer` outlives it. In the last run a conflict is no state but error 70. `onProblem` is told
  /// why a change could not be stored, before that is raised, and what is not as it should be
  /// about one that was.
  IniOperation(FileLayer& layer, bool isLastRun, std::function<void(const RuntimeError&)> onProblem)
      : layer_(layer), isLastRun_(isLastRun), onProblem_(std::move(onProblem)) {}

  bool IsInConflict() const { return state_ == State::InConflict; }
  /// The reason why what it has changed is not on the disk, once it has failed.
  std::optional<RuntimeError> Failure() const;

  /// The file as the operation sees it; null where that is the disk's.
  IniText* Image(const std::string& path);
  /// The same, to change it.
  IniText* ImageToChange(const std::string& path);
  /// Whether the operation has made or changed the file, and the disk does not show it yet.
  bool HasChanged(const std::string& path) const;

  /// Stores what has been changed, because the operation asks whether it is stored. Raises why it
  /// is not: the operation knows then and goes on, unless that ends it in an error (see Settle).
  void Confirm();
  /// Stores what has been changed, because it is told of next. Raises why it is not, also if that
  /// was found before; the operation has failed then.
  void Flush();
  /// Stores what has been changed and ends the collecting, because an error is told of next.
  void Settle();
  /// The same at the end of the run.
  void End();

 private:
  void Store();
  void StoreImage(const std::string& path, IniImage& image);
  void DropImages();

  FileLayer& layer_;
  const bool isLastRun_;
  const std::function<void(const RuntimeError&)> onProblem_;
  State state_ = State::Collecting;
  std::optional<RuntimeError> failure_;
  std::map<std::string, IniImage> images_;           // by path
  decltype(images_)::value_type* latest_ = nullptr;  // that was asked for; most often the next too
};

}  // namespace rotacasts::host
