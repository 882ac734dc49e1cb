// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/process/id_table.h"
#include "host/process/library_classes.h"
#include "host/process/readers.h"

#include <host/host_process.h>

#include <atomic>
#include <mutex>
#include <vector>

namespace host::detail {

/// The classes of a process: those that were registered one by one, and those of the library, of which the
/// process only remembers which ones were taken back. Making an object takes no lock; a factory that was
/// taken back is kept until no thread can be inside of it.
class ClassTable {
  public:
    using Registration = ProcessObject::Registration;

    ClassTable() = default;
    ClassTable(const ClassTable&) = delete;
    ClassTable& operator=(const ClassTable&) = delete;
    ~ClassTable() = default;

    /// Adds all classes of the library. Throws std::bad_alloc, and ProcessException (kClassClaimed) where
    /// another owner has one of them.
    void addLibrary();
    /// Takes all classes of the library back.
    void removeLibrary() noexcept { library_.store(nullptr); }
    /// Adds a class, or replaces the one that the same owner has added. Throws ProcessException
    /// (kClassClaimed) for a class of another owner.
    void add(const core::GUID& clsid, const Registration& registration);
    /// Takes a class back, if `owner` is null or has added it. Returns whether it did.
    bool remove(const core::GUID& clsid, const core::SCOM_Module* owner) noexcept;
    /// Makes no objects of the classes of `owner` any more, until resume() or remove().
    void suspend(const core::SCOM_Module& owner) noexcept;
    /// Makes objects of the classes of `owner` again, as before suspend().
    void resume(const core::SCOM_Module& owner) noexcept;
    /// Makes an object; null for an unknown class. Throws what the factory throws.
    [[nodiscard]] core::InterfacePtr<core::IUnknown> make(const core::GUID& clsid);
    /// Returns whether there is a class of that id. Takes no lock.
    [[nodiscard]] bool has(const core::GUID& clsid) const noexcept;
    /// Returns what a class was added with.
    [[nodiscard]] Registration find(const core::GUID& clsid) const;
    /// Lets go of the factories that were taken back. Returns false, keeping them, while a thread makes an
    /// object.
    bool settle() noexcept;

  private:
    struct Class {
        explicit Class(const core::GUID& clsid) noexcept : id(clsid) {}

        const core::GUID id;
        std::atomic<core::IClassFactory*> factory{nullptr}; // what makes objects now: `held` or null
        core::InterfacePtr<core::IClassFactory> held;       // null for a class that was taken back
        std::int32_t threading = 0;
        std::int32_t attributes = 0;
        const core::SCOM_Module* owner = nullptr;
    };

    /// Makes `factory` what makes the class, and keeps the one before. Returns whether there was one.
    bool replace(Class& entry, core::InterfacePtr<core::IClassFactory> factory) noexcept;
    /// Returns what the library declares of a class that was not taken back, null for none.
    [[nodiscard]] const LibraryClasses::Class* ofLibrary(const core::GUID& clsid) const noexcept;

    mutable std::mutex lock_; // of everything except making
    IdTable<Class> classes_;  // those before the library's
    std::atomic<const LibraryClasses*> library_{nullptr};
    std::vector<std::atomic<bool>> gone_; // by index: the classes of the library that were taken back
    std::vector<core::InterfacePtr<core::IClassFactory>> retired_;
    Readers readers_;
};

/// Returns what errors call a module: its name, or "the program itself" for null.
[[nodiscard]] core::wstring module_name(const core::SCOM_Module* module);

} // namespace host::detail
