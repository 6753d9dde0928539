// The error handler that every procedure runs under.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "base/runtime_error.h"

namespace rotacasts {

/// An error that ended a procedure.
struct Failure {
  std::string procedure;
  RuntimeError error;
  std::int32_t profileIndex;  // the profile that the procedure worked for
  std::int32_t line;          // the step that failed
  bool quiet = false;         // no error box is shown
};

/// Thrown when a procedure's work no longer matters: its window is gone, its profile was stopped,
/// or a later call has taken over. The procedure ends without an error.
struct Overtaken {};

/// Receives the errors that end procedures. Never throws.
class ErrorHandler {
 public:
  virtual ~ErrorHandler() = default;
  virtual void ReportError(const Failure& failure) = 0;
};

/// The line number for error reports: the last step that a procedure's body marked.
class Step {
 public:
  void operator()(std::int32_t line) { line_ = line; }
  std::int32_t Line() const { return line_; }

 private:
  std::int32_t line_ = 0;
};

/// A procedure, as error reports name it. `profileIndex` is read when an error is reported; `quiet`
/// suppresses the error box.
struct Procedure {
  std::string_view name;
  const std::int32_t& profileIndex;
  bool quiet = false;
};

/// Runs `body(step)` and passes anything it throws to the handler, except Overtaken, which ends it
/// silently. Returns true if the body ran to its end.
template <class Body>
bool Guard(ErrorHandler& handler, const Procedure& procedure, Body&& body) {
  Step step;
  try {
    body(step);
    return true;
  } catch (const Overtaken&) {
    return false;
  } catch (...) {
    handler.ReportError({std::string(procedure.name), CurrentRuntimeError(), procedure.profileIndex,
                         step.Line(), procedure.quiet});
    return false;
  }
}

/// Runs one statement. Drops an error with one of these numbers, so that the procedure goes on with
/// its next statement; any other error passes through. Returns true if the statement ran to its
/// end.
template <class Statement>
bool ResumeNext(std::initializer_list<ErrorNumber> numbers, Statement&& statement) {
  try {
    statement();
    return true;
  } catch (const RuntimeError& error) {
    const bool resumes = std::any_of(numbers.begin(), numbers.end(),
                                     [&](ErrorNumber number) { return error.Is(number); });
    if (!resumes) throw;
    return false;
  }
}

/// Runs a statement. If it throws, rethrows a RuntimeError that `complete(error)` may have
/// extended.
template <class Statement, class Complete>
void CompleteErrors(Statement&& statement, Complete&& complete) {
  try {
    statement();
  } catch (...) {
    RuntimeError error = CurrentRuntimeError();
    complete(error);
    throw error;
  }
}

}  // namespace rotacasts
