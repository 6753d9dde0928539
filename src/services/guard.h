// The error handler that every procedure runs under.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "base/runtime_error.h"

namespace rotacasts {

/// An error, and what it has ended.
struct Failure {
  std::string procedure;
  RuntimeError error;
  std::int32_t profileIndex;  // the profile worked for
  std::int32_t line;          // where it failed
  bool quiet = false;         // the administrator is spared the box
};

/// Thrown where a procedure finds that what it works for is gone, has been stopped, or has been
/// taken over by a later call: the procedure ends there, and nothing has failed.
struct Overtaken {};

/// Whoever is told of the errors that end procedures. Nothing thrown leaves it.
class ErrorHandler {
 public:
  virtual ~ErrorHandler() = default;
  virtual void ReportError(const Failure& failure) = 0;
};

/// The line number that an error report gives: the step that a procedure's body marked last.
class Step {
 public:
  void operator()(std::int32_t line) { line_ = line; }
  std::int32_t Line() const { return line_; }

 private:
  std::int32_t line_ = 0;
};

/// Who runs: the name in error reports, the profile worked for (read when the error is reported),
/// and whether the administrator is spared the box.
struct Procedure {
  std::string_view name;
  const std::int32_t& profileIndex;
  bool quiet = false;
};

/// Runs `body(step)` and hands whatever it throws to the handler, except Overtaken, which ends it
/// silently. Returns whether it ran to its end.
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

/// Runs one statement; an error of these numbers makes the procedure go on with its next statement,
/// any other passes on. Returns whether the statement ran to its end.
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

/// Runs a statement; lets `complete(error)` add to an error's description before it passes on.
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
