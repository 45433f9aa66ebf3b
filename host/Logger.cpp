#include "host/Logger.h"

#include "foundation/VXODateTime.h"
#include "platform/Assert.h"
#include "platform/UserPrompt.h"
#include "text/TextFile.h"

#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace vx::NLogger {

namespace {

constexpr int nRingSize = 10;
// The sharing flag of the log's open: others may read it, not write it.
constexpr int nShareDenyWrite = 0x20;
constexpr const char16_t *szAssertSource = u"Assertion failure";
// Where the messages of the no-host user prompt appear in the log.
constexpr const char16_t *szPromptSource = u"Message";

struct CLogState {
    CVXString m_szDir;
    int m_nFile = 0;
    CTextFile m_file;
    int m_nVerbosity = 1;
    CVXString m_szPath;
};

// The process-wide state. Never destroyed, so that a line logged while the process ends still
// finds it; the C library flushes the stream at exit.
CLogState &State() {
    static CLogState *state = new CLogState;
    return *state;
}

std::string HostName() {
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0') return "Localhost";
    return name;
}

CVXString DefaultDirectory() {
    const char *tmp = std::getenv("TMPDIR");
    return CVXString(tmp && *tmp ? tmp : "/tmp");
}

// A file of the ring: the host name, one character, a dot and anything after it.
bool IsRingFile(const std::string &name, const std::string &host) {
    return name.size() >= host.size() + 2 && name.compare(0, host.size(), host) == 0 &&
           name[host.size() + 1] == '.';
}

struct CRingFile {
    std::string m_szName;
    timespec m_mtime{};
};

bool IsNewer(const CRingFile &a, const CRingFile &b) {
    if (a.m_mtime.tv_sec != b.m_mtime.tv_sec) return a.m_mtime.tv_sec > b.m_mtime.tv_sec;
    if (a.m_mtime.tv_nsec != b.m_mtime.tv_nsec) return a.m_mtime.tv_nsec > b.m_mtime.tv_nsec;
    return a.m_szName > b.m_szName; // equal times: the later name, so the choice is stable
}

// The number of the next file: 0 with no file, 1 with one (whatever it is called), else the
// digit of the newest file plus one, around the ring.
int NextFileNumber(const std::string &dir, const std::string &host) {
    DIR *d = opendir(dir.c_str());
    if (!d) return 0;
    int count = 0;
    CRingFile newest;
    while (const dirent *entry = readdir(d)) {
        CRingFile file{entry->d_name, {}};
        struct stat st {};
        if (!IsRingFile(file.m_szName, host) ||
            stat((dir + "/" + file.m_szName).c_str(), &st) != 0 || !S_ISREG(st.st_mode))
            continue;
        file.m_mtime = st.st_mtim;
        if (count++ == 0 || IsNewer(file, newest)) newest = file;
    }
    closedir(d);
    if (count <= 1) return count;
    const char ch = newest.m_szName[host.size()];
    if (ch < '0' || ch > '9') return 0;
    return (ch - '0' + 1) % nRingSize;
}

// The assertion report arrives as "Assertion failure <expression> <file> <line>".
void AssertToLog(const char *message) {
    const char *text = message ? message : "";
    const std::string head = "Assertion failure ";
    if (std::strncmp(text, head.c_str(), head.size()) == 0) text += head.size();
    LogMessage(szAssertSource, Critical, CVXString(text));
}

void PromptToLog(int level, const CVXString &text) {
    LogMessage(szPromptSource, static_cast<Severity>(level), text);
}

void HostToLog(int level, const CVXString &text) {
    LogMessage(static_cast<Severity>(level), text);
}

bool Enabled(Severity severity) {
    const CLogState &s = State();
    return severity <= s.m_nVerbosity && s.m_file.IsOpen();
}

void Write(Severity severity, const CVXString &line) {
    CLogState &s = State();
    s.m_file.WriteString(line);
    if (severity <= Error) s.m_file.Flush();
}

CVXString SourceLine(const CVXString &source, Severity severity, const CVXString &text) {
    CVXString when;
    CVXODateTime(CVXODateTime::GetOleDT()).ToString(when);
    return when + u" " + source + u" " + SeverityWord(severity) + u" " + text;
}

} // namespace

void Initialize(const CVXString &dir) {
    CLogState &s = State();
    s.m_szDir = dir.IsEmpty() ? DefaultDirectory() : dir;
    const std::string host = HostName();
    s.m_nFile = NextFileNumber(static_cast<const char *>(s.m_szDir), host);
    CVXString path;
    path.Format(u"%s/%s%1.1d.log", s.m_szDir, host.c_str(), s.m_nFile);
    if (s.m_file.Open(path, u"w+tc", CTextFile::encUTF8, nShareDenyWrite)) {
        s.m_szPath = path;
        SetAssertSink(&AssertToLog);
        SetPromptLogSink(&PromptToLog);
        SetHostLogSink(&HostToLog);
    } else {
        // A silent log would swallow the reports: they go back to standard error.
        s.m_szPath.Empty();
        SetAssertSink(nullptr);
        SetPromptLogSink(nullptr);
        SetHostLogSink(nullptr);
    }
}

int Verbosity() {
    return State().m_nVerbosity;
}

void Verbosity(int nLevel) {
    State().m_nVerbosity = nLevel;
}

CVXString GetLogPath() {
    return State().m_szPath;
}

const char16_t *SeverityWord(Severity severity) {
    switch (severity) {
    case Critical:
        return u"Critical";
    case Error:
        return u"Error";
    case Warning:
        return u"Warning";
    default:
        return u"Info";
    }
}

void LogMessage(Severity severity, const CVXString &text) {
    if (Enabled(severity)) Write(severity, u" " + text + u"\n");
}

void LogMessage(const CVXString &source, Severity severity, const CVXString &text) {
    if (Enabled(severity)) Write(severity, SourceLine(source, severity, text) + u"\n");
}

void LogMessageNoNL(Severity severity, const CVXString &text) {
    if (Enabled(severity)) Write(severity, u" " + text);
}

void LogMessageNoNL(const CVXString &source, Severity severity, const CVXString &text) {
    if (Enabled(severity)) Write(severity, SourceLine(source, severity, text));
}

} // namespace vx::NLogger
