// SPDX-License-Identifier: Apache-2.0
#include <core/strings/integer_text.h>
#include <core/tables/errors.h>
#include <core/tables/losses.h>

#include <algorithm>

namespace core {
namespace {

/// How many losses the text of a failure names.
constexpr std::size_t kNamed = 5;

const char* message_id(LossReason reason) noexcept {
    switch (reason) {
    case LossReason::notNumber:
        return "IDS_LOSS_NOT_NUMBER";
    case LossReason::notDate:
        return "IDS_LOSS_NOT_DATE";
    case LossReason::notBoolean:
        return "IDS_LOSS_NOT_BOOLEAN";
    case LossReason::notOfType:
        return "IDS_LOSS_NOT_OF_TYPE";
    case LossReason::tooLarge:
        return "IDS_LOSS_TOO_LARGE";
    case LossReason::rounded:
        return "IDS_LOSS_ROUNDED";
    case LossReason::negative:
        return "IDS_LOSS_NEGATIVE";
    case LossReason::cut:
        return "IDS_LOSS_CUT";
    case LossReason::partOfDate:
        return "IDS_LOSS_PART_OF_DATE";
    case LossReason::noColumn:
        return "IDS_LOSS_NO_COLUMN";
    case LossReason::missingCells:
        break;
    }
    return "IDS_LOSS_MISSING_CELLS";
}

/// A long text is named by its beginning, on one line.
wstring named(const wstring& text) {
    constexpr std::size_t kShown = 60;
    wstring shown = text.size() <= kShown ? text : text.substr(0, kShown) + u"…";
    std::ranges::replace_if(
        shown, [](wchar unit) { return unit == u'\n' || unit == u'\r'; }, u'↵');
    return shown;
}

/// The message about a loss: of an item of a list, which has neither columns nor lines, of a cell, or of a
/// cell of a text with or without a name.
class LossMessage {
  public:
    LossMessage(const Loss& loss, wstring_view source) {
        const wstring at = string_intto(loss.line != 0 ? loss.line : loss.row + 1);
        if (loss.line == 0 && loss.column.empty())
            set(messages::kItemLost, {at, loss_text(loss)});
        else if (loss.line == 0)
            set(messages::kCellLost, {at, loss.column, loss_text(loss)});
        else if (source.empty())
            set(messages::kCellOfLineLost, {at, loss.column, loss_text(loss)});
        else
            set(messages::kCellOfFileLost, {wstring(source), at, loss.column, loss_text(loss)});
    }
    [[nodiscard]] const wstring& text() const noexcept { return text_; }
    [[nodiscard]] const char* id() const noexcept { return id_; }
    [[nodiscard]] std::span<const wstring> parameters() const noexcept { return parameters_; }

  private:
    void set(const char* id, std::initializer_list<wstring> parameters) {
        id_ = id;
        parameters_ = parameters;
        text_ = message_text(id, parameters);
    }

    const char* id_ = nullptr;
    std::vector<wstring> parameters_;
    wstring text_;
};

} // namespace

wstring loss_text(const Loss& loss) {
    return message_text(message_id(loss.reason), {named(loss.text)});
}

// A program may take it by reference: a library of Windows exports constants that are defined.
constexpr std::size_t Losses::kKept;

void Losses::add(Loss loss) {
    if (first_.size() < kKept)
        first_.push_back(std::move(loss));
    ++count_;
}

void Losses::check(wstring_view source) const {
    if (empty())
        return;
    const std::size_t named = std::min(first_.size(), kNamed);
    const LossMessage message(first_.front(), source);
    wstring text = message.text();
    for (std::size_t i = 1; i < named; ++i)
        text += u"\n" + LossMessage(first_[i], source).text();
    if (count_ > named)
        text += u"\n" + message_text(messages::kMoreCellsLost, {string_intto(count_ - named)});
    ConversionException failure(text, first_.front(), count_);
    failure.setMessage(message.id(), message.parameters());
    throw failure;
}

} // namespace core
