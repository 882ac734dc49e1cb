// SPDX-License-Identifier: Apache-2.0
// A module: a class with an event, an enumeration, a service and an exception, with messages in two
// languages.
#include "counter.h"

#include <core/context.h>
#include <core/numbers.h>
#include <core/objects/enumeration.h>
#include <core/runtime/module_contract.h>
#include <core/runtime/process.h>

#include <atomic>

namespace {

using namespace core;
using counter::ICounters;
using counter::LimitException;

constexpr EnumerationItem kDirectionItems[] = {{{u"Up", u"Вверх"}, "COUNTER_DIRECTION_UP", 0},
                                               {{u"Down", u"Вниз"}, "COUNTER_DIRECTION_DOWN", 1}};
constexpr EnumerationInfo kDirectionInfo = {
    .type = {.id = "ce59cfb0-7106-47e3-9345-fbd4497c18fb"_guid,
             .valueClass = "53882f86-3735-4ab9-8f78-4b75578f76eb"_guid,
             .names = {u"CounterDirection", u"НаправлениеСчета"},
             .presentation = "COUNTER_DIRECTION"},
    .factory = "85dd0e21-ac98-4f38-b7f9-b6e8249ee1b2"_guid,
    .items = kDirectionItems};
using Direction = EnumerationEntry<kDirectionInfo>;

/// Knows how many counters the process has made.
class Counters : public ICounters {
  public:
    using Interfaces = InterfaceList<ICounters>;
    using Service = ICounters; // processes offer it as this
    static constexpr GUID kClassId = "83c30b2b-4c31-4be1-b8c7-e2fc19f854b8"_guid;

    std::int32_t made() const noexcept override { return made_; }
    bool exceeds(void (*work)()) override {
        try {
            work();
        } catch (const LimitException&) {
            return true;
        }
        return false;
    }
    void countOne() noexcept { ++made_; }

  private:
    std::atomic<std::int32_t> made_{0};
};

/// A number that grows or shrinks, down to 0 and up to a limit.
class Counter : public ScriptObject<Counter> {
  public:
    static constexpr ClassNames names{u"Counter", u"Счетчик", "COUNTER"};

    Counter() {
        if (auto* const all = static_cast<Counters*>(get_service<ICounters>()))
            all->countOne();
    }

    Numeric total;
    Numeric limit{100};
    Event<Numeric> changed{named<u"Changed", u"ПриИзменении">};

    void add(const Numeric& amount) {
        const Numeric sum = down_ ? total - amount : total + amount;
        if (sum.compare(limit) > 0 || sum.compare(Numeric()) < 0)
            throw_error<LimitException>("COUNTER_LIMIT", {sum.toString(), limit.toString()});
        total = sum;
        changed.raise(total);
    }
    GenericValue direction() const { return Direction::instance()->value(down_ ? 1 : 0); }
    void turn(const Value& direction) {
        down_ = choice_argument(direction, 0, *Direction::instance(), 0) == 1;
    }

    static auto members() {
        return core::members(property(u"Total", u"Всего", &Counter::total, read_only),
                             property(u"Limit", u"Предел", &Counter::limit),
                             property(u"Direction", u"Направление", &Counter::direction, &Counter::turn),
                             method(u"Add", u"Добавить", &Counter::add, {u"Amount", u"Сумма"}),
                             event(&Counter::changed, {u"Total", u"Всего"}));
    }

  private:
    bool down_ = false;
};

} // namespace

CORE_MODULE("counter", "1.0", Counter, Direction, Counters, LimitException)
