#include "storage/Cache.h"
#include "platform/Errors.h"
#include "platform/File.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <vector>

using namespace vx;

namespace {

// A cache of ints over a vector "disk". It counts reads, writes per key and live objects, and
// can refuse reads of some keys or fail every write like a full disk.
class CTestCache : public CCache {
public:
    explicit CTestCache(uint16_t nMax, size_t nKeys = 64) : CCache(nMax), m_disk(nKeys, 0) {}
    ~CTestCache() override { DiscardCache(); }

    int Get(uint64_t key, bool bLock = false) {
        const auto *p = static_cast<const int *>(pGetObject(key, bLock));
        return p ? *p : -1;
    }
    void Set(uint64_t key, int value, bool bLock = false) {
        ++m_nLive;
        SetObject(key, new int(value), bLock);
    }
    // The keys from the most recent to the least recent.
    std::vector<uint64_t> Order() const {
        std::vector<uint64_t> keys;
        for (POSITION pos = m_List.GetHeadPosition(); pos;)
            keys.push_back(m_List.GetNext(pos).m_nKey);
        return keys;
    }
    const CCacheNode &Entry(uint64_t key) const {
        for (POSITION pos = m_List.GetHeadPosition(); pos;) {
            const CCacheNode &node = m_List.GetNext(pos);
            if (node.m_nKey == key) return node;
        }
        throw std::logic_error("key not cached");
    }

    std::vector<int> m_disk;
    std::map<uint64_t, int> m_writes;
    int m_nReads = 0;
    int m_nLive = 0;
    std::set<uint64_t> m_unreadable;
    bool m_bDiskFull = false;

protected:
    bool bLeesObject(uint64_t key, void **pp) override {
        ++m_nReads;
        if (m_unreadable.count(key)) return false;
        ++m_nLive;
        *pp = new int(m_disk.at(key));
        return true;
    }
    void SchrijfObject(uint64_t key, void *p) override {
        if (m_bDiskFull) throw CFileException(CFileException::diskFull, 28);
        m_disk.at(key) = *static_cast<int *>(p);
        ++m_writes[key];
    }
    void DeleteObject(void *p) override {
        --m_nLive;
        delete static_cast<int *>(p);
    }
};

using Keys = std::vector<uint64_t>;

} // namespace

TEST(Cache, LeastRecentlyUsedGoesFirst) {
    CTestCache cache(2);
    cache.m_disk[1] = 10;
    EXPECT_EQ(cache.Get(1), 10);
    cache.Get(2);
    cache.Get(3); // evicts before it comes in: 2 entries are not above the limit
    EXPECT_EQ(cache.Order(), Keys({3, 2, 1}));
    cache.Get(4); // 3 entries: the tail (1) goes, then 4 comes in
    EXPECT_EQ(cache.Order(), Keys({4, 3, 2}));
    // A hit moves to the head and evicts too: 3 entries, so the tail (3) goes.
    cache.Get(2);
    EXPECT_EQ(cache.Order(), Keys({2, 4}));
    // The head is answered without a read.
    const int nReads = cache.m_nReads;
    EXPECT_EQ(cache.Get(2), 0);
    EXPECT_EQ(cache.m_nReads, nReads);
    EXPECT_TRUE(cache.m_writes.empty()); // clean entries are never written
}

TEST(Cache, LocksProtectAndCount) {
    CTestCache cache(2);
    cache.Get(1, true);
    cache.Get(2);
    cache.Get(3);
    cache.Get(4); // the locked tail (1) is skipped, 2 goes instead
    EXPECT_EQ(cache.Order(), Keys({4, 3, 1}));

    // Two locking reads need two unlocks.
    cache.Get(1, true);
    EXPECT_EQ(cache.Entry(1).m_nLock, 2);
    EXPECT_TRUE(cache.bUnlock(1));
    EXPECT_TRUE(cache.bUnlock(1));
    EXPECT_EQ(cache.Entry(1).m_nLock, 0);
    EXPECT_FALSE(cache.bLock(99));
    EXPECT_FALSE(cache.bUnlock(99));

    // SetObject sets the count, it does not add to it.
    cache.Get(3, true);
    cache.Get(3, true);
    cache.Set(3, 30, false);
    EXPECT_EQ(cache.Entry(3).m_nLock, 0);
    cache.Set(3, 31, true);
    EXPECT_EQ(cache.Entry(3).m_nLock, 1);

    // Nothing guards the count: below 0 it wraps to 65535 and the entry stays locked.
    cache.Get(4);
    EXPECT_TRUE(cache.bUnlock(4));
    EXPECT_EQ(cache.Entry(4).m_nLock, 65535);
}

TEST(Cache, EveryEntryLockedStillAnswersAndNeverEvicts) {
    CTestCache cache(2);
    for (uint64_t k = 0; k < 6; ++k) {
        cache.m_disk[k] = static_cast<int>(100 + k);
        EXPECT_EQ(cache.Get(k, true), static_cast<int>(100 + k));
    }
    // Nothing could go: the cache overflows instead.
    EXPECT_EQ(cache.Order(), Keys({5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(cache.Get(0), 100); // a hit on a locked entry
    EXPECT_EQ(cache.GetCount(), 6);
    // Unlocked, the next access brings the count back to the limit, oldest first.
    for (uint64_t k = 0; k < 6; ++k)
        cache.bUnlock(k);
    cache.Get(5);
    EXPECT_EQ(cache.Order(), Keys({5, 0}));
}

TEST(Cache, DirtyEntriesAreWrittenExactlyOnce) {
    CTestCache cache(1);
    cache.Set(1, 11);
    cache.Get(2);
    cache.Get(3); // 1 goes, written
    EXPECT_EQ(cache.m_writes, (std::map<uint64_t, int>{{1, 1}}));
    EXPECT_EQ(cache.m_disk[1], 11);

    // ForceWrite writes now and leaves the entry dirty: it is written again when it goes.
    cache.Set(4, 44);
    cache.ForceWrite(4);
    EXPECT_TRUE(cache.Entry(4).m_bDirty);
    cache.Get(5);
    cache.Get(6);
    EXPECT_EQ(cache.m_writes[4], 2);
    EXPECT_THROW(cache.ForceWrite(99), CInvalidArgException);

    // bSetDirty marks a clean entry; bRemoveObject drops dirty data without a write.
    EXPECT_TRUE(cache.bSetDirty(6));
    EXPECT_FALSE(cache.bSetDirty(99));
    cache.Set(7, 77);
    EXPECT_TRUE(cache.bRemoveObject(7));
    EXPECT_FALSE(cache.bRemoveObject(7));
    EXPECT_EQ(cache.m_writes.count(7), 0u);
    EXPECT_EQ(cache.m_disk[7], 0);

    cache.DumpCache();
    EXPECT_EQ(cache.m_writes[6], 1);
    EXPECT_EQ(cache.GetCount(), 0);
    EXPECT_EQ(cache.m_nLive, 0);
}

TEST(Cache, FailedReadsAndWritesLeaveTheCacheWhole) {
    CTestCache cache(1);
    cache.Set(1, 11);
    cache.Get(2);
    cache.m_unreadable.insert(3);
    EXPECT_EQ(cache.Get(3), -1);
    EXPECT_EQ(cache.Order(), Keys({2, 1}));

    // The write of the evicted tail fails: the failure reaches the caller, the entry stays.
    cache.m_bDiskFull = true;
    EXPECT_THROW(cache.Get(4), CFileException);
    EXPECT_EQ(cache.Order(), Keys({2, 1}));
    EXPECT_TRUE(cache.Entry(1).m_bDirty);
    EXPECT_EQ(cache.m_nLive, 2); // the object read for 4 was destroyed

    // SetObject keeps its object even when the eviction fails, then raises.
    EXPECT_THROW(cache.Set(5, 55), CFileException);
    EXPECT_EQ(cache.Order(), Keys({5, 2, 1}));
    EXPECT_THROW(cache.DumpCache(), CFileException);
    EXPECT_EQ(cache.GetCount(), 3);

    cache.m_bDiskFull = false;
    cache.DumpCache();
    EXPECT_EQ(cache.m_disk[1], 11);
    EXPECT_EQ(cache.m_disk[5], 55);
    EXPECT_EQ(cache.m_writes, (std::map<uint64_t, int>{{1, 1}, {5, 1}}));
    EXPECT_EQ(cache.m_nLive, 0);
}

TEST(Cache, SetObjectProtectsTheEntryItFound) {
    // Limit 1 with two entries: setting the tail entry must not evict it; the other one goes.
    CTestCache cache(1);
    cache.Set(1, 10);
    cache.Get(2);
    EXPECT_EQ(cache.Order(), Keys({2, 1}));
    cache.Set(1, 12); // the old object of 1 is destroyed without a write
    EXPECT_EQ(cache.Order(), Keys({1}));
    EXPECT_EQ(cache.Get(1), 12);
    EXPECT_EQ(cache.m_writes.count(1), 0u);
    EXPECT_EQ(cache.m_nLive, 1);
}

TEST(Cache, RandomOperationsMatchAVectorModel) {
    // The model holds what a reader must see for each key; the cache's disk must equal it
    // after every flush. Locks are balanced at once, so eviction keeps running.
    constexpr size_t kKeys = 200;
    CTestCache cache(16, kKeys);
    std::vector<int> model(kKeys, 0);
    std::mt19937 rng(2024);
    std::uniform_int_distribution<uint64_t> key(0, kKeys - 1);
    std::uniform_int_distribution<int> op(0, 99);
    for (int step = 0; step < 20000; ++step) {
        const uint64_t k = key(rng);
        const int o = op(rng);
        if (o < 45) {
            ASSERT_EQ(cache.Get(k), model[k]) << step;
        } else if (o < 85) {
            model[k] = step;
            cache.Set(k, step, o % 2 == 0);
            if (o % 2 == 0) cache.bUnlock(k);
        } else if (o < 95) {
            ASSERT_EQ(cache.Get(k, true), model[k]) << step;
            cache.bUnlock(k);
        } else if (o < 98) {
            if (cache.bSetDirty(k)) cache.ForceWrite(k);
        } else {
            cache.DumpCache();
            ASSERT_EQ(cache.m_disk, model) << step;
        }
        ASSERT_LE(cache.GetCount(), 17) << step;
    }
    cache.DumpCache();
    EXPECT_EQ(cache.m_disk, model);
    EXPECT_EQ(cache.m_nLive, 0);
}
