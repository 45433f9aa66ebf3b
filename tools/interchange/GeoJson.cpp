#include "GeoJson.h"

#include <stdexcept>
#include <string>

namespace vxinterchange {

namespace {

using vx::CVXCoord;
using vx::CVXCoordArr;

// The positions of one line, written as they come so that no flattened copy of the whole line
// is ever held; counted against the budget of the whole collection.
class CPositions {
public:
    CPositions(std::string &text, size_t &budget, bool z)
        : m_text(text), m_budget(budget), m_z(z) {}

    void Add(const CVXCoord &p) {
        if (m_budget == 0)
            throw std::length_error("the arcs would become too many positions: give a larger "
                                    "tolerance");
        --m_budget;
        m_text += m_first ? "[" : ",[";
        m_first = false;
        m_text += NumberText(p.m_dX);
        m_text += ',';
        m_text += NumberText(p.m_dY);
        if (m_z) {
            m_text += ',';
            m_text += NumberText(p.m_dZ);
        }
        m_text += ']';
    }
    // The chords of a line made of arcs, without its first point (bArcsToLines on the arc or
    // circle alone, so that no more than one arc's chords exist at a time).
    void AddChords(CVXCoordArr &curve, double arcTolerance) {
        curve.bArcsToLines(arcTolerance);
        for (int k = 1; k < curve.GetSize(); ++k)
            Add(curve.Pt(k));
    }

private:
    std::string &m_text;
    size_t &m_budget;
    bool m_z;
    bool m_first = true;
};

void AddArc(CPositions &out, const CVXCoordArr &line, int from, const Stretch &s,
            double arcTolerance) {
    CVXCoordArr arc;
    for (const int i : {from, s.support, s.end})
        arc.Add(&line.Pt(i));
    arc.GetAt(0)->SetSectie(static_cast<char>(vx::nSectieStart));
    out.AddChords(arc, arcTolerance);
}

void AddFeature(std::string &text, const CVXCoordArr &line, double arcTolerance, size_t &budget) {
    constexpr int kFewestPoints = 2;
    if (line.GetSize() < kFewestPoints)
        throw std::invalid_argument("a line of fewer than two points has no GeoJSON form");
    CVXCoordArr plain = WithoutSplines(line);
    const bool ring = IsRing(plain); // the chords keep the first and the last point
    text += R"({"type":"Feature","properties":{},"geometry":{"type":)";
    text += ring ? R"("Polygon","coordinates":[[)" : R"("LineString","coordinates":[)";
    CPositions out(text, budget, AllHaveZ(plain));
    out.Add(plain.Pt(0));
    if (IsCircle(plain)) {
        out.AddChords(plain, arcTolerance);
    } else {
        int from = 0;
        for (const Stretch &s : StretchesOf(plain)) {
            if (s.arc)
                AddArc(out, plain, from, s, arcTolerance);
            else
                out.Add(plain.Pt(s.end));
            from = s.end;
        }
    }
    text += ring ? "]]}}" : "]}}";
}

} // namespace

std::string WriteGeoJson(const Lines &lines, double arcTolerance, const LineDone &done,
                         size_t maxPositions) {
    size_t budget = maxPositions;
    std::string text = R"({"type":"FeatureCollection","features":[)";
    for (size_t i = 0; i < lines.size(); ++i) {
        text += i == 0 ? "\n" : ",\n";
        AddFeature(text, *lines[i], arcTolerance, budget);
        if (done) done();
    }
    return text + "\n]}\n";
}

} // namespace vxinterchange
