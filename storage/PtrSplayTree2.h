// CPtrSplayTree2: an untyped ordered set of void pointers whose nodes are also threaded on a
// doubly linked list in sort order, so that a host can walk on from any position without
// touching the tree.
//
// The tree is the design of CPtrTree (storage/PtrTree.h) with two differences: every insertion
// splays the new node to the root (to find its successor on the list), and every hundredth
// insertion runs the repair whatever the shape. A node is five words: data, two children, next
// and previous. The tree frees its nodes, never the data.
//
// A walk reads: pos = GetFirstPosition(); while (pos) data = GetNext(pos);
#pragma once

#include "platform/VXExport.h"

#include "platform/Object.h"
#include "platform/VXTypes.h"

#include <cstdint>

namespace vx VX_API {

struct CPtrSplayNode2 {
    void *m_pData;
    CPtrSplayNode2 *m_pLeft;
    CPtrSplayNode2 *m_pRight;
    CPtrSplayNode2 *m_pNext;
    CPtrSplayNode2 *m_pPrev;
};

// A host derives from this class and supplies nComp.
class CPtrSplayTree2 : public CObject {
public:
    CPtrSplayTree2() = default;
    CPtrSplayTree2(const CPtrSplayTree2 &) = delete;
    CPtrSplayTree2 &operator=(const CPtrSplayTree2 &) = delete;
    ~CPtrSplayTree2() override { EmptyTree(); }

    // Negative when a sorts before b, positive after, 0 when equal.
    virtual int nComp(const void *a, const void *b) = 0;

    // False for null and for data equal to some present.
    bool Insert(void *p);
    // True when found and removed. The data itself is not touched.
    bool Delete(const void *key);
    // The data equal to the key, splayed to the root; null when absent (the shape then stays).
    void *Lookup(const void *key);
    int32_t GetSize() const noexcept { return m_lSize; }
    // Frees every node, walking the list; the tree is empty afterwards.
    void EmptyTree() noexcept;

    POSITION GetFirstPosition() const noexcept { return ToPos(m_pFirst); }
    POSITION GetLastPosition() const noexcept { return ToPos(m_pLast); }
    // The data at the position; the position moves to the next (previous) node, null at the
    // end. A null position raises CInvalidArgException, as it does for the lists.
    void *GetNext(POSITION &pos) const;
    void *GetPrev(POSITION &pos) const;
    // The position of the smallest data with lo <= data <= hi, splayed to the root; null when
    // there is none.
    POSITION FirstInRange(void *lo, void *hi);

protected:
    using Node = CPtrSplayNode2;

    Node *m_pRoot = nullptr;
    Node *m_pFirst = nullptr;
    Node *m_pLast = nullptr;
    int32_t m_lSize = 0;

private:
    static POSITION ToPos(Node *pNode) noexcept { return reinterpret_cast<POSITION>(pNode); }
    static Node *ToNode(POSITION pos) noexcept { return reinterpret_cast<Node *>(pos); }
    static Node *NonNull(POSITION pos);
    // Puts a node that was just hung in the tree onto the list, before its successor.
    void LinkInOrder(Node *pNode);
    void UnlinkFromList(Node *pNode) noexcept;
};

} // namespace VX_API
