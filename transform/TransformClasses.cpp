// The serialisable classes of this folder, for the library's class list.
#include "persist/RuntimeCreator.h"
#include "transform/TransHelmert.h"

namespace vx {

void RegisterTransformClasses() {
    const CRuntimeCreator *const creators[] = {CTransRecord::RTC(), CTransTabel::RTC()};
    static_cast<void>(creators);
}

} // namespace vx
