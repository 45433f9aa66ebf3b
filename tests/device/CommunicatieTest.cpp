#include "PtyPair.h"

#include "device/Communicatie.h"
#include "platform/Errors.h"
#include "platform/Resources.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include <sys/stat.h>
#include <termios.h>

using namespace vx;
using namespace std::chrono_literals;
using vxtest::ClickPrompt;
using vxtest::PtyPair;
using vxtest::ScopedPrompt;
using vxtest::SecondsSince;

namespace {

constexpr int kPort = 2; // "COM3", pointed at the pseudo-terminal
constexpr auto kInstrumentWait = 3s;

std::string Text(const CVXString &s) {
    return static_cast<const char *>(s);
}

// A link opened on the terminal end of a fresh pair.
class SerialLink : public ::testing::Test {
protected:
    void SetUp() override {
        CCommunicatie::SetDevicePath(kPort, m_pty.path().c_str());
        ASSERT_TRUE(m_link.OpenComm(kPort)) << m_pty.path() << " errno " << errno;
    }
    void TearDown() override { CCommunicatie::SetDevicePath(kPort, CVXString()); }

    PtyPair m_pty;
    CCommunicatie m_link;
};

// Exposes the error-text step, which a real port only reaches with driver error counters.
class ErrorTexts : public CCommunicatie {
public:
    std::string Texts(uint32_t mask) {
        m_nCommError = mask;
        SetErrorString();
        return Text(m_szError);
    }
    uint32_t Mask() const { return m_nCommError; }
};

} // namespace

TEST(Communicatie, PortNamesAndDevicePaths) {
    EXPECT_EQ(Text(CCommunicatie::ComNaam(0)), "COM1");
    EXPECT_EQ(Text(CCommunicatie::ComNaam(9)), "COM10");
    EXPECT_EQ(Text(CCommunicatie::ComNaam(23)), "COM24");
    EXPECT_THROW(CCommunicatie::ComNaam(24), CInvalidArgException);
    EXPECT_THROW(CCommunicatie::ComNaam(-1), CInvalidArgException);
    EXPECT_EQ(Text(CCommunicatie::szGetDevicePath(0)), "/dev/ttyS0");
    EXPECT_EQ(Text(CCommunicatie::szGetDevicePath(23)), "/dev/ttyS23");

    // OpenComm(23) opens what "COM24" names.
    PtyPair pty;
    CCommunicatie::SetDevicePath(23, pty.path().c_str());
    CCommunicatie link;
    EXPECT_TRUE(link.OpenComm(23));
    EXPECT_TRUE(link.WriteComm("!", 1, false));
    EXPECT_EQ(pty.Receive(1, kInstrumentWait), "!");
    CCommunicatie::SetDevicePath(23, CVXString());
    EXPECT_EQ(Text(CCommunicatie::szGetDevicePath(23)), "/dev/ttyS23");
    EXPECT_FALSE(link.OpenComm(24));
}

TEST_F(SerialLink, RoundTripWithASimulatedInstrument) {
    // The instrument answers each command line with "OK " and the command, ending in CR LF; the
    // answer comes a byte at a time, 20 ms apart, so it arrives in pieces.
    std::thread instrument([this] {
        const std::string command = m_pty.ReceiveUntil('\r', kInstrumentWait);
        const std::string answer = "OK " + command + "\n";
        for (char c : answer) {
            m_pty.Send(std::string(1, c));
            std::this_thread::sleep_for(20ms);
        }
    });
    EXPECT_TRUE(m_link.WriteComm("GET\r", 4, false));
    char buf[2 * 8] = {};
    EXPECT_TRUE(m_link.ReadComm(buf, 8, false));
    instrument.join();
    EXPECT_EQ(std::string(buf), "OK GET\r\n");
    EXPECT_EQ(Text(m_link.szGetError()), ""); // a pseudo-terminal reports no line errors
}

TEST_F(SerialLink, EachTransferAsksForTheWholeCount) {
    // Three bytes wait; the rest comes only after the first transfer's 400 ms have passed.
    m_pty.Send("abc");
    std::thread instrument([this] {
        std::this_thread::sleep_for(700ms);
        m_pty.Send("DEFGH");
    });
    const auto start = std::chrono::steady_clock::now();
    char buf[2 * 4] = {};
    EXPECT_TRUE(m_link.ReadComm(buf, 4, false));
    instrument.join();
    EXPECT_GE(SecondsSince(start), 0.4);
    // The second transfer asked for 4 bytes more, not for the one missing: 7 bytes landed in
    // the caller's room for 2·n, and one byte stays in the port.
    EXPECT_EQ(std::string(buf, 7), "abcDEFG");
    char c = 0;
    EXPECT_EQ(m_link.ReadOneChar(&c, 1, false), ComByte);
    EXPECT_EQ(c, 'H');
}

TEST_F(SerialLink, ReadOneCharTimesOutOnRoundedSeconds) {
    char c = 0;
    // The elapsed span is rounded to whole seconds: 0 s pass at 0.5 s, 1 s at 1.5 s.
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(m_link.ReadOneChar(&c, 0, false), ComTimeOut);
    EXPECT_GE(SecondsSince(start), 0.45);
    EXPECT_LT(SecondsSince(start), 1.4);
    start = std::chrono::steady_clock::now();
    EXPECT_EQ(m_link.ReadOneChar(&c, 1, false), ComTimeOut);
    EXPECT_GE(SecondsSince(start), 1.45);
    EXPECT_LT(SecondsSince(start), 2.4);

    m_pty.Send("Z");
    EXPECT_EQ(m_link.ReadOneChar(&c, 0, false), ComByte);
    EXPECT_EQ(c, 'Z');
}

TEST_F(SerialLink, AClosedPeerFailsInsteadOfWaiting) {
    m_pty.Hangup();
    const auto start = std::chrono::steady_clock::now();
    char buf[8] = {};
    EXPECT_FALSE(m_link.ReadComm(buf, 4, false));
    EXPECT_EQ(m_link.ReadOneChar(buf, 5, false), ComFout);
    EXPECT_FALSE(m_link.WriteComm("ping", 4, false));
    EXPECT_LT(SecondsSince(start), 1.0);
}

TEST_F(SerialLink, TheUserBreaksOffThroughThePrompt) {
    ClickPrompt prompt;
    ScopedPrompt installed(&prompt);
    char buf[2 * 2] = {};

    // Nothing arrives: every 200 ms transfer ends empty, and the second question is answered
    // with a click.
    prompt.ClickOnAsk(2);
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(m_link.ReadComm(buf, 2, true));
    EXPECT_EQ(prompt.Asked(), 2);
    EXPECT_GE(SecondsSince(start), 0.35);

    // The click is looked at after the transfer: complete data still ends in a break-off.
    ClickPrompt late;
    ScopedPrompt installedLate(&late);
    m_pty.Send("xy");
    late.Click();
    EXPECT_FALSE(m_link.ReadComm(buf, 2, true));
    EXPECT_EQ(std::string(buf, 2), "xy");

    // A click during ReadOneChar gives ComFout and is taken off the queue.
    late.Click();
    EXPECT_EQ(m_link.ReadOneChar(buf, 5, true), ComFout);
    EXPECT_FALSE(late.ClickPending());

    // Without bBreak the prompt is never asked.
    const int asked = late.Asked();
    late.Click();
    m_pty.Send("q");
    EXPECT_EQ(m_link.ReadOneChar(buf, 5, false), ComByte);
    EXPECT_TRUE(m_link.WriteComm("w", 1, false));
    EXPECT_EQ(late.Asked(), asked);
}

TEST(Communicatie, OpenFailsClearlyOnMissingBusyAndNonTerminalPorts) {
    vxtest::TempDir dir;
    CCommunicatie link;
    const auto tryOpen = [&](const std::string &path) {
        CCommunicatie::SetDevicePath(kPort, path.c_str());
        errno = 0;
        const bool ok = link.OpenComm(kPort);
        return ok ? 0 : errno;
    };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(tryOpen(dir.file("no-such-tty")), ENOENT);
    EXPECT_EQ(Text(link.szGetError()), "Unknown");
    vxtest::WriteBytes(dir.file("plain"), {1, 2, 3});
    EXPECT_EQ(tryOpen(dir.file("plain")), ENOTTY);
    ASSERT_EQ(::mkfifo(dir.file("fifo").c_str(), 0600), 0);
    EXPECT_EQ(tryOpen(dir.file("fifo")), ENOTTY); // and no wait for a writer
    EXPECT_EQ(tryOpen(dir.path()), EISDIR);
    EXPECT_LT(SecondsSince(start), 1.0);

    PtyPair pty;
    CCommunicatie holder;
    CCommunicatie::SetDevicePath(kPort, pty.path().c_str());
    ASSERT_TRUE(holder.OpenComm(kPort));
    EXPECT_EQ(tryOpen(pty.path()), EBUSY);
    EXPECT_FALSE(holder.OpenComm(kPort)); // one object holds one port
    EXPECT_TRUE(holder.CloseComm());
    EXPECT_EQ(tryOpen(pty.path()), 0);
    CCommunicatie::SetDevicePath(kPort, CVXString());
}

TEST(Communicatie, CloseAndTheGate) {
    CCommunicatie link;
    char buf[2] = {};
    EXPECT_FALSE(link.CloseComm()); // never opened
    EXPECT_TRUE(link.ReadComm(buf, 0, false));
    EXPECT_FALSE(link.ReadComm(buf, 1, false));
    EXPECT_EQ(link.ReadOneChar(buf, 0, false), ComFout);

    PtyPair pty;
    CCommunicatie::SetDevicePath(kPort, pty.path().c_str());
    ASSERT_TRUE(link.OpenComm(kPort));
    EXPECT_TRUE(link.CloseComm());
    EXPECT_FALSE(link.CloseComm()); // the second close fails
    EXPECT_FALSE(link.WriteComm("x", 1, false));

    ASSERT_TRUE(link.OpenComm(kPort));
    link.m_bActief = false;
    EXPECT_FALSE(link.ReadComm(buf, 0, false));
    EXPECT_FALSE(link.WriteComm("x", 1, false));
    EXPECT_EQ(link.ReadOneChar(buf, 0, false), ComFout);
    EXPECT_FALSE(link.CloseComm());
    DCB dcb;
    EXPECT_FALSE(link.GetCommState(&dcb));
    EXPECT_TRUE(link.PurgeComm(PURGE_RXCLEAR)); // not gated
    EXPECT_EQ(Text(link.szGetError()), "");
    link.m_bActief = true;
    EXPECT_TRUE(link.CloseComm());
    CCommunicatie::SetDevicePath(kPort, CVXString());
}

TEST(Communicatie, ErrorTextsInTableOrderWithoutSeparator) {
    ErrorTexts e;
    const uint32_t mask = CE_MODE | CE_BREAK | CE_RXOVER | CE_CTSTO;
    EXPECT_EQ(e.Texts(mask), "CTS TimeoutReceive queue overflowBreak conditionMode not supported");
    EXPECT_EQ(e.Mask(), 0u);
    EXPECT_EQ(e.Texts(CE_TXFULL | CE_FRAME | CE_RXPARITY | CE_OVERRUN | CE_RLSDTO | CE_DSRTO),
              "DSR TimeoutRLSD TimeoutCharacter overrunParity errorFraming errorSendqueue full");
    EXPECT_EQ(e.Texts(0), "");

    SetResourceLanguage(LANG_DUTCH);
    EXPECT_EQ(e.Texts(mask), "CTS Time-outReceive queue overflowAfbreek voorwaarde"
                             "Mode niet ondersteund");
    EXPECT_EQ(e.Texts(CE_TXFULL | CE_RLSDTO), "RLSD Time-outZendqueue vol");
    SetResourceLanguage(LANG_CHINESE); // no texts of its own: English
    EXPECT_EQ(e.Texts(CE_BREAK), "Break condition");
    SetResourceLanguage(LANG_ENGLISH_US);
}

TEST_F(SerialLink, LineSettingsReachTheTerminal) {
    DCB dcb;
    ASSERT_TRUE(m_link.GetCommState(&dcb));
    dcb.BaudRate = 9600;
    dcb.StopBits = TWOSTOPBITS;
    dcb.fOutX = 1;
    dcb.XonChar = 0x11;
    dcb.XoffChar = 0x13;
    ASSERT_TRUE(m_link.SetCommState(&dcb));

    // Seen through the test's own descriptor of the same terminal.
    termios t{};
    ASSERT_EQ(::tcgetattr(m_pty.terminal(), &t), 0);
    EXPECT_EQ(::cfgetospeed(&t), static_cast<speed_t>(B9600));
    EXPECT_EQ(t.c_cflag & (CSIZE | PARENB | CSTOPB), static_cast<tcflag_t>(CS8 | CSTOPB));
    EXPECT_NE(t.c_iflag & IXON, 0u);
    EXPECT_EQ(t.c_iflag & IXOFF, 0u);
    EXPECT_EQ(t.c_cc[VSTART], 0x11);

    DCB back;
    back.BaudRate = 1;
    ASSERT_TRUE(m_link.GetCommState(&back));
    EXPECT_EQ(back.BaudRate, 9600u);
    EXPECT_EQ(back.ByteSize, 8);
    EXPECT_EQ(back.Parity, NOPARITY);
    EXPECT_EQ(back.StopBits, TWOSTOPBITS);
    EXPECT_EQ(back.fOutX, 1u);
    EXPECT_EQ(back.fInX, 0u);

    // A pseudo-terminal always keeps 8 bits without parity: 7 bits with even parity is refused
    // as a whole, the old settings stay, and the error text says why.
    dcb.BaudRate = 4800;
    dcb.ByteSize = 7;
    dcb.Parity = EVENPARITY;
    EXPECT_FALSE(m_link.SetCommState(&dcb));
    ASSERT_EQ(::tcgetattr(m_pty.terminal(), &t), 0);
    EXPECT_EQ(::cfgetospeed(&t), static_cast<speed_t>(B9600));
    EXPECT_EQ(Text(m_link.szGetError()), "Mode not supported");
    EXPECT_EQ(Text(m_link.szGetError()), "");

    dcb.ByteSize = 8;
    dcb.Parity = NOPARITY;
    dcb.BaudRate = 14400; // no such rate in termios
    EXPECT_FALSE(m_link.SetCommState(&dcb));
    dcb.BaudRate = 9600;
    dcb.StopBits = ONE5STOPBITS;
    EXPECT_FALSE(m_link.SetCommState(&dcb));
    EXPECT_FALSE(m_link.SetCommState(nullptr));

    COMMPROP prop;
    ASSERT_TRUE(m_link.GetCommProperties(&prop));
    EXPECT_EQ(prop.wPacketLength, sizeof(COMMPROP));
    EXPECT_EQ(prop.dwProvSubType, PST_RS232);
}

TEST_F(SerialLink, PurgeDropsWaitingInput) {
    m_pty.Send("stale");
    std::this_thread::sleep_for(50ms);
    EXPECT_TRUE(m_link.PurgeComm(PURGE_RXABORT | PURGE_RXCLEAR));
    char c = 0;
    EXPECT_EQ(m_link.ReadOneChar(&c, 0, false), ComTimeOut);
    m_pty.Send("fresh");
    char buf[2 * 5] = {};
    EXPECT_TRUE(m_link.ReadComm(buf, 5, false));
    EXPECT_EQ(std::string(buf, 5), "fresh");

    CCommunicatie closed;
    EXPECT_FALSE(closed.PurgeComm(PURGE_RXCLEAR));
    EXPECT_FALSE(closed.SetCommBreak());
    EXPECT_FALSE(closed.ClearCommBreak());
    COMMPROP prop;
    EXPECT_FALSE(closed.GetCommProperties(&prop));
}
