// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <cstdint>
#include <exception>

namespace core {

/// A number in a block header with something else than hexadecimal digits in it.
class CORE_API HexConvExc : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "not a hexadecimal number"; }
};

/// A chain that cannot be followed, and the block at which that shows. Turned into a StorageException where
/// the URL is known.
class CORE_API ChainInFileExc : public std::exception {
  public:
    explicit ChainInFileExc(std::uint64_t address) noexcept : address_(address) {}
    [[nodiscard]] std::uint64_t address() const noexcept { return address_; }
    [[nodiscard]] const char* what() const noexcept override { return "a damaged chain of blocks"; }

  private:
    std::uint64_t address_;
};

} // namespace core
