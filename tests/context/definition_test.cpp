// SPDX-License-Identifier: Apache-2.0
// Concerns: names found in any case in both languages, by a table and by walking alike; of equal names the
// first; what stands in for a missing Russian name; definitions whose names change; definitions borrowed from
// a class.
#include <core/context/context_extern.h>
#include <core/context/context_impl.h>
#include <core/objects/core_general_context.h>
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
class Named : public ContextDefIntern<Named<Cache>, Cache> {
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
    using ContextDefIntern<Named<Cache>, Cache>::initContextDefCache;

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
    const auto def = make_object<Named<TypeParam>>();
    def->names = kNames;
    const std::pair<const wchar*, int> expected[] = {
        {u"count", 0}, {u"КОЛИЧЕСТВО", 0}, {u"GRÖSSE", 1}, {u"größe", 1},   {u"ещЁ", 2}, {u"VALUE", 3},
        {u"other", 4}, {u"", -1},          {u"Coun", -1},  {u"Counts", -1}, {u"Ко", -1},
    };
    for (const auto& [name, index] : expected) {
        EXPECT_EQ(def->findProp(name), index);
        EXPECT_EQ(def->findMethod(name), index);
    }
    def->names[1].english = u"New";
    def->namesChanged();
    EXPECT_EQ(def->findProp(u"NEW"), 1);
    EXPECT_EQ(def->findMethod(u"größe"), -1);
}

TEST(Lookup, ATableAnswersAsWalkingDoes) {
    std::mt19937 random(7);
    const auto cached = make_object<Named<ContextDefCached>>();
    const auto walked = make_object<Named<ContextDefNoncached>>();
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
    const auto def = make_object<Named<ContextDefCached>>();
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

constexpr GUID kUnknownClass = "d01bff24-01c3-4ed3-b0d7-63042f854d40"_guid;

template <const GUID* clsid>
class Borrower : public ContextDefExtern<clsid> {
  public:
    using Interfaces = InterfaceList<IContextDef>;
};

TEST(Borrowing, ForwardsToTheOtherClassOrToNothing) {
    const host::HostProcess process;
    // By this id other modules ask a class for its definition.
    EXPECT_EQ(IContextDef::IID, "fd7b6cc1-dc8e-11d2-b8d0-008048da0335"_guid);
    const auto borrowed = make_object<Borrower<&kCoreGeneralContextClass>>();
    EXPECT_EQ(borrowed->getNMethods(), 4);
    EXPECT_EQ(borrowed->findMethod(u"base64string"), 3);
    EXPECT_EQ(wstring_view(borrowed->getMethodName(1, 1)), u"ЗаполнитьЗначенияСвойств");
    EXPECT_EQ(borrowed->getNParams(1), 4);
    EXPECT_FALSE(borrowed->hasRetVal(1));
    GenericValue value;
    EXPECT_TRUE(borrowed->getParamDefValue(1, 3, &value));
    EXPECT_TRUE(value.equals(u""));

    const auto none = make_object<Borrower<&kNullGuid>>();
    const auto unknown = make_object<Borrower<&kUnknownClass>>();
    for (const IContextDef* def :
         {static_cast<IContextDef*>(none.get()), static_cast<IContextDef*>(unknown.get())}) {
        EXPECT_EQ(def->getNProps() + def->getNMethods() + def->getNParams(0), 0);
        EXPECT_EQ(def->findProp(u"Count"), -1);
        EXPECT_EQ(def->findMethod(u"Base64String"), -1);
        EXPECT_EQ(def->getMethodName(0, 0), nullptr);
        EXPECT_FALSE(def->getParamDefValue(0, 0, &value) || def->hasRetVal(0) || def->isPropReadable(0));
    }
}

} // namespace
