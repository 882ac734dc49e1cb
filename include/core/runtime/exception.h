// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/runtime/module_anchor.h>
#include <core/runtime/refcount.h>

#include <exception>
#include <initializer_list>
#include <span>
#include <string>

/// How a failure is reported: the base of all exceptions, the counted object that carries one across modules,
/// and the one function that throws. The exception classes stand in the `errors.h` of the layers.
namespace core {

class Exception;

/// A failure as a counted object: it can be stored, handed to another module, kept as the cause of a later
/// failure and thrown again. Holds one exception of its own kind.
class IExceptionObject : public IUnknown {
  public:
    /// The interface id.
    static constexpr GUID IID = "635dade6-4da0-44c6-a82a-4a26797b403a"_guid;

    /// Copies the class id, the description and the cause of `e` into the held exception; the whole exception
    /// when it has the object's own class. Throws std::bad_alloc, and the object is then unchanged.
    virtual void init(const Exception& e) = 0;
    /// Throws a copy of the held exception as its own type. The object is unchanged and may be raised again.
    [[noreturn]] virtual void raise() = 0;
    /// Returns the held exception, borrowed: valid as long as this object.
    virtual Exception& exception() noexcept = 0;

  protected:
    ~IExceptionObject() = default;
};

/// The error object of exception class `X`: <core/runtime/exception_object.h> defines it.
template <class X>
class IExceptionObjectImpl;

/// The base of every failure that the library throws: a finished message in the user's language, the id and
/// the parameters that it was made from, the class id of the error object that carries such a failure across
/// modules, and the failure that caused it, if any.
///
/// Copying adds a reference to the cause, moving hands it over; an assignment that fails changes nothing.
class CORE_API Exception : public std::exception {
  public:
    /// The class id of ExceptionObject.
    static constexpr GUID kClassId = "f6f167a0-dcc9-49ad-8f8e-2c9d9904e4fe"_guid;

    /// Makes a failure with a copy of `description`; null gives an empty one. Takes a reference to `cause`,
    /// which may be null.
    explicit Exception(const wchar* description = nullptr, IExceptionObject* cause = nullptr);
    /// Makes a failure with a copy of `description`. Takes a reference to `cause`, which may be null.
    explicit Exception(const wstring& description, IExceptionObject* cause = nullptr);
    /// Copies the failure and takes a reference to its cause.
    Exception(const Exception&);
    /// Takes over the failure and its reference.
    Exception(Exception&&) noexcept;
    /// Copies the failure; when that throws std::bad_alloc, this one is unchanged.
    Exception& operator=(const Exception&);
    /// Takes over the failure and its reference.
    Exception& operator=(Exception&&) noexcept;
    /// Releases the cause.
    ~Exception() override;

    /// Returns the class id of the twin error-object class.
    [[nodiscard]] const GUID& clsid() const noexcept { return clsid_; }
    /// Returns the message, borrowed: valid as long as this exception.
    [[nodiscard]] const wstring& description() const noexcept { return description_; }
    /// Returns the failure behind this one, borrowed: valid as long as this exception. Null when there is
    /// none.
    [[nodiscard]] IExceptionObject* cause() const noexcept { return cause_.get(); }
    /// Returns the description in UTF-8, borrowed: valid as long as this exception.
    [[nodiscard]] const char* what() const noexcept override { return what_.c_str(); }

    /// Returns the id of the message that the description was made from, in ASCII, so that a program can tell
    /// failures of one class apart in any language. Borrowed: valid as long as this exception. Empty for a
    /// description that was made without one.
    [[nodiscard]] const char* messageId() const noexcept;
    /// Returns the texts that the message was filled in with, borrowed: valid as long as this exception.
    [[nodiscard]] std::span<const wstring> parameters() const noexcept;
    /// Keeps copies of what the description was made from: the id, of which null counts as empty, and the
    /// parameters. The description stays. Throws std::bad_alloc; nothing has changed then.
    void setMessage(const char* id, std::span<const wstring> parameters);

  protected:
    /// Makes a failure of a subclass, whose error object has the class id `clsid`.
    Exception(const GUID& clsid, const wstring& description, IExceptionObject* cause);
    /// Makes a failure of a subclass; a null `description` gives an empty one.
    Exception(const GUID& clsid, const wchar* description, IExceptionObject* cause);

  private:
    struct Message;

    GUID clsid_;
    wstring description_;
    InterfacePtr<IExceptionObject> cause_;
    std::string what_;
    CountedPtr<Message> message_; // never changed, so copies share it; null without a message id
};

/// What the exception classes have in common. `Self` is the class itself, whose `kClassId` is the class id of
/// its error object.
template <class Self>
class BasicException : public Exception {
  public:
    /// Makes a failure with a copy of `description`; null gives an empty one. Takes a reference to `cause`,
    /// which may be null.
    explicit BasicException(const wchar* description = nullptr, IExceptionObject* cause = nullptr)
        : Exception(Self::kClassId, description, cause) {}
    /// Makes a failure with a copy of `description`. Takes a reference to `cause`, which may be null.
    explicit BasicException(const wstring& description, IExceptionObject* cause = nullptr)
        : Exception(Self::kClassId, description, cause) {}
};

namespace detail {

/// message_text() for the code of a module.
[[nodiscard]] CORE_API wstring message_text_of(const ModuleAnchor& module, const char* id,
                                               std::initializer_list<wstring> params = {});

} // namespace detail

/// Returns the message stored under a message id ("IDS_..."), in the calling thread's resource locale, with
/// {0}, {1}, ... replaced by `params`. It comes from the texts of the calling module, or else from those of
/// the library. For an id that neither has, it is the id followed by the parameters.
[[nodiscard, gnu::visibility("hidden")]] inline wstring
message_text(const char* id, std::initializer_list<wstring> params = {}) {
    return detail::message_text_of(module_anchor, id, params);
}

/// Throws `failure` with what its description was made from.
template <class E>
[[noreturn]] void throw_with_message(E failure, const char* id, std::initializer_list<wstring> params = {}) {
    failure.setMessage(id, params);
    throw failure;
}

/// Throws `E` with the message stored under `id`, filled in with `params`, and with both for programs to ask.
/// The exception takes a reference to `cause`, which may be null.
template <class E>
[[noreturn, gnu::visibility("hidden")]] void
throw_error(const char* id, std::initializer_list<wstring> params = {}, IExceptionObject* cause = nullptr) {
    throw_with_message(E(message_text(id, params), cause), id, params);
}

} // namespace core
