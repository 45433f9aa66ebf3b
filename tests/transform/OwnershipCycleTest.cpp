// Hostile binary archives whose back-references would make an owning container own itself, one
// of the objects that contain it, or an object another container owns already. Each must end in
// the archive's exception or load safely; every object made is freed exactly once.
#include "geometry/VXCoord.h"
#include "geometry/VXCoordArr.h"
#include "persist/ArchiveB.h"
#include "persist/LoadedObjects.h"
#include "persist/SerCollections.h"
#include "support/ArchiveTestSupport.h"
#include "transform/TransHelmert.h"

#include <gtest/gtest.h>

#include <string>

using namespace vx;
using vxtest::Bytes;
using vxtest::Load;
using vxtest::Store;

namespace {

// A new class and a new object of it: FF FF, schema, name length, name.
Bytes NewClass(const std::string &name, uint8_t schema = 1) {
    Bytes b = {0xFF, 0xFF, schema, 0x00, static_cast<uint8_t>(name.size()), 0x00};
    for (const char c : name)
        b.push_back(static_cast<uint8_t>(c));
    return b;
}

Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes &p : parts)
        all.insert(all.end(), p.begin(), p.end());
    return all;
}

// Reads the root object with an owner collecting; the cause of the archive's exception, or -1
// when the load succeeds. The owner frees what is left when the test ends.
int LoadRoot(const Bytes &bytes, CLoadedObjects &owner, ISerObject **root = nullptr) {
    const CLoadedObjects::CCollector collect(owner);
    try {
        Load(bytes, [&](CArchiveB &ar) {
            ISerObject *r = ar.ReadObject(nullptr);
            if (root) *root = r;
        });
    } catch (const CArchiveBException &e) {
        return e.m_cause;
    }
    return -1;
}

} // namespace

TEST(OwnershipCycles, ATableThatHoldsItselfIsRefused) {
    // The 21 bytes: class CTransTabel (index 1), the table (index 2), a run of 1 element that
    // refers to index 2, the table itself.
    const Bytes self = Cat({NewClass("CTransTabel"), {0x01, 0x00, 0x02, 0x00}});
    ASSERT_EQ(self.size(), 21u);
    CLoadedObjects owner;
    EXPECT_EQ(LoadRoot(self, owner), CArchiveBException::badClass);
    // The archive deleted the table it could not finish; nothing is left to free.
    EXPECT_EQ(owner.GetCount(), 0u);

    // Two tables, the inner one holding the outer one (indices 2 and 3, class 1 again by 01 80).
    const Bytes pair =
        Cat({NewClass("CTransTabel"), {0x01, 0x00, 0x01, 0x80, 0x01, 0x00, 0x02, 0x00}});
    EXPECT_EQ(LoadRoot(pair, owner), CArchiveBException::badClass);
    EXPECT_EQ(owner.GetCount(), 0u);
}

TEST(OwnershipCycles, ARecordNamedByTwoTablesStaysWithTheFirst) {
    // An array (2) of two tables: the first (4) reads a record (6), the second (7) names the
    // same record by its index. The second table must not own it too.
    const Bytes bytes = Cat({NewClass("CSerObArray", 0),
                             {0x02, 0x00},
                             NewClass("CTransTabel"),
                             {0x01, 0x00},
                             NewClass("CTransRecord"),
                             {0x03, 0x80, 0x01, 0x00, 0x06, 0x00}});
    CLoadedObjects owner;
    ISerObject *root = nullptr;
    ASSERT_EQ(LoadRoot(bytes, owner, &root), -1);
    auto *array = dynamic_cast<CSerObArray *>(root);
    ASSERT_NE(array, nullptr);
    auto *first = dynamic_cast<CTransTabel *>(array->GetAt(0));
    auto *second = dynamic_cast<CTransTabel *>(array->GetAt(1));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->GetCount(), 1);
    EXPECT_EQ(second->GetCount(), 0);
    // Array, two tables, one record; the owner frees them once each (the sanitizers watch).
    EXPECT_EQ(owner.GetCount(), 4u);
}

TEST(OwnershipCycles, APointSequenceOwnsOnlyWhatItRead) {
    // A host reads a point and an array, then a sequence whose run names both again. The
    // sequence takes a copy of the point, and leaves the array alone (its slot null, badClass).
    CVXCoord point(3.0, 4.0);
    CSerObArray other;
    const Bytes bytes = Store([&](CArchiveB &ar) {
        ar.WriteObject(&point);
        ar.WriteObject(&other);
        ar.WriteCount(2);
        ar.WriteObject(&point);
        ar.WriteObject(&other);
    });
    CLoadedObjects owner;
    const CLoadedObjects::CCollector collect(owner);
    CVXCoordArr line;
    ISerObject *p = nullptr, *o = nullptr;
    int cause = -1;
    Load(bytes, [&](CArchiveB &ar) {
        p = ar.ReadObject(nullptr);
        o = ar.ReadObject(nullptr);
        try {
            line.SerializeB(ar);
        } catch (const CArchiveBException &e) {
            cause = e.m_cause;
        }
    });
    EXPECT_EQ(cause, CArchiveBException::badClass);
    ASSERT_EQ(line.GetSize(), 2);
    ASSERT_NE(line.GetAt(0), nullptr);
    EXPECT_NE(line.GetAt(0), p);
    EXPECT_EQ(line.GetAt(0)->dGetX(), 3.0);
    EXPECT_EQ(line.CSerObArray::GetAt(1), nullptr);
    // Both objects read before are alive, held by the owner alone.
    EXPECT_TRUE(owner.Holds(p) && owner.Holds(o));
}
