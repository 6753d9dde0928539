// A memory read through the plugin's adapter, against the bare call of the same object.

#include <stdexcept>

#include "com/late_components.h"
#include "siblings/win32/sibling_objects.h"
#include "win32/turns.h"

namespace rotacasts::bench {
namespace {

constexpr DISPID kReadLong = 1;
constexpr int kReads = 100'000;  // per turn

/// A memory component that does almost nothing: every number is its own address.
class IdleMemory final : public MemoryComponent {
 public:
  std::int32_t ReadLong(std::int32_t&, std::int32_t address) override { return address; }
  std::string ReadStr(std::int32_t&, std::int32_t) override { return {}; }
  void AddMsg(std::int16_t&, std::int32_t&, std::string&, bool&, const std::string&,
              std::int16_t) override {}
  void AddMsgB(std::int16_t&, std::int32_t&, std::string&, bool&, const std::string&, std::int16_t,
               std::string&) override {}
  std::string Enc64(const std::string& text) override { return text; }
  std::string Dec64(const std::string& text) override { return text; }
};

/// The same as an object with the fewest instructions; it checks nothing.
class IdleObject final : public IDispatch {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* id) override {
    *id = kReadLong;
    return S_OK;
  }
  // Not inlined or analysed at its only call.
  [[gnu::noipa]] HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* call,
                                                  VARIANT* result, EXCEPINFO*, UINT*) override {
    result->vt = VT_I4;
    result->lVal = call->rgvarg[0].lVal;
    return S_OK;
  }
};

/// Only the call. Like the adapter, it asks for the number and the error information.
std::int32_t BareReadLong(IDispatch* memory, std::int32_t& processHandle, std::int32_t address) {
  VARIANT arguments[2];
  arguments[0].vt = VT_I4;
  arguments[0].lVal = address;
  arguments[1].vt = VT_BYREF | VT_I4;
  arguments[1].plVal = reinterpret_cast<LONG*>(&processHandle);
  DISPPARAMS parameters{arguments, nullptr, 2, 0};
  VARIANT result;
  result.vt = VT_EMPTY;
  EXCEPINFO exception{};
  const HRESULT answer = memory->Invoke(kReadLong, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                        &parameters, &result, &exception, nullptr);
  if (FAILED(answer) || result.vt != VT_I4) throw std::runtime_error("the bare call failed");
  return result.lVal;
}

/// The average time of one read.
template <class Read>
double TimeOfRead(Read&& read) {
  std::int32_t processHandle = 7;
  std::int32_t wrong = 0;
  const double time = TimeOf([&] {
    for (std::int32_t address = 0; address < kReads; ++address) {
      wrong |= read(processHandle, address) ^ address;
    }
  });
  if (wrong != 0) throw std::runtime_error("a read answered another number");
  return time / kReads;
}

Result MeasureReadLong(const std::string& job, const std::string& target,
                       win32::ComPtr<IDispatch> object) {
  const host::ObjectRegistration registration(MemoryComponent::kProgId, host::kMemoryClassId,
                                              object);
  const auto memory = win32::CreateMemoryComponent();
  return TakeTurns(
      101, job, "bare IDispatch::Invoke", target,
      [&] {
        return TimeOfRead([&](std::int32_t& processHandle, std::int32_t address) {
          return memory->ReadLong(processHandle, address);
        });
      },
      [&] {
        return TimeOfRead([&](std::int32_t& processHandle, std::int32_t address) {
          return BareReadLong(object.Get(), processHandle, address);
        });
      });
}

}  // namespace

std::vector<Result> MeasureLateCalls() {
  IdleMemory memory;
  IdleObject object;
  return {MeasureReadLong("ReadLong of the Windows host's component", "1.50",
                          host::MakeMemoryObject(memory)),
          MeasureReadLong("ReadLong of an object that does nothing", "",
                          win32::ComPtr<IDispatch>::Take(&object))};
}

}  // namespace rotacasts::bench
