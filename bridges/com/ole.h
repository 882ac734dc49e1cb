// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>

#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>
#include <windows.h>

#include <bit>
#include <new>
#include <utility>

/// The automation system, and holders of what it hands out.
namespace core::com {

static_assert(sizeof(WCHAR) == sizeof(wchar));

/// Returns the same id as the automation system writes it.
[[nodiscard]] inline ::GUID to_com(const GUID& id) noexcept {
    return std::bit_cast<::GUID>(id);
}
/// Returns the same id as the library writes it.
[[nodiscard]] inline GUID from_com(const ::GUID& id) noexcept {
    return std::bit_cast<GUID>(id);
}
/// Returns the units of a text as the automation system sees them, borrowed: on Windows its type for them is
/// another one. Null stays null.
[[nodiscard]] inline const WCHAR* to_com(const wchar* text) noexcept {
    return reinterpret_cast<const WCHAR*>(text);
}
[[nodiscard]] inline WCHAR* to_com(wchar* text) noexcept {
    return reinterpret_cast<WCHAR*>(text);
}
/// Returns the units of a text of the automation system as the library sees them, borrowed. Null stays null.
[[nodiscard]] inline const wchar* from_com(const WCHAR* text) noexcept {
    return reinterpret_cast<const wchar*>(text);
}

/// Holds one counted reference to an automation interface, or null.
template <class T>
class ComPtr {
  public:
    ComPtr() = default;
    /// Takes a reference; null is allowed.
    explicit ComPtr(T* object) noexcept : object_(object) {
        if (object_ != nullptr)
            object_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ~ComPtr() {
        if (object_ != nullptr)
            object_->Release();
    }
    /// Releases what it holds and takes over what `other` holds.
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    /// Takes over a reference that the caller owns.
    [[nodiscard]] static ComPtr adopt(T* object) noexcept {
        ComPtr result;
        result.object_ = object;
        return result;
    }
    /// Returns the interface `T` of an object; null where it has none, and for null.
    [[nodiscard]] static ComPtr query(::IUnknown* object) noexcept {
        ComPtr result;
        if (object != nullptr && FAILED(object->QueryInterface(__uuidof(T), result.out())))
            result.object_ = nullptr;
        return result;
    }

    /// Returns the object, borrowed; may be null.
    [[nodiscard]] T* get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    /// Returns the object with its reference, which the caller owns.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }
    /// Lets go of the object and returns where a function stores another one, which is then held.
    [[nodiscard]] void** out() noexcept {
        *this = ComPtr();
        return reinterpret_cast<void**>(&object_);
    }
    /// Does the same for a function that knows the type.
    [[nodiscard]] T** typed() noexcept { return reinterpret_cast<T**>(out()); }

  private:
    T* object_ = nullptr;
};

/// A text of the automation system.
class Bstr {
  public:
    Bstr() = default;
    /// Makes a copy. Throws std::bad_alloc.
    explicit Bstr(wstring_view text)
        : text_(SysAllocStringLen(to_com(text.data()), static_cast<UINT>(text.size()))) {
        if (text_ == nullptr)
            throw std::bad_alloc();
    }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(text_); }

    /// Returns the text, borrowed.
    [[nodiscard]] wstring_view view() const noexcept { return view(text_); }
    /// Returns the units of a text, borrowed; null is the empty text.
    [[nodiscard]] static wstring_view view(BSTR text) noexcept {
        return {from_com(text), SysStringLen(text)};
    }
    /// Returns the text, borrowed.
    [[nodiscard]] BSTR get() const noexcept { return text_; }
    /// Returns the text, which the caller frees.
    [[nodiscard]] BSTR detach() noexcept { return std::exchange(text_, nullptr); }
    /// Returns where a function stores a text, which is then held. Nothing must be held yet.
    [[nodiscard]] BSTR* out() noexcept { return &text_; }

  private:
    BSTR text_ = nullptr;
};

/// A VARIANT that lets go of what it holds.
class Variant : public VARIANT {
  public:
    Variant() noexcept { VariantInit(this); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    Variant(Variant&& other) noexcept : VARIANT(other) { VariantInit(&other); }
    ~Variant() { VariantClear(this); }

    /// Hands what it holds over to `*out`, whose old content is not looked at.
    void moveTo(VARIANT* out) noexcept {
        *out = *this;
        VariantInit(this);
    }
};

} // namespace core::com
