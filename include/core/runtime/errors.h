// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

#include <cstdint>
#include <tuple>

/// The exceptions of the runtime itself, and those that belong to no single layer: objects that cannot be
/// made, text that cannot be converted, locales that are not known, calls that leave the process. Each class
/// names, as `kClassId`, the class id of its error object.
namespace core {

/// The ids of messages. Each layer's `errors.h` adds its own; message_text() gives the texts.
namespace messages {

/// Two modules declare one class: the module that has it, the module that wants it, the class.
inline constexpr const char* kClassClaimed = "IDS_PROCESS_CLASS_CLAIMED";
/// A file could not be loaded as a module: the file, what the system says.
inline constexpr const char* kModuleNotLoadable = "IDS_MODULE_NOT_LOADABLE";
/// A module was built for another interface of the library: the file, the version that it was built for, the
/// version that is here.
inline constexpr const char* kModuleInterface = "IDS_MODULE_INTERFACE";
/// A module cannot be unloaded while a thread makes an object: its name.
inline constexpr const char* kModuleBusy = "IDS_MODULE_BUSY";
/// A module cannot be unloaded while its objects live: its name, the classes with their counts.
inline constexpr const char* kModuleInUse = "IDS_MODULE_IN_USE";
/// The file of a module was not found: the file, what the system says.
inline constexpr const char* kModuleMissing = "IDS_MODULE_MISSING";
/// A module has a name that cannot be that of a folder: the file, the name.
inline constexpr const char* kModuleName = "IDS_MODULE_NAME";
/// A library declares no module: the file.
inline constexpr const char* kModuleNone = "IDS_MODULE_NONE";
/// The process has no module of that name, or it cannot be unloaded: the name.
inline constexpr const char* kModuleNotLoaded = "IDS_MODULE_NOT_LOADED";
/// The process has a module of that name already: the name, the file that it is from.
inline constexpr const char* kModuleTwice = "IDS_MODULE_TWICE";
/// No process has adopted the thread. No parameters.
inline constexpr const char* kNoProcess = "IDS_PROCESS_NONE";
/// The process offers no such service: its interface id.
inline constexpr const char* kNoService = "IDS_PROCESS_NO_SERVICE";
/// A process could not be started for lack of memory. No parameters.
inline constexpr const char* kProcessInit = "IDS_PROCESS_INIT";
/// What declares a class that no module declares. No parameters.
inline constexpr const char* kProgram = "IDS_PROCESS_PROGRAM";
/// A service is asked for by what makes it: the class that implements it.
inline constexpr const char* kServiceCircle = "IDS_PROCESS_SERVICE_CIRCLE";
/// Two modules offer one service: the module that has it, the module that wants it, the interface id.
inline constexpr const char* kServiceClaimed = "IDS_PROCESS_SERVICE_CLAIMED";
/// A text is longer than an operation can take. No parameters.
inline constexpr const char* kStringTooLong = "IDS_STRING_TOO_LONG";
/// The system gives the library no thread-local slots. No parameters.
inline constexpr const char* kThreadSlots = "IDS_PROCESS_THREAD_SLOTS";
/// The system does not know a locale: its key.
inline constexpr const char* kUnknownLocale = "IDS_LOCALE_UNKNOWN";
/// Something was thrown that is not a failure of this library: what is known of it.
inline constexpr const char* kUnknownFailure = "IDS_UNKNOWN_FAILURE";

} // namespace messages

/// A process that could not be started. It has no error object of its own: nothing is there yet to take one.
class CORE_API ProcessInitException : public Exception {
  public:
    /// Makes a failure with a copy of `description`. Takes a reference to `cause`, which may be null.
    explicit ProcessInitException(const wstring& description, IExceptionObject* cause = nullptr)
        : Exception(Exception::kClassId, description, cause) {}
};

/// A module that could not be loaded or unloaded.
class CORE_API ModuleException : public BasicException<ModuleException> {
  public:
    /// The class id of ModuleExceptionObject.
    static constexpr GUID kClassId = "3957203a-9c6e-4b91-8ea5-b5c02a97a319"_guid;
    using BasicException::BasicException;
};

/// What a process refuses, and work that needs a process where none is: its messages are kNoProcess,
/// kClassClaimed, kServiceClaimed, kNoService and kServiceCircle.
class CORE_API ProcessException : public BasicException<ProcessException> {
  public:
    /// The class id of ProcessExceptionObject.
    static constexpr GUID kClassId = "e4893822-507b-43b2-a1a0-75176936fdf7"_guid;
    using BasicException::BasicException;
};

/// An object that could not be made from the given arguments.
class CORE_API CtorException : public BasicException<CtorException> {
  public:
    /// The class id of CtorExceptionObject.
    static constexpr GUID kClassId = "2e20eda7-414a-4549-ae78-06c19979ce2d"_guid;
    using BasicException::BasicException;
};

/// Text that cannot be converted between encodings or forms.
class CORE_API ConverterException : public BasicException<ConverterException> {
  public:
    /// The class id of ConverterExceptionObject.
    static constexpr GUID kClassId = "12d4914c-d6ae-4255-87a1-02485be1b924"_guid;
    using BasicException::BasicException;
};

/// A locale that the system does not know, or has no rules for.
class CORE_API LocaleException : public BasicException<LocaleException> {
  public:
    /// The class id of LocaleExceptionObject.
    static constexpr GUID kClassId = "a5ac9977-cc6b-4878-95b5-4969293f7ed5"_guid;
    using BasicException::BasicException;
};

/// A failed automation call.
class CORE_API COMException : public BasicException<COMException> {
  public:
    /// The class id of COMExceptionObject.
    static constexpr GUID kClassId = "4061180c-eee5-4ee5-bfe6-021f7c0becb1"_guid;
    using BasicException::BasicException;
};

/// An automation type that could not be used: an error number and the id of the type.
class CORE_API COMTypeException : public BasicException<COMTypeException> {
  public:
    /// The class id of COMTypeExceptionObject.
    static constexpr GUID kClassId = "31c9840c-822a-4b75-9b4d-e5f691d035f4"_guid;

    using BasicException::BasicException;
    /// Makes a failure with an error number of the automation system and the id of the type concerned. Takes
    /// a reference to `cause`, which may be null.
    COMTypeException(std::int32_t error, const GUID& type, const wstring& description = wstring(),
                     IExceptionObject* cause = nullptr)
        : BasicException(description, cause), error_(error), type_(type) {}
    /// Returns the error number, 0 when none was given.
    [[nodiscard]] std::int32_t error() const noexcept { return error_; }
    /// Returns the id of the type, the null id when none was given.
    [[nodiscard]] const GUID& type() const noexcept { return type_; }

  private:
    template <class>
    friend class IExceptionObjectImpl;
    static auto fields(auto& self) noexcept { return std::tie(self.error_, self.type_); }

    std::int32_t error_ = 0;
    GUID type_;
};

/// A call to another process that did not come through.
class CORE_API RemotingException : public BasicException<RemotingException> {
  public:
    /// The class id of RemotingExceptionObject.
    static constexpr GUID kClassId = "df84c0d7-ee36-4d9f-96ca-503359a67a6c"_guid;
    using BasicException::BasicException;
};

/// The error object of Exception.
using ExceptionObject = IExceptionObjectImpl<Exception>;
/// The error object of ModuleException.
using ModuleExceptionObject = IExceptionObjectImpl<ModuleException>;
/// The error object of ProcessException.
using ProcessExceptionObject = IExceptionObjectImpl<ProcessException>;
/// The error object of CtorException.
using CtorExceptionObject = IExceptionObjectImpl<CtorException>;
/// The error object of ConverterException.
using ConverterExceptionObject = IExceptionObjectImpl<ConverterException>;
/// The error object of LocaleException.
using LocaleExceptionObject = IExceptionObjectImpl<LocaleException>;
/// The error object of COMException.
using COMExceptionObject = IExceptionObjectImpl<COMException>;
/// The error object of COMTypeException.
using COMTypeExceptionObject = IExceptionObjectImpl<COMTypeException>;
/// The error object of RemotingException.
using RemotingExceptionObject = IExceptionObjectImpl<RemotingException>;

} // namespace core
