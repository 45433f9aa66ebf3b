#include "storage/Cache.h"

#include "platform/Assert.h"
#include "platform/Errors.h"

#include <exception>
#include <memory>

namespace vx {

CCache::~CCache() {
    VX_ASSERT_TEXT(m_List.IsEmpty(), "CCache destroyed before DumpCache");
}

CRecToPos *CCache::pFindRec(uint64_t key) {
    CRecToPos probe{key, nullptr};
    return m_Tree.pLookup(&probe);
}

CCacheNode *CCache::pGetCacheNode(uint64_t key) {
    CRecToPos *pRec = pFindRec(key);
    return pRec ? &m_List.GetAt(pRec->m_pos) : nullptr;
}

void *CCache::pGetObject(uint64_t key, bool bLock) {
    // The most recent entry: no tree, no list move.
    if (!m_List.IsEmpty() && m_List.GetHead().m_nKey == key) {
        CCacheNode &head = m_List.GetHead();
        if (bLock) ++head.m_nLock;
        return head.m_pObject;
    }
    if (CRecToPos *pRec = pFindRec(key)) return pHit(*pRec, bLock);
    return pMiss(key, bLock);
}

void *CCache::pHit(CRecToPos &rec, bool bLock) {
    if (rec.m_pos != m_List.GetHeadPosition()) {
        const POSITION pos = m_List.AddHead(m_List.GetAt(rec.m_pos));
        m_List.RemoveAt(rec.m_pos);
        rec.m_pos = pos;
    }
    // Locked during the eviction, so the entry just found is never the one that goes.
    CCacheNode &node = m_List.GetAt(rec.m_pos);
    ++node.m_nLock;
    try {
        VerwijderTeVerwijderen();
    } catch (...) {
        --node.m_nLock;
        throw;
    }
    if (!bLock) --node.m_nLock;
    return node.m_pObject;
}

void *CCache::pMiss(uint64_t key, bool bLock) {
    void *p = nullptr;
    if (!bLeesObject(key, &p)) return nullptr;
    try {
        VerwijderTeVerwijderen(); // before the new entry comes in
    } catch (...) {
        DeleteObject(p);
        throw;
    }
    AddEntry(CCacheNode(key, p, false, bLock ? 1 : 0));
    return p;
}

void CCache::SetObject(uint64_t key, void *p, bool bLock) {
    CRecToPos *pRec = pFindRec(key);
    // The entry found is locked during the eviction (its count is set anew below anyway).
    if (pRec) ++m_List.GetAt(pRec->m_pos).m_nLock;
    std::exception_ptr pFailure;
    try {
        VerwijderTeVerwijderen();
    } catch (...) {
        pFailure = std::current_exception();
    }
    const uint16_t nLock = bLock ? 1 : 0;
    if (pRec) {
        CCacheNode &node = m_List.GetAt(pRec->m_pos);
        DeleteObject(node.m_pObject);
        node.m_pObject = p;
        node.m_bDirty = true;
        node.m_nLock = nLock;
    } else {
        AddEntry(CCacheNode(key, p, true, nLock));
    }
    if (pFailure) std::rethrow_exception(pFailure);
}

void CCache::AddEntry(const CCacheNode &node) {
    POSITION pos = nullptr;
    try {
        pos = m_List.AddHead(node);
        auto pRec = std::make_unique<CRecToPos>(CRecToPos{node.m_nKey, pos});
        m_Tree.bInsert(pRec.get());
        // Splayed in, so that keys that come in order (the common pattern) do not build a
        // chain: the tree's size stays at the limit, where its own repair never runs.
        m_Tree.pLookup(pRec.release());
    } catch (...) {
        if (pos) m_List.RemoveAt(pos);
        DeleteObject(node.m_pObject);
        throw;
    }
}

void CCache::RemoveEntry(POSITION pos, bool bWrite) {
    CCacheNode &node = m_List.GetAt(pos);
    // The write comes first: when it fails, the entry stays as it was.
    if (bWrite && node.m_bDirty) SchrijfObject(node.m_nKey, node.m_pObject);
    DeleteObject(node.m_pObject);
    const CRecToPos probe{node.m_nKey, nullptr};
    m_Tree.pLookup(&probe); // splayed out as well: the deletion then happens at the root
    m_Tree.bDelete(&probe);
    m_List.RemoveAt(pos);
}

void CCache::VerwijderTeVerwijderen() {
    POSITION pos = m_List.GetTailPosition();
    while (pos && static_cast<uint32_t>(m_List.GetCount()) > m_nMax) {
        const POSITION current = pos;
        const CCacheNode &node = m_List.GetPrev(pos);
        if (node.m_nLock == 0) RemoveEntry(current, true);
    }
}

bool CCache::bRemoveObject(uint64_t key) {
    CRecToPos *pRec = pFindRec(key);
    if (!pRec) return false;
    RemoveEntry(pRec->m_pos, false);
    return true;
}

bool CCache::bSetDirty(uint64_t key) {
    CCacheNode *pNode = pGetCacheNode(key);
    if (!pNode) return false;
    pNode->m_bDirty = true;
    return true;
}

bool CCache::bLock(uint64_t key) {
    CCacheNode *pNode = pGetCacheNode(key);
    if (!pNode) return false;
    ++pNode->m_nLock;
    return true;
}

bool CCache::bUnlock(uint64_t key) {
    CCacheNode *pNode = pGetCacheNode(key);
    if (!pNode) return false;
    --pNode->m_nLock; // may wrap: see the header
    return true;
}

void CCache::ForceWrite(uint64_t key) {
    CCacheNode *pNode = pGetCacheNode(key);
    if (!pNode) throw CInvalidArgException("CCache::ForceWrite: the key is not in the cache");
    SchrijfObject(pNode->m_nKey, pNode->m_pObject);
}

void CCache::DumpCache() {
    // Entry by entry from the head, so that a failed write leaves that entry and all after it
    // whole in the cache.
    while (!m_List.IsEmpty())
        RemoveEntry(m_List.GetHeadPosition(), true);
}

void CCache::DiscardCache() noexcept {
    while (!m_List.IsEmpty())
        RemoveEntry(m_List.GetHeadPosition(), false);
}

} // namespace vx
