// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/file_helpers.h"

#include <core/profiles.h>
#include <host/host_process.h>

#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace core::test {

/// Profiles on the files of one folder, as several programs have them.
class ProfileTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!replaces_open_files(folder_ / "probe"))
            GTEST_SKIP() << "a file that is open cannot be replaced here, which settings need";
    }
    [[nodiscard]] InterfacePtr<IProfile> open() const {
        ProfileSettings places;
        places.user = file_url(userFile());
        places.system = file_url(systemFile());
        return create_profile(places);
    }
    [[nodiscard]] std::string userFile() const { return folder_ / "user/settings.list"; }
    [[nodiscard]] std::string systemFile() const { return folder_ / "system.list"; }
    [[nodiscard]] std::string file(std::string_view name) const { return folder_ / name; }

    [[nodiscard]] static std::string bytesOf(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static void write(const std::string& path, std::string_view bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    /// The message id of the exception of class `E` that `call` throws.
    template <class E, class Call>
    [[nodiscard]] static std::string refusal(Call call) {
        try {
            call();
        } catch (const E& e) {
            return e.messageId();
        }
        return "no exception of this class";
    }

    const host::HostProcess process_;
    // In memory where that can be had: what is made durable takes no time there.
    static std::filesystem::path parent() {
        const std::filesystem::path memory("/dev/shm");
        return memory.is_absolute() && exists(memory) ? memory : std::filesystem::temp_directory_path();
    }
    const TempFolder folder_{parent()};
};

using Model = std::map<wstring, GenericValue>;

/// All values of a profile, or of a folder in it.
inline Model contents(IProfile& profile, wstring_view folder = {}) {
    Model all;
    for (ProfileEntry& entry : profile.entries(folder))
        all.emplace(std::move(entry.path), std::move(entry.found.value));
    return all;
}

/// Does to a model what removing a path does.
inline void remove_from(Model& model, const wstring& path) {
    if (path.empty())
        return model.clear();
    model.erase(path);
    model.erase(model.lower_bound(path + u'/'), model.lower_bound(path + u'0')); // the unit behind "/"
}

} // namespace core::test
