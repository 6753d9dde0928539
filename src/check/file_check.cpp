#include "check/file_check.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "base/runtime_error.h"
#include "base/text.h"
#include "base/word_list.h"
#include "files/native_files.h"
#include "siblings/file_layer.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool IsAscii(char letter) {
  return static_cast<unsigned char>(letter) < 0x80;
}

/// Whether the bytes are UTF-8 and mean another text in Windows-1252.
bool IsUtf8(std::string_view bytes) {
  return IsValidUtf8(bytes) && !std::all_of(bytes.begin(), bytes.end(), IsAscii);
}

}  // namespace

FileCheck::FileCheck(std::string path, std::vector<std::string>& warnings)
    : path_(std::move(path)), warnings_(warnings) {
  try {
    const auto bytes = ReadWholeFile(path_);
    if (bytes && IsUtf8(*bytes)) {
      ReadUtf8(*bytes);
    } else {
      ini_ = ReadIni(path_);
    }
  } catch (const RuntimeError& error) {
    isReadable_ = false;
    Warn(1, PlainWords(error));
  }
}

void FileCheck::ReadUtf8(std::string bytes) {
  const bool isMarked = bytes.starts_with(kUtf8Mark);
  if (isMarked) bytes.erase(0, kUtf8Mark.size());
  ini_ = IniText(ToWindows1252(bytes, '?'));
  std::string remedy = "; \"check --fix\" converts it and keeps a copy";
  try {
    ToWindows1252(bytes);
  } catch (const RuntimeError& error) {
    remedy = "; before it can be converted: " + PlainWords(error);
  }
  if (isMarked) ReadIni(path_);  // throws: a file with a mark cannot be used
  const auto first = std::find_if_not(bytes.begin(), bytes.end(), IsAscii);
  const auto line = static_cast<std::size_t>(std::count(bytes.begin(), first, '\n')) + 1;
  const auto at = static_cast<std::size_t>(first - bytes.begin());
  const auto begin = bytes.find_last_of("=\r\n", at) + 1;  // npos + 1 is 0
  const std::string text = bytes.substr(begin, bytes.find_first_of("\r\n", at) - begin);
  Warn(line, "it is a UTF-8 file: for \"" + text + "\" players read \"" + FromWindows1252(text) +
                 "\"" + remedy);
}

void FileCheck::Warn(std::size_t line, const std::string& words) {
  warnings_.push_back(NativePath(path_).string() + ":" + std::to_string(line) + ": " + words);
}

void FileCheck::CheckLines() {
  std::set<std::string> sections;
  const std::vector<IniText::Row> rows = ini_.Rows();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string name = FromWindows1252(rows[i].name);
    const std::string_view rest = TrimSpaces(rows[i].rest);
    if (rows[i].kind == IniText::Row::Kind::Unknown) {
      Warn(i + 1,
           "the line is ignored because it has no \"=\"; write KEY=TEXT, or \";\" before it");
    }
    if (rows[i].kind != IniText::Row::Kind::Heading) continue;
    if (!rest.empty() && !rest.starts_with(';') && !rest.starts_with('#')) {
      Warn(i + 1, "the line is taken for the heading of a section \"" + name +
                      "\", and what follows belongs to that; write a key and \"=\" before it");
    } else if (!sections.insert(LowerCase(name)).second) {
      Warn(i + 1, "the section [" + name +
                      "] stands here again and is ignored; move its lines to the first one");
    }
  }
}

void FileCheck::CheckKeys(std::string_view section, const std::vector<std::string>& known) {
  std::set<std::string> met;
  const std::vector<IniText::Row> rows = ini_.Rows();
  bool isInside = false;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const bool isHeading = rows[i].kind == IniText::Row::Kind::Heading;
    if (isHeading && isInside) break;
    if (isHeading) isInside = EqualsIgnoringCase(rows[i].name, section);
    if (!isInside || rows[i].kind != IniText::Row::Kind::Key) continue;
    const std::string name = FromWindows1252(rows[i].name);
    const bool isKnown = std::ranges::any_of(
        known, [&](const std::string& key) { return EqualsIgnoringCase(key, name); });
    if (!isKnown) {
      Warn(i + 1, "\"" + name + "\" is ignored; the section has the keys " + Join(known, ", "));
    } else if (!met.insert(LowerCase(name)).second) {
      Warn(i + 1, name + " stands here again and is ignored; remove one of them");
    }
  }
}

std::string ConvertFromUtf8(const std::string& path) {
  if (!MachineFiles().FileExists(path)) return {};
  const std::string bytes = ReadWholeFile(path).value_or("");
  if (!IsUtf8(bytes)) return {};
  std::string copy = path + ".utf-8";
  for (int number = 2; MachineFiles().FileExists(copy); ++number) {
    copy = path + ".utf-8." + std::to_string(number);
  }
  const std::string_view text =
      std::string_view(bytes).substr(bytes.starts_with(kUtf8Mark) ? 3 : 0);
  const std::string converted = ToWindows1252(text);
  // The copy is for the same readers: one of the administrators holds their passwords.
  std::filesystem::copy_file(NativePath(path), NativePath(copy));
  ReplaceFile(copy, bytes);
  ReplaceFile(path, converted);
  return copy;
}

std::string FindFile(const std::string& folder, const std::string& name,
                     std::vector<std::string>& warnings) {
  std::string path = folder + "\\" + name;
  MachineFiles files;
  if (files.FileExists(path)) return path;
  std::error_code problem;
  for (const auto& entry : std::filesystem::directory_iterator(NativePath(folder), problem)) {
    const std::string found = entry.path().filename().string();
    if (found == name && entry.is_symlink(problem) && !entry.exists(problem)) {
      warnings.push_back(entry.path().string() +
                         ": is a link that leads to no file; make the file, or remove the link");
    } else if (found == name) {
      warnings.push_back(entry.path().string() + ": is no file and is ignored; put a file there");
    } else if (EqualsIgnoringCase(found, name)) {
      warnings.push_back(entry.path().string() + ": is ignored; rename it to " + name);
    }
  }
  return {};
}

}  // namespace rotacasts::host
