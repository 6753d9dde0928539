#include "siblings/ini_text.h"

#include "base/runtime_error.h"
#include "machine/native_files.h"

namespace rotacasts::host {
namespace {

[[noreturn]] void RaiseNoText(const std::string& path, const char* reason) {
  throw RuntimeError(ErrorNumber::InvalidFileFormat,
                     NativePath(path).string() + " " + reason + "; save it as plain ANSI text");
}

void RefuseNonText(const std::string& path, std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) {
    RaiseNoText(path, "is a UTF-8 file, which \"check --fix\" converts");
  }
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
    RaiseNoText(path, "is a UTF-16 file");
  }
  if (bytes.find('\0') != bytes.npos) RaiseNoText(path, "holds NUL bytes");
}

}  // namespace

IniText::IniText(std::string bytes) : bytes_(std::move(bytes)) {}

// An open section refers to bytes_, so it is closed before a move.
IniText::IniText(IniText&& other) noexcept {
  *this = std::move(other);
}
IniText& IniText::operator=(IniText&& other) noexcept {
  other.Close();
  open_.reset();
  bytes_ = std::move(other.bytes_);
  lastChanged_ = std::move(other.lastChanged_);
  changed_ = other.changed_;
  return *this;
}

const std::string& IniText::Bytes() const {
  Close();
  return bytes_;
}

void IniText::Close() const {
  if (!open_) return;
  std::string bytes = open_->FileBytes();
  open_.reset();
  bytes_ = std::move(bytes);
}

IniSection* IniText::Open(std::string_view section) {
  if (open_ && open_->Is(section)) return open_.get();
  Close();
  const bool isAgain = EqualsIgnoringCase(lastChanged_, section);
  lastChanged_ = section;
  IniCursor cursor(bytes_);
  if (!isAgain || !cursor.FindSection(section)) return nullptr;
  open_ = std::make_unique<IniSection>(lastChanged_, bytes_, cursor);
  return open_.get();
}

std::vector<std::string_view> IniText::Sections() const {
  std::vector<std::string_view> sections;
  for (IniCursor cursor(Bytes()); cursor.Next();) {
    if (const auto header = cursor.Header()) sections.push_back(*header);
  }
  return sections;
}

std::vector<IniLine> IniText::Lines(std::string_view section) const {
  if (open_ && open_->Is(section)) return open_->Lines();
  std::vector<IniLine> lines;
  IniCursor cursor(Bytes());
  if (!cursor.FindSection(section)) return lines;
  while (cursor.NextInSection()) {
    if (const std::optional<IniLine> line = cursor.KeyLine()) lines.push_back(*line);
  }
  return lines;
}

std::optional<std::string_view> IniText::Value(std::string_view section,
                                               std::string_view key) const {
  if (open_ && open_->Is(section)) return open_->Value(key);
  IniCursor cursor(Bytes());
  if (!cursor.FindSection(section) || !cursor.FindKey(key)) return std::nullopt;
  return cursor.KeyLine()->value;
}

std::vector<IniText::Row> IniText::Rows() const {
  std::vector<Row> rows;
  for (IniCursor cursor(Bytes()); cursor.Next();) {
    Row& row = rows.emplace_back();
    const std::string_view text = TrimBlanks(cursor.Text());
    if (const auto header = cursor.Header()) {
      row = {Row::Kind::Heading, *header, text.substr(text.find(']') + 1)};
    } else if (const auto line = cursor.KeyLine()) {
      row = {Row::Kind::Key, line->key, line->value};
    } else if (!text.empty() && !text.starts_with(';') && !text.starts_with('#')) {
      row.kind = Row::Kind::Unknown;
    }
  }
  return rows;
}

std::size_t IniText::LineOf(std::string_view section, std::string_view key) const {
  std::size_t heading = 0;
  const std::vector<Row> rows = Rows();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row& row = rows[i];
    if (row.kind == Row::Kind::Heading && heading != 0) break;
    if (row.kind == Row::Kind::Heading && EqualsIgnoringCase(row.name, section)) heading = i + 1;
    const bool isKey = row.kind == Row::Kind::Key && heading != 0;
    if (isKey && EqualsIgnoringCase(row.name, key)) return i + 1;
  }
  return std::max<std::size_t>(heading, 1);
}

void IniText::SetValue(std::string_view section, std::string_view key, std::string_view value) {
  if (IniSection* open = Open(section)) {
    changed_ = open->Set(key, value) || changed_;
    return;
  }
  const auto insert = [&](std::size_t at, const std::string& heading) {
    const bool isAtBegin = EndsInLine(std::string_view(bytes_).substr(0, at));
    std::string lines = (isAtBegin ? "" : std::string(kIniLineEnd)) + heading;
    for (const std::string_view part : NewIniLine(key, value)) lines += part;
    Replace(at, 0, lines);
  };
  IniCursor cursor(bytes_);
  if (!cursor.FindSection(section)) {
    insert(bytes_.size(), "[" + std::string(section) + "]" + std::string(kIniLineEnd));
    return;
  }
  std::size_t behindLast = cursor.NextBegin();  // after the section's last non-blank line
  while (cursor.NextInSection()) {
    const std::optional<IniLine> line = cursor.KeyLine();
    if (line && EqualsIgnoringCase(line->key, key)) {
      const auto at = static_cast<std::size_t>(line->value.data() - bytes_.data());
      Replace(at, line->value.size(), value);
      return;
    }
    if (!TrimBlanks(cursor.Text()).empty()) behindLast = cursor.NextBegin();
  }
  insert(behindLast, "");
}

void IniText::RemoveKey(std::string_view section, std::string_view key) {
  if (IniSection* open = Open(section)) {
    changed_ = open->Remove(key) || changed_;
    return;
  }
  IniCursor cursor(bytes_);
  if (!cursor.FindSection(section) || !cursor.FindKey(key)) return;
  Replace(cursor.Begin(), cursor.NextBegin() - cursor.Begin(), "");
}

void IniText::RemoveSection(std::string_view section) {
  Close();
  IniCursor cursor(bytes_);
  if (!cursor.FindSection(section)) return;
  const std::size_t begin = cursor.Begin();
  while (cursor.NextInSection()) {
  }
  Replace(begin, cursor.Begin() - begin, "");  // now at the next header, or at the end
}

void IniText::Replace(std::size_t at, std::size_t length, std::string_view replacement) {
  if (std::string_view(bytes_).substr(at, length) == replacement) return;
  bytes_.replace(at, length, replacement);
  changed_ = true;
}

IniText IniOf(const std::string& path, std::string bytes) {
  RefuseNonText(path, bytes);
  return IniText(std::move(bytes));
}

IniText ReadIni(const std::string& path) {
  return IniOf(path, ReadWholeFile(path).value_or(""));
}

}  // namespace rotacasts::host
