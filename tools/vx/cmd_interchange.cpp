// vx import, vx export, vx draw: lines between the library's archives and the interchange
// formats (WKT, GeoJSON, SVG). The formats live in tools/interchange; this file reads the
// arguments, reports, and shows progress on a terminal.
#include "Command.h"
#include "InterchangeSupport.h"

#include "GeoJson.h"
#include "LineFiles.h"
#include "Svg.h"
#include "Wkt.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

namespace vxtool {

namespace {

using vxinterchange::Lines;

// A tolerance outside this range is refused: below it an arc could become more chords than
// memory holds, above it every arc is its chord anyway.
constexpr double kMinTolerance = 1e-6;
constexpr double kMaxTolerance = 1e6;

const char kImportUsage[] = "usage: vx import IN OUT";
const char kImportHelp[] = "import IN OUT   save the lines of IN (WKT or an archive) as an archive "
                           "(OUT ending in .xml: XML, else binary)";
const char kImportText[] =
    "Reads every line and polygon of IN and saves them as an archive document OUT, so that an "
    "archive can be made without writing a program. IN is told by its content: WKT text, an "
    "XML archive or a binary archive. WKT curves map exactly onto the library's section codes: "
    "a CIRCULARSTRING of 2n+1 points is n three-point arcs, one of three points that ends on its "
    "start is a whole circle; COMPOUNDCURVE, CURVEPOLYGON and the MULTI forms are read too. "
    "A WKT error is reported with its character position and what was expected there.\n"
    "\n"
    "A point's serial forms do not hold its section code, so the archive holds an array in "
    "which every line is followed by a word array of its section codes; vx export, draw and "
    "clip read them back. Other programs of the family see the lines as arrays of points.\n"
    "\n"
    "OUT is written beside itself and renamed over the old file only when complete. Exit "
    "codes: 0 done, 1 OUT could not be written, 2 bad usage or input.";

const char kExportUsage[] = "usage: vx export FILE --to wkt|geojson [--tolerance T] [--output OUT]";
const char kExportHelp[] = "export FILE --to wkt|geojson [--tolerance T] [--output OUT]   write "
                           "the lines of an archive or WKT file as WKT or GeoJSON";
const char kExportText[] =
    "Writes every line of FILE (an XML or binary archive, or WKT) to standard output, or to OUT. "
    "WKT keeps arcs: a line of arcs is a CIRCULARSTRING, a mix a COMPOUNDCURVE, a closed line a "
    "POLYGON or CURVEPOLYGON; one geometry per line of text, numbers in their shortest exact "
    "form. GeoJSON (a FeatureCollection of LineString and Polygon features) has no arcs: each "
    "arc becomes chords that lie within the tolerance of it. Splines become 16 chords per "
    "interval in either format.\n"
    "\n"
    "  --to wkt|geojson   the output format\n"
    "  --tolerance T      the largest distance between an arc and its chords in GeoJSON, in "
    "ground units (default 0.01, from 1e-06 to 1e+06)\n"
    "  --output OUT       write OUT (replaced only when complete) instead of standard output\n"
    "\n"
    "A progress bar is shown on standard error when that is a terminal. Exit codes: 0 done, "
    "1 the output could not be written, 2 bad usage or input.";

const char kDrawUsage[] = "usage: vx draw FILE --svg OUT";
const char kDrawHelp[] = "draw FILE --svg OUT   draw the lines of an archive or WKT file as SVG";
const char kDrawText[] =
    "Draws every line of FILE (an XML or binary archive, or WKT) into the SVG file OUT: arcs as "
    "true SVG arcs, circles as two half arcs, splines as chords, closed lines filled lightly, "
    "with the Y axis up as on a map and a legend that names the file. OUT is replaced only when "
    "complete.\n"
    "\n"
    "  --svg OUT   the drawing to write\n"
    "\n"
    "Exit codes: 0 done, 1 OUT could not be written, 2 bad usage or input.";

// Every line of the file; a file without lines is bad input.
Lines ReadSomeLines(const std::string &path) {
    Lines lines = vxinterchange::ReadLinesFile(path);
    if (lines.empty()) throw std::runtime_error(path + ": holds no lines");
    return lines;
}

bool ParseTolerance(const std::string &text, double &tolerance) {
    char *end = nullptr;
    errno = 0;
    tolerance = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && errno == 0 && tolerance >= kMinTolerance &&
           tolerance <= kMaxTolerance;
}

int RunImport(const Args &args) {
    Options opt;
    if (const int rc = ParseOptions(args, {}, 2, kImportUsage, opt)) return rc;
    const Lines lines = ReadSomeLines(opt.positional[0]);
    const std::string &out = opt.positional[1];
    try {
        vxinterchange::SaveLinesArchive(out, lines);
    } catch (const std::exception &e) {
        Fail(e.what());
        return kOutputFailed;
    }
    std::printf("%zu line%s saved in %s\n", lines.size(), lines.size() == 1 ? "" : "s",
                out.c_str());
    return 0;
}

int RunExport(const Args &args) {
    Options opt;
    if (const int rc =
            ParseOptions(args, {"--to", "--tolerance", "--output"}, 1, kExportUsage, opt))
        return rc;
    if (!opt.Has("--to")) return Fail(std::string("--to is required\n") + kExportUsage);
    const std::string &to = opt.Value("--to");
    if (to != "wkt" && to != "geojson")
        return Fail("unknown format '" + to + "': give wkt or geojson");
    double tolerance = vxinterchange::kDefaultArcTolerance;
    if (opt.Has("--tolerance") && !ParseTolerance(opt.Value("--tolerance"), tolerance))
        return Fail("the tolerance must be a number from 1e-06 to 1e+06, not '" +
                    opt.Value("--tolerance") + "'");
    const Lines lines = ReadSomeLines(opt.positional[0]);
    std::string text;
    {
        CLineProgress progress(IDS_VX_EXPORT, lines.size());
        text = to == "wkt" ? vxinterchange::WriteWkt(lines, progress.Step())
                           : vxinterchange::WriteGeoJson(lines, tolerance, progress.Step());
    }
    return EmitText(text, opt.Has("--output") ? opt.Value("--output") : std::string());
}

int RunDraw(const Args &args) {
    Options opt;
    if (const int rc = ParseOptions(args, {"--svg"}, 1, kDrawUsage, opt)) return rc;
    if (!opt.Has("--svg")) return Fail(std::string("--svg is required\n") + kDrawUsage);
    const std::string &in = opt.positional[0];
    const Lines lines = ReadSomeLines(in);
    std::string svg;
    {
        CLineProgress progress(IDS_VX_DRAW, lines.size());
        svg = vxinterchange::WriteSvg({{&lines, in, "#1f77b4", true}}, progress.Step());
    }
    return EmitText(svg, opt.Value("--svg"));
}

const VxCommand g_import("import", kImportHelp, &RunImport, kImportText);
const VxCommand g_export("export", kExportHelp, &RunExport, kExportText);
const VxCommand g_draw("draw", kDrawHelp, &RunDraw, kDrawText);

} // namespace

} // namespace vxtool
