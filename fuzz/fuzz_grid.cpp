// libFuzzer target: the correction grid readers of the Dutch and the Belgian national grids on
// arbitrary files. The input is written as both files of both grids; corrections are then asked
// at points on and off the grids. A damaged or short grid gives no correction, never a crash.
#include "FuzzSupport.h"
#include "geodesy/NationalGrid.h"
#include "geometry/VXCoord.h"
#include "platform/UserPrompt.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// The message about missing grids goes nowhere.
class CQuietPrompt : public vx::IUserPrompt {
public:
    int AskRetryCancel(const vx::CVXString &) override { return IDCANCEL; }
    void ShowMessage(const vx::CVXString &, int) override {}
    bool BreakRequested() override { return false; }
};

// Reads the double at `offset` of the input, 0 when the input is shorter.
double DoubleAt(const uint8_t *data, size_t size, size_t offset) {
    double v = 0.0;
    if (size >= offset + sizeof v) std::memcpy(&v, data + offset, sizeof v);
    return v;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static vxfuzz::CScratchDir dir;
    static CQuietPrompt prompt;
    if (size > 1u << 20) return 0;
    for (const char *name : {"X2c.grd", "Y2c.grd", "x_grid_Lb72.grd", "y_grid_Lb72.grd"})
        dir.Write(name, data, size);
    setenv("VXCOMMON_DATA", dir.Path().c_str(), 1);
    vx::SetUserPrompt(&prompt);

    // Points: the Lambert header's corners (x min, y min at bytes 8 and 24), its middle, and
    // fixed points inside the Dutch grid and outside both.
    const double x0 = DoubleAt(data, size, 8), y0 = DoubleAt(data, size, 24);
    const double x1 = DoubleAt(data, size, 16), y1 = DoubleAt(data, size, 32);
    const double points[][2] = {{x0, y0},
                                {x1, y1},
                                {(x0 + x1) / 2, (y0 + y1) / 2},
                                {155000.0, 463000.0},
                                {-7999.0, 288001.0},
                                {1e300, -1e300}};
    vx::CProjection_LAMBERT72CORR lambert;
    vx::CProjection_RDNAPTRANS2004 rd;
    for (const auto &p : points) {
        double dx = 0.0, dy = 0.0;
        lambert.Correction(vx::CVXCoord(p[0], p[1]), dx, dy);
        vx::CEllCoord ell;
        rd.ProjectionToEll(ell, vx::CVXCoord(p[0], p[1]));
    }
    vx::SetUserPrompt(nullptr);
    return 0;
}
