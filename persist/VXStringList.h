// CVXStringList: a doubly linked, serialisable list of strings with nodes allocated by block.
// Positions stay valid while other elements come and go.
#pragma once

#include "platform/VXExport.h"

#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/Lists.h"
#include "platform/VXString.h"

#include <cstdint>

namespace vx VX_API {

class CVXStringList : public CSerObject, public CBlockList<CVXString> {
    VX_DECLARE_SERIAL(CVXStringList)
public:
    using CNode = CBlockList::CNode;

    explicit CVXStringList(int32_t nBlockSize = 10) : CBlockList(nBlockSize) {}

    using CBlockList::AddHead;
    using CBlockList::AddTail;
    void AddHead(const CVXStringList *pNewList) { AddListHead(pNewList); }
    void AddTail(const CVXStringList *pNewList) { AddListTail(pNewList); }

    CVXString &GetNext(POSITION &pos) { return CBlockList::GetNext(pos); }
    CVXString GetNext(POSITION &pos) const { return CBlockList::GetNext(pos); }

    // The first element equal to text (by Compare, case-sensitive) after startAfter, or from
    // the head when startAfter is null; null when there is none.
    using CBlockList::Find;

    void Dump(CDumpContext &dc) const override;
    void SerializeB(CArchiveB &ar) override;
    void SerializeX(CArchiveX &ar) override;
    using CSerObject::SerializeX;
};

} // namespace VX_API
