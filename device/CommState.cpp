// The line settings and the driver pass-throughs of CCommunicatie, mapped onto termios.
//
// DCB to termios:
//   BaudRate                  the speed in both directions; only the rates termios names
//                             (110 ... 4000000) are taken, others (14400, 56000, 128000, 256000)
//                             make SetCommState fail
//   ByteSize 5..8             CSIZE
//   Parity                    PARENB, PARODD, and CMSPAR for mark and space
//   fParity                   INPCK (check the parity of received bytes)
//   StopBits                  CSTOPB for two; one and a half stop bits are refused
//   fOutxCtsFlow, fRtsControl CRTSCTS when either asks for the handshake
//   fOutX, fInX               IXON, IXOFF, with XonChar and XoffChar as VSTART and VSTOP
//   fDtrControl               the DTR line raised or dropped where the driver has modem lines
// The other fields (DSR flow and sensitivity, error and end characters, queue limits) have no
// termios counterpart: they are accepted and read back as 0.
#include "device/Communicatie.h"

#include <cerrno>
#include <iterator>

#include <sys/ioctl.h>
#include <termios.h>

namespace vx {

namespace {

struct SBaud {
    uint32_t nRate;
    speed_t nSpeed;
};
constexpr SBaud s_Bauds[] = {
    {50, B50},           {75, B75},           {110, B110},         {134, B134},
    {150, B150},         {200, B200},         {300, B300},         {600, B600},
    {1200, B1200},       {1800, B1800},       {2400, B2400},       {4800, B4800},
    {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},
    {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
    {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000},
    {1500000, B1500000}, {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000},
    {3500000, B3500000}, {4000000, B4000000},
};

bool SpeedOfRate(uint32_t rate, speed_t &speed) {
    for (const SBaud &b : s_Bauds) {
        if (b.nRate != rate) continue;
        speed = b.nSpeed;
        return true;
    }
    return false;
}

uint32_t RateOfSpeed(speed_t speed) {
    for (const SBaud &b : s_Bauds)
        if (b.nSpeed == speed) return b.nRate;
    return 0;
}

constexpr uint8_t nMinByteSize = 5;
constexpr uint8_t nMaxByteSize = 8;
constexpr tcflag_t s_CharSizes[] = {CS5, CS6, CS7, CS8}; // by ByteSize − 5

bool DcbToTermios(const DCB &dcb, termios &t) {
    speed_t speed = B0;
    if (!SpeedOfRate(dcb.BaudRate, speed) || dcb.ByteSize < nMinByteSize ||
        dcb.ByteSize > nMaxByteSize || dcb.Parity > SPACEPARITY ||
        (dcb.StopBits != ONESTOPBIT && dcb.StopBits != TWOSTOPBITS))
        return false;
    ::cfsetispeed(&t, speed);
    ::cfsetospeed(&t, speed);
    t.c_cflag &= ~(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS);
    t.c_cflag |= s_CharSizes[dcb.ByteSize - nMinByteSize];
    if (dcb.Parity != NOPARITY) t.c_cflag |= PARENB;
    if (dcb.Parity == ODDPARITY || dcb.Parity == MARKPARITY) t.c_cflag |= PARODD;
    if (dcb.Parity == MARKPARITY || dcb.Parity == SPACEPARITY) t.c_cflag |= CMSPAR;
    if (dcb.StopBits == TWOSTOPBITS) t.c_cflag |= CSTOPB;
    if (dcb.fOutxCtsFlow || dcb.fRtsControl == RTS_CONTROL_HANDSHAKE) t.c_cflag |= CRTSCTS;
    t.c_iflag &= ~(INPCK | IXON | IXOFF);
    if (dcb.fParity) t.c_iflag |= INPCK;
    if (dcb.fOutX) t.c_iflag |= IXON;
    if (dcb.fInX) t.c_iflag |= IXOFF;
    t.c_cc[VSTART] = static_cast<cc_t>(dcb.XonChar);
    t.c_cc[VSTOP] = static_cast<cc_t>(dcb.XoffChar);
    return true;
}

// The parts of the settings that DcbToTermios sets.
bool bSameLine(const termios &a, const termios &b) {
    constexpr tcflag_t cflags = CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS;
    constexpr tcflag_t iflags = INPCK | IXON | IXOFF;
    return ::cfgetospeed(&a) == ::cfgetospeed(&b) && ::cfgetispeed(&a) == ::cfgetispeed(&b) &&
           (a.c_cflag & cflags) == (b.c_cflag & cflags) &&
           (a.c_iflag & iflags) == (b.c_iflag & iflags) && a.c_cc[VSTART] == b.c_cc[VSTART] &&
           a.c_cc[VSTOP] == b.c_cc[VSTOP];
}

uint8_t ParityOf(const termios &t) {
    if ((t.c_cflag & PARENB) == 0) return NOPARITY;
    const bool odd = (t.c_cflag & PARODD) != 0;
    if (t.c_cflag & CMSPAR) return odd ? MARKPARITY : SPACEPARITY;
    return odd ? ODDPARITY : EVENPARITY;
}

void TermiosToDcb(const termios &t, DCB &dcb) {
    dcb = DCB();
    dcb.BaudRate = RateOfSpeed(::cfgetospeed(&t));
    for (uint8_t i = 0; i < std::size(s_CharSizes); ++i)
        if ((t.c_cflag & CSIZE) == s_CharSizes[i]) dcb.ByteSize = nMinByteSize + i;
    dcb.Parity = ParityOf(t);
    dcb.fParity = (t.c_iflag & INPCK) != 0;
    dcb.StopBits = (t.c_cflag & CSTOPB) ? TWOSTOPBITS : ONESTOPBIT;
    const bool rtscts = (t.c_cflag & CRTSCTS) != 0;
    dcb.fOutxCtsFlow = rtscts;
    dcb.fRtsControl = rtscts ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE;
    dcb.fOutX = (t.c_iflag & IXON) != 0;
    dcb.fInX = (t.c_iflag & IXOFF) != 0;
    dcb.XonChar = static_cast<char>(t.c_cc[VSTART]);
    dcb.XoffChar = static_cast<char>(t.c_cc[VSTOP]);
}

// Ports without modem lines (a pseudo-terminal) refuse this; the settings still hold.
void SetDtr(int fd, uint32_t control) {
    int dtr = TIOCM_DTR;
    ::ioctl(fd, control == DTR_CONTROL_DISABLE ? TIOCMBIC : TIOCMBIS, &dtr);
}

} // namespace

bool CCommunicatie::SetCommState(DCB *dcb) {
    termios before{};
    if (!m_bActief || !bPortOpen() || dcb == nullptr || ::tcgetattr(m_hComm, &before) != 0)
        return false;
    termios t = before;
    if (!DcbToTermios(*dcb, t)) {
        errno = EINVAL;
        return false;
    }
    if (::tcsetattr(m_hComm, TCSANOW, &t) != 0) return false;
    // The driver takes what it can and says nothing of the rest (a pseudo-terminal keeps 8 bits
    // without parity whatever is asked): settings it did not take are refused as a whole, the
    // old ones come back, and the error mask reports the mode as not supported.
    termios taken{};
    if (::tcgetattr(m_hComm, &taken) != 0 || !bSameLine(t, taken)) {
        ::tcsetattr(m_hComm, TCSANOW, &before);
        m_bModeFout = true;
        errno = EINVAL;
        return false;
    }
    SetDtr(m_hComm, dcb->fDtrControl);
    return true;
}

bool CCommunicatie::GetCommState(DCB *dcb) {
    termios t{};
    if (!m_bActief || !bPortOpen() || dcb == nullptr || ::tcgetattr(m_hComm, &t) != 0) return false;
    TermiosToDcb(t, *dcb);
    int lines = 0;
    if (::ioctl(m_hComm, TIOCMGET, &lines) == 0)
        dcb->fDtrControl = (lines & TIOCM_DTR) ? DTR_CONTROL_ENABLE : DTR_CONTROL_DISABLE;
    return true;
}

bool CCommunicatie::GetCommProperties(COMMPROP *prop) {
    termios t{};
    if (!bPortOpen() || prop == nullptr || ::tcgetattr(m_hComm, &t) != 0) return false;
    constexpr uint16_t nPacketVersion = 2;
    *prop = COMMPROP();
    prop->wPacketLength = sizeof(COMMPROP);
    prop->wPacketVersion = nPacketVersion;
    prop->dwServiceMask = SP_SERIALCOMM;
    prop->dwMaxBaud = BAUD_USER;
    prop->dwProvSubType = PST_RS232;
    prop->dwProvCapabilities =
        PCF_RTSCTS | PCF_PARITY_CHECK | PCF_XONXOFF | PCF_SETXCHAR | PCF_TOTALTIMEOUTS;
    prop->dwSettableParams =
        SP_PARITY | SP_BAUD | SP_DATABITS | SP_STOPBITS | SP_HANDSHAKING | SP_PARITY_CHECK;
    prop->dwSettableBaud = BAUD_USER;
    prop->wSettableData = DATABITS_5 | DATABITS_6 | DATABITS_7 | DATABITS_8;
    prop->wSettableStopParity = STOPBITS_10 | STOPBITS_20 | PARITY_NONE | PARITY_ODD | PARITY_EVEN |
                                PARITY_MARK | PARITY_SPACE;
    return true;
}

bool CCommunicatie::PurgeComm(uint32_t flags) {
    if (!bPortOpen()) return false;
    // Transfers run on the caller's thread, so there is never one pending to abort: the abort
    // flags have nothing to do.
    const bool rx = (flags & PURGE_RXCLEAR) != 0;
    const bool tx = (flags & PURGE_TXCLEAR) != 0;
    if (!rx && !tx) return true;
    return ::tcflush(m_hComm, rx && tx ? TCIOFLUSH : (rx ? TCIFLUSH : TCOFLUSH)) == 0;
}

bool CCommunicatie::SetCommBreak() {
    return bPortOpen() && ::ioctl(m_hComm, TIOCSBRK) == 0;
}

bool CCommunicatie::ClearCommBreak() {
    return bPortOpen() && ::ioctl(m_hComm, TIOCCBRK) == 0;
}

} // namespace vx
