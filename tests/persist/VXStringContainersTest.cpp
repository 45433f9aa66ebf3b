#include "persist/VXStringArray.h"
#include "persist/VXStringList.h"
#include "platform/Errors.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

using namespace vx;

namespace {

struct ProbeStringArray : CVXStringArray {
    int32_t MaxSize() const { return m_nMaxSize; }
    int32_t GrowBy() const { return m_nGrowBy; }
};

struct ProbeStringList : CVXStringList {
    using CVXStringList::CVXStringList;
    int Blocks() const {
        int n = 0;
        for (const CBlock *blk = m_pBlocks; blk; blk = blk->pNext)
            ++n;
        return n;
    }
};

std::vector<CVXString> Contents(const CVXStringArray &array) {
    std::vector<CVXString> out;
    for (int32_t i = 0; i < array.GetSize(); ++i)
        out.push_back(array.GetAt(i));
    return out;
}

std::vector<CVXString> Contents(const CVXStringList &list) {
    std::vector<CVXString> out;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        out.push_back(list.GetNext(pos));
    return out;
}

using Texts = std::vector<CVXString>;

} // namespace

TEST(VXStringArray, GrowthKeepsTheStringNodes) {
    ProbeStringArray array;
    array.SetSize(3);
    for (int32_t i = 0; i < 3; ++i)
        EXPECT_EQ(array.GetData()[i].GetData(), nullptr); // new slots are null strings
    array.SetAt(0, u"first");
    const CVXStringData *node = array.GetData()[0].GetData();
    array.SetSize(4); // 3 / 8 = 0 -> at least 4: capacity 7
    EXPECT_EQ(array.MaxSize(), 7);
    EXPECT_EQ(array.GetData()[0].GetData(), node); // moved, not copied
    EXPECT_EQ(array.GetAt(0), CVXString(u"first"));

    // Any step other than -1 is stored, a negative one too: growth is then exact.
    array.SetSize(4, -2);
    EXPECT_EQ(array.GrowBy(), -2);
    array.SetSize(9);
    EXPECT_EQ(array.MaxSize(), 9);
    array.SetSize(10, 0);
    EXPECT_EQ(array.MaxSize(), 13); // 9 / 8 = 1 -> at least 4
    array.SetSize(1);
    array.FreeExtra();
    EXPECT_EQ(array.MaxSize(), 1);
    array.SetSize(0);
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(array.MaxSize(), 0);
    EXPECT_THROW(array.SetSize(-1), CInvalidArgException);
}

TEST(VXStringArray, InsertRemoveShareAndRelease) {
    CVXStringArray array;
    array.Add(u"a");
    array.Add(u"d");
    const CVXString x(u"x");
    array.InsertAt(1, x, 2);
    EXPECT_EQ(Contents(array), (Texts{u"a", u"x", u"x", u"d"}));
    EXPECT_EQ(array.GetData()[1].GetData(), x.GetData()); // shares, no copy of the text
    EXPECT_EQ(array.GetData()[2].GetData(), x.GetData());
    array.InsertEmpty(1, 1);
    EXPECT_TRUE(array.GetAt(1).IsEmpty());
    array.InsertEmpty(6, 1); // past the end: the size becomes index + count
    EXPECT_EQ(array.GetSize(), 7);
    array.RemoveAt(4, 3);
    array.RemoveAt(1);
    EXPECT_EQ(Contents(array), (Texts{u"a", u"x", u"x"}));

    CVXStringArray other;
    other.Add(u"z");
    other.InsertAt(0, &array);
    EXPECT_EQ(Contents(other), (Texts{u"a", u"x", u"x", u"z"}));
    other.Append(other);
    EXPECT_EQ(other.GetSize(), 8);
    array.Copy(other);
    EXPECT_EQ(Contents(array), Contents(other));
    array.SetAtGrow(9, u"end");
    EXPECT_TRUE(array.GetAt(8).IsEmpty());
    EXPECT_EQ(array.GetAt(9), CVXString(u"end"));
    CVXStringArray copy(array);
    EXPECT_EQ(Contents(copy), Contents(array));
    EXPECT_THROW(array.RemoveAt(9, 2), CInvalidArgException);
}

TEST(VXStringList, OperationsAndFind) {
    CVXStringList list;
    list.AddTail(u"beta");
    list.AddHead(CVXString(u"alpha"));
    const POSITION gamma = list.AddTail(u"gamma");
    list.InsertBefore(gamma, u"Beta");
    list.InsertAfter(gamma, CVXString(u"beta"));
    EXPECT_EQ(Contents(list), (Texts{u"alpha", u"beta", u"Beta", u"gamma", u"beta"}));
    // Find is case-sensitive and starts behind `after`.
    const POSITION first = list.Find(u"beta");
    EXPECT_EQ(first, list.FindIndex(1));
    EXPECT_EQ(list.Find(u"beta", first), list.FindIndex(4));
    EXPECT_EQ(list.Find(u"BETA"), nullptr);

    POSITION pos = list.GetHeadPosition();
    list.GetNext(pos) = u"ALPHA"; // the reference form writes through
    EXPECT_EQ(list.GetHead(), CVXString(u"ALPHA"));
    const CVXStringList &view = list;
    pos = view.GetTailPosition();
    EXPECT_EQ(view.GetPrev(pos), CVXString(u"beta"));
    EXPECT_EQ(view.GetNext(pos), CVXString(u"gamma"));

    CVXStringList copy(list);
    EXPECT_EQ(Contents(copy), Contents(list));
    copy.RemoveAt(copy.FindIndex(2));
    EXPECT_EQ(copy.RemoveHead(), CVXString(u"ALPHA"));
    EXPECT_EQ(copy.RemoveTail(), CVXString(u"beta"));
    list = copy;
    EXPECT_EQ(Contents(list), (Texts{u"beta", u"gamma"}));
    list.AddHead(&copy);
    list.AddTail(&list);
    EXPECT_EQ(Contents(list),
              (Texts{u"beta", u"gamma", u"beta", u"gamma", u"beta", u"gamma", u"beta", u"gamma"}));
    list.RemoveAll();
    EXPECT_THROW(list.RemoveHead(), CInvalidArgException);
}

TEST(VXStringList, NodesComeInBlocksOfTenByDefault) {
    ProbeStringList list;
    for (int i = 0; i < 10; ++i)
        list.AddTail(u"x");
    EXPECT_EQ(list.Blocks(), 1);
    const POSITION last = list.AddTail(u"y");
    EXPECT_EQ(list.Blocks(), 2);
    list.RemoveAt(last);
    EXPECT_EQ(list.AddTail(u"z"), last); // the freed node is reused
    while (!list.IsEmpty())
        list.RemoveTail();
    EXPECT_EQ(list.Blocks(), 0);

    ProbeStringList small(3);
    small.AddTail(u"a");
    small.AddTail(u"b");
    small.AddTail(u"c");
    small.AddTail(u"d");
    EXPECT_EQ(small.Blocks(), 2);

    std::ostringstream text;
    CDumpContext dc(text);
    small.Dump(dc);
    EXPECT_NE(text.str().find("with 4 elements"), std::string::npos);
    EXPECT_NE(text.str().find("[3] = d"), std::string::npos);
}
