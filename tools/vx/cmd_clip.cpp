// vx clip: cuts one line or polygon (A) by another (B) with the library's clipper and prints
// the pieces inside and outside B as WKT, optionally with a drawing of all four.
#include "Command.h"
#include "InterchangeSupport.h"

#include "LineFiles.h"
#include "Svg.h"
#include "Wkt.h"

#include "geometry/ClipList.h"
#include "geometry/VXCoordArr.h"

#include <cstdio>
#include <memory>
#include <string>

namespace vxtool {

namespace {

using vxinterchange::Lines;

const char kUsage[] = "usage: vx clip A B [--svg FILE]";
const char kHelp[] = "clip A B [--svg FILE]   cut the line or polygon in A by the one in B, "
                     "print the pieces inside and outside B as WKT";
const char kText[] =
    "A and B are files of one line or polygon each: WKT text (arcs as CIRCULARSTRING, "
    "COMPOUNDCURVE or CURVEPOLYGON), an XML archive or a binary archive, told apart by their "
    "content. A is cut by B as a polygon when A is closed, else as a line; arcs stay arcs in the "
    "pieces. Each piece is printed on a line of its own, \"inside: \" or \"outside: \" and its "
    "WKT, the pieces inside first.\n"
    "\n"
    "  --svg FILE   also draw A, B and the pieces (inside and outside in two colours, with a "
    "legend) into the SVG file FILE\n"
    "\n"
    "When A and B do not cut each other (no crossing, a single touching point, or the same "
    "polygon twice) nothing is printed and a note says so on standard error; a polygon lying "
    "wholly inside the other is such a case. Exit codes: 0 done, 1 the drawing could not be "
    "written, 2 bad usage or input.";

// Colours of the drawing: the inputs in greys, the pieces in two clear colours.
const char kColourA[] = "#555555";
const char kColourB[] = "#999999";
const char kColourInside[] = "#2ca02c";
const char kColourOutside[] = "#ff7f0e";

// The one line of the file.
vxinterchange::LinePtr ReadOneLine(const std::string &path) {
    Lines lines = vxinterchange::ReadLinesFile(path);
    if (lines.size() != 1)
        throw std::runtime_error(path + ": holds " + std::to_string(lines.size()) +
                                 " lines; vx clip takes one line or polygon from each file");
    return std::move(lines.front());
}

Lines Copies(const vx::CVXCoordArrList &list) {
    Lines out;
    vx::POSITION pos = list.GetHeadPosition();
    while (pos)
        out.push_back(std::make_unique<vx::CVXCoordArr>(*list.GetNext(pos)));
    return out;
}

std::string Listing(const char *label, const Lines &pieces) {
    std::string text;
    for (const vxinterchange::LinePtr &piece : pieces)
        text += std::string(label) + ": " + vxinterchange::WriteWkt(*piece) + "\n";
    return text;
}

std::string Drawing(const Options &opt, const Lines &a, const Lines &b, const Lines &inside,
                    const Lines &outside) {
    return vxinterchange::WriteSvg({
        {&a, "A: " + opt.positional[0], kColourA, false},
        {&b, "B: " + opt.positional[1], kColourB, false},
        {&inside, "inside B (" + std::to_string(inside.size()) + ")", kColourInside, true},
        {&outside, "outside B (" + std::to_string(outside.size()) + ")", kColourOutside, true},
    });
}

int RunClip(const Args &args) {
    Options opt;
    if (const int rc = ParseOptions(args, {"--svg"}, 2, kUsage, opt)) return rc;
    Lines a, b;
    a.push_back(ReadOneLine(opt.positional[0]));
    b.push_back(ReadOneLine(opt.positional[1]));
    vx::CVXCoordArrList binnen, buiten;
    // A is cut as a polygon when the library takes it for closed (within its tolerance).
    const bool polygon = a.front()->bGesloten() || a.front()->bCirkel();
    const bool cut =
        a.front()->bSnijPoly(binnen, buiten, *b.front(), vx::ClipField(true, true, false), polygon);
    const Lines inside = Copies(binnen);
    const Lines outside = Copies(buiten);
    if (!cut) std::fprintf(stderr, "vx clip: A and B do not cut each other\n");
    if (const int rc = EmitText(Listing("inside", inside) + Listing("outside", outside), ""))
        return rc;
    if (!opt.Has("--svg")) return 0;
    return EmitText(Drawing(opt, a, b, inside, outside), opt.Value("--svg"));
}

const VxCommand g_clip("clip", kHelp, &RunClip, kText);

} // namespace

} // namespace vxtool
