// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/guid.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/locale.h>

#include <concepts>
#include <memory>
#include <utility>
#include <vector>

namespace core {

/// What one layer lets a process set: a plain struct whose default-made object holds the defaults, with an id
/// of its own. The layer declares it in its `settings.h`.
template <class T>
concept SettingsPart = std::copyable<T> && std::default_initializable<T> && requires {
    { T::kId } -> std::convertible_to<const GUID&>;
};

/// What a process sets for all code that runs in it: the locale of its user and the parts of the layers.
///
/// A copy is independent. Threads: the host changes its process's settings before other threads work in the
/// process; later they are only read, by any number of threads, without a lock.
class Settings {
  public:
    /// Makes the defaults: the root locale, and every part as its layer has it.
    Settings() = default;
    /// Copies the locales and all parts.
    Settings(const Settings& other) : locale(other.locale), language(other.language) {
        parts_.reserve(other.parts_.size());
        for (const Entry& entry : other.parts_)
            parts_.push_back({entry.id, entry.part->copy()});
    }
    /// Takes over the locales and all parts; references into `other` stay valid.
    Settings(Settings&& other) noexcept = default;
    /// Replaces the locales and all parts.
    Settings& operator=(Settings other) noexcept {
        std::swap(locale, other.locale);
        std::swap(language, other.language);
        parts_.swap(other.parts_);
        return *this;
    }
    /// Ends all references into the settings.
    ~Settings() = default;

    Locale locale;   ///< the order of texts, the words of formats, the language of messages
    Locale language; ///< the language of messages where it is another one; else the root locale

    /// Returns the part `T`, to be read or changed. It is valid as long as the settings.
    template <SettingsPart T>
    [[nodiscard]] T& part() {
        if (Part* const found = find(T::kId))
            return static_cast<PartOf<T>*>(found)->value;
        auto made = std::make_unique<PartOf<T>>();
        T& value = made->value;
        parts_.push_back({T::kId, std::move(made)});
        return value;
    }
    /// Returns the part `T`, or the defaults when nothing was set. It is valid as long as the settings.
    template <SettingsPart T>
    [[nodiscard]] const T& part() const noexcept {
        if (const Part* const found = find(T::kId))
            return static_cast<const PartOf<T>*>(found)->value;
        static const T defaults;
        return defaults;
    }

  private:
    struct Part {
        virtual ~Part() = default;
        [[nodiscard]] virtual std::unique_ptr<Part> copy() const = 0;
    };
    /// Counted, so that the module of `T` stays loaded while a process has such a part.
    template <class T>
    struct PartOf final : Part, private LiveObjectTrackerImpl<PartOf<T>> {
        T value;
        [[nodiscard]] std::unique_ptr<Part> copy() const override { return std::make_unique<PartOf>(*this); }
    };
    struct Entry {
        GUID id;
        std::unique_ptr<Part> part;
    };

    // A handful of parts: looking through them costs less than hashing an id.
    [[nodiscard]] Part* find(const GUID& id) const noexcept {
        for (const Entry& entry : parts_) {
            if (entry.id == id)
                return entry.part.get();
        }
        return nullptr;
    }

    std::vector<Entry> parts_;
};

/// Returns the settings of the calling thread's process, borrowed: valid as long as the process. On a thread
/// without a process they are the defaults.
[[nodiscard]] CORE_API const Settings& current_settings() noexcept;

} // namespace core
