// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/converter.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace core::detail {

/// What a converter keeps between calls. What it hands out comes from three places, in this order: what
/// waits, which is the text of a fault or did not fit; a cut character with one element at a time behind it;
/// what the caller gives. `Engine` is a ByteDecoder or a UnitEncoder.
template <class Engine, class From, class To, class Fault>
class ConverterState {
  public:
    ConverterState(std::unique_ptr<Engine> engine, CodingErrorAction action)
        : action_(action), engine_(std::move(engine)) {}

    /// Converts until nothing is left to do. `reword` is called for what does not fit, unless that is
    /// reported, and says by put() what stands for it; `raise` reports it.
    template <class Reword, class Raise>
    ConvertStep convert(std::span<const From> from, std::span<To> to, bool last, Reword reword, Raise raise) {
        const From* at = from.data();
        const From* const end = at + from.size();
        To* out = to.data();
        To* const outEnd = out + to.size();
        for (bool goes = true; goes && drain(out, outEnd) && (hasFailed_ || out != outEnd);) {
            if (hasFailed_ && out == to.data())
                raise();
            if (hasFailed_)
                break;
            bool isFault = false;
            if (outEnd - out >= std::ptrdiff_t{Engine::kRoom}) {
                goes = step(at, end, out, outEnd, last, isFault);
            } else {
                To* made = waiting_.data();
                goes = step(at, end, made, made + kAside, last, isFault);
                waitingEnd_ = static_cast<std::size_t>(made - waiting_.data());
            }
            hasFailed_ = isFault && (action_ == CodingErrorAction::report || !reword());
            faults_ += isFault && !hasFailed_ ? 1U : 0U;
        }
        return {static_cast<std::size_t>(at - from.data()), static_cast<std::size_t>(out - to.data())};
    }

    /// Puts an element of the text of a fault behind what waits.
    void put(To element) noexcept {
        waiting_[waitingEnd_++] = element;
        ++made_;
    }
    /// Runs the engine on the text of a fault; false when that does not fit, either.
    [[nodiscard]] bool putConverted(std::span<const From> text) {
        const From* at = text.data();
        To* out = waiting_.data() + waitingEnd_;
        Fault ignored;
        const bool isFault =
            engine_->run(at, at + text.size(), out, waiting_.data() + waiting_.size(), false, ignored);
        const auto end = static_cast<std::size_t>(out - waiting_.data());
        made_ += end - waitingEnd_;
        waitingEnd_ = end;
        return !isFault;
    }

    [[nodiscard]] CodingErrorAction action() const noexcept { return action_; }
    [[nodiscard]] const Fault& fault() const noexcept { return fault_; }
    [[nodiscard]] std::uint64_t taken() const noexcept { return taken_ - cutSize_; }
    [[nodiscard]] std::uint64_t made() const noexcept { return made_; }
    [[nodiscard]] std::uint64_t faults() const noexcept { return faults_; }

  private:
    static constexpr std::size_t kAside = std::size_t{2} * Engine::kRoom;
    static constexpr std::size_t kFaultText = 160;

    /// One run of the engine; false when there was nothing to do.
    bool step(const From*& at, const From* end, To*& out, To* outEnd, bool last, bool& isFault) {
        const From* const from = at;
        const To* const to = out;
        const std::size_t cutBefore = cutSize_;
        if (cutBefore != 0)
            isFault = stepCut(at, end, out, outEnd, last);
        else
            isFault = engine_->run(at, end, out, outEnd, last, fault_);
        if (cutBefore == 0 && !isFault && outEnd - out >= std::ptrdiff_t{Engine::kRoom}) {
            cutSize_ = static_cast<std::size_t>(std::copy(at, end, cut_.data()) - cut_.data());
            at = end;
        }
        taken_ += static_cast<std::uint64_t>(at - from);
        made_ += static_cast<std::uint64_t>(out - to);
        return isFault || at != from || out != to || cutSize_ != cutBefore;
    }
    bool stepCut(const From*& at, const From* end, To*& out, To* outEnd, bool last) {
        if (at != end)
            cut_[cutSize_++] = *at++;
        const From* from = cut_.data();
        const bool isFault = engine_->run(from, from + cutSize_, out, outEnd, last && at == end, fault_);
        cutSize_ = static_cast<std::size_t>(
            std::copy(from, std::as_const(cut_).data() + cutSize_, cut_.data()) - cut_.data());
        return isFault;
    }
    /// Moves what waits to `out`; true when nothing is left.
    bool drain(To*& out, To* outEnd) noexcept {
        const auto count = std::min(static_cast<std::size_t>(outEnd - out), waitingEnd_ - waitingBegin_);
        out = std::copy_n(waiting_.data() + waitingBegin_, count, out);
        waitingBegin_ += count;
        if (waitingBegin_ != waitingEnd_)
            return false;
        waitingBegin_ = waitingEnd_ = 0;
        return true;
    }

    CodingErrorAction action_;
    std::unique_ptr<Engine> engine_;
    std::array<From, 8> cut_{}; // no character has more
    std::size_t cutSize_ = 0;
    std::array<To, kAside + kFaultText> waiting_{};
    std::size_t waitingBegin_ = 0;
    std::size_t waitingEnd_ = 0;
    std::uint64_t taken_ = 0;
    std::uint64_t made_ = 0;
    std::uint64_t faults_ = 0;
    Fault fault_;
    bool hasFailed_ = false;
};

/// A number as hexadecimal digits in capitals, at least `digits` of them.
[[nodiscard]] wstring hex_text(std::uint32_t number, std::size_t digits);

} // namespace core::detail
