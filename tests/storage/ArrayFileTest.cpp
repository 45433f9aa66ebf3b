#include "platform/Errors.h"
#include "storage/BoolArray.h"
#include "storage/ULongArrayFile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <unistd.h>
#include <vector>

using namespace vx;

namespace {

// Reads element i straight from the array's file, past the cache.
class CInspectableArray : public CULongArrayFile {
public:
    using CULongArrayFile::CULongArrayFile;
    uint32_t OnDisk(uint64_t i) {
        uint32_t value = 0xDEADBEEF;
        EXPECT_EQ(::pread(m_File.GetHandle(), &value, 4, static_cast<off_t>(4 * i)), 4);
        return value;
    }
    uint64_t FileLength() const { return m_File.GetLength(); }
};

} // namespace

TEST(ULongArrayFile, LayoutGrowthAndZeroing) {
    CInspectableArray array(10);
    EXPECT_EQ(array.lGetSize(), 10u);
    EXPECT_EQ(array.FileLength(), 40u);
    EXPECT_EQ(array.GetAt(9), 0u);
    array.SetAt(2, 0x01020304);
    EXPECT_EQ(array.GetAt(2), 0x01020304u);
    EXPECT_EQ(array.OnDisk(2), 0u); // still only in the cache
    array.DumpCache();
    // Element 2 at byte 8, in the machine's byte order.
    EXPECT_EQ(array.OnDisk(2), 0x01020304u);

    // Far past the end: everything in between reads 0, the size is i + 1.
    array.SetAtGrow(5000, 77);
    EXPECT_EQ(array.lGetSize(), 5001u);
    EXPECT_EQ(array.FileLength(), 4u * 5001u);
    EXPECT_EQ(array.GetAt(5000), 77u);
    EXPECT_EQ(array.GetAt(2), 0x01020304u);
    for (uint64_t i = 10; i < 5000; i += 499)
        EXPECT_EQ(array.GetAt(i), 0u) << i;
    EXPECT_EQ(array.lAdd(88), 5001u);
    EXPECT_EQ(array.lGetSize(), 5002u);
    EXPECT_EQ(array.GetAt(5001), 88u);

    // SetToZero after a SetAt still in the cache: written, then zeroed in the file.
    array.SetAt(3, 33);
    array.SetToZero(3);
    EXPECT_EQ(array.GetAt(3), 0u);
    EXPECT_EQ(array.GetAt(5001), 0u);
    EXPECT_EQ(array.GetAt(2), 0x01020304u);
    EXPECT_EQ(array.lGetSize(), 5002u);
    array.SetToZero(99999); // past the end: nothing to clear
    EXPECT_EQ(array.FileLength(), 4u * 5002u);
}

TEST(ULongArrayFile, CacheHoldsAThousandAndOne) {
    CULongArrayFile array(3000);
    for (uint32_t i = 0; i < 1500; ++i)
        array.SetAt(i, i);
    // The eviction runs before each new entry, so the limit is overshot by one.
    EXPECT_EQ(array.GetCount(), 1001);
    EXPECT_THROW(array.SetAt(uint64_t{1} << 62, 1), CInvalidArgException);
}

TEST(ULongArrayFile, RandomOperationsMatchAVector) {
    CULongArrayFile array(100);
    std::vector<uint32_t> model(100, 0);
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> op(0, 99);
    std::uniform_int_distribution<uint32_t> value;
    for (int step = 0; step < 20000; ++step) {
        const int o = op(rng);
        const uint64_t i = std::uniform_int_distribution<uint64_t>(0, model.size() - 1)(rng);
        if (o < 45) {
            ASSERT_EQ(array.GetAt(i), model[i]) << step;
        } else if (o < 90) {
            const uint32_t v = value(rng);
            array.SetAt(i, v);
            model[i] = v;
        } else if (o < 95) {
            const uint32_t v = value(rng);
            array.lAdd(v);
            model.push_back(v);
        } else if (o < 98) {
            const uint64_t j = model.size() + i % 50;
            array.SetAtGrow(j, 5);
            model.resize(j + 1, 0);
            model[j] = 5;
        } else if (o == 98) {
            const uint64_t from = model.size() - 1 - i % 20;
            array.SetToZero(from);
            std::fill(model.begin() + static_cast<ptrdiff_t>(from), model.end(), 0);
        } else {
            array.DumpCache();
        }
        ASSERT_EQ(array.lGetSize(), model.size()) << step;
    }
    for (uint64_t i = 0; i < model.size(); ++i)
        ASSERT_EQ(array.GetAt(i), model[i]) << i;
}

TEST(ULongArrayFile, SparseArrayBeyondFourGibibytes) {
    // 2^32 + 16 elements: a file of 16 GiB that the file system must keep sparse. Elements
    // beyond 2^32 must not alias the low ones.
    constexpr uint64_t kHigh = (uint64_t{1} << 32) + 5;
    std::unique_ptr<CULongArrayFile> pArray;
    try {
        pArray = std::make_unique<CULongArrayFile>((uint64_t{1} << 32) + 16);
    } catch (const CFileException &e) {
        GTEST_SKIP() << "the file system refuses a sparse 16 GiB file: " << e.what();
    }
    pArray->SetAt(kHigh, 0xCAFE);
    pArray->SetAt(5, 0xBEEF);
    pArray->DumpCache();
    EXPECT_EQ(pArray->GetAt(kHigh), 0xCAFEu);
    EXPECT_EQ(pArray->GetAt(5), 0xBEEFu);
    EXPECT_EQ(pArray->GetAt(kHigh + 1), 0u);
    EXPECT_EQ(pArray->lAdd(9), (uint64_t{1} << 32) + 16);

    // Bits past 2^32 in a bit array: bit 2^32 + 1 is bit 1 of word 2^27.
    CBoolArrayFile bits(uint64_t{1} << 33);
    bits.Set((uint64_t{1} << 32) + 1);
    EXPECT_TRUE(bits.bSet((uint64_t{1} << 32) + 1));
    EXPECT_FALSE(bits.bSet(1));
    EXPECT_EQ(bits.GetAt(uint64_t{1} << 27), 2u);
}

TEST(BoolArrayFile, BitsWordsAndGrowth) {
    CBoolArrayFile bits(0);
    EXPECT_EQ(bits.GetSize(), 0u);
    EXPECT_EQ(bits.lGetSize(), 1u); // one word even for no bits
    EXPECT_FALSE(bits.bSetGrow(0)); // never grows
    EXPECT_EQ(bits.GetSize(), 0u);
    bits.SetGrow(0);
    EXPECT_EQ(bits.GetSize(), 1u);
    EXPECT_TRUE(bits.bSetGrow(0));

    // Bit 31 is the top of word 0, bit 32 the bottom of word 1.
    bits.SetGrow(31);
    bits.SetGrow(32);
    EXPECT_EQ(bits.GetAt(0), 0x80000001u);
    EXPECT_EQ(bits.GetAt(1), 1u);
    EXPECT_EQ(bits.GetSize(), 33u);
    bits.Reset(31);
    EXPECT_EQ(bits.GetAt(0), 1u);

    // Resetting past the end grows the size here (unlike CBoolArray).
    bits.ResetGrow(100);
    EXPECT_EQ(bits.GetSize(), 101u);
    EXPECT_EQ(bits.lGetSize(), 4u); // word 3 was added
    EXPECT_FALSE(bits.bSet(100));
}

TEST(BoolArray, WordsGrowthAndClearing) {
    CBoolArray bits(32);
    EXPECT_EQ(bits.RawSize(), 2); // 32 / 32 + 1
    bits.Set(31);
    bits.Set(32);
    EXPECT_EQ(bits.GetData()[0], 0x80000000u);
    EXPECT_EQ(bits.GetData()[1], 1u);
    EXPECT_TRUE(bits.bSet(32)); // beyond the size, inside the words: reached unchecked

    // ResetGrow past the end does nothing at all; bSetGrow never grows.
    bits.ResetGrow(40);
    EXPECT_EQ(bits.GetSize(), 32);
    EXPECT_FALSE(bits.bSetGrow(32));

    // Grow keeps the content and takes exactly 64 / 32 + 1 = 3 words.
    bits.SetGrow(64);
    EXPECT_EQ(bits.GetSize(), 65);
    EXPECT_EQ(bits.RawSize(), 3);
    EXPECT_EQ(bits.GetData()[0], 0x80000000u);
    EXPECT_EQ(bits.GetData()[2], 1u);
    bits.SetGrow(40); // inside: no reallocation
    EXPECT_EQ(bits.GetSize(), 65);

    // SetSize discards the content.
    bits.SetSize(10);
    EXPECT_EQ(bits.RawSize(), 1);
    EXPECT_EQ(bits.GetData()[0], 0u);

    EXPECT_THROW(bits.Set(32), CInvalidArgException);
    EXPECT_THROW(bits.bSet(-1), CInvalidArgException);
    EXPECT_THROW(CBoolArray(-1), CInvalidArgException);
}

TEST(ULongArrayFileArray, OwnsItsArrays) {
    CULongArrayFileArray arrays;
    EXPECT_EQ(arrays.Add(new CULongArrayFile(1)), 0);
    EXPECT_EQ(arrays.Add(new CULongArrayFile(2)), 1);
    EXPECT_EQ(arrays.Add(new CULongArrayFile(3)), 2);
    arrays.SetAt(1, new CULongArrayFile(20)); // deletes the one it replaces
    EXPECT_EQ(arrays.GetAt(1)->lGetSize(), 20u);
    arrays.RemoveAt(0);
    EXPECT_EQ(arrays.GetSize(), 2);
    EXPECT_EQ(arrays.GetAt(1)->lGetSize(), 3u);
    EXPECT_THROW(arrays.GetAt(2), CInvalidArgException);
    arrays.RemoveAll();
    EXPECT_EQ(arrays.GetSize(), 0);
}
