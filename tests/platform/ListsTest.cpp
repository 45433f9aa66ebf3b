#include "platform/Lists.h"
#include "platform/Errors.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

using namespace vx;

namespace {

// Reads the bookkeeping of the engines, which is protected.
struct ProbeArray : CObArray {
    int32_t MaxSize() const { return m_nMaxSize; }
    int32_t GrowBy() const { return m_nGrowBy; }
};

struct ProbeList : CPtrList {
    explicit ProbeList(int32_t nBlockSize = 10) : CPtrList(nBlockSize) {}
    int Blocks() const {
        int n = 0;
        for (const CBlock *blk = m_pBlocks; blk; blk = blk->pNext)
            ++n;
        return n;
    }
    bool HasFreeNodes() const { return m_pNodeFree != nullptr; }
};

std::vector<void *> Contents(const CPtrList &list) {
    std::vector<void *> out;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        out.push_back(list.GetNext(pos));
    return out;
}

std::vector<CObject *> Contents(const CObArray &array) {
    std::vector<CObject *> out;
    for (int32_t i = 0; i < array.GetSize(); ++i)
        out.push_back(array.GetAt(i));
    return out;
}

int a, b, c, d; // distinct addresses to store in the pointer lists
CObject oa, ob, oc;

} // namespace

TEST(GrowArray, GrowthStepIsAnEighthBetweenFourAnd1024) {
    ProbeArray arr;
    // The first block holds exactly the size asked for.
    arr.SetSize(1);
    EXPECT_EQ(arr.MaxSize(), 1);
    // 1/8 of 1 is 0, raised to the minimum step 4: 1 + 4 = 5 slots.
    arr.Add(&oa);
    EXPECT_EQ(arr.GetSize(), 2);
    EXPECT_EQ(arr.MaxSize(), 5);
    for (int i = 0; i < 3; ++i)
        arr.Add(&ob);
    arr.Add(&oc); // size 6 > 5: 5/8 = 0 -> 4, capacity 9
    EXPECT_EQ(arr.MaxSize(), 9);

    ProbeArray eighth;
    eighth.SetSize(80);
    eighth.SetSize(81); // 80 / 8 = 10
    EXPECT_EQ(eighth.MaxSize(), 90);
    eighth.SetSize(200); // more than 90 + 11: exactly the size asked for
    EXPECT_EQ(eighth.MaxSize(), 200);

    ProbeArray large;
    large.SetSize(8200);
    large.SetSize(8201); // 8200 / 8 = 1025, capped at 1024
    EXPECT_EQ(large.MaxSize(), 8200 + 1024);
}

TEST(GrowArray, StoredGrowByAndEmptying) {
    ProbeArray arr;
    arr.SetSize(10, 3);
    EXPECT_EQ(arr.MaxSize(), 10);
    EXPECT_EQ(arr.GrowBy(), 3);
    arr.SetSize(11);
    EXPECT_EQ(arr.MaxSize(), 13);
    arr.SetSize(12, -5); // negative steps are not stored
    EXPECT_EQ(arr.GrowBy(), 3);
    arr.SetSize(0);
    EXPECT_EQ(arr.GetData(), nullptr);
    EXPECT_THROW(arr.SetSize(-1), CInvalidArgException);
}

TEST(GrowArray, NewSlotsAreNullAfterShrinkAndRegrow) {
    ProbeArray arr;
    arr.SetSize(5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(arr[i], nullptr);
        arr.SetAt(i, &oa);
    }
    arr.SetSize(2);
    arr.SetSize(5);
    EXPECT_EQ(arr.MaxSize(), 5);
    EXPECT_EQ(Contents(arr), (std::vector<CObject *>{&oa, &oa, nullptr, nullptr, nullptr}));
    arr.FreeExtra();
    arr.SetSize(3);
    arr.FreeExtra();
    EXPECT_EQ(arr.MaxSize(), 3);
}

TEST(GrowArray, InsertRemoveAppendCopy) {
    CObArray arr;
    arr.Add(&oa);
    arr.Add(&ob);
    arr.Add(&oc);
    arr.InsertAt(1, &oc, 2);
    EXPECT_EQ(Contents(arr), (std::vector<CObject *>{&oa, &oc, &oc, &ob, &oc}));
    arr.RemoveAt(1, 2);
    EXPECT_EQ(Contents(arr), (std::vector<CObject *>{&oa, &ob, &oc}));
    arr.InsertAt(4, &ob); // past the end: the gap is null
    EXPECT_EQ(Contents(arr), (std::vector<CObject *>{&oa, &ob, &oc, nullptr, &ob}));
    arr.RemoveAt(3, 2);

    CObArray other;
    other.Add(&oc);
    other.InsertAt(0, &arr);
    EXPECT_EQ(Contents(other), (std::vector<CObject *>{&oa, &ob, &oc, &oc}));
    other.InsertAt(1, &other); // inserting an array into itself uses its old contents
    EXPECT_EQ(Contents(other), (std::vector<CObject *>{&oa, &oa, &ob, &oc, &oc, &ob, &oc, &oc}));
    arr.Append(arr);
    EXPECT_EQ(Contents(arr), (std::vector<CObject *>{&oa, &ob, &oc, &oa, &ob, &oc}));
    other.Copy(arr);
    EXPECT_EQ(Contents(other), Contents(arr));
    arr.SetAtGrow(7, &oa);
    EXPECT_EQ(arr.GetSize(), 8);
    arr.RemoveAll();
    EXPECT_TRUE(arr.IsEmpty());
}

TEST(GrowArray, ProgrammingErrorsThrow) {
    CObArray arr;
    arr.Add(&oa);
    EXPECT_THROW(arr.GetAt(1), CInvalidArgException);
    EXPECT_THROW(arr.SetAt(-1, &oa), CInvalidArgException);
    EXPECT_THROW(arr.RemoveAt(0, 2), CInvalidArgException);
    EXPECT_THROW(arr.InsertAt(0, &oa, 0), CInvalidArgException);
    EXPECT_EQ(arr.GetSize(), 1);
}

TEST(BlockList, PositionsStayValidAcrossInsertsAndRemoves) {
    CPtrList list;
    list.AddTail(&a);
    const POSITION pb = list.AddTail(&b);
    list.AddTail(&c);
    const POSITION pd = list.InsertBefore(pb, &d);
    list.InsertAfter(pb, &d);
    EXPECT_EQ(Contents(list), (std::vector<void *>{&a, &d, &b, &d, &c}));
    list.RemoveAt(pd);
    list.RemoveHead();
    list.AddHead(&c);
    EXPECT_EQ(list.GetAt(pb), &b);
    EXPECT_EQ(Contents(list), (std::vector<void *>{&c, &b, &d, &c}));
    POSITION pos = pb;
    EXPECT_EQ(list.GetPrev(pos), &b);
    EXPECT_EQ(list.GetAt(pos), &c);
    EXPECT_EQ(list.GetPrev(pos), &c);
    EXPECT_EQ(pos, nullptr);
    list.SetAt(pb, &a);
    EXPECT_EQ(list.Find(&a), pb);
    EXPECT_EQ(list.Find(&c, list.GetHeadPosition()), list.GetTailPosition());
    EXPECT_EQ(list.FindIndex(1), pb);
    EXPECT_EQ(list.RemoveTail(), &c);
}

TEST(BlockList, BlocksReturnAtCountZeroAndFreeNodesAreReused) {
    ProbeList list(2);
    const POSITION pa = list.AddTail(&a);
    list.AddTail(&b);
    EXPECT_EQ(list.Blocks(), 1);
    list.AddTail(&c);
    EXPECT_EQ(list.Blocks(), 2);
    list.RemoveAt(pa);
    // The node just freed is the first one handed out again.
    EXPECT_EQ(list.AddHead(&d), pa);
    EXPECT_EQ(list.Blocks(), 2);
    while (!list.IsEmpty())
        list.RemoveHead();
    EXPECT_EQ(list.Blocks(), 0);
    list.AddTail(&a);
    EXPECT_EQ(list.Blocks(), 1);
}

TEST(BlockList, ListsAddedWholeKeepTheirOrder) {
    CPtrList first;
    first.AddTail(&a);
    first.AddTail(&b);
    CPtrList second;
    second.AddTail(&c);
    second.AddTail(&d);
    first.AddHead(&second);
    EXPECT_EQ(Contents(first), (std::vector<void *>{&c, &d, &a, &b}));
    second.AddTail(&second);
    EXPECT_EQ(Contents(second), (std::vector<void *>{&c, &d, &c, &d}));
    CPtrList self;
    self.AddTail(&a);
    self.AddTail(&b);
    self.AddHead(&self);
    EXPECT_EQ(Contents(self), (std::vector<void *>{&a, &b, &a, &b}));

    const POSITION head = first.InsertBefore(nullptr, &a);
    EXPECT_EQ(head, first.GetHeadPosition());
    const POSITION tail = first.InsertAfter(nullptr, &b);
    EXPECT_EQ(tail, first.GetTailPosition());
}

TEST(BlockList, ProgrammingErrorsThrow) {
    CPtrList list;
    EXPECT_THROW(list.RemoveHead(), CInvalidArgException);
    POSITION pos = nullptr;
    EXPECT_THROW(list.GetNext(pos), CInvalidArgException);
    EXPECT_THROW(list.RemoveAt(nullptr), CInvalidArgException);
    EXPECT_THROW({ CPtrList bad(0); }, CInvalidArgException);
}

TEST(Collections, DumpListsCountAndElements) {
    CObList list;
    list.AddTail(&oa);
    list.AddTail(&ob);
    std::ostringstream text;
    CDumpContext dc(text);
    list.Dump(dc);
    const std::string out = text.str();
    EXPECT_NE(out.find("CObList"), std::string::npos);
    EXPECT_NE(out.find("with 2 elements"), std::string::npos);
    EXPECT_NE(out.find("[1] ="), std::string::npos);
    EXPECT_EQ(std::string(list.GetRuntimeClassName()), "CObList");
}
