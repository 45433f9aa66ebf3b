// A program written the way a user of the installed library writes one.
#include "geometry/VXCoord.h"
#include "vxcommon.h"

#include <cstdio>

int main() {
    using namespace vx;
    CVXString s(u"consumer");
    s += u" ok";
    CVXCoord a(3.0, 4.0), b;
    double q = dDeel(1.0, 4.0);
    double v = 0.0;
    bool parsed = bString2Number(&v, u" 2.5 ");
    if (a.dDist(b) != 5.0 || q != 0.25 || !parsed || v != 2.5) return 1;
    std::printf("%s\n", static_cast<const char *>(s));
    return 0;
}
