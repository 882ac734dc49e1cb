// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/errors.h"

#include "bridges/com/our_object.h"

#include <core/runtime/exception_object.h>
#include <core/runtime/utf8.h>
#include <core/strings/names.h>

#include <cxxabi.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <typeinfo>

namespace core::com {
namespace {

/// What is known of a failure of ours, for those who ask the thread for it.
class ErrorInfo final : public IErrorInfo, public IOurFailure {
  public:
    ErrorInfo(const Exception& failure, wstring source)
        : failure_(wrap_exception(failure)), source_(std::move(source)) {}

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        if (out == nullptr)
            return E_POINTER;
        *out = nullptr;
        if (iid == IID_IUnknown || iid == IID_IErrorInfo)
            *out = static_cast<IErrorInfo*>(this);
        else if (iid == kOurFailure)
            *out = static_cast<IOurFailure*>(this);
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --count_;
        if (left == 0)
            delete this;
        return left;
    }

    ::HRESULT STDMETHODCALLTYPE GetGUID(::GUID* out) noexcept override {
        *out = to_com(failure_->exception().clsid());
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetSource(BSTR* out) noexcept override { return text(source_, out); }
    ::HRESULT STDMETHODCALLTYPE GetDescription(BSTR* out) noexcept override {
        return text(failure_->exception().description(), out);
    }
    ::HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* out) noexcept override {
        *out = nullptr;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* out) noexcept override {
        *out = 0;
        return S_OK;
    }
    IExceptionObject* STDMETHODCALLTYPE failure() noexcept override { return failure_.get(); }

  private:
    static ::HRESULT text(const wstring& text, BSTR* out) noexcept {
        *out = SysAllocStringLen(to_com(text.data()), static_cast<UINT>(text.size()));
        return *out != nullptr ? S_OK : E_OUTOFMEMORY;
    }

    std::atomic<ULONG> count_{0};
    InterfacePtr<IExceptionObject> failure_;
    wstring source_;
};

/// The class of a failure and its message id: "ContextException IDS_INDEX_OFFBOUND".
wstring source_of(const Exception& failure) {
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(typeid(failure).name(), nullptr, nullptr, nullptr), &std::free);
    std::string text = name ? name.get() : "Exception";
    text.erase(0, text.rfind(':') == std::string::npos ? 0 : text.rfind(':') + 1);
    if (*failure.messageId() != '\0')
        text.append(" ").append(failure.messageId());
    return from_utf8(text);
}

/// The number of a failure: that of the object that it came from, or one made of the message id, so that
/// programs can tell failures apart in any language.
::HRESULT number_of(const Exception& failure) {
    if (IExceptionObject* const cause = failure.cause()) {
        const Exception& source = cause->exception();
        if (std::string_view(source.messageId()) == messages::kSource && source.parameters().size() == 2) {
            const std::string digits = to_utf8(source.parameters()[1]);
            return static_cast<::HRESULT>(std::strtoul(digits.c_str(), nullptr, 16));
        }
    }
    constexpr std::uint32_t kFirst = 0x200; // lower ones are the system's own
    const auto hash = static_cast<std::uint32_t>(hash_nocase(failure.messageId()));
    return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_ITF, kFirst + hash % (0x10000U - kFirst));
}

::HRESULT report(const Exception& failure, EXCEPINFO* info) {
    const wstring source = source_of(failure);
    const auto known = ComPtr<IErrorInfo>(new ErrorInfo(failure, source));
    SetErrorInfo(0, known.get());
    const ::HRESULT number = number_of(failure);
    if (info == nullptr)
        return number;
    *info = EXCEPINFO{};
    info->bstrSource = Bstr(source).detach();
    info->bstrDescription = Bstr(failure.description()).detach();
    info->scode = number;
    return DISP_E_EXCEPTION;
}

/// What one of our objects threw on this thread, if that is where the failure comes from.
InterfacePtr<IExceptionObject> our_failure(wstring& description) {
    ComPtr<IErrorInfo> known;
    if (GetErrorInfo(0, known.typed()) != S_OK)
        return nullptr;
    if (description.empty()) {
        Bstr text;
        if (SUCCEEDED(known->GetDescription(text.out())))
            description = text.view();
    }
    ComPtr<IOurFailure> ours;
    if (FAILED(known->QueryInterface(kOurFailure, ours.out())))
        return nullptr;
    return ours->failure();
}

} // namespace

wstring result_number(::HRESULT result) {
    char digits[11];
    std::snprintf(digits, sizeof digits, "0x%08X", static_cast<unsigned>(result));
    return from_utf8(digits);
}

wstring result_text(::HRESULT result) {
    WCHAR buffer[512];
    DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(result), 0, buffer, sizeof buffer / sizeof *buffer, nullptr);
    while (length > 0 && (buffer[length - 1] <= L' ' || buffer[length - 1] == L'.'))
        --length;
    const wstring number = result_number(result);
    return length > 0 ? wstring(from_com(buffer), length) + u" (" + number + u")" : number;
}

void throw_failed_call(wstring_view member, ::HRESULT result, EXCEPINFO* info) {
    wstring description;
    wstring source;
    if (result == DISP_E_EXCEPTION && info != nullptr) {
        if (info->pfnDeferredFillIn != nullptr)
            info->pfnDeferredFillIn(info);
        description = Bstr::view(info->bstrDescription);
        source = Bstr::view(info->bstrSource);
        result = info->scode != 0 ? info->scode : MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, info->wCode);
        SysFreeString(info->bstrDescription);
        SysFreeString(info->bstrSource);
        SysFreeString(info->bstrHelpFile);
        *info = EXCEPINFO{};
    }
    auto cause = our_failure(description);
    if (!cause) {
        const std::initializer_list<wstring> parameters{source, result_number(result)};
        COMException behind(message_text(messages::kSource, parameters));
        behind.setMessage(messages::kSource, parameters);
        cause = wrap_exception(behind);
    }
    throw_error<COMException>(messages::kCallFailed,
                              {wstring(member), description.empty() ? result_text(result) : description},
                              cause.get());
}

void check(::HRESULT result, const char* id, wstring_view what) {
    if (result == E_OUTOFMEMORY)
        throw std::bad_alloc();
    if (FAILED(result))
        throw_error<COMException>(id, {wstring(what), result_text(result)});
}

::HRESULT report_failure(EXCEPINFO* info) noexcept {
    try {
        try {
            throw;
        } catch (const Exception& failure) {
            return report(failure, info);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (const std::exception& failure) {
            return report(Exception(from_utf8(failure.what())), info);
        }
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) { // the thread is to stop, which its next check says again
        return E_ABORT;
    }
}

} // namespace core::com
