// Helpers shared by the geometry tests: catching assertion reports and building
// lines from (x, y, code) triples.
#pragma once

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

// Collects the assertion reports raised while it lives.
class AssertCatcher {
public:
    AssertCatcher() {
        Reports().clear();
        vx::SetAssertSink(&Sink);
    }
    ~AssertCatcher() { vx::SetAssertSink(nullptr); }
    AssertCatcher(const AssertCatcher &) = delete;
    AssertCatcher &operator=(const AssertCatcher &) = delete;

    static std::vector<std::string> &Reports() {
        static std::vector<std::string> reports;
        return reports;
    }
    // Whether one report carries this expression text.
    bool Has(const std::string &expression) const {
        for (const std::string &r : Reports())
            if (r.find("Assertion failure " + expression + " ") == 0) return true;
        return false;
    }
    size_t Count() const { return Reports().size(); }

private:
    static void Sink(const char *message) { Reports().emplace_back(message); }
};

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
