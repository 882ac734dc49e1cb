// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>

#include <exception>
#include <string>

namespace core {

class Exception;

/// A failure as a counted object: it can be stored, handed to another module, kept as the cause of a later
/// failure and thrown again. Holds one exception of its own kind.
class IExceptionObject : public IUnknown {
  public:
    static constexpr GUID IID = "635dade6-4da0-44c6-a82a-4a26797b403a"_guid;

    /// Copies the class id, the description and the cause of `e` into the held exception.
    virtual void init(const Exception& e) = 0;
    /// Throws a copy of the held exception as its own type; the object stays as it is
    /// and may be raised again.
    [[noreturn]] virtual void raise() = 0;
    /// The held exception; valid as long as this object.
    virtual Exception& exception() noexcept = 0;

  protected:
    ~IExceptionObject() = default;
};

/// The base of every failure that the library throws: a finished message in the user's language, the class id
/// of the error object that carries such a failure across modules, and the failure that caused it, if any.
///
/// Copying adds a reference to the cause, moving hands it over; an assignment that fails changes nothing.
class CORE_API Exception : public std::exception {
  public:
    static constexpr GUID kClassId = "f6f167a0-dcc9-49ad-8f8e-2c9d9904e4fe"_guid;

    /// `description` may be null, which gives an empty one; `cause` may be null and gains a reference.
    explicit Exception(const wchar* description = nullptr, IExceptionObject* cause = nullptr);
    explicit Exception(const wstring& description, IExceptionObject* cause = nullptr);
    Exception(const Exception&);
    Exception(Exception&&) noexcept;
    Exception& operator=(const Exception&);
    Exception& operator=(Exception&&) noexcept;
    ~Exception() override;

    /// The class id of the twin error-object class.
    [[nodiscard]] const GUID& clsid() const noexcept { return clsid_; }
    [[nodiscard]] const wstring& description() const noexcept { return description_; }
    /// The failure behind this one, borrowed, or null.
    [[nodiscard]] IExceptionObject* cause() const noexcept { return cause_.get(); }
    /// The description in UTF-8.
    [[nodiscard]] const char* what() const noexcept override { return what_.c_str(); }

  protected:
    Exception(const GUID& clsid, const wstring& description, IExceptionObject* cause);
    Exception(const GUID& clsid, const wchar* description, IExceptionObject* cause);

  private:
    GUID clsid_;
    wstring description_;
    InterfacePtr<IExceptionObject> cause_;
    std::string what_;
};

} // namespace core
