#include "BatchIO.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace vxtool::convert {

namespace {

// Each read asks for up to this much; the buffer holds a longest line and one such block.
constexpr std::size_t kReadBlock = std::size_t(1) << 20;
constexpr std::size_t kOutputBytes = std::size_t(1) << 20;

} // namespace

CLineReader::CLineReader(int fd) : m_fd(fd), m_buffer(kMaxLineBytes + kReadBlock) {}

bool CLineReader::bFill() {
    // Move what is left of a line to the front, then read behind it.
    if (m_begin > 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
    }
    for (;;) {
        const ssize_t n = ::read(m_fd, m_buffer.data() + m_end, m_buffer.size() - m_end);
        if (n > 0) {
            m_end += static_cast<std::size_t>(n);
            return true;
        }
        if (n == 0) {
            m_bEof = true;
            return false;
        }
        if (errno != EINTR) {
            m_nError = errno;
            return false;
        }
    }
}

void CLineReader::CutLines(std::vector<SInputLine> &lines) {
    const char *data = m_buffer.data();
    while (m_begin < m_end) {
        const void *nl = std::memchr(data + m_begin, '\n', m_end - m_begin);
        if (nl == nullptr) break;
        const std::size_t stop = static_cast<std::size_t>(static_cast<const char *>(nl) - data);
        if (m_bSkipping)
            m_bSkipping = false; // the end of the too long line, already reported
        else
            lines.push_back({std::string_view(data + m_begin, stop - m_begin), false});
        m_begin = stop + 1;
    }
    const std::size_t rest = m_end - m_begin;
    if (rest >= kMaxLineBytes || (m_bSkipping && rest > 0)) {
        // A line without its end in reach: report it once, then drop it up to its end.
        if (!m_bSkipping) lines.push_back({std::string_view(), true});
        m_bSkipping = true;
        m_begin = m_end;
    } else if (m_bEof && rest > 0) {
        lines.push_back(
            {std::string_view(data + m_begin, rest), false}); // a last line without "\n"
        m_begin = m_end;
    }
}

bool CLineReader::bNextBlock(std::vector<SInputLine> &lines) {
    lines.clear();
    while (lines.empty()) {
        if (m_bEof || m_nError != 0) return false;
        bFill();
        if (m_nError != 0) return false;
        CutLines(lines);
    }
    return true;
}

COutputBuffer::COutputBuffer(std::FILE *out) : m_out(out), m_buffer(kOutputBytes) {}

void COutputBuffer::Flush() {
    if (m_used > 0 && m_nError == 0 && std::fwrite(m_buffer.data(), 1, m_used, m_out) != m_used)
        m_nError = errno != 0 ? errno : EIO;
    m_used = 0;
}

char *COutputBuffer::Reserve(std::size_t n) {
    if (m_buffer.size() - m_used < n) {
        Flush();
        if (m_buffer.size() < n) m_buffer.resize(n);
    }
    return m_buffer.data() + m_used;
}

void COutputBuffer::Append(std::string_view text) {
    char *p = Reserve(text.size());
    std::memcpy(p, text.data(), text.size());
    Commit(p + text.size());
}

bool COutputBuffer::bFinish() {
    Flush();
    if (m_nError == 0 && (std::fflush(m_out) != 0 || std::ferror(m_out)))
        m_nError = errno != 0 ? errno : EIO;
    return m_nError == 0;
}

} // namespace vxtool::convert
