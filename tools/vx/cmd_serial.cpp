// vx serial: a quick look at an instrument on a serial port. Opens the port, sends one line
// (followed by CR LF), and prints what comes back within the time-out. Ctrl-C breaks off through
// the library's break-off question.
#include "Command.h"

#include "device/Communicatie.h"
#include "platform/UserPrompt.h"
#include "platform/VXString.h"

#include <cctype>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <strings.h>

namespace vxtool {

namespace {

const char kHelp[] = "serial PORT [--send LINE] [--timeout S]   open COM1..COM24 or a device "
                     "path, send LINE with CR LF, print the answer (time-out 2 s)";
const char kUsage[] = "usage: vx serial PORT [--send LINE] [--timeout S]";

constexpr double kDefaultTimeout = 2.0; // seconds
constexpr double kMaxTimeout = 3600.0;
// A device path given on the command line is reached through the first port number.
constexpr int kPathPort = 0;
const char kLineEnd[] = "\r\n";

struct SerialArgs {
    int port = kPathPort;
    std::string name; // as the messages show it: "COM3 (/dev/ttyS2)" or the path
    bool send = false;
    std::string line;
    double timeout = kDefaultTimeout;
};

// "COM1" to "COM24" (any case) gives 0 to 23; anything else -1.
int PortOfName(const std::string &text) {
    if (text.size() < 4 || strncasecmp(text.c_str(), "COM", 3) != 0) return -1;
    char *end = nullptr;
    errno = 0;
    const long n = std::strtol(text.c_str() + 3, &end, 10);
    if (errno != 0 || *end != '\0' || !std::isdigit(static_cast<unsigned char>(text[3])) || n < 1 ||
        n > vx::CCommunicatie::nComPorts)
        return -1;
    return static_cast<int>(n - 1);
}

bool ParseTimeout(const std::string &text, double &seconds) {
    char *end = nullptr;
    seconds = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && std::isfinite(seconds) && seconds >= 0.0 &&
           seconds <= kMaxTimeout;
}

// Fills `out`; returns 0, or the exit code of a usage failure.
int ParseArgs(const Args &args, SerialArgs &out) {
    if (args.empty()) return Fail(kUsage);
    const std::string &port = args[0];
    if (!port.empty() && port[0] == '/') {
        vx::CCommunicatie::SetDevicePath(kPathPort, vx::CVXString(port.c_str()));
        out.name = port;
    } else {
        out.port = PortOfName(port);
        if (out.port < 0)
            return Fail("'" + port + "' is not a port: give COM1 to COM24 or a device path");
        out.name = port + " (" +
                   static_cast<const char *>(vx::CCommunicatie::szGetDevicePath(out.port)) + ")";
    }
    for (size_t i = 1; i < args.size(); i += 2) {
        if (args[i] != "--send" && args[i] != "--timeout")
            return Fail("unknown option '" + args[i] + "'\n" + kUsage);
        if (i + 1 >= args.size()) return Fail("'" + args[i] + "' needs a value\n" + kUsage);
        if (args[i] == "--send") {
            out.send = true;
            out.line = args[i + 1] + kLineEnd;
        } else if (!ParseTimeout(args[i + 1], out.timeout)) {
            return Fail("--timeout wants seconds from 0 to 3600, not '" + args[i + 1] + "'");
        }
    }
    if (out.line.size() > static_cast<size_t>(SHRT_MAX)) return Fail("the line is too long");
    return 0;
}

std::string OpenFailure(const SerialArgs &a, int error) {
    switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return "no such port: " + a.name;
    case EBUSY:
        return a.name + " is busy: another program holds it";
    case ENOTTY:
    case EISDIR:
        return a.name + " is not a serial port";
    default:
        return "cannot open " + a.name + ": " + std::strerror(error);
    }
}

// Ctrl-C asks to break off; the link polls the question between transfers.
volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void OnInterrupt(int) {
    g_interrupted = 1;
}

class CInterruptPrompt : public vx::IUserPrompt {
public:
    int AskRetryCancel(const vx::CVXString &) override { return IDCANCEL; }
    void ShowMessage(const vx::CVXString &text, int) override {
        std::fprintf(stderr, "vx: %s\n", static_cast<const char *>(text));
    }
    bool BreakRequested() override {
        if (!g_interrupted) return false;
        g_interrupted = 0;
        m_bBroken = true;
        return true;
    }
    bool m_bBroken = false;
};

// A failure during the session: the user's break-off, or the link's own; exit code 1.
int Trouble(vx::CCommunicatie &link, const CInterruptPrompt &prompt, const std::string &what) {
    std::fflush(stdout);
    if (prompt.m_bBroken) {
        std::fprintf(stderr, "vx: broken off\n");
    } else {
        const vx::CVXString detail = link.szGetError();
        std::fprintf(stderr, "vx: %s%s%s\n", what.c_str(), detail.IsEmpty() ? "" : ": ",
                     static_cast<const char *>(detail));
    }
    return 1;
}

// Prints what arrives until the time-out has passed; returns the exit code.
int Listen(vx::CCommunicatie &link, const SerialArgs &a, const CInterruptPrompt &prompt) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                                          std::chrono::duration<double>(a.timeout));
    // ReadOneChar with 0 s gives up after half a second of silence; the loop keeps the total.
    constexpr int nSilenceSeconds = 0;
    size_t count = 0;
    char last = '\n';
    do {
        char c = 0;
        const vx::ComRes r = link.ReadOneChar(&c, nSilenceSeconds, true);
        if (r == vx::ComFout) return Trouble(link, prompt, "reading " + a.name + " failed");
        if (r == vx::ComByte) {
            std::fputc(c, stdout);
            last = c;
            ++count;
        }
    } while (Clock::now() < deadline);
    if (count > 0 && last != '\n') std::fputc('\n', stdout);
    std::fflush(stdout);
    if (count == 0)
        std::fprintf(stderr, "vx: no answer from %s within %g s\n", a.name.c_str(), a.timeout);
    return 0;
}

int Session(vx::CCommunicatie &link, const SerialArgs &a, const CInterruptPrompt &prompt) {
    if (!link.OpenComm(a.port)) return Fail(OpenFailure(a, errno));
    if (a.send) {
        // A transfer may take up to twice the count from the buffer: give it the room.
        std::string room = a.line;
        room.resize(2 * a.line.size());
        if (!link.WriteComm(room.data(), static_cast<short>(a.line.size()), true))
            return Trouble(link, prompt, "writing to " + a.name + " failed");
    }
    return Listen(link, a, prompt);
}

int RunSerial(const Args &args) {
    SerialArgs a;
    if (const int rc = ParseArgs(args, a); rc != 0) return rc;
    CInterruptPrompt prompt;
    vx::SetUserPrompt(&prompt);
    std::signal(SIGINT, OnInterrupt);
    vx::CCommunicatie link;
    const int rc = Session(link, a, prompt);
    vx::SetUserPrompt(nullptr);
    return rc;
}

const VxCommand g_serial(
    "serial", kHelp, &RunSerial,
    "Opens a serial port exclusively in raw 8-bit mode, sends one line followed by CR LF, and\n"
    "prints the bytes that come back until the time-out has passed. PORT is COM1 to COM24 (the\n"
    "devices /dev/ttyS0 to /dev/ttyS23) or a device path such as /dev/ttyUSB0. Ctrl-C breaks\n"
    "off. Exits 2 on bad input and when the port is missing, busy or not a terminal; 1 when the\n"
    "link fails or is broken off.\n"
    "\n"
    "  --send LINE    the line to send (without it, only listens)\n"
    "  --timeout S    how long to listen, 0 to 3600 seconds (default 2)");

} // namespace

} // namespace vxtool
