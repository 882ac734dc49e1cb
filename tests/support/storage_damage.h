// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/fault_file.h"
#include "tests/support/memory_peak.h"
#include "tests/support/storage_image.h"
#include "tests/support/storage_model.h"

#include <core/storage/chain.h>
#include <core/storage/errors.h>

#include <gtest/gtest.h>

#include <array>
#include <ctime>
#include <string>

namespace core::test {

/// What goes wrong with a container.
enum class Damage { tableBytes, tableRows, freeList, sharedBlocks, blockHeaders, anyBytes, sector, cut };
inline constexpr std::array kAllDamage = {Damage::tableBytes,   Damage::tableRows,    Damage::freeList,
                                          Damage::sharedBlocks, Damage::blockHeaders, Damage::anyBytes,
                                          Damage::sector,       Damage::cut};

/// Damages a container that is whole, in one random place of a kind.
class Vandal {
  public:
    Vandal(const Bytes& bytes, const StorageLayout& layout) : bytes_(bytes), layout_(layout) {
        disk_.bytes = bytes;
        file_ = open_fault_file(disk_);
        const std::uint64_t freeChain = word(0, layout.width);
        table_.read(*file_, layout.headerSize(), u"");
        free_.read(*file_, freeChain, u"");
        // Every chain begins with a block that says how long the chain is.
        const std::uint64_t step = layout.blockLength(512);
        for (std::uint64_t at = layout.emptyLength(); at + step <= bytes.size(); at += step) {
            ChainInFile chain(layout);
            try {
                chain.read(*file_, at, u"");
            } catch (const StorageException&) { // free space may hold anything
            }
            if (chain.size() != 0)
                chains_.push_back(std::move(chain));
        }
        isTree_ = bytes.at(layout.headerSize() + layout.blockHeaderSize() + 29) == std::byte{'2'};
    }

    [[nodiscard]] Bytes damaged(Damage kind, Random& random) const {
        Bytes bytes = bytes_;
        const auto some = [&](const std::vector<ChainInFile>& of) -> const ChainInFile& {
            return of[random.below(of.size())];
        };
        const auto block = [&](const ChainInFile& chain) {
            return chain.blocks()[random.below(chain.blocks().size())].address;
        };
        const std::size_t width = layout_.width;
        switch (kind) {
        case Damage::tableBytes: // behind the mark
            for (std::size_t i = random.below(3) + 1; i > 0; --i)
                set(bytes, table_, 512 + random.below(table_.size() - 512), 1, random.engine());
            break;
        case Damage::tableRows: { // an address of a row, or the end, becomes that of another block
            const std::uint64_t rows = isTree_ ? 1 : word(where(table_, 512), width);
            const std::uint64_t field = random.below(3 * rows + 1);
            const std::uint64_t offset = field == 0             ? width
                                         : (field - 1) % 3 == 2 ? 2 * width
                                                                : (1 + field) * width;
            set(bytes, table_, 512 + offset, width, block(some(chains_)));
            break;
        }
        case Damage::freeList: // a range that begins or ends in what is used
            if (free_.blocks().empty())
                break;
            for (std::size_t i = random.below(3) + 1; i > 0; --i) {
                const bool length = random.below(2) == 0;
                const std::uint64_t entry = random.below(free_.size() / (2 * width));
                set(bytes, free_, (2 * entry + (length ? 1 : 0)) * width, width,
                    length ? layout_.blockLength(512) * (1 + random.below(40)) : block(some(chains_)));
            }
            break;
        case Damage::sharedBlocks: // a chain goes on in another
            link(bytes, block(some(chains_)), block(some(chains_)));
            break;
        case Damage::blockHeaders:
            bytes[block(some(chains_)) + random.below(layout_.blockHeaderSize())] =
                static_cast<std::byte>(random.engine());
            break;
        case Damage::anyBytes:
            for (std::size_t i = random.below(4) + 1; i > 0; --i)
                bytes[random.below(bytes.size())] ^= static_cast<std::byte>(1 << random.below(8));
            break;
        case Damage::sector: {
            const std::size_t begin = random.below(bytes.size()) / 512 * 512;
            std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                        std::min<std::size_t>(512, bytes.size() - begin), std::byte{});
            break;
        }
        case Damage::cut:
            bytes.resize(bytes.size() - 1 - random.below(random.below(2) == 0 ? 3 : bytes.size() - 1));
            break;
        }
        return bytes;
    }
    /// Makes the block at `to` follow that at `from`.
    void link(Bytes& bytes, std::uint64_t from, std::uint64_t to) const {
        const std::string text = hex(to, layout_.digits());
        std::memcpy(bytes.data() + from + 4 + 2 * layout_.digits(), text.data(), text.size());
    }

  private:
    [[nodiscard]] std::uint64_t word(std::uint64_t address, std::size_t width) const {
        std::uint64_t number = 0;
        for (std::size_t i = width; i-- > 0;)
            number = number << 8 | static_cast<std::uint64_t>(bytes_.at(address + i));
        return number;
    }
    /// The address of a byte of a chain's content.
    [[nodiscard]] std::uint64_t where(const ChainInFile& chain, std::uint64_t offset) const {
        for (const ChainInFile::Block& block : chain.blocks()) {
            if (offset < block.size)
                return block.address + layout_.blockHeaderSize() + offset;
            offset -= block.size;
        }
        throw std::logic_error("the chain ends before");
    }
    void set(Bytes& bytes, const ChainInFile& chain, std::uint64_t offset, std::size_t width,
             std::uint64_t number) const {
        for (std::size_t i = 0; i < width; ++i)
            bytes.at(where(chain, offset + i)) = static_cast<std::byte>(number >> 8 * i);
    }

    Bytes bytes_;
    const StorageLayout& layout_;
    FaultDisk disk_;
    InterfacePtr<IFile> file_;
    ChainInFile table_{layout_};
    ChainInFile free_{layout_};
    std::vector<ChainInFile> chains_;
    bool isTree_ = false;
};

/// What can be read of a container, file by file.
inline Model readable(const Bytes& bytes, const StorageLayout& layout, const Model& model) {
    FaultDisk disk;
    disk.bytes = bytes;
    Model found;
    try {
        const StorageRW storage(open_fault_file(disk), layout);
        for (const auto& [name, content] : model) {
            try {
                found[name] = storage.get(name);
            } catch (const StorageException&) {
            }
        }
    } catch (const StorageException&) { // not even opened
    }
    return found;
}

/// A container that was damaged, and what of it can still be read as it was.
struct DamagedContainer {
    FaultDisk disk;
    Model sound;
    Random random;
    std::string where; ///< for messages
};

/// Damages a container that holds `model` in each way, with so many seeds, and calls
/// `visit(DamagedContainer&)`. Whatever the damage, that takes neither a second nor memory without bound.
template <class Visit>
void for_each_damage(const Bytes& bytes, const StorageLayout& layout, const Model& model, unsigned seeds,
                     Visit visit) {
    const Vandal vandal(bytes, layout);
    const std::size_t most = (std::size_t{16} << 20) + 4 * bytes.size(); // some copies of what is read
    for (const Damage kind : kAllDamage) {
        for (unsigned seed = 0; seed < seeds; ++seed) {
            DamagedContainer damaged{{},
                                     {},
                                     Random(seed),
                                     "damage " + std::to_string(static_cast<int>(kind)) + ", seed " +
                                         std::to_string(seed)};
            damaged.disk.bytes = vandal.damaged(kind, damaged.random);
            damaged.sound = readable(damaged.disk.bytes, layout, model);
            std::erase_if(damaged.sound,
                          [&](const auto& file) { return file.second != model.at(file.first); });
            const ::test::MemoryPeak memory;
            const std::clock_t begin = std::clock();
            visit(damaged);
            EXPECT_LT(std::clock() - begin, CLOCKS_PER_SEC) << damaged.where;
            EXPECT_LT(memory.bytes(), most) << damaged.where;
            if (testing::Test::HasFatalFailure())
                return;
        }
    }
}

} // namespace core::test
