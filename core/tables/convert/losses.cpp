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

/// The id of the message about a loss: of an item of a list, which has neither columns nor lines, of a cell,
/// or of a cell of a file.
const char* line_id(const Loss& loss) noexcept {
    if (loss.line != 0)
        return messages::kCellOfFileLost;
    return loss.column.empty() ? messages::kItemLost : messages::kCellLost;
}

wstring line_of(const Loss& loss, wstring_view source) {
    const char* const id = line_id(loss);
    const wstring row = string_intto(loss.row + 1);
    if (id == messages::kItemLost)
        return message_text(id, {row, loss_text(loss)});
    if (id == messages::kCellLost)
        return message_text(id, {row, loss.column, loss_text(loss)});
    return message_text(id, {wstring(source), string_intto(loss.line), loss.column, loss_text(loss)});
}

} // namespace

wstring loss_text(const Loss& loss) {
    return message_text(message_id(loss.reason), {named(loss.text)});
}

void Losses::add(Loss loss) {
    if (first_.size() < kKept)
        first_.push_back(std::move(loss));
    ++count_;
}

void Losses::check(wstring_view source) const {
    if (empty())
        return;
    const std::size_t named = std::min(first_.size(), kNamed);
    wstring text = line_of(first_.front(), source);
    for (std::size_t i = 1; i < named; ++i)
        text += u"\n" + line_of(first_[i], source);
    if (count_ > named)
        text += u"\n" + message_text(messages::kMoreCellsLost, {string_intto(count_ - named)});
    const Loss& first = first_.front();
    throw_with_message(ConversionException(text, first, count_), line_id(first),
                       {wstring(source), string_intto(first.line), first.column, loss_text(first)});
}

} // namespace core
