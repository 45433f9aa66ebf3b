#include "device/Communicatie.h"

#include "foundation/VXODateTime.h"
#include "platform/Errors.h"
#include "platform/Resources.h"
#include "platform/UserPrompt.h"

#include <cerrno>
#include <chrono>
#include <iterator>
#include <mutex>
#include <string>
#include <type_traits>

#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace vx {

namespace {

// ---- texts of the error mask ---------------------------------------------------------------

enum : unsigned int {
    IDS_CE_CTSTO = 2072,
    IDS_CE_DSRTO = 2073,
    IDS_CE_RLSDTO = 2074,
    IDS_CE_RXOVER = 2075,
    IDS_CE_OVERRUN = 2076,
    IDS_CE_RXPARITY = 2077,
    IDS_CE_FRAME = 2078,
    IDS_CE_BREAK = 2079,
    IDS_CE_TXFULL = 2080,
    IDS_CE_MODE = 2081,
};

// The texts have no Chinese form of their own: the look-up falls back to English (null entry).
constexpr SResourceText s_CommTexts[] = {
    {IDS_CE_CTSTO, u"CTS Timeout", u"CTS Time-out", nullptr},
    {IDS_CE_DSRTO, u"DSR Timeout", u"DSR Time-out", nullptr},
    {IDS_CE_RLSDTO, u"RLSD Timeout", u"RLSD Time-out", nullptr},
    {IDS_CE_RXOVER, u"Receive queue overflow", u"Receive queue overflow", nullptr},
    {IDS_CE_OVERRUN, u"Character overrun", u"Character overrun", nullptr},
    {IDS_CE_RXPARITY, u"Parity error", u"Parity error", nullptr},
    {IDS_CE_FRAME, u"Framing error", u"Framing error", nullptr},
    {IDS_CE_BREAK, u"Break condition", u"Afbreek voorwaarde", nullptr},
    {IDS_CE_TXFULL, u"Sendqueue full", u"Zendqueue vol", nullptr},
    {IDS_CE_MODE, u"Mode not supported", u"Mode niet ondersteund", nullptr},
};

// The order in which the texts of a mask are appended.
struct SFoutBit {
    uint32_t nBit;
    unsigned int nId;
};
constexpr SFoutBit s_FoutVolgorde[] = {
    {CE_CTSTO, IDS_CE_CTSTO},   {CE_DSRTO, IDS_CE_DSRTO},     {CE_RLSDTO, IDS_CE_RLSDTO},
    {CE_RXOVER, IDS_CE_RXOVER}, {CE_OVERRUN, IDS_CE_OVERRUN}, {CE_RXPARITY, IDS_CE_RXPARITY},
    {CE_FRAME, IDS_CE_FRAME},   {CE_BREAK, IDS_CE_BREAK},     {CE_TXFULL, IDS_CE_TXFULL},
    {CE_MODE, IDS_CE_MODE},
};

void EnsureCommResources() {
    static std::once_flag once;
    std::call_once(once, [] {
        RegisterResourceTable(s_CommTexts, static_cast<unsigned int>(std::size(s_CommTexts)));
    });
}

// ---- the port table --------------------------------------------------------------------------

std::mutex g_pathMutex;
CVXString g_paths[CCommunicatie::nComPorts];

void CheckPort(int nPort) {
    if (nPort < 0 || nPort >= CCommunicatie::nComPorts)
        throw CInvalidArgException("serial port number " + std::to_string(nPort) +
                                   " outside 0 to 23");
}

CVXString DefaultDevicePath(int nPort) {
    return CVXString(("/dev/ttyS" + std::to_string(nPort)).c_str());
}

// ---- opening -----------------------------------------------------------------------------------

// Closes fd and returns false with errno at `reason`.
bool FailOpen(int fd, int reason) {
    ::close(fd);
    errno = reason;
    return false;
}

// Raw 8-bit transfer: no echo, no line editing, no translation of line ends; the receiver on,
// modem lines ignored. The speed and the framing stay as the port had them. Reads never block
// in the driver (the descriptor is non-blocking, one byte satisfies a read); the time-outs are
// kept by poll.
bool SetRawMode(int fd) {
    termios t{};
    if (::tcgetattr(fd, &t) != 0) return false;
    ::cfmakeraw(&t);
    t.c_cflag |= CLOCAL | CREAD;
    t.c_cc[VMIN] = 1;
    t.c_cc[VTIME] = 0;
    return ::tcsetattr(fd, TCSANOW, &t) == 0;
}

// ---- transfers ---------------------------------------------------------------------------------

using Clock = std::chrono::steady_clock;

int MsLeft(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

// One transfer: moves up to n bytes (reads into a `char *`, writes from a `const char *`) within
// the total time-out of n · 100 ms. True with what moved when the time is up; false when the
// system fails or the other end has hung up (a read that sees the end of the file).
template <class Byte>
bool TransferWithin(int fd, Byte *at, uint32_t n, uint32_t &moved) {
    constexpr bool bWrite = std::is_const_v<Byte>;
    const Clock::time_point deadline =
        Clock::now() + std::chrono::milliseconds(int64_t{CCommunicatie::nTimeOutMsPerByte} * n);
    moved = 0;
    while (moved < n) {
        ssize_t k;
        if constexpr (bWrite)
            k = ::write(fd, at + moved, n - moved);
        else
            k = ::read(fd, at + moved, n - moved);
        if (k > 0) {
            moved += static_cast<uint32_t>(k);
            continue;
        }
        if (k == 0 && !bWrite) return false;
        if (k < 0 && errno == EINTR) continue;
        if (k < 0 && errno != EAGAIN && errno != EWOULDBLOCK) return false;
        const int ms = MsLeft(deadline);
        if (ms == 0) break;
        pollfd p{fd, static_cast<short>(bWrite ? POLLOUT : POLLIN), 0};
        if (::poll(&p, 1, ms) < 0 && errno != EINTR) return false;
    }
    return true;
}

// The loop of ReadComm and WriteComm. Each transfer asks for all n bytes at the offset reached,
// not for what is missing: kept on purpose, since the bytes taken from the port in one transfer
// are part of the link's behaviour, and callers give room for 2·n. The original went on until
// exactly n had moved and ran on past that room after an over-long transfer; here reaching or
// passing n ends the loop.
template <class Byte, class Transfer, class Break>
bool TransferAll(Byte *buf, short n, Transfer transfer, Break breakOff) {
    if (n == 0) return true;
    if (n < 0) {
        errno = EINVAL;
        return false;
    }
    const auto want = static_cast<uint32_t>(n);
    uint32_t done = 0;
    for (;;) {
        uint32_t moved = 0;
        if (!transfer(buf + done, want, moved)) return false;
        done += moved;
        if (breakOff()) return false;
        if (done >= want) return true;
    }
}

} // namespace

// ---- names and paths ---------------------------------------------------------------------------

CVXString CCommunicatie::ComNaam(int nPort) {
    CheckPort(nPort);
    return CVXString(("COM" + std::to_string(nPort + 1)).c_str());
}

void CCommunicatie::SetDevicePath(int nPort, const CVXString &path) {
    CheckPort(nPort);
    const std::lock_guard<std::mutex> lock(g_pathMutex);
    g_paths[nPort] = path;
}

CVXString CCommunicatie::szGetDevicePath(int nPort) {
    CheckPort(nPort);
    const std::lock_guard<std::mutex> lock(g_pathMutex);
    return g_paths[nPort].IsEmpty() ? DefaultDevicePath(nPort) : g_paths[nPort];
}

// ---- open and close ----------------------------------------------------------------------------

CCommunicatie::~CCommunicatie() {
    // The resource goes with the object, whatever the gate says.
    if (m_bOpen) {
        ::flock(m_hComm, LOCK_UN);
        ::close(m_hComm);
    }
}

bool CCommunicatie::OpenComm(int nPort) {
    if (!m_bActief) return false;
    if (nPort < 0 || nPort >= nComPorts) {
        errno = ENOENT;
        return false;
    }
    // Chosen: one object holds one port. The original overwrote its handle and leaked the open
    // port; here a second open fails and the first stays open.
    if (m_bOpen) {
        errno = EBUSY;
        return false;
    }
    m_hComm = INVALID_HANDLE_VALUE;
    const CVXString path = szGetDevicePath(nPort);
    // Non-blocking, so that neither a modem line nor a FIFO can hold the open.
    const int fd =
        ::open(static_cast<const char *>(path), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return false;
    termios t{};
    if (::tcgetattr(fd, &t) != 0) return FailOpen(fd, ENOTTY);
    // Exclusive: an advisory lock keeps out every other link of this library (root included),
    // and the terminal's own exclusive mode keeps out other programs that open it afterwards.
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) return FailOpen(fd, EBUSY);
    ::ioctl(fd, TIOCEXCL);
    // The time-outs, as the original set them right after the open: a failure closes again.
    if (!SetRawMode(fd)) return FailOpen(fd, errno);
    m_hComm = fd;
    m_bOpen = true;
    m_Tellers = SFoutTellers();
    m_bModeFout = false;
    uint32_t ignored = 0;
    ClearCommError(ignored); // errors from before the open are not ours
    return true;
}

bool CCommunicatie::CloseComm() {
    if (!m_bActief || m_hComm == INVALID_HANDLE_VALUE) return false;
    // The handle keeps its value (as it always did), so a second close fails like the
    // original's second CloseHandle; the closed number itself is never passed on again.
    if (!bPortOpen()) return false;
    m_bOpen = false;
    ::ioctl(m_hComm, TIOCNXCL);
    ::flock(m_hComm, LOCK_UN);
    return ::close(m_hComm) == 0;
}

// ---- transfers ---------------------------------------------------------------------------------

bool CCommunicatie::bPortOpen() const {
    if (!m_bOpen) errno = EBADF;
    return m_bOpen;
}

bool CCommunicatie::ReadFile(void *at, uint32_t n, uint32_t &got) {
    got = 0;
    return bPortOpen() && TransferWithin(m_hComm, static_cast<char *>(at), n, got);
}

bool CCommunicatie::WriteFile(const void *at, uint32_t n, uint32_t &put) {
    put = 0;
    return bPortOpen() && TransferWithin(m_hComm, static_cast<const char *>(at), n, put);
}

// The user's click that breaks off: asked of the host's prompt, which answers each request once.
bool CCommunicatie::BreakOff(bool bBreak) const {
    return bBreak && GetUserPrompt().BreakRequested();
}

bool CCommunicatie::ReadComm(void *buf, short n, bool bBreak) {
    if (!m_bActief) return false;
    return TransferAll(
        static_cast<char *>(buf), n,
        [this](char *at, uint32_t want, uint32_t &got) { return ReadFile(at, want, got); },
        [this, bBreak] { return BreakOff(bBreak); });
}

bool CCommunicatie::WriteComm(void const *buf, short n, bool bBreak) {
    if (!m_bActief) return false;
    return TransferAll(
        static_cast<const char *>(buf), n,
        [this](const char *at, uint32_t want, uint32_t &put) { return WriteFile(at, want, put); },
        [this, bBreak] { return BreakOff(bBreak); });
}

ComRes CCommunicatie::ReadOneChar(void *buf, int nSeconds, bool bBreak) {
    if (!m_bActief) return ComFout;
    const double dStart = CVXODateTime::GetOleDT();
    for (;;) {
        // Kept on purpose: only the seconds field of the elapsed span (rounded to whole seconds)
        // counts, so a time-out of 59 or more never fires and 61 s count as 1; hosts wait with
        // the values they were tuned with.
        const int nElapsed = COleDateTimeSpan(CVXODateTime::GetOleDT() - dStart).GetSeconds();
        if (nElapsed > nSeconds) return ComTimeOut;
        uint32_t got = 0;
        if (!ReadFile(buf, 1, got)) return ComFout;
        if (BreakOff(bBreak)) return ComFout;
        if (got == 1) return ComByte;
    }
}

// ---- errors ------------------------------------------------------------------------------------

bool CCommunicatie::ClearCommError(uint32_t &mask) {
    mask = 0;
    if (!bPortOpen()) return false;
    if (m_bModeFout) mask |= CE_MODE;
    m_bModeFout = false;
    // The driver's counters, where it keeps them (a pseudo-terminal keeps none: no errors).
    serial_icounter_struct c{};
    if (::ioctl(m_hComm, TIOCGICOUNT, &c) != 0) return true;
    const SFoutTellers now{c.frame, c.overrun, c.parity, c.brk, c.buf_overrun};
    if (now.nBufOverrun != m_Tellers.nBufOverrun) mask |= CE_RXOVER;
    if (now.nOverrun != m_Tellers.nOverrun) mask |= CE_OVERRUN;
    if (now.nParity != m_Tellers.nParity) mask |= CE_RXPARITY;
    if (now.nFrame != m_Tellers.nFrame) mask |= CE_FRAME;
    if (now.nBreak != m_Tellers.nBreak) mask |= CE_BREAK;
    m_Tellers = now;
    return true;
}

void CCommunicatie::SetErrorString() {
    EnsureCommResources();
    m_szError.Empty();
    for (const SFoutBit &f : s_FoutVolgorde) {
        if ((m_nCommError & f.nBit) == 0) continue;
        CVXString text;
        LoadResourceString(f.nId, text);
        m_szError += text;
    }
    m_nCommError = 0;
}

CVXString CCommunicatie::szGetError() {
    uint32_t mask = 0;
    if (!ClearCommError(mask)) {
        LoadResourceString(IDS_UNKNOWN, m_szError);
        return m_szError;
    }
    m_nCommError = mask;
    SetErrorString();
    return m_szError;
}

} // namespace vx
