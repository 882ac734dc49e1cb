// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/our_enumerator.h"

#include "bridges/com/errors.h"
#include "bridges/com/options.h"
#include "bridges/com/values.h"

#include <core/runtime/live_counter.h>

#include <atomic>

namespace core::com {
namespace {

class OurEnumerator final : public IEnumVARIANT, private LiveObjectTrackerImpl<OurEnumerator> {
  public:
    explicit OurEnumerator(InterfacePtr<IValueCollection> collection)
        : collection_(std::move(collection)), walk_(collection_->enumerate()) {}

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        if (out == nullptr)
            return E_POINTER;
        const bool known = iid == IID_IUnknown || iid == IID_IEnumVARIANT;
        *out = known ? this : nullptr;
        if (known)
            AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --count_;
        if (left == 0)
            delete this;
        return left;
    }

    ::HRESULT STDMETHODCALLTYPE Next(ULONG wanted, VARIANT* out, ULONG* fetched) noexcept override {
        if (out == nullptr || (fetched == nullptr && wanted != 1))
            return E_INVALIDARG;
        ULONG count = 0;
        ::HRESULT result = S_OK;
        try {
            GenericValue value;
            for (; count < wanted && walk_->next(value); ++count) {
                VariantInit(&out[count]);
                to_variant(value, out[count], for_results);
            }
        } catch (...) {
            result = report_failure(nullptr);
        }
        if (FAILED(result)) {
            while (count > 0)
                VariantClear(&out[--count]);
        }
        if (fetched != nullptr)
            *fetched = count;
        return FAILED(result) ? result : count == wanted ? S_OK : S_FALSE;
    }
    ::HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override {
        try {
            GenericValue value;
            while (count > 0 && walk_->next(value))
                --count;
            return count == 0 ? S_OK : S_FALSE;
        } catch (...) {
            return report_failure(nullptr);
        }
    }
    ::HRESULT STDMETHODCALLTYPE Reset() noexcept override {
        try {
            walk_ = collection_->enumerate();
            return S_OK;
        } catch (...) {
            return report_failure(nullptr);
        }
    }
    ::HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** out) noexcept override {
        if (out != nullptr)
            *out = nullptr;
        return E_NOTIMPL; // a walk of ours knows no place to begin at
    }

  private:
    std::atomic<ULONG> count_{1};
    InterfacePtr<IValueCollection> collection_;
    InterfacePtr<IValueEnum> walk_;
};

} // namespace

ComPtr<::IUnknown> our_enumerator(InterfacePtr<IValueCollection> collection) {
    return ComPtr<::IUnknown>::adopt(new OurEnumerator(std::move(collection)));
}

} // namespace core::com
