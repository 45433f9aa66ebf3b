// Well-known text (WKT) of lines and polygons, read into and written from the library's lines.
//
// Reading maps every curve exactly onto the section codes: a LINESTRING is a start point and
// straight stretches (code 0); a CIRCULARSTRING of 2n+1 points is n three-point arcs (code 8 on
// each support and end point); a CIRCULARSTRING of three points that ends on its start is a
// whole circle (codes 1 7 7 7: the start, the start turned a quarter counter-clockwise about the
// centre, the given opposite point, the start again); a COMPOUNDCURVE joins its parts; POLYGON
// and CURVEPOLYGON give their outer ring; every MULTI form and GEOMETRYCOLLECTION give one line
// per member. Z is kept in the point's height, M is read and dropped. Nothing is repaired or
// guessed: the first error stops the read with its position.
//
// Writing gives one geometry per line of text: LINESTRING or CIRCULARSTRING for an open line of
// straight stretches or of arcs, COMPOUNDCURVE for a mix, POLYGON or CURVEPOLYGON for a ring,
// with Z when every point has a height. Numbers are the shortest text that reads back exactly.
#pragma once

#include "Lines.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vxinterchange {

// A WKT text that cannot be read: where (the 1-based character position) and what was expected
// there. what() reads "at character N: expected ...".
class CWktError : public std::runtime_error {
public:
    CWktError(size_t position, const std::string &expected);
    size_t Position() const { return m_position; }
    const std::string &Expected() const { return m_expected; }

private:
    size_t m_position;
    std::string m_expected;
};

// Collections nest at most this deep, so that a hostile text cannot exhaust the stack.
inline constexpr int kMaxWktNesting = 32;

// The lines of every geometry in the text; the geometries are separated by white space. A text
// without any geometry, or with only EMPTY ones, gives no lines.
Lines ReadWkt(std::string_view text);

// One geometry. A line of fewer than two points has no WKT form: std::invalid_argument.
std::string WriteWkt(const vx::CVXCoordArr &line);
// One geometry per line of text, each followed by a line feed.
std::string WriteWkt(const Lines &lines, const LineDone &done = {});

} // namespace vxinterchange
