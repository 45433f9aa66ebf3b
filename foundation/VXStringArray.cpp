#include "foundation/VXStringArray.h"

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

void CVXStringArray::SerializeB(CArchiveB &ar) {
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<uint32_t>(m_nSize));
        for (int32_t i = 0; i < m_nSize; ++i)
            ar << m_pData[i];
        return;
    }
    SetSize(static_cast<int32_t>(ar.ReadCount(1))); // a string takes one byte at least
    for (int32_t i = 0; i < m_nSize; ++i)
        ar >> m_pData[i];
}

void CVXStringArray::SerializeX(CArchiveX &ar) {
    if (ar.IsStoring()) {
        ar.Save(u"m_nSize", m_nSize);
        for (int32_t i = 0; i < m_nSize; ++i)
            ar.Save(CArchiveX::ToName(u"szS", i), m_pData[i]);
        return;
    }
    SetSize(serial::LoadAttributeCount(ar, u"m_nSize", u"szS"));
    for (int32_t i = 0; i < m_nSize; ++i)
        ar.Load(CArchiveX::ToName(u"szS", i), m_pData[i]);
}

} // namespace vx
