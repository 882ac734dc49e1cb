// SPDX-License-Identifier: Apache-2.0
// Calls of our methods with names, without some arguments, and with variables that get values back.
#include "tests/bridges/com/engine_site.h"

#include <core/collections/pairs.h>

#include <string_view>

namespace core::com {
namespace {

/// A call as a client writes it by hand: arguments in their order, then those with names.
class Call {
  public:
    explicit Call(const Value& object) : object_(dispatch_of(object)) {}

    Call& with(const Value& value) {
        Variant variant;
        to_variant(value, variant, {});
        return with(std::move(variant));
    }
    Call& with(Variant variant) {
        unnamed_.push_back(std::move(variant));
        return *this;
    }
    Call& missing() { return with(missing_value()); }
    Call& to(VARIANT& variable) {
        Variant reference;
        V_VT(&reference) = VT_VARIANT | VT_BYREF;
        V_VARIANTREF(&reference) = &variable;
        return with(std::move(reference));
    }
    /// Gives the last argument a name.
    Call& as(const wchar* name) {
        named_.push_back(std::move(unnamed_.back()));
        unnamed_.pop_back();
        names_.emplace_back(name);
        return *this;
    }

    /// Calls a method; stores what it returns.
    ::HRESULT operator()(const wchar* method, Value* returned = nullptr) {
        std::vector<wstring> texts{method};
        texts.insert(texts.end(), names_.begin(), names_.end());
        std::vector<LPOLESTR> names;
        for (wstring& text : texts)
            names.push_back(to_com(text.data()));
        std::vector<DISPID> ids(names.size());
        ::HRESULT answer = object_->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()),
                                                  LOCALE_USER_DEFAULT, ids.data());
        if (FAILED(answer))
            return answer;
        std::vector<VARIANT> all(named_.begin(), named_.end());
        all.insert(all.end(), unnamed_.rbegin(), unnamed_.rend());
        DISPPARAMS given{all.data(), ids.data() + 1, static_cast<UINT>(all.size()),
                         static_cast<UINT>(named_.size())};
        Variant result;
        answer = object_->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &given, &result,
                                 nullptr, &wrong);
        if (returned != nullptr)
            *returned = from_variant(result);
        return answer;
    }

    UINT wrong = 99; ///< the argument that the last call does not take

  private:
    ComPtr<IDispatch> object_;
    std::vector<Variant> unnamed_;
    std::vector<Variant> named_;
    std::vector<wstring> names_;
};

using ComCalls = ComEngineTest;

TEST_F(ComCalls, NamesAndGapsReachTheirParameters) {
    const Value list = run("Return New ValueList;");
    // Add(Value, Presentation, Check, Picture)
    EXPECT_EQ(Call(list).with(Value(1))(u"Add"), S_OK);
    EXPECT_EQ(Call(list).with(Value(2)).missing().with(Value(true))(u"Add"), S_OK);
    EXPECT_EQ(Call(list).with(Value(3)).with(Value(true)).as(u"check")(u"ADD"), S_OK);
    EXPECT_EQ(
        Call(list).with(Value(true)).as(u"Пометка").with(Value(u"four")).as(u"Presentation")(u"Добавить"),
        S_OK);
    EXPECT_EQ(Call(list)(u"Add"), S_OK);
    script::Engine engine;
    engine.set("List", list);
    const Value shown = engine.run("Text = \"\"; For Each I In List Do Text = Text + I.Value + \",\" + "
                                   "I.Presentation + \",\" + I.Check + \";\"; EndDo; Return Text;");
    EXPECT_EQ(to_utf8(shown.presentation()), "1,,No;2,,Yes;3,,Yes;,four,Yes;,,No;");
}

TEST_F(ComCalls, ArgumentsThatDoNotFitAreNamed) {
    const Value map = run("Return New Map;");
    EXPECT_EQ(Call(map).with(Value(1)).as(u"NoSuch")(u"Insert"), DISP_E_UNKNOWNNAME);
    Call left(map);
    left.with(Value(1)).as(u"Value");
    EXPECT_EQ(left(u"Insert"), DISP_E_PARAMNOTOPTIONAL);
    Call twice(map);
    twice.with(Value(1)).as(u"Key").with(Value(2)).as(u"Key").with(Value(3)).as(u"Value");
    EXPECT_EQ(twice(u"Insert"), DISP_E_PARAMNOTFOUND); // one of them would be lost
    EXPECT_EQ(twice.wrong, 1U);
    Call both(map);
    both.with(Value(1)).with(Value(2)).as(u"Key").with(Value(3)).as(u"Value");
    EXPECT_EQ(both(u"Insert"), DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(both.wrong, 0U);
    Value count;
    EXPECT_EQ(Call(map)(u"Count", &count), S_OK);
    EXPECT_EQ(count, Value(0));
}

TEST_F(ComCalls, ValuesComeBackIntoVariables) {
    const Value structure = run("Return New Structure(\"A,B\", 5, \"text\");");
    Variant variable; // Property(Key, Value)
    Value found;
    EXPECT_EQ(Call(structure).with(Value(u"A")).to(variable)(u"Property", &found), S_OK);
    EXPECT_EQ(found, Value(true));
    EXPECT_EQ(from_variant(variable), Value(5));
    EXPECT_EQ(Call(structure).to(variable).as(u"Значение").with(Value(u"B")).as(u"Key")(u"Property", &found),
              S_OK);
    EXPECT_EQ(from_variant(variable), Value(u"text")); // the old content is let go of
    EXPECT_EQ(Call(structure).with(Value(u"A"))(u"Property", &found), S_OK);
    EXPECT_EQ(Call(structure).with(Value(u"A")).with(Value(1))(u"Property", &found), S_OK); // no variable

    LONG whole = 1;
    Variant typed;
    V_VT(&typed) = VT_I4 | VT_BYREF;
    V_I4REF(&typed) = &whole;
    EXPECT_EQ(Call(structure).with(Value(u"A")).with(std::move(typed))(u"Property", &found), S_OK);
    EXPECT_EQ(whole, 5);
    Variant narrow;
    V_VT(&narrow) = VT_I4 | VT_BYREF;
    V_I4REF(&narrow) = &whole;
    EXPECT_EQ(Call(structure).with(Value(u"B")).with(std::move(narrow))(u"Property", &found),
              DISP_E_EXCEPTION);
    EXPECT_EQ(whole, 5); // a text is not a VT_I4

    VARIANT inner; // a variable that leads to another one
    V_VT(&inner) = VT_I4 | VT_BYREF;
    V_I4REF(&inner) = &whole;
    whole = 1;
    EXPECT_EQ(Call(structure).with(Value(u"A")).to(inner)(u"Property", &found), S_OK);
    EXPECT_EQ(whole, 5);
}

TEST_F(ComCalls, VariablesOfVBScriptGetValuesBack) {
    const auto held = dispatch_of(Value(maker_));
    Site site(u"VBScript", held.get());
    EXPECT_EQ(site.run("Set S = Maker.Make(\"Structure\")\nS.Insert \"A\", 5\nS.Insert \"Rest\"\n"
                       "Dim V\nFound = S.Property(\"A\", V)\nMaker.Take Found & \" \" & V\n"),
              "");
    EXPECT_EQ(to_utf8(maker_->taken.presentation()), "True 5");
}

} // namespace
} // namespace core::com
