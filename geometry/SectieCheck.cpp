// Section and line checks of CVXCoordArr: the section grammar as a state machine, the plausibility
// of a chain of arcs and chords, stretches that occur twice, and the cheap straight-line
// self-crossing test.
//
// The grammar: a 1; then either a circle tail 7 7 or 7 7 7 that ends the line, or any number of
// stretches, each 0, 2, 8 8, or a run of two or more 6s. It runs as eight stateless states that
// each look at the code of one point, advance, and hand over to the next state; the record on the
// caller's stack carries the position, so the check allocates nothing.
#include "geometry/LineArc.h"
#include "geometry/VXCoordArr.h"

namespace vx {

namespace {

class CSectieCheck;

// One state of the grammar: looks at the code of the current point, advances when the code is
// allowed there, and returns the next state, or null to stop.
class CSectieCheckState {
public:
    CSectieCheckState() = default;
    CSectieCheckState(const CSectieCheckState &) = delete;
    CSectieCheckState &operator=(const CSectieCheckState &) = delete;
    virtual ~CSectieCheckState() = default;
    virtual CSectieCheckState *Volgende(CSectieCheck &Check) = 0;
};

// The outcomes a state can have at one point, by whether that point is the last.
struct Uitkomst {
    CSectieCheckState *pVerder; // below the last point: advance to this state; null is an error
    bool bLaatsteMag;           // at the last point: stop (true) or error (false)
};

// The eight states; each one's Volgende is defined below. CStopMaar ends the run with a valid
// line: the result becomes -1.
#define VX_SECTIE_TOESTAND(Naam)                                                                   \
    class Naam final : public CSectieCheckState {                                                  \
    public:                                                                                        \
        CSectieCheckState *Volgende(CSectieCheck &Check) override;                                 \
    }
VX_SECTIE_TOESTAND(CStopMaar);
VX_SECTIE_TOESTAND(CMoetEen1Zijn);
VX_SECTIE_TOESTAND(CMagAllesZijn);
VX_SECTIE_TOESTAND(CMagAllesZijnBehalve7);
VX_SECTIE_TOESTAND(CMoetEen8Zijn);
VX_SECTIE_TOESTAND(CMoetEen6Zijn);
VX_SECTIE_TOESTAND(CKunnenZessenZijn);
VX_SECTIE_TOESTAND(CMoetEen7Zijn);
#undef VX_SECTIE_TOESTAND

// The record of one check: the line, its size taken once, the position, and the states.
class CSectieCheck {
public:
    explicit CSectieCheck(const CVXCoordArr &arr) : m_pArr(&arr), m_nSize(arr.GetSize()) {}

    const CVXCoordArr *m_pArr;
    int m_nSize;
    int m_nI = 0;
    CStopMaar m_StopMaar;
    CMagAllesZijnBehalve7 m_MagAllesZijnBehalve7;
    CKunnenZessenZijn m_KunnenZessenZijn;
    CMoetEen8Zijn m_MoetEen8Zijn;
    CMoetEen6Zijn m_MoetEen6Zijn;
    CMoetEen7Zijn m_MoetEen7Zijn;
    CMagAllesZijn m_MagAllesZijn;
    CMoetEen1Zijn m_MoetEen1Zijn;

    int nCode() const { return m_pArr->Pt(m_nI).m_nSectie; }
    bool bLaatste() const { return m_nI == m_nSize - 1; }

    // Applies the outcome for the current point: advance, stop, or error (null, m_nI kept).
    CSectieCheckState *Pas(const Uitkomst &u) {
        if (bLaatste()) return u.bLaatsteMag ? &m_StopMaar : nullptr;
        if (u.pVerder == nullptr) return nullptr;
        ++m_nI;
        return u.pVerder;
    }

    // The outcomes of a code that starts a stretch, shared by the states that allow any stretch.
    Uitkomst StretchStart(int nCode, bool bZevenMag) {
        switch (nCode) {
        case nSectieRecht:
        case nSectieRecht2:
            return {&m_MagAllesZijnBehalve7, true};
        case nSectieSpline:
            return {&m_MoetEen6Zijn, false};
        case nSectieCirkel:
            return {bZevenMag ? &m_MoetEen7Zijn : nullptr, false};
        case nSectieBoog:
            return {&m_MoetEen8Zijn, false};
        default:
            return {nullptr, false};
        }
    }

    int nRun() {
        CSectieCheckState *pState = &m_MoetEen1Zijn;
        while (pState != nullptr)
            pState = pState->Volgende(*this);
        return m_nI;
    }
};

constexpr Uitkomst uFout{nullptr, false};

CSectieCheckState *CStopMaar::Volgende(CSectieCheck &Check) {
    Check.m_nI = -1;
    return nullptr;
}

CSectieCheckState *CMoetEen1Zijn::Volgende(CSectieCheck &Check) {
    return Check.Pas(Check.nCode() == nSectieStart ? Uitkomst{&Check.m_MagAllesZijn, true} : uFout);
}

// Code 7 is open only to the state that directly follows the start.
CSectieCheckState *CMagAllesZijn::Volgende(CSectieCheck &Check) {
    return Check.Pas(Check.StretchStart(Check.nCode(), true));
}

CSectieCheckState *CMagAllesZijnBehalve7::Volgende(CSectieCheck &Check) {
    return Check.Pas(Check.StretchStart(Check.nCode(), false));
}

CSectieCheckState *CMoetEen8Zijn::Volgende(CSectieCheck &Check) {
    return Check.Pas(Check.nCode() == nSectieBoog ? Uitkomst{&Check.m_MagAllesZijnBehalve7, true}
                                                  : uFout);
}

CSectieCheckState *CMoetEen6Zijn::Volgende(CSectieCheck &Check) {
    return Check.Pas(Check.nCode() == nSectieSpline ? Uitkomst{&Check.m_KunnenZessenZijn, true}
                                                    : uFout);
}

CSectieCheckState *CKunnenZessenZijn::Volgende(CSectieCheck &Check) {
    const int nCode = Check.nCode();
    if (nCode == nSectieSpline) return Check.Pas({&Check.m_KunnenZessenZijn, true});
    return Check.Pas(Check.StretchStart(nCode, false));
}

// A circle has three or four points and nothing may follow it: a 7 below the last point must be
// followed by a 7 that is the last.
CSectieCheckState *CMoetEen7Zijn::Volgende(CSectieCheck &Check) {
    if (Check.nCode() != nSectieCirkel) return nullptr;
    if (Check.bLaatste()) return &Check.m_StopMaar;
    ++Check.m_nI;
    if (Check.nCode() == nSectieCirkel && Check.bLaatste()) return &Check.m_StopMaar;
    return nullptr;
}

// The signed side of c relative to the line a-b, as nBoogRichting gives it.
int nKant(const CVXCoord &a, const CVXCoord &b, const CVXCoord &c) {
    return CVXCoord::nBoogRichting(a, b, c);
}

// Whether p lies strictly inside the stretch a-b (a touch at an end does not count).
bool bStriktIn(const CVXCoord &p, const CVXCoord &a, const CVXCoord &b) {
    const CVXCoord *const line[2] = {&a, &b};
    return p.nPuntInLine(line, false) == CVXCoord::nLijnBinnen;
}

// The sagitta test of one arc of bCheckLinesArcs: whether the arc from point i is plausible.
bool bBoogAanvaardbaar(const CVXCoordArr &arr, int i, double dMaxKoorde, double dGrens,
                       double dMaxR, double dMinVerhouding) {
    const CVXCoord *const boog[3] = {&arr.Pt(i), &arr.Pt(i + 1), &arr.Pt(i + 2)};
    const double dLengte = arr.dLijnLengte(i);
    CVXCoord H;
    H.DraaiOverBoog(boog, dLengte / 2.0);
    if (arr.Pt(i).dDist(H) > dMaxKoorde) return false;
    CVXCoord Q;
    Q.DraaiOverBoog(boog, dLengte / 4.0);
    const CVXCoord *const koorde[2] = {&arr.Pt(i), &H};
    CVXCoord F;
    F.Projecteer(koorde, Q);
    const double p = Q.dDist(F);
    if (p > dGrens) return true;
    CVXCoord C;
    if (!C.bMiddelPunt(boog)) return false;
    const double r = arr.Pt(i).dDist(C);
    // Kept on purpose: dGrens bounds both the sagitta above and the radius here.
    return !(r < dGrens || r > dMaxR || p / r < dMinVerhouding);
}

} // namespace

int CVXCoordArr::nSectieOnlyTest2() const {
    CSectieCheck check(*this);
    return check.nRun();
}

int CVXCoordArr::nSectieTest2() const {
    const int nRes = nSectieOnlyTest2();
    if (nRes != -1) return nRes;
    for (int i = 0; i < GetSize() - 1; ++i)
        if (Pt(i).bGelijk(Pt(i + 1))) return i;
    return -1;
}

bool CVXCoordArr::bCheckLinesArcs(int &nI, double dMaxKoorde, double dGrens, double dMaxR,
                                  double dMinVerhouding, double dMaxLengte, int nMaxRechten) const {
    int nRechten = 0;
    for (; nI < GetSize() - 1; nI = nNextLinePart(nI)) {
        if (bBoog(nI)) {
            nRechten = 0;
            if (!bBoogAanvaardbaar(*this, nI, dMaxKoorde, dGrens, dMaxR, dMinVerhouding))
                return false;
            continue;
        }
        ++nRechten;
        if (nRechten > nMaxRechten || dLijnLengte(nI) > dMaxLengte) return false;
    }
    return true;
}

bool CVXCoordArr::BevatIdentiekeLijndelen() const {
    if (bCirkel()) return false;
    const auto gelijk = [this](int a, int b) { return Pt(a).bGelijk(Pt(b)); };
    for (int i = 0; i < GetSize() - 2; i = nNextLinePart(i)) {
        for (int j = nNextLinePart(i); j < GetSize() - 1; j = nNextLinePart(j)) {
            if (bBoog(i) && bBoog(j)) {
                if (gelijk(i + 2, j) && gelijk(i + 1, j + 1) && gelijk(i, j + 2)) return true;
                if (gelijk(i, j) && gelijk(i + 1, j + 1) && gelijk(i + 2, j + 2)) return true;
            } else if (bRechte(i) && bRechte(j)) {
                if (gelijk(i + 1, j) && gelijk(i, j + 1)) return true;
                if (gelijk(i, j) && gelijk(i + 1, j + 1)) return true;
            }
        }
    }
    return false;
}

bool CVXCoordArr::SnijRechten(const CVXCoordArr &Punten, int nI, int nJ) const {
    const CVXCoord &A = Pt(nI), &B = Pt(nI + 1);
    const CVXCoord &C = Punten.Pt(nJ), &D = Punten.Pt(nJ + 1);
    const int o1 = nKant(A, B, D), o2 = nKant(A, B, C);
    const int o3 = nKant(C, D, B), o4 = nKant(C, D, A);
    if (o1 * o2 < 0 && o3 * o4 < 0) return true;
    // Kept on purpose: the collinear checks read point and stretch from Punten alone, also at
    // this line's indices. For the self-test the two are one line; for two lines this reading
    // is what callers have always got.
    const auto in = [&Punten](int p, int s) {
        return bStriktIn(Punten.Pt(p), Punten.Pt(s), Punten.Pt(s + 1));
    };
    if (o1 == 0 && in(nJ + 1, nI)) return true;
    if (o2 == 0 && in(nJ, nI)) return true;
    if (o3 == 0 && in(nI + 1, nJ)) return true;
    if (o4 == 0 && in(nI, nJ)) return true;
    return false;
}

bool CVXCoordArr::SnijdtZichzelfSimple() const {
    const int n = GetSize();
    // Stretch 0 skips the last stretch, which adjoins it in a closed line. Kept on purpose: the
    // other rows inherit the bound n - 2, so the last stretch is never tested at all.
    if (n - 2 > 2) {
        for (int j = 2; j < n - 2; ++j)
            if (SnijRechten(*this, 0, j)) return true;
    }
    if (n - 3 > 1) {
        for (int i = 1; i < n - 3; ++i)
            for (int j = i + 2; j < n - 2; ++j)
                if (SnijRechten(*this, i, j)) return true;
    }
    return false;
}

} // namespace vx
