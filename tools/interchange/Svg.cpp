#include "Svg.h"

#include "geometry/Extents.h"
#include "persist/XmlWriter.h"
#include "platform/CodePage.h"
#include "platform/VXString.h"

#include <algorithm>
#include <cmath>

namespace vxinterchange {

namespace {

using vx::CVXCoord;
using vx::CVXCoordArr;

// The drawing is this many pixels wide; its height follows the extents.
constexpr double kWidthPixels = 800.0;
// The margin around the extents, as a share of their larger side.
constexpr double kMarginShare = 0.05;
// Extents smaller than this (a point, nothing at all) are drawn as a box of this size.
constexpr double kSmallestSide = 1.0;
// The legend's text height, as a share of the larger side of the drawing with its margins (a
// power of two, so that the box's numbers stay short); rows are one and a half of it apart.
constexpr double kLegendShare = 1.0 / 32.0;
constexpr double kLegendRow = 1.5;
constexpr double kLegendGap = 0.5;
constexpr double kStrokePixels = 2.0;
constexpr double kFillOpacity = 0.25;

std::string Num(double v) {
    return NumberText(v);
}
// A point of the drawing: Y up becomes SVG's Y down. Subtracting from zero keeps a zero Y
// from turning into "-0".
std::string XY(const CVXCoord &p) {
    return Num(p.m_dX) + " " + Num(0.0 - p.m_dY);
}

// The text with the five XML escapes, for attribute values and element text.
std::string Escaped(const std::string &text) {
    vx::CVXString wide(vx::Utf8ToWide(text.data(), text.size()).c_str());
    vx::NXMLUtil::XMLEncodeReplace(wide);
    const char16_t *units = wide;
    return units ? vx::WideToUtf8(units, static_cast<size_t>(wide.GetLength())) : std::string();
}

// The cross product of (b − a) and (c − a).
double Cross(const CVXCoord &a, const CVXCoord &b, const CVXCoord &c) {
    return (b.m_dX - a.m_dX) * (c.m_dY - a.m_dY) - (b.m_dY - a.m_dY) * (c.m_dX - a.m_dX);
}

// SVG's sweep flag of the arc from s over m to e. The drawing looks as the map does (Y
// negated), but SVG counts angles towards its own Y axis, which points down: an arc that runs
// counter-clockwise on the map runs against SVG's positive sense, sweep 0.
const char *Sweep(const CVXCoord &s, const CVXCoord &m, const CVXCoord &e) {
    return Cross(s, m, e) > 0.0 ? "0" : "1";
}

// "A r r 0 large sweep x y" for the arc from s over m to e; "L x y" when the points give no
// circle. The arc is the larger one when the support point lies on the centre's side of the
// chord.
std::string ArcCommand(const CVXCoord &s, const CVXCoord &m, const CVXCoord &e) {
    const CVXCoord *const pts[3] = {&s, &m, &e};
    CVXCoord centre;
    if (CVXCoord::nBoogRichting(pts) == 0 || !centre.bMiddelPunt(pts)) return " L " + XY(e);
    const double r = centre.dDist(s);
    const bool large = Cross(s, e, m) * Cross(s, e, centre) > 0.0;
    return " A " + Num(r) + " " + Num(r) + " 0 " + (large ? "1" : "0") + " " + Sweep(s, m, e) +
           " " + XY(e);
}

// A whole circle: two half arcs, through the opposite point and back.
std::string CircleData(const CVXCoordArr &circle) {
    CVXCoord opposite;
    if (!OppositePoint(circle, opposite)) return "M " + XY(circle.Pt(0));
    const CVXCoord &start = circle.Pt(0);
    const std::string r = Num(start.dDist(opposite) / 2.0);
    // The sense of the circle's first three points decides the sense of both halves.
    const std::string sweep = Sweep(start, circle.Pt(1), circle.Pt(2));
    const std::string half = " A " + r + " " + r + " 0 0 " + sweep + " ";
    return "M " + XY(start) + half + XY(opposite) + half + XY(start) + " Z";
}

void Grow(vx::CExtents &ext, const Lines &lines) {
    for (const LinePtr &line : lines)
        WithoutSplines(*line).Extents(ext, false);
}

// The view box: the extents with a margin, at least kSmallestSide on each side, and above them
// a band for the legend: half a row, then one row and a half per layer. `unit` is the legend's
// text height.
struct ViewBox {
    double x, y, w, h;
    double unit;
};
ViewBox ViewOf(const std::vector<SvgLayer> &layers) {
    vx::CExtents ext;
    for (const SvgLayer &layer : layers)
        Grow(ext, *layer.lines);
    if (!ext.bCorrect()) ext.Reset(0.0, 0.0, kSmallestSide, kSmallestSide);
    const double w = std::max(ext.dGetSizeX(), kSmallestSide);
    const double h = std::max(ext.dGetSizeY(), kSmallestSide);
    const double margin = kMarginShare * std::max(w, h);
    const double unit = kLegendShare * (std::max(w, h) + 2 * margin);
    const double band = unit * (kLegendRow * static_cast<double>(layers.size()) + kLegendGap);
    return {ext.m_dXlo - margin, -ext.m_dYlo - h - margin - band, w + 2 * margin,
            h + 2 * margin + band, unit};
}

std::string LayerGroup(const SvgLayer &layer, const LineDone &done) {
    std::string g = "<g stroke=\"" + Escaped(layer.colour) + "\" fill=\"" +
                    (layer.fill ? Escaped(layer.colour) : "none") + "\" fill-opacity=\"" +
                    Num(kFillOpacity) + "\">\n";
    for (const LinePtr &line : *layer.lines) {
        const bool fill = layer.fill && IsRing(*line);
        g += "<path d=\"" + SvgPathData(*line) + "\"" + (fill ? "" : " fill=\"none\"") + "/>\n";
        if (done) done();
    }
    return g + "</g>\n";
}

std::string Legend(const std::vector<SvgLayer> &layers, const ViewBox &view) {
    const double size = view.unit;
    std::string g = "<g font-family=\"sans-serif\" font-size=\"" + Num(size) + "\">\n";
    for (size_t i = 0; i < layers.size(); ++i) {
        const double y = view.y + size * (kLegendRow * static_cast<double>(i) + kLegendRow);
        const double x = view.x + size;
        g += "<line x1=\"" + Num(x) + "\" y1=\"" + Num(y - size / 3) + "\" x2=\"" +
             Num(x + 2 * size) + "\" y2=\"" + Num(y - size / 3) + "\" stroke=\"" +
             Escaped(layers[i].colour) + "\"/>\n";
        g += "<text x=\"" + Num(x + 2.5 * size) + "\" y=\"" + Num(y) + "\" fill=\"black\">" +
             Escaped(layers[i].label) + "</text>\n";
    }
    return g + "</g>\n";
}

} // namespace

std::string SvgPathData(const CVXCoordArr &line) {
    if (line.GetSize() == 0) return "";
    if (IsCircle(line)) return CircleData(line);
    const CVXCoordArr flat = WithoutSplines(line);
    std::string d = "M " + XY(flat.Pt(0));
    int from = 0;
    for (const Stretch &s : StretchesOf(flat)) {
        d += s.arc ? ArcCommand(flat.Pt(from), flat.Pt(s.support), flat.Pt(s.end))
                   : " L " + XY(flat.Pt(s.end));
        from = s.end;
    }
    return IsRing(flat) ? d + " Z" : d;
}

std::string WriteSvg(const std::vector<SvgLayer> &layers, const LineDone &done) {
    const ViewBox view = ViewOf(layers);
    const double height = kWidthPixels * view.h / view.w;
    std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                      Num(kWidthPixels) + "\" height=\"" + Num(std::round(height)) +
                      "\" viewBox=\"" + Num(view.x) + " " + Num(view.y) + " " + Num(view.w) + " " +
                      Num(view.h) + "\">\n";
    // Strokes kStrokePixels wide at the drawing's own size, in the view box's units.
    svg += "<g stroke-width=\"" + Num(kStrokePixels * view.w / kWidthPixels) +
           "\" stroke-linejoin=\"round\" stroke-linecap=\"round\">\n";
    for (const SvgLayer &layer : layers)
        svg += LayerGroup(layer, done);
    svg += Legend(layers, view) + "</g>\n</svg>\n";
    return svg;
}

} // namespace vxinterchange
