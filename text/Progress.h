// Progress display: CKvtpProgress keeps the range, position, step and text of a progress bar
// and shows them through a sink the host installs (a dialog, a status bar, a terminal line).
// With no sink installed nothing is shown. CTerminalProgress is a sink that draws a one-line
// bar on a terminal stream.
#pragma once

#include "platform/VXExport.h"

#include "platform/Object.h"
#include "platform/VXString.h"

#include <cstdint>
#include <cstdio>

namespace vx VX_API {

// Where progress is shown. All calls come from the thread that drives the work.
class IProgressSink {
public:
    virtual ~IProgressSink() = default;
    // A display with this title opens.
    virtual void Begin(const CVXString &title) = 0;
    virtual void SetRange(int32_t nLow, int32_t nHigh) = 0;
    virtual void SetPos(int32_t nPos) = 0;
    // The line of text under the bar.
    virtual void SetText(const CVXString &text) = 0;
    // The display closes.
    virtual void End() = 0;
};

// Installs the host's sink; null restores the default (nothing shown). Not owned.
void SetProgressSink(IProgressSink *pSink);
// The installed sink, or null.
IProgressSink *GetProgressSink();

// The progress dialog: a bar with a 16-bit range and a text label. The bar shows through the
// sink that is installed when the object is made.
class CKvtpProgress : public CObject {
public:
    // The largest range of the bar; the 32-bit forms scale to it.
    static constexpr int32_t nBarMax = 0x7FFF;

    explicit CKvtpProgress(const CVXString &title);
    // The title from a string resource.
    explicit CKvtpProgress(unsigned int nTitleId);
    ~CKvtpProgress() override;
    CKvtpProgress(const CKvtpProgress &) = delete;
    CKvtpProgress &operator=(const CKvtpProgress &) = delete;

    // Shows the display: title, range 0..100, position 0, step 10.
    void Init();
    void SetInfo(const CVXString &text);
    // The text of a string resource.
    void SetStepInfo(unsigned int nTextId);
    void SetParms(int16_t nLow, int16_t nHigh, int16_t nStep);
    // A range of 0..lHigh: above nBarMax positions are scaled to 0..nBarMax.
    void SetParml(int32_t lHigh);
    void SetPos(int16_t nPos);
    // A position in the range given to SetParml.
    void SetPosl(int32_t lPos);
    void OffsetPos(int16_t nOffset);
    // One step forward or back; the position stays within the range.
    void StepIt();
    void StepBack();

    int32_t GetPos() const { return m_nPos; }
    int32_t GetLow() const { return m_nLow; }
    int32_t GetHigh() const { return m_nHigh; }
    const CVXString &GetInfo() const { return m_szInfo; }

private:
    void MoveTo(int64_t nPos);

    IProgressSink *m_pSink;
    CVXString m_szTitle;
    CVXString m_szInfo;
    int32_t m_nLow = 0;
    int32_t m_nHigh = 100;
    int32_t m_nStep = 10;
    int32_t m_nPos = 0;
    int32_t m_lScaleHigh = 0; // the 32-bit range of SetParml, 0 when not scaled
    bool m_bShown = false;
};

// A sink that draws "title [#####.....]  50% text" on one terminal line, redrawn in place when
// the percentage or the text changes, and ends the line at End.
class CTerminalProgress : public IProgressSink {
public:
    explicit CTerminalProgress(std::FILE *pOut = stderr, int nWidth = 30);
    void Begin(const CVXString &title) override;
    void SetRange(int32_t nLow, int32_t nHigh) override;
    void SetPos(int32_t nPos) override;
    void SetText(const CVXString &text) override;
    void End() override;

    // The line as it is drawn now (without the leading carriage return).
    CVXString Line() const;

private:
    int Percent() const;
    void Draw();

    std::FILE *m_pOut;
    int m_nWidth;
    CVXString m_szTitle;
    CVXString m_szText;
    int32_t m_nLow = 0;
    int32_t m_nHigh = 100;
    int32_t m_nPos = 0;
    int m_nDrawnPercent = -1;
    bool m_bOpen = false;
};

} // namespace VX_API
