// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/module_anchor.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace core {

/// How many objects of one class are alive, over all threads. Counters report, and a module whose objects are
/// alive is not unloaded. A counter lives as long as the module that it is compiled into. The library has a
/// record of its own for each, made with the first object, which holds the count and a copy of the name: no
/// report and no ending thread reads the memory of a module that may have gone.
///
/// A count is kept in parts, one for each thread, so that threads making objects of one class do not share a
/// cache line.
class CORE_API LiveCounter {
  public:
    /// Makes a counter of zero, which reports under the name of `type`. `module` is the module whose code
    /// the objects run, by default the caller's.
    constexpr explicit LiveCounter(const std::type_info& type,
                                   const ModuleAnchor& module = module_anchor) noexcept
        : type_(&type), module_(&module) {}
    /// Makes a counter of zero, which reports under `name`, a text that lives as long as the module.
    constexpr LiveCounter(const wchar* name, const ModuleAnchor& module) noexcept
        : name_(name), module_(&module) {}
    LiveCounter(const LiveCounter&) = delete;
    LiveCounter& operator=(const LiveCounter&) = delete;

    /// Counts one object more.
    void raise() noexcept { add(1); }
    /// Counts one object less.
    void lower() noexcept { add(-1); }
    /// Returns how many objects are alive; exact when no other thread is making or destroying any.
    [[nodiscard]] std::int32_t count() const noexcept;

  private:
    friend struct LiveCounterAccess;

    void add(std::int32_t change) noexcept;

    const std::type_info* type_ = nullptr; // what it reports under: this, or the name
    const wchar* name_ = nullptr;
    const ModuleAnchor* module_;
    std::int32_t index_ = 0; // of the record and in every thread's part; 0 until the first object is made
};

namespace detail {

inline constexpr std::size_t kBlockAlignment = 16;

/// Returns memory for an object of a counted class and raises its counter, in one visit to the thread's own
/// part. It is aligned to kBlockAlignment. Throws std::bad_alloc.
[[nodiscard]] CORE_API void* allocate_counted(std::size_t size, LiveCounter& counter);
/// Frees memory of `size` bytes, the size that was asked for, on any thread, and lowers the counter. Null is
/// ignored.
CORE_API void free_counted(void* block, std::size_t size, LiveCounter& counter) noexcept;

} // namespace detail

/// The counter of class `T`.
template <class T>
inline constinit LiveCounter live_counter{typeid(T)};

/// A base that raises the counter of `T` when it is constructed and lowers it when it is destroyed.
template <class T>
class LiveObjectTrackerImpl {
  public:
    /// Returns how many objects of `T` are alive.
    [[nodiscard]] static std::int32_t liveCount() noexcept { return live_counter<T>.count(); }

  protected:
    LiveObjectTrackerImpl() noexcept { live_counter<T>.raise(); }
    LiveObjectTrackerImpl(const LiveObjectTrackerImpl&) noexcept : LiveObjectTrackerImpl() {}
    LiveObjectTrackerImpl& operator=(const LiveObjectTrackerImpl&) noexcept = default;
    ~LiveObjectTrackerImpl() { live_counter<T>.lower(); }
};

/// A named entry of the leak report with a table of names, present as long as it lives.
class CORE_API LeaksCounter {
  public:
    /// Enters `name` and `names` into the report. `names` is a table of texts ended by null, or null. Both
    /// are kept by address.
    explicit LeaksCounter(const char* name, const wchar* const* names = nullptr);
    LeaksCounter(const LeaksCounter&) = delete;
    LeaksCounter& operator=(const LeaksCounter&) = delete;
    ~LeaksCounter();

    /// Records two texts in the registry: what is watched, in English and in Russian. Null is taken as empty.
    static void setTerm(const wchar* english, const wchar* russian);

    /// Returns the name, borrowed from the maker of the entry.
    [[nodiscard]] const char* name() const noexcept { return name_; }
    /// Returns the table of names, borrowed from the maker of the entry; null if none exists.
    [[nodiscard]] const wchar* const* names() const noexcept { return names_; }

  private:
    const char* name_;
    const wchar* const* names_;
};

/// One line of the leak report.
struct LiveClass {
    std::string name;   ///< of the class as it is written in C++, or of the entry
    std::int32_t count; ///< living objects, 1 for an entry
};

/// Returns the classes with living objects and the entries that are still registered, in the order of their
/// names; empty when everything is gone. Throws std::bad_alloc.
[[nodiscard]] CORE_API std::vector<LiveClass> live_report();
/// Returns the classes of one module that have living objects, in the order of their names. Throws
/// std::bad_alloc.
[[nodiscard]] CORE_API std::vector<LiveClass> live_report(const ModuleAnchor& module);

namespace detail {

/// Gives back the records of the counters of a module without living objects, when the system has let go of
/// it. `gone` says that its memory is no longer there; a module that stays can count again.
CORE_API void forget_live_counters(const ModuleAnchor& module, bool gone) noexcept;

} // namespace detail

/// Returns the two texts that LeaksCounter::setTerm() recorded last, English and Russian.
[[nodiscard]] CORE_API std::pair<wstring, wstring> leaks_term();

} // namespace core
