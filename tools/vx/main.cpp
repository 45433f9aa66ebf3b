// vx: the command-line host of the library.
#include "Command.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <string>

namespace vxtool {

namespace {
std::vector<const VxCommand *> &Table() {
    static std::vector<const VxCommand *> table;
    return table;
}

void PrintUsage(std::FILE *out) {
    std::fprintf(out, "usage: vx --version | vx COMMAND [ARGS]\ncommands:\n");
    std::map<std::string, const VxCommand *> sorted;
    for (const VxCommand *c : Table())
        sorted[c->name] = c;
    for (const auto &[name, c] : sorted)
        std::fprintf(out, "  %s\n", c->usage);
}
} // namespace

VxCommand::VxCommand(const char *n, const char *u, int (*r)(const Args &))
    : name(n), usage(u), run(r) {
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
        PrintUsage(stderr);
        return 2;
    }
    const std::string name = argv[1];
    if (name == "--version" || name == "version") {
        std::printf("vx (VXCommon) %s\n", VX_VERSION_STRING);
        return 0;
    }
    if (name == "--help" || name == "help") {
        PrintUsage(stdout);
        return 0;
    }
    const Args args(argv + 2, argv + argc);
    for (const VxCommand *c : Commands()) {
        if (name == c->name) {
            try {
                return c->run(args);
            } catch (const std::exception &e) {
                return Fail(e.what());
            }
        }
    }
    PrintUsage(stderr);
    return Fail("unknown command '" + name + "'");
}
