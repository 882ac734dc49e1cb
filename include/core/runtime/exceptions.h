// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

#include <cstdint>

/// The exception classes of the library. Each names, as kClassId, the class id of
/// its twin error-object class.
///
/// Who can act on what: the caller's mistake is a ContextException, TypeException or ConverterException;
/// damaged data a ListStreamException or StorageException; the environment a FileException or
/// FileStreamException.
namespace core {

/// What all exception classes without data of their own look like; `Self` names the class id.
template <class Self>
class BasicException : public Exception {
  public:
    explicit BasicException(const wchar* description = nullptr, IExceptionObject* cause = nullptr)
        : Exception(Self::kClassId, description, cause) {}
    explicit BasicException(const wstring& description, IExceptionObject* cause = nullptr)
        : Exception(Self::kClassId, description, cause) {}
};

/// A process that could not be brought up. It has no error object of its own: nobody
/// is there yet to take one.
class CORE_API ProcessInitException : public Exception {
  public:
    explicit ProcessInitException(const wstring& description, IExceptionObject* cause = nullptr)
        : Exception(Exception::kClassId, description, cause) {}
};

/// A failed automation call.
class CORE_API COMException : public BasicException<COMException> {
  public:
    static constexpr GUID kClassId = "4061180c-eee5-4ee5-bfe6-021f7c0becb1"_guid;
    using BasicException::BasicException;
};

/// A wrong call of a property or method: an unknown name, an argument of a wrong type or
/// value, an index out of bounds.
class CORE_API ContextException : public BasicException<ContextException> {
  public:
    static constexpr GUID kClassId = "f08d92f8-9eb2-4e19-9dd9-977d907cec2d"_guid;
    using BasicException::BasicException;
};

/// Text that cannot be converted between encodings or forms.
class CORE_API ConverterException : public BasicException<ConverterException> {
  public:
    static constexpr GUID kClassId = "12d4914c-d6ae-4255-87a1-02485be1b924"_guid;
    using BasicException::BasicException;
};

/// An object that could not be constructed from the given arguments.
class CORE_API CtorException : public BasicException<CtorException> {
  public:
    static constexpr GUID kClassId = "2e20eda7-414a-4549-ae78-06c19979ce2d"_guid;
    using BasicException::BasicException;
};

/// A source of data that could not be opened or read.
class CORE_API DataSourceException : public BasicException<DataSourceException> {
  public:
    static constexpr GUID kClassId = "a1c2eb69-786f-47ac-9bda-d151db42d13d"_guid;
    using BasicException::BasicException;
};

/// A text or byte stream over a file that could not be read or written.
class CORE_API FileStreamException : public BasicException<FileStreamException> {
  public:
    static constexpr GUID kClassId = "c7c8aa40-694c-49db-9ce1-b26120992919"_guid;
    using BasicException::BasicException;
};

/// Malformed brace-list text.
class CORE_API ListStreamException : public BasicException<ListStreamException> {
  public:
    static constexpr GUID kClassId = "e88a796d-7758-48a7-9ba7-781e269e9aa4"_guid;
    using BasicException::BasicException;
};

/// A locale that the system does not know, or has no rules for.
class CORE_API LocaleException : public BasicException<LocaleException> {
  public:
    static constexpr GUID kClassId = "a5ac9977-cc6b-4878-95b5-4969293f7ed5"_guid;
    using BasicException::BasicException;
};

/// A source of data that cannot be totalled by its dimensions.
class CORE_API PivotSourceException : public BasicException<PivotSourceException> {
  public:
    static constexpr GUID kClassId = "34212dd6-31c7-4306-bc16-c1b43c60d8fa"_guid;
    using BasicException::BasicException;
};

/// A call to another process that did not come through.
class CORE_API RemotingException : public BasicException<RemotingException> {
  public:
    static constexpr GUID kClassId = "df84c0d7-ee36-4d9f-96ca-503359a67a6c"_guid;
    using BasicException::BasicException;
};

/// Types that a provider of type descriptions could not name.
class CORE_API TypeDomainPatternProviderException
    : public BasicException<TypeDomainPatternProviderException> {
  public:
    static constexpr GUID kClassId = "04fbed05-9f33-47ac-bf0a-fea914fea601"_guid;
    using BasicException::BasicException;
};

/// A type that is not registered, or a value without the type that is needed.
class CORE_API TypeException : public BasicException<TypeException> {
  public:
    static constexpr GUID kClassId = "96a351f3-7957-48c1-80f4-80ac15b233da"_guid;
    using BasicException::BasicException;
};

/// A value that cannot tell whether it is filled.
class CORE_API ValueIsFilledException : public BasicException<ValueIsFilledException> {
  public:
    static constexpr GUID kClassId = "692be45e-09da-4328-9a57-bc5237164046"_guid;
    using BasicException::BasicException;
};

/// Data written by a newer or otherwise unsupported version.
class CORE_API VersionException : public BasicException<VersionException> {
  public:
    static constexpr GUID kClassId = "9f06d311-1431-4a54-bd6f-fa93c4d4c471"_guid;
    using BasicException::BasicException;
};

/// Two values that have no order between them.
class CORE_API ComparatorException : public BasicException<ComparatorException> {
  public:
    static constexpr GUID kClassId = "f3553ff2-2831-469a-a033-0c2abba6cd03"_guid;
    enum class Error : std::int32_t { none = 0, incomparable = 1 };

    using BasicException::BasicException;
    explicit ComparatorException(Error error, const wstring& description = wstring(),
                                 IExceptionObject* cause = nullptr)
        : BasicException(description, cause), error_(error) {}
    [[nodiscard]] Error error() const noexcept { return error_; }
    /// The resource id of the text that belongs to the error; empty for none.
    [[nodiscard]] const char* messageId() const noexcept;

  private:
    Error error_ = Error::none;
};

/// An automation type that could not be used: an error number and the id of the type.
class CORE_API COMTypeException : public BasicException<COMTypeException> {
  public:
    static constexpr GUID kClassId = "31c9840c-822a-4b75-9b4d-e5f691d035f4"_guid;

    using BasicException::BasicException;
    COMTypeException(std::int32_t error, const GUID& type, const wstring& description = wstring(),
                     IExceptionObject* cause = nullptr)
        : BasicException(description, cause), error_(error), type_(type) {}
    [[nodiscard]] std::int32_t error() const noexcept { return error_; }
    [[nodiscard]] const GUID& type() const noexcept { return type_; }

  private:
    std::int32_t error_ = 0;
    GUID type_;
};

/// Arithmetic without a result.
class CORE_API NumericException : public BasicException<NumericException> {
  public:
    static constexpr GUID kClassId = "e62f19b5-a855-418f-a162-77d8571e9ddc"_guid;
    enum class Error : std::int32_t { none = 0, divideByZero = 1, negativePower = 2, overflow = 3 };

    using BasicException::BasicException;
    /// The message is the text that belongs to the error.
    explicit NumericException(Error error, IExceptionObject* cause = nullptr);
    NumericException(Error error, const wstring& description, IExceptionObject* cause = nullptr)
        : BasicException(description, cause), error_(error) {}
    [[nodiscard]] Error error() const noexcept { return error_; }
    /// The resource id of the text that belongs to the error; empty for none.
    [[nodiscard]] const char* messageId() const noexcept;

  private:
    Error error_ = Error::none;
};

/// A file that could not be opened, read, written or locked; the message holds the
/// URL and the system's reason.
class CORE_API FileException : public BasicException<FileException> {
  public:
    static constexpr GUID kClassId = "9db1fa37-b455-4f3f-b8dd-7de0ea7d6da3"_guid;

    using BasicException::BasicException;
    /// `systemError` is the system's error number (errno), 0 when the system gave none.
    FileException(const wstring& description, const wstring& url, std::int32_t systemError,
                  IExceptionObject* cause = nullptr)
        : BasicException(description, cause), url_(url), systemError_(systemError) {}
    [[nodiscard]] const wstring& url() const noexcept { return url_; }
    [[nodiscard]] std::int32_t systemError() const noexcept { return systemError_; }

  private:
    wstring url_;
    std::int32_t systemError_ = 0;
};

/// A container file, or an inner file of one, that cannot be used; the message ends with its URL.
class CORE_API StorageException : public BasicException<StorageException> {
  public:
    static constexpr GUID kClassId = "d01fdb85-3f36-4fbc-a888-0274919cc82b"_guid;
    enum class Kind : std::int32_t { none = 0, badFormat = 1, isDestination = 2, fileNotFound = 3 };

    using BasicException::BasicException;
    /// The message is the text that belongs to the kind, followed by the quoted URL.
    StorageException(Kind kind, const wstring& url, IExceptionObject* cause = nullptr);
    StorageException(Kind kind, const wstring& url, const wstring& description,
                     IExceptionObject* cause = nullptr)
        : BasicException(description, cause), kind_(kind), url_(url) {}
    [[nodiscard]] Kind kind() const noexcept { return kind_; }
    [[nodiscard]] const wstring& url() const noexcept { return url_; }

  private:
    Kind kind_ = Kind::none;
    wstring url_;
};

} // namespace core
