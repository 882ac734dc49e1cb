// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists/nesting.h>
#include <core/runtime/persistable.h>
#include <core/runtime/unknown.h>

/// The brace list as a place that objects are written to and read from.
namespace core {

/// Writes bodies to a brace list.
class CORE_API ListOutStorage final : public IUnknownImpl<ListOutStorage, IOutPersistenceStorage> {
  public:
    /// Makes a storage over `stream`, which belongs to the caller and must live longer.
    explicit ListOutStorage(ListOutStream& stream) noexcept : stream_(stream) {}
    ListOutStream& listStream() noexcept override { return stream_; }
    Nesting& nesting() noexcept override { return nesting_; }
    void putFailure(const Exception& failure, std::span<const FailureField> fields) override;

  private:
    ListOutStream& stream_;
    Nesting nesting_;
};

/// Reads bodies from a brace list.
class CORE_API ListInStorage final : public IUnknownImpl<ListInStorage, IInPersistenceStorage> {
  public:
    /// Makes a storage over `stream`, which belongs to the caller and must live longer.
    explicit ListInStorage(ListInStream& stream) noexcept : stream_(stream) {}
    ListInStream& listStream() noexcept override { return stream_; }
    Nesting& nesting() noexcept override { return nesting_; }
    StoredFailure getFailure(std::span<FailureField> fields) override;

  private:
    ListInStream& stream_;
    Nesting nesting_;
};

} // namespace core
