// SPDX-License-Identifier: Apache-2.0
// Concerns: names found in any case in both languages, by a table and by walking alike; of equal names the
// first; what stands in for a missing Russian name; definitions whose names change; definitions borrowed from
// a class.
#include <core/context/context_extern.h>
#include <core/context/context_impl.h>
#include <core/objects/core_general_context.h>
#include <core/runtime/module.h>
#include <core/strings/integer_text.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace core;

struct Names {
    wstring english;
    std::optional<wstring> russian;
};

/// A definition with any names, properties and methods alike; `Cache` finds them.
template <class Cache>
class NamedBy : public ContextDefIntern<NamedBy<Cache>, Cache> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef>;

    int getNProps() const override { return static_cast<int>(names.size()); }
    const wchar* getPropName(int prop, int alias) const override {
        ++asked;
        const Names& name = names.at(static_cast<std::size_t>(prop));
        const wchar* const term[] = {name.english.c_str(), name.russian ? name.russian->c_str() : nullptr};
        return term_string(term, alias);
    }
    int getNMethods() const override { return getNProps(); }
    const wchar* getMethodName(int method, int alias) const override { return getPropName(method, alias); }
    InterfacePtr<IContextDef> getIContextDef() override { return nullptr; }
    void getPropVal(int, GenericValue&) override {}
    void setPropVal(int, const GenericValue&) override {}
    void call(int, GenericValue*, std::vector<GenericValue>*) override {}

    void namesChanged() {
        this->resetPropsCache();
        this->resetMethodsCache();
    }
    using ContextDefIntern<NamedBy<Cache>, Cache>::initContextDefCache;

    std::vector<Names> names;
    mutable int asked = 0;
};

const std::vector<Names> kNames = {{u"Count", u"Количество"},
                                   {u"Größe", std::nullopt},
                                   {u"COUNT", u"Ещё"},
                                   {u"Value", u"Count"},
                                   {u"Other", u"Value"}};

template <class Cache>
class Lookup : public testing::Test {};
using Caches = testing::Types<ContextDefCached, ContextDefNoncached>;
TYPED_TEST_SUITE(Lookup, Caches);

TYPED_TEST(Lookup, FindsTheFirstHolderOfANameInAnyCase) {
    const auto def = make_object<NamedBy<TypeParam>>();
    def->names = kNames;
    const std::pair<const wchar*, int> expected[] = {
        {u"count", 0}, {u"КОЛИЧЕСТВО", 0}, {u"GRÖSSE", 1}, {u"größe", 1},   {u"ещЁ", 2}, {u"VALUE", 3},
        {u"other", 4}, {u"", -1},          {u"Coun", -1},  {u"Counts", -1}, {u"Ко", -1},
    };
    for (const auto& [name, index] : expected) {
        EXPECT_EQ(def->findProp(name), index);
        EXPECT_EQ(def->findMethod(name), index);
    }
    EXPECT_EQ(def->findProp(nullptr), -1);
    EXPECT_EQ(def->findMethod(nullptr), -1);
    def->names[1].english = u"New";
    def->namesChanged();
    EXPECT_EQ(def->findProp(u"NEW"), 1);
    EXPECT_EQ(def->findMethod(u"größe"), -1);
}

TEST(Lookup, ATableAnswersAsWalkingDoes) {
    std::mt19937 random(7);
    const auto cached = make_object<NamedBy<ContextDefCached>>();
    const auto walked = make_object<NamedBy<ContextDefNoncached>>();
    const auto name = [&] { // few letters, so that names repeat in other cases and lengths
        static const wstring pieces[] = {u"a", u"A", u"б", u"Б", u"ß", u"ss", u"\u1E9E", u"\u0130", u"i"};
        wstring text(random() % 4 == 0 ? 61 : 0, u'x'); // about as long as what is folded in place
        for (auto n = random() % 3 + 1; n > 0; --n)
            text += pieces[random() % std::size(pieces)];
        return text;
    };
    for (int i = 0; i < 300; ++i)
        cached->names.push_back({name(), random() % 3 != 0 ? std::optional(name()) : std::nullopt});
    walked->names = cached->names;
    for (int i = 0; i < 2000; ++i) {
        const wstring wanted = name();
        ASSERT_EQ(cached->findProp(wanted.c_str()), walked->findProp(wanted.c_str()));
    }
}

TEST(Lookup, ATableIsBuiltOnceAndListsANameOnce) {
    const auto def = make_object<NamedBy<ContextDefCached>>();
    def->names = kNames;
    EXPECT_EQ(def->findProp(u"nothing"), -1);
    const int asked = def->asked;
    EXPECT_EQ(def->findProp(u"Other"), 4);
    EXPECT_EQ(def->asked, asked);
    def->initContextDefCache();
    EXPECT_GT(def->asked, asked);

    ContextDefCached cache;
    cache.initPropsCache(*def);
    EXPECT_EQ(cache.propNames(), 6U)
        << "of ten names two repeat others in some case, one stands in for a missing one";
}

TEST(Terms, AMissingRussianNameIsTheEnglishOne) {
    constexpr Term kBoth = {u"Count", u"Количество"};
    constexpr Term kEnglishOnly = {u"Count", nullptr};
    EXPECT_EQ(wstring_view(term_string(kBoth, 1)), u"Количество");
    EXPECT_EQ(wstring_view(term_string(kEnglishOnly, 1)), u"Count");
    EXPECT_EQ(term_string(kBoth, 2), nullptr);
    EXPECT_EQ(term_string(kEnglishOnly, -1), nullptr);
}

/// What a definition answers for every number, those just out of range among them.
std::vector<wstring> answers(const IContextDef& def) {
    std::vector<wstring> all;
    const auto add = [&](const wchar* name) { all.emplace_back(name != nullptr ? name : u"(null)"); };
    const auto flag = [&](bool value) { all.emplace_back(value ? u"yes" : u"no"); };
    const int props = def.getNProps();
    const int methods = def.getNMethods();
    for (int prop = -1; prop <= props; ++prop) {
        for (const int alias : {kEnglish, kRussian, 2})
            add(def.getPropName(prop, alias));
        flag(def.isPropReadable(prop));
        flag(def.isPropWritable(prop));
        all.push_back(string_intto(def.findProp(def.getPropName(prop, kRussian))));
    }
    for (int method = -1; method <= methods; ++method) {
        for (const int alias : {kEnglish, kRussian, 2})
            add(def.getMethodName(method, alias));
        flag(def.hasRetVal(method));
        all.push_back(string_intto(def.findMethod(def.getMethodName(method, kRussian))));
        for (int param = -1; param <= def.getNParams(method); ++param) {
            flag(def.isParamIn(method, param));
            flag(def.isParamOut(method, param));
            GenericValue value = 5;
            flag(def.getParamDefValue(method, param, &value));
            flag(def.getParamDefValue(method, param, nullptr));
            all.push_back(value.presentation());
        }
    }
    return all;
}

/// A class that another one borrows its definition from: all that a table can say.
class Lender : public IContextImpl<IContextDefImpl<Lender>> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef>;
    static std::span<const Property<Lender>> properties() noexcept {
        static constexpr Property<Lender> kTable[] = {{{u"Both", u"Оба"}, &Lender::get, &Lender::set},
                                                      {{u"Read"}, &Lender::get},
                                                      {{u"Write"}, nullptr, &Lender::set}};
        return kTable;
    }
    static std::span<const Method<Lender>> methods() noexcept {
        static constexpr Param kParams[] = {
            {}, {.in = false, .out = true}, named_param({}, ParamDefault::undefined)};
        static constexpr Method<Lender> kTable[] = {
            {{u"Ask", u"Спросить"}, kParams, kFunction, &Lender::work},
            {{u"Do"}, required(1), kProcedure, &Lender::work}};
        return kTable;
    }

  private:
    GenericValue get() const { return {}; }
    void set(const GenericValue&) {}
    GenericValue work(std::span<GenericValue>) { return {}; }
};
constexpr GUID kLenderClass = "d01bff24-01c3-4ed3-b0d7-63042f854d41"_guid;
constexpr GUID kUnknownClass = "d01bff24-01c3-4ed3-b0d7-63042f854d40"_guid;
const SCOM_Class<Lender, &kLenderClass> kLenderEntry("Lender");

template <const GUID* clsid>
class Borrower : public ContextDefExtern<clsid> {
  public:
    using Interfaces = InterfaceList<IContextDef>;
};

class Nothing : public ContextDefCore<> {
  public:
    using Interfaces = InterfaceList<IContextDef>;
};

TEST(Borrowing, ForwardsToTheOtherClassOrToNothing) {
    SCOM_ResourceBundle bundle("nothing");
    SCOM_Module module(module_class_entries, bundle);
    module.init(&bundle);
    const host::HostProcess process;
    // By this id other modules ask a class for its definition.
    EXPECT_EQ(IContextDef::IID, "fd7b6cc1-dc8e-11d2-b8d0-008048da0335"_guid);
    EXPECT_EQ(answers(*make_object<Borrower<&kLenderClass>>()), answers(*make_object<Lender>()));
    EXPECT_EQ(answers(*make_object<Borrower<&kCoreGeneralContextClass>>()),
              answers(*create_core_general_context()));

    // Without a definition nothing can be read; all else is what a definition without members answers.
    const auto core = answers(*make_object<Nothing>());
    const auto none = answers(*make_object<Borrower<&kNullGuid>>());
    EXPECT_EQ(answers(*make_object<Borrower<&kUnknownClass>>()), none);
    ASSERT_EQ(none.size(), core.size());
    for (std::size_t i = 0; i < core.size(); ++i)
        EXPECT_EQ(none[i], i == 3 || i == 9 ? u"no" : core[i]) << i;
}

TEST(ContextDefCore, HasNoMembersAndSaysWhatIsUsual) {
    const host::HostProcess process;
    const std::vector<wstring> property = {u"(null)", u"(null)", u"(null)", u"yes", u"no", u"-1"};
    const std::vector<wstring> parameter = {u"yes", u"no", u"no", u"no", u"5"};
    std::vector<wstring> expected;
    const auto add = [&](const std::vector<wstring>& more) {
        expected.insert(expected.end(), more.begin(), more.end());
    };
    for (int prop = -1; prop <= 0; ++prop)
        add(property);
    for (int method = -1; method <= 0; ++method) {
        add({u"(null)", u"(null)", u"(null)", u"no", u"-1"});
        for (int param = -1; param <= 0; ++param)
            add(parameter);
    }
    EXPECT_EQ(answers(*make_object<Nothing>()), expected);
}

} // namespace
