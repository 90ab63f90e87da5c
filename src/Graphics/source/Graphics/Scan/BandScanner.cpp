// SPDX-License-Identifier: MIT
// Turns sides of the vertex loops into band edges in fixed point, then walks and sweeps band after band.
#include "BandScanner.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>

#include "../Kernels/RowKernels.h"

namespace Graphics {

namespace {

constexpr size_t kBandBytes = 128U << 10; // of cells: a band stays in the second-level cache
constexpr uint32_t kLeastBound = 9;       // with fewer overlaps, sorting takes longer than it saves
constexpr int64_t kLeastResolved = 6;
constexpr int64_t kPixelsApart = 10;
constexpr int64_t kRowsPerEdge = 8; // each edge is put in its place once
constexpr int64_t kCreditPerEdge = 2;
constexpr int64_t kFirstCredit = 64;
constexpr int32_t kFarFine = 1 << 22;    // band edges represent vertices up to 32768 pixels
constexpr int32_t kTallSubRows = 14 * 8; // from this height of an upright edge on, a search for equal rows pays

/// Rows of a band, a power of two.
int32_t BandRows(size_t rowBytes, int32_t rows) noexcept {
    int32_t count = 1;
    while (count < 64 && rowBytes * static_cast<size_t>(count) * 2 <= kBandBytes && count < rows) {
        count *= 2;
    }
    return count;
}

/// Wraps far outside the edge, where it is about order alone.
int64_t PositionAt(const BandEdge& e, int32_t y) noexcept {
    return static_cast<int64_t>(static_cast<uint64_t>(e.x) +
                                static_cast<uint64_t>(e.step) * static_cast<uint64_t>(y - e.y));
}

constexpr int64_t kOne = int64_t{1} << kBandFraction;

} // namespace

// The exact position at step k is P_k = x + (error + denominator + k dx) / denominator, a multiple of 1 / dy.
// Claim: X_k, in units of 2^-42, has the same integer part as P_k.
// Proof: X_k exceeds P_k by a positive amount. The start and each step are rounded by doubles (relative error below
// 2^-52), truncated and raised by 2 or more, in all by less than 4 + k (4 + |step| 2^-50) units. Scan ensures that this
// stays below 1 / dy.
void BandScanner::AddSide(const Vertex& from, const Vertex& to) {
    const bool up = to.y < from.y;
    const Vertex a = up ? to : from;
    const Vertex b = up ? from : to;
    const int32_t top = a.y >> 4;
    const int32_t first = std::max(top, m_first);
    const int32_t last = std::min(b.y >> 4, m_last);
    const int32_t minX = std::min(a.x, b.x);
    const int32_t maxX = std::max(a.x, b.x);
    if (first >= last || minX >= m_allRight) {
        return;
    }
    BandEdge& e = *m_nextEdge;
    const int32_t dx = b.x - a.x;
    if (maxX <= m_allLeft) {
        e.x = 0;
        e.step = 0;
        e.flags = 0;
    } else {
        e.flags = minX < m_insideLeft || maxX > m_insideRight ? kEdgeClamp : 0;
        if (dx == 0) {
            e.x = (int64_t{UprightColumn(a.x)} - m_leftSub) * kOne;
            e.step = 0;
            m_hasUpright |= last - first >= kTallSubRows;
        } else {
            const int32_t dy = b.y - a.y;
            const double inverse = 1.0 / dy;
            // The position at the next multiple of 8 in y: floor((n dx - 1) / dy), an estimate corrected by its
            // remainder.
            const int32_t n = ((8 - (a.y & 7)) & 7) * dx - 1;
            auto q = static_cast<int32_t>(n * inverse);
            int32_t rest = n - q * dy;
            const int32_t low = rest >> 31;
            q += low;
            rest += low & dy;
            const int32_t high = ~((rest - dy) >> 31);
            q -= high;
            rest -= high & dy;
            int32_t x = a.x + q + 1;
            int32_t error = rest - dy;
            const int32_t c = x & 7;
            error -= c != 0 ? (8 - c) * dy : 0;
            x = UprightColumn(x);
            error >>= 4;
            if (first > top) {
                const int64_t moved = error + static_cast<int64_t>(first - top) * dx;
                int64_t quotient = moved / dy;
                int64_t remainder = moved - quotient * dy;
                if (remainder < 0) {
                    --quotient;
                    remainder += dy;
                }
                x = static_cast<int32_t>(x + quotient + 1);
                error = static_cast<int32_t>(remainder - dy);
            }
            e.x = (static_cast<int64_t>(x) - m_leftSub) * kOne +
                  static_cast<int64_t>((error + dy) * inverse * static_cast<double>(kOne)) + 2;
            const double slope = dx * inverse;
            if (slope < 524288.0 && slope > -524288.0) {
                const auto step = static_cast<int64_t>(slope * static_cast<double>(kOne));
                e.step = step + 2 + ((step < 0 ? -step : step) >> 51);
            } else {
                e.step = 0; // dy is at most 16: a single sub-scanline
            }
        }
    }
    e.y = first - m_origin;
    e.end = last - m_origin;
    e.flags |= up ? kEdgeUp : 0;
    m_edgeRows += ((e.end + 7) >> 3) - (e.y >> 3);
    uint32_t& head = m_heads[static_cast<size_t>(e.y >> m_headShift)];
    e.next = head;
    head = static_cast<uint32_t>(m_nextEdge - m_edges.data());
    ++m_nextEdge;
}

bool BandScanner::Holds(int32_t minX, int32_t minY, int32_t maxX, int32_t maxY, int32_t subRows) noexcept {
    return minX >= -kFarFine && maxX <= kFarFine && minY >= -kFarFine && maxY <= kFarFine && subRows <= 1 << 17 &&
           (4 + 4 * static_cast<int64_t>(subRows)) * (static_cast<int64_t>(maxY) - minY) < kOne / 2;
}

bool BandScanner::FindChanges(int32_t rows) {
    // Shapes in which every row changes have about as many edges as rows.
    if (!m_hasUpright || m_nextEdge - m_edges.data() > rows) {
        return false;
    }
    const size_t words = static_cast<size_t>(rows) / 64 + 1; // including the row after the last
    m_changes.resize(words);
    std::fill_n(m_changes.data(), words, 0U);
    const auto note = [this](int32_t from, int32_t to) { // both inclusive
        SetBits(m_changes.data(), static_cast<uint32_t>(from), static_cast<uint32_t>(to));
    };
    for (BandEdge* e = m_edges.data(); e != m_nextEdge; ++e) {
        const int32_t first = e->y >> 3;
        const int32_t behind = (e->end + 7) >> 3; // the row after the edge's last one
        if (e->step != 0) {
            note(first, behind);
        } else {
            e->flags |= kEdgeInChanges;
            note(first, (e->y + 7) >> 3); // the rows in which it begins, up to the first that it crosses fully
            note(e->end >> 3, behind);    // the row in which it ends, and the row after
        }
    }
    return true;
}

void BandScanner::SendEqual(RasterizationSink& sink, int32_t y0, int32_t y1, std::span<CoverageRun> runs) {
    if (sink.Rows(y0, y1, runs)) {
        return;
    }
    // Row by row; the sink may change each row's bytes, so they are copied.
    const size_t shapeBytes = m_rowBlocks * 8;
    std::copy_n(m_shape.data(), shapeBytes, m_shape.data() + shapeBytes);
    CoverageRun* const kept = m_runs.data() + runs.size();
    std::copy(runs.begin(), runs.end(), kept);
    for (int32_t y = y0; y < y1; ++y) {
        if (y > y0) {
            std::copy_n(m_shape.data() + shapeBytes, shapeBytes, m_shape.data());
            std::copy_n(kept, runs.size(), runs.begin());
        }
        sink.Row(y, runs);
    }
}

bool BandScanner::Scan(const EdgeBuilder& builder, const FillShape& shape, const IntRect& visible,
                       RasterizationSink& sink) {
    if (shape.windingBound > BandKernels::kMostWinding) {
        return false;
    }
    const int32_t left = std::max(visible.left, (shape.minX - kRoom) >> 7);
    const int32_t right = std::min(visible.right, ((shape.maxX + kRoom) >> 7) + 1);
    const int32_t firstRow = std::max(visible.top, shape.first >> 3);
    const int32_t lastRow = std::min(visible.bottom, (shape.last + 7) >> 3);
    if (left >= right || firstRow >= lastRow) {
        return true;
    }
    m_origin = firstRow * 8;
    m_first = std::max(shape.first, m_origin);
    m_last = std::min(shape.last, lastRow * 8);
    if (!Holds(shape.minX, shape.minY, shape.maxX, shape.maxY, m_last - m_first)) {
        return false;
    }

    const size_t form = m_kernels->FormOf(shape.windingBound);
    const WindingForm& winding = kWindingForms[form];
    BandFrame frame;
    frame.left = left;
    frame.width = right - left;
    // One pixel more than the row has; an odd number of blocks keeps equal columns of neighbouring rows apart in the
    // cache.
    m_rowBlocks = (static_cast<size_t>(frame.width) + 8) / 8 | 1;
    frame.planeBytes = winding.PlaneBytes(m_rowBlocks);
    frame.rowBytes = winding.RowBytes(m_rowBlocks);
    frame.bitWords = winding.BitWords(m_rowBlocks);
    const int32_t rows = lastRow - firstRow;
    const int32_t bandRows = BandRows(frame.rowBytes, rows);
    // Resolved rows have other cuts, since edges inside the figure leave no mark.
    const bool resolves = shape.windingBound > kLeastBound && sink.TakesAnyCuts({left, firstRow, right, lastRow});
    m_headShift = resolves ? 3 : 3 + std::bit_width(static_cast<uint32_t>(bandRows)) - 1;

    Prepare(builder, frame, bandRows, rows, resolves);
    SetLimits(frame, visible);
    builder.ForEachSide([this](const Vertex& from, const Vertex& to) { AddSide(from, to); });
    m_hasEqualRows = FindChanges(rows);
    frame.changes = m_hasEqualRows ? m_changes.data() : nullptr;

    m_isOneColor = sink.IsOneColor({left, firstRow, right, lastRow}, m_solid);
    int32_t row = 0;
    uint32_t following = kNoEdge;
    if (resolves && m_edgeRows >= kRowsPerEdge * (m_nextEdge - m_edges.data()) && m_edgeRows >= kLeastResolved * rows &&
        m_edgeRows * kPixelsApart <= int64_t{rows} * frame.width) {
        row = ScanRows(frame, rows, sink);
        following = Relink(row);
    }
    ScanBands(frame, form, bandRows, rows, row, following, sink);
    m_dirty = false;
    return true;
}

void BandScanner::Prepare(const EdgeBuilder& builder, BandFrame& frame, int32_t bandRows, int32_t rows, bool resolves) {
    size_t cellBytes = frame.rowBytes * static_cast<size_t>(bandRows);
    size_t bitCount = frame.bitWords * static_cast<size_t>(bandRows);
    if (resolves) { // into rows of a single plane
        const size_t rowBytes = kWindingForms[0].RowBytes(m_rowBlocks);
        const auto planeRows = static_cast<size_t>(BandRows(rowBytes, rows));
        cellBytes = std::max(cellBytes, rowBytes * planeRows);
        bitCount = std::max(bitCount, kWindingForms[0].BitWords(m_rowBlocks) * planeRows);
    }
    cellBytes += sizeof(uint64_t); // two pixels are toggled together, also at the end of the last row
    if (m_dirty || m_cells.size() < cellBytes) {
        const size_t size = std::max(cellBytes, m_cells.size());
        m_cells.resize(size);
        std::memset(m_cells.data(), 0, size);
    }
    if (m_dirty || m_bits.size() < bitCount) {
        const size_t size = std::max(bitCount, m_bits.size());
        m_bits.resize(size);
        std::memset(m_bits.data(), 0, size * sizeof(uint64_t));
    }
    m_dirty = true;
    m_shape.reserve(2 * m_rowBlocks * 8);
    m_runs.reserve(2 * (2 * m_rowBlocks + 2));
    m_edges.reserve(builder.SideCount() + 1);
    const size_t heads = (static_cast<size_t>(rows * 8 - 1) >> m_headShift) + 1;
    m_heads.resize(heads);
    std::fill_n(m_heads.data(), heads, kNoEdge);
    frame.cells = m_cells.data();
    frame.bits = m_bits.data();
    m_nextEdge = m_edges.data();
    m_edgeRows = 0;
    m_hasUpright = false;
}

void BandScanner::SetLimits(const BandFrame& frame, const IntRect& visible) noexcept {
    const int32_t right = frame.left + frame.width;
    const int32_t leftFine = frame.left * 128;
    const int32_t rightFine = right * 128;
    m_leftSub = frame.left * 8;
    m_allLeft = leftFine - kRoom;
    m_allRight = rightFine + kRoom;
    // A side of the frame that is not one of what is visible was made for this shape, which does not cross it.
    m_insideLeft = frame.left > visible.left ? INT_MIN : leftFine + kRoom;
    m_insideRight = right < visible.right ? INT_MAX : rightFine - kRoom;
}

[[gnu::always_inline]] inline void BandScanner::Sweep(const BandFrame& frame, size_t form, size_t bandRow, int32_t row,
                                                      int32_t rows, RasterizationSink& sink) {
    const size_t count = m_kernels->sweep[form](frame, frame.cells + bandRow * frame.rowBytes,
                                                frame.bits + bandRow * frame.bitWords, m_shape.data(), m_runs.data());
    if (count == 0) {
        return;
    }
    const int32_t y = (m_origin >> 3) + row;
    const int32_t behind = m_hasEqualRows ? NextChange(m_changes.data(), row + 1, rows) : row + 1;
    if (behind == row + 1) {
        sink.Row(y, {m_runs.data(), count});
    } else {
        SendEqual(sink, y, (m_origin >> 3) + behind, {m_runs.data(), count});
    }
}

void BandScanner::SweepRows(const BandFrame& frame, size_t form, int32_t first, int32_t behind, int32_t rows,
                            RasterizationSink& sink) {
    for (int32_t row = first; row < behind;) {
        int32_t single = row; // the end of rows that are not followed by equal ones
        if (m_isOneColor) {
            single = m_hasEqualRows ? NextEqual(m_changes.data(), row + 1, rows) : rows;
            single = std::min(single < rows ? single - 1 : rows, behind);
        }
        const auto at = static_cast<size_t>(row - first);
        if (single == row) {
            Sweep(frame, form, at, row, rows, sink);
            ++row;
            continue;
        }
        BandFrame part = frame;
        part.cells += at * frame.rowBytes;
        part.bits += at * frame.bitWords;
        SolidRows to = m_solid;
        to.pixels = reinterpret_cast<uint32_t*>(reinterpret_cast<uint8_t*>(to.pixels) + row * to.strideBytes);
        m_kernels->paint[form](part, static_cast<size_t>(single - row), to, ActiveKernels());
        row = single;
    }
}

void BandScanner::ScanBands(const BandFrame& frame, size_t form, int32_t bandRows, int32_t rows, int32_t row,
                            uint32_t following, RasterizationSink& sink) {
    const auto walk = m_kernels->walk[form];
    while (row < rows) {
        const int32_t behind = std::min((row & -bandRows) + bandRows, rows);
        following = walk(frame, m_edges.data(), following, row * 8, behind * 8, kNoEdge);
        for (int32_t i = row * 8 >> m_headShift; i <= (behind * 8 - 1) >> m_headShift; ++i) {
            const uint32_t head = m_heads[static_cast<size_t>(i)];
            if (head != kNoEdge) {
                following = walk(frame, m_edges.data(), head, row * 8, behind * 8, following);
            }
        }
        SweepRows(frame, form, row, behind, rows, sink);
        row = behind;
    }
}

uint32_t BandScanner::Relink(int32_t row) noexcept {
    uint32_t head = kNoEdge;
    for (size_t i = 0; i < m_activeCount; ++i) {
        const uint32_t index = m_active[i];
        BandEdge& e = m_edges[index];
        if (e.end <= row * 8) {
            continue; // it ended at or in rows that were sent with an equal one
        }
        e.x = PositionAt(e, row * 8);
        e.y = row * 8;
        e.next = head;
        head = index;
    }
    return head;
}

bool BandScanner::Activate(uint32_t head) noexcept {
    size_t count = m_activeCount;
    for (uint32_t i = head; i != kNoEdge; i = m_edges[i].next) {
        if (++count > kMostResolved) {
            return false;
        }
    }
    uint32_t* const active = m_active;
    for (uint32_t i = head; i != kNoEdge; i = m_edges[i].next) {
        const BandEdge& added = m_edges[i];
        uint32_t* const end = active + m_activeCount;
        uint32_t* const place = std::upper_bound(
            active, end, added.x, [&](int64_t x, uint32_t other) { return x < PositionAt(m_edges[other], added.y); });
        std::copy_backward(place, end, end + 1);
        *place = i;
        ++m_activeCount;
    }
    return true;
}

int32_t BandScanner::ScanRows(const BandFrame& frame, int32_t rows, RasterizationSink& sink) {
    BandFrame plane = frame;
    plane.rowBytes = kWindingForms[0].RowBytes(m_rowBlocks);
    plane.bitWords = kWindingForms[0].BitWords(m_rowBlocks);
    const int32_t bandRows = BandRows(plane.rowBytes, rows);
    BandFrame target = plane;      // the next row to be resolved
    int64_t credit = kFirstCredit; // places that edges may still be moved
    int32_t row = 0;
    m_activeCount = 0;
    while (row < rows && credit >= 0) {
        const int32_t first = row;
        const int32_t behind = std::min(row + bandRows, rows);
        target.cells = plane.cells;
        target.bits = plane.bits;
        for (; row < behind && credit >= 0; ++row) {
            if (!Activate(m_heads[static_cast<size_t>(row)])) {
                credit = -1;
                break;
            }
            const size_t count = m_activeCount;
            // A row equal to the one before is sent with it.
            if (!m_hasEqualRows || NextChange(m_changes.data(), row, row + 1) == row) {
                credit += static_cast<int64_t>(count) * kCreditPerEdge;
                credit -=
                    static_cast<int64_t>(m_kernels->resolve(target, m_edges.data(), m_active, m_activeCount, row * 8));
            }
            target.cells += plane.rowBytes;
            target.bits += plane.bitWords;
        }
        SweepRows(plane, 0, first, row, rows, sink);
    }
    return row;
}

} // namespace Graphics
