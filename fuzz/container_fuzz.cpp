// SPDX-License-Identifier: Apache-2.0
// Any bytes, opened as a container of either layout; and once more with the checksums that they should have.
// What is damaged says so with its kind and URL and is not written to by reading; what is whole can be read,
// changed and compacted, and stays whole. What is salvaged of either is whole.
#include "tests/support/storage_seal.h"

#include <core/files.h>
#include <core/storage.h>
#include <core/storage/errors.h>

#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

namespace {

using namespace core;

void require(bool condition) {
    if (!condition)
        std::abort();
}

/// Whether `call` finds damage; nothing else may go wrong.
template <class Call>
bool finds_damage(Call call) {
    try {
        call();
        return false;
    } catch (const StorageException& e) {
        require(e.kind() == StorageException::Kind::badFormat && e.url().starts_with(u"mem://"));
        return true;
    }
}

void read_all(const StorageRW& storage) {
    const StorageReading reading(storage);
    for (const StorageFound& found : storage.find())
        require(storage.get(found.name).size() == found.size);
}

void change_all(StorageRW& storage) {
    const std::vector<std::byte> bytes(2000, std::byte{1});
    storage.put(u"new", bytes);
    const auto found = storage.find();
    for (std::size_t i = 0; i < found.size(); i += 2)
        storage.remove(found[i].name);
    storage.put(u"new", bytes);
    const auto file = storage.open(u"new", OpenMode::readWrite);
    write_all_at(*file, 700, std::span(bytes).first(10));
    file->close();
    storage.compact();
    require(storage.get(u"new") == bytes);
}

/// What can be saved makes a container without fault; of a whole one that is everything.
void salvage_all(IFile& file, const StorageRW* whole, const StorageLayout& layout) {
    const auto saved = open_memory_file(create_memory_data());
    StorageRW::create(*saved, layout);
    StorageRW target(saved, layout);
    SalvageReport report;
    const bool nothing = finds_damage([&] { report = salvage(file, layout, target); });
    require(target.check().isClean());
    if (whole == nullptr)
        return;
    require(!nothing && report.isComplete());
    for (const StorageFound& found : whole->find())
        require(target.get(found.name) == whole->get(found.name));
}

void run(const std::vector<std::byte>& bytes, const StorageLayout& layout) {
    const auto file = open_memory_file(create_memory_data());
    write_all(*file, bytes);
    salvage_all(*file, nullptr, layout);
    (void)finds_damage([&] {
        StorageRW storage(file, layout);
        storage.setRootURL(u"mem://box/");
        StorageCheck check;
        require(!finds_damage([&] { check = storage.check(); })); // it lists what is damaged
        for (const StorageProblem& problem : check.problems)
            require(!problem.text().empty());
        const bool damaged = finds_damage([&] { read_all(storage); });
        require(read_whole(*file) == bytes);
        if (!check.isClean()) {
            (void)finds_damage([&] { change_all(storage); });
            return;
        }
        require(!damaged);
        salvage_all(*file, &storage, layout);
        require(!finds_damage([&] { change_all(storage); }));
        require(storage.check().isClean());
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = std::as_bytes(std::span(data, size));
    for (const StorageLayout* layout : {&kStorageLayout32, &kStorageLayout64}) {
        std::vector<std::byte> bytes(input.begin(), input.end());
        run(bytes, *layout);
        if (test::Seal(bytes, *layout).put())
            run(bytes, *layout);
    }
    return 0;
}
