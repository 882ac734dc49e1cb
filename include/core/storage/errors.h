// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/errors.h>
#include <core/runtime/errors.h>

#include <cstdint>
#include <tuple>

/// The failures of containers.
namespace core {

namespace messages {

// The URL of the container or the inner file follows kStorageBadFormat, kStorageFileNotFound and
// kStorageIsDestination; in the other messages it is {0}, if nothing else is said.

/// A chain of blocks cannot be followed; {0} is the offset of the block.
inline constexpr const char* kStorageChain = "IDS_STERROR_CHAIN";
/// A block header holds a number that is not hexadecimal. No parameters.
inline constexpr const char* kStorageHexNumber = "IDS_STERROR_HEXNUMBER";
/// A container is damaged, or a file is not a container.
inline constexpr const char* kStorageBadFormat = "IDS_STERROR_BADFORMAT";
/// A container did not become free in time.
inline constexpr const char* kStorageBusy = "IDS_STERROR_BUSY";
/// An inner file was changed by somebody else while it was open for writing.
inline constexpr const char* kStorageChanged = "IDS_STERROR_CHANGED";
/// A container has the other layout; {1} is 32 or 64, {2} the scheme that opens it.
inline constexpr const char* kStorageOtherLayout = "IDS_STERROR_OTHERLAYOUT";
/// A container takes no changes after an earlier failure to make them durable.
inline constexpr const char* kStorageFailed = "IDS_STERROR_FAILED";
/// A container has no such inner file.
inline constexpr const char* kStorageFileNotFound = "IDS_STERROR_FILENOTFOUND";
/// The source of a copy or a move is also its destination.
inline constexpr const char* kStorageIsDestination = "IDS_STERROR_ISDESTINATION";
/// A name of an inner file is too long; {0} is the URL of that file, or its name where it has none.
inline constexpr const char* kStorageLongName = "IDS_STERROR_LONGNAME";
/// What was written to an inner file was given up.
inline constexpr const char* kStorageLost = "IDS_STERROR_LOST";
/// An inner file is open for writing already.
inline constexpr const char* kStorageOpened = "IDS_STERROR_OPENED";
/// A container was opened for reading only.
inline constexpr const char* kStorageReadOnly = "IDS_STERROR_READONLY";
/// A container would become larger than its layout can address.
inline constexpr const char* kStorageTooLarge = "IDS_STERROR_TOOLARGE";
/// A container has a group of changes open already.
inline constexpr const char* kStorageTransaction = "IDS_STERROR_TRANSACTION";

} // namespace messages

/// A container file, or an inner file of one, that cannot be used. The message holds its URL.
class CORE_API StorageException : public BasicException<StorageException> {
  public:
    /// The class id of StorageExceptionObject.
    static constexpr GUID kClassId = "d01fdb85-3f36-4fbc-a888-0274919cc82b"_guid;
    /// The failures that callers tell apart.
    enum class Kind : std::int32_t {
        none = 0,          ///< none of the others; the message says which
        badFormat = 1,     ///< kStorageBadFormat
        isDestination = 2, ///< kStorageIsDestination
        fileNotFound = 3   ///< kStorageFileNotFound
    };

    using BasicException::BasicException;
    /// Makes a failure with the message of `kind` and the quoted URL. Takes a reference to `cause`, which may
    /// be null.
    StorageException(Kind kind, const wstring& url, IExceptionObject* cause = nullptr);
    /// Makes a failure with a message of its own. Takes a reference to `cause`, which may be null.
    StorageException(Kind kind, const wstring& url, const wstring& description,
                     IExceptionObject* cause = nullptr)
        : BasicException(description, cause), kind_(kind), url_(url) {}
    /// Returns the kind of the failure.
    [[nodiscard]] Kind kind() const noexcept { return kind_; }
    /// Returns the URL of the container or the inner file, borrowed: valid as long as this exception.
    [[nodiscard]] const wstring& url() const noexcept { return url_; }

  private:
    template <class>
    friend class IExceptionObjectImpl;
    static auto fields(auto& self) noexcept { return std::tie(self.kind_, self.url_); }

    Kind kind_ = Kind::none;
    wstring url_;
};

/// The error object of StorageException.
using StorageExceptionObject = IExceptionObjectImpl<StorageException>;

/// A number in a block header that is not hexadecimal. Its error object is that of ConverterException.
class CORE_API HexConvExc : public ConverterException {
  public:
    /// Makes the failure with its message, kStorageHexNumber.
    HexConvExc();
};

/// A chain of blocks that cannot be followed: a StorageException of the kind `badFormat` without a URL,
/// because a chain does not know its container. Its error object is that of StorageException.
class CORE_API ChainInFileExc : public StorageException {
  public:
    /// Makes the failure with its message, kStorageChain, for the block at `address`.
    explicit ChainInFileExc(std::uint64_t address);
    /// Returns the offset in bytes of the block at which the damage shows.
    [[nodiscard]] std::uint64_t address() const noexcept { return address_; }

  private:
    std::uint64_t address_;
};

} // namespace core
