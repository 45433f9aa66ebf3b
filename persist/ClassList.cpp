// Every serialisable class of the library, named once here so that the linker keeps its object
// file (and with it the class's registration) even in a static link where nothing else refers
// to it. Each RTC() call only returns the class's static creator.
#include "persist/RuntimeCreator.h"

namespace vx {

void RegisterLibraryClasses() {
    const CRuntimeCreator *const creators[] = {nullptr};
    static_cast<void>(creators);
}

} // namespace vx
