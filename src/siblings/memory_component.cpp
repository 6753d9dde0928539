#include "siblings/memory_component.h"

#include "base/text.h"
#include "machine/base64.h"

namespace rotacasts::host {

std::int32_t HostMemoryComponent::ReadLong(std::int32_t& processHandle, std::int32_t address) {
  return processes_.ReadLong(processHandle, address, whenAway_);
}

std::string HostMemoryComponent::ReadStr(std::int32_t& processHandle, std::int32_t address) {
  return FromWindows1252(processes_.ReadBytes(processHandle, address, whenAway_));
}

void HostMemoryComponent::AddMsg(std::int16_t& profileIndex, std::int32_t& messageTarget,
                                 std::string& text, bool&, const std::string&, std::int16_t) {
  chat_.Post(profileIndex, messageTarget, text);
}

void HostMemoryComponent::AddMsgB(std::int16_t& profileIndex, std::int32_t& messageTarget,
                                  std::string& text, bool&, const std::string&, std::int16_t,
                                  std::string&) {
  chat_.Post(profileIndex, messageTarget, text);
}

std::string HostMemoryComponent::Enc64(const std::string& text) {
  return EncodeBase64(text);
}

std::string HostMemoryComponent::Dec64(const std::string& text) {
  std::string decoded = DecodeBase64(text);
  if (!IsValidUtf8(decoded)) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the Base64 text packs no UTF-8");
  }
  return decoded;
}

}  // namespace rotacasts::host
