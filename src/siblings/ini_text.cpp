#include "siblings/ini_text.h"

#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "files/native_files.h"

namespace rotacasts::host {
namespace {

constexpr std::size_t kUsualLine = 32;  // bytes; only a guess at the number of rows

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

/// Ignores letter case.
std::uint32_t HashOf(std::string_view key) {
  std::uint32_t hash = 2166136261;  // FNV-1a
  for (const char c : key) {
    const auto byte = static_cast<unsigned char>(c);
    hash = (hash ^ (byte >= 'A' && byte <= 'Z' ? byte + 32U : byte)) * 16777619;
  }
  return hash;
}

}  // namespace

void IniText::StoredRow::Set(std::string_view bytes, std::size_t sizeOfEnd) {
  whole = bytes;
  endSize = static_cast<std::uint8_t>(sizeOfEnd);
  static_cast<Row&>(*this) = ParseIniRow(Text());
}

IniText::IniText(std::string bytes)
    : original_(std::make_unique<const std::string>(std::move(bytes))) {
  rows_.reserve(original_->size() / kUsualLine + 1);
  for (IniLines lines(*original_); lines.Next();) {
    rows_.emplace_back().Set(lines.Whole(), lines.EndSize());
  }
}

std::string IniText::Bytes() const {
  if (isOriginal_) return *original_;
  std::string bytes;
  bytes.reserve(original_->size());
  for (const StoredRow& row : rows_) {
    if (!row.isGone) bytes += row.whole;
  }
  return bytes;
}

IniText::Range IniText::Find(std::string_view section) const {
  Range range;
  for (Number row = 0; row < rows_.size(); ++row) {
    if (!rows_[row].IsIn(Row::Kind::Heading)) continue;
    if (range.heading != kNone) return {range.heading, row};
    if (EqualsIgnoringCase(rows_[row].name, section)) range.heading = row;
  }
  range.end = static_cast<Number>(rows_.size());
  return range;
}

IniText::Number IniText::Find(std::string_view section, std::string_view key) const {
  const bool isChanging = IsChanging(section);
  if (isChanging && !buckets_.empty()) return FindInBucket(key).row;
  const Range range = isChanging ? range_ : Find(section);
  if (range.heading == kNone) return kNone;
  for (Number row = range.heading + 1; row < range.end; ++row) {
    if (rows_[row].IsIn(Row::Kind::Key) && EqualsIgnoringCase(rows_[row].name, key)) return row;
  }
  return kNone;
}

std::vector<std::string_view> IniText::Sections() const {
  std::vector<std::string_view> sections;
  for (const StoredRow& row : rows_) {
    if (row.IsIn(Row::Kind::Heading)) sections.push_back(row.name);
  }
  return sections;
}

std::vector<IniText::Line> IniText::Lines(std::string_view section) const {
  std::vector<Line> lines;
  const Range range = IsChanging(section) ? range_ : Find(section);
  if (range.heading == kNone) return lines;
  lines.reserve(range.end - range.heading);
  for (Number row = range.heading + 1; row < range.end; ++row) {
    if (rows_[row].IsIn(Row::Kind::Key)) lines.push_back({rows_[row].name, rows_[row].rest});
  }
  return lines;
}

std::optional<std::string_view> IniText::Value(std::string_view section,
                                               std::string_view key) const {
  const Number row = Find(section, key);
  return row != kNone ? std::optional(rows_[row].rest) : std::nullopt;
}

std::vector<IniText::Row> IniText::Rows() const {
  std::vector<Row> rows;
  for (const StoredRow& row : rows_) {
    if (!row.isGone) rows.push_back(row);
  }
  return rows;
}

std::size_t IniText::LineOf(std::string_view section, std::string_view key) const {
  const Number keyed = Find(section, key);
  const Number row = keyed != kNone ? keyed : Find(section).heading;
  if (row == kNone) return 1;
  return 1 + static_cast<std::size_t>(
                 std::count_if(rows_.begin(), rows_.begin() + row,
                               [](const StoredRow& before) { return !before.isGone; }));
}

bool IniText::IsChanging(std::string_view section) const {
  return range_.heading != kNone && EqualsIgnoringCase(section_, section);
}

void IniText::BeginChange(std::string_view section) {
  if (!IsChanging(section)) {
    section_ = section;
    range_ = Find(section);
    buckets_.clear();
  } else if (buckets_.empty()) {
    BuildIndex();
  }
}

void IniText::BuildIndex() {
  std::size_t count = 16;
  while (count < std::size_t{2} * (range_.end - range_.heading)) count *= 2;
  buckets_.assign(count, kNone);
  for (Number row = range_.end; --row > range_.heading;) {  // so that a key's first row is first
    if (!rows_[row].IsIn(Row::Kind::Key)) continue;
    rows_[row].hash = HashOf(rows_[row].name);
    PutInBucket(row);
  }
}

void IniText::PutInBucket(Number row) {
  Number& first = buckets_[rows_[row].hash & (buckets_.size() - 1)];
  rows_[row].next = std::exchange(first, row);
}

IniText::Found IniText::FindInBucket(std::string_view key) const {
  const std::uint32_t hash = HashOf(key);
  Found found{buckets_[hash & (buckets_.size() - 1)]};
  while (found.row != kNone &&
         (rows_[found.row].hash != hash || !EqualsIgnoringCase(rows_[found.row].name, key))) {
    found = {rows_[found.row].next, found.row};
  }
  return found;
}

void IniText::SetValue(std::string_view section, std::string_view key, std::string_view value) {
  BeginChange(section);
  const Number found = Find(section, key);
  if (found == kNone) {
    if (range_.heading == kNone) {
      EndLineBefore(static_cast<Number>(rows_.size()));
      range_.heading = static_cast<Number>(rows_.size());
      Insert(range_.heading, Keep({"[", section, "]", kIniLineEnd}));
      range_.end = range_.heading + 1;
    }
    return Append(key, value);
  }
  StoredRow& row = rows_[found];
  if (row.rest == value) return;
  const auto size = static_cast<std::size_t>(row.rest.data() - row.whole.data());
  const std::string_view end = row.whole.substr(row.whole.size() - row.endSize);
  row.Set(Keep({row.whole.substr(0, size), value, end}), row.endSize);
  NoteChange();
}

void IniText::RemoveKey(std::string_view section, std::string_view key) {
  BeginChange(section);
  Number row = kNone;
  if (buckets_.empty()) {
    row = Find(section, key);
  } else {
    const Found found = FindInBucket(key);
    row = found.row;
    if (row == kNone) return;
    Number& link = found.before != kNone ? rows_[found.before].next
                                         : buckets_[rows_[row].hash & (buckets_.size() - 1)];
    link = rows_[row].next;
  }
  if (row == kNone) return;
  rows_[row].isGone = true;
  NoteChange();
}

void IniText::RemoveSection(std::string_view section) {
  const Range range = Find(section);
  if (range.heading == kNone) return;
  for (Number row = range.heading; row < range.end; ++row) rows_[row].isGone = true;
  range_ = {};
  NoteChange();
}

std::string_view IniText::Keep(std::initializer_list<std::string_view> parts) {
  std::size_t size = 0;
  for (const std::string_view part : parts) size += part.size();
  if (!kept_) kept_ = std::make_unique<std::pmr::monotonic_buffer_resource>();
  auto* const begin = static_cast<char*>(kept_->allocate(size, 1));
  char* end = begin;
  for (const std::string_view part : parts) end = std::copy(part.begin(), part.end(), end);
  return {begin, size};
}

void IniText::EndLineBefore(Number at) {
  while (at > 0 && rows_[at - 1].isGone) --at;
  if (at == 0 || rows_[at - 1].endSize != 0) return;
  StoredRow& row = rows_[at - 1];
  row.Set(Keep({row.whole, kIniLineEnd}), kIniLineEnd.size());
}

IniText::StoredRow& IniText::Insert(Number at, std::string_view whole) {
  StoredRow row;
  row.Set(whole, kIniLineEnd.size());
  NoteChange();
  return *rows_.insert(rows_.begin() + at, row);
}

void IniText::Append(std::string_view key, std::string_view value) {
  Number at = range_.end;  // after the last line that is not blank
  while (at > range_.heading + 1 &&
         (rows_[at - 1].isGone || TrimBlanks(rows_[at - 1].Text()).empty())) {
    --at;
  }
  EndLineBefore(at);
  StoredRow& row = Insert(at, Keep({key, "=", value, kIniLineEnd}));  // only blank rows follow
  ++range_.end;
  if (buckets_.empty()) return;
  if (range_.end - range_.heading > buckets_.size()) return BuildIndex();
  row.hash = HashOf(row.name);
  PutInBucket(at);
}

IniText IniOf(const std::string& path, std::string bytes) {
  RefuseNonText(path, bytes);
  return IniText(std::move(bytes));
}

IniText ReadIni(const std::string& path) {
  return IniOf(path, ReadWholeFile(path).value_or(""));
}

}  // namespace rotacasts::host
