// The serialisable classes of this folder, for the library's class list.
#include "instrument/Instrument.h"
#include "persist/RuntimeCreator.h"

namespace vx {

void RegisterInstrumentClasses() {
    const CRuntimeCreator *const creators[] = {CInstrumentTachy::RTC(), CInstrumentGPS::RTC()};
    static_cast<void>(creators);
}

} // namespace vx
