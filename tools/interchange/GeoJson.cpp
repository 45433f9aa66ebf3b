#include "GeoJson.h"

#include <stdexcept>

namespace vxinterchange {

namespace {

using vx::CVXCoord;
using vx::CVXCoordArr;

std::string Position(const CVXCoord &p, bool z) {
    std::string t = "[";
    t += NumberText(p.m_dX);
    t += ',';
    t += NumberText(p.m_dY);
    if (z) {
        t += ',';
        t += NumberText(p.m_dZ);
    }
    return t + "]";
}

std::string Positions(const CVXCoordArr &line) {
    const bool z = AllHaveZ(line);
    std::string t = "[";
    for (int i = 0; i < line.GetSize(); ++i) {
        if (i != 0) t += ',';
        t += Position(line.Pt(i), z);
    }
    return t + "]";
}

std::string Feature(const CVXCoordArr &line, double arcTolerance) {
    constexpr int kFewestPoints = 2;
    if (line.GetSize() < kFewestPoints)
        throw std::invalid_argument("a line of fewer than two points has no GeoJSON form");
    CVXCoordArr flat = WithoutSplines(line);
    flat.bArcsToLines(arcTolerance); // false only says that there was no arc
    const bool ring = IsRing(flat);
    const std::string geometry =
        ring ? R"({"type":"Polygon","coordinates":[)" + Positions(flat) + "]}"
             : R"({"type":"LineString","coordinates":)" + Positions(flat) + "}";
    return R"({"type":"Feature","properties":{},"geometry":)" + geometry + "}";
}

} // namespace

std::string WriteGeoJson(const Lines &lines, double arcTolerance, const LineDone &done) {
    std::string text = R"({"type":"FeatureCollection","features":[)";
    for (size_t i = 0; i < lines.size(); ++i) {
        text += (i == 0 ? "\n" : ",\n") + Feature(*lines[i], arcTolerance);
        if (done) done();
    }
    return text + "\n]}\n";
}

} // namespace vxinterchange
