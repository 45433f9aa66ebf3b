// vx archive: lists and converts archive documents (one root object, binary or XML). The work is
// done by persist/ArchiveFiles; this file only reads the arguments and reports.
#include "Command.h"

#include "persist/ArchiveFiles.h"
#include "platform/VXString.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

namespace vxtool {

namespace {

const char kHelp[] = "archive dump FILE | archive convert IN OUT   list an archive document, or "
                     "convert it (OUT ending in .xml: XML, else binary)";
const char kUsage[] = "usage: vx archive dump FILE | vx archive convert IN OUT";

// The exit code of a listing that could not be written (a closed pipe, a full disk).
constexpr int kOutputFailed = 1;

int Dump(const std::string &path) {
    std::string text = vx::DumpArchive(vx::CVXString(path.c_str()));
    if (!text.empty() && text.back() != '\n') text += '\n';
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!written || std::fflush(stdout) != 0) {
        Fail(std::string("cannot write the listing: ") + std::strerror(errno));
        return kOutputFailed;
    }
    return 0;
}

// The output is written beside OUT and renamed over it when complete: on a failure OUT is left
// as it was, so converting a file onto itself cannot destroy it.
int Convert(const std::string &in, const std::string &out) {
    const vx::CVXString outPath(out.c_str());
    const vx::CLoadedArchive loaded = vx::LoadArchiveRoot(vx::CVXString(in.c_str()));
    vx::SaveArchiveRoot(outPath, loaded.Root(), vx::ArchiveFormatForPath(outPath));
    return 0;
}

int RunArchive(const Args &args) {
    try {
        if (args.size() == 2 && args[0] == "dump") return Dump(args[1]);
        if (args.size() == 3 && args[0] == "convert") return Convert(args[1], args[2]);
        return Fail(kUsage);
    } catch (const std::exception &e) {
        return Fail(e.what());
    }
}

const VxCommand g_archive("archive", kHelp, &RunArchive);

} // namespace

} // namespace vxtool
