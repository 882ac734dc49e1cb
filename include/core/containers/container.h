// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/containers/errors.h>
#include <core/containers/stored_value.h>
#include <core/context/native_object.h>
#include <core/runtime/errors.h>
#include <core/storage/open_container.h>
#include <core/storage/storage_rw.h>

#include <concepts>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace core {

namespace detail {

/// What Container::get<T>() returns: an object of an interface or of a script class with a reference, any
/// other type as it is.
template <class T>
struct StoredValue {
    using Type = T;
};
template <ScriptClassType T>
struct StoredValue<T> {
    using Type = ObjectPtr<T>;
};
template <Interface T>
struct StoredValue<T> {
    using Type = InterfacePtr<T>;
};

/// A type that does not borrow from the value that it is made of.
template <class T>
concept OwnedValue = FromValue<T> && !std::is_pointer_v<T> && !std::same_as<T, wstring_view>;

} // namespace detail

/// A container as an object: values, texts and bytes by name in one file, which scripts know as "Container".
///
///     core::Container files("data.st", core::Container::create);
///     files.transaction([&] { files.put(u"sales", sales); files.put(u"rate", rate); });
///     const auto again = files.get<core::IValueTable>(u"sales");
///
/// A value is kept as its brace list, unless another form is asked for, a text in UTF-8. Names are any text
/// and differ when their letters differ in case. A handle: copies stand for the same open container, which is
/// closed with the last of them.
///
/// Each change is durable when the call returns, or together with others in a transaction; a call that throws
/// has changed nothing. Every call can throw StorageException and FileException, as StorageRW says. Threads:
/// any; a transaction is that of all threads.
class CORE_API Container {
  public:
    static constexpr OpenMode read = OpenMode::read;           ///< It must exist, and takes no changes.
    static constexpr OpenMode change = OpenMode::readWrite;    ///< It must exist.
    static constexpr OpenMode create = OpenMode::create;       ///< It is made if it does not exist.
    static constexpr OpenMode createNew = OpenMode::createNew; ///< It is made, and must not exist.
    static constexpr OpenMode replace = OpenMode::replace;     ///< It is made, or emptied.

    /// Makes an empty container in memory.
    Container();
    /// Opens the container in `file`, a path or a URL, as open_container() does.
    explicit Container(const std::string& file, OpenMode mode = change,
                       const StorageLayout& layout = kStorageLayout32)
        : storage_(open_container(file, mode, layout)) {}
    /// Stands for a container that is open.
    explicit Container(StorageRW storage) noexcept : storage_(std::move(storage)) {}

    // look

    /// Returns the inner files whose names match `pattern` ("*", "?"), in the order of their names: name,
    /// size and times of each.
    [[nodiscard]] std::vector<StorageFound> files(wstring_view pattern = u"*") const {
        return storage_.find(pattern);
    }
    /// Returns the names of files().
    [[nodiscard]] std::vector<wstring> names(wstring_view pattern = u"*") const {
        return storage_.names(pattern);
    }
    /// Returns the number of inner files.
    [[nodiscard]] std::uint64_t count() const { return storage_.count(); }
    /// Returns whether there is an inner file of this name.
    [[nodiscard]] bool contains(wstring_view name) const { return storage_.contains(name); }
    /// Returns what files() returns of this one. Throws if none exists.
    [[nodiscard]] StorageFound describe(wstring_view name) const { return storage_.describe(name); }

    // values

    /// Keeps a value under a name, in place of what was there. In parts, each StoredValue inside gets an
    /// inner file of its own; those that were read from there and not touched stay as they are. Throws as
    /// serialize_value() does for a value that cannot be written.
    void putValue(wstring_view name, const Value& value, ValueForm form = ValueForm::text);
    /// Keeps what converts to a value, see NativeValue: a value, a number, a text, an object.
    template <ToValue T>
    void put(wstring_view name, const T& value, ValueForm form = ValueForm::text) {
        putValue(name, to_value(value), form);
    }
    /// Returns the value under a name, whatever its form. Throws StorageException if no inner file has that
    /// name, and ContextException if it holds no value.
    [[nodiscard]] Value get(wstring_view name) const;
    /// Returns the value as a `T`, which is an interface, a script class, or a type that values convert to.
    /// Throws as get(), and ContextException for a value that is not a `T`.
    template <class T>
    requires detail::OwnedValue<typename detail::StoredValue<T>::Type>
    [[nodiscard]] auto get(wstring_view name) const {
        const Value value = get(name);
        try {
            return from_value<typename detail::StoredValue<T>::Type>(value);
        } catch (const ContextException&) { // which speaks of a parameter
            refuseType(name);
        }
    }

    // texts and bytes

    /// Keeps a text in UTF-8. Throws ConverterException for half a surrogate pair.
    void putText(wstring_view name, wstring_view text);
    /// Returns a text; a byte order mark in front is left out. Throws ConverterException for bytes that are
    /// not UTF-8.
    [[nodiscard]] wstring getText(wstring_view name) const;
    /// Keeps bytes.
    void putBytes(wstring_view name, std::span<const std::byte> bytes);
    /// Returns the bytes under a name, whatever they mean.
    [[nodiscard]] std::vector<std::byte> getBytes(wstring_view name) const { return storage_.get(name); }

    // change

    /// Removes an inner file, with the parts of a value that stood there. Throws if none has that name.
    void remove(wstring_view name);
    /// Gives an inner file another name; one that has it already is replaced. The parts of a value keep their
    /// names. Throws as StorageRW::rename().
    void rename(wstring_view from, wstring_view to);
    /// Calls `changes` and makes all changes that it made durable as one commit; when it throws, all of them
    /// are taken back. Returns what `changes` returns. Throws when a transaction is open already.
    template <std::invocable F>
    auto transaction(F&& changes) {
        StorageTransaction group(storage_);
        if constexpr (std::is_void_v<std::invoke_result_t<F>>) {
            std::invoke(std::forward<F>(changes));
            group.commit();
        } else {
            auto result = std::invoke(std::forward<F>(changes));
            group.commit();
            return result;
        }
    }

    /// Returns the container below, for all that is not here: streams, copies, checks, compacting. Borrowed
    /// as long as this object.
    [[nodiscard]] StorageRW& storage() noexcept { return storage_; }
    /// Returns the same of a container that is only looked at.
    [[nodiscard]] const StorageRW& storage() const noexcept { return storage_; }

  private:
    [[noreturn]] void refuseType(wstring_view name) const;
    void changeAndDrop(const std::vector<wstring>& parts, const std::function<void()>& changes);

    StorageRW storage_;
};

} // namespace core
