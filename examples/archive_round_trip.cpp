// Save and load an archive: a parcel boundary with an arc goes into an XML archive file and comes
// back. The section codes (straight, arc, ...) are in neither serial form of a point: a host that
// needs them stores them itself or sets them again after loading.
#include "vxcommon.h"

#include <cstdio>
#include <memory>
#include <string>

int main(int argc, char **argv) {
    using namespace vx;
    const std::string path = argc > 1 ? argv[1] : "parcel.xml";

    // Section codes: the first point starts the line, the next ones run straight from their
    // predecessor, and an arc is its start, a support point and an end point.
    constexpr char kStart = nSectieStart, kStraight = nSectieRecht, kArc = nSectieBoog;
    // Add stores a copy of the point it is given: the array owns its copies.
    const CVXCoord corners[] = {
        {0.0, 0.0, kStart},      {40.0, 0.0, kStraight},
        {40.0, 30.0, kStraight}, {20.0, 40.0, kArc}, // the arc's support point
        {0.0, 30.0, kArc},                           // and its end
        {0.0, 0.0, kStraight},
    };
    CVXCoordArr parcel;
    for (const CVXCoord &p : corners)
        parcel.Add(&p);
    {
        CArchiveX out(CVXString(path.c_str()), false);
        out.Save(u"Root", static_cast<const ISerObject *>(&parcel));
    } // the file is written when the archive goes

    CArchiveX in(CVXString(path.c_str()), true);
    ISerObject *loaded = nullptr;
    in.Load(u"Root", loaded);
    const std::unique_ptr<ISerObject> root(loaded);
    if (!root || !root->IsKindOf(CVXCoordArr::RTC())) {
        std::fprintf(stderr, "%s holds no point array\n", path.c_str());
        return 1;
    }
    // A generic load gives the plain array class, which does not own its points.
    auto *points = static_cast<CSerObArray *>(root.get());
    std::printf("%s: %d points back, section codes", path.c_str(),
                static_cast<int>(points->GetSize()));
    for (int32_t i = 0; i < points->GetSize(); ++i) {
        const auto *p = dynamic_cast<const CVXCoord *>(points->GetAt(i));
        std::printf(" %d", p ? p->nGetSectie() : -1);
    }
    std::printf(" (all 1: the archive does not keep them)\n");
    for (int32_t i = 0; i < points->GetSize(); ++i)
        delete points->GetAt(i);
    return 0;
}
