// The two collection engines of the library and the platform's plain collections.
//
// CBlockList<T> is a doubly linked list whose nodes come in blocks: a freed node goes on a free
// list threaded through pNext and is reused by the next insertion, and when the count returns to
// 0 all blocks are given back. A POSITION is the address of a node, so it stays valid across
// insertions and removals of other elements.
//
// CGrowArray<T> is a growable array with the classic growth rule: the step is the stored grow-by
// when not 0, otherwise an eighth of the current size, at least 4 and at most 1024. Elements
// are moved by plain memory copies, so T must be trivially relocatable: pointers, words and
// CVXString (one pointer, no address-dependent state) qualify.
//
// Neither engine deletes what its elements point to. Programming errors (a negative size, an
// index out of range, RemoveHead on an empty list, a null position) raise CInvalidArgException;
// a failed allocation raises std::bad_alloc.
#pragma once

#include "platform/VXExport.h"

#include "platform/Object.h"
#include "platform/VXTypes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace vx VX_API {

namespace detail {
// Raises CInvalidArgException with `what` (kept out of line so the templates stay small).
[[noreturn]] void ThrowCollectionError(const char *what);
} // namespace detail

template <class T>
class CBlockList {
public:
    struct CNode {
        CNode *pNext;
        CNode *pPrev;
        T data;
    };

    explicit CBlockList(int32_t nBlockSize = 10) : m_nBlockSize(nBlockSize) {
        if (nBlockSize < 1) detail::ThrowCollectionError("list block size must be at least 1");
    }
    // Nodes per allocated block.
    int32_t GetBlockSize() const noexcept { return m_nBlockSize; }
    // Copies the elements (pointers are copied, not what they point to) and the block size.
    CBlockList(const CBlockList &other) : CBlockList(other.m_nBlockSize) { AddListTail(&other); }
    CBlockList &operator=(const CBlockList &other) {
        if (this != &other) {
            RemoveAll();
            AddListTail(&other);
        }
        return *this;
    }
    ~CBlockList() { RemoveAll(); }

    int32_t GetCount() const noexcept { return m_nCount; }
    int32_t GetSize() const noexcept { return m_nCount; }
    bool IsEmpty() const noexcept { return m_nCount == 0; }

    T &GetHead() { return NonEmpty(m_pNodeHead)->data; }
    const T &GetHead() const { return NonEmpty(m_pNodeHead)->data; }
    T &GetTail() { return NonEmpty(m_pNodeTail)->data; }
    const T &GetTail() const { return NonEmpty(m_pNodeTail)->data; }

    POSITION GetHeadPosition() const noexcept { return ToPos(m_pNodeHead); }
    POSITION GetTailPosition() const noexcept { return ToPos(m_pNodeTail); }

    // The element at pos; pos moves to the next (or previous) node, null past the end.
    T &GetNext(POSITION &pos) { return Step(pos, true)->data; }
    const T &GetNext(POSITION &pos) const { return Step(pos, true)->data; }
    T &GetPrev(POSITION &pos) { return Step(pos, false)->data; }
    const T &GetPrev(POSITION &pos) const { return Step(pos, false)->data; }

    T &GetAt(POSITION pos) { return ToNode(pos)->data; }
    const T &GetAt(POSITION pos) const { return ToNode(pos)->data; }
    void SetAt(POSITION pos, const T &value) { ToNode(pos)->data = value; }

    POSITION AddHead(const T &value) {
        CNode *node = NewNode(nullptr, m_pNodeHead, value);
        (m_pNodeHead ? m_pNodeHead->pPrev : m_pNodeTail) = node;
        m_pNodeHead = node;
        return ToPos(node);
    }
    POSITION AddTail(const T &value) {
        CNode *node = NewNode(m_pNodeTail, nullptr, value);
        (m_pNodeTail ? m_pNodeTail->pNext : m_pNodeHead) = node;
        m_pNodeTail = node;
        return ToPos(node);
    }
    // Adds the elements of another list (or of this one) in their order before the head or
    // after the tail. Only the elements present at the call are added.
    void AddListHead(const CBlockList *pNewList) {
        const CNode *node = NonNull(pNewList)->m_pNodeTail;
        for (int32_t n = pNewList->m_nCount; n > 0; --n, node = node->pPrev)
            AddHead(node->data);
    }
    void AddListTail(const CBlockList *pNewList) {
        const CNode *node = NonNull(pNewList)->m_pNodeHead;
        for (int32_t n = pNewList->m_nCount; n > 0; --n, node = node->pNext)
            AddTail(node->data);
    }

    // A null position inserts at the head (before) or the tail (after).
    POSITION InsertBefore(POSITION pos, const T &value) {
        if (!pos) return AddHead(value);
        CNode *old = ToNode(pos);
        CNode *node = NewNode(old->pPrev, old, value);
        (old->pPrev ? old->pPrev->pNext : m_pNodeHead) = node;
        old->pPrev = node;
        return ToPos(node);
    }
    POSITION InsertAfter(POSITION pos, const T &value) {
        if (!pos) return AddTail(value);
        CNode *old = ToNode(pos);
        CNode *node = NewNode(old, old->pNext, value);
        (old->pNext ? old->pNext->pPrev : m_pNodeTail) = node;
        old->pNext = node;
        return ToPos(node);
    }

    T RemoveHead() {
        CNode *node = NonEmpty(m_pNodeHead);
        T value = node->data;
        RemoveAt(ToPos(node));
        return value;
    }
    T RemoveTail() {
        CNode *node = NonEmpty(m_pNodeTail);
        T value = node->data;
        RemoveAt(ToPos(node));
        return value;
    }
    void RemoveAt(POSITION pos) {
        CNode *node = ToNode(pos);
        (node->pPrev ? node->pPrev->pNext : m_pNodeHead) = node->pNext;
        (node->pNext ? node->pNext->pPrev : m_pNodeTail) = node->pPrev;
        FreeNode(node);
    }
    // Drops all elements and returns every block.
    void RemoveAll() noexcept {
        while (m_pBlocks) {
            CBlock *next = m_pBlocks->pNext;
            std::destroy_n(Nodes(m_pBlocks), m_nBlockSize);
            ::operator delete(static_cast<void *>(m_pBlocks));
            m_pBlocks = next;
        }
        m_pNodeHead = m_pNodeTail = m_pNodeFree = nullptr;
        m_nCount = 0;
    }

    // The position of the element with index n counted from the head; null when out of range.
    POSITION FindIndex(int32_t nIndex) const noexcept {
        if (nIndex < 0 || nIndex >= m_nCount) return nullptr;
        CNode *node = m_pNodeHead;
        while (nIndex-- > 0)
            node = node->pNext;
        return ToPos(node);
    }
    // The first element equal to value after startAfter (from the head when null).
    POSITION Find(const T &value, POSITION startAfter = nullptr) const {
        CNode *node = startAfter ? ToNode(startAfter)->pNext : m_pNodeHead;
        for (; node; node = node->pNext)
            if (node->data == value) return ToPos(node);
        return nullptr;
    }

protected:
    // The head of a block; its nodes follow it in the same allocation.
    struct CBlock {
        CBlock *pNext;
    };
    static constexpr size_t kBlockHeader =
        (sizeof(CBlock) + alignof(CNode) - 1) / alignof(CNode) * alignof(CNode);

    static POSITION ToPos(CNode *node) noexcept { return reinterpret_cast<POSITION>(node); }
    static CNode *ToNode(POSITION pos) {
        if (!pos) detail::ThrowCollectionError("null list position");
        return reinterpret_cast<CNode *>(pos);
    }
    static CNode *NonEmpty(CNode *node) {
        if (!node) detail::ThrowCollectionError("the list is empty");
        return node;
    }
    static const CBlockList *NonNull(const CBlockList *list) {
        if (!list) detail::ThrowCollectionError("null list");
        return list;
    }
    static CNode *Step(POSITION &pos, bool bForward) {
        CNode *node = ToNode(pos);
        pos = ToPos(bForward ? node->pNext : node->pPrev);
        return node;
    }
    static CNode *Nodes(CBlock *block) noexcept {
        return reinterpret_cast<CNode *>(reinterpret_cast<char *>(block) + kBlockHeader);
    }

    // Takes a node from the free list, allocating a new block when it is empty.
    CNode *NewNode(CNode *pPrev, CNode *pNext, const T &value) {
        if (!m_pNodeFree) AddBlock();
        CNode *node = m_pNodeFree;
        node->data = value; // first, so that a throwing copy leaves the node on the free list
        m_pNodeFree = node->pNext;
        node->pPrev = pPrev;
        node->pNext = pNext;
        ++m_nCount;
        return node;
    }
    // Releases the element and puts the node on the free list; at count 0 all blocks go.
    void FreeNode(CNode *node) noexcept {
        node->data = T();
        node->pNext = m_pNodeFree;
        m_pNodeFree = node;
        if (--m_nCount == 0) RemoveAll();
    }
    void AddBlock() {
        void *raw =
            ::operator new(kBlockHeader + static_cast<size_t>(m_nBlockSize) * sizeof(CNode));
        CBlock *block = ::new (raw) CBlock{m_pBlocks};
        m_pBlocks = block;
        // Thread the new nodes onto the free list so that the first node is taken first.
        CNode *nodes = Nodes(block);
        for (int32_t i = m_nBlockSize - 1; i >= 0; --i) {
            ::new (static_cast<void *>(nodes + i)) CNode{m_pNodeFree, nullptr, T()};
            m_pNodeFree = nodes + i;
        }
    }

    // "with <count> elements" and one "[i] = element" line each, for the Dump of the owners.
    void DumpElements(CDumpContext &dc) const {
        dc << "with " << m_nCount << " elements\n";
        int i = 0;
        for (const CNode *node = m_pNodeHead; node; node = node->pNext)
            dc << "\t[" << i++ << "] = " << node->data << "\n";
    }

    CNode *m_pNodeHead = nullptr;
    CNode *m_pNodeTail = nullptr;
    int32_t m_nCount = 0;
    CNode *m_pNodeFree = nullptr;
    CBlock *m_pBlocks = nullptr;
    int32_t m_nBlockSize;
};

template <class T>
class CGrowArray {
public:
    CGrowArray() noexcept = default;
    CGrowArray(const CGrowArray &other) { Copy(other); }
    CGrowArray &operator=(const CGrowArray &other) {
        Copy(other);
        return *this;
    }
    ~CGrowArray() { FreeBlock(); }

    int32_t GetSize() const noexcept { return m_nSize; }
    int32_t GetCount() const noexcept { return m_nSize; }
    int32_t GetUpperBound() const noexcept { return m_nSize - 1; }
    bool IsEmpty() const noexcept { return m_nSize == 0; }
    T *GetData() noexcept { return m_pData; }
    const T *GetData() const noexcept { return m_pData; }

    T &GetAt(int32_t nIndex) { return m_pData[Checked(nIndex)]; }
    const T &GetAt(int32_t nIndex) const { return m_pData[Checked(nIndex)]; }
    void SetAt(int32_t nIndex, T value) { m_pData[Checked(nIndex)] = std::move(value); }
    T &ElementAt(int32_t nIndex) { return m_pData[Checked(nIndex)]; }
    T &operator[](int32_t nIndex) { return m_pData[Checked(nIndex)]; }
    const T &operator[](int32_t nIndex) const { return m_pData[Checked(nIndex)]; }

    // A growBy of 0 or more is stored. New slots are value-initialised (null, 0, empty string);
    // slots that are cut off are destroyed.
    void SetSize(int32_t nNewSize, int32_t nGrowBy = -1) {
        if (nNewSize < 0) detail::ThrowCollectionError("negative array size");
        if (nGrowBy >= 0) m_nGrowBy = nGrowBy;
        if (nNewSize == 0)
            FreeBlock();
        else if (!m_pData)
            Reallocate(nNewSize, nNewSize);
        else if (nNewSize <= m_nMaxSize)
            Resize(nNewSize);
        else
            Reallocate(NewCapacity(nNewSize), nNewSize);
    }
    // Shrinks the block to exactly the size (no block at size 0).
    void FreeExtra() {
        if (m_nSize == m_nMaxSize) return;
        if (m_nSize == 0)
            FreeBlock();
        else
            Reallocate(m_nSize, m_nSize);
    }
    void RemoveAll() { SetSize(0); }

    int32_t Add(T value) {
        const int32_t nIndex = m_nSize;
        SetAtGrow(nIndex, std::move(value));
        return nIndex;
    }
    void SetAtGrow(int32_t nIndex, T value) {
        if (nIndex < 0 || nIndex == INT32_MAX)
            detail::ThrowCollectionError("array index out of range");
        if (nIndex >= m_nSize) SetSize(nIndex + 1);
        m_pData[nIndex] = std::move(value);
    }
    // Appends the elements of src (which may be this array); returns the first new index.
    int32_t Append(const CGrowArray &src) {
        const int32_t nOld = m_nSize;
        const int32_t nAdd = src.m_nSize;
        SetSize(SumOf(nOld, nAdd));
        std::copy_n(src.m_pData, nAdd, m_pData + nOld);
        return nOld;
    }
    void Copy(const CGrowArray &src) {
        if (this == &src) return;
        SetSize(src.m_nSize);
        std::copy_n(src.m_pData, src.m_nSize, m_pData);
    }

    // Opens a gap of nCount value-initialised slots at nIndex; at or past the end the array
    // grows to nIndex + nCount.
    void InsertEmpty(int32_t nIndex, int32_t nCount) {
        if (nIndex < 0 || nCount < 1) detail::ThrowCollectionError("bad array insertion");
        if (nIndex >= m_nSize) {
            SetSize(SumOf(nIndex, nCount));
            return;
        }
        const int32_t nOld = m_nSize;
        SetSize(SumOf(nOld, nCount));
        std::destroy_n(m_pData + nOld, nCount);
        MoveSlots(nIndex + nCount, nIndex, nOld - nIndex);
        std::uninitialized_value_construct_n(m_pData + nIndex, nCount);
    }
    void InsertAt(int32_t nIndex, T value, int32_t nCount = 1) {
        InsertEmpty(nIndex, nCount);
        std::fill_n(m_pData + nIndex, nCount, value);
    }
    void InsertAt(int32_t nStartIndex, const CGrowArray *pNewArray) {
        if (!pNewArray || nStartIndex < 0) detail::ThrowCollectionError("bad array insertion");
        if (pNewArray == this) {
            const CGrowArray copy(*this);
            InsertAt(nStartIndex, &copy);
            return;
        }
        if (pNewArray->m_nSize == 0) return;
        InsertEmpty(nStartIndex, pNewArray->m_nSize);
        std::copy_n(pNewArray->m_pData, pNewArray->m_nSize, m_pData + nStartIndex);
    }
    void RemoveAt(int32_t nIndex, int32_t nCount = 1) {
        if (nIndex < 0 || nCount < 0 || int64_t(nIndex) + nCount > m_nSize)
            detail::ThrowCollectionError("array range out of bounds");
        std::destroy_n(m_pData + nIndex, nCount);
        MoveSlots(nIndex, nIndex + nCount, m_nSize - nIndex - nCount);
        m_nSize -= nCount;
    }

protected:
    int32_t Checked(int32_t nIndex) const {
        if (nIndex < 0 || nIndex >= m_nSize)
            detail::ThrowCollectionError("array index out of range");
        return nIndex;
    }
    static int32_t SumOf(int32_t a, int32_t b) {
        if (int64_t(a) + b > INT32_MAX) detail::ThrowCollectionError("array size overflow");
        return a + b;
    }
    // The capacity of a block that must hold nNewSize elements beyond m_nMaxSize.
    int32_t NewCapacity(int32_t nNewSize) const {
        int64_t nGrowth = m_nGrowBy;
        if (nGrowth == 0) nGrowth = std::clamp<int64_t>(m_nSize / 8, 4, 1024);
        const int64_t nNewMax = std::max<int64_t>(m_nMaxSize + nGrowth, nNewSize);
        return static_cast<int32_t>(std::min<int64_t>(nNewMax, INT32_MAX));
    }
    // Plain memory move of n elements: the elements are trivially relocatable.
    void MoveSlots(int32_t nTo, int32_t nFrom, int32_t n) noexcept {
        std::memmove(static_cast<void *>(m_pData + nTo), static_cast<const void *>(m_pData + nFrom),
                     static_cast<size_t>(n) * sizeof(T));
    }
    // Within the capacity: new slots are value-initialised, cut-off slots destroyed.
    void Resize(int32_t nNewSize) {
        if (nNewSize > m_nSize)
            std::uninitialized_value_construct_n(m_pData + m_nSize, nNewSize - m_nSize);
        else
            std::destroy_n(m_pData + nNewSize, m_nSize - nNewSize);
        m_nSize = nNewSize;
    }
    // A new block of nNewMax slots; the elements move over by memory copy.
    void Reallocate(int32_t nNewMax, int32_t nNewSize) {
        T *pNew = static_cast<T *>(::operator new(static_cast<size_t>(nNewMax) * sizeof(T)));
        const int32_t nKeep = std::min(m_nSize, nNewSize);
        if (nKeep > 0)
            std::memcpy(static_cast<void *>(pNew), static_cast<const void *>(m_pData),
                        static_cast<size_t>(nKeep) * sizeof(T));
        if (m_pData) {
            std::destroy_n(m_pData + nKeep, m_nSize - nKeep);
            ::operator delete(static_cast<void *>(m_pData));
        }
        std::uninitialized_value_construct_n(pNew + nKeep, nNewSize - nKeep);
        m_pData = pNew;
        m_nSize = nNewSize;
        m_nMaxSize = nNewMax;
    }
    // Destroys the elements and frees the block. Emptying resets the growth step with the two
    // counts, so an emptied array grows like a new one.
    void FreeBlock() noexcept {
        if (m_pData) {
            std::destroy_n(m_pData, m_nSize);
            ::operator delete(static_cast<void *>(m_pData));
        }
        m_pData = nullptr;
        m_nSize = m_nMaxSize = m_nGrowBy = 0;
    }

    // "with <count> elements" and one "[i] = element" line each, for the Dump of the owners.
    void DumpElements(CDumpContext &dc) const {
        dc << "with " << m_nSize << " elements\n";
        for (int32_t i = 0; i < m_nSize; ++i)
            dc << "\t[" << i << "] = " << m_pData[i] << "\n";
    }

    T *m_pData = nullptr;
    int32_t m_nSize = 0;
    int32_t m_nMaxSize = 0;
    int32_t m_nGrowBy = 0;
};

// The platform's list of objects, list of untyped pointers and array of objects.
class CObList : public CObject, public CBlockList<CObject *> {
public:
    explicit CObList(int32_t nBlockSize = 10) : CBlockList(nBlockSize) {}
    using CBlockList::AddHead;
    using CBlockList::AddTail;
    void AddHead(const CObList *pNewList) { AddListHead(pNewList); }
    void AddTail(const CObList *pNewList) { AddListTail(pNewList); }
    void Dump(CDumpContext &dc) const override;
};

class CPtrList : public CObject, public CBlockList<void *> {
public:
    explicit CPtrList(int32_t nBlockSize = 10) : CBlockList(nBlockSize) {}
    using CBlockList::AddHead;
    using CBlockList::AddTail;
    void AddHead(const CPtrList *pNewList) { AddListHead(pNewList); }
    void AddTail(const CPtrList *pNewList) { AddListTail(pNewList); }
    void Dump(CDumpContext &dc) const override;
};

class CObArray : public CObject, public CGrowArray<CObject *> {
public:
    // An array is itself a CObject: this overload keeps InsertAt(i, &array) from being ambiguous.
    using CGrowArray::InsertAt;
    void InsertAt(int32_t nStartIndex, const CObArray *pNewArray) {
        CGrowArray::InsertAt(nStartIndex, pNewArray);
    }
    void Dump(CDumpContext &dc) const override;
};

} // namespace VX_API
