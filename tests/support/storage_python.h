// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/storage_model.h"

#include <core/files/url.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace core::test {

inline std::string hexadecimal(std::span<const std::byte> bytes) {
    std::string text;
    for (const std::byte b : bytes) {
        text.push_back("0123456789abcdef"[std::to_integer<int>(b) >> 4]);
        text.push_back("0123456789abcdef"[std::to_integer<int>(b) & 15]);
    }
    return text.empty() ? "-" : text;
}

/// A name as its file holds it: each unit with the lower byte first.
inline std::string hexadecimal(wstring_view name) {
    Bytes bytes;
    for (const wchar unit : name) {
        bytes.push_back(static_cast<std::byte>(unit));
        bytes.push_back(static_cast<std::byte>(unit >> 8));
    }
    return hexadecimal(bytes);
}

/// What a container says of one inner file. Names and contents are in hexadecimal.
struct Listed {
    std::uint64_t created;
    std::uint64_t modified;
    std::string content;
    std::uint32_t version; ///< The attribute word; the library does not tell it.

    friend bool operator==(const Listed& a, const Listed& b) {
        return a.created == b.created && a.modified == b.modified && a.content == b.content;
    }
};
/// By the names of the files.
using Listing = std::map<std::string, Listed>;

/// What the library finds in a container.
inline Listing listing(const StorageRW& storage) {
    const StorageReading reading(storage);
    Listing files;
    for (const StorageFound& found : storage.find())
        files[hexadecimal(found.name)] = {found.created.ticks(), found.modified.ticks(),
                                          hexadecimal(storage.get(found.name)), 0};
    return files;
}

/// Somebody else who reads and writes containers and has only the description of the format:
/// tests/storage/container.py.
class Python {
  public:
    Python() : lines_(file_path(create_temp_file_service()->createNamed())), images_(lines_ + ".images") {}
    ~Python() {
        std::filesystem::remove(lines_);
        std::filesystem::remove(images_);
    }
    Python(const Python&) = delete;
    Python& operator=(const Python&) = delete;

    [[nodiscard]] bool exists() const { return !interpreter_.empty(); }

    /// What it finds in each of the images; throws when one of them is not whole.
    [[nodiscard]] std::vector<Listing> list(const std::vector<Bytes>& images,
                                            const StorageLayout& layout) const {
        std::ofstream out(images_, std::ios::binary);
        for (const Bytes& image : images) {
            out << image.size() << '\n';
            out.write(reinterpret_cast<const char*>(image.data()),
                      static_cast<std::streamsize>(image.size()));
        }
        out.close();
        run("list", layout, "<" + images_ + " >" + lines_);
        std::vector<Listing> listings;
        std::ifstream in(lines_);
        for (std::string line; std::getline(in, line);) {
            if (line.empty()) {
                listings.emplace_back();
                continue;
            }
            std::istringstream fields(line);
            std::string name;
            Listed file{};
            fields >> name >> file.created >> file.modified >> file.version >> file.content;
            listings.at(listings.size() - 1)[name] = std::move(file);
        }
        return listings;
    }

    /// A container as it writes one of these files.
    [[nodiscard]] Bytes make(const Model& model, const StorageLayout& layout, int table,
                             unsigned seed) const {
        std::ofstream lines(lines_);
        for (const auto& [name, content] : model)
            lines << hexadecimal(name) << " 12 345678 7 " << hexadecimal(content) << '\n';
        lines.close();
        run("make", layout,
            std::to_string(table) + " " + std::to_string(seed) + " <" + lines_ + " >" + images_);
        return read_whole(*open_disk_file(images_, OpenMode::read));
    }

  private:
    /// The interpreter that can run it, which need not be the first one found; empty when no one can.
    [[nodiscard]] static std::string interpreter() {
        for (const std::string name : {"python3", "/usr/bin/python3"}) {
            if (std::system((name + " -c 'import xxhash' 2>/dev/null").c_str()) == 0)
                return name;
        }
        return {};
    }

    void run(const std::string& command, const StorageLayout& layout, const std::string& more) const {
        const std::string call = interpreter_ + " -B " CORE_SOURCE_DIR "/tests/storage/container.py " +
                                 command + (layout.width == 4 ? " 32 " : " 64 ") + more;
        if (std::system(call.c_str()) != 0)
            throw std::runtime_error("container.py: " + command);
    }

    const std::string interpreter_ = interpreter();
    const std::string lines_;
    const std::string images_;
};

} // namespace core::test
