// The serialisable classes of this folder, for the library's class list: every class of the
// projection table. Asking each row for its creator keeps the classes' object files in a static
// link.
#include "geodesy/ProjectionTable.h"
#include "persist/RuntimeCreator.h"

namespace vx {

void RegisterGeodesyClasses() {
    for (const SProjectionEntry &e : ProjectionTable())
        static_cast<void>(e.pCreator());
}

} // namespace vx
