// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/our_object.h"
#include "bridges/com/type_service.h"
#include "bridges/com/values.h"

#include <core/context.h>
#include <core/runtime.h>
#include <core/script/engine.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <span>
#include <string_view>

namespace core::com {

/// A process with the bridge in it, which is a part of the test program. At the end nothing of a test may be
/// left on either side.
class ComTest : public ::testing::Test {
  protected:
    ~ComTest() override {
        SetErrorInfo(0, nullptr); // the thread keeps the last failure
        EXPECT_EQ(held_objects(), 0U);
    }

    static ICOMTypeService& service() { return require_service<ICOMTypeService>(); }

    /// Runs a script of ours and returns what it returns.
    static Value run(std::string_view script) {
        script::Engine engine;
        return engine.run(script);
    }
    /// The message id of what an action throws; empty when it throws nothing.
    template <class F>
    static std::string failure(F action) {
        try {
            action();
        } catch (const Exception& e) {
            return e.messageId();
        }
        return {};
    }

    /// Expects that as many objects of each class live as live_report() said before.
    static void expectAsManyAs(const decltype(live_report())& before) {
        const auto after = live_report();
        ASSERT_EQ(after.size(), before.size());
        for (std::size_t i = 0; i < after.size(); ++i)
            EXPECT_EQ(after[i].count, before[i].count) << after[i].name;
    }

    host::HostProcess process_;
};

/// The path of a file in the folder for temporary files, as the automation system takes it.
inline wstring temporary_file(wstring_view name) {
    WCHAR folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return from_com(folder) + wstring(name);
}

/// Calls a member of an automation object by its name; what it returns, as a value.
inline ::HRESULT call(IDispatch& object, const wchar* name, WORD how, std::span<VARIANT> reversed,
                      VARIANT* result, EXCEPINFO* info = nullptr) {
    wstring units = name;
    LPOLESTR text = to_com(units.data());
    DISPID id = DISPID_UNKNOWN;
    ::HRESULT answer = object.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(answer))
        return answer;
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS given{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    if ((how & DISPATCH_PROPERTYPUT) != 0) {
        given.rgdispidNamedArgs = &put;
        given.cNamedArgs = 1;
    }
    UINT wrong = 0;
    return object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, how, &given, result, info, &wrong);
}

} // namespace core::com
