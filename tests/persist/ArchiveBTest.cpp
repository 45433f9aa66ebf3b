#include "persist/ArchiveB.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/File.h"
#include "support/ArchiveTestSupport.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace vx;
using vxtest::Ascii;
using vxtest::Bytes;
using vxtest::Load;
using vxtest::Store;

namespace vxtest {

// A small serialisable class: a number, a double, a string and a link to another object.
class CArcPoint : public CSerObject {
    VX_DECLARE_SERIAL(CArcPoint)
public:
    int32_t a = 0;
    double d = 0.0;
    CVXString s;
    ISerObject *link = nullptr;
    void SerializeB(CArchiveB &ar) override {
        if (ar.IsStoring()) {
            ar << a << d << s;
            ar.WriteObject(link);
        } else {
            ar >> a >> d >> s;
            link = ar.ReadObject(nullptr);
        }
    }
};
VX_IMPLEMENT_SERIAL(CArcPoint, 1)

// A versionable class that reports the schema it was read with.
class CArcVersioned : public CSerObject {
    VX_DECLARE_SERIAL(CArcVersioned)
public:
    unsigned int seen = 0, second = 0;
    void SerializeB(CArchiveB &ar) override {
        if (ar.IsLoading()) {
            seen = ar.GetObjectSchema();
            second = ar.GetObjectSchema();
        }
    }
};
VX_IMPLEMENT_SERIAL(CArcVersioned, VERSIONABLE_SCHEMA | 1)

// A container whose loader sizes itself by a count from the stream.
class CArcBag : public CSerObject {
    VX_DECLARE_SERIAL(CArcBag)
public:
    std::vector<std::unique_ptr<ISerObject>> items;
    void SerializeB(CArchiveB &ar) override {
        if (ar.IsStoring()) {
            ar.WriteCount(static_cast<uint32_t>(items.size()));
            for (auto &i : items)
                ar.WriteObject(i.get());
        } else {
            const uint32_t n = ar.ReadCount(2);
            for (uint32_t i = 0; i < n; ++i)
                items.emplace_back(ar.ReadObject(nullptr));
        }
    }
};
VX_IMPLEMENT_SERIAL(CArcBag, 0)

} // namespace vxtest

using vxtest::CArcBag;
using vxtest::CArcPoint;
using vxtest::CArcVersioned;

namespace {

Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes r;
    for (const Bytes &p : parts)
        r.insert(r.end(), p.begin(), p.end());
    return r;
}

// The fields of a CArcPoint with a=7, d=0.5, an empty string and a null link.
const Bytes kPointFields = {7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xE0, 0x3F, 0xFF, 0xFE, 0xFF, 0, 0, 0};

} // namespace

TEST(ArchiveB, ObjectTagsClassesAndBackReferences) {
    CArcPoint p1, p2;
    p1.a = p2.a = 7;
    p1.d = p2.d = 0.5;
    const Bytes bytes = Store([&](CArchiveB &ar) {
        ar.WriteObject(&p1);
        ar.WriteObject(&p2);
        ar.WriteObject(&p1);
        ar.WriteObject(nullptr);
    });
    const Bytes expected = Cat({{0xFF, 0xFF, 0x01, 0x00, 0x09, 0x00},
                                Ascii("CArcPoint"),
                                kPointFields,
                                {0x01, 0x80},
                                kPointFields,
                                {0x02, 0x00},
                                {0x00, 0x00}});
    EXPECT_EQ(vxtest::Hex(bytes), vxtest::Hex(expected));

    Load(bytes, [](CArchiveB &ar) {
        std::unique_ptr<ISerObject> a(ar.ReadObject(CArcPoint::RTC()));
        std::unique_ptr<ISerObject> b(ar.ReadObject(nullptr));
        ISerObject *again = ar.ReadObject(nullptr);
        EXPECT_EQ(again, a.get());
        EXPECT_EQ(ar.ReadObject(nullptr), nullptr);
        auto *pa = dynamic_cast<CArcPoint *>(a.get());
        ASSERT_NE(pa, nullptr);
        EXPECT_EQ(pa->a, 7);
        EXPECT_EQ(pa->d, 0.5);
        EXPECT_TRUE(pa->s.IsEmpty());
        EXPECT_NE(b.get(), a.get());
    });
}

TEST(ArchiveB, SelfReferenceResolvesBecauseTheIndexComesBeforeTheFields) {
    CArcPoint p;
    p.link = &p;
    const Bytes bytes = Store([&](CArchiveB &ar) { ar.WriteObject(&p); });
    // Class index 1, object index 2: the link is a back-reference 02 00.
    EXPECT_EQ(bytes[bytes.size() - 2], 0x02);
    Load(bytes, [](CArchiveB &ar) {
        std::unique_ptr<ISerObject> o(ar.ReadObject(nullptr));
        EXPECT_EQ(static_cast<CArcPoint *>(o.get())->link, o.get());
    });
}

TEST(ArchiveB, CountsAndStrings) {
    const Bytes counts = Store([](CArchiveB &ar) {
        ar.WriteCount(65534);
        ar.WriteCount(65535);
    });
    EXPECT_EQ(counts, Bytes({0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}));

    EXPECT_EQ(Store([](CArchiveB &ar) { ar << CVXString(); }), Bytes({0xFF, 0xFE, 0xFF, 0x00}));
    const Bytes s254 = Store([](CArchiveB &ar) { ar << CVXString(u'x', 254); });
    ASSERT_EQ(s254.size(), 4u + 508u);
    EXPECT_EQ(s254[3], 0xFE);
    const Bytes s255 = Store([](CArchiveB &ar) { ar << CVXString(u'x', 255); });
    EXPECT_EQ(Bytes(s255.begin(), s255.begin() + 6), Bytes({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0x00}));
    EXPECT_EQ(Bytes(s255.begin() + 6, s255.begin() + 8), Bytes({'x', 0}));

    // Old 8-bit strings load; wide ones round-trip, surrogates included.
    Load({0x03, 'a', 'b', 'c'}, [](CArchiveB &ar) {
        CVXString s;
        ar >> s;
        EXPECT_EQ(s, u"abc");
    });
    const CVXString wide(u"\u00E9t\u00E9 \U0001F600");
    Load(Store([&](CArchiveB &ar) { ar << wide; }), [&](CArchiveB &ar) {
        CVXString s;
        ar >> s;
        EXPECT_EQ(s, wide);
    });
}

TEST(ArchiveB, PlainValuesStraddleBufferRefills) {
    const Bytes bytes = Store([](CArchiveB &ar) {
        for (int i = 0; i < 300; ++i)
            ar << static_cast<uint8_t>(i) << static_cast<double>(i) * 0.25 << int64_t{-i} << true
               << static_cast<char16_t>(0x263A) << 1.5f;
    });
    ASSERT_EQ(bytes.size(), 300u * (1 + 8 + 8 + 1 + 2 + 4));
    // Buffer of 128 bytes: many values lie across a refill.
    Load(
        bytes,
        [](CArchiveB &ar) {
            for (int i = 0; i < 300; ++i) {
                uint8_t b;
                double d;
                int64_t q;
                bool t;
                char16_t c;
                float f;
                ar >> b >> d >> q >> t >> c >> f;
                ASSERT_EQ(b, static_cast<uint8_t>(i));
                ASSERT_EQ(d, i * 0.25);
                ASSERT_EQ(q, -i);
                ASSERT_TRUE(t);
                ASSERT_EQ(c, 0x263A);
                ASSERT_EQ(f, 1.5f);
            }
        },
        128);
}

TEST(ArchiveB, SchemaChecks) {
    // Schema 2 in the stream, 1 in the program, class not versionable: badSchema.
    const Bytes bad = Cat({{0xFF, 0xFF, 0x02, 0x00, 0x09, 0x00}, Ascii("CArcPoint"), kPointFields});
    try {
        Load(bad, [](CArchiveB &ar) { delete ar.ReadObject(nullptr); });
        FAIL();
    } catch (const CArchiveBException &e) {
        EXPECT_EQ(e.m_cause, CArchiveBException::badSchema);
    }
    // Versionable: the object reads the schema of the stream, once.
    const Bytes v = Cat({{0xFF, 0xFF, 0x02, 0x00, 0x0D, 0x00}, Ascii("CArcVersioned")});
    Load(v, [](CArchiveB &ar) {
        std::unique_ptr<ISerObject> o(ar.ReadObject(nullptr));
        auto *cv = static_cast<CArcVersioned *>(o.get());
        EXPECT_EQ(cv->seen, 2u);
        EXPECT_EQ(cv->second, 0xFFFFFFFFu);
    });
}

TEST(ArchiveB, FailuresRaiseTheirCauses) {
    auto cause = [](auto f) {
        try {
            f();
        } catch (const CArchiveBException &e) {
            return e.m_cause;
        }
        return -1;
    };
    CMemFile file;
    {
        CArchiveB store(&file, CArchiveB::store);
        EXPECT_EQ(cause([&] {
                      int32_t x;
                      store >> x;
                  }),
                  CArchiveBException::writeOnly);
        EXPECT_EQ(cause([&] { store.ReadObject(nullptr); }), CArchiveBException::writeOnly);
        EXPECT_EQ(cause([&] { store.WriteClass(nullptr); }), CArchiveBException::badClass);
        EXPECT_EQ(cause([&] { store.ReadClass(nullptr, nullptr, nullptr); }),
                  CArchiveBException::genericException);
        store.Abort();
    }
    Load({}, [&](CArchiveB &ar) {
        EXPECT_EQ(cause([&] { ar << 1; }), CArchiveBException::readOnly);
        EXPECT_EQ(cause([&] {
                      int32_t x;
                      ar >> x;
                  }),
                  CArchiveBException::endOfFile);
    });
    // An unknown class name, a reference past the table, a class index where an object was.
    const Bytes unknown = Cat({{0xFF, 0xFF, 0x01, 0x00, 0x04, 0x00}, Ascii("Nope")});
    EXPECT_EQ(cause([&] { Load(unknown, [](CArchiveB &ar) { ar.ReadObject(nullptr); }); }),
              CArchiveBException::badClass);
    EXPECT_EQ(cause([&] {
                  Load({0x05, 0x00}, [](CArchiveB &ar) { ar.ReadObject(nullptr); });
              }),
              CArchiveBException::badIndex);
    EXPECT_EQ(cause([&] {
                  Load({0x01, 0x80}, [](CArchiveB &ar) { ar.ReadObject(nullptr); });
              }),
              CArchiveBException::badIndex);
    // The object of another class than asked for.
    CArcPoint p;
    const Bytes one = Store([&](CArchiveB &ar) {
        ar.WriteObject(&p);
        ar.WriteObject(&p);
    });
    EXPECT_EQ(cause([&] {
                  Load(one, [](CArchiveB &ar) {
                      std::unique_ptr<ISerObject> first(ar.ReadObject(nullptr));
                      ar.ReadObject(CArcBag::RTC());
                  });
              }),
              CArchiveBException::badClass);
}

TEST(ArchiveB, ClassNamesOf64UnitsDoNotLoad) {
    CMemFile file;
    {
        CArchiveB ar(&file, CArchiveB::store);
        ar << uint16_t{1} << uint16_t{64};
        ar.Write(std::string(64, 'A').data(), 64);
    }
    file.SeekToBegin();
    CArchiveB ar(&file, CArchiveB::load);
    unsigned int schema = 0;
    EXPECT_EQ(CRuntimeCreator::Load(ar, &schema), nullptr);
    EXPECT_EQ(schema, 1u);
    EXPECT_EQ(CRuntimeCreator::Load(ar, nullptr), nullptr);
}

TEST(ArchiveB, HostileStreamsRaiseAndNeverCrash) {
    CArcBag bag;
    for (int i = 0; i < 5; ++i) {
        auto p = std::make_unique<CArcPoint>();
        p->a = i;
        p->s = CVXString(u"point");
        bag.items.push_back(std::move(p));
    }
    bag.items.push_back(nullptr);
    const Bytes good = Store([&](CArchiveB &ar) { ar.WriteObject(&bag); });

    // Truncated at every byte: endOfFile, never a half-filled success. A cut inside the class
    // name makes the class unknown (a short name read gives no class): badClass there.
    auto inClassName = [](size_t cut) {
        // CArcBag's name; CArcPoint's name lies at 21..29, but below 27 the bag's count of six
        // elements (two bytes each at least) already finds too few bytes behind it.
        return (cut >= 6 && cut < 6 + 7) || (cut >= 27 && cut < 30);
    };
    for (size_t cut = 0; cut < good.size(); ++cut) {
        const Bytes part(good.begin(), good.begin() + static_cast<long>(cut));
        try {
            Load(part, [](CArchiveB &ar) { delete ar.ReadObject(nullptr); });
            ADD_FAILURE() << "truncated at " << cut << " loaded";
        } catch (const CArchiveBException &e) {
            const int expected =
                inClassName(cut) ? CArchiveBException::badClass : CArchiveBException::endOfFile;
            EXPECT_EQ(e.m_cause, expected) << "cut at " << cut;
        }
    }
    // A huge count with little behind it: refused before anything is sized by it.
    const Bytes huge = Cat({{0xFF, 0xFF, 0x00, 0x00, 0x07, 0x00},
                            Ascii("CArcBag"),
                            {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}});
    EXPECT_THROW(Load(huge, [](CArchiveB &ar) { delete ar.ReadObject(nullptr); }),
                 CArchiveBException);
    // A string claiming two billion units.
    EXPECT_THROW(Load({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0x7F},
                      [](CArchiveB &ar) {
                          CVXString s;
                          ar >> s;
                      }),
                 CArchiveBException);
    // Deep nesting: bags in bags far beyond any real document.
    Bytes deep = Cat({{0xFF, 0xFF, 0x00, 0x00, 0x07, 0x00}, Ascii("CArcBag"), {0x01, 0x00}});
    for (int i = 0; i < 5000; ++i)
        deep.insert(deep.end(), {0x01, 0x80, 0x01, 0x00});
    EXPECT_THROW(Load(deep, [](CArchiveB &ar) { delete ar.ReadObject(nullptr); }),
                 CArchiveBException);
    // Random bytes, and random changes to a good stream.
    std::mt19937 rng(12345);
    for (int round = 0; round < 2000; ++round) {
        Bytes bytes = good;
        if (round % 2) {
            bytes.resize(rng() % 64);
            for (auto &b : bytes)
                b = static_cast<uint8_t>(rng());
        } else {
            for (int k = 0; k < 3; ++k)
                bytes[rng() % bytes.size()] = static_cast<uint8_t>(rng());
        }
        try {
            Load(bytes, [](CArchiveB &ar) { delete ar.ReadObject(nullptr); });
        } catch (const CArchiveBException &) {
        }
    }
}

TEST(ArchiveB, FlushWhileLoadingGivesBackTheUnreadBytes) {
    CMemFile file;
    {
        CArchiveB ar(&file, CArchiveB::store);
        ar << int32_t{1} << int32_t{2} << int32_t{3};
    }
    file.SeekToBegin();
    {
        CArchiveB ar(&file, CArchiveB::load);
        int32_t x;
        ar >> x;
        ar.Flush();
        EXPECT_EQ(file.GetPosition(), 4u);
    }
    // Lines of UTF-16 text: LF ends a line, CR LF too.
    const Bytes text = Store([](CArchiveB &ar) { ar.WriteString(CVXString(u"ab\ncd\r\nlast")); });
    Load(text, [](CArchiveB &ar) {
        CVXString line;
        EXPECT_TRUE(ar.ReadString(line));
        EXPECT_EQ(line, u"ab");
        EXPECT_TRUE(ar.ReadString(line));
        EXPECT_EQ(line, u"cd");
        EXPECT_TRUE(ar.ReadString(line));
        EXPECT_EQ(line, u"last");
        EXPECT_FALSE(ar.ReadString(line));
        EXPECT_TRUE(line.IsEmpty());
    });
}

TEST(ArchiveB, FileBackedArchiveWithLargeBlocks) {
    vxtest::TempDir dir;
    const CVXString path(dir.file("big.bin").c_str());
    std::vector<uint8_t> block(10000);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<uint8_t>(i * 7);
    {
        CFile f(path, CFile::modeCreate | CFile::modeWrite);
        CArchiveB ar(&f, CArchiveB::store, 256);
        ar << int16_t{-2};
        ar.Write(block.data(), static_cast<unsigned int>(block.size()));
        ar << 2.5;
    }
    const Bytes bytes = vxtest::ReadBytes(dir.file("big.bin"));
    ASSERT_EQ(bytes.size(), 2u + 10000u + 8u);
    EXPECT_EQ(bytes[0], 0xFE);
    EXPECT_EQ(bytes[2 + 9999], block[9999]);
    CFile f(path, CFile::modeRead);
    CArchiveB ar(&f, CArchiveB::load, 256);
    int16_t s;
    std::vector<uint8_t> back(10000);
    double d;
    ar >> s;
    ar.EnsureRead(back.data(), 10000);
    ar >> d;
    EXPECT_EQ(s, -2);
    EXPECT_EQ(back, block);
    EXPECT_EQ(d, 2.5);
    EXPECT_EQ(ar.Read(back.data(), 10), 0u);
}
