// The WKT reader: a recursive-descent parser over the text, one function per production. Each
// curve is first read as a chain of points with their section codes, checked, and only then
// turned into a line, so that a failure leaves nothing half made.
#include "Wkt.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <vector>

namespace vxinterchange {

namespace {

using vx::CVXCoord;
using vx::CVXCoordArr;

// How many numbers a point has, by the dimension word after the keyword.
struct Dimension {
    bool z = false;
    bool m = false;
    bool operator==(const Dimension &) const = default;
};

struct Point {
    double x;
    double y;
    double z;
    size_t at; // where the point starts in the text, 0-based
};

// A curve before it becomes a line: its points and their section codes.
struct Chain {
    std::vector<Point> points;
    std::vector<int> codes;
    bool empty() const { return points.empty(); }
};

constexpr int kFewestLinePoints = 2;
constexpr int kFewestRingPoints = 4;
constexpr int kArcPoints = 3;
constexpr size_t kFoundTextLength = 12;

bool SamePlace(const Point &a, const Point &b) {
    return a.x == b.x && a.y == b.y;
}

// The library's turning sense of three points: 0 when they lie on one line.
int Turn(const Point &a, const Point &b, const Point &c) {
    return CVXCoord::nBoogRichting(CVXCoord(a.x, a.y), CVXCoord(b.x, b.y), CVXCoord(c.x, c.y));
}

LinePtr LineOf(const Chain &chain) {
    auto line = std::make_unique<CVXCoordArr>();
    for (size_t i = 0; i < chain.points.size(); ++i) {
        const Point &p = chain.points[i];
        const CVXCoord point(p.x, p.y, p.z, static_cast<char>(chain.codes[i]));
        line->Add(&point);
    }
    return line;
}

// The whole circle through a start A and its opposite point B: A, A turned a quarter
// counter-clockwise about the centre, B, and A again, with the codes 1 7 7 7.
// Halves are added rather than the sum halved, so that no finite input overflows.
Chain CircleChain(const Point &a, const Point &b) {
    const double cx = a.x / 2.0 + b.x / 2.0;
    const double cy = a.y / 2.0 + b.y / 2.0;
    const double z = std::isnan(a.z) || std::isnan(b.z) ? vx::dNaN : a.z / 2.0 + b.z / 2.0;
    const Point quarter{cx - (a.y - cy), cy + (a.x - cx), z, b.at};
    Chain c;
    c.points = {a, quarter, b, a};
    c.codes = {vx::nSectieStart, vx::nSectieCirkel, vx::nSectieCirkel, vx::nSectieCirkel};
    return c;
}

class CWktParser {
public:
    explicit CWktParser(std::string_view text) : m_text(text) {}

    Lines All() {
        Lines out;
        SkipBlanks();
        if (AtEnd()) Fail("a geometry such as LINESTRING or POLYGON");
        while (!AtEnd()) {
            Geometry(out, 0);
            SkipBlanks();
        }
        return out;
    }

private:
    // ---- the text -----------------------------------------------------------------------------
    bool AtEnd() const { return m_pos >= m_text.size(); }
    char Peek() const { return AtEnd() ? '\0' : m_text[m_pos]; }
    void SkipBlanks() {
        while (!AtEnd() && (Peek() == ' ' || Peek() == '\t' || Peek() == '\r' || Peek() == '\n'))
            ++m_pos;
    }

    std::string Found() const {
        if (AtEnd()) return "the end of the text";
        const unsigned char c = static_cast<unsigned char>(Peek());
        if (!std::isprint(c)) {
            char hex[16];
            std::snprintf(hex, sizeof hex, "byte 0x%02X", c);
            return hex;
        }
        size_t n = 0;
        while (m_pos + n < m_text.size() && n < kFoundTextLength &&
               std::isalnum(static_cast<unsigned char>(m_text[m_pos + n])))
            ++n;
        std::string quoted = "'";
        quoted += m_text.substr(m_pos, n == 0 ? 1 : n);
        return quoted + "'";
    }
    [[noreturn]] void Fail(const std::string &expected) const {
        throw CWktError(m_pos + 1, expected + ", found " + Found());
    }
    [[noreturn]] static void FailAt(size_t at, const std::string &expected) {
        throw CWktError(at + 1, expected);
    }

    void Expect(char c) {
        SkipBlanks();
        if (Peek() != c) Fail(std::string("'") + c + "'");
        ++m_pos;
    }
    // The end of a list, after which nothing but a ',' could have continued it.
    void CloseList() {
        if (!Take(')')) Fail("',' or ')'");
    }
    // Takes the character when it is next; white space before it is skipped either way.
    bool Take(char c) {
        SkipBlanks();
        if (Peek() != c) return false;
        ++m_pos;
        return true;
    }

    // The next word in capitals, without taking it.
    std::string PeekWord() {
        SkipBlanks();
        std::string word;
        for (size_t i = m_pos;
             i < m_text.size() && std::isalpha(static_cast<unsigned char>(m_text[i])); ++i)
            word += static_cast<char>(std::toupper(static_cast<unsigned char>(m_text[i])));
        return word;
    }
    bool TakeWord(const char *word) {
        const std::string next = PeekWord();
        if (next != word) return false;
        m_pos += next.size();
        return true;
    }

    // ---- numbers and points -------------------------------------------------------------------
    static bool NumberChar(char c) {
        return std::isdigit(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '+' ||
               c == 'e' || c == 'E';
    }
    double Number() {
        SkipBlanks();
        size_t end = m_pos;
        while (end < m_text.size() && NumberChar(m_text[end]))
            ++end;
        // from_chars takes no plus sign; the grammar allows one before the digits.
        const size_t from = m_pos < end && m_text[m_pos] == '+' ? m_pos + 1 : m_pos;
        double value = 0.0;
        const auto r = std::from_chars(m_text.data() + from, m_text.data() + end, value);
        if (from == end || r.ec != std::errc() || r.ptr != m_text.data() + end ||
            !std::isfinite(value))
            Fail("a finite number");
        m_pos = end;
        return value;
    }
    Point ReadPoint(const Dimension &d) {
        SkipBlanks();
        Point p{0.0, 0.0, vx::dNaN, m_pos};
        p.x = Number();
        p.y = Number();
        if (d.z) p.z = Number();
        if (d.m) Number(); // a measure has no place in a line
        return p;
    }
    // "( x y, x y, ... )"
    std::vector<Point> PointList(const Dimension &d) {
        Expect('(');
        std::vector<Point> points;
        do
            points.push_back(ReadPoint(d));
        while (Take(','));
        CloseList();
        return points;
    }

    // The optional dimension word after a keyword.
    Dimension ReadDimension() {
        Dimension d;
        if (TakeWord("ZM")) {
            d.z = d.m = true;
        } else if (TakeWord("Z")) {
            d.z = true;
        } else if (TakeWord("M")) {
            d.m = true;
        }
        return d;
    }
    // A part inside a compound form may repeat the dimension of the whole; it may not change it.
    void PartDimension(const Dimension &whole) {
        SkipBlanks();
        const size_t at = m_pos;
        const Dimension d = ReadDimension();
        if (m_pos != at && !(d == whole)) FailAt(at, "the dimension of the enclosing geometry");
    }

    // ---- curves -------------------------------------------------------------------------------
    Chain StraightChain(const Dimension &d) {
        if (TakeWord("EMPTY")) return {};
        Chain c;
        c.points = PointList(d);
        if (c.points.size() < kFewestLinePoints) FailAt(m_pos - 1, "at least 2 points in a line");
        c.codes.assign(c.points.size(), vx::nSectieRecht);
        c.codes[0] = vx::nSectieStart;
        return c;
    }

    Chain ArcChain(const Dimension &d) {
        if (TakeWord("EMPTY")) return {};
        const std::vector<Point> points = PointList(d);
        if (points.size() < kArcPoints || points.size() % 2 == 0)
            FailAt(m_pos - 1, "an odd number of points, at least 3, in a circular string");
        if (points.size() == kArcPoints && SamePlace(points[0], points[2])) {
            if (SamePlace(points[0], points[1]))
                FailAt(points[1].at, "a middle point apart from the start of a whole circle");
            const Chain circle = CircleChain(points[0], points[1]);
            // Points so close or so far apart that the quarter point cannot be told apart from
            // them, or overflows, give no circle the library can compute with.
            const Point &quarter = circle.points[1];
            if (!std::isfinite(quarter.x) || !std::isfinite(quarter.y) || std::isinf(quarter.z) ||
                Turn(points[0], quarter, points[1]) == 0)
                FailAt(points[1].at, "a whole circle whose centre can be computed");
            return circle;
        }
        for (size_t i = 0; i + 2 < points.size(); i += 2)
            if (Turn(points[i], points[i + 1], points[i + 2]) == 0)
                FailAt(points[i + 1].at, "an arc whose three points do not lie on one line");
        Chain chain;
        chain.points = points;
        chain.codes.assign(points.size(), vx::nSectieBoog);
        chain.codes[0] = vx::nSectieStart;
        return chain;
    }

    static bool IsCircleChain(const Chain &c) {
        return c.codes.size() > 1 && c.codes[1] == vx::nSectieCirkel;
    }

    // Appends a part to a compound curve: it must start where the curve so far ends.
    static void Join(Chain &whole, const Chain &part) {
        if (whole.empty()) {
            whole = part;
            return;
        }
        if (!SamePlace(whole.points.back(), part.points.front()))
            FailAt(part.points.front().at, "the part to start where the previous one ends");
        whole.points.insert(whole.points.end(), part.points.begin() + 1, part.points.end());
        whole.codes.insert(whole.codes.end(), part.codes.begin() + 1, part.codes.end());
    }

    Chain CompoundChain(const Dimension &d) {
        if (TakeWord("EMPTY")) return {};
        Expect('(');
        Chain whole;
        do {
            SkipBlanks();
            const size_t at = m_pos;
            Chain part;
            if (Peek() == '(') {
                part = StraightChain(d);
            } else if (TakeWord("LINESTRING")) {
                PartDimension(d);
                part = StraightChain(d);
            } else if (TakeWord("CIRCULARSTRING")) {
                PartDimension(d);
                part = ArcChain(d);
            } else {
                Fail("'(', LINESTRING or CIRCULARSTRING");
            }
            if (IsCircleChain(part)) FailAt(at, "an arc, not a whole circle, in a compound curve");
            if (!part.empty()) Join(whole, part);
        } while (Take(','));
        CloseList();
        return whole;
    }

    // A curve where any kind may stand: a bare point list, or a keyword and its text.
    Chain AnyCurve(const Dimension &d) {
        SkipBlanks();
        if (Peek() == '(') return StraightChain(d);
        if (TakeWord("LINESTRING")) {
            PartDimension(d);
            return StraightChain(d);
        }
        if (TakeWord("CIRCULARSTRING")) {
            PartDimension(d);
            return ArcChain(d);
        }
        if (TakeWord("COMPOUNDCURVE")) {
            PartDimension(d);
            return CompoundChain(d);
        }
        Fail("'(', LINESTRING, CIRCULARSTRING or COMPOUNDCURVE");
    }

    // ---- surfaces -----------------------------------------------------------------------------
    static void CheckRing(const Chain &ring, size_t at) {
        if (IsCircleChain(ring)) return;
        if (!SamePlace(ring.points.front(), ring.points.back()))
            FailAt(at, "a ring that ends on its first point");
        const bool straight = ring.codes.back() != vx::nSectieBoog;
        if (straight && ring.points.size() < kFewestRingPoints)
            FailAt(at, "at least 4 points in a ring");
    }

    // "( ring )": the outer ring only; an inner ring has no place in a line.
    Chain Surface(const Dimension &d, bool curved) {
        if (TakeWord("EMPTY")) return {};
        Expect('(');
        SkipBlanks();
        const size_t at = m_pos;
        const Chain ring = curved ? AnyCurve(d) : StraightChain(d);
        if (ring.empty()) FailAt(at, "a ring with points");
        CheckRing(ring, at);
        SkipBlanks();
        if (Peek() == ',') Fail("')': a polygon with holes (inner rings) cannot be read as a line");
        Expect(')');
        return ring;
    }

    // A member of a MULTISURFACE: a bare polygon text, or POLYGON or CURVEPOLYGON.
    Chain SurfaceMember(const Dimension &d) {
        SkipBlanks();
        if (Peek() == '(') return Surface(d, false);
        if (TakeWord("POLYGON")) {
            PartDimension(d);
            return Surface(d, false);
        }
        if (TakeWord("CURVEPOLYGON")) {
            PartDimension(d);
            return Surface(d, true);
        }
        Fail("'(', POLYGON or CURVEPOLYGON");
    }

    // ---- geometries ---------------------------------------------------------------------------
    static void Keep(Lines &out, const Chain &chain) {
        if (!chain.empty()) out.push_back(LineOf(chain));
    }

    // "( member, member, ... )" or EMPTY, each member read by `read`.
    template <class Read>
    void Members(Lines &out, Read read) {
        if (TakeWord("EMPTY")) return;
        Expect('(');
        do
            Keep(out, read());
        while (Take(','));
        CloseList();
    }

    void Collection(Lines &out, int depth) {
        if (depth >= kMaxWktNesting) Fail("at most 32 nested collections");
        if (TakeWord("EMPTY")) return;
        Expect('(');
        do
            Geometry(out, depth + 1);
        while (Take(','));
        CloseList();
    }

    void Geometry(Lines &out, int depth) {
        SkipBlanks();
        const size_t at = m_pos;
        const std::string word = PeekWord();
        m_pos += word.size();
        const Dimension d = ReadDimension();
        if (word == "LINESTRING") return Keep(out, StraightChain(d));
        if (word == "CIRCULARSTRING") return Keep(out, ArcChain(d));
        if (word == "COMPOUNDCURVE") return Keep(out, CompoundChain(d));
        if (word == "POLYGON") return Keep(out, Surface(d, false));
        if (word == "CURVEPOLYGON") return Keep(out, Surface(d, true));
        if (word == "MULTILINESTRING") return Members(out, [&] { return StraightChain(d); });
        if (word == "MULTICURVE") return Members(out, [&] { return AnyCurve(d); });
        if (word == "MULTIPOLYGON") return Members(out, [&] { return Surface(d, false); });
        if (word == "MULTISURFACE") return Members(out, [&] { return SurfaceMember(d); });
        if (word == "GEOMETRYCOLLECTION") return Collection(out, depth);
        m_pos = at;
        Fail("LINESTRING, CIRCULARSTRING, COMPOUNDCURVE, POLYGON, CURVEPOLYGON, a MULTI form or "
             "GEOMETRYCOLLECTION");
    }

    std::string_view m_text;
    size_t m_pos = 0;
};

} // namespace

CWktError::CWktError(size_t position, const std::string &expected)
    : std::runtime_error("at character " + std::to_string(position) + ": expected " + expected),
      m_position(position), m_expected(expected) {}

Lines ReadWkt(std::string_view text) {
    return CWktParser(text).All();
}

} // namespace vxinterchange
