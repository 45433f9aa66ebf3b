// CVXStringArray: a growable, serialisable array of strings.
//
// The strings stand side by side and move by plain memory copies (a CVXString is one pointer).
// New slots hold the empty (null) string; dropped elements are released.
#pragma once

#include "platform/VXExport.h"

#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/Lists.h"
#include "platform/VXString.h"

#include <cstdint>

namespace vx VX_API {

class CVXStringArray : public CSerObject, public CGrowArray<CVXString> {
    VX_DECLARE_SERIAL(CVXStringArray)
public:
    CVXString GetAt(int32_t nIndex) const { return CGrowArray::GetAt(nIndex); }
    // Any growBy other than -1 is stored, a negative one included: a negative step makes every
    // growth allocate exactly the size asked for.
    void SetSize(int32_t nNewSize, int32_t nGrowBy = -1);
    // Inserts nCount shares of the same text.
    void InsertAt(int32_t nIndex, const CVXString &text, int32_t nCount = 1) {
        CGrowArray::InsertAt(nIndex, text, nCount);
    }
    void InsertAt(int32_t nStartIndex, const CVXStringArray *pNewArray) {
        CGrowArray::InsertAt(nStartIndex, pNewArray);
    }

    void Dump(CDumpContext &dc) const override;
    void SerializeB(CArchiveB &ar) override;
    void SerializeX(CArchiveX &ar) override;
    using CSerObject::SerializeX;
};

} // namespace VX_API
