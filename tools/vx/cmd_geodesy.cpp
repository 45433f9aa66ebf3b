// vx convert, vx report: the projections of the library from the command line. The parts live
// in convert/: the line parser, the number formatter, the keyword table, the block reader and
// writer, and the point converter; here they are put together.
#include "Command.h"
#include "convert/ConvertOptions.h"

#include "foundation/VXFile.h"
#include "geodesy/Geoid.h"
#include "platform/UserPrompt.h"
#include "platform/VXString.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace vxtool {

namespace {

using namespace vx;
using namespace convert;

// The exit code of output that could not be written (a full disk, a closed pipe).
constexpr int kOutputFailed = 1;
// The exit code of input that could not be converted.
constexpr int kBadInput = 2;
constexpr int kStdin = 0;

// Where the library looks for the grid files, as a user can act on it.
std::string GridFolderText() {
    const char *env = std::getenv("VXCOMMON_DATA");
    const std::string dir = static_cast<const char *>(DLLPath());
    if (env && *env) return dir + " (named by VXCOMMON_DATA)";
    return dir + " (the library's folder; VXCOMMON_DATA names another)";
}

// The library tells of a missing grid file in its own words, once per projection object; the
// tool adds, once, which files it looked for, where, and what the results then are.
class CGridNotice : public IUserPrompt {
public:
    explicit CGridNotice(const SKeyword &keyword) : m_keyword(keyword) { SetUserPrompt(this); }
    ~CGridNotice() override { SetUserPrompt(nullptr); }
    CGridNotice(const CGridNotice &) = delete;
    CGridNotice &operator=(const CGridNotice &) = delete;

    int AskRetryCancel(const CVXString &text) override {
        ShowMessage(text, IconQuestion);
        return IDCANCEL;
    }
    void ShowMessage(const CVXString &text, int) override {
        std::fprintf(stderr, "%s\n", static_cast<const char *>(text));
        if (!m_keyword.grids || m_bTold) return;
        m_bTold = true;
        std::fprintf(stderr,
                     "vx: looked for the grid files %s in %s; the points are converted without "
                     "the grid correction (datum shift and projection only)\n",
                     m_keyword.grids, GridFolderText().c_str());
    }
    bool BreakRequested() override { return false; }

private:
    const SKeyword &m_keyword;
    bool m_bTold = false;
};

// A GTX geoid model registered under the keyword's model number for the run.
class CGeoidRegistration {
public:
    CGeoidRegistration(const std::string &path, int nModel)
        : m_model(CVXString(path.c_str())), m_nModel(nModel) {
        if (m_model.bIsLoaded()) RegisterGeoidModel(m_nModel, &m_model);
    }
    ~CGeoidRegistration() {
        if (m_model.bIsLoaded()) RegisterGeoidModel(m_nModel, nullptr);
    }
    CGeoidRegistration(const CGeoidRegistration &) = delete;
    CGeoidRegistration &operator=(const CGeoidRegistration &) = delete;
    bool bLoaded() const { return m_model.bIsLoaded(); }

private:
    CGtxGeoidModel m_model;
    int m_nModel;
};

std::unique_ptr<COutputSystem> ProjectionOf(const std::string &name,
                                            const SProjectionOptions &options,
                                            const SKeyword *&keyword, std::string &error) {
    keyword = FindKeyword(name);
    if (!keyword) {
        error = "unknown projection keyword '" + Shown(name) + "' (known: " + KnownKeywords() +
                "; vx convert --list tells what each is)";
        return nullptr;
    }
    return MakeProjection(keyword, options, error);
}

// Every file must open before any output is made.
std::string UnreadableFile(const std::vector<std::string> &files) {
    for (const std::string &f : files) {
        if (f == "-") continue;
        const int fd = ::open(f.c_str(), O_RDONLY);
        if (fd < 0) return "cannot open " + Shown(f) + ": " + std::strerror(errno);
        ::close(fd);
    }
    return {};
}

// Runs the files (or the standard input) through the stream; false on a read error.
bool bRunFiles(CConvertStream &stream, const std::vector<std::string> &files,
               const COutputBuffer &out) {
    if (files.empty()) {
        CLineReader reader(kStdin);
        return stream.bRun(reader, "");
    }
    for (const std::string &f : files) {
        const bool bStdin = f == "-";
        const int fd = bStdin ? kStdin : ::open(f.c_str(), O_RDONLY);
        if (fd < 0) {
            Fail("cannot open " + Shown(f) + ": " + std::strerror(errno));
            return false;
        }
        CLineReader reader(fd);
        const bool bOk = stream.bRun(reader, bStdin ? "" : f);
        if (!bStdin) ::close(fd);
        if (!bOk) return false;
        if (out.bFailed()) break;
    }
    return true;
}

void NoteHeights(const SKeyword &keyword, const std::string &name) {
    if (keyword.kind == KeywordKind::plain)
        Fail("note: heights pass through unchanged: " + name +
             " is a plain projection and converts positions only");
    else
        Fail("note: heights pass through unchanged: no geoid model (--geoid FILE.gtx converts "
             "between ellipsoidal and national heights)");
}

int Convert(const SConvertRequest &r) {
    std::string error;
    const SKeyword *keyword = nullptr;
    const std::unique_ptr<COutputSystem> p = ProjectionOf(r.keyword, r.projection, keyword, error);
    if (!p) return Fail(error);
    std::unique_ptr<CGeoidRegistration> geoid;
    if (r.projection.given & kOptGeoid) {
        geoid = std::make_unique<CGeoidRegistration>(r.projection.geoid, keyword->nGeoidModel);
        if (!geoid->bLoaded())
            return Fail("cannot load the geoid model '" + Shown(r.projection.geoid) +
                        "' (a GTX grid file)");
    }
    error = UnreadableFile(r.files);
    if (!error.empty()) return Fail(error);
    const CGridNotice notice(*keyword);
    CPointConverter converter(*p, *keyword, r.bForward, geoid != nullptr);
    COutputBuffer out(stdout);
    CConvertStream stream(converter, *keyword, r.stream, out);
    bool bRead = true;
    if (!r.pointLine.empty())
        stream.ProcessBlock({SInputLine{r.pointLine, false}});
    else
        bRead = bRunFiles(stream, r.files, out);
    if (!out.bFinish()) {
        Fail(std::string("cannot write the output: ") + std::strerror(out.nError()));
        return kOutputFailed;
    }
    if (stream.Stats().bHeightSeen && !geoid)
        NoteHeights(*keyword, static_cast<const char *>(p->szGetTrav3ProjectionName()));
    return bRead && stream.Stats().nBadLines == 0 ? 0 : kBadInput;
}

int RunConvert(const Args &args) {
    SConvertRequest request;
    std::string error;
    if (!ParseConvertArgs(args, request, error)) return Fail(error);
    if (!request.bList) return Convert(request);
    PrintKeywordList(stdout);
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        Fail(std::string("cannot write the output: ") + std::strerror(errno));
        return kOutputFailed;
    }
    return 0;
}

int RunReport(const Args &args) {
    SProjectionOptions options;
    std::string error;
    std::vector<std::string> rest;
    for (std::size_t i = 0; i < args.size() && error.empty(); ++i)
        if (!bTakeProjectionOption(args, i, options, error)) rest.push_back(args[i]);
    if (!error.empty()) return Fail(error);
    if (rest.size() != 1) return Fail("usage: vx report KEYWORD [OPTIONS]");
    const SKeyword *keyword = nullptr;
    const std::unique_ptr<COutputSystem> p = ProjectionOf(rest[0], options, keyword, error);
    if (!p) return Fail(error);
    for (const CVXString &line :
         {p->szGetTRAV3Projection(), p->szGetTRAV3LonOriginCM(), p->szGetTRAV3LatOrigin(),
          p->szGetTRAV3StandPar1(), p->szGetTRAV3StandPar2(), p->szGetTRAV3ProjScaleFac(),
          p->szGetTRAV3FalseEasting(), p->szGetTRAV3FalseNorthing(), p->szGetTRAV3Ellipsoid(),
          p->szGetTRAV3SemiMajAx(), p->szGetTRAV3InvFlatt()})
        std::fputs(static_cast<const char *>(line), stdout);
    return 0;
}

const char kConvertDescription[] =
    "Each KEYWORD means one thing in both directions. A plain projection (RD, LAMBERT72,\n"
    "UTM_NORTH, TM, SWISS, ...) converts between geographic coordinates on its own ellipsoid and\n"
    "its plane, and nothing else. A national grid (RDNAPTRANS2008, RDNAPTRANS2004, RDNAPTRANS,\n"
    "LAMBERT72CORR, LAMBERT2008) converts between ETRS89 and the grid: datum shift, projection\n"
    "and correction grid. --to goes from geographic to the plane, --from back. 'vx convert\n"
    "--list' prints every keyword with its sides, datum shift, grid files, geoid model and\n"
    "options.\n"
    "\n"
    "Input comes from the FILEs, or the standard input (also '-'), or the coordinates given as\n"
    "arguments. A line holds latitude and longitude (--to; decimal degrees or degrees, minutes\n"
    "and seconds such as 52d09'18.6\"N) or x and y in metres (--from), then optionally a height.\n"
    "When the first field is no number it is a point identifier and the coordinates follow. Other\n"
    "fields pass through as they are; blank lines and lines starting with # are copied. A bad\n"
    "value (not a number, NaN, infinity, latitude beyond 90 degrees) gives an empty output line,\n"
    "a message with its line number, and exit code 2 at the end.\n"
    "\n"
    "Heights: without a geoid model a height passes through unchanged, and the tool says so once.\n"
    "With --geoid a national grid's height is H = h - N going in and h = H + N coming back.\n"
    "\n"
    "  --to KEYWORD       geographic to the plane\n"
    "  --from KEYWORD     the plane to geographic\n"
    "  --list             the keyword table\n"
    "  --zone N           UTM zone 1 to 60 (sets the central meridian); --south for the south\n"
    "  --lon0 --lat0 D    origin in degrees; --par1 --par2 D standard parallels\n"
    "  --k K              scale factor; --fe E --fn N false easting and northing in metres\n"
    "  --ellipsoid KEY    ellipsoid of a plain parametric projection (GRS_1980, WGS84, ...)\n"
    "  --geoid FILE.gtx   GTX geoid model for the heights of a national grid\n"
    "  --columns A,B[,C]  the fields of the two coordinates and the height, counted from 1\n"
    "  --delimiter C      fields separated by C (such as , for CSV; 'tab'), not by blanks\n"
    "  --precision N      decimals of metres (default 4); degrees get N + 5\n"
    "\n"
    "Options start from the projection's own defaults, and an option that the keyword does not\n"
    "use is an error. The national grids read the correction grid files from the folder in\n"
    "VXCOMMON_DATA (else the library's folder); without them the tool says which files it looked\n"
    "for, where, and converts without the grid correction.\n"
    "\n"
    "Examples:\n"
    "  vx convert --to RDNAPTRANS2008 52.1551744 5.3872036 43.27\n"
    "  vx convert --from RDNAPTRANS2008 points_rd.txt > points_etrs.txt\n"
    "  vx convert --to UTM_NORTH --zone 31 --ellipsoid GRS_1980 --delimiter , survey.csv\n"
    "  vx convert --to SWISS 46d57'08.66\"N 7d26'22.50\"E";

const VxCommand convertCommand(
    "convert",
    "convert --to|--from KEYWORD [OPTIONS] [FILE... | COORDINATES] | convert --list   "
    "coordinates through a projection or national grid, line by line",
    RunConvert, kConvertDescription);
const VxCommand reportCommand("report",
                              "report KEYWORD [OPTIONS]   the projection's parameter report",
                              RunReport);

} // namespace

} // namespace vxtool
