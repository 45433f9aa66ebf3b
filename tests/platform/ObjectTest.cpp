#include "platform/Object.h"
#include "platform/VXString.h"
#include "platform/Geometry2D.h"
#include "platform/Lists.h"

#include <gtest/gtest.h>

#include <sstream>

struct GlobalThing {};

namespace outer::inner {
struct Deep {};
template <class A, class B>
struct Pair {};
} // namespace outer::inner

namespace {
struct Hidden : vx::CObject {};
} // namespace

using namespace vx;

TEST(Object, BareClassNamesDropNamespaces) {
    EXPECT_EQ(BareClassName(typeid(CObList)), "CObList");
    EXPECT_EQ(BareClassName(typeid(GlobalThing)), "GlobalThing");
    EXPECT_EQ(BareClassName(typeid(outer::inner::Deep)), "Deep");
    EXPECT_EQ(BareClassName(typeid(outer::inner::Pair<CObject *, outer::inner::Deep>)),
              "Pair<CObject*, Deep>");
    EXPECT_EQ(BareClassName(typeid(Hidden)), "Hidden");

    const Hidden hidden;
    const CObject &asBase = hidden;
    EXPECT_STREQ(asBase.GetRuntimeClassName(), "Hidden");
    // The name is kept per type: the same pointer every time.
    EXPECT_EQ(asBase.GetRuntimeClassName(), Hidden().GetRuntimeClassName());

    std::ostringstream text;
    CDumpContext dc(text);
    asBase.Dump(dc);
    dc << 7 << " " << CVXString(u"txt") << " " << 2.5;
    EXPECT_EQ(text.str().rfind("a Hidden at ", 0), 0u);
    EXPECT_NE(text.str().find("7 txt 2.5"), std::string::npos);
}

TEST(Geometry2D, RectEdgesAndPoints) {
    CRect r(10, 20, 5, 8);
    EXPECT_TRUE(r.IsRectEmpty());
    r.NormalizeRect();
    EXPECT_EQ(r, CRect(5, 8, 10, 20));
    EXPECT_EQ(r.Width(), 5);
    EXPECT_EQ(r.Height(), 12);
    EXPECT_FALSE(r.IsRectEmpty());
    EXPECT_TRUE(r.PtInRect(CPoint(5, 8)));
    EXPECT_FALSE(r.PtInRect(CPoint(10, 8))); // right edge is outside
    EXPECT_FALSE(r.PtInRect(CPoint(5, 20))); // bottom edge is outside
    EXPECT_TRUE(CRect(0, 0, 0, 5).IsRectEmpty());
    EXPECT_EQ(CRect(INT32_MIN, 0, INT32_MAX, 1).Width(), 4294967295LL);
}
