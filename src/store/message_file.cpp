#include "store/message_file.h"

#include <utility>
#include <vector>

#include "base/text.h"

namespace rotacasts {

MessageFile::Hold::Hold(MessageFile& file) : file_(file) {
  if (file.holds_ == 0 && !file.held_.insert(file.File()).second) {
    throw RuntimeError(ErrorNumber::PermissionDenied,
                       file.File() + " is being changed at this moment; try again");
  }
  ++file.holds_;
}

MessageFile::Hold::~Hold() {
  if (file_.holds_ > 0 && --file_.holds_ == 0) file_.Release();
}

void MessageFile::Release() {
  holds_ = 0;
  held_.erase(File());
}

bool MessageFile::AddEntry(const std::string& text) {
  try {
    if (HasLineBreak(text)) return false;
    const Hold hold(*this);
    const std::string key = NextKey(Lines());
    Write(key, text);
    return Read(key) == text;
  } catch (...) {
    return false;
  }
}

bool MessageFile::DeleteEntry(const std::string& key) {
  try {
    const Hold hold(*this);
    Remove(key);
  } catch (...) {
    return false;
  }
  RewriteEntries();
  return true;
}

void MessageFile::RewriteEntries() {
  Guard(errors_, {"RewriteEntries", profileIndex_}, [&](Step& at) {
    try {
      Renumber(at);
    } catch (...) {
      Release();  // also for whoever holds it around this: the error is shown next
      throw;
    }
  });
}

void MessageFile::Renumber(Step& at) {
  const Hold hold(*this);
  at(1);
  MessageEntries entries = Entries();
  at(2);
  std::size_t position = CountInPlace(entries);
  if (!OnlyMoveUp(entries, position)) {
    Replace(*this, TextsThatStay);
    return;
  }
  // New keys go to the section's end, so line order and key order agree again afterwards. A text
  // goes from its old key only when it stands under its new one.
  for (std::size_t i = position; i < entries.size(); ++i) {
    at(4);
    if (!IsBlank(entries[i].text)) Write(KeyAt(position++), std::move(entries[i].text));
    at(3);
    Remove(KeyToRemove(entries[i].key));
  }
}

MessageFile::Exchanged MessageFile::ExchangeEntries(const std::string& firstKey,
                                                    const std::string& secondKey) {
  const Hold hold(*this);
  Exchanged texts{Read(firstKey), Read(secondKey)};
  Write(firstKey, texts.second);
  try {
    Write(secondKey, texts.first);
  } catch (...) {  // the first text stands nowhere now
    Write(firstKey, texts.first);
    throw;
  }
  return texts;
}

bool MessageFile::ReplaceEntries(const Arrange& arrange) {
  const Hold hold(*this);
  return Replace(*this, arrange);
}

void MessageFile::SetOption(const char* key, const std::string& value) {
  if (HasLineBreak(value)) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       std::string(key) + " cannot hold a line break");
  }
  WriteOption(key, value);
}

bool MessageStore::AddEntry(std::int32_t profileIndex, const std::string& text) try {
  return Open(profileIndex).AddEntry(text);
} catch (...) {
  return false;
}

MessageFile MessageStore::Open(std::int32_t profileIndex) {
  const std::string& file = tables_.MessageFiles(profileIndex);
  if (file.empty()) {
    throw RuntimeError(ErrorNumber::PathNotFound,
                       "profile " + std::to_string(profileIndex) + " is stopped; load it first");
  }
  return {MessageSection(services_.Utility(), file), errors_, profileIndex, held_};
}

}  // namespace rotacasts
