#include "PtyPair.h"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace vxtest {

namespace {

constexpr std::chrono::milliseconds kSendWait{1000};

void Fail(const char *what) {
    throw std::runtime_error(std::string("pty: ") + what + " failed, errno " +
                             std::to_string(errno));
}

int MsLeft(std::chrono::steady_clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

// Waits for `events` on fd until the deadline; false when the time is up.
bool WaitFor(int fd, short events, std::chrono::steady_clock::time_point deadline) {
    pollfd p{fd, events, 0};
    const int ms = MsLeft(deadline);
    return ms > 0 && ::poll(&p, 1, ms) > 0;
}

} // namespace

PtyPair::PtyPair() {
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_master < 0) Fail("posix_openpt");
    if (::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0) Fail("unlockpt");
    char name[128];
    if (::ptsname_r(m_master, name, sizeof name) != 0) Fail("ptsname_r");
    m_path = name;
    m_terminal = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_terminal < 0) Fail("open terminal end");
    termios t{};
    if (::tcgetattr(m_terminal, &t) != 0) Fail("tcgetattr");
    ::cfmakeraw(&t);
    if (::tcsetattr(m_terminal, TCSANOW, &t) != 0) Fail("tcsetattr");
    ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);
}

PtyPair::~PtyPair() {
    Hangup();
    if (m_terminal >= 0) ::close(m_terminal);
}

void PtyPair::Send(const std::string &bytes) const {
    const auto deadline = std::chrono::steady_clock::now() + kSendWait;
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t k = ::write(m_master, bytes.data() + done, bytes.size() - done);
        if (k > 0)
            done += static_cast<size_t>(k);
        else if (!WaitFor(m_master, POLLOUT, deadline))
            Fail("send");
    }
}

std::string PtyPair::Receive(size_t n, std::chrono::milliseconds wait) const {
    const auto deadline = std::chrono::steady_clock::now() + wait;
    std::string got;
    char buf[256];
    while (got.size() < n) {
        const ssize_t k = ::read(m_master, buf, std::min(sizeof buf, n - got.size()));
        if (k > 0)
            got.append(buf, static_cast<size_t>(k));
        else if (!WaitFor(m_master, POLLIN, deadline))
            break;
    }
    return got;
}

std::string PtyPair::ReceiveUntil(char end, std::chrono::milliseconds wait) const {
    const auto deadline = std::chrono::steady_clock::now() + wait;
    std::string got;
    while (got.empty() || got.back() != end) {
        const std::string one = Receive(1, std::chrono::milliseconds(MsLeft(deadline)));
        if (one.empty()) break;
        got += one;
    }
    return got;
}

void PtyPair::Hangup() {
    if (m_master >= 0) ::close(m_master);
    m_master = -1;
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace vxtest
