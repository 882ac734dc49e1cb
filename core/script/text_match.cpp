// SPDX-License-Identifier: Apache-2.0
#include <core/collections/value_array.h>
#include <core/context/script_object.h>
#include <core/script/text_match.h>

#include <utility>

namespace core::script {
namespace {

class TextMatch : public ScriptObject<TextMatch> {
  public:
    // Scripts cannot make one; that a process can serves those that ask for the definition.
    static constexpr ScriptClass script = {.names = {u"TextMatch", u"СовпадениеТекста"},
                                           .type = script_type_id(u"TextMatch"),
                                           .object = script_class_id(u"TextMatch"),
                                           .presentation = "IDS_TYPE_PRESENTATION_TEXTMATCH"};

    TextMatch() : TextMatch({}, 0, create_fixed_value_array({})) {}
    TextMatch(wstring_view text, std::size_t position, InterfacePtr<IValueSequence> groups)
        : text_(text), position_(position), groups_(std::move(groups)) {}

    bool getString(wstring& out) const override {
        out = text_;
        return true;
    }
    static auto members() {
        return core::members(property(u"Text", u"Текст", &TextMatch::text),
                             property(u"Position", u"Начало", &TextMatch::position),
                             property(u"Groups", u"Группы", &TextMatch::groups));
    }

  private:
    [[nodiscard]] wstring text() const { return text_; }
    [[nodiscard]] std::size_t position() const { return position_; }
    [[nodiscard]] InterfacePtr<IValueSequence> groups() const { return groups_; }

    wstring text_;
    std::size_t position_;
    InterfacePtr<IValueSequence> groups_;
};

const ScriptClassEntry<TextMatch> kTextMatchEntry;

} // namespace

GenericValue create_text_match(wstring_view text, std::size_t position, std::vector<Value> groups) {
    return make_object<TextMatch>(text, position, create_fixed_value_array(std::move(groups)));
}

} // namespace core::script
