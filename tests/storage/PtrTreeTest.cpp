#include "storage/PtrTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace vx;

namespace {

// "v(left,right)", "-" for an empty child, a bare value for a leaf.
template <class Node, class Key>
std::string ShapeOf(const Node *n, const Key &key) {
    if (!n) return "-";
    const std::string v = std::to_string(key(n));
    if (!n->m_pLeft && !n->m_pRight) return v;
    return v + "(" + ShapeOf(n->m_pLeft, key) + "," + ShapeOf(n->m_pRight, key) + ")";
}

// The number of nodes on the longest path, counted without recursion (trees here can be deep).
template <class Node>
size_t HeightOf(const Node *root) {
    size_t best = 0;
    std::vector<std::pair<const Node *, size_t>> stack;
    if (root) stack.emplace_back(root, 1);
    while (!stack.empty()) {
        const auto [n, d] = stack.back();
        stack.pop_back();
        best = std::max(best, d);
        if (n->m_pLeft) stack.emplace_back(n->m_pLeft, d + 1);
        if (n->m_pRight) stack.emplace_back(n->m_pRight, d + 1);
    }
    return best;
}

// A tree of ints that counts its comparisons and shows its shape.
class CIntTree : public CPtrTree<int> {
public:
    explicit CIntTree(bool bEigenaar = false) : CPtrTree<int>(bEigenaar) {}
    int nComp(const int *a, const int *b) const override {
        ++m_nComps;
        return *a < *b ? -1 : (*a > *b ? 1 : 0);
    }
    std::string Shape() const {
        return ShapeOf(m_pRoot, [](const CObTreeNode<int> *n) { return *n->m_pObject; });
    }
    size_t Height() const { return HeightOf(m_pRoot); }
    mutable int m_nComps = 0;
};

// Keys that outlive the trees that point at them.
class CKeys {
public:
    explicit CKeys(int n) : m_keys(static_cast<size_t>(n)) {
        std::iota(m_keys.begin(), m_keys.end(), 0);
    }
    int *operator[](int i) { return &m_keys[static_cast<size_t>(i)]; }

private:
    std::vector<int> m_keys;
};

void InsertAll(CIntTree &tree, CKeys &keys, std::initializer_list<int> order) {
    for (int k : order)
        ASSERT_TRUE(tree.bInsert(keys[k])) << k;
}

std::vector<int> InOrder(const CIntTree &tree) {
    struct CCollect : CObjectProcessor<int> {
        void Process(int *p) override { m_values.push_back(*p); }
        std::vector<int> m_values;
    } collect;
    tree.ProcessTree(&collect);
    return collect.m_values;
}

// An object that counts its destructions.
struct CCounted {
    CCounted(int v, int *pDeaths) : m_v(v), m_pDeaths(pDeaths) {}
    ~CCounted() { ++*m_pDeaths; }
    int m_v;
    int *m_pDeaths;
};

class CCountedTree : public CObTree<CCounted> {
public:
    explicit CCountedTree(bool bEigenaar) : CObTree<CCounted>(bEigenaar) {}
    int nComp(const CCounted *a, const CCounted *b) const override { return a->m_v - b->m_v; }
};

class CWordTree : public CSimpleTree<uint16_t> {
public:
    std::string Shape() const {
        return ShapeOf(m_pRoot, [](const CSimpleTreeNode<uint16_t> *n) { return n->m_value; });
    }
};

class CULongTree : public CSimpleTree<uint32_t> {
public:
    size_t Height() const { return HeightOf(m_pRoot); }
    uint32_t RootValue() const { return m_pRoot->m_value; }
};

template <class T>
struct CCollectValues : CSimpleProcessor<T> {
    void Process(T v) override { m_values.push_back(v); }
    std::vector<T> m_values;
};

} // namespace

TEST(PtrTree, BalanceRule) {
    // 2·log2(n): 13.2877 for 100, 2 for 2, 4 for 4, 15.2877 for 200 (computed with python3).
    EXPECT_TRUE(CIntTree::Balanced(100, 13));
    EXPECT_FALSE(CIntTree::Balanced(100, 14));
    // A single element is never balanced, and an empty tree at no depth either.
    EXPECT_FALSE(CIntTree::Balanced(1, 0));
    EXPECT_FALSE(CIntTree::Balanced(0, 0));
    EXPECT_TRUE(CULongSplayTree::nComp(0, 0xFFFFFFFFu) < 0);
    EXPECT_EQ(CWordSplayTree::nComp(0xFFFF, 1), 1);
}

TEST(PtrTree, OrderAndNavigation) {
    CKeys keys(20);
    CIntTree tree;
    EXPECT_TRUE(tree.bIsEmpty());
    EXPECT_EQ(tree.pGetAt(0), nullptr);
    InsertAll(tree, keys, {5, 3, 8, 1, 4, 7, 9, 6});
    int five = 5;
    EXPECT_FALSE(tree.bInsert(&five)); // equal to one present
    EXPECT_FALSE(tree.bInsert(static_cast<int *>(nullptr)));
    EXPECT_EQ(tree.Shape(), "5(3(1,4),8(7(6,-),9))");
    EXPECT_EQ(tree.lGetSize(), 8u);
    EXPECT_EQ(InOrder(tree), (std::vector<int>{1, 3, 4, 5, 6, 7, 8, 9}));

    std::vector<int> forward, backward;
    for (int *p = tree.pGetNext(nullptr); p; p = tree.pGetNext(p))
        forward.push_back(*p);
    for (int *p = tree.pGetPrev(nullptr); p; p = tree.pGetPrev(p))
        backward.push_back(*p);
    EXPECT_EQ(forward, (std::vector<int>{1, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(backward, (std::vector<int>{9, 8, 7, 6, 5, 4, 3, 1}));
    EXPECT_EQ(tree.pGetNext(keys[9]), nullptr);
    EXPECT_EQ(tree.pGetPrev(keys[1]), nullptr);
    EXPECT_EQ(tree.pGetNext(keys[2]), nullptr); // not in the tree

    EXPECT_EQ(tree.pGetAt(0), keys[1]);
    EXPECT_EQ(tree.pGetAt(8), nullptr);
    EXPECT_EQ(tree.nGetIndex(keys[1]), 0);
    EXPECT_EQ(tree.nGetIndex(keys[2]), -1);

    EXPECT_EQ(tree.pFirstInRange(keys[2], keys[9]), keys[3]);
    EXPECT_EQ(tree.pFirstInRange(keys[10], keys[12]), nullptr);
    EXPECT_EQ(tree.pFirstInRange(keys[0], keys[2]), keys[1]);
    // lo above hi: nothing, whether or not lo is present.
    EXPECT_EQ(tree.pFirstInRange(keys[6], keys[2]), nullptr);
}

TEST(PtrTree, SplayShapes) {
    CKeys keys(10);
    {
        CIntTree tree; // zig
        InsertAll(tree, keys, {2, 1});
        EXPECT_EQ(tree.pLookup(keys[1]), keys[1]);
        EXPECT_EQ(tree.Shape(), "1(-,2)");
    }
    {
        CIntTree tree; // zig-zig: the parent turns over the grandparent first
        InsertAll(tree, keys, {3, 2, 1});
        tree.pLookup(keys[1]);
        EXPECT_EQ(tree.Shape(), "1(-,2(-,3))");
    }
    {
        CIntTree tree; // zig-zag
        InsertAll(tree, keys, {3, 1, 2});
        tree.pLookup(keys[2]);
        EXPECT_EQ(tree.Shape(), "2(1,3)");
    }
    {
        CIntTree tree; // a missing key, Find and Min/Max leave the shape alone
        InsertAll(tree, keys, {5, 3, 8, 1, 4, 7, 9, 6});
        int missing = 2;
        EXPECT_EQ(tree.pLookup(&missing), nullptr);
        const CIntTree &constTree = tree;
        tree.m_nComps = 0;
        EXPECT_EQ(constTree.Find(keys[6]), keys[6]); // path 5, 8, 7, 6
        EXPECT_EQ(tree.m_nComps, 4);
        tree.m_nComps = 0;
        EXPECT_EQ(constTree.Find(&missing), nullptr); // path 5, 3, 1
        EXPECT_EQ(tree.m_nComps, 3);
        EXPECT_EQ(constTree.pGetMax(), keys[9]);
        EXPECT_EQ(tree.Shape(), "5(3(1,4),8(7(6,-),9))");
        // pGetNext splays its argument before stepping to the successor.
        EXPECT_EQ(tree.pGetNext(keys[6]), keys[7]);
        EXPECT_EQ(tree.Shape(), "6(5(3(1,4),-),7(-,8(-,9)))");
        // pFirstInRange splays what it finds: 4 lies at 6, 5, 3, 4.
        EXPECT_EQ(tree.pFirstInRange(keys[4], keys[5]), keys[4]);
        EXPECT_EQ(tree.Shape(), "4(3(1,-),6(5,7(-,8(-,9))))");
    }
}

TEST(PtrTree, RepairAtTheHundredthInsertion) {
    CKeys keys(101);
    CIntTree tree;
    for (int k = 1; k <= 99; ++k)
        tree.bInsert(keys[k]);
    EXPECT_EQ(tree.Height(), 99u); // a chain: no repair before the hundredth
    EXPECT_EQ(tree.pGetMin(), keys[1]);
    tree.bInsert(keys[100]); // at depth 99: not balanced, so 50 goes to the root
    EXPECT_EQ(tree.Height(), 51u);
    // Computed with an independent model of the splay in python3: 24 zig-zig steps and a zig.
    const std::string left = "1(-,3(2,5(4,7(6,9(8,11(10,13(12,15(14,17(16,19(18,21(20,23(22,25(24,"
                             "27(26,29(28,31(30,33(32,35(34,37(36,39(38,41(40,43(42,45(44,47(46,"
                             "49(48,-)))))))))))))))))))))))))";
    std::string right = "100";
    for (int k = 99; k >= 51; --k)
        right = std::to_string(k) + "(-," + right + ")";
    EXPECT_EQ(tree.Shape(), "50(" + left + "," + right + ")");
}

TEST(PtrTree, NoRepairWhenTheHundredthInsertionIsShallow) {
    CKeys keys(200);
    CIntTree chain;
    for (int k = 1; k <= 99; ++k)
        chain.bInsert(keys[k]);
    chain.bInsert(keys[0]); // the 100th lands at depth 1: balanced enough, no repair
    EXPECT_EQ(chain.Height(), 99u);
    EXPECT_EQ(chain.Shape().substr(0, 5), "1(0,2");

    // 99 keys in a random order, then a 100th that goes down the short right spine.
    std::vector<int> order(99);
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(7));
    CIntTree random;
    for (int k : order)
        random.bInsert(keys[k]);
    const std::string before = random.Shape();
    random.m_nComps = 0;
    EXPECT_TRUE(random.bInsert(keys[150]));
    // Only the comparisons of the descent: no repair searched the tree again.
    EXPECT_LT(random.m_nComps, 14);
    EXPECT_EQ(random.lGetSize(), 100u);
    // Removing the new leaf gives back the old shape, so nothing else moved.
    EXPECT_EQ(random.pDelete(keys[150]), keys[150]);
    EXPECT_EQ(random.Shape(), before);
}

TEST(PtrTree, DeletionHangsTheLeftSubtreeUnderTheRight) {
    CKeys keys(10);
    const std::initializer_list<int> order = {5, 3, 8, 1, 4, 7, 9, 6};
    {
        CIntTree tree;
        InsertAll(tree, keys, order);
        EXPECT_TRUE(tree.bDelete(keys[5])); // left 3(1,4) goes below 6, the leftmost of 8
        EXPECT_EQ(tree.Shape(), "8(7(6(3(1,4),-),-),9)");
        EXPECT_EQ(tree.lGetSize(), 7u);
    }
    {
        CIntTree tree; // no right subtree: the left one goes straight into the link
        InsertAll(tree, keys, order);
        EXPECT_EQ(tree.pDelete(keys[7]), keys[7]);
        EXPECT_EQ(tree.Shape(), "5(3(1,4),8(6,9))");
    }
    {
        CIntTree tree;
        InsertAll(tree, keys, order);
        EXPECT_TRUE(tree.bDelete(keys[9]));
        EXPECT_FALSE(tree.bDelete(keys[9]));
        EXPECT_EQ(tree.Shape(), "5(3(1,4),8(7(6,-),-))");
        tree.EmptyTree();
        EXPECT_TRUE(tree.bIsEmpty());
        EXPECT_EQ(tree.Shape(), "-");
    }
}

TEST(PtrTree, OwnershipFollowsTheFlag) {
    int deaths = 0;
    {
        CCountedTree owner(true);
        for (int v = 0; v < 10; ++v)
            owner.bInsert(new CCounted(v, &deaths));
        CCounted probe(3, &deaths);
        EXPECT_TRUE(owner.bDelete(&probe)); // deletes the object
        EXPECT_EQ(deaths, 1);
        probe.m_v = 4;
        CCounted *taken = owner.pDelete(&probe); // hands it back
        ASSERT_NE(taken, nullptr);
        EXPECT_EQ(deaths, 1);
        delete taken;
        EXPECT_EQ(deaths, 2);
        probe.m_v = 99;
        EXPECT_FALSE(owner.bDelete(&probe));
        EXPECT_EQ(deaths, 2);
        // Moving hands the nodes over: only the destination deletes them.
        CCountedTree moved(std::move(owner));
        EXPECT_EQ(owner.lGetSize(), 0u);
        EXPECT_EQ(moved.lGetSize(), 8u);
        probe.m_v = 0;
    } // 8 left in the tree, plus the probe itself
    EXPECT_EQ(deaths, 11);

    deaths = 0;
    std::vector<CCounted> objects;
    objects.reserve(10);
    for (int v = 0; v < 10; ++v)
        objects.emplace_back(v, &deaths);
    {
        CCountedTree borrower(false);
        for (CCounted &o : objects)
            borrower.bInsert(&o);
        EXPECT_TRUE(borrower.bDelete(&objects[2]));
        EXPECT_EQ(borrower.pDelete(&objects[3]), &objects[3]);
        borrower.EmptyTree();
        EXPECT_EQ(borrower.lGetSize(), 0u);
        borrower.bInsert(&objects[5]);
    }
    EXPECT_EQ(deaths, 0);

    {
        CCountedTree owner(true);
        for (int v = 0; v < 5; ++v)
            owner.bInsert(new CCounted(v, &deaths));
        owner.EmptyTree();
        EXPECT_EQ(deaths, 5);
        owner.bInsert(new CCounted(1, &deaths));
        CCountedTree other(true);
        other.bInsert(new CCounted(2, &deaths));
        other = std::move(owner); // frees other's own object first
        EXPECT_EQ(deaths, 6);
    }
    EXPECT_EQ(deaths, 7);
}

TEST(PtrTree, ProcessorsAndTheAlternatingOrder) {
    CKeys keys(10);
    CIntTree tree;
    InsertAll(tree, keys, {5, 3, 8, 1, 4, 7, 9, 6});
    struct CCollect : CObjectProcessor<int> {
        void Process(int *p) override { m_values.push_back(*p); }
        std::vector<int> m_values;
    } wissel;
    // Level 1 left first, level 2 right first, level 3 left first, ...
    tree.ProcessTreeWissel(&wissel);
    EXPECT_EQ(wissel.m_values, (std::vector<int>{4, 3, 1, 5, 9, 8, 6, 7}));

    struct CStopAbove : CObjectProcessorB<int> {
        explicit CStopAbove(int limit) : m_limit(limit) {}
        bool bProcess(int *p) override {
            m_seen.push_back(*p);
            return *p > m_limit;
        }
        int m_limit;
        std::vector<int> m_seen;
    };
    CStopAbove stop(4);
    EXPECT_TRUE(tree.ProcessTree(&stop));
    EXPECT_EQ(stop.m_seen, (std::vector<int>{1, 3, 4, 5}));
    CStopAbove never(100);
    EXPECT_FALSE(tree.ProcessTree(&never));
    EXPECT_EQ(never.m_seen.size(), 8u);
    CIntTree empty;
    CStopAbove none(0);
    EXPECT_FALSE(empty.ProcessTree(&none));
    EXPECT_TRUE(none.m_seen.empty());
}

TEST(PtrTree, RandomOperationsMatchStdSet) {
    constexpr int kKeys = 2000;
    CKeys keys(kKeys);
    CIntTree tree;
    std::set<int> oracle;
    std::mt19937 rng(20261121);
    std::uniform_int_distribution<int> pick(0, kKeys - 1);
    for (int step = 0; step < 60000; ++step) {
        const int k = pick(rng);
        switch (rng() % 6) {
        case 0:
        case 1:
            ASSERT_EQ(tree.bInsert(keys[k]), oracle.insert(k).second);
            break;
        case 2:
            ASSERT_EQ(tree.bDelete(keys[k]), oracle.erase(k) == 1);
            break;
        case 3:
            ASSERT_EQ(tree.pLookup(keys[k]) != nullptr, oracle.count(k) == 1);
            ASSERT_EQ(tree.Find(keys[k]) != nullptr, oracle.count(k) == 1);
            break;
        case 4: {
            const int hi = k + static_cast<int>(rng() % 50);
            int hiKey = hi;
            const int *p = tree.pFirstInRange(keys[k], &hiKey);
            auto it = oracle.lower_bound(k);
            const bool bExpected = it != oracle.end() && *it <= hi;
            ASSERT_EQ(p != nullptr, bExpected);
            if (p) {
                ASSERT_EQ(*p, *it);
            }
            break;
        }
        default: {
            const int *p = tree.pGetNext(keys[k]);
            auto it = oracle.find(k);
            if (it == oracle.end() || std::next(it) == oracle.end())
                ASSERT_EQ(p, nullptr);
            else
                ASSERT_EQ(*p, *std::next(it));
            break;
        }
        }
        ASSERT_EQ(tree.lGetSize(), oracle.size());
        if (step % 5000 == 0 && !oracle.empty()) {
            ASSERT_EQ(InOrder(tree), std::vector<int>(oracle.begin(), oracle.end()));
            const auto n = static_cast<uint32_t>(rng() % oracle.size());
            const int *p = tree.pGetAt(n);
            ASSERT_NE(p, nullptr);
            ASSERT_EQ(*p, *std::next(oracle.begin(), n));
            ASSERT_EQ(tree.nGetIndex(p), static_cast<int>(n));
        }
    }
    EXPECT_EQ(InOrder(tree), std::vector<int>(oracle.begin(), oracle.end()));
}

TEST(PtrTree, DegenerateTreesNeedNoDeepStack) {
    // Visiting every key in order leaves a splay tree as one chain, with the largest key at the
    // root. At this depth a recursive walk would risk the thread's stack.
    constexpr uint32_t kCount = 150000;
    CULongTree tree;
    std::vector<uint32_t> order(kCount);
    std::iota(order.begin(), order.end(), 1u);
    std::shuffle(order.begin(), order.end(), std::mt19937(3));
    for (uint32_t v : order)
        tree.bInsert(v);
    for (uint32_t v = 1; v <= kCount; ++v)
        ASSERT_TRUE(tree.bLookup(v));
    ASSERT_EQ(tree.Height(), kCount);

    CULongTree copy(tree); // keeps the chain
    CCollectValues<uint32_t> all;
    copy.ProcessTree(&all);
    EXPECT_TRUE(std::is_sorted(all.m_values.begin(), all.m_values.end()));

    // 99 keys hang on the right of the root; the 100th insertion puts 0 at the bottom of the
    // chain, 150000 steps down, and the repair walks the whole depth. Its depth counters are
    // 16 bits wide and wrap: the greatest depth seen is 65535, so the node taken is the last
    // one at a depth of 32767 modulo 65536 in post-order, 117234 (true depth 32767).
    for (uint32_t v = kCount + 1; v < kCount + 100; ++v)
        tree.bInsert(v);
    tree.bInsert(0);
    EXPECT_EQ(tree.lGetSize(), kCount + 100);
    EXPECT_EQ(tree.RootValue(), 117234u);
    EXPECT_EQ(tree.Height(), 117235u); // the chain below it stays as it was
    CCollectValues<uint32_t> after;
    tree.ProcessTree(&after);
    EXPECT_TRUE(std::is_sorted(after.m_values.begin(), after.m_values.end()));
    EXPECT_TRUE(tree.bLookup(0)); // the deepest key splays up through the whole path
}

TEST(SimpleTree, ValuesCopiesAndAdding) {
    CWordTree tree;
    for (uint16_t v : {4, 2, 6, 1, 3, 5, 7})
        EXPECT_TRUE(tree.bInsert(v));
    EXPECT_FALSE(tree.bInsert(4));
    EXPECT_EQ(tree.Shape(), "4(2(1,3),6(5,7))");

    CCollectValues<uint16_t> wissel;
    tree.ProcessTreeWissel(&wissel);
    EXPECT_EQ(wissel.m_values, (std::vector<uint16_t>{3, 2, 1, 4, 7, 6, 5}));

    // Copy keeps the shape; Add feeds the alternating order into plain insertion.
    CWordTree copy;
    copy.Copy(tree);
    EXPECT_EQ(copy.Shape(), "4(2(1,3),6(5,7))");
    EXPECT_EQ(copy.lGetSize(), 7u);
    CWordTree added;
    added.Add(tree);
    EXPECT_EQ(added.Shape(), "3(2(1,-),4(-,7(6(5,-),-)))");
    added.Add(added);
    EXPECT_EQ(added.lGetSize(), 7u);

    // Reads splay; Find does not.
    EXPECT_FALSE(tree.bLookup(8));
    EXPECT_EQ(tree.Shape(), "4(2(1,3),6(5,7))");
    EXPECT_TRUE(tree.bLookup(3));
    EXPECT_EQ(tree.Shape(), "3(2(1,-),4(-,6(5,7)))");
    const uint16_t *p = tree.Find(5);
    EXPECT_EQ(*tree.pGetNext(p), 6);
    EXPECT_EQ(*tree.pGetNext(nullptr), 1);
    EXPECT_EQ(*tree.pFirstInRange(5, 100), 5);
    EXPECT_EQ(tree.pFirstInRange(6, 5), nullptr);

    EXPECT_TRUE(tree.bDelete(4));
    // The copy is deep: the original's change does not reach it.
    EXPECT_EQ(copy.Shape(), "4(2(1,3),6(5,7))");
    copy = tree;
    EXPECT_EQ(copy.Shape(), tree.Shape());
}

TEST(SimpleTree, NamedInstancesAndProcessors) {
    CULongSplayTree longs;
    for (uint32_t v : {0xFFFFFFFFu, 1u, 0x80000000u, 70000u})
        longs.bInsert(v);
    CULongSplayTree longsCopy;
    longsCopy = longs;
    CCollectValues<uint32_t> all;
    longsCopy.ProcessTree(&all);
    EXPECT_EQ(all.m_values, (std::vector<uint32_t>{1u, 70000u, 0x80000000u, 0xFFFFFFFFu}));

    struct CFindEven : CSimpleProcessorB<uint32_t> {
        bool bProcess(uint32_t v) override {
            ++m_nSeen;
            return v % 2 == 0;
        }
        int m_nSeen = 0;
    } even;
    EXPECT_TRUE(longs.ProcessTree(&even));
    EXPECT_EQ(even.m_nSeen, 2);

    CULongSplayTree target;
    target.bInsert(5);
    CSimpleTreeAdder<uint32_t> adder(target);
    longs.ProcessTree(&adder);
    EXPECT_EQ(target.lGetSize(), 5u);
}
