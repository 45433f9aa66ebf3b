// A program written the way a user of the installed library writes one, in the forms the
// library's API promises (creator pointers, archives on files in memory, the string views).
#include "geometry/VXCoord.h"
#include "vxcommon.h"

#include <cstdio>
#include <memory>

namespace {

// A round trip of a line through the binary archive, checked the way users check what an
// archive hands them: by its creator, before the cast.
bool ArchiveRoundTrip() {
    using namespace vx;
    CVXCoordArr line;
    const CVXCoord point(1.0, 2.0);
    line.Add(&point); // the array keeps a copy
    CMemFile file;
    {
        CArchiveB ar(&file, CArchiveB::store);
        ar.WriteObject(&line);
    }
    file.SeekToBegin();
    CArchiveB ar(&file, CArchiveB::load);
    std::unique_ptr<ISerObject> back(ar.ReadObject(CVXCoordArr::RTC()));
    if (!back || !back->IsKindOf(CVXCoordArr::RTC())) return false;
    auto *arr = static_cast<CSerObArray *>(back.get());
    const bool ok = arr->GetSize() == 1;
    for (int32_t i = 0; i < arr->GetSize(); ++i)
        delete arr->GetAt(i); // a generic load's array does not own its elements
    return ok && CRuntimeCreator::RuntimeCreator(u"CExtents") == CExtents::RTC();
}

} // namespace

int main() {
    using namespace vx;
    CVXString s(u"consumer");
    s += u" ok";
    CVXCoord a(3.0, 4.0), b;
    double q = dDeel(1.0, 4.0);
    double v = 0.0;
    bool parsed = bString2Number(&v, u" 2.5 ");
    if (a.dDist(b) != 5.0 || q != 0.25 || !parsed || v != 2.5) return 1;
    if (!ArchiveRoundTrip()) return 1;
    std::printf("%s\n", static_cast<const char *>(s));
    return 0;
}
