#include "text/AsciiMeldingen.h"

#include "foundation/VXODateTime.h"

#include <string>

namespace vx {

namespace {

constexpr unsigned int nGrowBytes = 1024;
constexpr int nKinds = 5;

bool IsError(CAsciiMeldingen::Type type) {
    return type == CAsciiMeldingen::mtFout || type == CAsciiMeldingen::mtRelatieFout;
}

bool IsCounted(CAsciiMeldingen::Type type) {
    return type >= 0 && type < nKinds;
}

} // namespace

// ---- CAsciiMelding ------------------------------------------------------------------------------

CAsciiMelding::CAsciiMelding(CAsciiMeldingen::Type type, const CVXString &szBron, uint32_t lRegel,
                             char cKolom, uint16_t nKolom, const CVXString &szTekst)
    : m_nType(type), m_szBron(szBron), m_lRegel(lRegel), m_cKolom(cKolom), m_nKolom(nKolom),
      m_szTekst(szTekst) {}

void CAsciiMelding::CreeerRegel(CVXString &out) const {
    const char16_t mark = IsError(m_nType) ? u'*' : u' ';
    // The line number goes through %d as a signed 32-bit value, as the report has always shown it.
    out.Format(u"%c <%s> %d (%c%d)\r\n", mark, m_szBron, static_cast<int32_t>(m_lRegel), m_cKolom,
               m_nKolom);
    out += u"    " + m_szTekst + u"\r\n";
}

// ---- CAsciiMeldingen ----------------------------------------------------------------------------

CAsciiMeldingen::CAsciiMeldingen() : CAsciiMeldingen(true) {}

CAsciiMeldingen::CAsciiMeldingen(bool bDatum) : m_Meldingen(nGrowBytes), m_bDatum(bDatum) {
    Reset();
}

void CAsciiMeldingen::Append(Type type, const CVXString &text) {
    if (m_bVol) return; // dropped without a trace in the text
    m_Meldingen.SeekToEnd();
    m_Meldingen.WriteString(text);
    Verhoog(type);
    if (lGetAantal() > lMaxMeldingen) m_bVol = true; // the message that passed the limit is kept
}

void CAsciiMeldingen::AddMelding(CAsciiMelding &melding) {
    if (m_bVol) return;
    CVXString text;
    melding.CreeerRegel(text);
    Append(melding.m_nType, text);
}

void CAsciiMeldingen::AddMelding(Type type, const CVXString &text) {
    if (!m_bVol) Append(type, text + u"\r\n");
}

void CAsciiMeldingen::AddMelding(Type type, unsigned int nResourceId) {
    CVXString text;
    text.LoadString(nResourceId);
    AddMelding(type, text);
}

void CAsciiMeldingen::AddMelding(CAsciiMeldingen &other) {
    for (int i = 0; i < nKinds; ++i)
        m_lAantal[i] += other.m_lAantal[i];
    // A copy first: the other list may be this one, whose buffer moves as it grows.
    const std::string text(reinterpret_cast<const char *>(other.m_Meldingen.GetData()),
                           static_cast<size_t>(other.m_Meldingen.GetLength()));
    m_Meldingen.SeekToEnd();
    if (!text.empty()) m_Meldingen.Write(text.data(), static_cast<unsigned int>(text.size()));
}

void CAsciiMeldingen::Verhoog(Type type) {
    if (IsCounted(type)) ++m_lAantal[type];
}

uint32_t CAsciiMeldingen::lGetFouten() const {
    return m_lAantal[mtFout] + m_lAantal[mtRelatieFout];
}

uint32_t CAsciiMeldingen::lGetAantal() const {
    uint32_t sum = 0;
    for (uint32_t n : m_lAantal)
        sum += n;
    return sum;
}

uint32_t CAsciiMeldingen::lGetAantal(Type type) const {
    return IsCounted(type) ? m_lAantal[type] : 0;
}

bool CAsciiMeldingen::bFileRelatie() const {
    return m_lAantal[mtRelatie] != 0 || m_lAantal[mtRelatieFout] != 0;
}

void CAsciiMeldingen::SaveAs(const CVXString &path) {
    CFile file(path, CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
    const uint64_t length = m_Meldingen.GetLength();
    if (length > 0) file.Write(m_Meldingen.GetData(), static_cast<unsigned int>(length));
    file.Close();
}

void CAsciiMeldingen::Reset() {
    m_bVol = false;
    m_Meldingen.SetLength(0);
    m_Meldingen.SeekToBegin();
    for (uint32_t &n : m_lAantal)
        n = 0;
    if (m_bDatum) {
        CVXString now;
        CVXODateTime(true).ToString(now);
        m_Meldingen.WriteString(now + u"\r\n");
    }
}

// ---- CAsciiProgress -----------------------------------------------------------------------------

CAsciiProgress::CAsciiProgress(unsigned int nTitleId) : m_Progress(nTitleId) {
    m_Progress.Init();
}

void CAsciiProgress::AddMeldingText(unsigned int nTextId) {
    AddMelding(mtMelding, nTextId);
    m_Progress.SetStepInfo(nTextId);
}

} // namespace vx
