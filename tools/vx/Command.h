// The command table of the vx tool. Each command family lives in its own source file and
// registers its commands with a static VxCommand object.
#pragma once

#include <string>
#include <vector>

namespace vxtool {

using Args = std::vector<std::string>;

// A command: its name ("selftest", "archive"), a one-line usage text, and the function that runs
// it with the arguments after the name. The function returns the process exit code.
struct VxCommand {
    VxCommand(const char *name, const char *usage, int (*run)(const Args &));
    const char *name;
    const char *usage;
    int (*run)(const Args &);
};

const std::vector<const VxCommand *> &Commands();

// Prints "vx: <message>" to standard error and returns the exit code 2 (bad usage or input).
int Fail(const std::string &message);

} // namespace vxtool
