// SVG drawings of lines, for a person to look at: each layer in its own colour, arcs as SVG arc
// commands (radius, large-arc and sweep flags from the three points), whole circles as two
// half arcs, splines as chords (Lines.h). The drawing's Y axis points up, as on a map: every Y
// is written negated. The view box is the extents of all layers with a margin and, above
// them, a band where a legend names the layers. Strokes are 2 pixels wide at the drawing's
// size of 800 pixels across.
#pragma once

#include "Lines.h"

#include <string>
#include <vector>

namespace vxinterchange {

struct SvgLayer {
    const Lines *lines;
    std::string label;  // the legend text; escaped when written
    std::string colour; // an SVG colour, e.g. "#1f77b4"
    bool fill;          // rings filled with a light tint of the colour
};

// The path data ("M x y L x y A r r 0 large sweep x y ...") of one line, Y negated.
std::string SvgPathData(const vx::CVXCoordArr &line);

// The whole document. Layers without lines are drawn in the legend only.
std::string WriteSvg(const std::vector<SvgLayer> &layers, const LineDone &done = {});

} // namespace vxinterchange
