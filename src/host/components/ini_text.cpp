#include "host/components/ini_text.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "base/text.h"
#include "host/machine/native_files.h"

namespace rotacasts::host {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::string_view TrimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

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

/// Steps through the lines and tells what each one is.
class IniText::Cursor {
 public:
  explicit Cursor(std::string_view bytes, std::size_t at = 0) : bytes_(bytes), next_(at) {}

  /// Moves to the next line; false behind the last one. A line ends at CR LF, LF or CR.
  bool Next() {
    begin_ = next_;
    if (begin_ >= bytes_.size()) return false;
    const std::size_t feed = std::min(bytes_.find('\n', begin_), bytes_.size());
    const std::size_t carriage = bytes_.substr(begin_, feed - begin_).find('\r');
    end_ = carriage == bytes_.npos ? feed : begin_ + carriage;
    next_ = std::min(end_ + (end_ + 1 == feed ? 2 : 1), bytes_.size());
    return true;
  }

  /// Moves to the header line of the section; false when there is none.
  bool FindSection(std::string_view section) {
    while (Next()) {
      const std::optional<std::string_view> header = Header();
      if (header && EqualsIgnoringCase(*header, section)) return true;
    }
    return false;
  }

  /// Moves on to the next line of the section that the cursor stands in; false at its end.
  bool NextInSection() { return Next() && !Header(); }

  /// Moves to the first line of the section that holds the key; false when there is none.
  bool FindKey(std::string_view key) {
    while (NextInSection()) {
      const std::optional<Line> line = KeyLine();
      if (line && EqualsIgnoringCase(line->key, key)) return true;
    }
    return false;
  }

  std::string_view Text() const { return bytes_.substr(begin_, end_ - begin_); }
  std::size_t Begin() const { return begin_; }
  std::size_t NextBegin() const { return next_; }

  /// The section's name if the line is a section header.
  std::optional<std::string_view> Header() const {
    const std::string_view text = TrimBlanks(Text());
    if (!text.starts_with('[')) return std::nullopt;
    const auto close = text.find(']');
    if (close == text.npos) return std::nullopt;
    return TrimBlanks(text.substr(1, close - 1));
  }

  /// Key and value if the line holds them.
  std::optional<Line> KeyLine() const {
    const std::string_view text = Text();
    const auto equals = text.find('=');
    if (equals == text.npos) return std::nullopt;
    const std::string_view key = TrimBlanks(text.substr(0, equals));
    if (key.starts_with(';') || key.starts_with('#')) return std::nullopt;
    return Line{key, text.substr(equals + 1)};
  }

 private:
  std::string_view bytes_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t next_ = 0;
};

std::vector<std::string_view> IniText::Sections() const {
  std::vector<std::string_view> sections;
  for (Cursor cursor(bytes_); cursor.Next();) {
    if (const auto header = cursor.Header()) sections.push_back(*header);
  }
  return sections;
}

std::vector<IniText::Line> IniText::Lines(std::string_view section) const {
  std::vector<Line> lines;
  Cursor cursor(bytes_);
  if (!cursor.FindSection(section)) return lines;
  while (cursor.NextInSection()) {
    if (const std::optional<Line> line = cursor.KeyLine()) lines.push_back(*line);
  }
  return lines;
}

std::optional<std::string_view> IniText::Value(std::string_view section,
                                               std::string_view key) const {
  Cursor cursor(bytes_);
  if (!cursor.FindSection(section) || !cursor.FindKey(key)) return std::nullopt;
  return cursor.KeyLine()->value;
}

std::vector<IniText::Row> IniText::Rows() const {
  std::vector<Row> rows;
  for (Cursor cursor(bytes_); cursor.Next();) {
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
  const auto newLine = [&](std::string_view before) {
    return std::string(before).append(key).append("=").append(value).append(kLineEnd);
  };
  const auto endsInLine = [&](std::size_t at) {
    return at == 0 || kLineEnd.find(bytes_[at - 1]) != kLineEnd.npos;
  };

  Cursor cursor(bytes_);
  if (!cursor.FindSection(section)) {
    std::string block = endsInLine(bytes_.size()) ? "" : std::string(kLineEnd);
    block.append("[").append(section).append("]").append(kLineEnd);
    Replace(bytes_.size(), 0, newLine(block));
    return;
  }
  std::size_t behindLast = cursor.NextBegin();  // behind the section's last line that is not blank
  while (cursor.NextInSection()) {
    const std::optional<Line> line = cursor.KeyLine();
    if (line && EqualsIgnoringCase(line->key, key)) {
      const auto at = static_cast<std::size_t>(line->value.data() - bytes_.data());
      Replace(at, line->value.size(), value);
      return;
    }
    if (!TrimBlanks(cursor.Text()).empty()) behindLast = cursor.NextBegin();
  }
  Replace(behindLast, 0, newLine(endsInLine(behindLast) ? "" : kLineEnd));
}

void IniText::RemoveKey(std::string_view section, std::string_view key) {
  Cursor cursor(bytes_);
  if (!cursor.FindSection(section) || !cursor.FindKey(key)) return;
  Replace(cursor.Begin(), cursor.NextBegin() - cursor.Begin(), "");
}

void IniText::RemoveSection(std::string_view section) {
  Cursor cursor(bytes_);
  if (!cursor.FindSection(section)) return;
  const std::size_t begin = cursor.Begin();
  while (cursor.NextInSection()) {
  }
  Replace(begin, cursor.Begin() - begin, "");  // Begin is the next header's, or the end
}

void IniText::Replace(std::size_t at, std::size_t length, std::string_view replacement) {
  if (std::string_view(bytes_).substr(at, length) == replacement) return;
  bytes_.replace(at, length, replacement);
  changed_ = true;
}

IniText ReadIni(const std::string& path) {
  std::string bytes = ReadWholeFile(path).value_or("");
  RefuseNonText(path, bytes);
  return IniText(std::move(bytes));
}

}  // namespace rotacasts::host
