// The accuracy figures of a survey instrument, as the host's survey code fills and stores them.
//
// CInstrumentBase: the instrument's number and description. CInstrumentTachy: the a-priori
// standard deviations of a total station, each an absolute part plus a part relative to the
// measured value, for distance (metres), horizontal direction and vertical angle (radians).
// CInstrumentGPS: the same for a GPS receiver, an absolute part in metres and parts per million.
//
// Serial forms, after the base part (number as 16 bits, then the description):
//   CInstrumentTachy  binary: the six doubles in field order; XML: the six doubles by name and
//                     "m_szProgID". The binary form has no room for the driver's identifier, so
//                     a binary load leaves m_szProgID as it was.
//   CInstrumentGPS    binary: m_dAbs, m_dPPM; XML: "m_dAbs", "m_dPPM".
#pragma once

#include "platform/VXExport.h"

#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/VXString.h"

#include <cstdint>
#include <numbers>

namespace vx VX_API {

// The defaults that Reset restores.
inline constexpr double dInstrumentAbsDistDefault = 0.01; // metres
// 0.001 gon in radians (0.001 · π / 200), for horizontal directions and vertical angles alike.
inline constexpr double dInstrumentAbsHoekDefault = std::numbers::pi * 5e-06;
inline constexpr double dInstrumentGpsAbsDefault = 0.01; // metres
inline constexpr double dInstrumentGpsPpmDefault = 1.0;

class CInstrumentBase : public CSerObject {
public:
    uint16_t m_nNummer = 0;
    CVXString m_szOms;

    CInstrumentBase() { Reset(); }
    explicit CInstrumentBase(unsigned short nNummer) : m_nNummer(nNummer) { Reset(); }
    CInstrumentBase(const CInstrumentBase &other) = default;
    CInstrumentBase &operator=(const CInstrumentBase &other) = default;
    ~CInstrumentBase() override = default;

    using CSerObject::SerializeX;
    void SerializeX(CArchiveX &ar) override;
    void SerializeB(CArchiveB &ar) override;

    // Empties the description; the number stays.
    virtual void Reset() { m_szOms.Empty(); }
    // A heap copy of the most derived class; the caller deletes it.
    virtual CInstrumentBase *pCopy() const = 0;
};

class CInstrumentTachy : public CInstrumentBase {
    VX_DECLARE_SERIAL(CInstrumentTachy)
public:
    double m_dAbsD = dInstrumentAbsDistDefault;
    double m_dRelD = 0.0;
    double m_dAbsH = dInstrumentAbsHoekDefault;
    double m_dRelH = 0.0;
    double m_dAbsV = dInstrumentAbsHoekDefault;
    double m_dRelV = 0.0;
    // The component identifier of the instrument's driver.
    CVXString m_szProgID;

    CInstrumentTachy() { Reset(); }
    explicit CInstrumentTachy(unsigned short nNummer) : CInstrumentBase(nNummer) { Reset(); }

    using CSerObject::SerializeX;
    void SerializeX(CArchiveX &ar) override;
    void SerializeB(CArchiveB &ar) override;

    void Reset() override;
    CInstrumentTachy *pCopy() const override { return new CInstrumentTachy(*this); }
};

class CInstrumentGPS : public CInstrumentBase {
    VX_DECLARE_SERIAL(CInstrumentGPS)
public:
    double m_dAbs = dInstrumentGpsAbsDefault;
    double m_dPPM = dInstrumentGpsPpmDefault;

    CInstrumentGPS() { Reset(); }
    explicit CInstrumentGPS(unsigned short nNummer) : CInstrumentBase(nNummer) { Reset(); }

    using CSerObject::SerializeX;
    void SerializeX(CArchiveX &ar) override;
    void SerializeB(CArchiveB &ar) override;

    void Reset() override;
    CInstrumentGPS *pCopy() const override { return new CInstrumentGPS(*this); }
};

} // namespace VX_API
