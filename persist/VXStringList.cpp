#include "persist/VXStringList.h"

#include "foundation/VXFile.h"
#include "persist/VXStringArray.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/SerialForms.h"

namespace vx {

void CVXStringList::Dump(CDumpContext &dc) const {
    CSerObject::Dump(dc);
    DumpElements(dc);
}

} // namespace vx

// ---- serial forms ----

namespace vx {

VX_IMPLEMENT_SERIAL(CVXStringList, 0)

// Loading appends: a load into a filled list adds to it.
void CVXStringList::SerializeB(CArchiveB &ar) {
    serial::CountedListB(
        *this, ar, 1, [&](const CVXString &s) { ar << s; },
        [&] {
            CVXString s;
            ar >> s;
            return s;
        });
}

void CVXStringList::SerializeX(CArchiveX &ar) {
    if (ar.IsStoring()) {
        ar.Save(u"m_nCount", m_nCount);
        int32_t i = 0;
        for (POSITION pos = GetHeadPosition(); pos; ++i)
            ar.Save(CArchiveX::ToName(u"szS", i), GetNext(pos));
        return;
    }
    const int32_t n = serial::LoadAttributeCount(ar, u"m_nCount", u"szS");
    for (int32_t i = 0; i < n; ++i) {
        CVXString s;
        ar.Load(CArchiveX::ToName(u"szS", i), s);
        AddTail(s);
    }
}

void GetFiles(const CVXString &folder, const CVXString &mask, CVXStringList &list, bool bFullPath) {
    for (const CVXString &name : GetFileNames(folder, mask, bFullPath))
        list.AddTail(name);
}

void RegisterStringCollectionClasses() {
    const CRuntimeCreator *const creators[] = {CVXStringArray::RTC(), CVXStringList::RTC()};
    static_cast<void>(creators);
}

} // namespace vx
