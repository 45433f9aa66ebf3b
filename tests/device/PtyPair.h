// A pseudo-terminal pair for the serial-link tests: the link opens the terminal end by its path,
// the test plays the instrument on the other end. Every wait here is bounded.
#pragma once

#include "platform/UserPrompt.h"

#include <atomic>
#include <chrono>
#include <string>

namespace vxtest {

class PtyPair {
public:
    // Opens the pair and puts the terminal end in raw mode; throws std::runtime_error on failure.
    PtyPair();
    ~PtyPair();
    PtyPair(const PtyPair &) = delete;
    PtyPair &operator=(const PtyPair &) = delete;

    // The path of the terminal end ("/dev/pts/N").
    const std::string &path() const { return m_path; }
    // A descriptor of the terminal end that the test holds itself (to look at its settings).
    int terminal() const { return m_terminal; }
    // The instrument speaks: writes all bytes to the other end (bounded by one second).
    void Send(const std::string &bytes) const;
    // The instrument listens: reads until `n` bytes came or `wait` passed.
    std::string Receive(size_t n, std::chrono::milliseconds wait) const;
    // Reads until `end` arrives (included) or `wait` passed.
    std::string ReceiveUntil(char end, std::chrono::milliseconds wait) const;
    // The instrument goes away.
    void Hangup();

private:
    int m_master = -1;
    int m_terminal = -1;
    std::string m_path;
};

// A host prompt whose user clicks on request: BreakRequested answers true once per click, and
// counts how often it was asked.
class ClickPrompt : public vx::IUserPrompt {
public:
    int AskRetryCancel(const vx::CVXString &) override { return IDCANCEL; }
    void ShowMessage(const vx::CVXString &, int) override {}
    bool BreakRequested() override {
        ++m_asked;
        if (m_clickOnAsk > 0 && m_asked.load() >= m_clickOnAsk) m_click = true;
        return m_click.exchange(false);
    }
    void Click() { m_click = true; }
    // The click comes when the prompt is asked for the n-th time.
    void ClickOnAsk(int n) { m_clickOnAsk = n; }
    int Asked() const { return m_asked; }
    bool ClickPending() const { return m_click; }

private:
    std::atomic<int> m_asked{0};
    std::atomic<int> m_clickOnAsk{0};
    std::atomic<bool> m_click{false};
};

// Installs a prompt for the life of the object.
class ScopedPrompt {
public:
    explicit ScopedPrompt(vx::IUserPrompt *prompt) { vx::SetUserPrompt(prompt); }
    ~ScopedPrompt() { vx::SetUserPrompt(nullptr); }
    ScopedPrompt(const ScopedPrompt &) = delete;
    ScopedPrompt &operator=(const ScopedPrompt &) = delete;
};

// Seconds since `start`, as a double.
double SecondsSince(std::chrono::steady_clock::time_point start);

} // namespace vxtest
