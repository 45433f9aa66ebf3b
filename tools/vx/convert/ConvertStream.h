// vx convert over lines: each data line gets its coordinate fields replaced by the converted
// values, every other byte of it kept; comment and blank lines pass through; a bad line gives an
// empty output line (one line out per line in) and a message naming its line.
#pragma once

#include "BatchIO.h"
#include "LineParser.h"
#include "PointConverter.h"

#include <string>
#include <vector>

namespace vxtool::convert {

struct SStreamSettings {
    bool bForward = true;
    char delimiter = '\0'; // 0: blanks and tabs
    SColumns columns;
    int nPlaneDecimals = 4;   // x, y in metres
    int nAngleDecimals = 9;   // latitude, longitude in degrees
    int nHeightDecimals = 4;  // heights in metres
    int nRadianDecimals = 11; // the plane side of NONE, in radians
};

struct SStreamStats {
    std::size_t nPoints = 0;
    std::size_t nBadLines = 0;
    bool bHeightSeen = false;
};

class CConvertStream {
public:
    CConvertStream(CPointConverter &converter, const SKeyword &keyword,
                   const SStreamSettings &settings, COutputBuffer &out);

    // Converts every line of `reader`; messages name `source` (empty for standard input).
    // False on a read error, with the message given.
    bool bRun(CLineReader &reader, const std::string &source);
    // Converts one block of lines.
    void ProcessBlock(const std::vector<SInputLine> &lines);
    void SetSource(const std::string &source);
    const SStreamStats &Stats() const { return m_stats; }

private:
    enum class LineKind { passThrough, point, bad };
    struct SSlot {
        std::string_view text; // without a final "\r"
        bool bCarriageReturn = false;
        LineKind kind = LineKind::bad;
        std::size_t nLine = 0;
        std::string error;
        std::array<SField, 3> spans{}; // the fields to replace, in the order of the values
        std::size_t nSpans = 0;
    };

    void Parse(const SInputLine &line, SSlot &slot);
    bool bParseCoordinates(SSlot &slot, SPoint &point);
    void Write(const SSlot &slot, const SPoint *point);
    void Report(const SSlot &slot);

    CPointConverter &m_converter;
    bool m_bRadians;
    SStreamSettings m_settings;
    COutputBuffer &m_out;
    std::string m_source;
    std::size_t m_nLine = 0;
    SStreamStats m_stats;
    std::vector<SSlot> m_slots;
    std::vector<SPoint> m_points;
    std::vector<SField> m_fields;
};

} // namespace vxtool::convert
