// SPDX-License-Identifier: Apache-2.0
// Concerns: rows below rows, against a plain tree under random operations; parents, owners and deleted
// branches; what including subordinate rows means to search, total and sort.
#include "tests/tables/table_model.h"

#include <functional>
#include <memory>
#include <set>

namespace {

using namespace script;

struct ModelNode {
    GenericValue row; // the script's object; Undefined in the root
    ModelNode* parent = nullptr;
    std::vector<std::unique_ptr<ModelNode>> rows;
};

class Trees : public script::Test {
  protected:
    Trees() {
        call(property(tree_, u"Columns"), u"Add", {u"A"});
        call(property(tree_, u"Columns"), u"Add", {u"Rows"}); // hidden by the rows themselves
    }
    [[nodiscard]] GenericValue rowsOf(const ModelNode& node) const {
        return property(node.parent == nullptr ? tree_ : node.row, u"Rows");
    }
    void check(const ModelNode& node) const {
        const GenericValue rows = rowsOf(node);
        ASSERT_TRUE(call(rows, u"Count").equals(node.rows.size()));
        for (std::size_t i = 0; i < node.rows.size(); ++i) {
            const GenericValue& row = node.rows[i]->row;
            ASSERT_TRUE(call(rows, u"Get", {i}).equals(row));
            ASSERT_TRUE(call(rows, u"IndexOf", {row}).equals(i));
            ASSERT_TRUE(property(row, u"Parent").equals(node.row));
            ASSERT_EQ(call(row, u"Owner").object(), tree_.object());
            check(*node.rows[i]);
        }
    }
    /// A row at any level, the deeper the less likely.
    ModelNode& any() {
        ModelNode* node = &root_;
        while (!node->rows.empty() && random_() % 3 != 0)
            node = node->rows[random_() % node->rows.size()].get();
        return *node;
    }
    static void collect(const ModelNode& node, std::vector<ModelNode*>& rows) {
        for (const auto& row : node.rows) {
            rows.push_back(row.get());
            collect(*row, rows);
        }
    }
    /// All rows, each before those below it.
    [[nodiscard]] std::vector<ModelNode*> all() const {
        std::vector<ModelNode*> rows;
        collect(root_, rows);
        return rows;
    }

    const GenericValue tree_ = make(u"ValueTree");
    ModelNode root_;
    std::mt19937 random_{17};
};

TEST_F(Trees, BehaveAsRowsOfRows) {
    for (int round = 0; round < 4000; ++round) {
        ModelNode& node = any();
        const GenericValue rows = rowsOf(node);
        const std::size_t count = node.rows.size();
        const std::size_t place = count != 0 ? random_() % count : 0;
        const auto at = [&](std::size_t i) { return node.rows.begin() + static_cast<std::ptrdiff_t>(i); };
        switch (count == 0 ? 0 : random_() % 8) {
        default: {
            const GenericValue row = call(rows, u"Insert", {place});
            call(row, u"Set", {0, static_cast<int>(random_() % 50)});
            (*node.rows.insert(at(place), std::make_unique<ModelNode>()))->row = row;
            node.rows[place]->parent = &node;
            break;
        }
        case 5: {
            const std::size_t to = random_() % count;
            call(rows, u"Move",
                 {node.rows[place]->row, static_cast<std::int64_t>(to) - static_cast<std::int64_t>(place)});
            auto moved = std::move(node.rows[place]);
            node.rows.erase(at(place));
            node.rows.insert(at(to), std::move(moved));
            break;
        }
        case 6: {
            if (random_() % 4 != 0)
                break;
            std::vector<ModelNode*> gone = {node.rows[place].get()};
            collect(*node.rows[place], gone);
            call(rows, u"Delete", {place});
            for (const ModelNode* const row : gone)
                ASSERT_EQ(failure([&] { return property(row->row, u"A"); }),
                          message_text("IDS_VT_UNKNOWN_ROW_ERROR"));
            node.rows.erase(at(place));
            break;
        }
        case 7:
            if (random_() % 30 == 0) {
                call(rows, u"Clear");
                node.rows.clear();
            }
        }
        if (round % 200 == 0)
            check(root_);
    }
    check(root_);
    ASSERT_GT(all().size(), 100U);
}

TEST_F(Trees, HaveRowsBelowRowsAlsoAfterTheyWereCleared) {
    const GenericValue rows = property(tree_, u"Rows");
    call(rows, u"Add");
    call(rows, u"Clear");
    const GenericValue below = property(call(rows, u"Add"), u"Rows");
    for (int i = 0; i < 3; ++i)
        call(below, u"Add");
    const auto items = below.query<IValueCollection>()->enumerate();
    GenericValue item;
    ASSERT_TRUE(items->next(item));
    call(below, u"Delete", {0}); // the walk goes on over the rows that are left
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(items->next(item));
        EXPECT_TRUE(call(below, u"IndexOf", {item}).equals(i));
    }
    EXPECT_FALSE(items->next(item));
    const auto again = below.query<IValueCollection>()->enumerate();
    ASSERT_TRUE(again->next(item));
    call(below, u"Clear");
    EXPECT_FALSE(again->next(item)) << "a row that is gone was shown";
}

TEST_F(Trees, AreSearchedTotalledAndSortedWithAndWithoutTheRowsBelow) {
    for (int i = 0; i < 400; ++i) {
        ModelNode& node = any();
        node.rows.push_back(std::make_unique<ModelNode>());
        node.rows.back()->row = call(rowsOf(node), u"Add");
        node.rows.back()->parent = &node;
        call(node.rows.back()->row, u"Set", {0, static_cast<int>(random_() % 50) - 25});
    }
    const std::vector<ModelNode*> all = this->all();
    const GenericValue rows = rowsOf(root_);
    Numeric sum;
    for (const ModelNode* const node : all)
        sum += *property(node->row, u"A").asNumeric();
    EXPECT_TRUE(call(rows, u"Total", {u"A", true}).equals(sum));
    sum = Numeric();
    for (const auto& node : root_.rows)
        sum += *property(node->row, u"A").asNumeric();
    EXPECT_TRUE(call(rows, u"Total", {u"A"}).equals(sum));
    for (int wanted = -25; wanted < 25; ++wanted) {
        std::vector<GenericValue> expected;
        for (const ModelNode* const node : all) {
            if (property(node->row, u"A").equals(wanted))
                expected.push_back(node->row);
        }
        ASSERT_TRUE(call(rows, u"Find", {wanted, u"A", true})
                        .equals(expected.empty() ? GenericValue() : expected.front()));
        ASSERT_EQ(walk(call(rows, u"FindRows", {make(u"Structure", {u"A", wanted}), true})), expected);
        std::erase_if(expected, [](const Value& row) { return !property(row, u"Parent").isUndefined(); });
        ASSERT_EQ(walk(call(rows, u"FindRows", {make(u"Structure", {u"A", wanted})})), expected);
    }
    call(rows, u"Sort", {u"A Desc", true});
    for (const ModelNode* const node : all) {
        const auto below = walk(rowsOf(*node));
        ASSERT_EQ(below.size(), node->rows.size());
        ASSERT_TRUE(std::is_sorted(below.begin(), below.end(), [](const Value& a, const Value& b) {
            return *property(a, u"A").asNumeric() > *property(b, u"A").asNumeric();
        }));
    }
}

TEST_F(Trees, EndTheWalksOverRowsThatGo) {
    const GenericValue top = property(tree_, u"Rows");
    std::vector<GenericValue> all; // keeps every address from being used again
    std::set<const IValue*> alive;
    const auto add = [&](const GenericValue& rows) {
        all.push_back(call(rows, u"Add"));
        alive.insert(all.back().object());
    };
    const auto remove = [&](const GenericValue& row) {
        std::vector<GenericValue> doomed = {row};
        while (!doomed.empty()) {
            const GenericValue next = doomed.back();
            doomed.pop_back();
            alive.erase(next.object());
            const auto below = walk(property(next, u"Rows"));
            doomed.insert(doomed.end(), below.begin(), below.end());
        }
        const GenericValue parent = property(row, u"Parent");
        call(property(parent.isUndefined() ? tree_ : parent, u"Rows"), u"Delete", {row});
    };
    const auto any_alive = [&] {
        const GenericValue& row = all[random_() % all.size()];
        return alive.contains(row.object()) ? row : GenericValue();
    };
    // Walks within walks, while rows of any level come and go.
    const std::function<void(const GenericValue&)> descend = [&](const GenericValue& rows) {
        const auto items = rows.query<IValueCollection>()->enumerate();
        std::set<const IValue*> seen;
        for (GenericValue row; items->next(row);) {
            ASSERT_TRUE(alive.contains(row.object())) << "a row that is gone was shown";
            ASSERT_TRUE(seen.insert(row.object()).second) << "a row was shown twice";
            const GenericValue below = property(row, u"Rows");
            if (random_() % 4 == 0)
                add(below);
            descend(below);
            if (const GenericValue doomed = any_alive(); random_() % 5 == 0 && !doomed.isUndefined())
                remove(doomed);
            if (!alive.contains(row.object()) && random_() % 2 == 0)
                add(top);
        }
    };
    for (int round = 0; round < 60 && !HasFatalFailure(); ++round) {
        for (int i = 0; i < 20; ++i) {
            const GenericValue parent = all.empty() ? GenericValue() : any_alive();
            add(parent.isUndefined() ? top : property(parent, u"Rows"));
        }
        descend(top);
    }
}

/// Counts how often it is held.
class Held final : public IValueImpl {
  public:
    int holds = 0;

    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override {
        if (iid != IValue::IID && iid != IUnknown::IID)
            return *out = nullptr, kNoInterface;
        *out = static_cast<IValue*>(this);
        AddRef();
        return kOk;
    }
    std::uint32_t AddRef() noexcept override { return static_cast<std::uint32_t>(++holds); }
    std::uint32_t Release() noexcept override { return 1; }
    IType* getType() const noexcept override { return Type(kValueArrayType).get(); }
};

TEST_F(Trees, LoadAColumnWithoutLookingAtOtherRows) {
    Held held;
    {
        const GenericValue top = property(tree_, u"Rows");
        for (int i = 0; i < 1000; ++i)
            call(call(top, u"Add"), u"Set", {0, GenericValue(Value(&held))});
        const GenericValue below = property(call(top, u"Get", {500}), u"Rows");
        for (int i = 0; i < 3; ++i)
            call(below, u"Add");
        const GenericValue array = make(u"Array");
        for (const int value : {1, 2})
            call(array, u"Add", {value});
        held.holds = 0;
        call(below, u"LoadColumn", {array, u"A"});
        EXPECT_LT(held.holds, 100);
        const auto loaded = walk(call(below, u"UnloadColumn", {u"A"}));
        EXPECT_EQ(loaded, (std::vector<GenericValue>{1, 2, GenericValue()}));
        call(property(tree_, u"Rows"), u"Clear");
    }
}

/// An object that holds something as long as it lives.
class Holder : public IValueImpl {
  public:
    using Interfaces = InterfaceList<IValue>;

    explicit Holder(std::shared_ptr<int> held) : held_(std::move(held)) {}
    IType* getType() const noexcept override { return Type(Type::undefined).get(); }

  private:
    std::shared_ptr<int> held_;
};

TEST_F(Trees, LetGoOfWhatTheirRowsHeld) {
    const auto held = std::make_shared<int>();
    const auto clear_after_filling = [&](const GenericValue& rows) {
        for (int i = 0; i < 3; ++i)
            call(call(rows, u"Add"), u"Set", {0, GenericValue(make_object<Holder>(held))});
        EXPECT_EQ(held.use_count(), 4);
        call(rows, u"Clear");
        EXPECT_EQ(held.use_count(), 1);
    };
    const GenericValue top = property(tree_, u"Rows");
    clear_after_filling(property(call(top, u"Add"), u"Rows"));
    clear_after_filling(top);
    const GenericValue table = make(u"ValueTable");
    call(property(table, u"Columns"), u"Add", {u"A"});
    clear_after_filling(table);
}

TEST_F(Trees, RefuseRowsOfOtherLevels) {
    const GenericValue rows = property(tree_, u"Rows");
    const GenericValue top = call(rows, u"Add");
    const GenericValue below = call(property(top, u"Rows"), u"Add");
    const GenericValue kept = property(top, u"Rows");
    for (const wchar* method : {u"IndexOf", u"Delete"})
        EXPECT_EQ(failure([&] { call(rows, method, {below}); }), message_text("IDS_VT_UNKNOWN_ROW_ERROR"));
    EXPECT_EQ(failure([&] { call(rows, u"IndexOf", {0}); }), type_mismatch(0));
    EXPECT_EQ(failure([&] { call(rows, u"Find", {1, u"A", 1}); }), type_mismatch(2));
    EXPECT_EQ(failure([&] { call(rows, u"Sort", {u"A", false, 1}); }), type_mismatch(2));
    const auto walking = kept.query<IValueCollection>()->enumerate();
    call(rows, u"Delete", {top});
    GenericValue item;
    EXPECT_FALSE(walking->next(item)) << "a walk over rows that are gone has ended";
    EXPECT_EQ(failure([&] { call(kept, u"Add"); }), message_text("IDS_VT_UNKNOWN_ROW_ERROR"));
    EXPECT_TRUE(property(tree_, u"Columns").isObject());
}

} // namespace
