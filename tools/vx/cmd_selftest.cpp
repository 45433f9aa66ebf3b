// vx selftest: a quick end-to-end check that the installed library behaves, for hosts and
// packagers. Each check computes a value through the library and compares it with a value
// known independently.
#include "Command.h"

#include "foundation/NumberText.h"
#include "geometry/Deel.h"
#include "geometry/VXCoord.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/VXStringArray.h"
#include "platform/File.h"
#include "platform/VXString.h"

#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vxtool {

namespace {

struct Check {
    const char *name;
    std::function<bool()> run;
};

std::vector<Check> Checks() {
    using namespace vx;
    return {
        {"string sharing and empty-is-null",
         [] {
             CVXString a(u"abc"), b(a), empty(u"");
             return a.GetData() == b.GetData() && empty.GetData() == nullptr;
         }},
        {"format with checked arguments",
         [] {
             CVXString s;
             s.Format(u"%5.2f|%-3d|%s", 3.14159, 7, u"x");
             return s == u" 3.14|7  |x";
         }},
        {"strict number parser",
         [] {
             double d = 0;
             int32_t l = 0;
             return bString2Number(&d, u" 1e3 ") && d == 1000.0 && !bString2Number(&l, u"12a");
         }},
        {"code page round trip",
         [] {
             const char bytes[] = "\x80\xE9";
             CVXString s(bytes);
             return s.GetLength() == 2 && s.GetAtU(0) == u'\u20AC' &&
                    std::string(static_cast<const char *>(s)) == bytes;
         }},
        {"coordinates and the guarded division",
         [] {
             const CVXCoord a(0.0, 0.0), b(3.0, 4.0);
             return a.dDist(b) == 5.0 && std::isnan(dDeel(1.0, 0.0)) && dDeel(1.0, 4.0) == 0.25;
         }},
        {"binary archive round trip",
         [] {
             CVXStringArray in, out;
             in.Add(CVXString(u"a"));
             CMemFile file;
             {
                 CArchiveB ar(&file, CArchiveB::store);
                 ar.WriteObject(&in);
             }
             file.SeekToBegin();
             CArchiveB ar(&file, CArchiveB::load);
             // The archive does not check the class of a new object against the one asked
             // for: a caller that needs a given class checks it before the cast.
             const std::unique_ptr<ISerObject> o(ar.ReadObject(CVXStringArray::RTC()));
             if (!o || !o->IsKindOf(CVXStringArray::RTC())) {
                 std::fprintf(stderr, "  expected a CVXStringArray, found %s\n",
                              o ? static_cast<const char *>(o->RuntimeCreator()->ClassName())
                                : "no object");
                 return false;
             }
             const auto *back = static_cast<const CVXStringArray *>(o.get());
             return back->GetSize() == 1 && back->GetAt(0) == u"a";
         }},
        {"XML archive round trip",
         [] {
             CArchiveX out(false);
             out.Save(u"d", 0.1);
             CArchiveX in(true);
             in.XML(out.XML());
             double d = 0;
             in.Load(u"d", d);
             return d == 0.1;
         }},
    };
}

int RunSelftest(const Args &args) {
    const bool verbose = !args.empty() && args[0] == "-v";
    int passed = 0, failed = 0;
    for (const Check &c : Checks()) {
        bool ok = false;
        try {
            ok = c.run();
        } catch (const std::exception &e) {
            std::fprintf(stderr, "  %s: %s\n", c.name, e.what());
        }
        if (ok)
            ++passed;
        else
            ++failed;
        if (verbose || !ok) std::printf("%s %s\n", ok ? "ok  " : "FAIL", c.name);
    }
    std::printf("selftest: %d passed, %d failed\n", passed, failed);
    return failed ? 1 : 0;
}

const VxCommand kSelftest(
    "selftest", "selftest [-v]   check the library end to end", RunSelftest,
    "Computes a few values through the installed library (coordinates, the guarded division,\n"
    "both archives) and compares each with a value known independently. Prints the failed\n"
    "checks and a summary line; exits 1 when a check fails.\n"
    "\n"
    "  -v  print every check, passed or not");

} // namespace

} // namespace vxtool
