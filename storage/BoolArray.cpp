#include "storage/BoolArray.h"

#include "platform/Errors.h"

#include <algorithm>
#include <string>

namespace vx {

namespace {

int64_t CheckedCount(int64_t n) {
    if (n < 0) throw CInvalidArgException("CBoolArray: negative size " + std::to_string(n));
    return n;
}

std::unique_ptr<uint32_t[]> ClearWords(int64_t nWords) {
    return std::make_unique<uint32_t[]>(static_cast<size_t>(nWords)); // value-initialised: 0
}

} // namespace

CBoolArray::CBoolArray(int64_t nBits) {
    SetSize(nBits);
}

void CBoolArray::SetSize(int64_t n) {
    const auto nWords = static_cast<int64_t>(bitword::WordsFor(CheckedCount(n)));
    m_pData = ClearWords(nWords);
    m_nRaw = nWords;
    m_nSize = n;
}

size_t CBoolArray::nWordOf(int64_t i) const {
    const uint64_t nWord = bitword::Word(static_cast<uint64_t>(i));
    if (i < 0 || nWord >= static_cast<uint64_t>(m_nRaw))
        throw CInvalidArgException("CBoolArray: bit " + std::to_string(i) +
                                   " lies outside the allocated words");
    return static_cast<size_t>(nWord);
}

void CBoolArray::Grow(int64_t n) {
    const auto nWords = static_cast<int64_t>(bitword::WordsFor(CheckedCount(n)));
    if (nWords > m_nRaw) {
        auto pData = ClearWords(nWords);
        std::copy_n(m_pData.get(), m_nRaw, pData.get());
        m_pData = std::move(pData);
        m_nRaw = nWords;
    }
    m_nSize = n;
}

void CBoolArray::SetGrow(int64_t i) {
    if (i == INT64_MAX) throw CInvalidArgException("CBoolArray: no bit after the largest index");
    if (i >= m_nSize) Grow(i + 1);
    Set(i);
}

// ---- CBoolArrayFile ----

void CBoolArrayFile::GrowFor(uint64_t i) {
    if (bitword::Word(i) >= lGetSize()) SetAtGrow(bitword::Word(i), 0);
}

void CBoolArrayFile::SetGrow(uint64_t i) {
    GrowFor(i);
    Set(i);
    if (i >= m_nBits) m_nBits = i + 1;
}

void CBoolArrayFile::ResetGrow(uint64_t i) {
    GrowFor(i);
    Reset(i);
    if (i >= m_nBits) m_nBits = i + 1;
}

} // namespace vx
