#include "base/conversions.h"
#include "com/late_bound.h"
#include "com/late_components.h"

namespace rotacasts::win32 {
namespace {

std::int32_t LongOf(const ComVariant& value) {
  return value.Get().vt == VT_I4 ? value.Get().lVal : ToLong(ToHostValue(value.Get()));
}

class LateMemory final : public MemoryComponent {
 public:
  std::int32_t ReadLong(std::int32_t& processHandle, std::int32_t address) override {
    return LongOf(readLong_(LongReference(processHandle), NumberArgument(address)));
  }
  std::string ReadStr(std::int32_t& processHandle, std::int32_t address) override {
    return TextOf(readStr_(LongReference(processHandle), NumberArgument(address)));
  }
  // Only reads must be fast; the rest is compiled for size.
  [[gnu::cold]] void AddMsg(std::int16_t& profileIndex, std::int32_t& messageTarget,
                            std::string& text, bool& isAffiliate, const std::string& kind,
                            std::int16_t mode) override {
    addMsg_(IntegerReference(profileIndex), LongReference(messageTarget), TextReference(text),
            BooleanReference(isAffiliate), TextArgument(kind), NumberArgument(mode));
  }
  [[gnu::cold]] void AddMsgB(std::int16_t& profileIndex, std::int32_t& messageTarget,
                             std::string& text, bool& isAffiliate, const std::string& kind,
                             std::int16_t mode, std::string& gameCode) override {
    addMsgB_(IntegerReference(profileIndex), LongReference(messageTarget), TextReference(text),
             BooleanReference(isAffiliate), TextArgument(kind), NumberArgument(mode),
             TextReference(gameCode));
  }
  [[gnu::cold]] std::string Enc64(const std::string& text) override {
    return TextOf(enc64_(TextArgument(text)));
  }
  [[gnu::cold]] std::string Dec64(const std::string& text) override {
    return TextOf(dec64_(TextArgument(text)));
  }

 private:
  LateBound object_ = LateBound::Create(kProgId);
  Member readLong_{object_, "ReadLong"};
  Member readStr_{object_, "ReadStr"};
  Member addMsg_{object_, "AddMsg"};
  Member addMsgB_{object_, "AddMsgB"};
  Member enc64_{object_, "Enc64"};
  Member dec64_{object_, "Dec64"};
};

}  // namespace

std::unique_ptr<MemoryComponent> CreateMemoryComponent() {
  return std::make_unique<LateMemory>();
}

}  // namespace rotacasts::win32
