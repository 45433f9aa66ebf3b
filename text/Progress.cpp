#include "text/Progress.h"

#include <algorithm>
#include <atomic>

namespace vx {

namespace {

std::atomic<IProgressSink *> g_pSink{nullptr};

// The start values of a shown display.
constexpr int32_t nInitHigh = 100;
constexpr int32_t nInitStep = 10;

CVXString ResourceText(unsigned int id) {
    CVXString text;
    text.LoadString(id);
    return text;
}

} // namespace

void SetProgressSink(IProgressSink *pSink) {
    g_pSink.store(pSink);
}

IProgressSink *GetProgressSink() {
    return g_pSink.load();
}

// ---- CKvtpProgress ------------------------------------------------------------------------------

CKvtpProgress::CKvtpProgress(const CVXString &title)
    : m_pSink(GetProgressSink()), m_szTitle(title) {}

CKvtpProgress::CKvtpProgress(unsigned int nTitleId) : CKvtpProgress(ResourceText(nTitleId)) {}

CKvtpProgress::~CKvtpProgress() {
    if (m_bShown && m_pSink) m_pSink->End();
}

void CKvtpProgress::Init() {
    m_nLow = 0;
    m_nHigh = nInitHigh;
    m_nStep = nInitStep;
    m_nPos = 0;
    m_lScaleHigh = 0;
    if (!m_pSink) return;
    if (!m_bShown) m_pSink->Begin(m_szTitle);
    m_bShown = true;
    m_pSink->SetRange(m_nLow, m_nHigh);
    m_pSink->SetPos(m_nPos);
}

void CKvtpProgress::SetInfo(const CVXString &text) {
    m_szInfo = text;
    if (m_pSink) m_pSink->SetText(text);
}

void CKvtpProgress::SetStepInfo(unsigned int nTextId) {
    SetInfo(ResourceText(nTextId));
}

void CKvtpProgress::SetParms(int16_t nLow, int16_t nHigh, int16_t nStep) {
    m_nLow = nLow;
    m_nHigh = std::max<int32_t>(nLow, nHigh);
    m_nStep = nStep;
    m_lScaleHigh = 0;
    if (m_pSink) m_pSink->SetRange(m_nLow, m_nHigh);
    MoveTo(m_nPos);
}

void CKvtpProgress::SetParml(int32_t lHigh) {
    lHigh = std::max<int32_t>(lHigh, 0);
    m_lScaleHigh = lHigh > nBarMax ? lHigh : 0;
    m_nLow = 0;
    m_nHigh = std::min(lHigh, nBarMax);
    if (m_pSink) m_pSink->SetRange(m_nLow, m_nHigh);
    MoveTo(m_nPos);
}

void CKvtpProgress::SetPos(int16_t nPos) {
    MoveTo(nPos);
}

void CKvtpProgress::SetPosl(int32_t lPos) {
    if (m_lScaleHigh == 0)
        MoveTo(lPos);
    else
        MoveTo(static_cast<int64_t>(lPos) * nBarMax / m_lScaleHigh);
}

void CKvtpProgress::OffsetPos(int16_t nOffset) {
    MoveTo(static_cast<int64_t>(m_nPos) + nOffset);
}

void CKvtpProgress::StepIt() {
    MoveTo(static_cast<int64_t>(m_nPos) + m_nStep);
}

void CKvtpProgress::StepBack() {
    MoveTo(static_cast<int64_t>(m_nPos) - m_nStep);
}

void CKvtpProgress::MoveTo(int64_t nPos) {
    m_nPos = static_cast<int32_t>(std::clamp<int64_t>(nPos, m_nLow, m_nHigh));
    if (m_pSink) m_pSink->SetPos(m_nPos);
}

// ---- CTerminalProgress --------------------------------------------------------------------------

CTerminalProgress::CTerminalProgress(std::FILE *pOut, int nWidth)
    : m_pOut(pOut), m_nWidth(std::max(nWidth, 1)) {}

void CTerminalProgress::Begin(const CVXString &title) {
    m_szTitle = title;
    m_szText.Empty();
    m_nDrawnPercent = -1;
    m_bOpen = true;
    Draw();
}

void CTerminalProgress::SetRange(int32_t nLow, int32_t nHigh) {
    m_nLow = nLow;
    m_nHigh = nHigh;
    if (Percent() != m_nDrawnPercent) Draw();
}

void CTerminalProgress::SetPos(int32_t nPos) {
    m_nPos = nPos;
    if (Percent() != m_nDrawnPercent) Draw();
}

void CTerminalProgress::SetText(const CVXString &text) {
    m_szText = text;
    Draw();
}

void CTerminalProgress::End() {
    if (m_bOpen && m_pOut) {
        std::fputc('\n', m_pOut);
        std::fflush(m_pOut);
    }
    m_bOpen = false;
}

int CTerminalProgress::Percent() const {
    if (m_nHigh <= m_nLow) return 100;
    const int64_t done = std::clamp<int64_t>(static_cast<int64_t>(m_nPos) - m_nLow, 0,
                                             static_cast<int64_t>(m_nHigh) - m_nLow);
    return static_cast<int>(done * 100 / (static_cast<int64_t>(m_nHigh) - m_nLow));
}

CVXString CTerminalProgress::Line() const {
    const int percent = Percent();
    const int filled = percent * m_nWidth / 100;
    CVXString line;
    line.Format(u"%s [%s%s] %3d%%", m_szTitle, CVXString(u'#', filled),
                CVXString(u'.', m_nWidth - filled), percent);
    if (!m_szText.IsEmpty()) line += u" " + m_szText;
    return line;
}

void CTerminalProgress::Draw() {
    m_nDrawnPercent = Percent();
    if (!m_bOpen || !m_pOut) return;
    // "\r" and the clear-to-end-of-line sequence redraw the line in place.
    std::fprintf(m_pOut, "\r%s\x1b[K", static_cast<const char *>(Line()));
    std::fflush(m_pOut);
}

} // namespace vx
