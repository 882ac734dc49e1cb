// SPDX-License-Identifier: Apache-2.0
#include "core/objects/text_arguments.h"

#include <core/collections/native_values.h>
#include <core/context/events/event.h>
#include <core/context/script_object.h>
#include <core/documents/document_file.h>
#include <core/documents/text_document.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>

#include <limits>
#include <memory>
#include <optional>
#include <utility>

namespace core {
namespace {

/// The lines of a document as it was when the walk began.
class DocumentLines : public IValueEnum {
  public:
    using Interfaces = InterfaceList<IValueEnum>;

    explicit DocumentLines(TextSnapshot text) noexcept : text_(std::move(text)) {}
    bool next(GenericValue& out) override {
        if (line_ == text_.lineCount())
            return false;
        out = GenericValue(text_.line(line_++));
        return true;
    }

  private:
    TextSnapshot text_;
    std::uint64_t line_ = 0;
};

/// A range that moves with the text of a document, until nobody has it any more.
class DocumentRange : public ScriptObject<DocumentRange> {
  public:
    // Scripts cannot make one; that a process can serves those that ask for the definition.
    static constexpr ScriptClass script = {.names = {u"TextRange", u"ДиапазонТекста"},
                                           .type = script_type_id(u"TextRange"),
                                           .object = script_class_id(u"TextRange"),
                                           .presentation = "IDS_TYPE_PRESENTATION_TEXTRANGE"};

    DocumentRange() : DocumentRange(std::make_shared<TextManager>(), {}, false) {}
    DocumentRange(std::shared_ptr<TextManager> manager, TextRange range, bool grows)
        : manager_(std::move(manager)), marks_(manager_->addRange(range, grows)) {}

    bool getString(wstring& out) const override {
        out = text();
        return true;
    }
    static auto members() {
        using T = DocumentRange;
        return core::members(property(u"Position", u"Начало", &T::position),
                             property(u"Count", u"Количество", &T::count),
                             property(u"Text", u"Текст", &T::text));
    }

  protected:
    // NOLINTNEXTLINE(bugprone-exception-escape): a mark that is there can be removed
    ~DocumentRange() {
        for (const TextMark mark : {marks_.begin, marks_.end}) {
            if (manager_->hasMark(mark)) // a script may have guessed its number
                manager_->removeMark(mark);
        }
    }

  private:
    [[nodiscard]] TextRange range() const { return manager_->range(marks_); }
    [[nodiscard]] std::uint64_t position() const { return range().begin + 1; }
    [[nodiscard]] std::uint64_t count() const { return range().size(); }
    [[nodiscard]] wstring text() const { return manager_->text().text(range()); }

    std::shared_ptr<TextManager> manager_; // the document may go first, or become another one
    TextMarkedRange marks_;
};

/// A document as scripts see it: positions, lines and columns count from 1.
class TextDocument : public ScriptObject<TextDocument, ITextDocument, IPersistableObject, IValueCollection> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TextDocument", u"ТекстовыйДокумент"},
        .type = kTextDocumentType,
        .object = kTextDocumentClass,
        .presentation = "IDS_TYPE_PRESENTATION_TEXTDOCUMENT",
        .arguments = {0, 2},
        .elements = &kStringType,
    };

    explicit TextDocument(wstring_view text = {}, const TextManagerOptions& options = {}) {
        become(std::make_shared<TextManager>(text, options));
    }

    /// New TextDocument([Text], [UnicodeEnds]).
    static GenericValue construct(std::span<GenericValue> arguments) {
        const Value& text = optional_argument(arguments, 0);
        const Value& ends = optional_argument(arguments, 1);
        return create_text_document(text.isUndefined() ? wstring_view() : text_argument(text, 0),
                                    {.unicodeEnds = !ends.isUndefined() && flag_argument(ends, 1)});
    }
    static auto members() {
        using T = TextDocument;
        constexpr Parameter kPosition{u"Position", u"Позиция"};
        constexpr Parameter kCount{u"Count", u"Количество"};
        constexpr Parameter kLine{u"Line", u"Строка"};
        constexpr Parameter kText{u"Text", u"Текст"};
        constexpr Parameter kWhat{u"What", u"Что"};
        constexpr Parameter kKind{u"Kind", u"Вид"};
        constexpr Parameter kFile{u"File", u"Файл"};
        constexpr Parameter kEncoding{u"Encoding", u"Кодировка"};
        constexpr Parameter kOnError{u"OnError", u"ПриОшибке"};
        constexpr Parameter kMark{u"Mark", u"Метка"};
        return core::members(
            property(u"Text", u"Текст", &T::text, &T::setText), property(u"Size", u"Размер", &T::size),
            property(u"LineCount", u"КоличествоСтрок", &T::lineCount),
            property(u"Modified", u"Изменен", &T::isModified),
            property(u"UndoCount", u"КоличествоОтмен", &T::undoCount),
            property(u"RedoCount", u"КоличествоПовторов", &T::redoCount),
            property(u"UndoLimit", u"ПределОтмен", &T::undoLimit, &T::setUndoLimit),
            property(u"Selection", u"Выделение", &T::selection),
            property(u"Encoding", u"Кодировка", &T::encoding, &T::setEncoding),
            method(u"Read", u"Прочитать", &T::read, kFile, kEncoding, kOnError),
            method(u"Write", u"Записать", &T::write, kFile, kEncoding, kMark, kOnError),
            method(u"Get", u"Получить", &T::get, kPosition, kCount),
            method(u"GetLine", u"ПолучитьСтроку", &T::line, kLine),
            method(u"LineEnd", u"КонецСтроки", &T::lineEnd, kLine),
            method(u"LineOf", u"СтрокаПозиции", &T::lineOf, kPosition),
            method(u"ColumnOf", u"КолонкаПозиции", &T::columnOf, kPosition),
            method(u"PositionOf", u"ПозицияСтроки", &T::positionOf, kLine, {u"Column", u"Колонка"}),
            method(u"Find", u"Найти", &T::find, kWhat, {u"From", u"Начиная"}, kKind),
            method(u"Insert", u"Вставить", &T::insert, kPosition, kText),
            method(u"Delete", u"Удалить", &T::remove, kPosition, kCount),
            method(u"ReplaceRange", u"ЗаменитьДиапазон", &T::replaceRange, kPosition, kCount, kText),
            method(u"Replace", u"Заменить", &T::replace, kWhat, {u"By", u"На"}, kKind),
            method(u"InsertLine", u"ВставитьСтроку", &T::insertLine, kLine, kText),
            method(u"ReplaceLine", u"ЗаменитьСтроку", &T::replaceLine, kLine, kText),
            method(u"DeleteLines", u"УдалитьСтроки", &T::deleteLines, kLine, kCount),
            method(u"ConvertLineEnds", u"ПреобразоватьКонцыСтрок", &T::convertLineEnds,
                   {u"LineEnd", u"КонецСтроки"}),
            method(u"Undo", u"Отменить", &T::undo), method(u"Redo", u"Повторить", &T::redo),
            method(u"CloseStep", u"ЗавершитьШаг", &T::closeStep),
            method(u"BeginGroup", u"НачатьГруппу", &T::beginGroup),
            method(u"EndGroup", u"ЗавершитьГруппу", &T::endGroup),
            method(u"AddMark", u"ДобавитьЗакладку", &T::addMark, kPosition, {u"Right", u"Вправо"}),
            method(u"MarkPosition", u"ПозицияЗакладки", &T::markPosition, kMark),
            method(u"DeleteMark", u"УдалитьЗакладку", &T::deleteMark, kMark),
            method(u"AddRange", u"ДобавитьДиапазон", &T::addRange, kPosition, kCount, {u"Grows", u"Растет"}),
            method(u"Select", u"Выделить", &T::select, kPosition, kCount, {u"Add", u"Добавить"}),
            method(u"SelectAll", u"ВыделитьВсе", &T::selectAll, kWhat, kKind),
            method(u"ReplaceSelection", u"ЗаменитьВыделение", &T::replaceSelection, kText),
            event(&T::changed, {u"Position", u"Позиция"}, {u"Removed", u"Удалено"},
                  {u"Inserted", u"Вставлено"}));
    }

    Event<std::uint64_t, wstring, wstring> changed{named<u"Changed", u"ПриИзменении">};

    // IValueCollection
    InterfacePtr<IValueEnum> enumerate() override { return make_object<DocumentLines>(now()); }

    // ITextDocument
    TextManager& manager() noexcept override { return *manager_; }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        ListOutStream& out = storage->listStream();
        out.put(now().text());
        out.put(now().hasUnicodeEnds());
        out.put(encoding_.name());
    }
    void deserialize(IInPersistenceStorage* storage) override {
        ListInStream& in = storage->listStream();
        wstring text;
        bool unicodeEnds = false;
        wstring encoding;
        in.get(text);
        in.get(unicodeEnds);
        in.get(encoding);
        const Encoding found(encoding);
        become(std::make_shared<TextManager>(text, TextManagerOptions{.unicodeEnds = unicodeEnds}));
        encoding_ = found;
    }

  private:
    /// Takes a document and tells its changes on.
    void become(std::shared_ptr<TextManager> manager) {
        Connection connection = manager->changed.connect([this](const TextChange& change) {
            if (changed.connectionCount() != 0)
                changed.raise(change.offset + 1, change.removed.text(), change.inserted.text());
        });
        connection_ = std::move(connection);
        manager_ = std::move(manager);
    }
    [[nodiscard]] TextSnapshot now() const noexcept { return manager_->text(); }

    // What scripts count from 1.
    [[nodiscard]] static std::uint64_t fromOne(std::uint64_t number, int param) {
        if (number == 0)
            parameter_value_mismatch(param);
        return number - 1;
    }
    [[nodiscard]] static TextRange rangeOf(std::uint64_t position, std::uint64_t count) {
        const std::uint64_t begin = fromOne(position, 0);
        if (begin + count < begin)
            parameter_value_mismatch(1);
        return {begin, begin + count};
    }
    [[nodiscard]] static TextMark markOf(std::uint64_t number) noexcept {
        return {static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(number >> 32)};
    }
    [[nodiscard]] static TextQuery queryOf(wstring_view what, std::optional<TextQueryKind> kind) {
        return {wstring(what), kind.value_or(TextQueryKind::exact)};
    }

    // properties
    wstring text() { return now().text(); }
    void setText(wstring_view text) { manager_->replace({0, now().size()}, text); }
    std::uint64_t size() { return now().size(); }
    std::uint64_t lineCount() { return now().lineCount(); }
    bool isModified() { return manager_->isModified(); }
    std::uint64_t undoCount() { return manager_->undoCount(); }
    std::uint64_t redoCount() { return manager_->redoCount(); }
    std::optional<std::uint64_t> undoLimit() {
        const std::size_t limit = manager_->undoLimit();
        return limit == kNoLimit ? std::nullopt : std::optional<std::uint64_t>(limit);
    }
    void setUndoLimit(std::optional<std::size_t> steps) { manager_->setUndoLimit(steps.value_or(kNoLimit)); }
    std::vector<ObjectPtr<DocumentRange>> selection() {
        std::vector<ObjectPtr<DocumentRange>> ranges;
        for (const TextRange& range : manager_->selection())
            ranges.push_back(make_object<DocumentRange>(manager_, range, false));
        return ranges;
    }
    wstring encoding() { return encoding_.name(); }
    void setEncoding(wstring_view name) { encoding_ = Encoding(name); }

    // files
    void read(const wstring& file, std::optional<wstring> encoding,
              std::optional<CodingErrorAction> onError) {
        TextReaderOptions options;
        if (encoding)
            options.encoding = Encoding(*encoding);
        options.action = onError.value_or(options.action);
        encoding_ = load_document(*manager_, require_service<IFileSystem>(), file, options).encoding;
    }
    void write(const wstring& file, std::optional<wstring> encoding, std::optional<bool> mark,
               std::optional<CodingErrorAction> onError) {
        TextWriterOptions options;
        options.encoding = encoding ? Encoding(*encoding) : encoding_;
        options.mark = mark.value_or(false);
        options.action = onError.value_or(options.action);
        save_document(*manager_, require_service<IFileSystem>(), file, options);
        encoding_ = options.encoding;
    }

    // places
    wstring get(std::uint64_t position, std::uint64_t count) { return now().text(rangeOf(position, count)); }
    wstring line(std::uint64_t line) { return now().line(fromOne(line, 0)); }
    LineEnd lineEnd(std::uint64_t line) { return now().lineEnd(fromOne(line, 0)); }
    std::uint64_t lineOf(std::uint64_t position) { return now().lineOf(fromOne(position, 0)) + 1; }
    std::uint64_t columnOf(std::uint64_t position) { return now().position(fromOne(position, 0)).column + 1; }
    std::uint64_t positionOf(std::uint64_t line, std::optional<std::uint64_t> column) {
        return now().offset({fromOne(line, 0), fromOne(column.value_or(1), 1)}) + 1;
    }
    std::optional<std::uint64_t> find(wstring_view what, std::optional<std::uint64_t> from,
                                      std::optional<TextQueryKind> kind) {
        const auto match = core::find(now(), queryOf(what, kind), fromOne(from.value_or(1), 1));
        return match ? std::optional(match->begin + 1) : std::nullopt;
    }

    // edits
    void insert(std::uint64_t position, wstring_view text) { manager_->insert(fromOne(position, 0), text); }
    void remove(std::uint64_t position, std::uint64_t count) { manager_->remove(rangeOf(position, count)); }
    void replaceRange(std::uint64_t position, std::uint64_t count, wstring_view text) {
        manager_->replace(rangeOf(position, count), text);
    }
    std::uint64_t replace(wstring_view what, wstring_view by, std::optional<TextQueryKind> kind) {
        return manager_->replaceAll(queryOf(what, kind), by);
    }
    void insertLine(std::uint64_t line, wstring_view text) { manager_->insertLine(fromOne(line, 0), text); }
    void replaceLine(std::uint64_t line, wstring_view text) { manager_->replaceLine(fromOne(line, 0), text); }
    void deleteLines(std::uint64_t line, std::optional<std::uint64_t> count) {
        manager_->removeLines(fromOne(line, 0), count.value_or(1));
    }
    std::uint64_t convertLineEnds(LineEnd end) { return manager_->convertLineEnds(end); }

    // steps
    bool undo() { return manager_->undo(); }
    bool redo() { return manager_->redo(); }
    void closeStep() { manager_->closeStep(); }
    void beginGroup() { manager_->beginGroup(); }
    void endGroup() { manager_->endGroup(); }

    // marks and the selection
    std::uint64_t addMark(std::uint64_t position, std::optional<bool> right) {
        const TextMark mark = manager_->addMark(
            fromOne(position, 0), right.value_or(false) ? MarkGravity::right : MarkGravity::left);
        return std::uint64_t{mark.generation} << 32 | mark.number;
    }
    std::uint64_t markPosition(std::uint64_t mark) { return manager_->offset(markOf(mark)) + 1; }
    void deleteMark(std::uint64_t mark) { manager_->removeMark(markOf(mark)); }
    ObjectPtr<DocumentRange> addRange(std::uint64_t position, std::uint64_t count,
                                      std::optional<bool> grows) {
        return make_object<DocumentRange>(manager_, rangeOf(position, count), grows.value_or(false));
    }
    void select(std::uint64_t position, std::uint64_t count, std::optional<bool> add) {
        std::vector<TextRange> ranges;
        if (add.value_or(false))
            ranges = manager_->selection();
        ranges.push_back(rangeOf(position, count));
        manager_->select(ranges);
    }
    std::uint64_t selectAll(wstring_view what, std::optional<TextQueryKind> kind) {
        std::vector<TextRange> ranges;
        TextSearch search(now(), queryOf(what, kind));
        while (const auto match = search.next())
            ranges.push_back(*match);
        manager_->select(ranges);
        return ranges.size();
    }
    void replaceSelection(wstring_view text) { manager_->replaceSelection(text); }

    static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

    std::shared_ptr<TextManager> manager_; // with its ranges
    Connection connection_;                // to the document; ends before it
    Encoding encoding_;
};

const ScriptClassEntry<TextDocument> kTextDocumentEntry;
const ScriptClassEntry<DocumentRange> kDocumentRangeEntry;

} // namespace

Value create_text_document(wstring_view text, const TextManagerOptions& options) {
    return make_object<TextDocument>(text, options);
}

} // namespace core
