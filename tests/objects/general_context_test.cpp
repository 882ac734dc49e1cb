// SPDX-License-Identifier: Apache-2.0
// Concerns: the global functions by their numbers and names; base64 against its published examples and bad
// texts; properties filled all or not at all; bytes as a value.
#include <core/collections.h>
#include <core/context/script_object.h>
#include <core/objects/binary_data.h>
#include <core/objects/core_general_context.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <stdexcept>

namespace {

using namespace core;
using namespace std::string_view_literals;

class General : public testing::Test {
  protected:
    GenericValue call(int method, std::vector<GenericValue> params) {
        GenericValue result;
        global_->call(method, &result, &params);
        return result;
    }
    static GenericValue structure(std::initializer_list<std::pair<const wchar*, Value>> fields) {
        const auto made = create_value_structure();
        for (const auto& [name, value] : fields)
            made->insert(name, value);
        return GenericValue(made.query<IValue>());
    }
    static Value field(const GenericValue& made, wstring_view name) {
        const Value* const value = made.query<IValueStructure>()->find(name);
        return value != nullptr ? *value : Value(u"no such field");
    }
    static Value bytes(std::string_view text) {
        const auto view = std::as_bytes(std::span(text));
        return create_binary_data({view.begin(), view.end()});
    }

    host::HostProcess process_;
    InterfacePtr<IContext_> global_ = create_object<IContext_>(kCoreGeneralContextClass);
};

TEST_F(General, FunctionsHaveTheirNumbersInBothLanguages) {
    const std::pair<const wchar*, const wchar*> names[] = {
        {u"GetTempFileName", u"ПолучитьИмяВременногоФайла"},
        {u"FillPropertyValues", u"ЗаполнитьЗначенияСвойств"},
        {u"Base64Value", u"Base64Значение"},
        {u"Base64String", u"Base64Строка"}};
    ASSERT_EQ(global_->getNMethods(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(global_->findMethod(to_lower(wstring_view(names[i].first)).c_str()), i);
        EXPECT_EQ(global_->findMethod(to_upper(wstring_view(names[i].second)).c_str()), i);
        EXPECT_EQ(global_->getMethodName(i, 2), nullptr);
    }
    for (const int out : {-1, 4}) {
        EXPECT_EQ(wstring_view(global_->getMethodName(out, 0)), u"");
        EXPECT_EQ(wstring_view(global_->getPropName(out, 1)), u"");
    }
}

TEST_F(General, Base64IsReadAndWritten) {
    const std::pair<const char*, const wchar*> examples[] = {{"", u""},
                                                             {"f", u"Zg=="},
                                                             {"fo", u"Zm8="},
                                                             {"foo", u"Zm9v"},
                                                             {"foob", u"Zm9vYg=="},
                                                             {"fooba", u"Zm9vYmE="},
                                                             {"foobar", u"Zm9vYmFy"},
                                                             {"\xff\xfe\xfb", u"//77"}};
    for (const auto& [plain, encoded] : examples) {
        EXPECT_TRUE(call(3, {bytes(plain)}).equals(encoded));
        EXPECT_EQ(call(2, {encoded}), bytes(plain));
    }
    EXPECT_EQ(call(2, {u" Zm9v\r\nYg == "}), bytes("foob"));
    EXPECT_TRUE(call(3, {u"Ж"}).equals(u"0JY=")) << "a String in UTF-8";
    for (const wchar* bad :
         {u"Z", u"Zg", u"Zg=", u"=", u"====", u"Z===", u"Zg=v", u"Zm9v!", u"Zm9vЖ===", u"Zg==Zg=="})
        EXPECT_THROW(call(2, {bad}), ContextException);
    EXPECT_THROW(call(2, {5}), ContextException);
    EXPECT_THROW(call(3, {5}), ContextException);
}

TEST_F(General, BytesAreAValue) {
    std::mt19937 random(3);
    std::vector<std::byte> content;
    for (int i = 0; i < 1000; ++i) {
        const Value value = create_binary_data(content);
        EXPECT_EQ(call(2, {call(3, {value})}), value);
        content.push_back(static_cast<std::byte>(random()));
    }
    const GenericValue value = bytes("\0a\xff");
    EXPECT_NE(Value(value), bytes("b"));
    EXPECT_EQ(bytes("b").hashCode(), bytes("b").hashCode());
    wstring text;
    GenericValue(create_binary_data(content)).toString(text);
    EXPECT_EQ(GenericValue::fromString(text), create_binary_data(content));
    EXPECT_THROW((void)GenericValue::fromString(u"{\"#\",7de97245-2e04-4cd6-9f5d-a10944b56cc5,\"Z\"}"),
                 ListStreamException);

    std::vector<GenericValue> arguments = {u"Ж1"};
    const GenericValue made = Type(u"ДвоичныеДанные").get()->construct(arguments);
    const auto context = made.query<IContext_>();
    GenericValue size;
    context->call(context->findMethod(u"Size"), &size, nullptr);
    EXPECT_TRUE(size.equals(3));
    EXPECT_EQ(made, bytes("Ж1"));
    const auto map = create_value_map();
    map->insert(made, 1);
    EXPECT_NE(map->find(bytes("Ж1")), nullptr);
}

TEST_F(General, PropertiesAreFilledByName) {
    const GenericValue source = structure({{u"A", 1}, {u"b", 2}, {u"C", 3}, {u"Extra", 4}});
    GenericValue receiver = structure({{u"c", 0}, {u"B", 0}, {u"a", 0}, {u"Own", 5}});
    call(1, {receiver, source, u"", u" b ,extra"});
    EXPECT_EQ(field(receiver, u"a"), Value(1));
    EXPECT_EQ(field(receiver, u"b"), Value(0));
    EXPECT_EQ(field(receiver, u"c"), Value(3));
    EXPECT_EQ(field(receiver, u"Own"), Value(5));
    EXPECT_EQ(receiver.query<IValueStructure>()->count(), 4U);
    call(1, {receiver, source, u"B"});
    EXPECT_EQ(field(receiver, u"B"), Value(2));

    receiver = structure({{u"A", 0}, {u"B", 0}});
    for (const wchar* unknown : {u"A,Extra", u"A,Own", u"A,a b"})
        EXPECT_THROW(call(1, {receiver, source, unknown}), ContextException);
    EXPECT_EQ(field(receiver, u"A"), Value(0));

    // A pair's properties have two names each, a structure's have one.
    const GenericValue pair(create_value_pair(1, 2).query<IValue>());
    receiver = structure({{u"Ключ", 0}, {u"Value", 0}});
    call(1, {receiver, pair, u"", u"значение"});
    EXPECT_EQ(field(receiver, u"Ключ"), Value(1));
    EXPECT_EQ(field(receiver, u"Value"), Value(0));
    call(1, {receiver, pair, u"Значение"});
    EXPECT_EQ(field(receiver, u"Value"), Value(2));
    EXPECT_THROW(call(1, {pair, receiver, u"Value"}), ContextException) << "nothing of a pair can be set";
    EXPECT_THROW(call(1, {receiver, 5}), ContextException);
    EXPECT_THROW(call(1, {receiver}), ContextException);
}

/// Three properties: A takes every value, B refuses to take its old value back, and C refuses every value.
class Stubborn : public ScriptObject<Stubborn> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TestStubborn"},
        .type = "ba6d7318-2879-4e7b-9e34-e5b008bf6bea"_guid,
        .object = "5cd0c063-ef32-4e27-9ff1-0ea9891e313a"_guid,
    };
    static std::span<const Property<Stubborn>> properties() noexcept {
        static constexpr Property<Stubborn> kTable[] = {
            {{u"A", nullptr}, &Stubborn::a, &Stubborn::setA},
            {{u"B", nullptr}, &Stubborn::b, &Stubborn::setB},
            {{u"C", nullptr}, &Stubborn::b, &Stubborn::refuse},
        };
        return kTable;
    }
    GenericValue a() const { return a_; }

  private:
    GenericValue b() const { return {}; }
    void setA(const GenericValue& value) { a_ = value; }
    void setB(const GenericValue& value) {
        if (value.isUndefined())
            throw std::logic_error("not back again");
    }
    void refuse(const GenericValue&) { throw std::out_of_range("never"); }

    GenericValue a_ = 1;
};
const ScriptTypeEntry<Stubborn> kStubbornEntry;

TEST_F(General, WhatCannotBePutBackKeepsNothingElseFromGoingBack) {
    const auto receiver = make_object<Stubborn>();
    EXPECT_THROW(call(1, {receiver, structure({{u"A", 2}, {u"B", 2}, {u"C", 2}})}), std::out_of_range);
    EXPECT_EQ(receiver->a(), GenericValue(1));
}

TEST_F(General, NamesOfTemporaryFilesAreNew) {
    const wstring name = call(0, {u"txt"}).presentation();
    EXPECT_TRUE(name.ends_with(u".txt") && !name.ends_with(u"..txt"));
    EXPECT_TRUE(call(0, {u".txt"}).presentation().ends_with(u".txt"));
    EXPECT_NE(call(0, {}), call(0, {}));
    for (const wstring_view bad : {u"/../x"sv, u"a/b"sv, u".\\x"sv, u"a\0b"sv})
        EXPECT_THROW(call(0, {bad}), ContextException);
    const std::filesystem::path path(to_utf8(name));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(std::filesystem::is_directory(path.parent_path()));
}

} // namespace
