// The serialisable classes of this folder, for the library's class list.
#include "geometry/Extents.h"
#include "geometry/VXCoord.h"
#include "persist/RuntimeCreator.h"

namespace vx {

void RegisterGeometryClasses() {
    const CRuntimeCreator *const creators[] = {CVXCoord::RTC(), CExtents::RTC()};
    static_cast<void>(creators);
}

} // namespace vx
