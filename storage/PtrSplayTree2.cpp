#include "storage/PtrSplayTree2.h"

#include "platform/Lists.h"
#include "storage/PtrTree.h"

namespace vx {

namespace {

// The comparison of one key with the data of the nodes.
class CKeyCmp {
public:
    CKeyCmp(CPtrSplayTree2 *pTree, const void *key) : m_pTree(pTree), m_key(key) {}
    int operator()(const CPtrSplayNode2 *n) const { return m_pTree->nComp(m_key, n->m_pData); }

private:
    CPtrSplayTree2 *m_pTree;
    const void *m_key;
};

} // namespace

bool CPtrSplayTree2::Insert(void *p) {
    if (!p) return false;
    uint32_t nDepth = 0;
    Node **ppLink = treedetail::ppQuickFind(&m_pRoot, CKeyCmp(this, p), nDepth);
    if (*ppLink) return false;
    *ppLink = new Node{p, nullptr, nullptr, nullptr, nullptr};
    LinkInOrder(*ppLink);
    ++m_lSize;
    // The repair runs at every hundredth insertion, without asking the balance rule.
    if (static_cast<uint32_t>(m_lSize) % treedetail::kRepairInterval == 0)
        treedetail::SplayHalfwayDeepest(
            &m_pRoot, [this](const Node *n) { return CKeyCmp(this, n->m_pData); });
    return true;
}

void CPtrSplayTree2::LinkInOrder(Node *pNode) {
    // The splay brings the new node to the root; its successor is then the leftmost node of
    // the right subtree.
    treedetail::pSplayFind(&m_pRoot, CKeyCmp(this, pNode->m_pData));
    Node *pSucc = treedetail::pStepNext(m_pRoot);
    if (pSucc) {
        pNode->m_pNext = pSucc;
        pNode->m_pPrev = pSucc->m_pPrev;
        (pSucc->m_pPrev ? pSucc->m_pPrev->m_pNext : m_pFirst) = pNode;
        pSucc->m_pPrev = pNode;
    } else {
        pNode->m_pPrev = m_pLast;
        (m_pLast ? m_pLast->m_pNext : m_pFirst) = pNode;
        m_pLast = pNode;
    }
}

bool CPtrSplayTree2::Delete(const void *key) {
    uint32_t nDepth = 0;
    Node **ppLink = treedetail::ppQuickFind(&m_pRoot, CKeyCmp(this, key), nDepth);
    if (!*ppLink) return false;
    Node *pNode = treedetail::pUnlink(ppLink);
    UnlinkFromList(pNode);
    delete pNode;
    --m_lSize;
    return true;
}

void CPtrSplayTree2::UnlinkFromList(Node *pNode) noexcept {
    // The ends are guarded too, so the first and the last element can be deleted as well; an
    // element with neighbours on both sides unlinks exactly as it always did.
    (pNode->m_pPrev ? pNode->m_pPrev->m_pNext : m_pFirst) = pNode->m_pNext;
    (pNode->m_pNext ? pNode->m_pNext->m_pPrev : m_pLast) = pNode->m_pPrev;
}

void *CPtrSplayTree2::Lookup(const void *key) {
    const Node *pNode = treedetail::pSplayFind(&m_pRoot, CKeyCmp(this, key));
    return pNode ? pNode->m_pData : nullptr;
}

void CPtrSplayTree2::EmptyTree() noexcept {
    for (Node *pNode = m_pFirst; pNode;) {
        Node *pNext = pNode->m_pNext;
        delete pNode;
        pNode = pNext;
    }
    m_pRoot = m_pFirst = m_pLast = nullptr;
    m_lSize = 0;
}

void *CPtrSplayTree2::GetNext(POSITION &pos) const {
    const Node *pNode = NonNull(pos);
    pos = ToPos(pNode->m_pNext);
    return pNode->m_pData;
}

void *CPtrSplayTree2::GetPrev(POSITION &pos) const {
    const Node *pNode = NonNull(pos);
    pos = ToPos(pNode->m_pPrev);
    return pNode->m_pData;
}

CPtrSplayNode2 *CPtrSplayTree2::NonNull(POSITION pos) {
    if (!pos) detail::ThrowCollectionError("null tree position");
    return ToNode(pos);
}

POSITION CPtrSplayTree2::FirstInRange(void *lo, void *hi) {
    return ToPos(treedetail::pSplayFirstInRange(&m_pRoot, CKeyCmp(this, lo), CKeyCmp(this, hi)));
}

} // namespace vx
