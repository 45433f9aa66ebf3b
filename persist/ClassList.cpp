// Every serialisable class of the library is named by its folder's registration function, so
// that the linker keeps its object file (and with it the class's registration) even in a static
// link where nothing else refers to it. Calling RTC() only returns the class's static creator.
#include "persist/RuntimeCreator.h"

namespace vx {

void RegisterPersistClasses();
void RegisterStringCollectionClasses();
void RegisterGeometryClasses();
void RegisterGeodesyClasses();
void RegisterTransformClasses();
void RegisterInstrumentClasses();

void RegisterLibraryClasses() {
    RegisterPersistClasses();
    RegisterStringCollectionClasses();
#if VX_HAVE_GEOMETRY
    RegisterGeometryClasses();
#endif
#if VX_HAVE_GEODESY
    RegisterGeodesyClasses();
#endif
#if VX_HAVE_TRANSFORM
    RegisterTransformClasses();
#endif
#if VX_HAVE_INSTRUMENT
    RegisterInstrumentClasses();
#endif
}

} // namespace vx
