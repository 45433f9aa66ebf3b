// vx: the command-line host of the library.
#include "Command.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace vxtool {

namespace {
std::vector<const VxCommand *> &Table() {
    static std::vector<const VxCommand *> table;
    return table;
}
} // namespace

VxCommand::VxCommand(const char *n, const char *u, int (*r)(const Args &), const char *d)
    : name(n), usage(u), run(r), description(d) {
    Table().push_back(this);
}

const std::vector<const VxCommand *> &Commands() {
    return Table();
}

int Fail(const std::string &message) {
    std::fprintf(stderr, "vx: %s\n", message.c_str());
    return 2;
}

} // namespace vxtool

int main(int argc, char **argv) {
    using namespace vxtool;
    if (argc < 2) {
        PrintOverview(stderr);
        return 2;
    }
    const std::string name = argv[1];
    if (name == "--version" || name == "version") {
        std::printf("vx (VXCommon) %s\n", VX_VERSION_STRING);
        return 0;
    }
    if (name == "--help" || name == "-h") {
        PrintOverview(stdout);
        return 0;
    }
    const Args args(argv + 2, argv + argc);
    for (const VxCommand *c : Commands()) {
        if (name == c->name) {
            if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h"))
                return PrintCommandHelp(*c);
            try {
                return c->run(args);
            } catch (const std::exception &e) {
                return Fail(e.what());
            }
        }
    }
    PrintOverview(stderr);
    return Fail("unknown command '" + name + "'");
}
