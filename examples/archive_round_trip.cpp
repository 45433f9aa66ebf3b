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

    CVXCoordArr parcel;
    parcel.Add(new CVXCoord(0.0, 0.0));
    parcel.Add(new CVXCoord(40.0, 0.0));
    parcel.Add(new CVXCoord(40.0, 30.0));
    parcel.Add(new CVXCoord(20.0, 40.0)); // the arc's middle point
    parcel.Add(new CVXCoord(0.0, 30.0));
    parcel.Add(new CVXCoord(0.0, 0.0));
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
    std::printf("%s: %d points back\n", path.c_str(), static_cast<int>(points->GetSize()));
    for (int32_t i = 0; i < points->GetSize(); ++i)
        delete points->GetAt(i);
    return 0;
}
