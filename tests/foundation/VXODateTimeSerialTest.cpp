#include "foundation/VXODateTime.h"
#include "persist/ArchiveB.h"
#include "platform/File.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <vector>

using namespace vx;

TEST(VXODateTimeSerial, StatusThenValueBothWays) {
    CVXODateTime t;
    t.m_dt = 44000.25;
    t.m_status = COleDateTime::null;
    CMemFile file;
    {
        CArchiveB ar(&file, CArchiveB::store);
        t.SerializeB(ar);
    }
    // struct.pack("<id", 2, 44000.25)
    EXPECT_EQ(vxtest::Hex(std::vector<uint8_t>(file.GetData(), file.GetData() + file.GetLength())),
              "02 00 00 00 00 00 00 00 08 7c e5 40");

    file.SeekToBegin();
    CVXODateTime back;
    {
        CArchiveB ar(&file, CArchiveB::load);
        back.SerializeB(ar);
    }
    EXPECT_EQ(back.m_status, COleDateTime::null);
    EXPECT_EQ(back.m_dt, 44000.25);
}
