// Tachymeter observations and the parameter block of the traverse adjustment: plain records that
// host code fills and reads. The library gives the angles their unit conversions and each
// observation a fresh identifier; what the other fields mean is the host's business, so they
// carry neutral names by position.
//
// Angles are stored in mathematical radians: counted anticlockwise from the X axis. The land
// forms count clockwise from north: land = (π/2 − math), brought into one full circle by
// repeated adding or subtracting of that circle (not by a remainder, whose last bits differ).
// NaN is the unknown value and passes through every conversion.
#pragma once

#include "platform/VXExport.h"

#include "persist/SerObject.h"
#include "platform/Object.h"
#include "platform/VXString.h"
#include "platform/VXTypes.h"

#include <cstdint>

namespace vx VX_API {

class CTachyWrnBase : public CSerObject {
public:
    double m_dWaarde1 = 0.0;
    double m_dWaarde2 = 0.0;
    double m_dWaarde3 = 0.0;
    double m_dWaarde4 = 0.0;
    uint16_t m_nWoord = 0;
    // Drawn new by the default constructor, kept by copies.
    GUID m_Guid;

    CTachyWrnBase();
    CTachyWrnBase(const CTachyWrnBase &other) = default;
    CTachyWrnBase &operator=(const CTachyWrnBase &other) = default;
    ~CTachyWrnBase() override = default;

    bool HIsKnown() const;
    void HUnknown();
    double HinMathRad() const { return m_dH; }
    void HinMathRad(double dH) { m_dH = dH; }
    // Clockwise from north, in [0, 2π).
    double HinLandRad() const;
    // Clockwise from north, in [0, 400).
    double HinGons() const;

    bool VIsKnown() const;
    void VUnknown();
    double VinMathRad() const { return m_dV; }
    void VinMathRad(double dV) { m_dV = dV; }
    double VinLandRad() const;
    double VinGons() const;

protected:
    double m_dH = 0.0;
    double m_dV = 0.0;
};

class CTachyTravWrn : public CTachyWrnBase {
public:
    CVXString m_szTekst1;
    CVXString m_szTekst2;
    uint16_t m_nWoord2 = 0;
    double m_dWaarde5 = 0.0;
    uint32_t m_lWoord = 0;
    CVXString m_szTekst3;
};

class CTopoTravPunt : public CObject {
public:
    CVXString m_szTekst1;
    CVXString m_szTekst2;

    CTopoTravPunt() = default;
    CTopoTravPunt(const CTopoTravPunt &other) = default;
    CTopoTravPunt &operator=(const CTopoTravPunt &other) = default;
    ~CTopoTravPunt() override = default;
};

// The parameter block of the traverse adjustment, one field per position 1 to 25, with the
// constructor's defaults.
class CTrav3Par : public CObject {
public:
    int16_t m_nPar1 = 0;
    int16_t m_nPar2 = 2;
    int16_t m_nPar3 = 9;
    int16_t m_nPar4 = 2;
    int32_t m_lPar5 = 0;
    double m_dPar6 = 0.0001;
    double m_dPar7 = 0.001;
    double m_dPar8 = 0.8;
    double m_dPar9 = 0.0;
    double m_dPar10 = 1.0;
    double m_dPar11 = 0.003;
    double m_dPar12 = 0.005;
    int16_t m_nPar13 = 0;
    int16_t m_nPar14 = 1;
    int16_t m_nPar15 = 0;
    int16_t m_nPar16 = 1;
    int16_t m_nPar17 = 1;
    int16_t m_nPar18 = 0;
    int16_t m_nPar19 = 0;
    int16_t m_nPar20 = 1;
    int16_t m_nPar21 = 1;
    int16_t m_nPar22 = 1;
    int16_t m_nPar23 = 1;
    int16_t m_nPar24 = 1;
    int16_t m_nPar25 = 1;
};

} // namespace VX_API
