// SPDX-License-Identifier: Apache-2.0
#include "tests/bridges/com/com_fixture.h"
#include "tests/support/rounds.h"

#include <core/collections/array.h>
#include <core/objects/binary_data.h>
#include <core/tables/table.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace core::com {
namespace {

class ComValues : public ComTest {
  protected:
    /// What a value is on the other side; and that it comes back equal.
    VARTYPE there(const Value& value, const ComOptions& options = {}) {
        Variant variant;
        to_variant(value, variant, options);
        EXPECT_EQ(from_variant(variant), value) << to_utf8(value.presentation());
        return V_VT(&variant);
    }
    std::string refused(const Value& value, const ComOptions& options = {}) {
        return failure([&] {
            Variant variant;
            to_variant(value, variant, options);
        });
    }
    Value number(const char* text) { return Value(*Numeric::parse(std::string_view(text))); }
};

TEST_F(ComValues, EachKindHasItsType) {
    EXPECT_EQ(there(Value()), VT_EMPTY);
    EXPECT_EQ(there(Value::null()), VT_NULL);
    EXPECT_EQ(there(missing_value()), VT_ERROR);
    EXPECT_EQ(there(Value(true)), VT_BOOL);
    EXPECT_EQ(there(Value(false)), VT_BOOL);
    EXPECT_EQ(there(Value(2147483647)), VT_I4);
    EXPECT_EQ(there(Value(std::int64_t{2147483648})), VT_I8);
    EXPECT_EQ(there(Value(std::numeric_limits<std::int64_t>::min() + 1)), VT_I8);
    EXPECT_EQ(there(number("1.5")), VT_DECIMAL);
    EXPECT_EQ(there(number("79228162514264337593543950335")), VT_DECIMAL);
    EXPECT_EQ(there(number("-0.0000000000000000000000000001")), VT_DECIMAL);
    EXPECT_EQ(there(Value(u"")), VT_BSTR);
    EXPECT_EQ(there(Value(wstring_view(u"a\0b", 3))), VT_BSTR);
    EXPECT_EQ(there(Value(Date(2024, 2, 29, 23, 59, 59))), VT_DATE);
    EXPECT_EQ(there(Value(Type(Type::number))), VT_DISPATCH);
    EXPECT_EQ(there(Array{1, u"two"}), VT_DISPATCH);
}

TEST_F(ComValues, WhatHasNoExactFormIsRefusedOrBecomesText) {
    for (const char* text : {"79228162514264337593543950336", "0.00000000000000000000000000001",
                             "7.92281625142643375935439503351"}) {
        EXPECT_EQ(refused(number(text)), "COM_NOT_EXACT") << text;
        Variant variant;
        to_variant(number(text), variant, {.numbers = ComNumbers::text});
        EXPECT_EQ(to_utf8(from_variant(variant).presentation()).empty(), false);
        EXPECT_EQ(V_VT(&variant), VT_BSTR);
        EXPECT_EQ(to_utf8(Bstr::view(V_BSTR(&variant))), text);
    }
    EXPECT_EQ(there(number("0.1"), {.numbers = ComNumbers::doubles}), VT_R8);
    EXPECT_EQ(there(number("0.12345678901234567890"), {.numbers = ComNumbers::doubles}), VT_DECIMAL);
    EXPECT_EQ(refused(Value(Date(99, 12, 31))), "COM_NOT_EXACT");
    EXPECT_EQ(refused(Value(Date())), "COM_NOT_EXACT");
}

TEST_F(ComValues, DatesHaveTheirSignOnTheDay) {
    EXPECT_EQ(to_com_date(Date(1899, 12, 30)), 0.0);
    EXPECT_EQ(to_com_date(Date(1899, 12, 29, 6)), -1.25);
    EXPECT_EQ(to_com_date(Date(1899, 12, 31, 12)), 1.5);
    EXPECT_EQ(to_com_date(Date(100, 1, 1)), -657434.0);
    EXPECT_EQ(from_com_date(-0.25), Date(1899, 12, 30, 6)); // the day 0 has no sign
    EXPECT_EQ(from_com_date(2958465.9999884), Date(9999, 12, 31, 23, 59, 58));
    EXPECT_EQ(from_com_date(1.0 + 0.9 / 86400), Date(1899, 12, 31)); // parts of a second are cleared
    EXPECT_EQ(to_com_date(Date(Date(1899, 12, 31).ticks() + 9999)), 1.0);
    for (const double bad : {-657435.0, 2958466.0, std::nan(""), HUGE_VAL, -1e300})
        EXPECT_EQ(failure([&] { static_cast<void>(from_com_date(bad)); }), "COM_NOT_EXACT");
}

/// An independent reading of a VARIANT of numbers, by long arithmetic of the compiler.
std::string model_text(const VARIANT& variant) {
    switch (V_VT(&variant)) {
    case VT_I4:
        return std::to_string(V_I4(&variant));
    case VT_I8:
        return std::to_string(V_I8(&variant));
    default:
        break;
    }
    __extension__ using Wide = unsigned __int128;
    Wide mantissa = static_cast<Wide>(V_DECIMAL(&variant).Hi32) << 64U;
    mantissa += V_DECIMAL(&variant).Lo64;
    std::string digits;
    for (; mantissa != 0; mantissa /= 10)
        digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(mantissa % 10)));
    const std::size_t scale = V_DECIMAL(&variant).scale;
    while (digits.size() <= scale)
        digits.insert(digits.begin(), '0');
    if (scale > 0)
        digits.insert(digits.size() - scale, ".");
    return (V_DECIMAL(&variant).sign != 0 ? "-" : "") + digits;
}

TEST_F(ComValues, AMillionRandomValuesComeBackAsTheModelSays) {
    std::mt19937_64 random(20241122);
    const int count = support::rounds(100'000, 1'000'000);
    int refusals = 0;
    for (int i = 0; i < count; ++i) {
        const unsigned kind = random() % 4;
        if (kind == 0) { // texts of any units
            wstring text(random() % 20, u'\0');
            for (wchar& unit : text)
                unit = static_cast<wchar>(random());
            ASSERT_EQ(there(Value(text)), VT_BSTR);
        } else if (kind == 1) { // dates
            const std::uint64_t seconds = random() % (Date::kLimit / kTicksPerSecond);
            const Date date(seconds * kTicksPerSecond);
            const std::int64_t fromZero = static_cast<std::int64_t>(seconds) - 693593LL * 86400;
            if (date.getYear() < 100) {
                ASSERT_EQ(refused(Value(date)), "COM_NOT_EXACT");
                continue;
            }
            const std::int64_t day = fromZero >= 0 ? fromZero / 86400 : -((-fromZero + 86399) / 86400);
            const auto time = static_cast<double>(fromZero - day * 86400) / 86400;
            const auto days = static_cast<double>(day);
            ASSERT_EQ(to_com_date(date), day < 0 ? days - time : days + time);
            ASSERT_EQ(there(Value(date)), VT_DATE);
        } else { // numbers
            std::string digits;
            for (std::size_t length = 1 + random() % 31; length > 0; --length)
                digits.push_back(static_cast<char>('0' + random() % 10));
            const std::size_t places = random() % 3 == 0 ? random() % 30 : 0;
            while (digits.size() <= places)
                digits.insert(digits.begin(), '0');
            if (places > 0)
                digits.insert(digits.size() - places, ".");
            const Numeric value = *Numeric::parse((random() % 2 != 0 ? "-" : "") + digits);
            Variant variant;
            try {
                to_variant(Value(value), variant, {});
            } catch (const COMException&) { // and rightly so
                const std::string plain = to_utf8(value.abs().toString());
                std::string shown = plain;
                std::erase(shown, '.');
                shown.erase(0, std::min(shown.find_first_not_of('0'), shown.size() - 1));
                const bool tooMany =
                    plain.find('.') != std::string::npos && plain.size() - plain.find('.') > 29;
                const std::string most = "79228162514264337593543950335";
                ASSERT_TRUE(tooMany || shown.size() > most.size() ||
                            (shown.size() == most.size() && shown > most))
                    << plain;
                ++refusals;
                continue;
            }
            ASSERT_EQ(model_text(variant), to_utf8(value.toString()));
            ASSERT_EQ(from_variant(variant), Value(value));
        }
    }
    EXPECT_GT(refusals, 100);
}

TEST_F(ComValues, TypesThatWeNeverMakeAreRead) {
    const auto read = [](auto set) {
        VARIANT variant;
        VariantInit(&variant);
        set(variant);
        return to_utf8(from_variant(variant).presentation());
    };
    const auto typed = [](VARIANT& variant, VARTYPE type, auto& field, auto value) {
        V_VT(&variant) = type;
        field = value;
    };
    using V = VARIANT&;
    EXPECT_EQ(from_variant([] {
                  VARIANT v;
                  V_VT(&v) = VT_I1;
                  V_I1(&v) = static_cast<CHAR>(-128);
                  return v;
              }()),
              Value(-128));
    EXPECT_EQ(read([&](V v) { typed(v, VT_UI1, V_UI1(&v), BYTE{255}); }), "255");
    EXPECT_EQ(read([&](V v) { typed(v, VT_I2, V_I2(&v), SHORT{-5}); }), "-5");
    VARIANT v;
    VariantInit(&v);
    typed(v, VT_UI8, V_UI8(&v), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(from_variant(v), number("18446744073709551615"));
    typed(v, VT_UI4, V_UI4(&v), 4294967295U);
    EXPECT_EQ(from_variant(v), number("4294967295"));
    typed(v, VT_R4, V_R4(&v), 0.1F);
    EXPECT_EQ(from_variant(v), number("0.1"));
    typed(v, VT_R8, V_R8(&v), 0.1);
    EXPECT_EQ(from_variant(v), number("0.1"));
    typed(v, VT_CY, V_CY(&v).int64, std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(from_variant(v), number("-922337203685477.5808"));
    typed(v, VT_ERROR, V_ERROR(&v), E_FAIL);
    EXPECT_EQ(to_utf8(from_variant(v).presentation()), "0x80004005");
    typed(v, VT_BSTR, V_BSTR(&v), static_cast<BSTR>(nullptr));
    EXPECT_EQ(from_variant(v), Value(u""));

    VARIANT reference;
    V_VT(&reference) = VT_VARIANT | VT_BYREF;
    V_VARIANTREF(&reference) = &v;
    typed(v, VT_I4, V_I4(&v), 7);
    EXPECT_EQ(from_variant(reference), Value(7));
    V_VARIANTREF(&reference) = &reference; // leads to itself
    EXPECT_EQ(failure([&] { static_cast<void>(from_variant(reference)); }), "COM_BAD_TYPE");
    V_VARIANTREF(&reference) = nullptr;
    EXPECT_EQ(failure([&] { static_cast<void>(from_variant(reference)); }), "COM_BAD_TYPE");
    typed(v, VT_DECIMAL, V_DECIMAL(&v).Lo64, ULONGLONG{1});
    V_DECIMAL(&v).scale = 29;
    V_VT(&v) = VT_DECIMAL;
    EXPECT_EQ(failure([&] { static_cast<void>(from_variant(v)); }), "COM_BAD_TYPE");
    V_VT(&v) = VT_CLSID;
    EXPECT_EQ(failure([&] { static_cast<void>(from_variant(v)); }), "COM_BAD_TYPE");
    V_VT(&v) = VT_R8;
    V_R8(&v) = std::nan("");
    EXPECT_NE(failure([&] { static_cast<void>(from_variant(v)); }), "");
}

TEST_F(ComValues, TypedVariablesTakeTheirTypeOrRefuse) {
    LONG whole = 5;
    VARIANT reference;
    V_VT(&reference) = VT_I4 | VT_BYREF;
    V_I4REF(&reference) = &whole;
    to_reference(Value(7), reference, {});
    EXPECT_EQ(whole, 7);
    EXPECT_EQ(failure([&] { to_reference(number("1.5"), reference, {}); }), "COM_NOT_EXACT");
    EXPECT_EQ(failure([&] { to_reference(Value(std::int64_t{1} << 40), reference, {}); }), "COM_NOT_EXACT");
    EXPECT_EQ(failure([&] { to_reference(Value(u"7"), reference, {}); }), "COM_NOT_EXACT");
    EXPECT_EQ(whole, 7);
    BSTR text = SysAllocString(to_com(u"old"));
    V_VT(&reference) = VT_BSTR | VT_BYREF;
    V_BSTRREF(&reference) = &text;
    to_reference(Value(u"new"), reference, {});
    EXPECT_EQ(Bstr::view(text), u"new");
    SysFreeString(text);
}

TEST_F(ComValues, ArraysOfAnyTypeAndDimension) {
    const ComOptions copies{.arrays = ComArrays::copies};
    const Array nested{1, u"two", Array{3, Value::null()}};
    Variant variant;
    to_variant(nested, variant, copies);
    EXPECT_EQ(V_VT(&variant), VT_ARRAY | VT_VARIANT);
    const Array back(from_variant(variant));
    ASSERT_EQ(back.size(), 3U);
    EXPECT_EQ(back[1], Value(u"two"));
    EXPECT_EQ(Array(back[2])[1], Value::null());

    const Value bytes = create_binary_data({std::byte{0}, std::byte{255}});
    Variant data;
    to_variant(bytes, data, copies);
    EXPECT_EQ(V_VT(&data), VT_ARRAY | VT_UI1);
    EXPECT_EQ(from_variant(data), bytes);

    SAFEARRAYBOUND bounds[3] = {{2, 5}, {3, -1}, {4, 0}};
    SAFEARRAY* const cube = SafeArrayCreate(VT_I2, 3, bounds);
    for (LONG i = 0; i < 2; ++i)
        for (LONG j = 0; j < 3; ++j)
            for (LONG k = 0; k < 4; ++k) {
                LONG at[3] = {i + 5, j - 1, k};
                SHORT value = static_cast<SHORT>(100 * i + 10 * j + k);
                SafeArrayPutElement(cube, at, &value);
            }
    VARIANT held;
    V_VT(&held) = VT_ARRAY | VT_I2;
    V_ARRAY(&held) = cube;
    const Array read(from_variant(held));
    EXPECT_EQ(Array(Array(read[1])[2])[3], Value(123));
    SafeArrayDestroy(cube);

    const Value typed = run("A = New Array; A.Add(1); A.Add(2); Return New SafeArray(A, \"VT_I2\");");
    Variant out;
    to_variant(typed, out, {});
    EXPECT_EQ(V_VT(&out), VT_ARRAY | VT_I2);
    EXPECT_EQ(SafeArrayGetElemsize(V_ARRAY(&out)), 2U);
}

TEST_F(ComValues, TablesAreTwoDimensions) {
    const Value table =
        run("T = New ValueTable; T.Columns.Add(\"A\"); T.Columns.Add(\"B\"); T.AddRow(1, \"x\");"
            "T.AddRow(2, \"y\"); T.AddRow(3, Null); Return T;");
    Variant variant;
    to_variant(table, variant, {.arrays = ComArrays::copies});
    ASSERT_EQ(V_VT(&variant), VT_ARRAY | VT_VARIANT);
    ASSERT_EQ(SafeArrayGetDim(V_ARRAY(&variant)), 2U);
    LONG at[2] = {1, 1}; // the second row, the second column
    Variant element;
    ASSERT_EQ(SafeArrayGetElement(V_ARRAY(&variant), at, &element), S_OK);
    EXPECT_EQ(from_variant(element), Value(u"y"));
    const Array rows(from_variant(variant));
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(Array(rows[2])[0], Value(3));
    EXPECT_EQ(Array(rows[2])[1], Value::null());
    Variant object;
    to_variant(table, object, {});
    EXPECT_EQ(V_VT(&object), VT_DISPATCH);
}

/// A record type of a type library.
ComPtr<IRecordInfo> make_record(const wstring& name) {
    constexpr ::GUID kRecord{0x6d2c81a4, 0x31b5, 0x4f0e, {0x92, 0x7a, 0x5c, 0x0e, 0xd1, 0x48, 0xb3, 0x04}};
    const wstring file = temporary_file(u"core_record.tlb");
    ComPtr<ICreateTypeLib2> library;
    EXPECT_EQ(CreateTypeLib2(SYS_WIN64, to_com(file.c_str()), library.typed()), S_OK);
    ComPtr<ICreateTypeInfo> made;
    EXPECT_EQ(library->CreateTypeInfo(to_com(wstring(name).data()), TKIND_RECORD, made.typed()), S_OK);
    EXPECT_EQ(made->SetGuid(kRecord), S_OK);
    VARDESC field{};
    field.varkind = VAR_PERINSTANCE;
    field.elemdescVar.tdesc.vt = VT_I4;
    EXPECT_EQ(made->AddVarDesc(0, &field), S_OK);
    EXPECT_EQ(made->LayOut(), S_OK);
    ComPtr<IRecordInfo> record;
    EXPECT_EQ(GetRecordInfoFromTypeInfo(ComPtr<ITypeInfo>::query(made.get()).get(), record.typed()), S_OK);
    return record;
}

TEST_F(ComValues, RecordsAreRefusedByName) {
    const auto record = make_record(u"Point");
    ASSERT_TRUE(record);
    LONG content = 5;
    const auto refusal = [](const VARIANT& variant) -> std::string {
        try {
            static_cast<void>(from_variant(variant));
        } catch (const COMException& e) {
            return std::string(e.messageId()) + " " + to_utf8(e.parameters().front());
        }
        return {};
    };
    VARIANT one;
    V_VT(&one) = VT_RECORD;
    V_RECORD(&one) = &content;
    V_RECORDINFO(&one) = record.get();
    EXPECT_EQ(refusal(one), "COM_RECORD Point");
    V_VT(&one) = VT_RECORD | VT_BYREF;
    EXPECT_EQ(refusal(one), "COM_RECORD Point");
    SAFEARRAYBOUND bound{2, 0};
    VARIANT many;
    V_VT(&many) = VT_RECORD | VT_ARRAY;
    V_ARRAY(&many) = SafeArrayCreateEx(VT_RECORD, 1, &bound, record.get());
    EXPECT_EQ(refusal(many), "COM_RECORD Point");
    SafeArrayDestroy(V_ARRAY(&many));
    V_VT(&one) = VT_RECORD;
    V_RECORDINFO(&one) = nullptr;
    EXPECT_EQ(refusal(one), "COM_RECORD ");
}

TEST_F(ComValues, HostileArraysAreErrors) {
    const Array own;
    own.add(own);
    Variant variant;
    EXPECT_EQ(failure([&] { to_variant(own, variant, {.arrays = ComArrays::copies}); }), "COM_BAD_ARRAY");
    own.clear();
    const auto bad = [&](auto damage) {
        SAFEARRAY* const array = SafeArrayCreateVector(VT_I4, 0, 4);
        const SAFEARRAY good = *array;
        damage(*array);
        VARIANT held;
        V_VT(&held) = VT_ARRAY | VT_I4;
        V_ARRAY(&held) = array;
        const std::string id = failure([&] { static_cast<void>(from_variant(held)); });
        *array = good;
        SafeArrayDestroy(array);
        return id;
    };
    EXPECT_EQ(bad([](SAFEARRAY& array) { array.cDims = 0; }), "COM_BAD_ARRAY");
    EXPECT_EQ(bad([](SAFEARRAY& array) { array.cbElements = 16; }), "COM_BAD_ARRAY");
    EXPECT_EQ(bad([](SAFEARRAY& array) { array.pvData = nullptr; }), "COM_BAD_ARRAY");
    EXPECT_EQ(bad([](SAFEARRAY& array) { array.rgsabound[0].cElements = 0xFFFFFFFF; }), "COM_BAD_ARRAY");
    VARIANT none;
    V_VT(&none) = VT_ARRAY | VT_VARIANT;
    V_ARRAY(&none) = nullptr;
    EXPECT_EQ(failure([&] { static_cast<void>(from_variant(none)); }), "COM_BAD_ARRAY");
}

} // namespace
} // namespace core::com
