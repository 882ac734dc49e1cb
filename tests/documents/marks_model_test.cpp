// SPDX-License-Identifier: Apache-2.0
// Thousands of marks beside a row of offsets: edits near and far, marks that come, go and are moved, undo.
#include <core/documents/text_manager.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace core {
namespace {

class MarksModel {
  public:
    explicit MarksModel(unsigned seed) : document_(wstring(20'000, u'x')), random_(seed) {}

    void step() {
        switch (below(8)) {
        case 0:
            addMarks(below(400));
            break;
        case 1:
            removeMarks(below(marks_.size() + 1) / (below(8) == 0 ? 1 : 10));
            break;
        case 2:
            moveMarks(below(100));
            break;
        case 3:
            editAndTakeBack();
            break;
        default:
            edit();
        }
        check();
    }

  private:
    struct Mark {
        TextMark mark;
        MarkGravity gravity;
        std::uint64_t offset;
    };

    std::uint64_t below(std::uint64_t count) { return random_() % count; }
    std::uint64_t size() const { return document_.text().size(); }
    /// Any place, or one at which many marks stand.
    std::uint64_t somewhere() { return below(3) == 0 ? size() / 2 : below(size() + 1); }

    void addMarks(std::uint64_t count) {
        const std::uint64_t common = somewhere();
        const bool together = below(3) == 0;
        for (; count > 0; --count) {
            const auto gravity = below(2) == 0 ? MarkGravity::left : MarkGravity::right;
            const std::uint64_t offset = together ? common : somewhere();
            marks_.push_back({document_.addMark(offset, gravity), gravity, offset});
        }
    }
    void removeMarks(std::uint64_t count) {
        for (; count > 0 && !marks_.empty(); --count) {
            std::swap(marks_[below(marks_.size())], marks_.back());
            document_.removeMark(marks_.back().mark);
            EXPECT_FALSE(document_.hasMark(marks_.back().mark));
            marks_.pop_back();
        }
    }
    void moveMarks(std::uint64_t count) {
        for (; count > 0 && !marks_.empty(); --count) {
            Mark& mark = marks_[below(marks_.size())];
            mark.offset = somewhere();
            document_.moveMark(mark.mark, mark.offset);
        }
    }
    void edit() {
        const std::uint64_t begin = somewhere();
        const std::uint64_t most =
            below(10) == 0 ? size() - begin : std::min<std::uint64_t>(200, size() - begin);
        const TextRange range{begin, begin + (below(2) == 0 ? 0 : below(most + 1))};
        const wstring text(below(below(20) == 0 ? 20'000 : 100), u'y');
        document_.replace(range, text);
        for (Mark& mark : marks_) {
            if (mark.offset > range.begin)
                mark.offset = mark.offset < range.end ? range.begin : mark.offset - range.size();
            if (mark.offset > range.begin ||
                (mark.offset == range.begin && mark.gravity == MarkGravity::right))
                mark.offset += text.size();
        }
    }
    void editAndTakeBack() {
        const std::vector<Mark> before = marks_;
        const std::size_t steps = document_.undoCount();
        document_.closeStep();
        edit();
        if (document_.undoCount() == steps) // nothing was replaced by nothing
            return;
        ASSERT_TRUE(document_.undo());
        marks_ = before;
    }
    void check() {
        ASSERT_EQ(document_.markCount(), marks_.size());
        for (const Mark& mark : marks_)
            ASSERT_EQ(document_.offset(mark.mark), mark.offset);
    }

    TextManager document_;
    std::vector<Mark> marks_;
    std::mt19937 random_;
};

TEST(TextMarks, ThousandsBesideARowOfOffsets) {
    for (unsigned seed = 0; seed < 4; ++seed) {
        MarksModel model(seed);
        for (int i = 0; i < 150; ++i)
            ASSERT_NO_FATAL_FAILURE(model.step()) << "seed " << seed << ", step " << i;
    }
}

} // namespace
} // namespace core
