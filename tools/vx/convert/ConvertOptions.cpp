#include "ConvertOptions.h"

#include <charconv>

namespace vxtool::convert {

namespace {

// --precision: the decimals of metres; degrees get kDegreeExtra more (1e-9 degrees is about
// 0.1 mm, as 4 decimals of metres are), radians kRadianExtra more.
constexpr int kMaxPrecision = 10;
constexpr int kDegreeExtra = 5;
constexpr int kRadianExtra = 7;

bool bInteger(const std::string &text, int &value) {
    const char *end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    return ec == std::errc() && ptr == end && !text.empty();
}

// The value of an option that takes one; error when it is missing.
bool bValueOf(const std::vector<std::string> &args, std::size_t &i, std::string &value,
              std::string &error) {
    if (i + 1 >= args.size()) {
        error = "option " + args[i] + " needs a value";
        return false;
    }
    value = args[++i];
    return true;
}

bool bAngleOption(const std::string &name, const std::string &text, double &degrees,
                  std::string &error) {
    std::string detail;
    if (ParseAngle(text, AngleAxis::latitude, degrees, detail) == NumberState::ok ||
        ParseAngle(text, AngleAxis::longitude, degrees, detail) == NumberState::ok)
        return true;
    error = "not an angle for " + name + ": '" + Shown(text) + "'";
    return false;
}

bool bDelimiter(const std::string &text, char &delimiter, std::string &error) {
    if (text == "tab" || text == "\\t") {
        delimiter = '\t';
        return true;
    }
    const bool bOk = text.size() == 1 && text[0] != ' ' && text[0] != '\n' && text[0] != '\r' &&
                     text[0] != '.' && text[0] != '-' && text[0] != '+' &&
                     !(text[0] >= '0' && text[0] <= '9');
    if (!bOk) {
        error = "--delimiter takes one character that is no part of a number, such as , or ; "
                "(or 'tab')";
        return false;
    }
    delimiter = text[0];
    return true;
}

bool bPrecision(const std::string &text, SStreamSettings &s, std::string &error) {
    int n = 0;
    if (!bInteger(text, n) || n < 0 || n > kMaxPrecision) {
        error = "--precision takes the decimals of metres, 0 to " + std::to_string(kMaxPrecision);
        return false;
    }
    s.nPlaneDecimals = n;
    s.nHeightDecimals = n;
    s.nAngleDecimals = n + kDegreeExtra;
    s.nRadianDecimals = n + kRadianExtra;
    return true;
}

// Is args[i] a coordinate rather than an option or a file name?
bool bCoordinateArgument(const std::string &arg) {
    double v = 0.0;
    std::string detail;
    return ParseAngle(arg, AngleAxis::latitude, v, detail) != NumberState::notANumber ||
           ParseAngle(arg, AngleAxis::longitude, v, detail) != NumberState::notANumber;
}

// The input and output options; false when args[i] is none of them.
bool bTakeStreamOption(const std::vector<std::string> &args, std::size_t &i, SStreamSettings &s,
                       std::string &error) {
    const std::string &a = args[i];
    if (a != "--columns" && a != "--delimiter" && a != "--precision") return false;
    std::string v;
    if (!bValueOf(args, i, v, error)) return true;
    if (a == "--columns")
        ParseColumns(v, s.columns, error);
    else if (a == "--delimiter")
        bDelimiter(v, s.delimiter, error);
    else
        bPrecision(v, s, error);
    return true;
}

bool bDirection(const std::vector<std::string> &args, std::size_t &i, SConvertRequest &r,
                bool &bSeen, std::string &error) {
    if (args[i] != "--to" && args[i] != "--from") return false;
    if (bSeen) {
        error = "give one of --to and --from, once";
        return true;
    }
    bSeen = true;
    r.bForward = args[i] == "--to";
    bValueOf(args, i, r.keyword, error);
    return true;
}

} // namespace

bool bTakeProjectionOption(const std::vector<std::string> &args, std::size_t &i,
                           SProjectionOptions &o, std::string &error) {
    const std::string &name = args[i];
    const unsigned bit = OptionBit(name);
    if (bit == 0) return false;
    if (o.given & bit) {
        error = "option " + name + " given twice";
        return true;
    }
    o.given |= bit;
    if (bit == kOptSouth) return true;
    std::string v;
    if (!bValueOf(args, i, v, error)) return true;
    double *angle = bit == kOptLon0   ? &o.lon0
                    : bit == kOptLat0 ? &o.lat0
                    : bit == kOptPar1 ? &o.par1
                    : bit == kOptPar2 ? &o.par2
                                      : nullptr;
    double *number = bit == kOptScale   ? &o.scale
                     : bit == kOptEast  ? &o.east
                     : bit == kOptNorth ? &o.north
                                        : nullptr;
    if (angle) {
        bAngleOption(name, v, *angle, error);
    } else if (number) {
        if (ParseNumber(v, *number) != NumberState::ok)
            error = "not a finite number for " + name + ": '" + Shown(v) + "'";
    } else if (bit == kOptZone) {
        if (!bInteger(v, o.zone)) error = "--zone takes a UTM zone number: '" + Shown(v) + "'";
    } else {
        (bit == kOptEllipsoid ? o.ellipsoid : o.geoid) = v;
    }
    return true;
}

bool ParseConvertArgs(const std::vector<std::string> &args, SConvertRequest &r,
                      std::string &error) {
    bool bDirectionSeen = false;
    std::vector<std::string> positional;
    for (std::size_t i = 0; i < args.size() && error.empty(); ++i) {
        const std::string &a = args[i];
        if (a == "--list") {
            r.bList = true;
        } else if (bDirection(args, i, r, bDirectionSeen, error) ||
                   bTakeProjectionOption(args, i, r.projection, error) ||
                   bTakeStreamOption(args, i, r.stream, error)) {
            continue;
        } else if (a.size() > 1 && a[0] == '-' && !bCoordinateArgument(a)) {
            error = "unknown option '" + Shown(a) + "' (vx convert --help lists them)";
        } else {
            positional.push_back(a);
        }
    }
    if (!error.empty()) return false;
    if (r.bList) {
        if (bDirectionSeen || !positional.empty() || r.projection.given != 0)
            error = "--list takes nothing else";
        return error.empty();
    }
    if (!bDirectionSeen) {
        error = "usage: vx convert --to|--from KEYWORD [OPTIONS] [FILE... | COORDINATES] "
                "(vx convert --list shows the keywords)";
        return false;
    }
    r.stream.bForward = r.bForward;
    // Coordinates on the command line form one input line; anything else names files.
    if (!positional.empty() && bCoordinateArgument(positional.front())) {
        for (const std::string &p : positional)
            r.pointLine += (r.pointLine.empty() ? "" : " ") + p;
    } else {
        r.files = positional;
    }
    return true;
}

} // namespace vxtool::convert
