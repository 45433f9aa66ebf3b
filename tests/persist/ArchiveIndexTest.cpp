// The archive's pointer map and the per-run class check of the object collections.
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/LoadedObjects.h"
#include "persist/PointerIndex.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerCollections.h"
#include "platform/Errors.h"
#include "support/ArchiveTestSupport.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

using namespace vx;

namespace vxtest {

// Serialisable, but not a CSerObject: a CSerObArray must refuse it.
class CBareItem : public ISerObject {
    VX_DECLARE_SERIAL(CBareItem)
public:
    void SerializeX(CArchiveX &) override {}
    void SerializeB(CArchiveB &) override {}
};
VX_IMPLEMENT_SERIAL(CBareItem, 0)

class CRunItem : public CSerObject {
    VX_DECLARE_SERIAL(CRunItem)
};
VX_IMPLEMENT_SERIAL(CRunItem, 0)

} // namespace vxtest

using vxtest::CBareItem;
using vxtest::CRunItem;

TEST(PointerIndexMap, FindsSetsReplacesAndGrows) {
    CPointerIndexMap map;
    std::vector<char> block(1 << 20);
    EXPECT_EQ(map.Find(block.data()), 0u); // empty: nothing found, no table needed

    // Keys that share every low bit the slot is taken from (4096 apart, and 32 MiB apart
    // folded in) pile onto few home slots: each must still be found with its own index.
    std::vector<const void *> keys;
    for (size_t i = 0; i < 200; ++i)
        keys.push_back(block.data() + i * 4096);
    for (size_t i = 0; i < keys.size(); ++i)
        map.Set(keys[i], static_cast<uint32_t>(i + 1));
    EXPECT_EQ(map.Size(), 200u);
    for (size_t i = 0; i < keys.size(); ++i)
        ASSERT_EQ(map.Find(keys[i]), i + 1) << i;
    EXPECT_EQ(map.Find(block.data() + 16), 0u); // a neighbour that was never entered

    map.Set(keys[7], 999); // a second Set replaces, it does not add
    EXPECT_EQ(map.Size(), 200u);
    EXPECT_EQ(map.Find(keys[7]), 999u);

    map.Reserve(100000); // growing keeps every entry
    for (size_t i = 0; i < keys.size(); ++i)
        EXPECT_EQ(map.Find(keys[i]), i == 7 ? 999u : i + 1);

    map.Clear();
    EXPECT_EQ(map.Size(), 0u);
    EXPECT_EQ(map.Find(keys[0]), 0u);
}

TEST(PointerIndexMap, ManyObjectsKeepTheirNumbersThroughAnArchive) {
    // 40000 objects: past the short tags, and through several doublings of the map. The second
    // mention of object k (index k + 4: the array's class 1, the array 2, the item class 3 and
    // items from 4) must come back as that object.
    constexpr int kCount = 40000;
    std::vector<CRunItem> items(kCount);
    CSerObArray array;
    for (CRunItem &item : items)
        array.Add(&item);
    for (int k : {0, 1, 0x7FFB, kCount - 1})
        array.Add(&items[static_cast<size_t>(k)]);
    const vxtest::Bytes bytes = vxtest::Store([&](CArchiveB &ar) { ar.WriteObject(&array); });

    // The tail: item 0 is index 4 -> 04 00; item 1 -> 05 00; item 0x7FFB is index 0x7FFF,
    // the first that needs the big tag -> FF 7F FF 7F 00 00; the last item, index 40003 =
    // 0x9C43 -> FF 7F 43 9C 00 00.
    const vxtest::Bytes tail(bytes.end() - 16, bytes.end());
    EXPECT_EQ(tail, vxtest::Bytes({0x04, 0x00, 0x05, 0x00, 0xFF, 0x7F, 0xFF, 0x7F, 0x00, 0x00, 0xFF,
                                   0x7F, 0x43, 0x9C, 0x00, 0x00}));

    CLoadedObjects owner;
    const CLoadedObjects::CCollector collect(owner);
    vxtest::Load(bytes, [&](CArchiveB &ar) {
        auto *back = dynamic_cast<CSerObArray *>(ar.ReadObject(nullptr));
        ASSERT_NE(back, nullptr);
        ASSERT_EQ(back->GetSize(), kCount + 4);
        EXPECT_EQ(back->GetAt(kCount), back->GetAt(0));
        EXPECT_EQ(back->GetAt(kCount + 1), back->GetAt(1));
        EXPECT_EQ(back->GetAt(kCount + 2), back->GetAt(0x7FFB));
        EXPECT_EQ(back->GetAt(kCount + 3), back->GetAt(kCount - 1));
        EXPECT_NE(back->GetAt(0), back->GetAt(1));
    });
}

TEST(ArchiveRuns, EveryElementIsCheckedForItsRoot) {
    // A run of CSerObjects, then one of another root: the class check kept for the run must
    // not let it through. The same element first in a run is refused as well.
    for (const bool bareFirst : {false, true}) {
        CRunItem a, b;
        CBareItem bare;
        ISerObArray mixed;
        if (bareFirst) mixed.Add(&bare);
        mixed.Add(&a);
        mixed.Add(&b);
        if (!bareFirst) mixed.Add(&bare);
        const vxtest::Bytes bytes = vxtest::Store([&](CArchiveB &ar) { mixed.SerializeB(ar); });

        CLoadedObjects owner;
        const CLoadedObjects::CCollector collect(owner);
        CSerObArray into;
        try {
            vxtest::Load(bytes, [&](CArchiveB &ar) { into.SerializeB(ar); });
            ADD_FAILURE() << "an element of another root loaded";
        } catch (const CArchiveBException &e) {
            EXPECT_EQ(e.m_cause, CArchiveBException::badClass);
        }
    }
}

TEST(ArchiveRuns, LoadedSinceCountsOnlyObjectsTheArchiveCreated) {
    CRunItem first, second;
    const vxtest::Bytes bytes = vxtest::Store([&](CArchiveB &ar) {
        ar.WriteObject(&first);
        ar.WriteObject(&second);
        ar.WriteObject(&first);
    });
    CRunItem mapped;
    CLoadedObjects owner;
    const CLoadedObjects::CCollector collect(owner);
    vxtest::Load(bytes, [&](CArchiveB &ar) {
        ISerObject *one = ar.ReadObject(nullptr);
        ar.MapObject(&mapped); // entered, not created: never "loaded since"
        const uint32_t mark = ar.GetLoadMark();
        ISerObject *two = ar.ReadObject(nullptr);
        EXPECT_EQ(ar.ReadObject(nullptr), one);
        EXPECT_FALSE(ar.IsLoadedSince(one, mark));
        EXPECT_TRUE(ar.IsLoadedSince(two, mark));
        EXPECT_TRUE(ar.IsLoadedSince(one, 0));
        EXPECT_FALSE(ar.IsLoadedSince(&mapped, 0));
        EXPECT_FALSE(ar.IsLoadedSince(nullptr, 0));
    });
}

TEST(ArchiveXNumbers, PlainTextAndEverythingElseLoadAsTheGeneralConversionReadsThem) {
    CArchiveX in(true);
    in.XML(u"<VXA n1=\"nan\" n2=\"-nan\" blank=\" 5\" hex=\"0x10\" huge=\"1e500\" negzero=\"-0\" "
           u"tenth=\"0.1\" plus=\"+3\" word=\"True\" big=\"2147483648\" "
           u"long=\"1234567890123456789\" min=\"-9223372036854775808\" bad=\"1x\"/>");
    const auto bits = [](double d) { return std::bit_cast<uint64_t>(d); };
    double d = 0;
    in.Load(u"n1", d);
    EXPECT_EQ(bits(d), bits(std::strtod("nan", nullptr))); // 0x7FF8000000000000
    in.Load(u"n2", d);
    EXPECT_EQ(bits(d), 0xFFF8000000000000ull); // the unknown value, sign bit set
    in.Load(u"blank", d);
    EXPECT_EQ(d, 5.0);
    in.Load(u"hex", d);
    EXPECT_EQ(d, 16.0);
    in.Load(u"huge", d);
    EXPECT_EQ(d, std::numeric_limits<double>::infinity());
    in.Load(u"negzero", d);
    EXPECT_EQ(bits(d), 0x8000000000000000ull);
    in.Load(u"bad", d);
    EXPECT_EQ(bits(d), 0xFFF8000000000000ull); // no number: the unknown value
    float f = 0;
    in.Load(u"tenth", f);
    EXPECT_EQ(f, 0.1f);
    int32_t i = 0;
    in.Load(u"plus", i);
    EXPECT_EQ(i, 3);
    EXPECT_THROW(in.Load(u"big", i), CVXComError); // 2^31 does not fit
    bool b = false;
    in.Load(u"word", b);
    EXPECT_TRUE(b);
    int64_t n = 0;
    in.Load(u"long", n); // 19 digits: past the plain form, still exact
    EXPECT_EQ(n, 1234567890123456789);
    in.Load(u"min", n);
    EXPECT_EQ(n, std::numeric_limits<int64_t>::min());
}
