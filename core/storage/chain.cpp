// SPDX-License-Identifier: Apache-2.0
#include "core/storage/block_chain.h"
#include "core/storage/block_reader.h"

#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/storage/chain.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <cerrno>
#include <span>
#include <utility>

namespace core {

ChainInFile::ChainInFile(const StorageLayout& layout) noexcept : layout_(&layout) {}

void ChainInFile::read(IFile& file, std::uint64_t address, const wstring& url) {
    BlockChain chain(*layout_);
    try {
        BlockReader reader(file, *layout_);
        reader.setEnd(std::min(layout_->limit(), file.length()));
        chain.open(reader, address, 0);
        chain.walk(reader);
    } catch (const ChainInFileExc&) {
        throw StorageException(StorageException::Kind::badFormat, url);
    }
    std::vector<Block> blocks;
    for (const BlockRun& run : chain.runs().runs()) {
        for (std::uint64_t i = 0; i < run.count; ++i)
            blocks.push_back({run.address + i * layout_->blockLength(run.size), run.size});
    }
    blocks_ = std::move(blocks);
    size_ = chain.size();
}

std::vector<std::byte> ChainInFile::content(IFile& file, const wstring& url) const {
    std::vector<std::byte> bytes;
    if (size_ > bytes.max_size())
        throw_file_error(messages::kFileRead, url, EFBIG);
    for (const Block& block : blocks_) {
        const std::size_t done = bytes.size();
        const auto part = static_cast<std::size_t>(std::min(block.size, size_ - done));
        bytes.resize(done + part);
        const auto data = std::span(bytes).subspan(done);
        if (read_all_at(file, block.address + layout_->blockHeaderSize(), data) != part)
            throw StorageException(StorageException::Kind::badFormat, url);
    }
    return bytes;
}

} // namespace core
