#include "instrument/Instrument.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"

namespace vx {

// Both instrument classes are versionable at version 1.
namespace {

constexpr uint32_t kInstrumentSchema = VERSIONABLE_SCHEMA | 1u;

// The binary fields in order: written when storing, read back when loading.
template <class... T>
void FieldsB(CArchiveB &ar, T &...fields) {
    if (ar.IsStoring())
        (ar << ... << fields);
    else
        (ar >> ... >> fields);
}

} // namespace

VX_IMPLEMENT_SERIAL(CInstrumentTachy, kInstrumentSchema)
VX_IMPLEMENT_SERIAL(CInstrumentGPS, kInstrumentSchema)

// ---- CInstrumentBase ---------------------------------------------------------------------------

void CInstrumentBase::SerializeX(CArchiveX &ar) {
    CSerObject::SerializeX(ar);
    ar.Serialize(u"m_nNummer", m_nNummer);
    ar.Serialize(u"m_szOms", m_szOms);
}

void CInstrumentBase::SerializeB(CArchiveB &ar) {
    CSerObject::SerializeB(ar);
    FieldsB(ar, m_nNummer, m_szOms);
}

// ---- CInstrumentTachy --------------------------------------------------------------------------

void CInstrumentTachy::Reset() {
    CInstrumentBase::Reset();
    m_dAbsD = dInstrumentAbsDistDefault;
    m_dRelD = 0.0;
    m_dAbsH = dInstrumentAbsHoekDefault;
    m_dRelH = 0.0;
    m_dAbsV = dInstrumentAbsHoekDefault;
    m_dRelV = 0.0;
    m_szProgID.Empty();
}

void CInstrumentTachy::SerializeX(CArchiveX &ar) {
    CInstrumentBase::SerializeX(ar);
    ar.Serialize(u"m_dAbsD", m_dAbsD);
    ar.Serialize(u"m_dRelD", m_dRelD);
    ar.Serialize(u"m_dAbsH", m_dAbsH);
    ar.Serialize(u"m_dRelH", m_dRelH);
    ar.Serialize(u"m_dAbsV", m_dAbsV);
    ar.Serialize(u"m_dRelV", m_dRelV);
    ar.Serialize(u"m_szProgID", m_szProgID);
}

void CInstrumentTachy::SerializeB(CArchiveB &ar) {
    CInstrumentBase::SerializeB(ar);
    // Kept on purpose: the binary form has no m_szProgID, so existing binary files keep their
    // layout; a binary load leaves the identifier as it was.
    FieldsB(ar, m_dAbsD, m_dRelD, m_dAbsH, m_dRelH, m_dAbsV, m_dRelV);
}

// ---- CInstrumentGPS ----------------------------------------------------------------------------

void CInstrumentGPS::Reset() {
    CInstrumentBase::Reset();
    m_dAbs = dInstrumentGpsAbsDefault;
    m_dPPM = dInstrumentGpsPpmDefault;
}

void CInstrumentGPS::SerializeX(CArchiveX &ar) {
    CInstrumentBase::SerializeX(ar);
    ar.Serialize(u"m_dAbs", m_dAbs);
    ar.Serialize(u"m_dPPM", m_dPPM);
}

void CInstrumentGPS::SerializeB(CArchiveB &ar) {
    CInstrumentBase::SerializeB(ar);
    FieldsB(ar, m_dAbs, m_dPPM);
}

} // namespace vx
