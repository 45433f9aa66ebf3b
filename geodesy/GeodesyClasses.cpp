// The serialisable classes of this folder, for the library's class list.
#include "geodesy/NationalGrid.h"
#include "geodesy/ProjLambert.h"
#include "geodesy/ProjNone.h"
#include "geodesy/ProjRSO.h"
#include "geodesy/ProjStereo.h"
#include "geodesy/ProjSwiss.h"
#include "geodesy/ProjTM.h"
#include "persist/RuntimeCreator.h"

namespace vx {

void RegisterGeodesyClasses() {
    const CRuntimeCreator *const creators[] = {
        CProjection_NONE::RTC(),
        CProjection_STEREOGRAPHIC::RTC(),
        CProjection_RD::RTC(),
        CProjection_LB_LAMBERT1::RTC(),
        CProjection_LB_LAMBERT2::RTC(),
        CProjection_LAMBERT72::RTC(),
        CProjection_LAMBERT2008::RTC(),
        CProjection_LAMBERT72Old::RTC(),
        CProjection_TM_TM::RTC(),
        CProjection_TM_GAUSS_KRUGER::RTC(),
        CProjection_TM_NORTH::RTC(),
        CProjection_TM_SOUTH::RTC(),
        CProjection_BRSO::RTC(),
        CProjection_MRSO::RTC(),
        CProjection_SWISS::RTC(),
        CProjection_RDNAPTRANS2004::RTC(),
        CProjection_RDNAPTRANS2008::RTC(),
        CProjection_RD2000::RTC(),
        CProjection_LAMBERT72CORR::RTC(),
    };
    static_cast<void>(creators);
}

} // namespace vx
