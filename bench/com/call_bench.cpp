// SPDX-License-Identifier: Apache-2.0
// One call with a number that returns a number: by our interface, through the bridge, and of an automation
// object that is written by hand.
#include "bridges/com/our_object.h"
#include "bridges/com/system.h"

#include <core/context.h>
#include <core/context/script_object.h>
#include <host/host_process.h>

#include <benchmark/benchmark.h>

namespace {

using namespace core;

/// What is called: the number and one more.
class Counter : public ScriptObject<Counter> {
  public:
    static constexpr ClassNames names{u"BenchCounter", u"ЗамерСчетчик"};
    std::int32_t next(std::int32_t number) { return number + 1; }
    static auto members() { return core::members(method(u"Next", u"Следующий", &Counter::next)); }
};

/// The same by hand: no more than a call of a member by its number needs.
class ByHand final : public IDispatch {
  public:
    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) noexcept override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
    ::HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        *count = 0;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override {
        return DISP_E_BADINDEX;
    }
    ::HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* id) noexcept override {
        *id = 1;
        return S_OK;
    }
    // A call from outside is never inlined.
    [[gnu::noinline]] ::HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* given,
                                                         VARIANT* result, EXCEPINFO*,
                                                         UINT*) noexcept override {
        if (member != 1 || given->cArgs != 1 || V_VT(&given->rgvarg[0]) != VT_I4)
            return DISP_E_MEMBERNOTFOUND;
        V_VT(result) = VT_I4;
        V_I4(result) = V_I4(&given->rgvarg[0]) + 1;
        return S_OK;
    }
};

void plain(benchmark::State& state) {
    const auto counter = make_object<Counter>();
    const auto context = Value(counter).query<IContext_>();
    const int next = context->findMethod(u"Next");
    std::vector<GenericValue> arguments(1);
    GenericValue result;
    for (auto _ : state) {
        arguments[0] = Value(5);
        context->call(next, &result, &arguments);
        benchmark::DoNotOptimize(result);
    }
}

void automation(benchmark::State& state, IDispatch& object) {
    wstring name = u"Next";
    LPOLESTR units = name.data();
    DISPID id = 0;
    VARIANT given{};
    V_VT(&given) = VT_I4;
    V_I4(&given) = 5;
    DISPPARAMS parameters{&given, nullptr, 1, 0};
    com::Variant result;
    if (FAILED(object.GetIDsOfNames(IID_NULL, &units, 1, LOCALE_USER_DEFAULT, &id)))
        state.SkipWithError("no such member");
    for (auto _ : state) {
        if (FAILED(object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &result,
                                 nullptr, nullptr)))
            state.SkipWithError("the call failed");
        benchmark::DoNotOptimize(result);
    }
}

void bridge(benchmark::State& state) {
    const auto held = com::dispatch_of(Value(make_object<Counter>()));
    automation(state, *held.get());
}

void by_hand(benchmark::State& state) {
    ByHand object;
    automation(state, object);
}

BENCHMARK(plain);
BENCHMARK(bridge);
BENCHMARK(by_hand);

} // namespace

int main(int argc, char** argv) {
    core::com::system_is_here();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const host::HostProcess process;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
