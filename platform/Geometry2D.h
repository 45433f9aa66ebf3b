// The platform's small integer point and rectangle (window and raster coordinates).
#pragma once

#include "platform/VXExport.h"

#include <cstdint>
#include <utility>

namespace vx VX_API {

struct CPoint {
    int32_t x = 0;
    int32_t y = 0;

    CPoint() = default;
    CPoint(int32_t initX, int32_t initY) : x(initX), y(initY) {}
    friend bool operator==(const CPoint &, const CPoint &) = default;
};

// A rectangle by its edges; right and bottom lie outside it, as on the original platform.
struct CRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    CRect() = default;
    CRect(int32_t l, int32_t t, int32_t r, int32_t b) : left(l), top(t), right(r), bottom(b) {}

    // Differences in 64 bits, so that extreme edges give a true (possibly large) width.
    int64_t Width() const { return int64_t(right) - left; }
    int64_t Height() const { return int64_t(bottom) - top; }
    // Empty when the width or the height is not positive.
    bool IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
    // Swaps edges so that left <= right and top <= bottom.
    void NormalizeRect() {
        if (left > right) std::swap(left, right);
        if (top > bottom) std::swap(top, bottom);
    }
    // Inside when left <= x < right and top <= y < bottom.
    bool PtInRect(const CPoint &pt) const {
        return pt.x >= left && pt.x < right && pt.y >= top && pt.y < bottom;
    }
    friend bool operator==(const CRect &, const CRect &) = default;
};

} // namespace VX_API
