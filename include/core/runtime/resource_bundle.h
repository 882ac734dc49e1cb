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
/// beside the library, or under the path that the name is, opened when first asked for and kept, one for each
/// locale.
///
/// Threads: all operations may be called from any thread. What they return stays valid until cleanup().
class CORE_API SCOM_ResourceBundle {
  public:
    /// Makes the bundle called `name`; nothing is opened yet.
    explicit SCOM_ResourceBundle(const char* name);
    SCOM_ResourceBundle(const SCOM_ResourceBundle&) = delete;
    SCOM_ResourceBundle& operator=(const SCOM_ResourceBundle&) = delete;
    ~SCOM_ResourceBundle();

    /// Returns the text under `id` in the bundle of `locale`, or its language, or the root, and stores its
    /// length in code units. Null if none exists. Throws std::bad_alloc.
    [[nodiscard]] const wchar* getString(const char* id, const Locale& locale, unsigned& length);
    /// Returns the bytes under `id`, looked for in the same bundles; empty when there are none. Throws
    /// std::bad_alloc.
    [[nodiscard]] std::span<const std::byte> getBinary(const char* id, const Locale& locale);

    /// Returns the name, borrowed: valid as long as the bundle.
    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    /// Closes the opened bundles; harmless when there are none.
    void cleanup() noexcept;

  private:
    struct Opened; // the bundles that serve one locale, most specific first

    Opened& open(const Locale& locale);

    std::string name_;
    std::mutex lock_;
    std::map<std::string, Opened> opened_; // by Locale::key
};

/// Returns the text under `id` in the calling thread's resource locale; empty for a null bundle, a null id
/// and a missing text.
[[nodiscard]] CORE_API wstring load_wstring(SCOM_ResourceBundle* bundle, const char* id);

} // namespace core
