// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/class_entry.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/module_anchor.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// What a module and the library agree on: the one symbol by which a module says who it is.
namespace core {

/// The version of the interface between the library and the modules built for it. It grows with every change
/// of a public header that code compiled before does not survive; a module of another version is refused.
inline constexpr std::uint32_t kInterfaceVersion = 1;

/// What a module says of itself. Only the first field keeps its place in every version.
struct ModuleDeclaration {
    std::uint32_t interfaceVersion; ///< kInterfaceVersion of the headers that the module was built with
    std::uint32_t count;            ///< how many classes it lists
    const char* name;     ///< Latin letters, digits, "_", "-" and "."; the folder of its texts is called so
    const char* version;  ///< its own version, for people
    ModuleAnchor* anchor; ///< what its code is known by
    ClassEntry* classes;  ///< the classes that it lists; null for none
    ClassEntry* const* declared; ///< the head of the list of what its static objects declare besides
};

namespace detail {

/// The name of a class for reports, as the compiler writes it.
template <class T>
constexpr std::string_view compiled_name() noexcept {
    const std::string_view text = __PRETTY_FUNCTION__; // "... [with T = name; ...]", "... [T = name]"
    const std::size_t begin = text.find("T = ") + 4;
    return text.substr(begin, text.find_first_of(";]", begin) - begin);
}
template <class T>
inline constexpr auto class_name_text = [] {
    std::array<char, compiled_name<T>().size() + 1> text{};
    std::ranges::copy(compiled_name<T>(), text.begin());
    return text;
}();

/// The declarations that a class of a module comes to.
template <class T>
constexpr auto class_entries() noexcept {
    if constexpr (requires { T::classEntries(); }) {
        return T::classEntries();
    } else {
        constexpr const char* name = class_name_text<T>.data();
        ClassEntry entry;
        if constexpr (std::derived_from<T, Exception>)
            entry.record = class_record<IExceptionObjectImpl<T>>(T::kClassId, name, false, nullptr);
        else if constexpr (requires { typename T::Service; })
            entry.record = class_record<T>(T::kClassId, name, false, &T::Service::IID);
        else
            entry.record = class_record<T>(T::kClassId, name, false, nullptr);
        return std::array{entry};
    }
}

/// The declarations of several classes, one after the other.
template <class... Ts>
constexpr auto all_class_entries() noexcept {
    constexpr std::size_t count = (class_entries<Ts>().size() + ... + 0);
    std::array<ClassEntry, count> all;
    std::size_t end = 0;
    [[maybe_unused]] const auto add = [&](const auto& entries) {
        for (const ClassEntry& entry : entries)
            all[end++] = entry;
    };
    (add(class_entries<Ts>()), ...);
    return all;
}

} // namespace detail
} // namespace core

/// Exports a name from a module or a program.
#if defined(_WIN32)
#define CORE_MODULE_API __declspec(dllexport)
#else
#define CORE_MODULE_API __attribute__((visibility("default")))
#endif

/// The declaration of a module, under the one name that it exports. CORE_MODULE defines it.
extern "C" CORE_MODULE_API const core::ModuleDeclaration core_module_declaration;

/// Declares the calling library or program as a module: its name and version, two literals, and its classes.
/// It stands once, at global scope, in one source file. What may be listed:
///
/// - a class of scripts, and EnumerationEntry<info> for an enumeration;
/// - an exception class, for its error object;
/// - any other class with a static class id `kClassId`; when it names an interface as `Service`, processes
///   offer an object of it as that service.
///
/// The messages of the module are in the folder "<name>/messages" beside its file. A program's own module is
/// part of every process that it starts.
#define CORE_MODULE(name, version, ...)                                                                      \
    namespace {                                                                                              \
    constinit auto core_module_classes = ::core::detail::all_class_entries<__VA_ARGS__>();                   \
    }                                                                                                        \
    const ::core::ModuleDeclaration core_module_declaration = {                                              \
        ::core::kInterfaceVersion,                                                                           \
        static_cast<std::uint32_t>(core_module_classes.size()),                                              \
        name,                                                                                                \
        version,                                                                                             \
        &::core::module_anchor,                                                                              \
        core_module_classes.data(),                                                                          \
        &::core::module_class_entries};
