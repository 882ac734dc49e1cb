// SPDX-License-Identifier: Apache-2.0
#include "core/objects/text_arguments.h"

#include <core/context/script_object.h>
#include <core/files/memory_file.h>
#include <core/objects/native_enumeration.h>
#include <core/objects/text_streams.h>

#include <limits>

namespace core {
namespace {

/// The lines of a reader that are left, each without its end.
class LineWalk : public IValueEnum {
  public:
    using Interfaces = InterfaceList<IValueEnum>;

    LineWalk(InterfacePtr<IValue> owner, TextReader& reader) : owner_(std::move(owner)), reader_(reader) {}
    bool next(GenericValue& out) override {
        if (!reader_.readLine(line_))
            return false;
        out = GenericValue(line_);
        return true;
    }

  private:
    InterfacePtr<IValue> owner_;
    TextReader& reader_; // lives in the owner
    wstring line_;
};

/// Reads a text by lines or pieces.
class TextReaderObject : public ScriptObject<TextReaderObject, IValueCollection> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TextReader", u"ЧтениеТекста"},
        .type = kTextReaderType,
        .object = "aeba3138-f501-43be-8b6a-4344bd3850ed"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_TEXTREADER",
        .arguments = {1, 4},
        .elements = &kStringType,
    };

    TextReaderObject() : TextReaderObject(open_memory_file(create_memory_data()), {}) {} // to be described
    TextReaderObject(InterfacePtr<IFile> file, const TextReaderOptions& options)
        : file_(std::move(file)), reader_(file_, options) {}

    /// New TextReader(File, [Encoding], [OnError], [UnicodeEnds]).
    static GenericValue construct(std::span<GenericValue> arguments) {
        TextReaderOptions options;
        options.encoding = encoding_argument(optional_argument(arguments, 1), 1);
        options.action = action_argument(optional_argument(arguments, 2), 2);
        const Value& ends = optional_argument(arguments, 3);
        options.unicodeEnds = !ends.isUndefined() && flag_argument(ends, 3);
        return create_text_reader(open_argument(arguments[0], 0, OpenMode::read), options);
    }

    static auto members() {
        using T = TextReaderObject;
        return core::members(
            property(u"Encoding", u"Кодировка", &T::encoding),
            property(u"Certainty", u"Уверенность", &T::certainty),
            property(u"HasMark", u"ЕстьМетка", &T::hasMark), property(u"Line", u"Строка", &T::line),
            property(u"Position", u"Позиция", &T::position),
            property(u"Progress", u"Выполнено", &T::progress), property(u"Faults", u"Ошибки", &T::faults),
            property(u"LineEnd", u"КонецСтроки", &T::lineEnd),
            method(u"ReadLine", u"ПрочитатьСтроку", &T::readLine),
            method(u"Read", u"Прочитать", &T::read, {u"Count", u"Количество"}),
            method(u"Close", u"Закрыть", &T::close));
    }

    // properties
    wstring encoding() { return reader_.encoding().encoding.name(); }
    int certainty() { return reader_.encoding().certainty; }
    bool hasMark() { return reader_.encoding().markSize != 0; }
    std::uint64_t line() const { return reader_.line(); }
    std::uint64_t position() const { return reader_.position() + 1; } // scripts count units from 1
    /// The part of the file that has been read, in percent.
    std::uint64_t progress() const {
        const std::uint64_t length = file_->length();
        return length == 0 ? 100 : reader_.bytesRead() * 100 / std::max(length, reader_.bytesRead());
    }
    std::uint64_t faults() const { return reader_.faults(); }
    LineEnd lineEnd() const { return reader_.lineEnd(); }

    // methods
    std::optional<wstring> readLine() {
        wstring line;
        return reader_.readLine(line) ? std::optional(std::move(line)) : std::nullopt;
    }
    /// The next units, without a count the rest; Undefined at the end.
    std::optional<wstring> read(std::optional<std::uint32_t> count) {
        wstring text;
        if (!reader_.read(text, count.value_or(std::numeric_limits<std::uint32_t>::max())) &&
            (!count || *count != 0))
            return std::nullopt;
        return text;
    }
    void close() { file_->close(); }

    // IValueCollection
    InterfacePtr<IValueEnum> enumerate() override {
        return make_object<LineWalk>(InterfacePtr<IValue>(this), reader_);
    }

  private:
    InterfacePtr<IFile> file_;
    TextReader reader_;
};

const ScriptClassEntry<TextReaderObject> kTextReaderEntry;

} // namespace

Value create_text_reader(const InterfacePtr<IFile>& file, const TextReaderOptions& options) {
    return make_object<TextReaderObject>(file, options);
}

} // namespace core
