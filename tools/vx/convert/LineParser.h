// The text side of vx convert: one input line split into fields, and the numbers and angles in
// them. A line is data, or a comment or blank line that passes through as it stands. Fields are
// runs between blanks (or between delimiters, for CSV); the coordinates stand in fields chosen by
// --columns, or found by the rule in ResolveColumns, and every other field keeps its text.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vxtool::convert {

// One field of a line: the byte range [begin, end) of its text.
struct SField {
    std::size_t begin = 0;
    std::size_t end = 0;
};

// True for a line that passes through unchanged: nothing but blanks, or a first non-blank '#'.
bool bIsPassThroughLine(std::string_view line);

// The fields of `line`: separated by runs of blanks and tabs when `delimiter` is 0, else by each
// `delimiter` (so that an empty CSV field still counts), with the blanks around a field left out.
void SplitFields(std::string_view line, char delimiter, std::vector<SField> &fields);

enum class NumberState { ok, notANumber, notFinite };

// A plain decimal number ("-12.5", "+3", "1e3"), the whole text and nothing else.
NumberState ParseNumber(std::string_view text, double &value);

// Which coordinate an angle is: a hemisphere letter must suit it.
enum class AngleAxis { latitude, longitude };

// An angle in degrees: a decimal number or degrees, minutes and seconds such as 52d09'18.6"N,
// 52°9'18.6", -4d30' or 5.3872E. A hemisphere letter (N S for latitude, E W for longitude)
// gives the sign; minutes and seconds lie below 60. Returns notANumber with `error` set for
// anything else.
NumberState ParseAngle(std::string_view text, AngleAxis axis, double &degrees, std::string &error);

// The 0-based fields of the two coordinates and of the third (height), or kNoField.
inline constexpr std::size_t kNoField = static_cast<std::size_t>(-1);
struct SColumns {
    std::array<std::size_t, 3> field{kNoField, kNoField, kNoField};
    bool bGiven = false; // set by --columns rather than found per line
};

// Reads --columns "A,B" or "A,B,C" (1-based field numbers, all different); false with `error`.
bool ParseColumns(std::string_view text, SColumns &columns, std::string &error);

// The columns of one line. Given columns stand as they are. Otherwise: the coordinates are the
// first two fields, or the second and third when the first is no number (a point identifier);
// the next field is the height when it is a number, else it passes through as text.
SColumns ResolveColumns(const SColumns &given, std::string_view line,
                        const std::vector<SField> &fields, bool bAngles);

} // namespace vxtool::convert

namespace vxtool::convert {

// The user's text as a message shows it: printable ASCII as it is, every other byte as \xNN, and
// at most 40 bytes of it, so that a message never carries raw bytes to the terminal.
std::string Shown(std::string_view raw);

} // namespace vxtool::convert
