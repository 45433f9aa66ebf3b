// vx archive: lists and converts archive documents (one root object, binary or XML). The work is
// done by persist/ArchiveFiles; this file only reads the arguments and reports.
#include "Command.h"

#include "persist/ArchiveFiles.h"
#include "platform/VXString.h"

#include <cstdio>
#include <exception>
#include <string>

namespace vxtool {

namespace {

const char kHelp[] = "archive dump FILE | archive convert IN OUT   list an archive document, or "
                     "convert it (OUT ending in .xml: XML, else binary)";
const char kUsage[] = "usage: vx archive dump FILE | vx archive convert IN OUT";

int Dump(const std::string &path) {
    const std::string text = vx::DumpArchive(vx::CVXString(path.c_str()));
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (!text.empty() && text.back() != '\n') std::fputc('\n', stdout);
    return 0;
}

int Convert(const std::string &in, const std::string &out) {
    const vx::CVXString outPath(out.c_str());
    const auto root = vx::LoadArchiveRoot(vx::CVXString(in.c_str()));
    vx::SaveArchiveRoot(outPath, *root, vx::ArchiveFormatForPath(outPath));
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
