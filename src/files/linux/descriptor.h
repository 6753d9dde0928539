// An open file of the system, and reading and writing all of it.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace rotacasts::host {

/// Raises the run-time error for `problem`, an errno value, at `path`. Errors: 70, 76, 75, 61,
/// else 57.
[[noreturn]] void RaiseFileError(int problem, const std::filesystem::path& path);

/// Errors: 75 if it is not a regular file.
void RefuseNoFile(const struct stat& status, const std::filesystem::path& path);

/// An open descriptor. Opening never waits, not even for a pipe without a writer.
class Descriptor {
 public:
  Descriptor(const std::filesystem::path& path, int flags)
      : Descriptor(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }
  int Close() { return IsOpen() ? ::close(std::exchange(descriptor_, -1)) : 0; }
  /// Errors: 75 if it is not a regular file.
  struct stat Status(const std::filesystem::path& path) const;

 private:
  int descriptor_;
};

// `path` is for errors.
void WriteAll(const Descriptor& file, std::string_view bytes, const std::filesystem::path& path);
std::string ReadAll(const Descriptor& file, const std::filesystem::path& path);

}  // namespace rotacasts::host
