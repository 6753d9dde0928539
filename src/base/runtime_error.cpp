#include "base/runtime_error.h"

#include <new>
#include <utility>

namespace rotacasts {
namespace {

struct Description {
  ErrorNumber number;
  std::string_view text;
};

constexpr Description kDescriptions[] = {
    {ErrorNumber::InvalidProcedureCall, "Invalid procedure call or argument"},
    {ErrorNumber::Overflow, "Overflow"},
    {ErrorNumber::OutOfMemory, "Out of memory"},
    {ErrorNumber::SubscriptOutOfRange, "Subscript out of range"},
    {ErrorNumber::TypeMismatch, "Type mismatch"},
    {ErrorNumber::InternalError, "Internal error"},
    {ErrorNumber::FileNotFound, "File not found"},
    {ErrorNumber::DeviceIoError, "Device I/O error"},
    {ErrorNumber::FileAlreadyExists, "File already exists"},
    {ErrorNumber::DiskFull, "Disk full"},
    {ErrorNumber::PermissionDenied, "Permission denied"},
    {ErrorNumber::PathFileAccessError, "Path/File access error"},
    {ErrorNumber::PathNotFound, "Path not found"},
    {ErrorNumber::ObjectVariableNotSet, "Object variable or With block variable not set"},
    {ErrorNumber::InvalidUseOfNull, "Invalid use of Null"},
    {ErrorNumber::InvalidFileFormat, "Invalid file format"},
    {ErrorNumber::NoSuchArrayElement, "Control array element doesn't exist"},
    {ErrorNumber::ObjectAlreadyLoaded, "Object already loaded"},
    {ErrorNumber::CannotUnloadDesignTimeControl, "Can't unload controls created at design time"},
    {ErrorNumber::InvalidPropertyValue, "Invalid property value"},
    {ErrorNumber::CannotShowModeless, "Can't show non-modal form when modal form is displayed"},
    {ErrorNumber::CannotCreateComponent, "ActiveX component can't create object"},
    {ErrorNumber::NoSuchMember, "Object doesn't support this property or method"},
    {ErrorNumber::NoSuchNamedArgument, "Named argument not found"},
    {ErrorNumber::ArgumentNotOptional, "Argument not optional"},
    {ErrorNumber::WrongNumberOfArguments,
     "Wrong number of arguments or invalid property assignment"},
    {ErrorNumber::InvalidPicture, "Invalid picture"},
};

std::string Describe(ErrorNumber number, std::string_view detail) {
  std::string text(DescriptionOf(static_cast<std::int32_t>(number)));
  if (!detail.empty()) text.append(": ").append(detail);
  return text;
}

}  // namespace

RuntimeError::RuntimeError(std::int32_t errorNumber, std::string errorDescription)
    : number(errorNumber), description(std::move(errorDescription)) {}
RuntimeError::RuntimeError(const RuntimeError& other) = default;
RuntimeError::RuntimeError(RuntimeError&& other) noexcept = default;
RuntimeError& RuntimeError::operator=(const RuntimeError& other) = default;
RuntimeError& RuntimeError::operator=(RuntimeError&& other) noexcept = default;
RuntimeError::~RuntimeError() = default;

const char* RuntimeError::what() const noexcept {
  return description.c_str();
}

RuntimeError::RuntimeError(ErrorNumber errorNumber, std::string_view detail)
    : RuntimeError(static_cast<std::int32_t>(errorNumber), Describe(errorNumber, detail)) {
  isGeneric = detail.empty();
}

std::string_view DescriptionOf(std::int32_t errorNumber) {
  for (const Description& row : kDescriptions) {
    if (static_cast<std::int32_t>(row.number) == errorNumber) return row.text;
  }
  return {};
}

RuntimeError CurrentRuntimeError() {
  try {
    throw;
  } catch (const RuntimeError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return RuntimeError(ErrorNumber::OutOfMemory);
  } catch (const std::exception& error) {
    return RuntimeError(ErrorNumber::InternalError, error.what());
  } catch (...) {
    return RuntimeError(ErrorNumber::InternalError);
  }
}

}  // namespace rotacasts
