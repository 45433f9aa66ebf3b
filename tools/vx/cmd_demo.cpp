// vx demo: the library's typical road, on a synthetic project: load the project from an XML
// archive, clip the parcels with the plan boundary (arcs stay arcs), take the pieces from the
// Dutch national grid to ETRS89, save them with both archives, report problems through a
// message list and draw the result.
//
// Everything the demo reads is synthetic and says so: the project (data/demo/project.xml, made
// by `vx demo --make-project`), and the correction grid, which the demo writes itself because
// the official grids may not be redistributed. Only the geoid is real data, and only when the
// distribution's proj-data package provides the global EGM96 model.
#include "Command.h"
#include "DemoProject.h"

#include "LineFiles.h"
#include "Svg.h"
#include "convert/NumberFormat.h"

#include "geodesy/Angles.h"
#include "geodesy/Ellipsoid.h"
#include "geodesy/Geoid.h"
#include "geodesy/NationalGrid.h"
#include "geometry/ClipList.h"
#include "geometry/VXCoordArr.h"
#include "persist/ArchiveFiles.h"
#include "platform/Errors.h"
#include "platform/File.h"
#include "text/AsciiMeldingen.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace vxtool {

namespace {

const char kUsage[] = "demo [OUTDIR] [--data DIR] | demo --make-project FILE";
const char kDescription[] =
    "Runs the library's typical road on a synthetic project and writes every result to OUTDIR "
    "(default: vx-demo):\n"
    "\n"
    "1. loads the project DIR/project.xml with the XML archive: parcels (closed lines with "
    "arcs), a plan boundary to clip them with, and the projection of the project (RDNAPTRANS "
    "2008);\n"
    "2. clips every parcel with the plan boundary; the pieces keep their arcs;\n"
    "3. takes every vertex of the pieces from the national grid (with NAP heights) to ETRS89, "
    "through a synthetic correction grid that the demo writes to OUTDIR/grids and, when the "
    "proj-data package provides it, the global EGM96 geoid in place of the national model;\n"
    "4. saves the pieces with both archives (pieces.xml, pieces.vxb) and the ETRS89 vertices as "
    "text (pieces_etrs89.txt);\n"
    "5. writes the messages of the run to report.txt and prints a summary.\n"
    "\n"
    "None of the data is official: the grid values are a smooth made-up field of a few "
    "centimetres, so the ETRS89 coordinates differ from the true ones by that much.\n"
    "\n"
    "  --data DIR            where project.xml is (default: the sample data of the source tree)\n"
    "  --make-project FILE   writes the synthetic project to FILE (.xml: XML, else binary) and "
    "stops\n"
    "\n"
    "Exit status: 0 when every result was written, 1 when a write failed, 2 for bad usage or a "
    "project that cannot be read.";

// The exit code of a result that could not be written.
constexpr int kWriteFailed = 1;

// A result that could not be written, as against a project that could not be read.
class CWriteFailed : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The model number under which the national grid projections of the 2008 edition ask for the
// geoid height.
constexpr int kRdGeoidModel = 18;
const char kEgm96Path[] = "/usr/share/proj/egm96_15.gtx";

// The Dutch correction grid files as the library reads them: 56 header bytes, then 310 floats a
// row for 342 rows, from (-8000, 288000) in steps of 1 km, little-endian.
constexpr int kGridCols = 310;
constexpr int kGridRows = 342;
constexpr size_t kGridHeaderBytes = 56;
constexpr double kGridX0 = -8000.0;
constexpr double kGridY0 = 288000.0;
constexpr double kGridStep = 1000.0;

// The made-up correction field, in metres: a few centimetres, smooth across the country.
double SyntheticDx(double x, double y) {
    return 0.02 + 1.0e-7 * (x - 155000.0) - 0.5e-7 * (y - 463000.0);
}
double SyntheticDy(double x, double y) {
    return -0.01 + 0.5e-7 * (x - 155000.0) + 1.0e-7 * (y - 463000.0);
}

std::string GridBytes(double (*field)(double, double)) {
    std::string bytes(kGridHeaderBytes, '\0');
    bytes.reserve(kGridHeaderBytes + sizeof(float) * kGridCols * kGridRows);
    for (int r = 0; r < kGridRows; ++r) {
        for (int c = 0; c < kGridCols; ++c) {
            const float v =
                static_cast<float>(field(kGridX0 + kGridStep * c, kGridY0 + kGridStep * r));
            unsigned char le[sizeof(float)];
            std::memcpy(le, &v, sizeof v); // the machines we build for are little-endian
            bytes.append(reinterpret_cast<const char *>(le), sizeof le);
        }
    }
    return bytes;
}

void WriteSyntheticGrid(const std::string &dir) {
    std::filesystem::create_directories(dir);
    vxinterchange::WriteTextFile(dir + "/X2c.grd", GridBytes(&SyntheticDx));
    vxinterchange::WriteTextFile(dir + "/Y2c.grd", GridBytes(&SyntheticDy));
}

// The parts of a loaded project.
struct SProject {
    vx::COutputSystem *pProjection = nullptr;
    vxinterchange::Lines boundary; // one line
    vxinterchange::Lines parcels;
};

// The root is an array: the projection, then the plan boundary and the parcels, each line
// followed by its section codes.
SProject Identify(vx::ISerObject &root) {
    SProject project;
    if (auto *pArray = dynamic_cast<vx::CSerObArray *>(&root); pArray && pArray->GetSize() > 0)
        project.pProjection = dynamic_cast<vx::COutputSystem *>(pArray->GetAt(0));
    vxinterchange::Lines lines = vxinterchange::LinesOfArchiveRoot(root);
    if (!project.pProjection || lines.size() < 2)
        throw std::runtime_error("the project is not an array of a projection, a boundary and "
                                 "parcels");
    project.boundary.push_back(std::move(lines.front()));
    for (size_t i = 1; i < lines.size(); ++i)
        project.parcels.push_back(std::move(lines[i]));
    return project;
}

int CountArcs(const vx::CVXCoordArr &line) {
    int n = 0;
    for (int i = 0; i + 2 < line.GetSize(); i = line.nNextLinePart(i))
        n += line.bBoog(i) ? 1 : 0;
    return n;
}

double Area(const vx::CVXCoordArr &line) {
    double area = 0.0;
    return line.bOppervlak(&area) ? area : 0.0;
}

// Clips one parcel; a parcel that the boundary does not cross lies wholly inside or outside it.
void ClipParcel(const vx::CVXCoordArr &parcel, int nParcel, const vx::CVXCoordArr &boundary,
                vxinterchange::Lines &pieces, vx::CAsciiMeldingen &report) {
    vx::CVXCoordArrList inside;
    vx::CVXCoordArrList outside;
    const bool bCut =
        parcel.bSnijPoly(inside, outside, boundary, vx::ClipField(true, false, false), true);
    if (bCut) {
        report.AddMeldingFmt(vx::CAsciiMeldingen::mtMelding,
                             u"parcel %d: cut by the boundary into %d piece(s)", nParcel,
                             static_cast<int>(inside.GetCount()));
        while (!inside.IsEmpty())
            pieces.emplace_back(inside.RemoveHead());
        return;
    }
    if (parcel.nPuntArrBinnenPuntArr(boundary) > 0) {
        report.AddMeldingFmt(vx::CAsciiMeldingen::mtMelding,
                             u"parcel %d: wholly inside the boundary", nParcel);
        pieces.push_back(std::make_unique<vx::CVXCoordArr>(parcel));
        return;
    }
    report.AddMeldingFmt(vx::CAsciiMeldingen::mtWaarschuwing,
                         u"parcel %d: outside the boundary, left out", nParcel);
}

std::string Fixed(double v, int decimals) {
    char buf[convert::kMaxFixedChars];
    return std::string(buf, convert::WriteFixed(buf, v, decimals));
}

// Every vertex of every piece in ETRS89: piece, vertex, latitude, longitude, height.
std::string EtrsListing(const vxinterchange::Lines &pieces, vx::COutputSystem &projection) {
    // The heights are what the national chain makes of them: the NAP height taken as a height
    // above the Bessel ellipsoid, carried through the datum shift, plus the geoid height N of the
    // registered model. The header says so, so that nobody reads them as true ETRS89 heights.
    std::string text = "# piece vertex latitude longitude height: ETRS89 in degrees, through a "
                       "SYNTHETIC correction grid\n"
                       "# height: the NAP height as a Bessel height through the datum shift, "
                       "plus the geoid height N of the model in use (none: N is 0)\n";
    int nPiece = 0;
    for (const vxinterchange::LinePtr &line : pieces) {
        const vx::CVXCoordArr &piece = *line;
        ++nPiece;
        for (int i = 0; i < piece.GetSize(); ++i) {
            vx::CEllCoord ell;
            projection.LOCAL2ETRS(ell, piece.Pt(i));
            text += std::to_string(nPiece) + ' ' + std::to_string(i + 1) + ' ' +
                    Fixed(vx::RadToDeg(ell.dGetLat()), 9) + ' ' +
                    Fixed(vx::RadToDeg(ell.dGetLon()), 9) + ' ' + Fixed(ell.dGetHgt(), 3) + '\n';
        }
    }
    return text;
}

// The parcels in grey, the boundary in blue, the pieces inside filled green.
std::string Drawing(const SProject &project, const vxinterchange::Lines &pieces) {
    return vxinterchange::WriteSvg({{&project.parcels, "parcels", "#7f7f7f", false},
                                    {&project.boundary, "plan boundary", "#1f77b4", false},
                                    {&pieces, "pieces inside", "#2ca02c", true}});
}

std::string DefaultDataDir() {
#ifdef VX_SOURCE_DATA_DIR
    return std::string(VX_SOURCE_DATA_DIR) + "/demo";
#else
    return "data/demo";
#endif
}

struct SOptions {
    std::string outDir = "vx-demo";
    std::string dataDir = DefaultDataDir();
    std::string makeProject;
};

bool ParseOptions(const Args &args, SOptions &o, std::string &error) {
    bool bOutGiven = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string &a = args[i];
        if ((a == "--data" || a == "--make-project") && i + 1 < args.size()) {
            (a == "--data" ? o.dataDir : o.makeProject) = args[++i];
        } else if (!a.empty() && a[0] != '-' && !bOutGiven) {
            o.outDir = a;
            bOutGiven = true;
        } else {
            error = "demo: unexpected argument '" + a + "'\nusage: vx " + kUsage;
            return false;
        }
    }
    return true;
}

// Registers the global geoid when the distribution has it; the model stays alive for the run.
std::string UseGeoid(std::unique_ptr<vx::CGtxGeoidModel> &model) {
    if (!std::filesystem::exists(kEgm96Path))
        return "none (proj-data is not installed): heights are ellipsoidal = NAP, uncorrected";
    model = std::make_unique<vx::CGtxGeoidModel>(vx::CVXString(kEgm96Path));
    if (!model->bIsLoaded()) return std::string("none: ") + kEgm96Path + " could not be read";
    vx::RegisterGeoidModel(kRdGeoidModel, model.get());
    return std::string("EGM96 from ") + kEgm96Path +
           " (global, REAL data; stands in for the national model)";
}

struct SSummary {
    size_t nParcels = 0;
    size_t nPieces = 0;
    int nArcsBefore = 0;
    int nArcsAfter = 0;
    double dAreaBefore = 0.0;
    double dAreaAfter = 0.0;
};

void PrintSummary(const SOptions &o, const SSummary &s, const std::string &geoid,
                  const vx::CAsciiMeldingen &report) {
    std::printf("vx demo: a SYNTHETIC project, clipped and taken to ETRS89\n");
    std::printf("  project   %s/project.xml: %zu parcels, a plan boundary, RDNAPTRANS 2008\n",
                o.dataDir.c_str(), s.nParcels);
    std::printf("  clipped   %zu parcels (%d arcs) -> %zu pieces inside (%d arcs)\n", s.nParcels,
                s.nArcsBefore, s.nPieces, s.nArcsAfter);
    std::printf("  area      %s m2 -> %s m2\n", Fixed(s.dAreaBefore, 2).c_str(),
                Fixed(s.dAreaAfter, 2).c_str());
    std::printf("  grid      SYNTHETIC correction grid in %s/grids (X2c.grd, Y2c.grd)\n",
                o.outDir.c_str());
    std::printf("  geoid     %s\n", geoid.c_str());
    std::printf("  messages  %u (%u warnings, %u errors)\n", report.lGetAantal(),
                report.lGetAantal(vx::CAsciiMeldingen::mtWaarschuwing), report.lGetFouten());
    std::printf("  written   %s/{pieces.xml, pieces.vxb, pieces_etrs89.txt, report.txt, "
                "demo.svg}\n",
                o.outDir.c_str());
}

// Saves the pieces with both archives, their ETRS89 vertices, the report and the drawing.
void WriteResults(const SOptions &o, const SProject &project, const vxinterchange::Lines &pieces,
                  vx::CAsciiMeldingen &report) {
    try {
        vxinterchange::SaveLinesArchive(o.outDir + "/pieces.xml", pieces);
        vxinterchange::SaveLinesArchive(o.outDir + "/pieces.vxb", pieces);
        vxinterchange::WriteTextFile(o.outDir + "/pieces_etrs89.txt",
                                     EtrsListing(pieces, *project.pProjection));
        vxinterchange::WriteTextFile(o.outDir + "/demo.svg", Drawing(project, pieces));
        report.SaveAs(vx::CVXString((o.outDir + "/report.txt").c_str()));
    } catch (const std::exception &e) {
        throw CWriteFailed(e.what());
    }
}

int RunRoad(const SOptions &o) {
    const std::string gridDir = o.outDir + "/grids";
    try {
        WriteSyntheticGrid(gridDir);
    } catch (const std::exception &e) {
        throw CWriteFailed(e.what());
    }
    // The projection opens its grid files when it is made, so the location is set first.
    ::setenv("VXCOMMON_DATA", gridDir.c_str(), 1);
    std::unique_ptr<vx::CGtxGeoidModel> geoidModel;
    const std::string geoid = UseGeoid(geoidModel);

    const std::string projectPath = o.dataDir + "/project.xml";
    const vx::CLoadedArchive loaded = vx::LoadArchiveRoot(vx::CVXString(projectPath.c_str()));
    const SProject project = Identify(loaded.Root());

    vx::CAsciiMeldingen report;
    vxinterchange::Lines pieces;
    SSummary summary;
    summary.nParcels = project.parcels.size();
    for (size_t i = 0; i < project.parcels.size(); ++i) {
        const vx::CVXCoordArr &parcel = *project.parcels[i];
        summary.nArcsBefore += CountArcs(parcel);
        summary.dAreaBefore += Area(parcel);
        ClipParcel(parcel, static_cast<int>(i + 1), *project.boundary.front(), pieces, report);
    }
    for (const vxinterchange::LinePtr &piece : pieces) {
        summary.nArcsAfter += CountArcs(*piece);
        summary.dAreaAfter += Area(*piece);
    }
    summary.nPieces = pieces.size();
    WriteResults(o, project, pieces, report);
    vx::RegisterGeoidModel(kRdGeoidModel, nullptr);
    PrintSummary(o, summary, geoid, report);
    return std::fflush(stdout) == 0 ? 0 : kWriteFailed;
}

int RunDemo(const Args &args) {
    SOptions options;
    std::string error;
    if (!ParseOptions(args, options, error)) return Fail(error);
    try {
        if (!options.makeProject.empty()) {
            WriteDemoProject(options.makeProject);
            return 0;
        }
        return RunRoad(options);
    } catch (const CWriteFailed &e) {
        Fail(std::string("demo: ") + e.what());
        return kWriteFailed;
    } catch (const std::exception &e) {
        return Fail(std::string("demo: ") + e.what());
    }
}

const VxCommand g_demo("demo", kUsage, &RunDemo, kDescription);

} // namespace

} // namespace vxtool
