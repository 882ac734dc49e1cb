// SPDX-License-Identifier: Apache-2.0
#include "host/language/token.h"

#include <core/collections/value_pair.h>
#include <core/context/context_def_ext.h>
#include <core/context/iteration.h>
#include <core/script/console.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>

#include <span>
#include <vector>

namespace core::script {

namespace {

constexpr std::size_t kMaxLength = 600;
constexpr std::size_t kMaxString = 200; // of one string
constexpr int kMaxDepth = 3;            // objects in objects that show what they hold

/// The properties that the elements of a collection are, as the cells of a row are those named like its
/// columns: these can be set, and there are as many. None where the elements have no names.
std::vector<int> named_elements(IValueCollection& collection) {
    std::vector<int> props;
    const InterfacePtr<IContext_> context(&collection);
    for (int prop = 0; context && prop < context->getNProps(); ++prop) {
        if (context->isPropReadable(prop) && context->isPropWritable(prop))
            props.push_back(prop);
    }
    std::size_t count = 0;
    GenericValue element;
    for (const auto walk = collection.enumerate(); count <= props.size() && walk->next(element);)
        ++count;
    return count == props.size() ? props : std::vector<int>();
}

class Display {
  public:
    explicit Display(int alias) : alias_(alias) {}

    wstring take() { return std::move(text_); }

    void show(const Value& value) {
        switch (value.kind()) {
        case ValueKind::undefined:
            return literal(TokenKind::keyUndefined);
        case ValueKind::null:
            return literal(TokenKind::keyNull);
        case ValueKind::boolean:
            return literal(value.isTrue() ? TokenKind::keyTrue : TokenKind::keyFalse);
        case ValueKind::number:
            return showNumber(value.asNumeric()->toString());
        case ValueKind::date:
            text_.append(u"'").append(value.asDate()->toString()).append(u"'");
            return;
        case ValueKind::string:
            return showString(*value.asString());
        case ValueKind::type:
            text_ += value.asType()->name(alias_);
            return;
        case ValueKind::object:
            return showObject(value);
        }
    }

  private:
    void literal(TokenKind keyword) { text_ += keyword_name(keyword, alias_); }

    void showNumber(const wstring& digits) {
        text_.append(digits, 0, kMaxString);
        if (digits.size() > kMaxString)
            text_ += u'…';
    }
    void showString(wstring_view string) {
        text_ += u'"';
        for (const wchar c : string.substr(0, kMaxString)) {
            text_ += c;
            if (c == u'"')
                text_ += c;
        }
        text_ += string.size() > kMaxString ? u"…" : u"\"";
    }

    /// Puts items between brackets, with commas, as long as there is room.
    class Items {
      public:
        Items(Display& display, const wchar* open) : display_(display) {
            display_.text_ += open;
            ++display_.depth_;
        }
        Items(const Items&) = delete;
        Items& operator=(const Items&) = delete;
        ~Items() { --display_.depth_; }

        void close(wchar close) { display_.text_ += close; }

        /// Begins an item; false, with a mark that there are more, when nothing else is shown.
        bool begin() {
            if (!first_)
                display_.text_ += u", ";
            first_ = false;
            const bool room = display_.depth_ <= kMaxDepth && display_.text_.size() < kMaxLength;
            if (!room)
                display_.text_ += u'…';
            return room;
        }

      private:
        Display& display_;
        bool first_ = true;
    };

    void showObject(const Value& value) {
        const Type type = value.type();
        text_ += type.name(alias_);
        if (const auto pairs = value.query<IValuePairs>()) {
            showPairs(*pairs);
        } else if (const auto collection = value.query<IValueCollection>()) {
            if (const std::vector<int> props = named_elements(*collection); !props.empty())
                showNamed(*value.query<IContext_>(), props);
            else
                showElements(*collection);
        } else {
            const auto context = value.query<IContext_>();
            const wstring presentation = value.presentation();
            const bool speaks = presentation != type.presentation();
            if (context && context->getNProps() > 0 && (depth_ == 0 || !speaks))
                showProperties(*context);
            else if (speaks)
                text_.append(u" (").append(presentation.substr(0, kMaxString)).append(u")");
        }
    }

    void showPairs(const IValuePairs& pairs) {
        Items items(*this, u" {");
        IValuePairs::View pair;
        for (std::size_t place = 0; pairs.next(place, pair) && items.begin();) {
            if (const wstring_view* const name = pair.key->asString();
                name != nullptr && is_valid_name(*name))
                text_ += *name;
            else
                show(*pair.key);
            text_ += u": ";
            show(*pair.value);
        }
        items.close(u'}');
    }

    /// The elements by the names of the properties that they are.
    void showNamed(IContext_& context, std::span<const int> props) {
        Items items(*this, u" {");
        GenericValue element;
        for (const int prop : props) {
            if (!items.begin())
                break;
            text_.append(context.getPropName(prop, alias_)).append(u": ");
            context.getPropVal(prop, element);
            show(element);
        }
        items.close(u'}');
    }

    void showElements(IValueCollection& collection) {
        Items items(*this, u" [");
        GenericValue element;
        for (const auto walk = collection.enumerate(); walk->next(element) && items.begin();)
            show(element);
        items.close(u']');
    }

    void showProperties(IContext_& context) {
        Items items(*this, u" {");
        for (int prop = 0; prop < context.getNProps(); ++prop) {
            if (!context.isPropReadable(prop))
                continue;
            if (!items.begin())
                break;
            text_.append(context.getPropName(prop, alias_)).append(u": ");
            GenericValue value;
            context.getPropVal(prop, value);
            show(value);
        }
        items.close(u'}');
    }

    int alias_;
    int depth_ = 0;
    wstring text_;
};

} // namespace

wstring display(const Value& value, int alias) {
    Display result(alias);
    result.show(value);
    return result.take();
}

wstring display_parameters(IContextDef& definition, int method, int alias) {
    const InterfacePtr<IContextDefParams> named(&definition);
    wstring text;
    for (int param = 0; param < definition.getNParams(method); ++param) {
        if (param > 0)
            text += u", ";
        if (definition.isParamOut(method, param))
            text += definition.isParamIn(method, param) ? u"in out " : u"out ";
        const wchar* const name = named ? named->getParamName(method, param, alias) : nullptr;
        text += name != nullptr ? wstring(name) : string_intto(param + 1);
        if (GenericValue value; definition.getParamDefValue(method, param, &value))
            text.append(u" = ").append(display(value, alias));
    }
    return text;
}

} // namespace core::script
