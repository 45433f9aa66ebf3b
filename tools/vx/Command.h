// The command table of the vx tool. Each command family lives in its own source file and
// registers its commands with a static VxCommand object; help, the manual page and the shell
// completion are all made from this table.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace vxtool {

using Args = std::vector<std::string>;

// A command: its name ("selftest", "archive"), a one-line usage text, the function that runs it
// with the arguments after the name (it returns the process exit code), and optionally a longer
// description in the manner of a manual page: paragraphs separated by blank lines, option lines
// starting with "  -" or "  WORD". Without one, help shows the usage line alone.
struct VxCommand {
    VxCommand(const char *name, const char *usage, int (*run)(const Args &),
              const char *description = nullptr);
    const char *name;
    const char *usage;
    int (*run)(const Args &);
    const char *description;
};

const std::vector<const VxCommand *> &Commands();

// The overview of every command (vx --help), and one command's help (vx help CMD, CMD --help).
void PrintOverview(std::FILE *out);
int PrintCommandHelp(const VxCommand &c);

// Prints "vx: <message>" to standard error and returns the exit code 2 (bad usage or input).
int Fail(const std::string &message);

} // namespace vxtool
