// SPDX-License-Identifier: Apache-2.0
// A document beside a string: random edits, groups and replacements of many ranges, undo and redo to any
// point, marks that come home, lines that are found unit by unit, snapshots that stay what they were.
#include "core/documents/piece_node.h"
#include "tests/support/rounds.h"

#include <core/documents/text_manager.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace core {
namespace {

struct ModelMark {
    TextMark mark;
    MarkGravity gravity;
    std::uint64_t offset;
};

/// What was seen of a state of the text: undo and redo must lead back to it.
struct State {
    wstring text;
    std::map<std::size_t, std::uint64_t> marks; ///< offsets by the index of the mark
};

struct ModelLine {
    std::uint64_t start;
    std::uint64_t end; ///< of the line without its end
    LineEnd kind;
};

std::vector<ModelLine> lines_of(const wstring& text, bool unicodeEnds) {
    std::vector<ModelLine> lines{{0, 0, LineEnd::none}};
    for (std::size_t i = 0; i < text.size(); ++i) {
        LineEnd kind = LineEnd::none;
        if (text[i] == u'\n')
            kind = LineEnd::lf;
        else if (text[i] == u'\r')
            kind = i + 1 < text.size() && text[i + 1] == u'\n' ? LineEnd::crlf : LineEnd::cr;
        else if (unicodeEnds && (text[i] == u'\u2028' || text[i] == u'\u2029'))
            kind = text[i] == u'\u2028' ? LineEnd::line : LineEnd::paragraph;
        if (kind == LineEnd::none)
            continue;
        lines.back().end = i;
        lines.back().kind = kind;
        i += kind == LineEnd::crlf ? 1 : 0;
        lines.push_back({i + 1, 0, LineEnd::none});
    }
    lines.back().end = text.size();
    return lines;
}

/// What is known of a text that stands alone.
detail::UnitSum sum_of(wstring_view text, bool unicodeEnds) {
    return {text.size(), lines_of(wstring(text), unicodeEnds).size() - 1, text.front() == u'\n',
            text.back() == u'\r'};
}

/// Checks that a subtree is balanced and that its nodes know their sums.
void check_node(const detail::PieceNode& node, bool unicodeEnds, bool isRoot) {
    EXPECT_GE(node.count(), isRoot ? 1u : detail::PieceNode::kLeast);
    EXPECT_LE(node.count(), detail::PieceNode::kMost);
    for (std::uint32_t i = 0; i < node.count(); ++i) {
        const detail::UnitSum sum = node.sumOf(i);
        const detail::UnitSum own = node.isLeaf() ? sum_of(node.text(i), unicodeEnds) : node.node(i)->sum();
        EXPECT_GT(sum.units, 0u);
        EXPECT_TRUE(sum.units == own.units && sum.ends == own.ends && sum.beginsLf == own.beginsLf &&
                    sum.endsCr == own.endsCr);
        if (!node.isLeaf()) {
            EXPECT_EQ(node.node(i)->height() + 1, node.height());
            check_node(*node.node(i), unicodeEnds, false);
        }
    }
}
void check_tree(const TextSnapshot& text) {
    if (!text.empty())
        check_node(*text.root(), text.hasUnicodeEnds(), true);
}

class Model {
  public:
    /// With `listens` every change is told; without, typing and erasing go their shortest way.
    Model(unsigned seed, bool unicodeEnds, bool listens)
        : document_({.unicodeEnds = unicodeEnds}), listens_(listens), random_(seed) {
        states_.push_back({});
        if (!listens)
            return;
        connection_ = document_.changed.connect([this](const TextChange& change) {
            // The changes alone, in their order, make the same text.
            ASSERT_EQ(told_.substr(change.offset, change.removed.size()), change.removed.text());
            told_.replace(change.offset, change.removed.size(), change.inserted.text());
        });
    }

    void step() {
        switch (below(12)) {
        case 0:
            travel(static_cast<std::size_t>(below(6)), true);
            break;
        case 1:
            travel(static_cast<std::size_t>(below(6)), false);
            break;
        case 2:
            addMark();
            break;
        case 3:
            replaceSeveral();
            break;
        case 4:
            group();
            break;
        case 5:
            removeMark();
            break;
        default:
            document_.closeStep();
            if (edit())
                newState();
        }
        if (below(500) == 0)
            travel(states_.size(), below(2) == 0);
        ASSERT_EQ(document_.undoCount(), at_);
        ASSERT_EQ(document_.redoCount(), states_.size() - 1 - at_);
        check();
    }

  private:
    std::uint64_t below(std::uint64_t count) { return random_() % count; }

    wstring someText() {
        static constexpr wstring_view kPieces[] = {u"\n",     u"\r",    u"\r\n", u"\n\r",  u"x",
                                                   u"\u2028", u"слово", u"😀",    u"\u2029"};
        wstring text;
        for (std::uint64_t count = below(4); count > 0; --count)
            text += kPieces[below(std::size(kPieces))];
        if (below(100) == 0)
            text.append(below(700), u'л');
        return text;
    }

    TextRange someRange() {
        std::uint64_t begin = below(text_.size() + 1);
        std::uint64_t size = below(text_.size() > 1500 ? 200 : 8);
        if (below(3) == 0)
            size = 0;
        return {begin, std::min<std::uint64_t>(begin + size, text_.size())};
    }

    void replaceInModel(TextRange range, const wstring& text) {
        text_.replace(range.begin, range.size(), text);
        for (ModelMark& mark : marks_) {
            if (mark.offset > range.begin)
                mark.offset = mark.offset < range.end ? range.begin : mark.offset - range.size();
            if (mark.offset > range.begin ||
                (mark.offset == range.begin && mark.gravity == MarkGravity::right))
                mark.offset += text.size();
        }
    }

    bool edit() {
        const TextRange range = someRange();
        const wstring text = someText();
        document_.replace(range, text);
        replaceInModel(range, text);
        return !range.empty() || !text.empty();
    }

    void group() {
        bool changed = false;
        {
            const TextEditGroup open(document_);
            for (std::uint64_t count = below(5); count > 0; --count)
                changed = edit() || changed;
        }
        if (changed)
            newState();
    }

    void replaceSeveral() {
        std::vector<TextRange> ranges;
        std::vector<wstring> texts;
        const std::uint64_t most = below(20) == 0 ? 80 : 5;
        for (std::uint64_t at = below(20); at <= text_.size() && ranges.size() < most; at += 1 + below(40)) {
            ranges.push_back({at, std::min<std::uint64_t>(at + below(4), text_.size())});
            texts.push_back(someText());
            at = ranges.back().end;
        }
        std::vector<TextReplacement> replacements;
        bool changed = false;
        for (std::size_t i = 0; i < ranges.size(); ++i) {
            replacements.push_back({ranges[i], texts[i]});
            changed = changed || !ranges[i].empty() || !texts[i].empty();
        }
        std::shuffle(replacements.begin(), replacements.end(), random_);
        document_.replace(replacements);
        for (std::size_t i = ranges.size(); i-- > 0;)
            if (!ranges[i].empty() || !texts[i].empty())
                replaceInModel(ranges[i], texts[i]);
        if (changed)
            newState();
    }

    void addMark() {
        if (marks_.size() > 60)
            return;
        const std::uint64_t offset = below(text_.size() + 1);
        const MarkGravity gravity = below(2) == 0 ? MarkGravity::left : MarkGravity::right;
        marks_.push_back({document_.addMark(offset, gravity), gravity, offset});
        states_[at_].marks[marks_.size() - 1] = offset;
    }

    void removeMark() {
        if (marks_.empty() || below(4) != 0)
            return;
        document_.removeMark(marks_.back().mark);
        ASSERT_FALSE(document_.hasMark(marks_.back().mark));
        marks_.pop_back();
        for (State& state : states_)
            state.marks.erase(marks_.size());
    }

    void newState() {
        states_.resize(at_ + 1);
        states_.push_back({text_, {}});
        ++at_;
        for (std::size_t i = 0; i < marks_.size(); ++i)
            states_[at_].marks[i] = marks_[i].offset;
    }

    void travel(std::size_t steps, bool back) {
        for (; steps > 0; --steps) {
            const bool possible = back ? at_ > 0 : at_ + 1 < states_.size();
            ASSERT_EQ(back ? document_.undo() : document_.redo(), possible);
            if (!possible)
                return;
            at_ += back ? std::size_t{0} - 1 : 1;
            text_ = states_[at_].text;
            // A mark that is new to this state stands where the edits have moved it.
            for (std::size_t i = 0; i < marks_.size(); ++i) {
                const std::uint64_t offset = document_.offset(marks_[i].mark);
                marks_[i].offset = states_[at_].marks.try_emplace(i, offset).first->second;
                ASSERT_EQ(offset, marks_[i].offset);
            }
        }
    }

    void check() {
        const TextSnapshot now = document_.text();
        ASSERT_EQ(now.size(), text_.size());
        if (below(20) == 0) {
            ASSERT_EQ(now.text(), text_);
            if (listens_) {
                ASSERT_EQ(told_, text_);
            }
            check_tree(now);
            checkLines(now);
            for (const ModelMark& mark : marks_)
                ASSERT_EQ(document_.offset(mark.mark), mark.offset);
            kept_.resize(std::min<std::size_t>(kept_.size(), 20));
            kept_.insert(kept_.begin(), {now, text_});
            const auto& [snapshot, text] = kept_[below(kept_.size())];
            ASSERT_EQ(snapshot.text(), text);
        }
        const TextRange range = someRange();
        ASSERT_EQ(now.text(range), text_.substr(range.begin, range.size()));
    }

    void checkLines(const TextSnapshot& now) {
        const std::vector<ModelLine> lines = lines_of(text_, now.hasUnicodeEnds());
        ASSERT_EQ(now.lineCount(), lines.size());
        for (std::size_t i = 0; i < lines.size(); ++i) {
            ASSERT_EQ(now.lineStart(i), lines[i].start);
            ASSERT_EQ(now.lineRange(i).end, lines[i].end);
            ASSERT_EQ(now.lineEnd(i), lines[i].kind);
        }
        std::size_t line = 0;
        for (std::uint64_t offset = 0; offset <= text_.size(); ++offset) {
            line += line + 1 < lines.size() && lines[line + 1].start <= offset ? 1 : 0;
            ASSERT_EQ(now.position(offset), (TextPosition{line, offset - lines[line].start}));
        }
    }

    TextManager document_;
    Connection connection_;
    wstring text_;
    wstring told_;
    std::vector<ModelMark> marks_;
    std::vector<State> states_;
    std::size_t at_ = 0; ///< the state that the text is in
    std::vector<std::pair<TextSnapshot, wstring>> kept_;
    bool listens_;
    std::mt19937 random_;
};

TEST(TextModel, RandomEditsWithUndoToAnyPoint) {
    const int steps = support::rounds(20'000, 1'000'000);
    constexpr int kPerDocument = 2000;
    for (int seed = 0; seed < steps / kPerDocument; ++seed) {
        Model model(static_cast<unsigned>(seed), seed % 2 == 0, seed % 3 != 0);
        for (int i = 0; i < kPerDocument; ++i) {
            ASSERT_NO_FATAL_FAILURE(model.step()) << "seed " << seed << ", step " << i;
        }
    }
}

/// Without anybody who listens, typing extends pieces in place.
TEST(TextModel, TypingInBurstsBesideSnapshots) {
    std::mt19937 random(7);
    TextManager document;
    wstring model;
    std::vector<std::pair<TextSnapshot, wstring>> kept;
    for (int burst = 0; burst < 2000; ++burst) {
        std::uint64_t at = random() % (model.size() + 1);
        for (std::uint64_t count = random() % 12; count > 0; --count) {
            static constexpr wstring_view kKeys = u"abc \r\n";
            const wchar key = kKeys[random() % kKeys.size()];
            document.insert(at, {&key, 1});
            model.insert(model.begin() + static_cast<std::ptrdiff_t>(at), key);
            ++at;
            if (random() % 64 == 0)
                kept.emplace_back(document.text(), model);
        }
        for (std::uint64_t count = random() % 4; count > 0 && at > 0; --count) {
            --at;
            document.remove({at, at + 1});
            model.erase(at, 1);
        }
        if (burst % 8 == 0) {
            ASSERT_EQ(document.text().lineCount(), lines_of(model, false).size());
            check_tree(document.text());
        }
    }
    ASSERT_EQ(document.text().text(), model);
    for (const auto& [snapshot, text] : kept)
        ASSERT_EQ(snapshot.text(), text);
    while (document.undo()) {
    }
    ASSERT_TRUE(document.text().empty());
    while (document.redo()) {
    }
    ASSERT_EQ(document.text().text(), model);
}

} // namespace
} // namespace core
