// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <map>
#include <mutex>
#include <span>
#include <string>

namespace core {

/// The message texts of a module, by resource id and locale: ICU bundles in the folder "<name>/messages"
/// beside the library, opened when first asked for and kept, one for each locale.
///
/// Threads: all operations may be called from any thread. What they return stays valid until cleanup().
class CORE_API SCOM_ResourceBundle {
  public:
    explicit SCOM_ResourceBundle(const char* name);
    SCOM_ResourceBundle(const SCOM_ResourceBundle&) = delete;
    SCOM_ResourceBundle& operator=(const SCOM_ResourceBundle&) = delete;
    ~SCOM_ResourceBundle();

    /// The text under `id` in the bundle of `locale` (or its language, or the root), with its length in code
    /// units; null when there is none.
    [[nodiscard]] const wchar* getString(const char* id, const Locale& locale, unsigned& length);
    /// The bytes under `id`, in the same way; empty when there are none.
    [[nodiscard]] std::span<const std::byte> getBinary(const char* id, const Locale& locale);

    /// Closes the opened bundles; harmless when there are none.
    void cleanup() noexcept;

  private:
    struct Opened; // the bundles that serve one locale, most specific first

    Opened& open(const Locale& locale);

    std::string name_;
    std::mutex lock_;
    std::map<std::string, Opened> opened_; // by Locale::key
};

/// The text under `id` in the calling thread's resource locale; empty for a null
/// bundle or id or a missing text.
[[nodiscard]] CORE_API wstring load_wstring(SCOM_ResourceBundle* bundle, const char* id);

} // namespace core
