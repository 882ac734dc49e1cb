// SPDX-License-Identifier: Apache-2.0
#include "core/strings/case_variants.h"
#include "core/strings/folding.h"
#include "core/strings/like_program.h"

namespace core {

class LikeProgram::Parser {
  public:
    explicit Parser(LikeProgram& program) : out_(program), text_(program.pattern_) {}

    void parse() {
        bool afterPercent = false;
        out_.runs_.emplace_back();
        while (at_ < text_.size()) {
            const wchar c = text_[at_++];
            const bool escapes = c == out_.escape_ && c != 0;
            const bool percent = c == u'%' && !escapes;
            if (escapes)
                addUnit(at_ < text_.size() ? text_[at_++] : c);
            else if (percent && !afterPercent)
                startRun();
            else if (c == u'_')
                addElement(kAny, 0);
            else if (c == u'[')
                addSet();
            else if (!percent)
                addUnit(c);
            afterPercent = percent;
        }
        finishRun();
    }

  private:
    [[nodiscard]] bool ignoresCase() const noexcept { return out_.letterCase_ == LikeCase::ignore; }

    [[nodiscard]] UnitClass casesOf(std::size_t element) const {
        const wchar unit = out_.units_[element];
        return ignoresCase() ? CaseVariants::instance().of(unit) : UnitClass{unit, unit, unit, unit};
    }

    void addElement(Element element, wchar unit) {
        out_.elements_.push_back(element);
        out_.units_.push_back(unit);
    }

    void addUnit(wchar c) { addElement(kUnit, ignoresCase() ? FoldTable::instance().simple(c) : c); }

    // The text behind "[", up to and with "]".
    void addSet() {
        Set set;
        if (at_ < text_.size() && text_[at_] == u'^') {
            set.negated = true;
            ++at_;
        }
        while (at_ < text_.size() && text_[at_] != u']') {
            const wchar first = text_[at_++];
            const bool range = at_ + 1 < text_.size() && text_[at_] == u'-' && text_[at_ + 1] != u']';
            set.units.addRange(first, range ? text_[at_ + 1] : first);
            at_ += range ? 2 : 0;
        }
        ++at_;
        if (ignoresCase())
            set.units.addFoldings();
        set.units.finish();
        addElement(kSet + static_cast<Element>(out_.sets_.size()), 0);
        out_.sets_.push_back(std::move(set));
    }

    void startRun() {
        finishRun();
        out_.runs_.emplace_back().first = out_.elements_.size();
    }

    void finishRun() {
        Run& run = out_.runs_.back();
        run.length = out_.elements_.size() - run.first;
        for (std::size_t i = 0; i < run.length; ++i) {
            if (out_.elements_[run.first + i] != kUnit) {
                run.literal = false;
                continue;
            }
            if (!run.hasUnit)
                run.near = i;
            run.hasUnit = true;
            run.pair.distance = i - run.near;
        }
        if (run.hasUnit) {
            run.pair.near = casesOf(run.first + run.near);
            run.pair.far = casesOf(run.first + run.near + run.pair.distance);
        }
    }

    LikeProgram& out_;
    wstring_view text_;
    std::size_t at_ = 0;
};

LikeProgram::LikeProgram(wstring_view pattern, wchar escape, LikeCase letterCase)
    : pattern_(pattern), escape_(escape), letterCase_(letterCase) {
    Parser(*this).parse();
}

} // namespace core
