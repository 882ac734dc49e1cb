// SPDX-License-Identifier: Apache-2.0
// The trees of table layout 2 against std::map: whatever groups of changes come, each new tree holds what the
// map holds, the old one stays, and no node is lost or written twice.
#include "core/storage/tree.h"
#include "core/storage/tree_rows.h"
#include "tests/support/storage_model.h"

#include <gtest/gtest.h>

#include <map>

namespace core {
namespace {

struct ByName {
    bool operator()(const wstring& a, const wstring& b) const { return compare_file_names(a, b) < 0; }
};

/// Nodes as bytes, by their addresses.
template <class Rows>
class Stored : public TreeSource<Rows> {
  public:
    explicit Stored(const StorageLayout& layout) : layout_(layout) {}

    typename TreeSource<Rows>::Node load(const NodeRef& ref) override {
        const auto& bytes = nodes.at(ref.address);
        EXPECT_EQ(bytes.size(), ref.size);
        auto node = decode_node<Rows>(bytes, layout_, layout_.limit(), ref.sum);
        EXPECT_TRUE(node);
        return std::make_shared<const TreeNode<Rows>>(std::move(*node));
    }
    typename TreeSource<Rows>::Node loadChild(const TreeNode<Rows>& parent, std::size_t row,
                                              const Until<Rows>& until) override {
        auto node = load(parent.children[row].ref);
        EXPECT_EQ(node->level + 1, parent.level);
        EXPECT_EQ(Rows::compare(node->keys.at(0), parent.keys.at(row)), 0);
        const auto limit = until_of(parent, row, until);
        EXPECT_TRUE(!limit || Rows::compare(node->keys.at(node->size() - 1), *limit) < 0);
        return node;
    }

    /// Makes a plan true. The nodes that it does not use any more are taken away.
    void apply(TreePlan<Rows> plan) {
        const NodeRef place = plan.place([&](const TreeNode<Rows>& node, NodeRef& ref) {
            auto bytes = encode_node(node, layout_, 1, 0);
            EXPECT_TRUE(bytes.size() <= NodeHeader::kCapacity || isForced(node)) << bytes.size();
            ref = {next_, bytes.size(), load_number(bytes.data(), 8)};
            next_ += bytes.size() / 512 * layout_.blockLength(512);
            nodes.emplace(ref.address, std::move(bytes));
            ++written;
        });
        for (const NodeRef& ref : plan.obsolete)
            EXPECT_EQ(nodes.erase(ref.address), 1U) << "used twice";
        root = plan.root ? std::optional(place) : std::nullopt;
    }
    /// Counts the nodes of the tree.
    std::size_t count(const NodeRef& ref) {
        const auto node = load(ref);
        std::size_t sum = 1;
        for (const TreeChild& child : node->children)
            sum += count(child.ref);
        return sum;
    }

    /// Whether a long name must make the node large: alone in a leaf, as one of two or the last in others.
    [[nodiscard]] bool isForced(const TreeNode<Rows>& node) const {
        const std::size_t last =
            Rows::keyBytes(node.keys.at(node.size() - 1)) + Rows::rowBytes(node.level, layout_);
        return node.level == 0
                   ? node.size() == 1
                   : node.size() <= 3 || node_bytes(node, layout_) - last <= NodeHeader::kCapacity;
    }

    std::optional<NodeRef> root;
    std::map<std::uint64_t, std::vector<std::byte>> nodes;
    std::size_t written = 0;

  private:
    const StorageLayout& layout_;
    std::uint64_t next_ = layout_.emptyLength();
};

wstring some_name(test::Random& random) {
    static const wstring_view kPrefixes[] = {u"", u"Catalog/", u"catalog/", u"\xDF",
                                             u"a/very/long/folder/of/files/"};
    wstring name(kPrefixes[random.below(5)]);
    const std::size_t longest = random.below(400) == 0 ? 65000 : random.below(40) == 0 ? 2000 : 6;
    const std::size_t length = random.below(longest);
    for (std::size_t i = 0; i < length; ++i)
        name += static_cast<wchar>(random.below(30) == 0 ? random.below(0x10000) : u'a' + random.below(6));
    return name;
}

class Tree : public testing::TestWithParam<const StorageLayout*> {};
INSTANTIATE_TEST_SUITE_P(Layouts, Tree, testing::Values(&kStorageLayout32, &kStorageLayout64));

using NameModel = std::map<wstring, FileEntry, ByName>;
using NameChanges = std::map<wstring, std::optional<FileEntry>, ByName>;

NameChanges some_changes(test::Random& random, const NameModel& model, int round,
                         const StorageLayout& layout) {
    const bool shrinks = round % 50 >= 35;
    NameChanges changes;
    for (std::size_t i = random.below(random.below(4) == 0 ? 900 : 5) + 1; i-- > 0;) {
        const bool removes = shrinks || random.below(3) == 0;
        wstring name = some_name(random);
        if (removes) {
            const auto found = model.lower_bound(name);
            if (found == model.end())
                continue;
            changes[found->first] = std::nullopt;
        } else {
            changes[name] = FileEntry{{layout.null, layout.emptyLength() + random.below(1000)},
                                      true,
                                      1,
                                      random.below(1000) + 1,
                                      random.engine(),
                                      random.engine()};
        }
    }
    if (round == 149) {
        for (const auto& [name, entry] : model)
            changes[name] = std::nullopt;
    }
    return changes;
}

TEST_P(Tree, OfNamesHoldsWhatAMapHolds) {
    const StorageLayout& layout = *GetParam();
    test::Random random(7);
    NameModel model;
    Stored<FileRows> stored(layout);
    for (int round = 0; round < 150; ++round) {
        const NameChanges changes = some_changes(random, model, round, layout);
        std::vector<TreeChange<FileRows>> list;
        for (const auto& [name, entry] : changes) {
            list.push_back({name, entry});
            entry ? void(model[name] = *entry) : void(model.erase(name));
        }
        const bool moving = random.below(10) == 0;
        const std::uint64_t some = random.engine();
        TreePlanner<FileRows> planner(
            stored, layout, !moving ? TreePlanner<FileRows>::Moves() : [&](const NodeRef& ref) {
                return (ref.sum & 3) == (some & 3);
            });
        stored.apply(planner.plan(stored.root, list));
        ASSERT_EQ(stored.root.has_value(), !model.empty());
        if (!stored.root)
            continue;
        auto expected = model.begin();
        const auto visit = [&](wstring_view name, const FileEntry& entry) {
            ASSERT_NE(expected, model.end());
            ASSERT_EQ(expected->first, name);
            ASSERT_EQ(expected->second, entry);
            ++expected;
        };
        for_each_in_tree<FileRows>(stored, stored.load(*stored.root), visit);
        ASSERT_EQ(expected, model.end());
        ASSERT_EQ(stored.count(*stored.root), stored.nodes.size()) << "a node is lost";
        for (int i = 0; i < 20; ++i) {
            wstring probe = some_name(random);
            const auto near = model.lower_bound(probe);
            if (i % 2 == 0 && near != model.end())
                probe = near->first + wstring(random.below(2), random.below(2) == 0 ? u'\0' : u'\xDF');
            const auto known = model.find(probe);
            EXPECT_EQ(find_in_tree<FileRows>(stored, *stored.root, probe),
                      known == model.end() ? std::nullopt : std::optional(known->second));
        }
    }
    EXPECT_TRUE(stored.nodes.empty());
}

TEST_P(Tree, OfRangesHoldsWhatAMapHolds) {
    const StorageLayout& layout = *GetParam();
    test::Random random(8);
    std::map<std::uint64_t, std::uint64_t> model;
    Stored<FreeRows> stored(layout);
    for (int round = 0; round < 60; ++round) {
        std::map<std::uint64_t, std::optional<std::uint64_t>> changes;
        for (std::size_t i = random.below(random.below(3) == 0 ? 3000 : 4) + 1; i-- > 0;) {
            const std::uint64_t address = layout.emptyLength() + 100 * random.below(20000);
            changes[address] =
                random.below(5) < (round > 40 ? 4U : 1U) ? std::nullopt : std::optional(random.below(99) + 1);
        }
        std::vector<TreeChange<FreeRows>> list;
        for (const auto& [address, length] : changes) {
            list.push_back({address, length});
            length ? void(model[address] = *length) : void(model.erase(address));
        }
        stored.apply(TreePlanner<FreeRows>(stored, layout).plan(stored.root, list));
        if (!stored.root)
            continue;
        std::map<std::uint64_t, std::uint64_t> found;
        std::uint64_t longest = 0;
        const auto visit = [&](std::uint64_t address, std::uint64_t length) {
            found[address] = length;
            longest = std::max(longest, length);
        };
        const auto root = stored.load(*stored.root);
        for_each_in_tree<FreeRows>(stored, root, visit);
        ASSERT_EQ(found, model);
        ASSERT_EQ(stored.count(*stored.root), stored.nodes.size());
        std::uint64_t known = 0;
        for (const TreeChild& child : root->children)
            known = std::max(known, child.longest);
        EXPECT_EQ(known, root->level != 0 ? longest : 0);
    }
}

TEST_P(Tree, AChangeCostsTheWayToItsLeaf) {
    const StorageLayout& layout = *GetParam();
    Stored<FileRows> stored(layout);
    std::vector<wstring> names;
    for (int i = 0; i < 20000; ++i) {
        const std::string digits = std::to_string(100000 + i);
        names.emplace_back(digits.begin(), digits.end());
    }
    std::vector<TreeChange<FileRows>> list;
    const FileEntry entry{{layout.null, layout.null}, true, 3, 0, 0, 0};
    for (const wstring& name : names)
        list.push_back({name, entry});
    stored.apply(TreePlanner<FileRows>(stored, layout).plan(stored.root, list));
    EXPECT_LT(stored.written, 20000 / 60 + 10U) << "nodes are full when many rows come at once";
    stored.written = 0;
    const TreeChange<FileRows> one[] = {{u"110000x", entry}};
    stored.apply(TreePlanner<FileRows>(stored, layout).plan(stored.root, one));
    EXPECT_LE(stored.written, 5U);
}

} // namespace
} // namespace core
