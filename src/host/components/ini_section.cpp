#include "host/components/ini_section.h"

namespace rotacasts::host {

std::size_t IniSection::KeyHash::operator()(std::string_view key) const {
  std::uint32_t hash = 2166136261;  // FNV-1a
  for (const char c : key) {
    const auto byte = static_cast<unsigned char>(c);
    hash = (hash ^ (byte >= 'A' && byte <= 'Z' ? byte + 32U : byte)) * 16777619;
  }
  return hash;
}

IniSection::IniSection(std::string name, const std::string& bytes, IniCursor cursor)
    : name_(std::move(name)), bytes_(bytes), begin_(cursor.NextBegin()), end_(begin_) {
  std::unordered_map<std::size_t, std::size_t> last;  // row of a key that comes again, by its first
  while (cursor.NextInSection()) {
    const std::size_t size = cursor.NextBegin() - cursor.Begin();
    rows_.push_back(
        {std::string_view(bytes_).substr(cursor.Begin(), size), size - cursor.Text().size()});
    end_ = cursor.NextBegin();
    const std::optional<IniLine> line = cursor.KeyLine();
    if (!line) continue;
    const std::size_t row = rows_.size() - 1;
    const auto [first, isFirst] = byKey_.emplace(line->key, row);
    if (isFirst) continue;
    const std::size_t before = last.try_emplace(first->second, first->second).first->second;
    last[first->second] = rows_[before].next = row;
  }
}

std::vector<IniLine> IniSection::Lines() const {
  std::vector<IniLine> lines;
  lines.reserve(byKey_.size());
  for (const Row& row : rows_) {
    if (const auto line = row.isGone ? std::nullopt : row.KeyLine()) lines.push_back(*line);
  }
  return lines;
}

std::optional<std::string_view> IniSection::Value(std::string_view key) const {
  const auto found = byKey_.find(key);
  if (found == byKey_.end()) return std::nullopt;
  return rows_[found->second].KeyLine()->value;
}

bool IniSection::Set(std::string_view key, std::string_view value) {
  const auto found = byKey_.find(key);
  if (found == byKey_.end()) {
    Append(key, value);
    return true;
  }
  Row& row = rows_[found->second];
  const std::string_view old = row.KeyLine()->value;
  if (old == value) return false;
  std::string whole(row.whole.data(), old.data());
  whole.append(value).append(row.whole.substr(row.whole.size() - row.endSize));
  row.whole = Own(std::move(whole));
  return true;
}

bool IniSection::Remove(std::string_view key) {
  const auto found = byKey_.find(key);
  if (found == byKey_.end()) return false;
  Row& row = rows_[found->second];
  row.isGone = true;
  byKey_.erase(found);
  if (row.next != 0) byKey_.emplace(rows_[row.next].KeyLine()->key, row.next);
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

std::string_view IniSection::Own(std::string text) {
  ownSize_ += text.size();
  return own_.emplace_back(std::move(text));
}

void IniSection::EndLineBefore(std::size_t row) {
  if (row == 0) {
    const std::string_view header = std::string_view(bytes_).substr(0, begin_);
    if (!EndsInLine(header)) behindHeader_ = kIniLineEnd;
  } else if (Row& before = rows_[row - 1]; !EndsInLine(before.whole)) {
    before.whole = Own(std::string(before.whole).append(kIniLineEnd));
    before.endSize = kIniLineEnd.size();
  }
}

void IniSection::Append(std::string_view key, std::string_view value) {
  while (!rows_.empty() && rows_.back().isGone) rows_.pop_back();
  std::size_t at = rows_.size();  // after the last line that is not blank
  while (at > 0 && (rows_[at - 1].isGone || TrimBlanks(rows_[at - 1].Text()).empty())) --at;
  EndLineBefore(at);
  const Row row{Own(NewIniLine(key, value))};
  rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(at), row);
  byKey_.emplace(row.KeyLine()->key, at);
}

}  // namespace rotacasts::host
