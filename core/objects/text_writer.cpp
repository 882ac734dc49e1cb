// SPDX-License-Identifier: Apache-2.0
#include "core/objects/text_arguments.h"

#include <core/context/script_object.h>
#include <core/files/memory_file.h>
#include <core/objects/text_streams.h>
#include <core/runtime/uncaught.h>

#include <exception>

namespace core {
namespace {

/// Writes a text in pieces.
class TextWriterObject : public ScriptObject<TextWriterObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TextWriter", u"ЗаписьТекста"},
        .type = kTextWriterType,
        .object = "4575ae4d-d7c4-497e-b6de-2fde4df13f23"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_TEXTWRITER",
        .arguments = {1, 6},
    };

    TextWriterObject() : TextWriterObject(open_memory_file(create_memory_data()), {}) {} // to be described
    TextWriterObject(InterfacePtr<IFile> file, const TextWriterOptions& options)
        : file_(std::move(file)), writer_(file_, options) {}
    /// A script that leaves without Close has its text written, too, unless a call has already failed.
    ~TextWriterObject() {
        if (!isOpen_)
            return;
        try {
            close();
        } catch (...) {
            report_uncaught(std::current_exception(), u"TextWriter.Close");
        }
    }

    /// New TextWriter(File, [Encoding], [Append], [LineEnd], [Mark], [OnError]). With a line end every end in
    /// the text becomes this one.
    static GenericValue construct(std::span<GenericValue> arguments) {
        TextWriterOptions options;
        options.encoding = encoding_argument(optional_argument(arguments, 1), 1).value_or(Encoding());
        const bool append = flag(arguments, 2);
        const Value& end = optional_argument(arguments, 3);
        options.lineEnd = static_cast<LineEnd>(choice_argument(end, 3, *script_enumeration(LineEnd{}),
                                                               static_cast<std::int32_t>(options.lineEnd)));
        if (options.lineEnd == LineEnd::none)
            parameter_value_mismatch(3);
        options.convertEnds = !end.isUndefined();
        options.mark = flag(arguments, 4);
        options.action = action_argument(optional_argument(arguments, 5), 5);
        const auto file = open_argument(arguments[0], 0, append ? OpenMode::create : OpenMode::replace);
        if (append)
            file->seek(0, SeekOrigin::end);
        return create_text_writer(file, options);
    }

    static auto members() {
        using T = TextWriterObject;
        return core::members(property(u"Encoding", u"Кодировка", &T::encoding),
                             property(u"Position", u"Позиция", &T::position),
                             property(u"Faults", u"Ошибки", &T::faults),
                             method(u"Write", u"Записать", &T::write, {u"Text", u"Текст"}),
                             method(u"WriteLine", u"ЗаписатьСтроку", &T::writeLine, {u"Text", u"Текст"}),
                             method(u"Close", u"Закрыть", &T::close));
    }

    wstring encoding() const { return writer_.encoding().name(); }
    std::uint64_t position() const { return writer_.position() + 1; } // scripts count units from 1
    std::uint64_t faults() const { return writer_.faults(); }

    void write(wstring_view text) {
        guarded([&] { writer_.write(text); });
    }
    void writeLine(std::optional<wstring_view> text) {
        guarded([&] { writer_.writeLine(text.value_or(wstring_view())); });
    }
    /// Writes what is left and closes the file, also when that fails; a second call does nothing.
    void close() {
        if (!isOpen_)
            return;
        guarded([&] { writer_.finish(); });
        isOpen_ = false;
        file_->close();
    }

  private:
    static bool flag(std::span<GenericValue> arguments, std::size_t param) {
        const Value& value = optional_argument(arguments, param);
        return !value.isUndefined() && flag_argument(value, static_cast<int>(param));
    }
    /// A failure has been told when it is thrown, and is not told again at the end.
    template <class Work>
    void guarded(Work work) {
        try {
            work();
        } catch (...) {
            isOpen_ = false;
            throw;
        }
    }

    InterfacePtr<IFile> file_;
    TextWriter writer_;
    bool isOpen_ = true;
};

const ScriptClassEntry<TextWriterObject> kTextWriterEntry;

} // namespace

Value create_text_writer(const InterfacePtr<IFile>& file, const TextWriterOptions& options) {
    return make_object<TextWriterObject>(file, options);
}

} // namespace core
