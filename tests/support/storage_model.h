// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files.h>
#include <core/storage.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace core::test {

using Bytes = std::vector<std::byte>;
/// What a container should hold.
using Model = std::map<wstring, Bytes>;

struct Random {
    std::mt19937 engine;
    explicit Random(unsigned seed) : engine(seed) {}
    std::size_t below(std::size_t limit) { return engine() % limit; }
    Bytes bytes(std::size_t size) {
        Bytes result(size);
        for (std::byte& b : result)
            b = static_cast<std::byte>(engine());
        return result;
    }
    /// Mostly small, sometimes some hundred blocks.
    std::size_t size() {
        const std::size_t scale[] = {1, 20, 600, 3000, 20000, 150000};
        return below(scale[below(10) < 9 ? below(4) : 4 + below(2)]);
    }
    wstring name() {
        static const wstring names[] = {u"",
                                        u"a",
                                        u"A",
                                        u"readme.txt",
                                        u"Имя",
                                        u"имя",
                                        u"ß",
                                        u"ss",
                                        u"😀",
                                        u"folder/inner",
                                        u"x\0y",
                                        wstring(300, u'n'),
                                        wstring(1, 0xD800)};
        return names[below(std::size(names))];
    }
};

/// As block headers hold numbers.
inline std::string hex(std::uint64_t number, std::size_t digits) {
    std::string text(digits, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number /= 16)
        *digit = "0123456789abcdef"[number % 16];
    return text;
}

inline Model contents(const StorageRW& storage) {
    const StorageReading reading(storage);
    Model model;
    for (const StorageFound& found : storage.find())
        model[found.name] = storage.get(found.name);
    return model;
}

/// Writes through an open file in every way there is.
inline void edit(Random& random, IFile& file, Bytes& model) {
    for (std::size_t step = 1 + random.below(5); step > 0; --step) {
        const std::size_t position = random.below(3) == 0 ? model.size() : random.below(model.size() + 2000);
        switch (random.below(5)) {
        case 0:
            file.truncate(position);
            model.resize(position);
            break;
        case 1: {
            Bytes read(random.size());
            read.resize(read_all_at(file, position, read));
            const std::size_t start = std::min(position, model.size());
            if (!std::equal(read.begin(), read.end(), model.begin() + static_cast<std::ptrdiff_t>(start)))
                throw std::logic_error("an open file does not read as it was written");
            break;
        }
        default: {
            const Bytes bytes = random.bytes(random.size());
            write_all_at(file, position, bytes);
            if (bytes.empty())
                break;
            model.resize(std::max(model.size(), position + bytes.size()));
            std::copy(bytes.begin(), bytes.end(), model.begin() + static_cast<std::ptrdiff_t>(position));
        }
        }
    }
}

/// One random change, the same to both. Each is one commit outside a transaction. False when nothing was
/// changed, because no file exists.
inline bool change(Random& random, StorageRW& storage, Model& model) {
    const wstring name = random.name();
    const bool exists = model.contains(name);
    Model after = model;
    switch (random.below(exists ? 7 : 3)) {
    case 0: {
        const auto file = storage.open(name, OpenMode::create);
        edit(random, *file, after[name]);
        file->close();
        break;
    }
    case 1: {
        const auto file = storage.open(name, OpenMode::replace);
        after[name].clear();
        edit(random, *file, after[name]);
        file->close();
        break;
    }
    case 2:
        after[name] = random.bytes(random.size());
        storage.put(name, after[name]);
        break;
    case 3:
    case 4:
        storage.remove(name);
        after.erase(name);
        break;
    case 5: {
        const wstring other = random.name();
        if (other == name)
            return false;
        storage.rename(name, other);
        after[other] = std::move(after[name]);
        after.erase(name);
        break;
    }
    case 6: {
        const wstring other = random.name();
        if (other == name)
            return false;
        storage.copy(name, other);
        after[other] = after[name];
        break;
    }
    }
    model = std::move(after);
    return true;
}

} // namespace core::test
