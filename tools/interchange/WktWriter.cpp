// The WKT writer: a line is cut into runs of straight stretches and runs of arcs; one run is a
// LINESTRING or a CIRCULARSTRING, several are the parts of a COMPOUNDCURVE; a ring is wrapped
// in POLYGON or CURVEPOLYGON.
#include "Wkt.h"

#include <stdexcept>
#include <vector>

namespace vxinterchange {

namespace {

using vx::CVXCoord;
using vx::CVXCoordArr;

// Consecutive stretches of one kind, as the indices of their points (the first is the start
// the run shares with the run before it).
struct Run {
    bool arcs;
    std::vector<int> points;
};

std::vector<Run> RunsOf(const CVXCoordArr &line) {
    std::vector<Run> runs;
    for (const Stretch &s : StretchesOf(line)) {
        if (runs.empty() || runs.back().arcs != s.arc) {
            const int start = runs.empty() ? 0 : runs.back().points.back();
            runs.push_back({s.arc, {start}});
        }
        if (s.arc) runs.back().points.push_back(s.support);
        runs.back().points.push_back(s.end);
    }
    return runs;
}

class CWktText {
public:
    CWktText(const CVXCoordArr &line, bool ring)
        : m_line(line), m_z(AllHaveZ(line)), m_ring(ring) {}

    // "KEYWORD" or "KEYWORD Z", and a blank before the opening parenthesis.
    std::string Keyword(const char *word) const { return std::string(word) + (m_z ? " Z " : " "); }

    std::string PointText(const CVXCoord &p) const {
        std::string t = NumberText(p.m_dX);
        t += ' ';
        t += NumberText(p.m_dY);
        if (m_z) {
            t += ' ';
            t += NumberText(p.m_dZ);
        }
        return t;
    }
    std::string PointText(int i) const { return PointText(m_line.Pt(i)); }
    std::string PointList(const std::vector<int> &points) const {
        std::string t = "(";
        for (size_t k = 0; k < points.size(); ++k)
            t += (k == 0 ? "" : ", ") + PointText(points[k]);
        return t + ")";
    }
    std::string RunText(const Run &run, bool alone) const {
        if (run.arcs) return Keyword("CIRCULARSTRING") + PointList(run.points);
        return alone ? Keyword("LINESTRING") + PointList(run.points) : PointList(run.points);
    }
    std::string Curve(const std::vector<Run> &runs) const {
        if (runs.size() == 1) return RunText(runs.front(), true);
        std::string t = Keyword("COMPOUNDCURVE") + "(";
        for (size_t k = 0; k < runs.size(); ++k)
            t += (k == 0 ? "" : ", ") + RunText(runs[k], false);
        return t + ")";
    }
    std::string Circle() const {
        CVXCoord opposite;
        if (!OppositePoint(m_line, opposite))
            throw std::invalid_argument("a circle whose first three points give no centre");
        const std::string start = PointText(m_line.Pt(0));
        return Keyword("CURVEPOLYGON") + "(" + Keyword("CIRCULARSTRING") + "(" + start + ", " +
               PointText(opposite) + ", " + start + "))";
    }
    std::string Line() const {
        if (IsCircle(m_line)) return Circle();
        const std::vector<Run> runs = RunsOf(m_line);
        if (!m_ring) return Curve(runs);
        if (runs.size() == 1 && !runs.front().arcs)
            return Keyword("POLYGON") + "(" + PointList(runs.front().points) + ")";
        return Keyword("CURVEPOLYGON") + "(" + Curve(runs) + ")";
    }

private:
    const CVXCoordArr &m_line;
    bool m_z;
    bool m_ring;
};

} // namespace

std::string WriteWkt(const CVXCoordArr &line) {
    constexpr int kFewestPoints = 2;
    if (line.GetSize() < kFewestPoints)
        throw std::invalid_argument("a line of fewer than two points has no WKT form");
    const CVXCoordArr flat = WithoutSplines(line);
    return CWktText(flat, IsRing(flat)).Line();
}

std::string WriteWkt(const Lines &lines, const LineDone &done) {
    std::string text;
    for (const LinePtr &line : lines) {
        text += WriteWkt(*line) + "\n";
        if (done) done();
    }
    return text;
}

} // namespace vxinterchange
