// The serialisable classes of this folder, for the library's class list.
#include "persist/RuntimeCreator.h"

namespace vx {

void RegisterGeometryClasses() {
    const CRuntimeCreator *const creators[] = {nullptr};
    static_cast<void>(creators);
}

} // namespace vx
