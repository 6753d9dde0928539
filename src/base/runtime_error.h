// The one exception type of the core, with the platform's error numbers.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace rotacasts {

/// The platform's run-time error numbers that this system raises or tells apart.
enum class ErrorNumber : std::int32_t {
  InvalidProcedureCall = 5,
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  TypeMismatch = 13,
  InternalError = 51,
  FileNotFound = 53,
  DeviceIoError = 57,
  FileAlreadyExists = 58,
  DiskFull = 61,
  PermissionDenied = 70,
  PathFileAccessError = 75,
  PathNotFound = 76,
  ObjectVariableNotSet = 91,
  InvalidUseOfNull = 94,
  InvalidFileFormat = 321,
  NoSuchArrayElement = 340,
  ObjectAlreadyLoaded = 360,
  CannotUnloadDesignTimeControl = 362,
  InvalidPropertyValue = 380,
  CannotShowModeless = 401,
  CannotCreateComponent = 429,
  NoSuchMember = 438,
  NoSuchNamedArgument = 448,
  ArgumentNotOptional = 449,
  WrongNumberOfArguments = 450,
  InvalidPicture = 481,
};

/// A run-time error: the platform's number and a description for the administrator (UTF-8). The
/// number is a plain integer because components may raise their own.
class RuntimeError : public std::exception {
 public:
  // All are defined in the .cpp file, because inlined they would make every place that throws
  // larger.
  RuntimeError(std::int32_t errorNumber, std::string errorDescription);
  RuntimeError(const RuntimeError& other);
  RuntimeError(RuntimeError&& other) noexcept;
  RuntimeError& operator=(const RuntimeError& other);
  RuntimeError& operator=(RuntimeError&& other) noexcept;
  ~RuntimeError() override;
  /// An error with the platform's own description, followed by ": " and `detail` if there is one.
  explicit RuntimeError(ErrorNumber errorNumber, std::string_view detail = {});

  bool Is(ErrorNumber errorNumber) const {
    return number == static_cast<std::int32_t>(errorNumber);
  }
  const char* what() const noexcept override;
  /// Adds what the description leaves open.
  void Extend(std::string_view detail) {
    description += detail;
    isGeneric = false;
  }

  std::int32_t number;
  std::string description;
  bool isGeneric = false;  // the description says no more than the number
  // Details that a component adds to its error; empty for the plugin's own errors.
  std::string source;
  std::string helpFile;
  std::int32_t helpContext = 0;
};

/// The platform's description of an error number; empty if it has none.
std::string_view DescriptionOf(std::int32_t errorNumber);

/// The exception being handled, as a run-time error: the error itself, 7 for exhausted memory, 51
/// with the exception's text for any other. Requires: called inside a catch clause.
RuntimeError CurrentRuntimeError();

}  // namespace rotacasts
