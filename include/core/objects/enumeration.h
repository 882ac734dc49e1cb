// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def_ext.h>
#include <core/persistence/persistence.h>
#include <core/runtime/class_entry.h>
#include <core/runtime/unknown.h>
#include <core/values/type_object.h>

#include <array>
#include <optional>
#include <span>

/// Enumerations that scripts see, written as data at one place in a source file:
///
///     constexpr EnumerationItem kItems[] = {{{u"Date", u"Дата"}, "IDS_CORE_DATE_FRACTIONS_DATE", 1}, ...};
///     constexpr EnumerationInfo kInfo = {.type = {.id = ..., .valueClass = ...,
///                                                 .names = {u"DateFractions", u"ЧастиДаты"},
///                                                 .presentation = "IDS_CORE_DATE_FRACTIONS"},
///                                        .factory = ..., .items = kItems};
///     const EnumerationEntry<kInfo> kEntry("DateFractions");
///
/// A script then writes `DateFractions.Date`. All ids are minted once and never change.
namespace core {

class Enumeration;

/// One of the values of an enumeration, as data.
struct EnumerationItem {
    NamePair names;           ///< English and Russian
    const char* presentation; ///< message id of what the user reads
    std::int32_t number;      ///< what is stored
};

/// An enumeration, as data.
struct EnumerationInfo {
    TypeInfo type; ///< the type of the values; its class id is the one that they are stored under
    GUID factory;  ///< the class id of the enumeration as an object
    std::span<const EnumerationItem> items; ///< the values, borrowed; they live as long as the enumeration
};

/// A value of an enumeration: the only one of its kind, alive as long as the module that declares it, equal
/// to itself alone, and read back as itself. References keep that module loaded, and do nothing else.
/// Threads: safe on all, as it never changes.
class CORE_API EnumerationValue final : public IValueImpl, public IPersistableObject {
  public:
    using Interfaces = InterfaceList<IValue, IPersistableObject>; ///< what a value answers queries for

    /// A value of `enumeration`; both arguments are kept by reference.
    constexpr EnumerationValue(const Enumeration& enumeration, const EnumerationItem& item) noexcept
        : enumeration_(enumeration), item_(item) {}
    EnumerationValue(const EnumerationValue&) = delete;
    EnumerationValue& operator=(const EnumerationValue&) = delete;

    /// Returns the data of the value, borrowed; it lives as long as the value.
    [[nodiscard]] const EnumerationItem& item() const noexcept { return item_; }

    /// Answers a query for one of the interfaces.
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    /// Counts a holder of the values' type and returns 1.
    std::uint32_t AddRef() noexcept override { return getType()->AddRef(); }
    /// Undoes AddRef() and returns 1.
    std::uint32_t Release() noexcept override { return getType()->Release(); }
    /// Returns the type that the values of the enumeration share.
    IType* getType() const noexcept override;
    /// Stores the value's presentation in the language of the thread and returns true.
    bool getString(wstring& out) const override;
    /// Returns a hash that is the same in every run.
    std::int32_t hashCode() const noexcept override;
    /// Returns the class id that the values of the enumeration are stored under.
    const GUID& getCLSID() const noexcept override;
    /// Writes the number.
    void serialize(IOutPersistenceStorage* storage) const override;
    /// Reads the value's own number. Throws ListStreamException for any other: values are read by the loader
    /// of the enumeration, which finds them.
    void deserialize(IInPersistenceStorage* storage) override;

  private:
    const Enumeration& enumeration_;
    const EnumerationItem& item_;
};

/// An enumeration as an object: a context with a read-only property for each of its values, in their order.
/// Alive as long as the module that declares it; safe on all threads.
class IEnumeration : public IUnknown {
  public:
    static constexpr GUID IID = "3f9a7508-461a-4a59-a507-98bfbe9ab48b"_guid; ///< the interface's id
    /// Returns the type of the values, borrowed; its name is that of the enumeration, too.
    [[nodiscard]] virtual IType* valueType() const noexcept = 0;

  protected:
    ~IEnumeration() = default;
};

/// The one object of an enumeration: made by EnumerationEntry, reached by scripts by its name.
class CORE_API Enumeration final : public IValueImpl,
                                   public ContextDefIntern<Enumeration, ContextDefNoncached>,
                                   public ContextDefExtImpl<Enumeration>,
                                   public IEnumeration {
  public:
    /// What the object answers queries for.
    using Interfaces = InterfaceList<IValue, IContext_, IContextDef, IContextDefExt, IEnumeration>;

    /// An enumeration over `values`, which are those of `info` in the same order. Both are kept by address.
    constexpr Enumeration(const EnumerationInfo& info, EnumerationValue* values) noexcept
        : info_(info), values_(values), type_(info.type), loader_(*this) {}
    Enumeration(const Enumeration&) = delete;
    Enumeration& operator=(const Enumeration&) = delete;

    // the values, for C++ code
    /// Returns the value with a number; Undefined if none exists.
    [[nodiscard]] GenericValue value(std::int32_t number) const;
    /// Returns the number of a value; nothing for a value that is not of this enumeration.
    [[nodiscard]] std::optional<std::int32_t> number(const Value& value) const noexcept;
    /// Returns the data of the enumeration, borrowed; it lives as long as the enumeration.
    [[nodiscard]] const EnumerationInfo& info() const noexcept { return info_; }
    /// Returns what reads the values back, borrowed; it lives as long as the enumeration.
    [[nodiscard]] IValueLoader* loader() noexcept { return &loader_; }

    /// Answers a query for one of the interfaces.
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    /// Counts a holder of the values' type and returns 1.
    std::uint32_t AddRef() noexcept override { return type_.AddRef(); }
    /// Undoes AddRef() and returns 1.
    std::uint32_t Release() noexcept override { return type_.Release(); }
    /// Returns the type that all enumerations share as objects.
    IType* getType() const noexcept override;
    /// Stores the presentation of the values' type and returns true.
    bool getString(wstring& out) const override;
    /// Returns the type of the values, borrowed; it lives as long as the enumeration.
    IType* valueType() const noexcept override { return const_cast<TypeObject*>(&type_); }

    /// Returns how many values there are.
    int getNProps() const override { return static_cast<int>(info_.items.size()); }
    /// Returns the name of a value, borrowed; null for a number out of range.
    const wchar* getPropName(int prop, int alias) const override;
    /// Returns the object itself.
    InterfacePtr<IContextDef> getIContextDef() override;
    /// Stores the value in `out`. Throws ContextException for a number out of range.
    void getPropVal(int prop, GenericValue& out) override;
    /// Throws ContextException: nothing can be written.
    void setPropVal(int prop, const GenericValue& value) override;
    /// Throws ContextException: there are no methods.
    void call(int method, GenericValue* result, std::vector<GenericValue>* params) override;
    /// Stores the type of the values and returns true; returns false for a number out of range.
    bool getPropInfo(int prop, ContextValueInfo& info) const override;

  private:
    class CORE_API Loader final : public IUnknownImpl<Loader, IValueLoader> {
      public:
        constexpr explicit Loader(const Enumeration& enumeration) noexcept : enumeration_(enumeration) {}
        GenericValue load(IInPersistenceStorage* storage) override;

      private:
        const Enumeration& enumeration_;
    };

    const EnumerationInfo& info_;
    EnumerationValue* values_;
    TypeObject type_;
    Loader loader_;
};

/// Returns the number of a value of `enumeration`; Undefined stands for `byDefault`. Throws
/// parameter_type_mismatch() for any other value.
[[nodiscard]] CORE_API std::int32_t choice_argument(const Value& argument, int param,
                                                    const Enumeration& enumeration, std::int32_t byDefault);

/// Declares an enumeration, as a static object of a source file: its type, the class of its values, and
/// itself as a script class. `info` is a static EnumerationInfo.
template <const EnumerationInfo& info>
class EnumerationEntry {
  public:
    /// Puts the declarations into the calling module's list; `name` is for reports and kept by address.
    explicit EnumerationEntry(const char* name) noexcept : entries_(classEntries(name)) {
        for (ClassEntry& entry : entries_)
            declare_class(entry);
    }
    EnumerationEntry(const EnumerationEntry&) = delete;
    EnumerationEntry& operator=(const EnumerationEntry&) = delete;

    /// Returns the three declarations under a name for reports, which is kept by address, by default the
    /// English one. CORE_MODULE lists them.
    [[nodiscard]] static constexpr std::array<ClassEntry, 3>
    classEntries(const char* name = kName.data()) noexcept {
        return {
            ClassEntry{.record = detail::class_record<ValueType>(info.type.id, name, true, nullptr)},
            ClassEntry{.record = detail::class_record<Loader>(info.type.valueClass, name, false, nullptr)},
            ClassEntry{.record = detail::class_record<EnumerationEntry>(info.factory, name, true, nullptr)}};
    }
    /// Returns the enumeration, borrowed; it lives as long as the module that declares it.
    [[nodiscard]] static Enumeration* instance() noexcept { return &objects_.enumeration; }

  private:
    struct ValueType {
        static IType* instance() noexcept { return objects_.enumeration.valueType(); }
    };
    struct Loader {
        static IValueLoader* instance() noexcept { return objects_.enumeration.loader(); }
    };
    static constexpr auto kName = [] {
        std::array<char, wstring_view(info.type.names.text[kEnglish]).size() + 1> text{};
        for (std::size_t i = 0; i + 1 < text.size(); ++i)
            text[i] = static_cast<char>(info.type.names.text[kEnglish][i]);
        return text;
    }();
    using Indexes = std::make_index_sequence<info.items.size()>;
    struct Objects {
        constexpr Objects() noexcept : Objects(Indexes{}) {}
        template <std::size_t... indexes>
        constexpr explicit Objects(std::index_sequence<indexes...>) noexcept
            : enumeration(info, values), values{{enumeration, info.items[indexes]}...} {}

        Enumeration enumeration;
        EnumerationValue values[Indexes::size()];
    };

    static inline CORE_CONSTINIT Objects objects_;
    std::array<ClassEntry, 3> entries_;
};

/// All enumerations of the process as one context: a read-only property for each, by English name, whose
/// value is the enumeration. What a script's bare name may mean. A service; threads: all operations are safe.
class IEnumerations : public IContext_ {
  public:
    static constexpr GUID IID = "9047800e-61d3-40bc-960d-cb40df781348"_guid; ///< the interface's id

  protected:
    ~IEnumerations() = default;
};

} // namespace core
