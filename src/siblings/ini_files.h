// The INI files of a plugin: what one operation changes reaches the disk as one change.
#pragma once

#include <functional>
#include <string>

#include "siblings/ini_operation.h"

namespace rotacasts::host {

/// Within an operation a file is read once, later reads see what has been written since, and all
/// of it is put on the disk together. Outside of one, every call reads and writes the disk.
/// Errors are those of ReadImage and the layer.
class IniFiles {
 public:
  /// `layer` outlives this.
  explicit IniFiles(FileLayer& layer) : layer_(layer) {}

  /// Runs an operation and puts what it has changed on the disk. Where another program has changed
  /// a file since it was read, the file is left as it is and the operation run again on what it
  /// holds now; so before it does what must not be done twice it asks Flush. Returns the error that
  /// has kept changes from the disk, where they are dropped; what the operation itself throws
  /// passes, and the changes that are not on the disk by then are dropped too.
  ///
  /// An operation within another settles that one and is its own; but within a run that will be
  /// repeated it counts for nothing either, because it will be run again with it.
  std::optional<RuntimeError> Run(const std::function<void()>& operation);

  // What an operation does between its changes; without one there is nothing to do. False when it
  // is to be run again: then nothing is to be told of yet.
  /// Puts what has been changed so far on the disk, before it is told of. Raises what prevents it.
  bool Flush();
  /// The same before an error is told of, raising nothing. It ends the operation for good: from
  /// then on each call reads and writes the disk, because someone may take his time over an error.
  bool Settle();
  /// Puts what has been changed so far on the disk, for an operation that asks whether it is
  /// stored. Raises what prevents it; that is no failure of the operation, unless it tells of an
  /// error next.
  void Confirm();

  /// Calls `read` with the file's text, empty when there is no such file.
  void Read(const std::string& path, const std::function<void(const IniText&)>& read);
  /// Has `change` change it.
  void Change(const std::string& path, const std::function<void(IniText&)>& change);
  /// Whether there is such a file, or will be once the operation has ended.
  bool Exists(const std::string& path);

  /// While it lives, `tell` gets the error of each change that cannot be put on the disk, before it
  /// is raised, and what is not as it should be about one that was. An inner listener takes its
  /// place.
  class Listener {
   public:
    Listener(IniFiles& files, std::function<void(const RuntimeError&)> tell);
    ~Listener() { files_.listener_ = outer_; }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

   private:
    friend class IniFiles;
    IniFiles& files_;
    const std::function<void(const RuntimeError&)> tell_;
    Listener* const outer_;
  };

  /// What lies beneath, for files of other kinds.
  FileLayer& Layer() { return layer_; }

 private:
  bool RunOnce(const std::function<void()>& operation, bool isLast,
               std::optional<RuntimeError>& failure);

  FileLayer& layer_;
  IniOperation* operation_ = nullptr;  // the innermost one
  Listener* listener_ = nullptr;
};

}  // namespace rotacasts::host
