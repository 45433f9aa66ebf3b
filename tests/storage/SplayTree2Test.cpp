#include "platform/Errors.h"
#include "storage/PtrSplayTree2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

using namespace vx;

namespace {

class CIntSplayTree : public CPtrSplayTree2 {
public:
    int nComp(const void *a, const void *b) override {
        const int x = *static_cast<const int *>(a), y = *static_cast<const int *>(b);
        return x < y ? -1 : (x > y ? 1 : 0);
    }
    int Root() const { return *static_cast<const int *>(m_pRoot->m_pData); }
    std::string Shape() const { return ShapeOf(m_pRoot); }

    // The data by walking the list forwards, and checks that the backward walk mirrors it.
    std::vector<int> Walk() const {
        std::vector<int> forward, backward;
        for (POSITION pos = GetFirstPosition(); pos;)
            forward.push_back(*static_cast<int *>(GetNext(pos)));
        for (POSITION pos = GetLastPosition(); pos;)
            backward.push_back(*static_cast<int *>(GetPrev(pos)));
        std::reverse(backward.begin(), backward.end());
        EXPECT_EQ(forward, backward);
        return forward;
    }

private:
    static std::string ShapeOf(const CPtrSplayNode2 *n) {
        if (!n) return "-";
        return std::to_string(*static_cast<const int *>(n->m_pData)) + "(" + ShapeOf(n->m_pLeft) +
               "," + ShapeOf(n->m_pRight) + ")";
    }
};

std::vector<int> Keys(int n) {
    std::vector<int> keys(static_cast<size_t>(n));
    std::iota(keys.begin(), keys.end(), 0);
    return keys;
}

} // namespace

TEST(SplayTree2, InsertionSplaysAndThreadsTheList) {
    std::vector<int> keys = Keys(50);
    CIntSplayTree tree;
    EXPECT_FALSE(tree.Insert(nullptr));
    // Descending: each new key is the smallest, so it goes to the head of the list.
    for (int k = 49; k >= 40; --k) {
        ASSERT_TRUE(tree.Insert(&keys[static_cast<size_t>(k)]));
        EXPECT_EQ(tree.Walk().front(), k);
        EXPECT_EQ(tree.Root(), k); // every insertion splays
    }
    int dup = 45;
    EXPECT_FALSE(tree.Insert(&dup));
    EXPECT_EQ(tree.GetSize(), 10);
    EXPECT_EQ(tree.Walk(), std::vector<int>({40, 41, 42, 43, 44, 45, 46, 47, 48, 49}));

    // Lookup of a missing key leaves the shape alone; a hit comes to the root.
    const std::string shape = tree.Shape();
    int missing = 7;
    EXPECT_EQ(tree.Lookup(&missing), nullptr);
    EXPECT_EQ(tree.Shape(), shape);
    EXPECT_EQ(*static_cast<int *>(tree.Lookup(&keys[44])), 44);
    EXPECT_EQ(tree.Root(), 44);

    // FirstInRange gives a position from which the walk goes on in order.
    int lo = 42, hi = 47, none = 30;
    POSITION pos = tree.FirstInRange(&lo, &hi);
    std::vector<int> from;
    while (pos)
        from.push_back(*static_cast<int *>(tree.GetNext(pos)));
    EXPECT_EQ(from, std::vector<int>({42, 43, 44, 45, 46, 47, 48, 49}));
    EXPECT_EQ(tree.FirstInRange(&hi, &lo), nullptr);
    EXPECT_EQ(tree.FirstInRange(&none, &none), nullptr);

    // Deletion in the middle and (our extension) at both ends keeps the list whole.
    EXPECT_TRUE(tree.Delete(&keys[45]));
    EXPECT_TRUE(tree.Delete(&keys[40]));
    EXPECT_TRUE(tree.Delete(&keys[49]));
    EXPECT_FALSE(tree.Delete(&keys[49]));
    EXPECT_EQ(tree.Walk(), std::vector<int>({41, 42, 43, 44, 46, 47, 48}));
    EXPECT_EQ(tree.GetSize(), 7);

    POSITION null = nullptr;
    EXPECT_THROW(tree.GetNext(null), CInvalidArgException);
    tree.EmptyTree();
    EXPECT_EQ(tree.GetSize(), 0);
    EXPECT_EQ(tree.GetFirstPosition(), nullptr);
    EXPECT_EQ(tree.GetLastPosition(), nullptr);
}

TEST(SplayTree2, RepairAtEveryHundredthInsertion) {
    // Ascending keys: each new key hangs right of the root and one rotation lifts it, so after
    // k insertions the tree is k at the root over a left chain k-1 ... 0. At the 100th insertion
    // (key 99) the chain has 100 levels, key k at depth 100 - k; the repair takes the node at
    // depth 100 / 2 = 50, key 50, and splays it to the root.
    std::vector<int> keys = Keys(101);
    CIntSplayTree tree;
    for (int k = 0; k < 99; ++k)
        tree.Insert(&keys[static_cast<size_t>(k)]);
    EXPECT_EQ(tree.Root(), 98);
    tree.Insert(&keys[99]);
    EXPECT_EQ(tree.Root(), 50);
    tree.Insert(&keys[100]);
    EXPECT_EQ(tree.Root(), 100);

    // Random order: the repair runs at the 100th insertion whatever the shape, so the root is
    // then not the key just inserted (which a plain insertion would leave there).
    std::vector<int> shuffled = Keys(300);
    std::mt19937 rng(17);
    std::shuffle(shuffled.begin(), shuffled.end(), rng);
    CIntSplayTree other;
    for (size_t i = 0; i < shuffled.size(); ++i) {
        other.Insert(&shuffled[i]);
        if ((i + 1) % 100 == 0)
            EXPECT_NE(other.Root(), shuffled[i]) << i;
        else
            EXPECT_EQ(other.Root(), shuffled[i]) << i;
    }
    std::vector<int> sorted = shuffled;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(other.Walk(), sorted);
}

TEST(SplayTree2, RandomOperationsMatchStdSet) {
    std::vector<int> keys = Keys(2000);
    std::mt19937 rng(4);
    std::uniform_int_distribution<int> pick(0, 1999), op(0, 3);
    CIntSplayTree tree;
    std::set<int> model;
    for (int step = 0; step < 20000; ++step) {
        int &k = keys[static_cast<size_t>(pick(rng))];
        switch (op(rng)) {
        case 0:
        case 1:
            ASSERT_EQ(tree.Insert(&k), model.insert(k).second) << step;
            break;
        case 2:
            ASSERT_EQ(tree.Delete(&k), model.erase(k) == 1) << step;
            break;
        default:
            ASSERT_EQ(tree.Lookup(&k) != nullptr, model.count(k) == 1) << step;
            break;
        }
        if (step % 1000 == 0) {
            ASSERT_EQ(tree.Walk(), std::vector<int>(model.begin(), model.end()));
        }
    }
    EXPECT_EQ(tree.GetSize(), static_cast<int32_t>(model.size()));
    EXPECT_EQ(tree.Walk(), std::vector<int>(model.begin(), model.end()));
}
