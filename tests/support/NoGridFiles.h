// A test fixture for projection tests: the correction grid files are absent (VXCOMMON_DATA points
// nowhere) and the message about them is swallowed by a silent host prompt.
#pragma once

#include "platform/VXString.h"
#include "platform/UserPrompt.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vxtest {

class CQuietPrompt : public vx::IUserPrompt {
public:
    int AskRetryCancel(const vx::CVXString &) override { return IDCANCEL; }
    void ShowMessage(const vx::CVXString &, int) override {}
    bool BreakRequested() override { return false; }
};

class NoGridFiles : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("VXCOMMON_DATA", "/nonexistent-vx-grid-dir", 1);
        vx::SetUserPrompt(&m_prompt);
    }
    void TearDown() override {
        vx::SetUserPrompt(nullptr);
        unsetenv("VXCOMMON_DATA");
    }
    CQuietPrompt m_prompt;
};

} // namespace vxtest
