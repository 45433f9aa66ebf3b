#include "DemoProject.h"

#include "geodesy/NationalGrid.h"
#include "geometry/VXCoordArr.h"
#include "persist/ArchiveFiles.h"

#include "LineFiles.h"

#include <cmath>
#include <memory>
#include <utility>

namespace vxtool {

namespace {

// Near the origin of the Dutch grid, in metres; heights are NAP.
constexpr double kX0 = 155000.0;
constexpr double kY0 = 463000.0;
constexpr double kParcelHeight = 1.25;

// A parcel is 40 m by 30 m with its north-east corner rounded by an arc of 8 m radius.
constexpr double kWidth = 40.0;
constexpr double kDepth = 30.0;
constexpr double kCornerRadius = 8.0;

struct SPoint {
    double x, y;
    vx::SectieCode code;
};

vxinterchange::LinePtr Line(const std::vector<SPoint> &points, double z) {
    auto line = std::make_unique<vx::CVXCoordArr>();
    for (const SPoint &p : points) {
        const vx::CVXCoord c(kX0 + p.x, kY0 + p.y, z, static_cast<char>(p.code));
        line->Add(&c);
    }
    return line;
}

vxinterchange::LinePtr Parcel(double dx, double dy) {
    const double cx = dx + kWidth - kCornerRadius; // the centre of the rounded corner
    const double cy = dy + kDepth - kCornerRadius;
    const double d = kCornerRadius / std::sqrt(2.0);
    return Line({{dx, dy, vx::nSectieStart},
                 {dx + kWidth, dy, vx::nSectieRecht},
                 {dx + kWidth, cy, vx::nSectieRecht},
                 {cx + d, cy + d, vx::nSectieBoog},
                 {cx, dy + kDepth, vx::nSectieBoog},
                 {dx, dy + kDepth, vx::nSectieRecht},
                 {dx, dy, vx::nSectieRecht}},
                kParcelHeight);
}

// The plan boundary: a rectangle whose west side is an arc of radius 75 m bulging west, so that
// it cuts two parcels along a curve; its east side cuts a third one straight.
vxinterchange::LinePtr Boundary() {
    return Line({{20, -10, vx::nSectieStart},
                 {95, -10, vx::nSectieRecht},
                 {95, 80, vx::nSectieRecht},
                 {20, 80, vx::nSectieRecht},
                 {5, 35, vx::nSectieBoog},
                 {20, -10, vx::nSectieBoog}},
                0.0);
}

} // namespace

void WriteDemoProject(const std::string &path) {
    vx::CProjection_RDNAPTRANS2008 projection;
    vxinterchange::Lines lines;
    lines.push_back(Boundary());
    // Two cut by the arc, one wholly inside, one cut by the straight east side, one outside.
    for (const auto &[dx, dy] : {std::pair{0.0, 0.0}, std::pair{0.0, 40.0}, std::pair{45.0, 0.0},
                                 std::pair{70.0, 40.0}, std::pair{120.0, 0.0}})
        lines.push_back(Parcel(dx, dy));
    vx::CSerObArray root;
    root.Add(&projection);
    vxinterchange::CodeArrays codes;
    vxinterchange::AddLinesWithCodes(root, lines, codes);
    const vx::CVXString target(path.c_str());
    vx::SaveArchiveRoot(target, root, vx::ArchiveFormatForPath(target));
}

} // namespace vxtool
