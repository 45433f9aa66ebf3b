#include "geodesy/Geoid.h"

#include "platform/File.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>

namespace vx {

namespace {

std::mutex g_geoidMutex;

std::map<int, IGeoidModel *> &GeoidModels() {
    static std::map<int, IGeoidModel *> models;
    return models;
}

constexpr unsigned int nGtxHeaderSize = 40;
// GTX marks missing nodes with -88.8888; anything at or below it counts as no data.
constexpr double dGtxNoData = -88.8888;
// A grid whose columns cover this many degrees or more wraps in longitude.
constexpr double dFullCircleDeg = 360.0 - 1e-9;

uint64_t BigEndian(const unsigned char *p, int n) {
    uint64_t v = 0;
    for (int i = 0; i < n; ++i)
        v = (v << 8) | p[i];
    return v;
}

double BigEndianDouble(const unsigned char *p) {
    const uint64_t bits = BigEndian(p, 8);
    double d = 0.0;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

float BigEndianFloat(const unsigned char *p) {
    const uint32_t bits = static_cast<uint32_t>(BigEndian(p, 4));
    float f = 0.0f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

// Reads exactly n bytes at the current position.
bool ReadAll(CFile &file, unsigned char *buffer, uint64_t n) {
    while (n > 0) {
        const unsigned int chunk = n > (1u << 30) ? (1u << 30) : static_cast<unsigned int>(n);
        const unsigned int got = file.Read(buffer, chunk);
        if (got == 0) return false;
        buffer += got;
        n -= got;
    }
    return true;
}

} // namespace

void RegisterGeoidModel(int nModel, IGeoidModel *model) {
    const std::lock_guard<std::mutex> lock(g_geoidMutex);
    if (model == nullptr)
        GeoidModels().erase(nModel);
    else
        GeoidModels()[nModel] = model;
}

double dGetGeoidHeight(int nModel, double latDeg, double lonDeg) {
    IGeoidModel *model = nullptr;
    {
        const std::lock_guard<std::mutex> lock(g_geoidMutex);
        const auto it = GeoidModels().find(nModel);
        if (it != GeoidModels().end()) model = it->second;
    }
    return model != nullptr ? model->GeoidHeight(latDeg, lonDeg) : dNoGeoidHeight;
}

CGtxGeoidModel::CGtxGeoidModel(const CVXString &path) {
    CFile file;
    if (!file.Open(path, CFile::modeRead | CFile::shareDenyNone)) return;
    try {
        unsigned char header[nGtxHeaderSize];
        if (!ReadAll(file, header, nGtxHeaderSize)) return;
        const double lat0 = BigEndianDouble(header);
        const double lon0 = BigEndianDouble(header + 8);
        const double dLat = BigEndianDouble(header + 16);
        const double dLon = BigEndianDouble(header + 24);
        const auto rows = static_cast<int32_t>(BigEndian(header + 32, 4));
        const auto cols = static_cast<int32_t>(BigEndian(header + 36, 4));
        const uint64_t length = file.GetLength();
        // Size the grid only from a header that the file can back: no allocation beyond it.
        if (rows < 2 || cols < 2 || !(dLat > 0.0) || !(dLon > 0.0) || !std::isfinite(lat0) ||
            !std::isfinite(lon0) ||
            static_cast<uint64_t>(rows) * static_cast<uint64_t>(cols) >
                (length - nGtxHeaderSize) / 4)
            return;
        const uint64_t count = static_cast<uint64_t>(rows) * static_cast<uint64_t>(cols);
        std::vector<unsigned char> raw(count * 4);
        if (!ReadAll(file, raw.data(), raw.size())) return;
        m_Values.resize(count);
        for (uint64_t i = 0; i < count; ++i)
            m_Values[i] = BigEndianFloat(raw.data() + 4 * i);
        m_dLat0 = lat0;
        m_dLon0 = lon0;
        m_dDLat = dLat;
        m_dDLon = dLon;
        m_nRows = rows;
        m_nCols = cols;
        m_bWrap = cols * dLon >= dFullCircleDeg;
    } catch (const CFileException &) {
        m_Values.clear();
    }
}

double CGtxGeoidModel::NodeValue(int row, int col) const {
    if (m_bWrap && col >= m_nCols) col -= m_nCols;
    return m_Values[static_cast<size_t>(row) * static_cast<size_t>(m_nCols) +
                    static_cast<size_t>(col)];
}

double CGtxGeoidModel::GeoidHeight(double latDeg, double lonDeg) {
    if (!bIsLoaded()) return dNoGeoidHeight;
    const double r = (latDeg - m_dLat0) / m_dDLat;
    double lon = std::fmod(lonDeg - m_dLon0, 360.0);
    if (lon < 0.0) lon += 360.0;
    const double c = lon / m_dDLon;
    const double maxCol = m_bWrap ? m_nCols : m_nCols - 1;
    if (!(r >= 0.0 && r <= m_nRows - 1) || !(c >= 0.0 && c <= maxCol)) return dNoGeoidHeight;
    int r0 = static_cast<int>(std::floor(r));
    int c0 = static_cast<int>(std::floor(c));
    if (r0 >= m_nRows - 1) r0 = m_nRows - 2;
    if (!m_bWrap && c0 >= m_nCols - 1) c0 = m_nCols - 2;
    if (m_bWrap && c0 >= m_nCols) c0 = m_nCols - 1;
    const double fr = r - r0;
    const double fc = c - c0;
    const double v00 = NodeValue(r0, c0);
    const double v01 = NodeValue(r0, c0 + 1);
    const double v10 = NodeValue(r0 + 1, c0);
    const double v11 = NodeValue(r0 + 1, c0 + 1);
    if (v00 <= dGtxNoData || v01 <= dGtxNoData || v10 <= dGtxNoData || v11 <= dGtxNoData)
        return dNoGeoidHeight;
    return (v00 * (1.0 - fc) + v01 * fc) * (1.0 - fr) + (v10 * (1.0 - fc) + v11 * fc) * fr;
}

} // namespace vx
