#include "platform/CodePage.h"

#include "platform/Errors.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <iconv.h>
#include <memory>
#include <mutex>
#include <vector>

namespace vx {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

// An immutable description of one code page. A setting change publishes a new one; old ones
// stay alive (there are as many as there were settings), so a conversion running on another
// thread never sees its tables freed.
struct CodePageState {
    std::string name;
    bool singleByte = false;
    char16_t decode[256] = {};
    std::vector<unsigned char> encode; // 65536 entries; 0 = not representable (but U+0000)
};

class IconvHandle {
public:
    IconvHandle(const char *to, const char *from) : m_cd(iconv_open(to, from)) {}
    ~IconvHandle() {
        if (ok()) iconv_close(m_cd);
    }
    IconvHandle(const IconvHandle &) = delete;
    IconvHandle &operator=(const IconvHandle &) = delete;
    bool ok() const { return m_cd != reinterpret_cast<iconv_t>(-1); }
    iconv_t get() const { return m_cd; }

private:
    iconv_t m_cd;
};

// Decodes one byte alone. Returns 1 with the unit, 0 when the byte is a lead byte of a longer
// sequence (the code page is not single-byte), -1 when the byte is undefined.
int DecodeOneByte(iconv_t cd, unsigned char byte, char16_t &unit) {
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    char in = static_cast<char>(byte);
    char16_t outBuf[4];
    char *inp = &in;
    size_t inLeft = 1;
    char *outp = reinterpret_cast<char *>(outBuf);
    size_t outLeft = sizeof outBuf;
    if (iconv(cd, &inp, &inLeft, &outp, &outLeft) == static_cast<size_t>(-1))
        return errno == EINVAL ? 0 : -1;
    const size_t units = (sizeof outBuf - outLeft) / sizeof(char16_t);
    if (units != 1) return 0;
    unit = outBuf[0];
    return 1;
}

std::unique_ptr<CodePageState> BuildState(const char *name) {
    IconvHandle cd("UTF-16LE", name);
    if (!cd.ok()) return nullptr;
    auto state = std::make_unique<CodePageState>();
    state->name = name;
    state->singleByte = true;
    for (int b = 0; b < 256 && state->singleByte; ++b) {
        char16_t unit = 0;
        const int r = DecodeOneByte(cd.get(), static_cast<unsigned char>(b), unit);
        if (r == 0) state->singleByte = false;
        // A byte the code page leaves undefined maps to the unit of the same number, as the
        // original platform's conversion does for the holes of Windows-1252.
        state->decode[b] = r == 1 ? unit : static_cast<char16_t>(b);
    }
    if (state->singleByte) {
        state->encode.assign(65536, 0);
        for (int b = 255; b >= 0; --b)
            state->encode[state->decode[b]] = static_cast<unsigned char>(b);
    }
    return state;
}

std::mutex g_mutex;
std::atomic<const CodePageState *> g_state{nullptr};
std::vector<std::unique_ptr<CodePageState>> g_states; // keeps every published state alive

const CodePageState &State() {
    const CodePageState *s = g_state.load(std::memory_order_acquire);
    if (s) return *s;
    std::lock_guard<std::mutex> lock(g_mutex);
    s = g_state.load(std::memory_order_acquire);
    if (!s) {
        auto built = BuildState("WINDOWS-1252");
        if (!built) built = BuildState("CP1252");
        if (!built)
            throw CVXComError(E_FAIL, __FILE__, __LINE__,
                              CVXString(u"iconv does not know the code page WINDOWS-1252"));
        s = built.get();
        g_states.push_back(std::move(built));
        g_state.store(s, std::memory_order_release);
    }
    return *s;
}

// Runs iconv over the whole input, replacing what cannot be converted one unit at a time.
template <class OutUnit>
std::basic_string<OutUnit> IconvAll(const char *to, const char *from, const char *in, size_t inLen,
                                    size_t inStep, OutUnit replacement) {
    IconvHandle cd(to, from);
    if (!cd.ok())
        throw CVXComError(E_FAIL, __FILE__, __LINE__, CVXString(u"iconv conversion unavailable"));
    std::basic_string<OutUnit> out;
    std::vector<char> buf(inLen * 4 + 16);
    char *inp = const_cast<char *>(in);
    size_t inLeft = inLen;
    while (inLeft > 0) {
        char *outp = buf.data();
        size_t outLeft = buf.size();
        const size_t r = iconv(cd.get(), &inp, &inLeft, &outp, &outLeft);
        const size_t produced = buf.size() - outLeft;
        out.append(reinterpret_cast<const OutUnit *>(buf.data()), produced / sizeof(OutUnit));
        if (r == static_cast<size_t>(-1)) {
            if (errno == E2BIG) continue;
            // Unconvertible or incomplete input: one replacement, skip one input step.
            out.push_back(replacement);
            const size_t skip = std::min(inStep, inLeft);
            inp += skip;
            inLeft -= skip;
            iconv(cd.get(), nullptr, nullptr, nullptr, nullptr);
        }
    }
    return out;
}

} // namespace

void SetCodePage(const char *iconvName) {
    if (!iconvName || !*iconvName) throw CInvalidArgException("SetCodePage: empty code page name");
    std::lock_guard<std::mutex> lock(g_mutex);
    auto built = BuildState(iconvName);
    if (!built)
        throw CInvalidArgException(std::string("SetCodePage: iconv does not know '") + iconvName +
                                   "'");
    g_state.store(built.get(), std::memory_order_release);
    g_states.push_back(std::move(built));
}

const char *GetCodePage() {
    return State().name.c_str();
}

std::u16string CodePageToWide(const char *text, size_t len) {
    const CodePageState &s = State();
    if (s.singleByte) {
        std::u16string out(len, u'\0');
        for (size_t i = 0; i < len; ++i)
            out[i] = s.decode[static_cast<unsigned char>(text[i])];
        return out;
    }
    return IconvAll<char16_t>("UTF-16LE", s.name.c_str(), text, len, 1, kReplacement);
}

std::string WideToCodePage(const char16_t *text, size_t len) {
    const CodePageState &s = State();
    if (s.singleByte) {
        std::string out(len, '\0');
        for (size_t i = 0; i < len; ++i) {
            const unsigned char b = s.encode[text[i]];
            out[i] = (b != 0 || text[i] == 0) ? static_cast<char>(b) : '?';
        }
        return out;
    }
    return IconvAll<char>(s.name.c_str(), "UTF-16LE", reinterpret_cast<const char *>(text),
                          len * sizeof(char16_t), sizeof(char16_t), '?');
}

char WideCharToCodePage(char16_t ch) {
    const std::string one = WideToCodePage(&ch, 1);
    return one.empty() ? '?' : one[0];
}

std::u16string Utf8ToWide(const char *text, size_t len) {
    std::u16string out;
    out.reserve(len);
    const auto *p = reinterpret_cast<const unsigned char *>(text);
    size_t i = 0;
    while (i < len) {
        const unsigned char c = p[i];
        uint32_t cp;
        size_t n;
        if (c < 0x80) {
            cp = c;
            n = 1;
        } else if ((c & 0xE0) == 0xC0) {
            cp = c & 0x1F;
            n = 2;
        } else if ((c & 0xF0) == 0xE0) {
            cp = c & 0x0F;
            n = 3;
        } else if ((c & 0xF8) == 0xF0) {
            cp = c & 0x07;
            n = 4;
        } else {
            out.push_back(kReplacement);
            ++i;
            continue;
        }
        bool valid = i + n <= len;
        for (size_t k = 1; valid && k < n; ++k) {
            if ((p[i + k] & 0xC0) != 0x80)
                valid = false;
            else
                cp = (cp << 6) | (p[i + k] & 0x3F);
        }
        static const uint32_t kMin[5] = {0, 0, 0x80, 0x800, 0x10000};
        if (!valid || cp < kMin[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            out.push_back(kReplacement);
            ++i;
            continue;
        }
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(cp));
        }
        i += n;
    }
    return out;
}

std::string WideToUtf8(const char16_t *text, size_t len) {
    std::string out;
    out.reserve(len);
    for (size_t i = 0; i < len; ++i) {
        uint32_t cp = text[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < len && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = kReplacement; // a lone surrogate
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

} // namespace vx
