// The serialisable collections of pointers and words, and the typed wrappers through which the
// rest of the library uses them.
//
// The C- and I- forms share their code and their stored form; they differ in element type
// (CSerObject * or ISerObject *), and the I- forms offer a reduced set of operations. None of
// them deletes its elements: removing, resizing and destroying drop the pointers only. A class
// that owns the elements deletes them itself.
#pragma once

#include "platform/VXExport.h"

#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/Lists.h"

#include <cstdint>

namespace vx VX_API {

class CSerObList : public CSerObject, public CBlockList<CSerObject *> {
    VX_DECLARE_SERIAL(CSerObList)
public:
    explicit CSerObList(int32_t nBlockSize = 10) : CBlockList(nBlockSize) {}
    void Dump(CDumpContext &dc) const override;
    void SerializeB(CArchiveB &ar) override;
    void SerializeX(CArchiveX &ar) override;
    using CSerObject::SerializeX;
};

// The list of interface pointers. It has no GetTailPosition: walking starts at the head.
class ISerObList : public CSerObject, protected CBlockList<ISerObject *> {
    VX_DECLARE_SERIAL(ISerObList)
public:
    explicit ISerObList(int32_t nBlockSize = 10) : CBlockList(nBlockSize) {}

    using CBlockList::AddHead;
    using CBlockList::AddTail;
    using CBlockList::Find;
    using CBlockList::FindIndex;
    using CBlockList::GetAt;
    using CBlockList::GetCount;
    using CBlockList::GetHead;
    using CBlockList::GetHeadPosition;
    using CBlockList::GetNext;
    using CBlockList::GetPrev;
    using CBlockList::GetSize;
    using CBlockList::GetTail;
    using CBlockList::InsertAfter;
    using CBlockList::InsertBefore;
    using CBlockList::IsEmpty;
    using CBlockList::RemoveAll;
    using CBlockList::RemoveAt;
    using CBlockList::RemoveHead;
    using CBlockList::RemoveTail;
    using CBlockList::SetAt;
    void AddListHead(const ISerObList *pNewList) { CBlockList::AddListHead(pNewList); }
    void AddListTail(const ISerObList *pNewList) { CBlockList::AddListTail(pNewList); }

    void Dump(CDumpContext &dc) const override;
    void SerializeB(CArchiveB &ar) override;
    void SerializeX(CArchiveX &ar) override;
    using CSerObject::SerializeX;
};

class CSerObArray : public CSerObject, public CGrowArray<CSerObject *> {
    VX_DECLARE_SERIAL(CSerObArray)
public:
    // An array is itself a CSerObject: this overload keeps InsertAt(i, &array) from being
    // ambiguous.
    using CGrowArray::InsertAt;
    void InsertAt(int32_t nStartIndex, const CSerObArray *pNewArray) {
        CGrowArray::InsertAt(nStartIndex, pNewArray);
    }
    void Dump(CDumpContext &dc) const override;
    void SerializeB(CArchiveB &ar) override;
    void SerializeX(CArchiveX &ar) override;
    using CSerObject::SerializeX;
};

// The array of interface pointers. It has no Append, Copy, array InsertAt or FreeExtra.
class ISerObArray : public CSerObject, protected CGrowArray<ISerObject *> {
    VX_DECLARE_SERIAL(ISerObArray)
public:
    using CGrowArray::Add;
    using CGrowArray::ElementAt;
    using CGrowArray::GetAt;
    using CGrowArray::GetCount;
    using CGrowArray::GetData;
    using CGrowArray::GetSize;
    using CGrowArray::GetUpperBound;
    using CGrowArray::IsEmpty;
    using CGrowArray::RemoveAll;
    using CGrowArray::RemoveAt;
    using CGrowArray::SetAt;
    using CGrowArray::SetAtGrow;
    using CGrowArray::SetSize;
    using CGrowArray::operator[];
    void InsertAt(int32_t nIndex, ISerObject *pElement, int32_t nCount = 1) {
        CGrowArray::InsertAt(nIndex, pElement, nCount);
    }

    void Dump(CDumpContext &dc) const override;
    void SerializeB(CArchiveB &ar) override;
    void SerializeX(CArchiveX &ar) override;
    using CSerObject::SerializeX;
};

// An array of unsigned 16-bit numbers.
class CVXWordArray : public CSerObject, public CGrowArray<uint16_t> {
    VX_DECLARE_SERIAL(CVXWordArray)
public:
    void Dump(CDumpContext &dc) const override;
    void SerializeB(CArchiveB &ar) override;
    void SerializeX(CArchiveX &ar) override;
    using CSerObject::SerializeX;
};

// Typed access to a pointer list: each operation casts and forwards. Getters return the pointer
// by value (write through SetAt), so a base pointer is never reinterpreted in place.
template <class BASE, class TYPE>
class _CVXTypedPtrList : public BASE {
public:
    using BASE::BASE;

    TYPE GetHead() const { return static_cast<TYPE>(BASE::GetHead()); }
    TYPE GetTail() const { return static_cast<TYPE>(BASE::GetTail()); }
    TYPE GetNext(POSITION &pos) const { return static_cast<TYPE>(BASE::GetNext(pos)); }
    TYPE GetPrev(POSITION &pos) const { return static_cast<TYPE>(BASE::GetPrev(pos)); }
    TYPE GetAt(POSITION pos) const { return static_cast<TYPE>(BASE::GetAt(pos)); }
    void SetAt(POSITION pos, TYPE pElement) { BASE::SetAt(pos, pElement); }

    POSITION AddHead(TYPE pElement) { return BASE::AddHead(pElement); }
    POSITION AddTail(TYPE pElement) { return BASE::AddTail(pElement); }
    POSITION InsertBefore(POSITION pos, TYPE pElement) { return BASE::InsertBefore(pos, pElement); }
    POSITION InsertAfter(POSITION pos, TYPE pElement) { return BASE::InsertAfter(pos, pElement); }
    TYPE RemoveHead() { return static_cast<TYPE>(BASE::RemoveHead()); }
    TYPE RemoveTail() { return static_cast<TYPE>(BASE::RemoveTail()); }
    POSITION Find(TYPE pElement, POSITION startAfter = nullptr) const {
        return BASE::Find(pElement, startAfter);
    }

    // Insertions that take ownership of the element: when the insertion fails, the element is
    // destroyed and the exception travels on. Either way the caller no longer holds it.
    POSITION TransferInsertBefore(POSITION pos, TYPE pElement) {
        return Transfer(pElement, [&] { return InsertBefore(pos, pElement); });
    }
    POSITION TransferInsertAfter(POSITION pos, TYPE pElement) {
        return Transfer(pElement, [&] { return InsertAfter(pos, pElement); });
    }

protected:
    template <class INSERT>
    static POSITION Transfer(TYPE pElement, INSERT insert) {
        try {
            return insert();
        } catch (...) {
            delete pElement;
            throw;
        }
    }
};

template <class BASE, class TYPE>
class CVXTypedPtrList : public _CVXTypedPtrList<BASE, TYPE> {
    using Typed = _CVXTypedPtrList<BASE, TYPE>;

public:
    using Typed::Typed;

    POSITION TransferAddHead(TYPE pElement) {
        return Typed::Transfer(pElement, [&] { return this->AddHead(pElement); });
    }
    POSITION TransferAddTail(TYPE pElement) {
        return Typed::Transfer(pElement, [&] { return this->AddTail(pElement); });
    }
    void AddListHead(const CVXTypedPtrList *pNewList) { BASE::AddListHead(pNewList); }
    void AddListTail(const CVXTypedPtrList *pNewList) { BASE::AddListTail(pNewList); }
};

// Typed access to a pointer array: each operation casts and forwards; getters return by value.
template <class BASE, class TYPE>
class CTypedPtrArray : public BASE {
public:
    using BASE::BASE;

    TYPE GetAt(int32_t nIndex) const { return static_cast<TYPE>(BASE::GetAt(nIndex)); }
    TYPE operator[](int32_t nIndex) const { return static_cast<TYPE>(BASE::GetAt(nIndex)); }
    void SetAt(int32_t nIndex, TYPE pElement) { BASE::SetAt(nIndex, pElement); }
    void SetAtGrow(int32_t nIndex, TYPE pElement) { BASE::SetAtGrow(nIndex, pElement); }
    int32_t Add(TYPE pElement) { return BASE::Add(pElement); }
    void InsertAt(int32_t nIndex, TYPE pElement, int32_t nCount = 1) {
        BASE::InsertAt(nIndex, pElement, nCount);
    }
    void InsertAt(int32_t nStartIndex, const CTypedPtrArray *pNewArray) {
        BASE::InsertAt(nStartIndex, pNewArray);
    }
    int32_t Append(const CTypedPtrArray &src) { return BASE::Append(src); }
    void Copy(const CTypedPtrArray &src) { BASE::Copy(src); }
};

} // namespace VX_API
