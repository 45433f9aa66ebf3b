#include "persist/SerCollections.h"
#include "platform/Errors.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <sstream>
#include <vector>

using namespace vx;

namespace {

// An element that records its destruction in a flag owned by the test.
class CProbe : public CSerObject {
public:
    explicit CProbe(bool *pDestroyed = nullptr, int n = 0) : m_pDestroyed(pDestroyed), m_n(n) {}
    ~CProbe() override {
        if (m_pDestroyed) *m_pDestroyed = true;
    }
    bool *m_pDestroyed;
    int m_n;
};

// A list whose insertions fail as an exhausted allocator would make them fail.
class CFailingList : public CSerObList {
public:
    POSITION AddHead(CSerObject *) { throw std::bad_alloc(); }
    POSITION AddTail(CSerObject *) { throw std::bad_alloc(); }
    POSITION InsertBefore(POSITION, CSerObject *) { throw std::bad_alloc(); }
    POSITION InsertAfter(POSITION, CSerObject *) { throw std::bad_alloc(); }
};

using CProbeList = CVXTypedPtrList<CSerObList, CProbe *>;
using CFailingProbeList = CVXTypedPtrList<CFailingList, CProbe *>;
using CProbeArray = CTypedPtrArray<CSerObArray, CProbe *>;

std::vector<int> Numbers(const CProbeList &list) {
    std::vector<int> out;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        out.push_back(list.GetNext(pos)->m_n);
    return out;
}

} // namespace

TEST(SerCollections, ListsNeverDeleteTheirElements) {
    bool destroyed = false;
    auto *element = new CProbe(&destroyed);
    {
        CSerObList list;
        list.AddTail(element);
        list.AddHead(element);
        list.RemoveHead();
        CSerObList copy(list);
        EXPECT_EQ(copy.GetHead(), element);
    }
    EXPECT_FALSE(destroyed);
    {
        CSerObArray array;
        array.Add(element);
        array.SetSize(0);
        array.Add(element);
    }
    EXPECT_FALSE(destroyed);
    delete element;
    EXPECT_TRUE(destroyed);
}

TEST(SerCollections, TransferDestroysTheElementWhenInsertionFails) {
    CFailingProbeList failing;
    bool destroyed = false;
    EXPECT_THROW(failing.TransferAddTail(new CProbe(&destroyed)), std::bad_alloc);
    EXPECT_TRUE(destroyed);
    destroyed = false;
    EXPECT_THROW(failing.TransferAddHead(new CProbe(&destroyed)), std::bad_alloc);
    EXPECT_TRUE(destroyed);
    destroyed = false;
    EXPECT_THROW(failing.TransferInsertBefore(nullptr, new CProbe(&destroyed)), std::bad_alloc);
    EXPECT_TRUE(destroyed);
    destroyed = false;
    EXPECT_THROW(failing.TransferInsertAfter(nullptr, new CProbe(&destroyed)), std::bad_alloc);
    EXPECT_TRUE(destroyed);
}

TEST(SerCollections, TypedListForwardsWithItsType) {
    CProbe one(nullptr, 1), two(nullptr, 2);
    // On the heap: a transfer insertion could delete it if it failed.
    const auto threeOwner = std::make_unique<CProbe>(nullptr, 3);
    CProbe &three = *threeOwner;
    CProbeList list;
    bool destroyed = false;
    auto *owned = new CProbe(&destroyed, 4);
    const POSITION p2 = list.AddTail(&two);
    list.TransferAddTail(owned);
    list.InsertBefore(p2, &one);
    list.TransferInsertAfter(p2, &three);
    EXPECT_EQ(Numbers(list), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(list.GetTail()->m_n, 4);
    EXPECT_EQ(list.Find(&three), list.FindIndex(2));

    CProbeList other;
    other.AddTail(&three);
    list.AddListHead(&other);
    list.AddListTail(&other);
    EXPECT_EQ(Numbers(list), (std::vector<int>{3, 1, 2, 3, 4, 3}));
    EXPECT_EQ(list.RemoveHead()->m_n, 3);
    EXPECT_EQ(list.RemoveTail()->m_n, 3);
    delete list.RemoveTail();
    EXPECT_TRUE(destroyed);
}

TEST(SerCollections, TypedArrayAndWordArray) {
    CProbe one(nullptr, 1), two(nullptr, 2);
    CProbeArray array;
    EXPECT_EQ(array.Add(&one), 0);
    array.InsertAt(0, &two, 2);
    array.SetAtGrow(4, &one);
    EXPECT_EQ(array.GetSize(), 5);
    EXPECT_EQ(array[0]->m_n, 2);
    EXPECT_EQ(array.GetAt(2)->m_n, 1);
    EXPECT_EQ(array.GetAt(3), nullptr);
    CProbeArray copy;
    copy.Copy(array);
    copy.Append(array);
    EXPECT_EQ(copy.GetSize(), 10);
    EXPECT_EQ(copy.GetAt(9)->m_n, 1);

    CVXWordArray words;
    words.SetSize(3);
    words[1] = 0xFFFF;
    words.Add(7);
    EXPECT_EQ(words.GetSize(), 4);
    EXPECT_EQ(words.GetAt(0), 0);
    EXPECT_EQ(words.GetAt(1), 0xFFFF);
    EXPECT_EQ(words.GetAt(3), 7);
    words.RemoveAt(0, 2);
    EXPECT_EQ(words.GetAt(0), 0);
    EXPECT_EQ(words.GetAt(1), 7);
}

TEST(SerCollections, InterfaceFormsHoldInterfacePointers) {
    CProbe one(nullptr, 1), two(nullptr, 2);
    ISerObList list;
    list.AddTail(&one);
    list.AddHead(&two);
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetHead(), &two);
    ISerObList copy(list);
    list.AddListTail(&copy);
    EXPECT_EQ(list.GetCount(), 4);
    EXPECT_EQ(list.Find(&one, list.FindIndex(1)), list.FindIndex(3));
    list.RemoveAll();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_THROW(list.RemoveHead(), CInvalidArgException);

    ISerObArray array;
    array.SetSize(2);
    array.SetAt(1, &one);
    array.InsertAt(0, &two);
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[0], &two);
    EXPECT_EQ(array.GetAt(1), nullptr);
    EXPECT_EQ(array.GetAt(2), &one);
}

TEST(SerCollections, DumpAndKind) {
    CProbe one;
    CSerObList list;
    list.AddTail(&one);
    CVXWordArray words;
    words.Add(42);
    std::ostringstream text;
    CDumpContext dc(text);
    list.Dump(dc);
    words.Dump(dc);
    const std::string out = text.str();
    EXPECT_NE(out.find("a CSerObList at "), std::string::npos);
    EXPECT_NE(out.find("with 1 elements"), std::string::npos);
    EXPECT_NE(out.find("[0] = 42"), std::string::npos);
    // Without a creator of its own an object is of no registered kind.
    EXPECT_FALSE(one.IsKindOf(nullptr));
    EXPECT_EQ(one.RuntimeCreator(), nullptr);
}
