#include "store/message_file.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "store/renumbering.h"

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
  Execute(*this, StepsToRenumber(std::move(entries)), &at);
}

std::optional<MessageFile::Exchanged> MessageFile::ExchangeEntries(const std::string& firstKey,
                                                                   const std::string& secondKey) {
  const Hold hold(*this);
  const std::vector<std::string> lines = Lines();
  for (const std::string& key : {firstKey, secondKey}) {
    const auto isKey = [&key](const std::string& line) { return KeyOf(line) == key; };
    if (std::ranges::none_of(lines, isKey)) return std::nullopt;
  }
  Exchanged texts{Read(firstKey), Read(secondKey)};
  Execute(*this, StepsToExchange({firstKey, texts.first}, {secondKey, texts.second}, lines));
  return texts;
}

bool MessageFile::ReplaceEntries(const Arrange& arrange) {
  const Hold hold(*this);
  MessageEntries entries = Entries();
  std::optional<std::vector<std::string>> texts = arrange(entries);
  if (!texts) return false;
  Execute(*this, StepsToReplace(std::move(entries), std::move(*texts)));
  return true;
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
