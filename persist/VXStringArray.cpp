#include "persist/VXStringArray.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/SerialForms.h"

namespace vx {

void CVXStringArray::SetSize(int32_t nNewSize, int32_t nGrowBy) {
    if (nGrowBy != -1) m_nGrowBy = nGrowBy;
    CGrowArray::SetSize(nNewSize);
}

void CVXStringArray::Dump(CDumpContext &dc) const {
    CSerObject::Dump(dc);
    DumpElements(dc);
}

} // namespace vx

// ---- serial forms ----

namespace vx {

VX_IMPLEMENT_SERIAL(CVXStringArray, 0)

// A string takes one byte of the stream at least.
void CVXStringArray::SerializeB(CArchiveB &ar) {
    serial::CountedArrayB(
        *this, ar, 1, [&](const CVXString &s) { ar << s; },
        [&] {
            CVXString s;
            ar >> s;
            return s;
        });
}

void CVXStringArray::SerializeX(CArchiveX &ar) {
    serial::AttributeRunX(*this, ar, u"m_nSize", u"szS");
}

} // namespace vx
