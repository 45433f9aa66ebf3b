// Helpers shared by the geometry tests: catching assertion reports and building
// lines from (x, y, code) triples.
#pragma once

#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"
#include "platform/UserPrompt.h"
#include "platform/VXString.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace vx {

// The tests' way to the private checks of CVXCoordArr.
class CVXCoordArrTestToegang {
public:
    static bool SnijdtZichzelfSimple(const CVXCoordArr &arr) { return arr.SnijdtZichzelfSimple(); }
    static bool SnijRechten(const CVXCoordArr &arr, const CVXCoordArr &Punten, int nI, int nJ) {
        return arr.SnijRechten(Punten, nI, nJ);
    }
    // Hands a heap ring to CreeerSubLoops, which gives it to Lijst.
    static void CreeerSubLoops(CVXCoordArr *pRing, CVXCoordArrList &Lijst) {
        pRing->CreeerSubLoops(Lijst);
    }
    static bool VoldoetBoogDeel(const CVXCoordArr &arr, int nVan, int nTot, double dAfstandTol,
                                double dLengteTol, double dMaxR) {
        return arr.VoldoetBoogDeel(nVan, nTot, dAfstandTol, dLengteTol, dMaxR);
    }
};

} // namespace vx

namespace vxtest {

// Collects the lines a sink receives while it lives. Haak::Zet(true) installs the sink,
// Zet(false) restores the default.
template <class Haak>
class SinkCatcher {
public:
    SinkCatcher() {
        Lines().clear();
        Haak::Zet(true);
    }
    ~SinkCatcher() { Haak::Zet(false); }
    SinkCatcher(const SinkCatcher &) = delete;
    SinkCatcher &operator=(const SinkCatcher &) = delete;

    static std::vector<std::string> &Lines() {
        static std::vector<std::string> lines;
        return lines;
    }
    size_t Count() const { return Lines().size(); }
};

struct AssertHaak {
    static void Sink(const char *message);
    static void Zet(bool bAan) { vx::SetAssertSink(bAan ? &Sink : nullptr); }
};

// The assertion reports raised while it lives.
class AssertCatcher : public SinkCatcher<AssertHaak> {
public:
    static std::vector<std::string> &Reports() { return Lines(); }
    // Whether one report carries this expression text.
    bool Has(const std::string &expression) const {
        for (const std::string &r : Reports())
            if (r.find("Assertion failure " + expression + " ") == 0) return true;
        return false;
    }
};

inline void AssertHaak::Sink(const char *message) {
    AssertCatcher::Lines().emplace_back(message);
}

// The lines written to the process log from below the logger, as "<level> <text>".
struct LogHaak {
    static void Sink(int nLevel, const vx::CVXString &text) {
        SinkCatcher<LogHaak>::Lines().push_back(std::to_string(nLevel) + " " +
                                                static_cast<const char *>(text));
    }
    static void Zet(bool bAan) { vx::SetHostLogSink(bAan ? &Sink : nullptr); }
};
using LogCatcher = SinkCatcher<LogHaak>;

struct P {
    double x, y;
    int code;
    double z = vx::dNaN;
};

// A line from (x, y, code[, z]) entries.
inline vx::CVXCoordArr Lijn(std::initializer_list<P> punten) {
    vx::CVXCoordArr arr;
    for (const P &p : punten) {
        vx::CVXCoord c(p.x, p.y, p.z, static_cast<char>(p.code));
        arr.Add(&c);
    }
    return arr;
}

// The section codes of a line, for readable comparisons.
inline std::vector<int> Codes(const vx::CVXCoordArr &arr) {
    std::vector<int> codes;
    for (int i = 0; i < arr.GetSize(); ++i)
        codes.push_back(arr.Pt(i).nGetSectie());
    return codes;
}

} // namespace vxtest
