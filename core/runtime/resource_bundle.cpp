// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/icu_bundle.h"
#include "core/runtime/native_path.h"
#include "core/runtime/shared_object.h"
#include "core/runtime/thread_locale.h"

#include <core/runtime/resource_bundle.h>

#include <filesystem>
#include <vector>

namespace core {
namespace {

/// The folder of the shared object that this code is in.
std::filesystem::path library_folder() {
    static const char anchor = 0;
    return detail::file_of(&anchor).parent_path();
}

} // namespace

struct SCOM_ResourceBundle::Opened {
    std::vector<BundlePtr> bundles;
};

SCOM_ResourceBundle::SCOM_ResourceBundle(const char* name) : name_(name) {}
SCOM_ResourceBundle::~SCOM_ResourceBundle() = default;

SCOM_ResourceBundle::Opened& SCOM_ResourceBundle::open(const Locale& locale) {
    const auto place = opened_.find(locale.key());
    if (place != opened_.end())
        return place->second;
    Opened opened;
    const std::string folder = path_text(library_folder() / native_path(name_) / "messages");
    const auto tryOpen = [&](const std::string& key) {
        UErrorCode status = U_ZERO_ERROR;
        // Directly: what the system's own locale speaks is not an answer for this one.
        BundlePtr bundle(ures_openDirect(folder.c_str(), key.c_str(), &status));
        if (U_SUCCESS(status))
            opened.bundles.push_back(std::move(bundle));
    };
    for (Locale speaker = locale; speaker != Locale(); speaker = speaker.parent())
        tryOpen(speaker.key());
    tryOpen("root");
    return opened_.emplace(locale.key(), std::move(opened)).first->second;
}

const wchar* SCOM_ResourceBundle::getString(const char* id, const Locale& locale, unsigned& length) {
    length = 0;
    if (id == nullptr)
        return nullptr;
    const std::lock_guard guard(lock_);
    for (const BundlePtr& bundle : open(locale).bundles) {
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t count = 0;
        if (const wchar* const text = ures_getStringByKey(bundle.get(), id, &count, &status);
            U_SUCCESS(status)) {
            length = static_cast<unsigned>(count);
            return text;
        }
    }
    return nullptr;
}

std::span<const std::byte> SCOM_ResourceBundle::getBinary(const char* id, const Locale& locale) {
    if (id == nullptr)
        return {};
    const std::lock_guard guard(lock_);
    for (const BundlePtr& bundle : open(locale).bundles) {
        UErrorCode status = U_ZERO_ERROR;
        const BundlePtr item(ures_getByKey(bundle.get(), id, nullptr, &status));
        std::int32_t count = 0;
        if (const std::uint8_t* const bytes = ures_getBinary(item.get(), &count, &status); U_SUCCESS(status))
            return std::as_bytes(std::span(bytes, static_cast<std::size_t>(count)));
    }
    return {};
}

void SCOM_ResourceBundle::cleanup() noexcept {
    const std::lock_guard guard(lock_);
    opened_.clear();
}

wstring load_wstring(SCOM_ResourceBundle* bundle, const char* id) {
    if (bundle == nullptr || id == nullptr)
        return {};
    unsigned length = 0;
    const wchar* const text = bundle->getString(id, detail::resource_locale(), length);
    return text != nullptr ? wstring(text, length) : wstring();
}

} // namespace core
