#include "LineParser.h"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace vxtool::convert {

namespace {

// Minutes and seconds of an angle lie below this.
constexpr double kSixty = 60.0;
// A --columns field number may be at most this (a line of more fields is unusual already).
constexpr std::size_t kMaxColumn = 1000;
// The UTF-8 bytes of the degree sign.
constexpr std::string_view kDegreeSign = "\xC2\xB0";

bool bBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view Trimmed(std::string_view s) {
    while (!s.empty() && bBlank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && bBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

// A decimal number at the start of `text`, without a sign of its own; the rest is left in `text`.
bool TakeUnsigned(std::string_view &text, double &value) {
    if (text.empty() || text.front() == '-' || text.front() == '+') return false;
    const char *end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || !std::isfinite(value)) return false;
    text.remove_prefix(static_cast<std::size_t>(ptr - text.data()));
    return true;
}

// Takes a leading '+' or '-'; returns -1 for '-', else 1.
int TakeSign(std::string_view &text) {
    if (text.empty() || (text.front() != '-' && text.front() != '+')) return 1;
    const int sign = text.front() == '-' ? -1 : 1;
    text.remove_prefix(1);
    return sign;
}

bool TakeAny(std::string_view &text, std::string_view marks) {
    if (text.empty() || marks.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
    return true;
}

bool TakeDegreeMark(std::string_view &text) {
    if (text.starts_with(kDegreeSign)) {
        text.remove_prefix(kDegreeSign.size());
        return true;
    }
    return TakeAny(text, "dD");
}

bool bWhole(double v) {
    return v == std::floor(v);
}

// The sign a hemisphere letter gives on this axis: 1, -1, or 0 when it does not suit the axis.
int HemisphereSign(char letter, AngleAxis axis) {
    const bool bLat = axis == AngleAxis::latitude;
    switch (letter) {
    case 'N':
    case 'n':
        return bLat ? 1 : 0;
    case 'S':
    case 's':
        return bLat ? -1 : 0;
    case 'E':
    case 'e':
        return bLat ? 0 : 1;
    case 'W':
    case 'w':
        return bLat ? 0 : -1;
    default:
        return 0;
    }
}

// Degrees, minutes, seconds after the sign and before the hemisphere letter.
bool ParseDms(std::string_view body, double &degrees, std::string &error) {
    double d = 0.0;
    double m = 0.0;
    double s = 0.0;
    if (!TakeUnsigned(body, d)) return false;
    if (body.empty()) {
        degrees = d;
        return true;
    }
    if (!TakeDegreeMark(body)) return false;
    if (!body.empty()) {
        if (!bWhole(d) || !TakeUnsigned(body, m) || !TakeAny(body, "'")) return false;
        if (!body.empty() && (!bWhole(m) || !TakeUnsigned(body, s) || !TakeAny(body, "\"")))
            return false;
    }
    if (!body.empty()) return false;
    if (m >= kSixty || s >= kSixty) {
        error = "minutes and seconds must lie below 60";
        return false;
    }
    degrees = d + m / kSixty + s / (kSixty * kSixty);
    return true;
}

bool bAllDigits(std::string_view s) {
    if (s.empty()) return false;
    for (char c : s)
        if (c < '0' || c > '9') return false;
    return true;
}

} // namespace

bool bIsPassThroughLine(std::string_view line) {
    const std::string_view t = Trimmed(line);
    return t.empty() || t.front() == '#';
}

void SplitFields(std::string_view line, char delimiter, std::vector<SField> &fields) {
    fields.clear();
    const std::size_t n = line.size();
    std::size_t i = 0;
    if (delimiter == '\0') {
        while (i < n) {
            while (i < n && bBlank(line[i]))
                ++i;
            if (i == n) break;
            const std::size_t begin = i;
            while (i < n && !bBlank(line[i]))
                ++i;
            fields.push_back({begin, i});
        }
        return;
    }
    for (std::size_t begin = 0;; begin = i + 1) {
        i = line.find(delimiter, begin);
        if (i == std::string_view::npos) i = n;
        std::size_t b = begin;
        std::size_t e = i;
        while (b < e && bBlank(line[b]))
            ++b;
        while (e > b && bBlank(line[e - 1]))
            --e;
        fields.push_back({b, e});
        if (i == n) break;
    }
}

NumberState ParseNumber(std::string_view text, double &value) {
    // from_chars takes no '+'; a sign after a '+' ("+-1") is no number.
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-') || text.starts_with('+')) return NumberState::notANumber;
    }
    if (text.empty()) return NumberState::notANumber;
    const char *end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (ptr != end) return NumberState::notANumber;
    // An overflow ("1e999") is as far from a coordinate as infinity is.
    if (ec == std::errc::result_out_of_range) return NumberState::notFinite;
    if (ec != std::errc()) return NumberState::notANumber;
    return std::isfinite(value) ? NumberState::ok : NumberState::notFinite;
}

NumberState ParseAngle(std::string_view text, AngleAxis axis, double &degrees, std::string &error) {
    error.clear();
    const NumberState plain = ParseNumber(text, degrees);
    if (plain != NumberState::notANumber) return plain;
    std::string_view body = text;
    const bool bSigned = !body.empty() && (body.front() == '-' || body.front() == '+');
    const int sign = TakeSign(body);
    int hemisphere = 1;
    if (!body.empty() && HemisphereSign(body.back(), AngleAxis::latitude) +
                                 HemisphereSign(body.back(), AngleAxis::longitude) !=
                             0) {
        hemisphere = HemisphereSign(body.back(), axis);
        if (hemisphere == 0) {
            error = axis == AngleAxis::latitude ? "a latitude takes N or S, not E or W"
                                                : "a longitude takes E or W, not N or S";
            return NumberState::notANumber;
        }
        if (bSigned) {
            error = "a sign and a hemisphere letter together are ambiguous";
            return NumberState::notANumber;
        }
        body.remove_suffix(1);
    }
    double value = 0.0;
    if (!ParseDms(body, value, error)) return NumberState::notANumber;
    degrees = sign * hemisphere * value;
    return NumberState::ok;
}

bool ParseColumns(std::string_view text, SColumns &columns, std::string &error) {
    columns = SColumns{};
    columns.bGiven = true;
    std::size_t count = 0;
    std::vector<SField> parts;
    SplitFields(text, ',', parts);
    for (const SField &p : parts) {
        const std::string_view s = text.substr(p.begin, p.end - p.begin);
        std::size_t n = 0;
        if (count == columns.field.size() || !bAllDigits(s) || s.size() > 4 ||
            std::from_chars(s.data(), s.data() + s.size(), n).ec != std::errc() || n == 0 ||
            n > kMaxColumn) {
            error = "--columns takes two or three field numbers from 1 to " +
                    std::to_string(kMaxColumn) + ", such as 2,3 or 2,3,4";
            return false;
        }
        for (std::size_t k = 0; k < count; ++k)
            if (columns.field[k] == n - 1) {
                error = "--columns names field " + std::to_string(n) + " twice";
                return false;
            }
        columns.field[count++] = n - 1;
    }
    if (count < 2) {
        error = "--columns needs at least the two coordinate fields, such as 2,3";
        return false;
    }
    return true;
}

SColumns ResolveColumns(const SColumns &given, std::string_view line,
                        const std::vector<SField> &fields, bool bAngles) {
    if (given.bGiven) return given;
    const auto text = [&](std::size_t i) {
        return line.substr(fields[i].begin, fields[i].end - fields[i].begin);
    };
    const auto isNumber = [&](std::size_t i) {
        double v = 0.0;
        std::string error;
        // "nan" and "inf" count as numbers here, so that they are reported, not passed on.
        if (!bAngles) return ParseNumber(text(i), v) != NumberState::notANumber;
        return ParseAngle(text(i), AngleAxis::latitude, v, error) != NumberState::notANumber ||
               ParseAngle(text(i), AngleAxis::longitude, v, error) != NumberState::notANumber;
    };
    SColumns c;
    const std::size_t first = !fields.empty() && !isNumber(0) ? 1 : 0;
    c.field[0] = first;
    c.field[1] = first + 1;
    if (first + 2 < fields.size()) {
        double h = 0.0;
        if (ParseNumber(text(first + 2), h) != NumberState::notANumber) c.field[2] = first + 2;
    }
    return c;
}

} // namespace vxtool::convert

namespace vxtool::convert {

namespace {
constexpr std::size_t kMaxShownBytes = 40;
} // namespace

std::string Shown(std::string_view raw) {
    static const char hex[] = "0123456789abcdef";
    std::string shown;
    for (std::size_t i = 0; i < raw.size() && i < kMaxShownBytes; ++i) {
        const auto c = static_cast<unsigned char>(raw[i]);
        if (c >= 0x20 && c < 0x7F) {
            shown += static_cast<char>(c);
        } else {
            shown += "\\x";
            shown += hex[c >> 4];
            shown += hex[c & 0xF];
        }
    }
    return raw.size() > kMaxShownBytes ? shown + "..." : shown;
}

} // namespace vxtool::convert
