#include "siblings/ini_section.h"

#include <algorithm>
#include <utility>

namespace rotacasts::host {
namespace {

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

IniSection::IniSection(std::string name, const std::string& bytes, IniCursor cursor)
    : name_(std::move(name)), bytes_(bytes), begin_(cursor.NextBegin()), end_(begin_) {
  while (cursor.NextInSection()) {
    Row& row = rows_.emplace_back();
    end_ = cursor.NextBegin();
    row.whole = std::string_view(bytes_).substr(cursor.Begin(), end_ - cursor.Begin());
    row.endSize = static_cast<std::uint8_t>(row.whole.size() - cursor.Text().size());
    const std::optional<IniLine> line = cursor.KeyLine();
    row.hasKey = line.has_value();
    if (line) row.hash = HashOf(line->key);
  }
  FillBuckets();
}

void IniSection::FillBuckets() {
  std::size_t count = 16;
  while (count < 2 * rows_.size()) count *= 2;
  buckets_.assign(count, kNoRow);
  for (std::size_t row = rows_.size(); row-- > 0;) {
    if (rows_[row].hasKey && !rows_[row].isGone) PutInBucket(static_cast<std::uint32_t>(row));
  }
}

void IniSection::PutInBucket(std::uint32_t row) {
  std::uint32_t& first = buckets_[rows_[row].hash & (buckets_.size() - 1)];
  rows_[row].next = std::exchange(first, row);
}

std::uint32_t& IniSection::Find(std::string_view key) {
  const std::uint32_t hash = HashOf(key);
  std::uint32_t* place = &buckets_[hash & (buckets_.size() - 1)];
  const auto isOther = [&](const Row& row) {
    return row.hash != hash || !EqualsIgnoringCase(row.KeyLine()->key, key);
  };
  while (*place != kNoRow && isOther(rows_[*place])) place = &rows_[*place].next;
  return *place;
}

std::vector<IniLine> IniSection::Lines() const {
  std::vector<IniLine> lines;
  lines.reserve(rows_.size());
  for (const Row& row : rows_) {
    if (row.hasKey && !row.isGone) lines.push_back(*row.KeyLine());
  }
  return lines;
}

std::optional<std::string_view> IniSection::Value(std::string_view key) {
  const std::uint32_t row = Find(key);
  if (row == kNoRow) return std::nullopt;
  return rows_[row].KeyLine()->value;
}

bool IniSection::Set(std::string_view key, std::string_view value) {
  const std::uint32_t found = Find(key);
  if (found == kNoRow) {
    Append(key, value);
    return true;
  }
  Row& row = rows_[found];
  const std::string_view old = row.KeyLine()->value;
  if (old == value) return false;
  const std::string_view before(row.whole.data(),
                                static_cast<std::size_t>(old.data() - row.whole.data()));
  row.whole = Own(std::array{before, value, row.whole.substr(row.whole.size() - row.endSize)});
  return true;
}

bool IniSection::Remove(std::string_view key) {
  std::uint32_t& place = Find(key);
  if (place == kNoRow) return false;
  Row& row = rows_[place];
  row.isGone = true;
  place = row.next;
  return true;
}

std::string IniSection::FileBytes() const {
  std::string bytes;
  bytes.reserve(bytes_.size() + ownSize_);
  bytes.append(bytes_, 0, begin_).append(behindHeader_);
  for (const Row& row : rows_) {
    if (!row.isGone) bytes += row.whole;
  }
  return bytes.append(bytes_, end_);
}

std::string_view IniSection::Own(std::span<const std::string_view> parts) {
  std::size_t size = 0;
  for (const std::string_view part : parts) size += part.size();
  ownSize_ += size;
  auto* const begin = static_cast<char*>(own_.allocate(size, 1));
  char* end = begin;
  for (const std::string_view part : parts) end = std::copy(part.begin(), part.end(), end);
  return {begin, size};
}

void IniSection::EndLineBefore(std::size_t row) {
  if (row == 0) {
    const std::string_view header = std::string_view(bytes_).substr(0, begin_);
    if (!EndsInLine(header)) behindHeader_ = kIniLineEnd;
  } else if (Row& before = rows_[row - 1]; !EndsInLine(before.whole)) {
    before.whole = Own(std::array{before.whole, kIniLineEnd});
    before.endSize = kIniLineEnd.size();
  }
}

void IniSection::Append(std::string_view key, std::string_view value) {
  while (!rows_.empty() && rows_.back().isGone) rows_.pop_back();
  std::size_t at = rows_.size();  // after the last line that is not blank
  while (at > 0 && (rows_[at - 1].isGone || TrimBlanks(rows_[at - 1].Text()).empty())) --at;
  EndLineBefore(at);
  Row row{Own(NewIniLine(key, value))};
  row.hasKey = true;
  row.hash = HashOf(key);
  rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(at), row);  // only blank rows follow
  if (rows_.size() > buckets_.size()) {
    FillBuckets();
  } else {
    PutInBucket(static_cast<std::uint32_t>(at));
  }
}

}  // namespace rotacasts::host
