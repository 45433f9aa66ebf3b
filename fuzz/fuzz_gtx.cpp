// libFuzzer target: the GTX geoid grid reader on an arbitrary file, then heights at points taken
// from the input. A malformed grid must load as no grid, never read outside what it holds.
#include "FuzzSupport.h"
#include "geodesy/Geoid.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static vxfuzz::CScratchDir dir;
    if (size > 1u << 20) return 0;
    dir.Write("geoid.gtx", data, size);
    vx::CGtxGeoidModel model(vx::CVXString((dir.Path() + "/geoid.gtx").c_str()));
    // The header's own corner and a few points from the input bytes.
    double lat = 0.0, lon = 0.0;
    if (size >= 16) {
        std::memcpy(&lat, data, sizeof lat);
        std::memcpy(&lon, data + 8, sizeof lon);
    }
    const double points[][2] = {
        {lat, lon}, {52.0, 5.0}, {-90.0, -180.0}, {90.0, 540.0}, {lat + 0.5, lon - 0.5}};
    for (const auto &p : points)
        model.GeoidHeight(p[0], p[1]);
    return 0;
}
