// The byte side of vx convert: input read in large blocks and cut into lines, output gathered in
// one large buffer and written with checked calls. Neither iostreams nor a call per line: a
// million points cost their parsing and projection, not their transport.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace vxtool::convert {

// A line may hold this many bytes; a longer one is reported, not cut, and memory stays bounded.
inline constexpr std::size_t kMaxLineBytes = std::size_t(1) << 20;

struct SInputLine {
    std::string_view text; // without its line end ("\n"; a "\r" before it stays in the text)
    bool bTooLong = false; // the line was longer than kMaxLineBytes and is left out
};

// The lines of one file descriptor, a block at a time.
class CLineReader {
public:
    explicit CLineReader(int fd);
    CLineReader(const CLineReader &) = delete;
    CLineReader &operator=(const CLineReader &) = delete;

    // The complete lines now at hand (at least one), valid until the next call; false at the
    // end of the input or on a read error (then bFailed() and nError() tell).
    bool bNextBlock(std::vector<SInputLine> &lines);
    bool bFailed() const { return m_nError != 0; }
    int nError() const { return m_nError; }

private:
    bool bFill();
    void CutLines(std::vector<SInputLine> &lines);

    int m_fd;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0; // the first byte not yet handed out
    std::size_t m_end = 0;   // the end of the bytes read
    bool m_bEof = false;
    bool m_bSkipping = false; // within a too long line, up to its end
    int m_nError = 0;
};

// Output through one buffer to a stdio stream. A failed write is remembered; bFinish() flushes
// and says whether every byte reached the stream.
class COutputBuffer {
public:
    explicit COutputBuffer(std::FILE *out);
    COutputBuffer(const COutputBuffer &) = delete;
    COutputBuffer &operator=(const COutputBuffer &) = delete;

    // Room for `n` more bytes at the returned pointer; Commit says how many were used.
    char *Reserve(std::size_t n);
    void Commit(char *end) { m_used = static_cast<std::size_t>(end - m_buffer.data()); }
    void Append(std::string_view text);
    bool bFinish();
    bool bFailed() const { return m_nError != 0; }
    int nError() const { return m_nError; }

private:
    void Flush();

    std::FILE *m_out;
    std::vector<char> m_buffer;
    std::size_t m_used = 0;
    int m_nError = 0;
};

} // namespace vxtool::convert
