// Replaces one file with another, and loses nothing that other programs save meanwhile.
#pragma once

#include "files/linux/descriptor.h"
#include "files/native_files.h"

namespace rotacasts::host {

/// One replacement of `target`, which is no link. The contract is ReplaceFile's.
class AtomicReplace {
 public:
  explicit AtomicReplace(std::filesystem::path target);
  ~AtomicReplace();
  AtomicReplace(const AtomicReplace&) = delete;
  AtomicReplace& operator=(const AtomicReplace&) = delete;

  Replaced Run(std::string_view bytes, const FileBytes* seen);

 private:
  void WriteBeside(std::string_view bytes, const FileBytes* seen);
  /// Gives the new file the rights of the old one, or of the folder.
  void ShareRights(const Descriptor& file);
  void RefuseReadOnly(const struct stat& status) const;

  /// Whether the target holds what was seen and nobody writes it. Errors: see ReplaceFile.
  bool IsStill(const FileBytes& seen) const;
  void WaitUntilQuiet(const Descriptor& file) const;

  // These put the new file in the target's place. They return false if another program has changed
  // the target, which then has its place again.
  bool Exchange(std::string_view bytes, const std::string& seen);
  bool ReplaceByTurns(const std::string& seen);

  /// Takes the new file away again, because the old one has been changed. Returns true if that is
  /// impossible: the new file stays then.
  bool PutBack(std::string_view bytes);
  /// Exchanges both files' names. Returns 0 or the errno value.
  int ExchangeNames() const;
  /// Gives the other file a visible name and warns of it, in these words.
  void Keep(const std::string& words);
  void Warn(const std::string& words);
  void FlushFolder();

  const std::filesystem::path target_;
  const std::filesystem::path folderPath_;
  const Descriptor folder_;  // to flush it
  const int folderProblem_;  // errno, if it cannot be opened
  std::string beside_;       // the other file, while there is one that may be removed
  timespec writtenAt_{};     // when the new file was, by the file system's clock
  std::string warning_;
};

}  // namespace rotacasts::host
