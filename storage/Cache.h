// CCache: a bounded, write-back, least-recently-used cache of opaque objects keyed by a 64-bit
// number. A subclass says how to read, write and destroy one object; the cache decides when.
//
// Entries sit on a list in order of use (most recent at the head), and a tree finds the list
// position of a key. Access to the most recent entry touches neither: one comparison. Every
// other access is a tree search and a constant list move.
//
// Eviction starts when the number of entries is above the limit, walks from the least recently
// used end, skips locked entries, writes a dirty entry back (exactly once: an entry leaves the
// cache only after its write succeeded) and destroys it. A miss evicts before the new entry
// comes in, so the cache can hold one entry more than its limit; when every entry is locked,
// nothing goes and the cache simply grows.
//
// A failure of the subclass's write passes to the caller of the operation that evicted; the
// entry whose write failed stays in the cache as it was, dirty, so nothing is lost.
//
// One thread at a time: reads reorder the list and splay the tree.
#pragma once

#include "platform/VXExport.h"

#include "platform/Lists.h"
#include "platform/Object.h"
#include "platform/VXTypes.h"
#include "storage/PtrTree.h"

#include <cstdint>

namespace vx VX_API {

// What the tree holds: a key and the list position of its entry.
struct CRecToPos {
    uint64_t m_nKey;
    POSITION m_pos;
};

// The key-to-position tree; it owns its records. Copies are deep (records of their own with the
// same keys and positions).
class CCacheTree : public CPtrTree<CRecToPos> {
public:
    CCacheTree() : CPtrTree<CRecToPos>(true) {}
    CCacheTree(const CCacheTree &other) : CCacheTree() { CloneFrom(other); }
    CCacheTree &operator=(const CCacheTree &other) {
        CloneFrom(other);
        return *this;
    }
    ~CCacheTree() override = default;

    int nComp(const CRecToPos *a, const CRecToPos *b) const override {
        return a->m_nKey < b->m_nKey ? -1 : (a->m_nKey > b->m_nKey ? 1 : 0);
    }
};

// One entry of the cache.
class CCacheNode : public CObject {
public:
    CCacheNode() = default;
    CCacheNode(uint64_t nKey, void *pObject, bool bDirty, uint16_t nLock)
        : m_nKey(nKey), m_pObject(pObject), m_bDirty(bDirty), m_nLock(nLock) {}

    uint64_t m_nKey = 0;
    void *m_pObject = nullptr; // owned by the cache
    bool m_bDirty = false;     // must be written before it is dropped
    uint16_t m_nLock = 0;      // a locked entry is never evicted
};

class CCache : public CObject {
public:
    explicit CCache(uint16_t nMax) : m_nMax(nMax) {}
    CCache(const CCache &) = delete;
    CCache &operator=(const CCache &) = delete;
    // The subclass must have emptied the cache (DumpCache) in its own destructor: here its
    // operations are gone, so remaining entries are reported and their objects cannot be
    // written or destroyed.
    ~CCache() override;

    // The object of the key, read with bLeesObject on a miss; null when that read fails (the
    // cache is then unchanged). With bLock the entry's lock count goes up by one.
    void *pGetObject(uint64_t key, bool bLock);
    // The cache takes the object over, dirty. An entry present keeps its place in the list; its
    // old object is destroyed without a write-back and its lock count is set (1 with bLock,
    // else 0), not added to. Should the eviction fail, the object is stored all the same and
    // the failure raised afterwards.
    void SetObject(uint64_t key, void *p, bool bLock);
    // Drops the entry and destroys its object with no write-back: dirty data is lost, by design.
    bool bRemoveObject(uint64_t key);
    bool bSetDirty(uint64_t key);
    bool bLock(uint64_t key);
    // Nothing guards the count against running below 0: it wraps to 65535, which locks the
    // entry for good. Kept on purpose: callers balance their locks themselves.
    bool bUnlock(uint64_t key);
    // Writes the entry now; it stays dirty, so it is written once more when it goes. A key that
    // is not in the cache raises CInvalidArgException.
    void ForceWrite(uint64_t key);
    // Writes every dirty entry back and destroys all objects and entries. A failed write stops
    // it; that entry and those not yet reached stay in the cache.
    void DumpCache();

    // The number of entries.
    int32_t GetCount() const noexcept { return m_List.GetCount(); }

protected:
    // Reads the object of the key into a new object; false when it can't be had.
    virtual bool bLeesObject(uint64_t key, void **pp) = 0;
    virtual void SchrijfObject(uint64_t key, void *p) = 0;
    virtual void DeleteObject(void *p) = 0;

    // Destroys all objects and entries without writing anything back (for a subclass whose
    // storage goes away with it).
    void DiscardCache() noexcept;

    uint32_t m_nMax; // a 16-bit limit in a wider field
    CCacheTree m_Tree;
    CBlockList<CCacheNode> m_List;

private:
    CRecToPos *pFindRec(uint64_t key);
    CCacheNode *pGetCacheNode(uint64_t key);
    void *pHit(CRecToPos &rec, bool bLock);
    void *pMiss(uint64_t key, bool bLock);
    // Puts a new entry at the head of the list and into the tree. When that fails, the object
    // is destroyed (the cache had taken it over) and the failure raised.
    void AddEntry(const CCacheNode &node);
    // Writes the entry back when bWrite and it is dirty, destroys its object, drops the entry.
    void RemoveEntry(POSITION pos, bool bWrite);
    // Eviction: from the tail, unlocked entries go until the count is not above the limit.
    void VerwijderTeVerwijderen();
};

} // namespace VX_API
