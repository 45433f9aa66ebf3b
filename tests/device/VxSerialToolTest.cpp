// `vx serial` against a pseudo-terminal: this program plays the instrument and runs the tool.
// The tool's path comes from VX_TOOL (set by the CTest case vx_serial_pty); without it these
// tests are skipped.
#include "PtyPair.h"

#include "device/Communicatie.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

using namespace std::chrono_literals;
using vxtest::PtyPair;

namespace {

// Well above the tool's own time-outs; a tool still running then is killed.
constexpr auto kToolWait = 10s;

struct ToolResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

const char *ToolPath() {
    const char *path = std::getenv("VX_TOOL");
    return path != nullptr && *path != '\0' ? path : nullptr;
}

// Drains both pipes until they close or the time is up.
void Drain(int outFd, int errFd, ToolResult &r, std::chrono::steady_clock::time_point deadline) {
    pollfd fds[2] = {{outFd, POLLIN, 0}, {errFd, POLLIN, 0}};
    std::string *sinks[2] = {&r.out, &r.err};
    int open = 2;
    while (open > 0 && std::chrono::steady_clock::now() < deadline) {
        if (::poll(fds, 2, 100) <= 0) continue;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0) continue;
            char buf[512];
            const ssize_t k = ::read(fds[i].fd, buf, sizeof buf);
            if (k > 0) {
                sinks[i]->append(buf, static_cast<size_t>(k));
            } else {
                fds[i].fd = -1;
                --open;
            }
        }
    }
}

// The child's exit code; a child still running at the deadline is killed (-1).
int Reap(pid_t pid, std::chrono::steady_clock::time_point deadline) {
    int status = 0;
    pid_t done = 0;
    while ((done = ::waitpid(pid, &status, WNOHANG)) == 0 &&
           std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(10ms);
    if (done == 0) {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, &status, 0);
        return -1;
    }
    return done == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ToolResult RunTool(const std::vector<std::string> &args) {
    ToolResult r;
    int out[2], err[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) return r;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    std::vector<char *> argv;
    std::string tool = ToolPath();
    std::string command = "serial";
    argv.push_back(tool.data());
    argv.push_back(command.data());
    std::vector<std::string> copies = args;
    for (std::string &a : copies)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    pid_t pid = -1;
    const int spawned = posix_spawn(&pid, tool.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(err[1]);
    if (spawned == 0) {
        const auto deadline = std::chrono::steady_clock::now() + kToolWait;
        Drain(out[0], err[0], r, deadline);
        r.exitCode = Reap(pid, deadline);
    }
    ::close(out[0]);
    ::close(err[0]);
    return r;
}

class VxSerialTool : public ::testing::Test {
protected:
    void SetUp() override {
        if (ToolPath() == nullptr)
            GTEST_SKIP() << "VX_TOOL is not set (see the vx_serial_pty test)";
    }
};

} // namespace

TEST_F(VxSerialTool, SendsALineAndPrintsTheAnswer) {
    PtyPair pty;
    std::string heard;
    std::thread instrument([&] {
        heard = pty.ReceiveUntil('\n', 5s);
        pty.Send("OK 12.345\r\n");
    });
    const ToolResult r = RunTool({pty.path(), "--send", "MEAS", "--timeout", "1"});
    instrument.join();
    EXPECT_EQ(heard, "MEAS\r\n");
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "OK 12.345\r\n");
    EXPECT_EQ(r.err, "");

    const ToolResult silent = RunTool({pty.path(), "--timeout", "0"});
    EXPECT_EQ(silent.exitCode, 0);
    EXPECT_EQ(silent.out, "");
    EXPECT_NE(silent.err.find("no answer from " + pty.path()), std::string::npos) << silent.err;
}

TEST_F(VxSerialTool, MissingBusyAndBadInputExitWithTwo) {
    const ToolResult missing = RunTool({"/dev/vx-no-such-tty"});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.err, "vx: no such port: /dev/vx-no-such-tty\n");

    PtyPair pty;
    vx::CCommunicatie holder;
    vx::CCommunicatie::SetDevicePath(0, pty.path().c_str());
    ASSERT_TRUE(holder.OpenComm(0));
    const ToolResult busy = RunTool({pty.path(), "--send", "X"});
    EXPECT_EQ(busy.exitCode, 2);
    EXPECT_EQ(busy.err, "vx: " + pty.path() + " is busy: another program holds it\n");
    EXPECT_EQ(pty.Receive(1, 100ms), ""); // nothing was sent
    vx::CCommunicatie::SetDevicePath(0, vx::CVXString());

    for (const auto &args : std::vector<std::vector<std::string>>{{},
                                                                  {"COM0"},
                                                                  {"COM25"},
                                                                  {"LPT1"},
                                                                  {"COM1", "--timeout", "-1"},
                                                                  {"COM1", "--timeout", "1x"},
                                                                  {"COM1", "--send"},
                                                                  {"COM1", "--baud", "9600"}}) {
        const ToolResult bad = RunTool(args);
        EXPECT_EQ(bad.exitCode, 2) << ::testing::PrintToString(args);
        EXPECT_EQ(bad.err.rfind("vx: ", 0), 0u) << bad.err;
    }
}
