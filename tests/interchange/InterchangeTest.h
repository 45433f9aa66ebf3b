// Helpers of the interchange tests.
#pragma once

#include "geometry/VXCoordArr.h"

#include <vector>

namespace vxinterchangetest {

// The section codes of the line's points, in order.
inline std::vector<int> Codes(const vx::CVXCoordArr &line) {
    std::vector<int> codes;
    for (int i = 0; i < line.GetSize(); ++i)
        codes.push_back(line.Pt(i).m_nSectie);
    return codes;
}

} // namespace vxinterchangetest
