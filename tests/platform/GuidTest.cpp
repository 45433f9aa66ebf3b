#include "platform/Guid.h"

#include <gtest/gtest.h>

using namespace vx;

TEST(Guid, RegistryTextForm) {
    const GUID known{
        0x12345678u, 0x9ABCu, 0xDEF0u, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};
    EXPECT_EQ(StringFromCLSID(known), CVXString(u"{12345678-9ABC-DEF0-0123-456789ABCDEF}"));

    GUID parsed;
    EXPECT_EQ(CLSIDFromString(u"{12345678-9abc-def0-0123-456789abcdef}", &parsed), S_OK);
    EXPECT_EQ(parsed, known);
    EXPECT_EQ(StringFromCLSID(GUID{}), CVXString(u"{00000000-0000-0000-0000-000000000000}"));
}

TEST(Guid, ParserIsStrict) {
    const GUID before{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    const char16_t *bad[] = {
        u"12345678-9ABC-DEF0-0123-456789ABCDEF",    // no braces
        u"{12345678-9ABC-DEF0-0123-456789ABCDEF",   // no closing brace
        u"{12345678-9ABC-DEF0-0123-456789ABCDEF} ", // trailing text
        u"{12345678-9ABC-DEF0-0123-456789ABCDE}",   // a digit short
        u"{12345678-9ABC-DEF0-0123-456789ABCDEG}",  // not hex
        u"{12345678 9ABC-DEF0-0123-456789ABCDEF}",  // dash missing
        u"{1234567-89ABC-DEF0-0123-456789ABCDEF}",  // dash misplaced
        u"",
    };
    for (const char16_t *text : bad) {
        GUID g = before;
        EXPECT_EQ(CLSIDFromString(text, &g), CO_E_CLASSSTRING);
        EXPECT_EQ(g, before);
    }
    GUID g;
    EXPECT_EQ(CLSIDFromString(nullptr, &g), E_POINTER);
    EXPECT_EQ(CoCreateGuid(nullptr), E_POINTER);
}

TEST(Guid, RandomVersion4RoundTrips) {
    GUID first;
    GUID second;
    ASSERT_EQ(CoCreateGuid(&first), S_OK);
    ASSERT_EQ(CoCreateGuid(&second), S_OK);
    EXPECT_NE(first, second);
    const CVXString text = StringFromCLSID(first);
    ASSERT_EQ(text.GetLength(), 38);
    EXPECT_EQ(text[15], u'4');                        // version 4
    EXPECT_NE(CVXString(u"89AB").Find(text[20]), -1); // variant 1
    GUID back;
    ASSERT_EQ(CLSIDFromString(text, &back), S_OK);
    EXPECT_EQ(back, first);
}
