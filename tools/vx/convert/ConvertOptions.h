// The command line of vx convert and vx report: the direction and keyword, the projection
// options, the input and output options, and the files or the one point given on the line.
#pragma once

#include "ConvertStream.h"
#include "Keywords.h"

#include <string>
#include <vector>

namespace vxtool::convert {

struct SConvertRequest {
    bool bList = false;   // --list
    bool bForward = true; // --to, else --from
    std::string keyword;
    SProjectionOptions projection;
    SStreamSettings stream;
    std::vector<std::string> files; // "-" is the standard input
    std::string pointLine;          // a point given as arguments, as one input line
};

// Takes one projection option at args[i] (and its value, moving i on); false when args[i] is no
// projection option. `error` is set for a bad or repeated value.
bool bTakeProjectionOption(const std::vector<std::string> &args, std::size_t &i,
                           SProjectionOptions &options, std::string &error);

// The whole command line of vx convert; false with `error` for bad usage.
bool ParseConvertArgs(const std::vector<std::string> &args, SConvertRequest &request,
                      std::string &error);

} // namespace vxtool::convert
