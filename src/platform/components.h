// The host suite's two components and the file-system object: the operations that the plugin calls,
// in the components' argument order.
//
// A non-const reference crosses the component boundary by reference: the component may change it,
// and the plugin never relies on that. Every operation raises the component's error as a
// RuntimeError. All calls happen on the user-interface thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/host_value.h"

namespace rotacasts {

/// Reads a game server's memory, sends chat to it, encodes and decodes texts.
class MemoryComponent {
 public:
  static constexpr const char* kProgId = "tvxQMR.clsMemory";
  virtual ~MemoryComponent() = default;

  /// The 32-bit value at `address` in the process.
  virtual std::int32_t ReadLong(std::int32_t& processHandle, std::int32_t address) = 0;
  /// The text at `address`; the component decides where it ends.
  virtual std::string ReadStr(std::int32_t& processHandle, std::int32_t address) = 0;

  /// Sends `text` as a chat message to the game server of a profile whose game code is "DFBHD".
  virtual void AddMsg(std::int16_t& profileIndex, std::int32_t& messageTarget, std::string& text,
                      bool& isAffiliate, const std::string& kind, std::int16_t mode) = 0;
  /// Like AddMsg, for every other game code.
  virtual void AddMsgB(std::int16_t& profileIndex, std::int32_t& messageTarget, std::string& text,
                       bool& isAffiliate, const std::string& kind, std::int16_t mode,
                       std::string& gameCode) = 0;

  /// Base64 of the text; holds no "|".
  virtual std::string Enc64(const std::string& text) = 0;
  /// The inverse of Enc64.
  virtual std::string Dec64(const std::string& text) = 0;
};

/// Reads and writes INI and text files, logs and reports errors.
class UtilityComponent {
 public:
  static constexpr const char* kProgId = "tvxZDL.clsZDF";
  virtual ~UtilityComponent() = default;

  /// A key to write: a text, a number (written in decimal) or null.
  using Key = std::variant<std::monostate, std::string, std::int32_t>;
  static constexpr std::monostate kNullKey{};

  /// The key's value; empty if the file, the section or the key is missing.
  virtual std::string GetIniKey(const std::string& section, const std::string& key,
                                std::string& file) = 0;
  /// Writes the key, creating the file and the section if necessary; a new key goes to the
  /// section's end. A null value (not an empty one) removes the key, a null key and value remove
  /// the section.
  virtual void WriteIniKey(const std::string& section, const Key& key,
                           const std::optional<std::string>& value, std::string& file) = 0;
  /// The section's lines as "key=value" in file order, followed by one element that is not a line.
  /// A section without lines gives fewer than two elements.
  virtual std::vector<std::string> GetIniSection(const std::string& section, std::string& file) = 0;
  /// Splits such a line at its first "=". Returns the array of key and value if `asPair`, else the
  /// value. May use up `line` unless it raises an error.
  virtual HostValue ParseIniKey(std::string&& line, bool asPair) = 0;

  /// The lines of a text file.
  virtual std::vector<std::string> ReadFile(std::string& file) = 0;
  /// Appends `text` as one line at the end of an existing file.
  virtual void AppendFile(const std::string& file, const std::string& text) = 0;

  /// Records an error in the host suite's error log.
  virtual void LogError(const std::string& module, std::string& procedure, RuntimeError& error,
                        std::int32_t& line) = 0;
  /// Forwards a six-element error report; true if it was delivered.
  virtual bool SendErrorReport(HostValue& report) = 0;
};

/// The platform's file-system object. Paths are absolute, with backslashes.
class FileSystemObject {
 public:
  static constexpr const char* kProgId = "Scripting.FileSystemObject";
  virtual ~FileSystemObject() = default;

  virtual bool FileExists(const std::string& path) = 0;
  virtual bool FolderExists(const std::string& path) = 0;
  /// Creates one folder. Errors: 76 if its parent is missing, 58 if it exists, 70 if access is
  /// denied.
  virtual void CreateFolder(const std::string& path) = 0;
  /// Creates an empty text file in the system's single-byte character set and closes it. Errors: 76
  /// if its folder is missing, 58 if it exists (it stays as it was), 70 if access is denied.
  virtual void CreateTextFile(const std::string& path) = 0;
};

}  // namespace rotacasts
