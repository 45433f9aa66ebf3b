#include "ConvertStream.h"

#include "NumberFormat.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

namespace vxtool::convert {

namespace {

constexpr double kMaxLatitude = 90.0;
constexpr double kMaxLongitude = 360.0;
constexpr std::size_t kHeight = 2; // the index of the height among the three coordinates

std::string_view FieldText(std::string_view line, const SField &f) {
    return line.substr(f.begin, f.end - f.begin);
}

std::string NumberError(NumberState state, std::string_view text, const std::string &detail) {
    const std::string what =
        state == NumberState::notFinite ? "not a finite number: '" : "not a number: '";
    return what + Shown(text) + "'" + (detail.empty() ? "" : " (" + detail + ")");
}

} // namespace

CConvertStream::CConvertStream(CPointConverter &converter, const SKeyword &keyword,
                               const SStreamSettings &settings, COutputBuffer &out)
    : m_converter(converter), m_bRadians(keyword.bPlaneRadians), m_settings(settings), m_out(out) {}

void CConvertStream::SetSource(const std::string &source) {
    m_source = source;
    m_nLine = 0;
}

bool CConvertStream::bRun(CLineReader &reader, const std::string &source) {
    SetSource(source);
    std::vector<SInputLine> lines;
    while (reader.bNextBlock(lines)) {
        ProcessBlock(lines);
        if (m_out.bFailed()) return true; // the caller reports the write error
    }
    if (!reader.bFailed()) return true;
    std::fprintf(stderr, "vx: cannot read %s: %s\n",
                 source.empty() ? "the standard input" : source.c_str(),
                 std::strerror(reader.nError()));
    return false;
}

bool CConvertStream::bParseCoordinates(SSlot &slot, SPoint &point) {
    const std::string_view line = slot.text;
    SplitFields(line, m_settings.delimiter, m_fields);
    const bool bAngles = m_settings.bForward;
    const SColumns c = ResolveColumns(m_settings.columns, line, m_fields, bAngles);
    if (c.field[1] >= m_fields.size()) {
        slot.error = std::string(bAngles ? "expected latitude and longitude" : "expected x and y") +
                     " in fields " + std::to_string(c.field[0] + 1) + " and " +
                     std::to_string(c.field[1] + 1);
        return false;
    }
    double *values[3] = {&point.a, &point.b, &point.h};
    std::string detail;
    for (std::size_t k = 0; k < 3; ++k) {
        if (c.field[k] >= m_fields.size()) continue; // only the height may be absent
        const std::string_view text = FieldText(line, m_fields[c.field[k]]);
        const NumberState state =
            bAngles && k != kHeight
                ? ParseAngle(text, k == 0 ? AngleAxis::latitude : AngleAxis::longitude, *values[k],
                             detail)
                : ParseNumber(text, *values[k]);
        if (state != NumberState::ok) {
            slot.error = NumberError(state, text, detail);
            return false;
        }
        slot.spans[slot.nSpans++] = m_fields[c.field[k]];
        point.bHeight = k == kHeight;
    }
    if (bAngles && std::fabs(point.a) > kMaxLatitude) {
        slot.error = "latitude beyond 90 degrees: '" + Shown(FieldText(line, slot.spans[0])) + "'";
        return false;
    }
    if (bAngles && std::fabs(point.b) > kMaxLongitude) {
        slot.error =
            "longitude beyond 360 degrees: '" + Shown(FieldText(line, slot.spans[1])) + "'";
        return false;
    }
    return true;
}

void CConvertStream::Parse(const SInputLine &line, SSlot &slot) {
    slot.nLine = ++m_nLine;
    slot.error.clear();
    slot.nSpans = 0;
    slot.text = line.text;
    slot.bCarriageReturn = !slot.text.empty() && slot.text.back() == '\r';
    if (slot.bCarriageReturn) slot.text.remove_suffix(1);
    slot.kind = LineKind::bad;
    if (line.bTooLong) {
        slot.error = "line longer than " + std::to_string(kMaxLineBytes) + " bytes";
    } else if (slot.text.find('\0') != std::string_view::npos) {
        slot.error = "line holds a NUL byte";
    } else if (bIsPassThroughLine(slot.text)) {
        slot.kind = LineKind::passThrough;
    } else {
        SPoint point;
        if (bParseCoordinates(slot, point)) {
            slot.kind = LineKind::point;
            m_stats.bHeightSeen = m_stats.bHeightSeen || point.bHeight;
            m_points.push_back(point);
        }
    }
}

void CConvertStream::ProcessBlock(const std::vector<SInputLine> &lines) {
    if (m_slots.size() < lines.size()) m_slots.resize(lines.size());
    m_points.clear();
    for (std::size_t i = 0; i < lines.size(); ++i)
        Parse(lines[i], m_slots[i]);
    m_converter.Convert(m_points);
    std::size_t next = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        SSlot &slot = m_slots[i];
        const SPoint *point = slot.kind == LineKind::point ? &m_points[next++] : nullptr;
        if (point && point->error) {
            slot.kind = LineKind::bad;
            slot.error = point->error;
        }
        Write(slot, point);
        if (slot.kind == LineKind::bad) Report(slot);
        if (slot.kind == LineKind::point) ++m_stats.nPoints;
    }
}

void CConvertStream::Report(const SSlot &slot) {
    ++m_stats.nBadLines;
    if (m_source.empty())
        std::fprintf(stderr, "vx: line %zu: %s\n", slot.nLine, slot.error.c_str());
    else
        std::fprintf(stderr, "vx: %s: line %zu: %s\n", m_source.c_str(), slot.nLine,
                     slot.error.c_str());
}

void CConvertStream::Write(const SSlot &slot, const SPoint *point) {
    const std::string_view cr = slot.bCarriageReturn ? "\r\n" : "\n";
    if (slot.kind == LineKind::bad) {
        m_out.Append(cr);
        return;
    }
    if (slot.kind == LineKind::passThrough) {
        m_out.Append(slot.text);
        m_out.Append(cr);
        return;
    }
    const double values[3] = {point->ra, point->rb, point->rh};
    const int coordDecimals =
        m_settings.bForward ? (m_bRadians ? m_settings.nRadianDecimals : m_settings.nPlaneDecimals)
                            : m_settings.nAngleDecimals;
    // The replaced fields in the order they stand in the line.
    std::array<std::size_t, 3> order{0, 1, 2};
    for (std::size_t i = 1; i < slot.nSpans; ++i)
        for (std::size_t j = i;
             j > 0 && slot.spans[order[j]].begin < slot.spans[order[j - 1]].begin; --j)
            std::swap(order[j], order[j - 1]);
    char *p = m_out.Reserve(slot.text.size() + slot.nSpans * kMaxFixedChars + cr.size());
    std::size_t at = 0;
    for (std::size_t k = 0; k < slot.nSpans; ++k) {
        const std::size_t v = order[k];
        const SField &f = slot.spans[v];
        std::memcpy(p, slot.text.data() + at, f.begin - at);
        p += f.begin - at;
        p = WriteFixed(p, values[v], v == kHeight ? m_settings.nHeightDecimals : coordDecimals);
        at = f.end;
    }
    std::memcpy(p, slot.text.data() + at, slot.text.size() - at);
    p += slot.text.size() - at;
    std::memcpy(p, cr.data(), cr.size());
    m_out.Commit(p + cr.size());
}

} // namespace vxtool::convert
