#include "storage/VXStringMap.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace vx;

namespace {

// The keys in the map's order, joined with '|'.
std::string Keys(const CVXStringMap &map) {
    std::string out;
    for (const CVXStringMapItem *p = map.pGetMin(); p;
         p = const_cast<CVXStringMap &>(map).pGetNext(p))
        out += std::string(static_cast<const char *>(p->m_szKey)) + "|";
    return out;
}

} // namespace

TEST(StringMap, AddFindRemoveCaseSensitively) {
    CVXStringMap map;
    EXPECT_TRUE(map.Add(u"b", u"2"));
    EXPECT_TRUE(map.Add(u"a", u"1"));
    EXPECT_TRUE(map.Add(u"A", u"upper"));
    // The second Add of a key is refused and the first value stays.
    EXPECT_FALSE(map.Add(u"a", u"other"));
    EXPECT_EQ(map.Find(u"a"), CVXString(u"1"));
    EXPECT_EQ(map.Find(u"A"), CVXString(u"upper"));
    EXPECT_EQ(map.lGetSize(), 3u);
    // Order by code unit: 'A' (0x41) before 'a' (0x61) before 'b' (0x62).
    EXPECT_EQ(Keys(map), "A|a|b|");

    // A missing key and an empty value look the same.
    EXPECT_TRUE(map.Add(u"empty", CVXString()));
    EXPECT_TRUE(map.Find(u"empty").IsEmpty());
    EXPECT_TRUE(map.Find(u"missing").IsEmpty());

    EXPECT_TRUE(map.Remove(u"a"));
    EXPECT_FALSE(map.Remove(u"a"));
    EXPECT_TRUE(map.Find(u"a").IsEmpty());
    EXPECT_EQ(Keys(map), "A|b|empty|");
}

TEST(StringMap, CopiesHaveItemsOfTheirOwn) {
    CVXStringMap map;
    for (int i = 0; i < 150; ++i) // past the repair at 100, so the shape is not a plain chain
        ASSERT_TRUE(map.Add(CVXString(std::to_string(i).c_str()), CVXString(u"v")));
    CVXStringMap copy(map);
    EXPECT_EQ(Keys(copy), Keys(map));
    EXPECT_TRUE(copy.Remove(u"7"));
    EXPECT_TRUE(copy.Add(u"new", u"x"));
    EXPECT_EQ(map.Find(u"7"), CVXString(u"v"));
    EXPECT_TRUE(map.Find(u"new").IsEmpty());

    CVXStringMap assigned;
    assigned.Add(u"gone", u"1");
    assigned = copy;
    EXPECT_EQ(assigned.lGetSize(), 150u);
    EXPECT_TRUE(assigned.Find(u"gone").IsEmpty());
    EXPECT_EQ(assigned.Find(u"new"), CVXString(u"x"));
    assigned = assigned; // self-assignment keeps everything
    EXPECT_EQ(assigned.lGetSize(), 150u);
    // Destroying all three frees every item once (the sanitizer builds check it).
}
