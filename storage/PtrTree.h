// The library's ordered sets: CPtrTree<T> over object pointers and CSimpleTree<T> over unsigned
// numbers.
//
// Both are plain binary search trees kept fast by lazy means. A node is three words (the object
// or value and two children): no colour, height or parent field. Reads that look for a key
// (pLookup, pGetNext, pGetPrev, pFirstInRange) splay the node they find to the root, and every
// hundredth insertion, when the insertion itself went deeper than the balance rule allows, a
// repair splays the node halfway down the deepest path to the root, which roughly halves the
// worst path. Find is the only search that never restructures, so it is the only one safe on a
// const tree.
//
// Search paths are kept on an explicit stack instead of the call stack, so a degenerate tree
// (deletions can make one) never exhausts the thread's stack.
#pragma once

#include "platform/VXExport.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vx VX_API {

template <class T>
struct CObTreeNode {
    T *m_pObject;
    CObTreeNode *m_pLeft;
    CObTreeNode *m_pRight;
};

template <class T>
struct CSimpleTreeNode {
    T m_value;
    CSimpleTreeNode *m_pLeft;
    CSimpleTreeNode *m_pRight;
};

// Visitors of CPtrTree::ProcessTree. The B form stops the walk by returning true.
template <class T>
class CObjectProcessor {
public:
    virtual ~CObjectProcessor() = default;
    virtual void Process(T *pObject) = 0;
};

template <class T>
class CObjectProcessorB {
public:
    virtual ~CObjectProcessorB() = default;
    virtual bool bProcess(T *pObject) = 0;
};

template <class T>
class CSimpleProcessor {
public:
    virtual ~CSimpleProcessor() = default;
    virtual void Process(T value) = 0;
};

template <class T>
class CSimpleProcessorB {
public:
    virtual ~CSimpleProcessorB() = default;
    virtual bool bProcess(T value) = 0;
};

// The machinery both trees share. It works on any node with m_pLeft and m_pRight; searches take
// a function that compares the key with a node (negative: the key sorts before the node).
namespace treedetail {

// The balance rule: nDepth < 2·log2(nSize), with log2 taken as log10 / log10(2) in doubles.
bool bBalanced(uint32_t nSize, uint32_t nDepth);

// The links followed from the root down to a node: entry 0 is the root link, entry i the link
// in the node at depth i - 1. Short paths stay in the object; longer ones move to the heap.
template <class Node>
class CLinkPath {
public:
    void Push(Node **ppLink) {
        if (m_nSize < kInline)
            m_inline[m_nSize] = ppLink;
        else
            m_heap.push_back(ppLink);
        ++m_nSize;
    }
    Node **operator[](size_t i) const { return i < kInline ? m_inline[i] : m_heap[i - kInline]; }
    size_t Size() const noexcept { return m_nSize; }

private:
    static constexpr size_t kInline = 64;
    Node **m_inline[kInline];
    std::vector<Node **> m_heap;
    size_t m_nSize = 0;
};

// Rotates pChild, a child of the node in *ppParent, over that node: the child's inner subtree
// moves to the parent, the parent goes under the child and the child takes the link.
template <class Node>
void RotateUp(Node **ppParent, Node *pChild) {
    Node *pParent = *ppParent;
    if (pParent->m_pLeft == pChild) {
        pParent->m_pLeft = pChild->m_pRight;
        pChild->m_pRight = pParent;
    } else {
        pParent->m_pRight = pChild->m_pLeft;
        pChild->m_pLeft = pParent;
    }
    *ppParent = pChild;
}

// Splays the node at the first nSize links of the path up into the path's first link.
template <class Node>
void Splay(const CLinkPath<Node> &path, size_t nSize) {
    size_t i = nSize - 1;
    Node *pNode = *path[i];
    while (i > 0) {
        if (i == 1) { // parent only
            RotateUp(path[0], pNode);
            break;
        }
        Node *pParent = *path[i - 1];
        Node *pGrand = *path[i - 2];
        const bool bSameSide = (pGrand->m_pLeft == pParent) == (pParent->m_pLeft == pNode);
        if (bSameSide) { // parent over grandparent first, then node over parent
            RotateUp(path[i - 2], pParent);
            RotateUp(path[i - 2], pNode);
        } else { // node over parent, then over grandparent
            RotateUp(path[i - 1], pNode);
            RotateUp(path[i - 2], pNode);
        }
        i -= 2;
    }
}

// The plain search: the link at which the key is or would hang. nDepth counts the steps down.
template <class Node, class Cmp>
Node **ppQuickFind(Node **ppRoot, const Cmp &cmp, uint32_t &nDepth) {
    Node **ppLink = ppRoot;
    while (*ppLink) {
        const int c = cmp(*ppLink);
        if (c == 0) break;
        ppLink = c < 0 ? &(*ppLink)->m_pLeft : &(*ppLink)->m_pRight;
        ++nDepth;
    }
    return ppLink;
}

template <class Node, class Cmp>
Node *pQuickFindConst(Node *pNode, const Cmp &cmp) {
    while (pNode) {
        const int c = cmp(pNode);
        if (c == 0) break;
        pNode = c < 0 ? pNode->m_pLeft : pNode->m_pRight;
    }
    return pNode;
}

// Searches the key and splays its node to the root. Returns the node, or null when the key is
// absent; then nothing is restructured.
template <class Node, class Cmp>
Node *pSplayFind(Node **ppRoot, const Cmp &cmp) {
    CLinkPath<Node> path;
    for (Node **ppLink = ppRoot; *ppLink;) {
        path.Push(ppLink);
        const int c = cmp(*ppLink);
        if (c == 0) {
            Splay(path, path.Size());
            return *ppRoot;
        }
        ppLink = c < 0 ? &(*ppLink)->m_pLeft : &(*ppLink)->m_pRight;
    }
    return nullptr;
}

// The smallest node with lo <= node <= hi, splayed to the root; null when there is none.
// cmpLo and cmpHi compare lo and hi with a node.
template <class Node, class CmpLo, class CmpHi>
Node *pSplayFirstInRange(Node **ppRoot, const CmpLo &cmpLo, const CmpHi &cmpHi) {
    CLinkPath<Node> path;
    size_t nFound = 0; // path length up to the best node in range so far; 0 for none
    for (Node **ppLink = ppRoot; *ppLink;) {
        path.Push(ppLink);
        const int c = cmpLo(*ppLink);
        if (c > 0) {
            ppLink = &(*ppLink)->m_pRight;
            continue;
        }
        // The node is at or above lo. With hi below it, only the left side can hold an answer.
        // This test also runs for a node equal to lo, so that lo above hi finds nothing.
        if (cmpHi(*ppLink) < 0) {
            ppLink = &(*ppLink)->m_pLeft;
            continue;
        }
        nFound = path.Size();
        if (c == 0) break; // nothing smaller can be in range
        ppLink = &(*ppLink)->m_pLeft;
    }
    if (nFound == 0) return nullptr;
    Splay(path, nFound);
    return *ppRoot;
}

// Unlinks the node in *ppLink: the link takes the right subtree, and the left subtree hangs at
// the leftmost free left link below it (straight into the link when there is no right subtree).
// Returns the unlinked node.
template <class Node>
Node *pUnlink(Node **ppLink) {
    Node *pNode = *ppLink;
    *ppLink = pNode->m_pRight;
    if (!pNode->m_pLeft) return pNode; // nothing to hang: the walk would change nothing
    while (*ppLink)
        ppLink = &(*ppLink)->m_pLeft;
    *ppLink = pNode->m_pLeft;
    return pNode;
}

template <class Node>
Node *pLeftmost(Node *pNode) {
    if (pNode)
        while (pNode->m_pLeft)
            pNode = pNode->m_pLeft;
    return pNode;
}

template <class Node>
Node *pRightmost(Node *pNode) {
    if (pNode)
        while (pNode->m_pRight)
            pNode = pNode->m_pRight;
    return pNode;
}

// The neighbour of the root after its splay: one step right (left), then all the way left
// (right). Null when there is no such child.
template <class Node>
Node *pStepNext(Node *pNode) {
    return pNode && pNode->m_pRight ? pLeftmost(pNode->m_pRight) : nullptr;
}

template <class Node>
Node *pStepPrev(Node *pNode) {
    return pNode && pNode->m_pLeft ? pRightmost(pNode->m_pLeft) : nullptr;
}

// Visits the nodes with fVisit(node) until it returns true; returns whether it did. In the
// plain order every node takes its left subtree first. In the alternating order a counter goes
// up by one at each level, starting at 1 at the root: at an odd count the left subtree comes
// first, at an even count the right one.
template <class Node, class Visit>
bool bVisit(Node *pRoot, bool bAlternate, const Visit &fVisit) {
    auto first = [bAlternate](const Node *p, uint32_t nLevel) {
        return bAlternate && nLevel % 2 == 0 ? p->m_pRight : p->m_pLeft;
    };
    auto second = [bAlternate](const Node *p, uint32_t nLevel) {
        return bAlternate && nLevel % 2 == 0 ? p->m_pLeft : p->m_pRight;
    };
    std::vector<std::pair<Node *, uint32_t>> stack;
    Node *pNode = pRoot;
    uint32_t nLevel = 1;
    for (;;) {
        for (; pNode; ++nLevel) {
            stack.emplace_back(pNode, nLevel);
            pNode = first(pNode, nLevel);
        }
        if (stack.empty()) return false;
        const auto [pTop, nTopLevel] = stack.back();
        stack.pop_back();
        if (fVisit(pTop)) return true;
        pNode = second(pTop, nTopLevel);
        nLevel = nTopLevel + 1;
    }
}

// The probe of the repair: the node found, the greatest depth seen and the current depth. The
// depths are 16 bits wide, as the walk has always kept them.
template <class Node>
struct CDProbe {
    Node *m_pFound = nullptr;
    uint16_t m_nMaxDepth = 0;
    uint16_t m_nDepth = 0;
};

// Walks the whole tree, depth first, left before right (the root at depth 1). After both
// subtrees of a node are done, the node is taken when its depth equals half (rounded down) the
// greatest depth seen so far. The last node taken lies about halfway down the deepest path.
template <class Node>
Node *pGoDepth(Node *pRoot) {
    CDProbe<Node> probe;
    std::vector<Node *> path; // from the root to the node in hand
    Node *pNode = pRoot;      // the next node to enter, or null to finish the top of the path
    const Node *pDone = nullptr;
    while (pNode || !path.empty()) {
        if (pNode) {
            path.push_back(pNode);
            ++probe.m_nDepth;
            if (probe.m_nDepth > probe.m_nMaxDepth) probe.m_nMaxDepth = probe.m_nDepth;
            // The right child is wanted after the left subtree: fetch it early, the walk is
            // bound by memory latency.
            __builtin_prefetch(pNode->m_pRight);
            pNode = pNode->m_pLeft;
            continue;
        }
        Node *pTop = path.back();
        if (pTop->m_pRight && pDone != pTop->m_pRight) { // the right subtree is still to do
            pNode = pTop->m_pRight;
            continue;
        }
        if (probe.m_nDepth == probe.m_nMaxDepth / 2) probe.m_pFound = pTop;
        --probe.m_nDepth;
        pDone = pTop;
        path.pop_back();
    }
    return probe.m_pFound;
}

// The repair after an insertion that went nDepth steps down into a tree of nSize nodes: every
// hundredth insertion, when that insertion broke the balance rule, the node halfway down the
// deepest path is splayed to the root. cmpOf(node) gives the comparison with that node's key.
template <class Node, class CmpOf>
void SplayHalfwayDeepest(Node **ppRoot, const CmpOf &cmpOf) {
    if (const Node *pHalfway = pGoDepth(*ppRoot)) pSplayFind(ppRoot, cmpOf(pHalfway));
}

// Every this many insertions the trees consider a repair.
constexpr uint32_t kRepairInterval = 100;

template <class Node, class CmpOf>
void RepairAfterInsert(Node **ppRoot, uint32_t nSize, uint32_t nDepth, const CmpOf &cmpOf) {
    if (nSize % kRepairInterval != 0 || bBalanced(nSize, nDepth)) return;
    SplayHalfwayDeepest(ppRoot, cmpOf);
}

// Hangs a clone of the tree at pSource into the empty link ppRoot, keeping the shape;
// fClone(source node) makes a childless clone. nSize is counted per node, so a failed
// allocation leaves a consistent (partial) tree.
template <class Node, class Clone>
void CloneShape(const Node *pSource, Node **ppRoot, uint32_t &nSize, const Clone &fClone) {
    // Each pending pair is a source node and the link its clone goes to.
    std::vector<std::pair<const Node *, Node **>> pending;
    if (pSource) pending.emplace_back(pSource, ppRoot);
    while (!pending.empty()) {
        const auto [pFrom, ppLink] = pending.back();
        pending.pop_back();
        *ppLink = fClone(pFrom);
        ++nSize;
        if (pFrom->m_pLeft) pending.emplace_back(pFrom->m_pLeft, &(*ppLink)->m_pLeft);
        if (pFrom->m_pRight) pending.emplace_back(pFrom->m_pRight, &(*ppLink)->m_pRight);
    }
}

// Frees every node, calling fFree(node) on each first, without recursion: a left child is
// rotated up until the node in front has none, and that node is freed.
template <class Node, class Free>
void DestroyAll(Node *&pRoot, const Free &fFree) {
    while (pRoot) {
        Node *pNode = pRoot;
        if (pNode->m_pLeft) {
            pRoot = pNode->m_pLeft;
            pNode->m_pLeft = pRoot->m_pRight;
            pRoot->m_pRight = pNode;
            continue;
        }
        pRoot = pNode->m_pRight;
        fFree(pNode);
        delete pNode;
    }
}

} // namespace treedetail

// The ordered set of object pointers. A derived class supplies nComp. With bEigenaar the tree
// owns its objects and deletes them with their nodes.
//
// Copying is disabled: a copy of the header would share the nodes, and both trees would then
// free them. Moving hands the nodes over and leaves the source empty.
template <class T>
class CPtrTree {
public:
    explicit CPtrTree(bool bEigenaar) : m_bEigenaar(bEigenaar) {}
    CPtrTree(const CPtrTree &) = delete;
    CPtrTree &operator=(const CPtrTree &) = delete;
    CPtrTree(CPtrTree &&other) noexcept
        : m_lSize(std::exchange(other.m_lSize, 0)), m_bEigenaar(other.m_bEigenaar),
          m_pRoot(std::exchange(other.m_pRoot, nullptr)) {}
    CPtrTree &operator=(CPtrTree &&other) noexcept {
        if (this != &other) {
            EmptyTree();
            m_lSize = std::exchange(other.m_lSize, 0);
            m_bEigenaar = other.m_bEigenaar;
            m_pRoot = std::exchange(other.m_pRoot, nullptr);
        }
        return *this;
    }
    virtual ~CPtrTree() { EmptyTree(); }

    // Negative when a sorts before b, positive after, 0 when equal.
    virtual int nComp(const T *a, const T *b) const = 0;

    // False for null and for an object equal to one present; the tree then stays as it was.
    bool bInsert(T *p);
    bool bInsert(const T *p) { return bInsert(const_cast<T *>(p)); }
    // Removes the node of the key (no splay); the object is deleted when the tree owns it.
    bool bDelete(const T *key);
    // Removes the node of the key and hands its object back, never deleting it.
    T *pDelete(const T *key);
    // The object equal to the key, splayed to the root; null when absent.
    T *pLookup(const T *key) {
        Node *pNode = treedetail::pSplayFind(&m_pRoot, Cmp(key));
        return pNode ? pNode->m_pObject : nullptr;
    }
    // The object equal to the key without any restructuring; one nComp per node on the path.
    T *Find(const T *key) const {
        const Node *pNode = treedetail::pQuickFindConst(m_pRoot, Cmp(key));
        return pNode ? pNode->m_pObject : nullptr;
    }
    T *pGetMin() const { return Object(treedetail::pLeftmost(m_pRoot)); }
    T *pGetMax() const { return Object(treedetail::pRightmost(m_pRoot)); }
    // The neighbours in order, after splaying the argument; null gives the first (last).
    T *pGetNext(const T *p);
    T *pGetPrev(const T *p);
    // The n-th object in order, by stepping with pGetNext from the minimum: linear in n, and it
    // reshapes the tree as it goes. Null when n is not below the size.
    T *pGetAt(uint32_t n);
    // The place of the object in order, counted the same way; -1 when it is not in the tree.
    int nGetIndex(const T *p);
    // The smallest object with lo <= object <= hi, splayed to the root; null when none (also
    // whenever lo is above hi).
    T *pFirstInRange(const T *lo, const T *hi) {
        return Object(treedetail::pSplayFirstInRange(&m_pRoot, Cmp(lo), Cmp(hi)));
    }

    uint32_t lGetSize() const noexcept { return m_lSize; }
    bool bIsEmpty() const noexcept { return m_lSize == 0; }
    // Removes all nodes, deleting the objects when the tree owns them.
    void EmptyTree();

    // Visits in order.
    void ProcessTree(CObjectProcessor<T> *pProc) const {
        treedetail::bVisit(m_pRoot, false, [pProc](Node *n) {
            pProc->Process(n->m_pObject);
            return false;
        });
    }
    // Visits in order until the processor returns true; the result says whether it did.
    bool ProcessTree(CObjectProcessorB<T> *pProc) const {
        return treedetail::bVisit(m_pRoot, false,
                                  [pProc](Node *n) { return pProc->bProcess(n->m_pObject); });
    }
    // Visits level by level alternating between left-first and right-first (left first at the
    // root). Feeding a sorted tree into another one in this order avoids the degenerate chain
    // that an in-order feed builds.
    void ProcessTreeWissel(CObjectProcessor<T> *pProc) const {
        treedetail::bVisit(m_pRoot, true, [pProc](Node *n) {
            pProc->Process(n->m_pObject);
            return false;
        });
    }

    static bool Balanced(uint32_t nSize, uint32_t nDepth) {
        return treedetail::bBalanced(nSize, nDepth);
    }

protected:
    using Node = CObTreeNode<T>;

    // For derived trees that own their objects and want real copies: empties this tree and
    // clones the other's nodes with copies of their objects (T's copy constructor), keeping
    // the shape. The ownership flag stays this tree's.
    void CloneFrom(const CPtrTree &other);

    uint32_t m_lSize = 0;
    bool m_bEigenaar;
    Node *m_pRoot = nullptr;

private:
    // The comparison of one key with the objects of the nodes.
    class CKeyCmp {
    public:
        CKeyCmp(const CPtrTree *pTree, const T *key) : m_pTree(pTree), m_key(key) {}
        int operator()(const Node *n) const { return m_pTree->nComp(m_key, n->m_pObject); }

    private:
        const CPtrTree *m_pTree;
        const T *m_key;
    };
    CKeyCmp Cmp(const T *key) const { return {this, key}; }
    static T *Object(const Node *n) { return n ? n->m_pObject : nullptr; }
};

// A pointer tree over objects of the library's class families; it adds nothing.
template <class T>
class CObTree : public CPtrTree<T> {
public:
    explicit CObTree(bool bEigenaar) : CPtrTree<T>(bEigenaar) {}
};

template <class T>
bool CPtrTree<T>::bInsert(T *p) {
    if (!p) return false;
    uint32_t nDepth = 0;
    Node **ppLink = treedetail::ppQuickFind(&m_pRoot, Cmp(p), nDepth);
    if (*ppLink) return false;
    *ppLink = new Node{p, nullptr, nullptr};
    ++m_lSize;
    treedetail::RepairAfterInsert(&m_pRoot, m_lSize, nDepth,
                                  [this](const Node *n) { return Cmp(n->m_pObject); });
    return true;
}

template <class T>
T *CPtrTree<T>::pDelete(const T *key) {
    uint32_t nDepth = 0;
    Node **ppLink = treedetail::ppQuickFind(&m_pRoot, Cmp(key), nDepth);
    if (!*ppLink) return nullptr;
    Node *pNode = treedetail::pUnlink(ppLink);
    T *pObject = pNode->m_pObject;
    delete pNode;
    --m_lSize;
    return pObject;
}

template <class T>
bool CPtrTree<T>::bDelete(const T *key) {
    // Objects are never null in the tree, so null from pDelete means not found.
    T *pObject = pDelete(key);
    if (!pObject) return false;
    if (m_bEigenaar) delete pObject;
    return true;
}

template <class T>
T *CPtrTree<T>::pGetNext(const T *p) {
    if (!p) return pGetMin();
    return Object(treedetail::pStepNext(treedetail::pSplayFind(&m_pRoot, Cmp(p))));
}

template <class T>
T *CPtrTree<T>::pGetPrev(const T *p) {
    if (!p) return pGetMax();
    return Object(treedetail::pStepPrev(treedetail::pSplayFind(&m_pRoot, Cmp(p))));
}

template <class T>
T *CPtrTree<T>::pGetAt(uint32_t n) {
    if (n >= m_lSize) return nullptr;
    T *p = pGetMin();
    for (uint32_t i = 0; i < n && p; ++i)
        p = pGetNext(p);
    return p;
}

template <class T>
int CPtrTree<T>::nGetIndex(const T *p) {
    if (!p) return -1;
    int nIndex = 0;
    for (T *q = pGetMin(); q; q = pGetNext(q), ++nIndex)
        if (nComp(q, p) == 0) return nIndex;
    return -1;
}

template <class T>
void CPtrTree<T>::EmptyTree() {
    const bool bOwner = m_bEigenaar;
    treedetail::DestroyAll(m_pRoot, [bOwner](Node *n) {
        if (bOwner) delete n->m_pObject;
    });
    m_lSize = 0;
}

template <class T>
void CPtrTree<T>::CloneFrom(const CPtrTree &other) {
    if (this == &other) return;
    EmptyTree();
    treedetail::CloneShape(other.m_pRoot, &m_pRoot, m_lSize, [](const Node *pSource) {
        auto pObject = std::make_unique<T>(*pSource->m_pObject);
        auto pNode = std::make_unique<Node>(Node{nullptr, nullptr, nullptr});
        pNode->m_pObject = pObject.release();
        return pNode.release();
    });
}

// The same structure over unsigned numbers held in the nodes. Copies are deep.
template <class T>
class CSimpleTree {
public:
    CSimpleTree() = default;
    CSimpleTree(const CSimpleTree &other) { Copy(other); }
    CSimpleTree &operator=(const CSimpleTree &other) {
        Copy(other);
        return *this;
    }
    ~CSimpleTree() { EmptyTree(); }

    static int nComp(T a, T b) { return a < b ? -1 : (a > b ? 1 : 0); }

    bool bInsert(T value);
    bool bDelete(T value);
    // Splays the value's node to the root.
    bool bLookup(T value) { return treedetail::pSplayFind(&m_pRoot, KeyCmp{value}) != nullptr; }
    // The value inside its node, without restructuring; null when absent.
    const T *Find(T value) const {
        return Value(treedetail::pQuickFindConst(m_pRoot, KeyCmp{value}));
    }
    const T *pGetMin() const { return Value(treedetail::pLeftmost(m_pRoot)); }
    const T *pGetMax() const { return Value(treedetail::pRightmost(m_pRoot)); }
    // Null gives the first (last). The pointers stay valid while the value is in the tree.
    const T *pGetNext(const T *p) {
        if (!p) return pGetMin();
        return Value(treedetail::pStepNext(treedetail::pSplayFind(&m_pRoot, KeyCmp{*p})));
    }
    const T *pGetPrev(const T *p) {
        if (!p) return pGetMax();
        return Value(treedetail::pStepPrev(treedetail::pSplayFind(&m_pRoot, KeyCmp{*p})));
    }
    const T *pFirstInRange(T lo, T hi) {
        return Value(treedetail::pSplayFirstInRange(&m_pRoot, KeyCmp{lo}, KeyCmp{hi}));
    }

    uint32_t lGetSize() const noexcept { return m_lSize; }
    bool bIsEmpty() const noexcept { return m_lSize == 0; }
    void EmptyTree() {
        treedetail::DestroyAll(m_pRoot, [](Node *) {});
        m_lSize = 0;
    }

    void ProcessTree(CSimpleProcessor<T> *pProc) const {
        treedetail::bVisit(m_pRoot, false, [pProc](Node *n) {
            pProc->Process(n->m_value);
            return false;
        });
    }
    bool ProcessTree(CSimpleProcessorB<T> *pProc) const {
        return treedetail::bVisit(m_pRoot, false,
                                  [pProc](Node *n) { return pProc->bProcess(n->m_value); });
    }
    void ProcessTreeWissel(CSimpleProcessor<T> *pProc) const {
        treedetail::bVisit(m_pRoot, true, [pProc](Node *n) {
            pProc->Process(n->m_value);
            return false;
        });
    }

    // Empties this tree and clones the other's nodes, keeping their shape.
    void Copy(const CSimpleTree &other);
    // Inserts every value of the other tree, fed in the alternating order.
    void Add(const CSimpleTree &other);

protected:
    using Node = CSimpleTreeNode<T>;

    uint32_t m_lSize = 0;
    Node *m_pRoot = nullptr;

private:
    struct KeyCmp {
        T m_key;
        int operator()(const Node *n) const { return nComp(m_key, n->m_value); }
    };
    static const T *Value(const Node *n) { return n ? &n->m_value : nullptr; }
};

// Inserts every value it is given into its destination tree.
template <class T>
class CSimpleTreeAdder : public CSimpleProcessor<T> {
public:
    explicit CSimpleTreeAdder(CSimpleTree<T> &dest) : m_dest(dest) {}
    void Process(T value) override { m_dest.bInsert(value); }

private:
    CSimpleTree<T> &m_dest;
};

template <class T>
bool CSimpleTree<T>::bInsert(T value) {
    uint32_t nDepth = 0;
    Node **ppLink = treedetail::ppQuickFind(&m_pRoot, KeyCmp{value}, nDepth);
    if (*ppLink) return false;
    *ppLink = new Node{value, nullptr, nullptr};
    ++m_lSize;
    treedetail::RepairAfterInsert(&m_pRoot, m_lSize, nDepth,
                                  [](const Node *n) { return KeyCmp{n->m_value}; });
    return true;
}

template <class T>
bool CSimpleTree<T>::bDelete(T value) {
    uint32_t nDepth = 0;
    Node **ppLink = treedetail::ppQuickFind(&m_pRoot, KeyCmp{value}, nDepth);
    if (!*ppLink) return false;
    delete treedetail::pUnlink(ppLink);
    --m_lSize;
    return true;
}

template <class T>
void CSimpleTree<T>::Copy(const CSimpleTree &other) {
    if (this == &other) return;
    EmptyTree();
    treedetail::CloneShape(other.m_pRoot, &m_pRoot, m_lSize, [](const Node *pSource) {
        return new Node{pSource->m_value, nullptr, nullptr};
    });
}

template <class T>
void CSimpleTree<T>::Add(const CSimpleTree &other) {
    if (this == &other) return; // every value is present already
    CSimpleTreeAdder<T> adder(*this);
    other.ProcessTreeWissel(&adder);
}

class CWordSplayTree : public CSimpleTree<uint16_t> {
public:
    CWordSplayTree() = default;
    CWordSplayTree(const CWordSplayTree &other) = default;
    CWordSplayTree &operator=(const CWordSplayTree &other) = default;
    ~CWordSplayTree() = default;
};

class CULongSplayTree : public CSimpleTree<uint32_t> {
public:
    CULongSplayTree() = default;
    CULongSplayTree(const CULongSplayTree &other) = default;
    CULongSplayTree &operator=(const CULongSplayTree &other) = default;
    ~CULongSplayTree() = default;
};

extern template class CSimpleTree<uint16_t>;
extern template class CSimpleTree<uint32_t>;

} // namespace VX_API
