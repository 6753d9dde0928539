#include "siblings/ini_files.h"

#include <utility>

namespace rotacasts::host {
namespace {

/// How often an operation is run before it gives up against another program.
constexpr int kMostRuns = 30;

}  // namespace

std::optional<RuntimeError> IniFiles::Run(const std::function<void()>& operation) {
  if (!Settle()) return operation(), std::nullopt;
  std::optional<RuntimeError> failure;
  for (int run = 1; !RunOnce(operation, run == kMostRuns, failure); ++run) {
  }
  return failure;
}

/// False when it is to be run again.
bool IniFiles::RunOnce(const std::function<void()>& operation, bool isLast,
                       std::optional<RuntimeError>& failure) {
  IniOperation run(layer_, isLast, [this](const RuntimeError& error) {
    if (listener_ != nullptr) listener_->tell_(error);
  });
  struct Innermost {
    Innermost(IniOperation*& at, IniOperation& now) : place(at), outer(std::exchange(at, &now)) {}
    ~Innermost() { place = outer; }
    IniOperation*& place;
    IniOperation* const outer;
  } const innermost(operation_, run);
  operation();
  run.End();
  failure = run.Failure();
  return !run.IsInConflict();
}

bool IniFiles::Flush() {
  if (operation_ == nullptr) return true;
  operation_->Flush();
  return !operation_->IsInConflict();
}

bool IniFiles::Settle() {
  if (operation_ == nullptr) return true;
  operation_->Settle();
  return !operation_->IsInConflict();
}

void IniFiles::Confirm() {
  if (operation_ != nullptr) operation_->Confirm();
}

void IniFiles::Read(const std::string& path, const std::function<void(const IniText&)>& read) {
  const IniText* const text = operation_ != nullptr ? operation_->Image(path) : nullptr;
  if (text != nullptr) return read(*text);
  read(ReadImage(layer_, path).text);
}

void IniFiles::Change(const std::string& path, const std::function<void(IniText&)>& change) {
  IniText* const text = operation_ != nullptr ? operation_->ImageToChange(path) : nullptr;
  if (text != nullptr) return change(*text);
  const auto failure = Run([&] { change(*operation_->ImageToChange(path)); });
  if (failure) throw RuntimeError(*failure);
}

bool IniFiles::Exists(const std::string& path) {
  return (operation_ != nullptr && operation_->HasChanged(path)) || layer_.FileExists(path);
}

IniFiles::Listener::Listener(IniFiles& files, std::function<void(const RuntimeError&)> tell)
    : files_(files), tell_(std::move(tell)), outer_(std::exchange(files.listener_, this)) {}

}  // namespace rotacasts::host
