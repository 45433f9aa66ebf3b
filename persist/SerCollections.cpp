#include "persist/SerCollections.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/SerialForms.h"

#include <algorithm>

namespace vx {

void CSerObList::Dump(CDumpContext &dc) const {
    CSerObject::Dump(dc);
    DumpElements(dc);
}

void ISerObList::Dump(CDumpContext &dc) const {
    CSerObject::Dump(dc);
    DumpElements(dc);
}

void CSerObArray::Dump(CDumpContext &dc) const {
    CSerObject::Dump(dc);
    DumpElements(dc);
}

void ISerObArray::Dump(CDumpContext &dc) const {
    CSerObject::Dump(dc);
    DumpElements(dc);
}

void CVXWordArray::Dump(CDumpContext &dc) const {
    CSerObject::Dump(dc);
    DumpElements(dc);
}

} // namespace vx

// ---- serial forms ----

namespace vx {

VX_IMPLEMENT_SERIAL(CSerObList, 0)
VX_IMPLEMENT_SERIAL(ISerObList, 0)
VX_IMPLEMENT_SERIAL(CSerObArray, 0)
VX_IMPLEMENT_SERIAL(ISerObArray, 0)
VX_IMPLEMENT_SERIAL(CVXWordArray, 0)

void RegisterPersistClasses() {
    const CRuntimeCreator *const creators[] = {CSerObList::RTC(), ISerObList::RTC(),
                                               CSerObArray::RTC(), ISerObArray::RTC(),
                                               CVXWordArray::RTC()};
    static_cast<void>(creators);
}

namespace {

// Each element of a loaded run takes at least the two bytes of its tag.
constexpr unsigned int kMinObjectBytes = 2;

ISerObject *Plain(ISerObject *o) {
    return o;
}

template <class Array, class Convert>
void ArrayB(Array &a, CArchiveB &ar, Convert convert) {
    if (ar.IsStoring()) ar.ReserveObjects(static_cast<uint32_t>(a.GetSize()));
    serial::CountedArrayB(
        a, ar, kMinObjectBytes, [&](const ISerObject *o) { ar.WriteObject(o); },
        [&] { return convert(ar.ReadObject(nullptr)); });
}

template <class List, class Convert>
void ListB(List &l, CArchiveB &ar, Convert convert) {
    if (ar.IsStoring()) ar.ReserveObjects(static_cast<uint32_t>(l.GetCount()));
    serial::CountedListB(
        l, ar, kMinObjectBytes, [&](const ISerObject *o) { ar.WriteObject(o); },
        [&] { return convert(ar.ReadObject(nullptr)); });
}

template <class Array, class Convert>
void ArrayX(Array &a, CArchiveX &ar, Convert convert) {
    if (ar.IsStoring()) {
        ar.Save(u"m_nSize", a.GetSize());
        for (int32_t i = 0; i < a.GetSize(); ++i)
            serial::SaveRunElement(ar, u"pO", a.GetAt(i));
        return;
    }
    a.SetSize(serial::LoadElementCount(ar, u"m_nSize"));
    CVXComWrap<IDomElement> cursor;
    for (int32_t i = 0; i < a.GetSize(); ++i) {
        ISerObject *o = nullptr;
        ar.Load(u"pO", o, cursor);
        a.SetAt(i, convert(o));
    }
}

template <class List, class Convert>
void ListX(List &l, CArchiveX &ar, Convert convert) {
    if (ar.IsStoring()) {
        ar.Save(u"m_nCount", l.GetCount());
        for (POSITION pos = l.GetHeadPosition(); pos;)
            serial::SaveRunElement(ar, u"pO", l.GetNext(pos));
        return;
    }
    const int32_t n = serial::LoadElementCount(ar, u"m_nCount");
    CVXComWrap<IDomElement> cursor;
    for (int32_t i = 0; i < n; ++i) {
        ISerObject *o = nullptr;
        ar.Load(u"pO", o, cursor);
        l.AddTail(convert(o));
    }
}

} // namespace

void CSerObArray::SerializeB(CArchiveB &ar) {
    serial::CSerObjectRun run;
    ArrayB(*this, ar, [&](ISerObject *o) { return run.AsSerObjectB(ar, o); });
}
void ISerObArray::SerializeB(CArchiveB &ar) {
    ArrayB(*this, ar, Plain);
}
void CSerObList::SerializeB(CArchiveB &ar) {
    serial::CSerObjectRun run;
    ListB(*this, ar, [&](ISerObject *o) { return run.AsSerObjectB(ar, o); });
}
void ISerObList::SerializeB(CArchiveB &ar) {
    ListB(*this, ar, Plain);
}

void CSerObArray::SerializeX(CArchiveX &ar) {
    serial::CSerObjectRun run;
    ArrayX(*this, ar, [&](ISerObject *o) { return run.AsSerObjectX(o); });
}
void ISerObArray::SerializeX(CArchiveX &ar) {
    ArrayX(*this, ar, Plain);
}
void CSerObList::SerializeX(CArchiveX &ar) {
    serial::CSerObjectRun run;
    ListX(*this, ar, [&](ISerObject *o) { return run.AsSerObjectX(o); });
}
void ISerObList::SerializeX(CArchiveX &ar) {
    ListX(*this, ar, Plain);
}

// The words in one block, in chunks of at most 0x3FFFFFFF words.
void CVXWordArray::SerializeB(CArchiveB &ar) {
    constexpr uint32_t kChunk = 0x3FFFFFFF;
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<uint32_t>(m_nSize));
        for (uint32_t done = 0; done < static_cast<uint32_t>(m_nSize);) {
            const uint32_t n = std::min(kChunk, static_cast<uint32_t>(m_nSize) - done);
            ar.Write(m_pData + done, n * 2);
            done += n;
        }
        return;
    }
    SetSize(static_cast<int32_t>(ar.ReadCount(2)));
    for (uint32_t done = 0; done < static_cast<uint32_t>(m_nSize);) {
        const uint32_t n = std::min(kChunk, static_cast<uint32_t>(m_nSize) - done);
        ar.EnsureRead(m_pData + done, n * 2);
        done += n;
    }
}

void CVXWordArray::SerializeX(CArchiveX &ar) {
    serial::AttributeRunX(*this, ar, u"m_nSize", u"W");
}

} // namespace vx
