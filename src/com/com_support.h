// Owners of COM references, strings and VARIANTs.
#pragma once

#include <atomic>
#include <string>
#include <string_view>
#include <utility>

#include "com/windows_api.h"

namespace rotacasts::win32 {

/// Holds a reference to a COM object.
template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  /// Takes over the caller's reference.
  static ComPtr Take(Interface* object) {
    ComPtr pointer;
    pointer.object_ = object;
    return pointer;
  }
  ComPtr(const ComPtr& other) : object_(other.object_) {
    if (object_ != nullptr) object_->AddRef();
  }
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPtr() {
    if (object_ != nullptr) object_->Release();
  }

  Interface* Get() const { return object_; }
  Interface* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  /// Hands the reference to the caller.
  Interface* Detach() { return std::exchange(object_, nullptr); }
  /// The address for a function that returns a reference; releases the current one first.
  Interface** Receive() {
    *this = ComPtr();
    return &object_;
  }
  void** ReceiveVoid() { return reinterpret_cast<void**>(Receive()); }

 private:
  Interface* object_ = nullptr;
};

/// IUnknown for an object with one interface. The creator holds its first reference.
template <class Interface>
class CountedObject : public Interface {
 public:
  virtual ~CountedObject() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, __uuidof(Interface));
    *object = known ? static_cast<Interface*>(this) : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  std::atomic<ULONG> references_ = 1;
};

/// UTF-8 to UTF-16 and back; malformed input becomes the replacement character.
std::wstring ToWide(std::string_view text);
std::string FromWide(std::wstring_view text);

/// Owns a BSTR. Null means no text, as opposed to an empty one.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::string_view text);
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { ::SysFreeString(text_); }

  BSTR Get() const { return text_; }
  BSTR* Address() { return &text_; }
  BSTR Release() { return std::exchange(text_, nullptr); }

 private:
  BSTR text_ = nullptr;
};

/// The text of a BSTR, which may be null.
std::string FromBstr(BSTR text);

/// Owns a VARIANT. Every memory read passes through here, so empty values and numbers are freed
/// without a call.
class ComVariant {
 public:
  ComVariant() { value_.vt = VT_EMPTY; }
  /// Takes ownership of the value.
  explicit ComVariant(const VARIANT& value) : value_(value) {}
  ComVariant(ComVariant&& other) noexcept : value_(other.Release()) {}
  ComVariant& operator=(ComVariant other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~ComVariant() {
    if (value_.vt > VT_DATE && value_.vt != VT_BOOL && value_.vt != VT_ERROR) {
      ::VariantClear(&value_);
    }
  }

  const VARIANT& Get() const { return value_; }
  VARIANT* Address() { return &value_; }
  VARIANT Release() {
    const VARIANT value = value_;
    value_.vt = VT_EMPTY;
    return value;
  }

 private:
  VARIANT value_;
};

/// The system's message for a result code; the code itself if there is none.
std::string DescribeResult(HRESULT result);

}  // namespace rotacasts::win32
