// SPDX-License-Identifier: Apache-2.0
#include "core/storage/attributes.h"

#include "core/storage/block_chain.h"

#include <core/storage/errors.h>

#include <utility>

namespace core {

StorageFileInfo read_attributes(BlockReader& reader, std::uint64_t address, wstring_view name) {
    BlockChain chain(reader.layout());
    chain.open(reader, address, kReadWithAttributes);
    const std::uint64_t size = StorageFileInfo::kLeastSize + 2 * name.size();
    if (chain.size() != size && chain.size() != size + 1) // the name's length is rounded down
        throw ChainInFileExc(address);
    auto info = StorageFileInfo::decode(chain.content(reader));
    if (!info || info->name != name)
        throw ChainInFileExc(address);
    return *std::move(info);
}

} // namespace core
