// Helpers shared by the geometry tests: catching assertion reports and building
// lines from (x, y, code) triples.
#pragma once

#include "geometry/Trace.h"
#include "platform/VXString.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

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
    static bool VoldoetBoogDeel(const CVXCoordArr &arr, int nVan, int nTot, double dAfstandTol,
                                double dLengteTol, double dMaxR) {
        return arr.VoldoetBoogDeel(nVan, nTot, dAfstandTol, dLengteTol, dMaxR);
    }
};

} // namespace vx

namespace vxtest {

// Collects the lines a sink receives while it lives; Zet installs the sink, null restores the
// default.
template <void (*Zet)(void (*)(const char *))>
class SinkCatcher {
public:
    SinkCatcher() {
        Lines().clear();
        Zet(&Sink);
    }
    ~SinkCatcher() { Zet(nullptr); }
    SinkCatcher(const SinkCatcher &) = delete;
    SinkCatcher &operator=(const SinkCatcher &) = delete;

    static std::vector<std::string> &Lines() {
        static std::vector<std::string> lines;
        return lines;
    }
    size_t Count() const { return Lines().size(); }

private:
    static void Sink(const char *message) { Lines().emplace_back(message); }
};

// The assertion reports raised while it lives.
class AssertCatcher : public SinkCatcher<&vx::SetAssertSink> {
public:
    static std::vector<std::string> &Reports() { return Lines(); }
    // Whether one report carries this expression text.
    bool Has(const std::string &expression) const {
        for (const std::string &r : Reports())
            if (r.find("Assertion failure " + expression + " ") == 0) return true;
        return false;
    }
};

// The lines of the geometry's general trace written while it lives.
using TraceCatcher = SinkCatcher<&vx::SetGeometryTraceSink>;

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
