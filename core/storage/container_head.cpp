// SPDX-License-Identifier: Apache-2.0
#include "core/storage/container_head.h"

#include "core/storage/little_endian.h"

namespace core {

ContainerHead ContainerHead::empty(const StorageLayout& layout) noexcept {
    return {.freeChain = layout.null, .table = {0, kStorageBlockSize, layout.null}};
}

ContainerHead ContainerHead::decode(const Bytes& bytes, const StorageLayout& layout) {
    const std::byte* const from = bytes.data();
    return {load_number(from, layout.width), load_number(from + layout.width, layout.width),
            load_number(from + 2 * layout.width, 8),
            decode_block_header(from + layout.headerSize(), layout, layout.headerSize(), true)};
}

ContainerHead::Bytes ContainerHead::encode(const StorageLayout& layout) const noexcept {
    Bytes bytes{};
    store_number(bytes.data(), freeChain, layout.width);
    store_number(bytes.data() + layout.width, blockSize, layout.width);
    store_number(bytes.data() + 2 * layout.width, counter, 8);
    encode_block_header(bytes.data() + layout.headerSize(), layout, table);
    return bytes;
}

} // namespace core
