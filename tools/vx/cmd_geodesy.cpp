// vx convert, vx report: the projections of the library from the command line.
//
//   vx convert --to KEYWORD [OPTIONS] [LAT LON [H]]    ETRS89 degrees -> projection x y z
//   vx convert --from KEYWORD [OPTIONS] [X Y [Z]]      projection -> ETRS89 degrees lat lon h
//   vx report KEYWORD [OPTIONS]                        the fixed-width parameter report
//
// Without coordinates on the command line, every line of standard input holds one point and
// gives one line of output. The national grids run their whole chain (datum shift, correction
// grid, geoid); the plain projections count ETRS89 as their datum. OPTIONS set the parameters of
// the parametric types: --lon0 --lat0 --par1 --par2 (degrees), --k, --fe, --fn, --ellipsoid KEY.
#include "Command.h"

#include "foundation/NumberText.h"
#include "geodesy/Angles.h"
#include "geodesy/OutputSystem.h"
#include "geometry/VXCoord.h"
#include "platform/VXString.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace vxtool {

namespace {

using namespace vx;

// A line of standard input may hold this many bytes; a longer one is an error, not a cut.
constexpr size_t kMaxLineBytes = size_t(1) << 20;
// At most this many bytes of the user's text are shown in a message.
constexpr size_t kMaxShownBytes = 40;
// The largest latitude in degrees.
constexpr double kMaxLatitude = 90.0;
// The exit code of output that could not be written (a full disk, a closed pipe).
constexpr int kOutputFailed = 1;
// The exit code of input that could not be converted.
constexpr int kBadInput = 2;

// The user's text as a message shows it: printable ASCII as it is, every other byte as \xNN,
// and no more than kMaxShownBytes of it, so that a message never carries raw bytes to the
// terminal.
std::string Shown(const std::string &raw) {
    static const char hex[] = "0123456789abcdef";
    std::string shown;
    for (size_t i = 0; i < raw.size() && i < kMaxShownBytes; ++i) {
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

bool ParseNumber(const std::string &text, double &value) {
    // A NUL would end the text early and let "1\0junk" pass as 1.
    if (text.find('\0') != std::string::npos) return false;
    const CVXString s(text.c_str());
    return bString2Number(&value, static_cast<const char16_t *>(s));
}

// Writes one line of output; false when it could not be written.
bool PutLine(const std::string &text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
           std::fputc('\n', stdout) != EOF;
}

int OutputFailed() {
    Fail(std::string("cannot write the output: ") + std::strerror(errno));
    return kOutputFailed;
}

enum class LineState { read, end, tooLong };

// Reads one line of standard input without its line end; a line over kMaxLineBytes is read to
// its end and reported as too long, so that memory stays bounded and the next line is in step.
LineState ReadLine(std::string &line) {
    line.clear();
    int c = std::getc(stdin);
    if (c == EOF) return LineState::end;
    bool tooLong = false;
    for (; c != EOF && c != '\n'; c = std::getc(stdin)) {
        if (line.size() < kMaxLineBytes)
            line.push_back(static_cast<char>(c));
        else
            tooLong = true;
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return tooLong ? LineState::tooLong : LineState::read;
}

std::string KnownKeywords() {
    std::string list;
    for (int t = PT_NONE; t <= PT_RDNAPTRANS2004; ++t) {
        const std::unique_ptr<CEllipsoid> ell(new CEllipsoid(CEllipsoid::WGS84));
        const std::unique_ptr<COutputSystem> p(
            pGetNewProjection(static_cast<ProjectionType>(t), 0, 0, 0, 0, 1, 0, 0, ell.get()));
        if (p) {
            list += list.empty() ? "" : " ";
            list += static_cast<const char *>(p->szGetTrav3ProjectionName());
        }
    }
    return list;
}

// The options of the parametric types, in degrees where angles; NaN when not given.
struct SOptions {
    double lon0 = std::nan(""), lat0 = std::nan(""), par1 = std::nan(""), par2 = std::nan("");
    double k = std::nan(""), fe = std::nan(""), fn = std::nan("");
    std::string ellipsoid;
};

// Takes the options out of args; returns an error text, empty on success.
std::string TakeOptions(Args &args, SOptions &o) {
    Args rest;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string &a = args[i];
        double *target = a == "--lon0"   ? &o.lon0
                         : a == "--lat0" ? &o.lat0
                         : a == "--par1" ? &o.par1
                         : a == "--par2" ? &o.par2
                         : a == "--k"    ? &o.k
                         : a == "--fe"   ? &o.fe
                         : a == "--fn"   ? &o.fn
                                         : nullptr;
        if (target == nullptr && a != "--ellipsoid") {
            rest.push_back(a);
            continue;
        }
        if (i + 1 >= args.size()) return "option " + a + " needs a value";
        const std::string &v = args[++i];
        if (target == nullptr)
            o.ellipsoid = v;
        else if (!ParseNumber(v, *target))
            return "not a number for " + a + ": '" + Shown(v) + "'";
    }
    args.swap(rest);
    return {};
}

double Or(double given, double fallback) {
    return std::isnan(given) ? fallback : given;
}
double OrDeg(double givenDeg, double fallbackRad) {
    return std::isnan(givenDeg) ? fallbackRad : DegToRad(givenDeg);
}

// The projection of `keyword`: its default object, with the options applied to the parameters
// that its type takes.
std::unique_ptr<COutputSystem> MakeProjection(const std::string &keyword, const SOptions &o,
                                              std::string &error) {
    ProjectionType type = PT_NONE;
    if (!bGetProjectionType(CVXString(keyword.c_str()), type)) {
        error =
            "unknown projection keyword '" + Shown(keyword) + "' (known: " + KnownKeywords() + ")";
        return nullptr;
    }
    std::unique_ptr<CEllipsoid> ell;
    if (!o.ellipsoid.empty()) {
        ell.reset(pGetNewEllipsoid(CVXString(o.ellipsoid.c_str()), 0.0, 0.0));
        if (!ell) {
            error = "unknown ellipsoid keyword '" + Shown(o.ellipsoid) + "'";
            return nullptr;
        }
    }
    // The defaults: the type's default object (an ellipsoid is needed to make it).
    const CEllipsoid wgs(CEllipsoid::WGS84);
    std::unique_ptr<COutputSystem> d(pGetNewProjection(type, 0, 0, 0, 0, 1, 0, 0, &wgs));
    if (!d) {
        error = "cannot make projection '" + keyword + "'";
        return nullptr;
    }
    const std::unique_ptr<CEllipsoid> defEll(d->pGetNewEllipsoid());
    const bool bParametric = bProjectionNeedsEllipsoid(type);
    const double k = d->dGetProjScaleFac();
    std::unique_ptr<COutputSystem> p(
        pGetNewProjection(type, OrDeg(o.lon0, d->dGetLonOriginCM()),
                          OrDeg(o.lat0, d->dGetLatOrigin()), OrDeg(o.par1, d->dGetStandPar1()),
                          OrDeg(o.par2, d->dGetStandPar2()), Or(o.k, k == -2.0 ? 1.0 : k),
                          Or(o.fe, d->dGetFalseEasting()), Or(o.fn, d->dGetFalseNorthing()),
                          bParametric ? (ell ? ell.get() : defEll.get()) : nullptr));
    return p;
}

// One point through the projection; false with an error for unparsable input.
bool ConvertOne(COutputSystem &p, bool bForward, const Args &nums, std::string &out,
                std::string &error) {
    if (nums.size() < 2 || nums.size() > 3) {
        error = "expected 2 or 3 numbers, got " + std::to_string(nums.size());
        return false;
    }
    double v[3] = {0.0, 0.0, 0.0};
    for (size_t i = 0; i < nums.size(); ++i) {
        if (!ParseNumber(nums[i], v[i])) {
            error = "not a number: '" + Shown(nums[i]) + "'";
            return false;
        }
        // The parser takes "nan" and "inf"; no coordinate is either.
        if (!std::isfinite(v[i])) {
            error = "not a finite number: '" + Shown(nums[i]) + "'";
            return false;
        }
    }
    if (bForward && std::fabs(v[0]) > kMaxLatitude) {
        error = "latitude beyond 90 degrees: '" + Shown(nums[0]) + "'";
        return false;
    }
    double r[3];
    if (bForward) {
        CVXCoord xy;
        p.ETRS2LOCAL(xy, CEllCoord(DegToRad(v[0]), DegToRad(v[1]), v[2]));
        r[0] = xy.dGetX();
        r[1] = xy.dGetY();
        r[2] = xy.dGetZ();
    } else {
        CEllCoord ell;
        p.LOCAL2ETRS(ell, CVXCoord(v[0], v[1], v[2], 1));
        r[0] = RadToDeg(ell.dGetLat());
        r[1] = RadToDeg(ell.dGetLon());
        r[2] = ell.dGetHgt();
        if (r[1] > 180.0) r[1] -= 360.0;
    }
    if (!std::isfinite(r[0]) || !std::isfinite(r[1]) || !std::isfinite(r[2])) {
        error = "the point has no finite result in this projection";
        return false;
    }
    char buf[160];
    std::snprintf(buf, sizeof buf, bForward ? "%.4f %.4f %.4f" : "%.9f %.9f %.4f", r[0], r[1],
                  r[2]);
    out = buf;
    return true;
}

int RunConvert(const Args &argsIn) {
    Args args(argsIn);
    SOptions o;
    const std::string optError = TakeOptions(args, o);
    if (!optError.empty()) return Fail(optError);
    if (args.size() < 2 || (args[0] != "--to" && args[0] != "--from"))
        return Fail("usage: vx convert --to|--from KEYWORD [OPTIONS] [A B [C]]");
    const bool bForward = args[0] == "--to";
    std::string error;
    const std::unique_ptr<COutputSystem> p = MakeProjection(args[1], o, error);
    if (!p) return Fail(error);
    const Args nums(args.begin() + 2, args.end());
    std::string out;
    if (!nums.empty()) {
        if (!ConvertOne(*p, bForward, nums, out, error)) return Fail(error);
        if (!PutLine(out) || std::fflush(stdout) != 0) return OutputFailed();
        return 0;
    }
    std::string line;
    int lineNo = 0;
    int rc = 0;
    for (LineState state; (state = ReadLine(line)) != LineState::end;) {
        ++lineNo;
        bool ok = false;
        if (state == LineState::tooLong) {
            error = "line longer than " + std::to_string(kMaxLineBytes) + " bytes";
        } else if (line.find('\0') != std::string::npos) {
            error = "line holds a NUL byte";
        } else {
            std::istringstream in(line);
            Args words;
            for (std::string w; in >> w;)
                words.push_back(w);
            ok = ConvertOne(*p, bForward, words, out, error);
        }
        // One line out per line in: a bad line gives an empty line and an error.
        if (!PutLine(ok ? out : std::string())) return OutputFailed();
        if (!ok) {
            Fail("line " + std::to_string(lineNo) + ": " + error);
            rc = kBadInput;
        }
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) return OutputFailed();
    return rc;
}

int RunReport(const Args &argsIn) {
    Args args(argsIn);
    SOptions o;
    const std::string optError = TakeOptions(args, o);
    if (!optError.empty()) return Fail(optError);
    if (args.size() != 1) return Fail("usage: vx report KEYWORD [OPTIONS]");
    std::string error;
    const std::unique_ptr<COutputSystem> p = MakeProjection(args[0], o, error);
    if (!p) return Fail(error);
    for (const CVXString &line :
         {p->szGetTRAV3Projection(), p->szGetTRAV3LonOriginCM(), p->szGetTRAV3LatOrigin(),
          p->szGetTRAV3StandPar1(), p->szGetTRAV3StandPar2(), p->szGetTRAV3ProjScaleFac(),
          p->szGetTRAV3FalseEasting(), p->szGetTRAV3FalseNorthing(), p->szGetTRAV3Ellipsoid(),
          p->szGetTRAV3SemiMajAx(), p->szGetTRAV3InvFlatt()})
        std::fputs(static_cast<const char *>(line), stdout);
    return 0;
}

const VxCommand convertCommand(
    "convert",
    "convert --to|--from KEYWORD [--lon0 D --lat0 D --par1 D --par2 D --k K --fe E --fn N "
    "--ellipsoid KEY] [LAT LON [H] | X Y [Z]]   ETRS89 degrees <-> projection (stdin when no "
    "numbers)",
    RunConvert);
const VxCommand reportCommand("report",
                              "report KEYWORD [OPTIONS]   the projection's parameter report",
                              RunReport);

} // namespace

} // namespace vxtool
