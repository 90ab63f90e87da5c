// SPDX-License-Identifier: MIT
#include "GlyphCache.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>

#include "../Exception.h"
#include "../Geometry/DeviceFeed.h"

namespace Graphics {
namespace {

constexpr size_t kHalfBytes = GlyphCache::kMaxBytes / 2;
constexpr size_t kFirstBytes = size_t{64} << 10;
constexpr size_t kFirstTable = 256;

/// The waiting caches. Constant initialisation, no destructor: a target may return its cache while the process ends.
constexpr size_t kSlots = 4;
constinit std::atomic<GlyphCache*> g_waiting[kSlots]{};

/// Deletes the caches when the library is unloaded.
struct Sweeper {
    ~Sweeper() { GlyphCache::DropWaiting(); }
} g_sweeper;

/// Stores the rows of a fill.
class CoverageRows final : public RasterizationSink {
public:
    CoverageRows(uint8_t* bytes, size_t stride) noexcept : m_bytes(bytes), m_stride(stride) {}

    void Row(int32_t y, std::span<CoverageRun> runs) override {
        uint8_t* row = m_bytes + static_cast<size_t>(y) * m_stride;
        for (const CoverageRun& run : runs) {
            const auto count = static_cast<size_t>(run.x1 - run.x0);
            if (run.shape != nullptr) {
                std::memcpy(row + run.x0, run.shape, count);
            } else {
                std::memset(row + run.x0, run.value, count);
            }
        }
    }
    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) override {
        for (int32_t y = top; y < bottom; ++y) {
            std::memset(m_bytes + static_cast<size_t>(y) * m_stride + left, 255, static_cast<size_t>(right - left));
        }
    }

private:
    uint8_t* m_bytes;
    size_t m_stride;
};

[[nodiscard]] uint32_t Mix(uint64_t v) noexcept {
    v *= 0x9E3779B97F4A7C15U;
    return static_cast<uint32_t>(v >> 32);
}

} // namespace

GlyphCache::Ref GlyphCache::Take() {
    for (std::atomic<GlyphCache*>& slot : g_waiting) {
        if (slot.load(std::memory_order_relaxed) == nullptr) {
            continue;
        }
        if (GlyphCache* cache = slot.exchange(nullptr, std::memory_order_acquire)) {
            return Ref(cache);
        }
    }
    return Ref(new GlyphCache());
}

void GlyphCache::Return::operator()(GlyphCache* cache) const noexcept {
    for (std::atomic<GlyphCache*>& slot : g_waiting) {
        GlyphCache* free = nullptr;
        if (slot.compare_exchange_strong(free, cache, std::memory_order_release, std::memory_order_relaxed)) {
            return;
        }
    }
    delete cache;
}

void GlyphCache::DropWaiting() noexcept {
    for (std::atomic<GlyphCache*>& slot : g_waiting) {
        delete slot.exchange(nullptr, std::memory_order_acquire);
    }
}

void GlyphCache::Clear() noexcept {
    for (Half& half : m_halves) {
        half = Half();
    }
}

GlyphCache::Key GlyphCache::MakeKey(const Shape& shape, const Matrix& m, uint32_t phase) noexcept {
    Key key;
    key.shape = shape.Identity();
    key.linear = {std::bit_cast<uint32_t>(m.m00), std::bit_cast<uint32_t>(m.m01), std::bit_cast<uint32_t>(m.m10),
                  std::bit_cast<uint32_t>(m.m11)};
    key.phase = phase;
    if (key.linear != m_lastLinear) { // constant within a text
        m_lastLinear = key.linear;
        m_lastLinearHash = Mix((uint64_t{key.linear[0]} << 32 | key.linear[1]) +
                               0xC2B2AE3D27D4EB4FU * (uint64_t{key.linear[2]} << 32 | key.linear[3]));
    }
    key.hash = Mix((key.shape << 7 | phase) ^ uint64_t{m_lastLinearHash} << 32);
    return key;
}

GlyphCache::Entry* GlyphCache::LookupIn(Half& half, const Key& key) noexcept {
    if (half.count == 0) {
        return nullptr;
    }
    const size_t mask = half.table.size() - 1;
    for (size_t i = key.hash & mask;; i = (i + 1) & mask) {
        const uint32_t reference = half.table[i];
        if (reference == 0) {
            return nullptr;
        }
        auto* entry = reinterpret_cast<Entry*>(half.bytes.data() + size_t{reference - 1} * 16);
        if (entry->key.hash == key.hash && entry->key.shape == key.shape && entry->key.phase == key.phase &&
            entry->key.linear == key.linear) {
            return entry;
        }
    }
}

GlyphCache::Entry* GlyphCache::Lookup(const Key& key) noexcept {
    if (Entry* entry = LookupIn(m_halves[m_young], key)) {
        return entry;
    }
    Entry* entry = LookupIn(m_halves[1 - m_young], key);
    if (entry == nullptr) {
        return nullptr;
    }
    // Moves the used entry to the younger half, unless a new half had to be started for it and the entry is gone.
    Half& young = m_halves[m_young];
    if (young.used + kEntryBytes + entry->dataBytes > kHalfBytes) {
        return entry;
    }
    Entry* moved = Insert(*entry, Data(*entry));
    return moved != nullptr ? moved : entry;
}

void GlyphCache::Empty(Half& half) noexcept {
    half.used = 0;
    half.count = 0;
    std::fill(half.table.begin(), half.table.end(), 0U);
}

/// Reserves room for one more entry; raises "Not enough memory" and leaves the half unchanged.
void GlyphCache::Reserve(Half& half, size_t bytes) {
    const size_t needed = half.used + bytes;
    if (needed > half.bytes.size()) {
        HeapArray<uint8_t> grown;
        grown.resize(std::min(std::max({needed, half.bytes.size() * 2, kFirstBytes}), kHalfBytes));
        if (half.used != 0) {
            std::memcpy(grown.data(), half.bytes.data(), half.used);
        }
        half.bytes = std::move(grown);
    }
    // At most half full, so that searches are short.
    if ((half.count + 1) * 2 > half.table.size()) {
        HeapArray<uint32_t> grown;
        grown.resize(std::max(kFirstTable, half.table.size() * 2));
        std::fill(grown.begin(), grown.end(), 0U);
        const size_t mask = grown.size() - 1;
        for (const uint32_t reference : half.table) {
            if (reference != 0) {
                const auto* entry = reinterpret_cast<const Entry*>(half.bytes.data() + size_t{reference - 1} * 16);
                size_t i = entry->key.hash & mask;
                while (grown[i] != 0) {
                    i = (i + 1) & mask;
                }
                grown[i] = reference;
            }
        }
        half.table = std::move(grown);
    }
}

GlyphCache::Entry* GlyphCache::Insert(const Entry& entry, const uint8_t* data) noexcept {
    const size_t bytes = (kEntryBytes + entry.dataBytes + 15) / 16 * 16;
    if (m_halves[m_young].used + bytes > kHalfBytes) {
        m_young = 1 - m_young;
        Empty(m_halves[m_young]);
    }
    Half& half = m_halves[m_young];
    try {
        Reserve(half, bytes);
    } catch (const Exception&) {
        return nullptr;
    }
    uint8_t* at = half.bytes.data() + half.used;
    std::memcpy(at, &entry, sizeof(Entry));
    if (entry.dataBytes != 0) {
        std::memcpy(at + kEntryBytes, data, entry.dataBytes);
    }
    const size_t mask = half.table.size() - 1;
    size_t i = entry.key.hash & mask;
    while (half.table[i] != 0) {
        i = (i + 1) & mask;
    }
    half.table[i] = static_cast<uint32_t>(half.used / 16) + 1;
    half.used += bytes;
    ++half.count;
    return reinterpret_cast<Entry*>(at);
}

bool GlyphCache::Report(const Entry& entry, const uint8_t* data, GlyphCoverage& out) noexcept {
    out = {{entry.left, entry.top}, entry.width, entry.height, data, entry.strideBytes};
    return true;
}

bool GlyphCache::Measure(const Shape& shape, const Matrix& m, Entry& entry) noexcept {
    const Rect box = MapBox({m.m00, m.m01, m.m10, m.m11, 0.0F, 0.0F}, shape.ControlBox());
    constexpr float kFar = 1.0e6F;
    // NaN compares false.
    if (!shape.AllFinite() || !(box.left > -kFar && box.top > -kFar && box.right < kFar && box.bottom < kFar)) {
        return false;
    }
    // Samples of a side lie at most 1.5 samples right and 0.5 samples left of it.
    entry.left = static_cast<int32_t>(std::floor(box.left - 0.125F));
    entry.top = static_cast<int32_t>(std::floor(box.top));
    entry.width = static_cast<int32_t>(std::ceil(box.right + 0.25F)) - entry.left;
    entry.height = static_cast<int32_t>(std::ceil(box.bottom)) - entry.top;
    return entry.width <= kMaxSize && entry.height <= kMaxSize;
}

void GlyphCache::Feed(const Shape& shape, const Matrix& m, const Entry& box, int32_t width, int32_t height,
                      Rasterizer& rasterizer) {
    constexpr auto kAround = static_cast<float>(kMaxSize + 4);
    rasterizer.Begin({-2.0F, -2.0F, kAround, kAround}, {0, 0, width, height}, false);
    FeedFill(shape, {m.m00, m.m01, m.m10, m.m11, static_cast<float>(-box.left), static_cast<float>(-box.top)},
             rasterizer);
}

SampleView GlyphCache::MakeSamples(const Shape& shape, const Matrix& m, const Entry& box, Rasterizer& rasterizer) {
    Feed(shape, m, box, box.width, box.height, rasterizer);
    rasterizer.FinishSamples(m_grid);
    const SampleView& made = m_grid.View();
    Entry entry = box;
    entry.key = MakeKey(shape, m, kSamples);
    entry.strideBytes = static_cast<uint32_t>(made.strideBytes);
    entry.dataBytes = static_cast<uint32_t>(made.Bytes());
    static_cast<void>(Insert(entry, made.bits - SampleView::kGuardBytes));
    return made;
}

bool GlyphCache::Place(const Shape& shape, const Matrix& m, Rasterizer& rasterizer, GlyphCoverage& out) {
    // Larger floats do not resolve eighths; NaN compares false.
    constexpr float kFar = 1048576.0F;
    if (shape.Empty() || !(std::fabs(m.m20) < kFar && std::fabs(m.m21) < kFar)) {
        return false;
    }
    static_assert(kPhases == 1 << 3);
    const auto nearest = [](float v) { return static_cast<int32_t>(std::floor(v * kPhases + 0.5F)); };
    const IntPoint eighths{nearest(m.m20), nearest(m.m21)};
    if (!Find(shape, m, {eighths.x & 7, eighths.y & 7}, rasterizer, out)) {
        return false;
    }
    out.corner = {(eighths.x >> 3) + out.corner.x, (eighths.y >> 3) + out.corner.y};
    return true;
}

bool GlyphCache::Find(const Shape& shape, const Matrix& m, IntPoint phase, Rasterizer& rasterizer, GlyphCoverage& out) {
    const Key key = MakeKey(shape, m, static_cast<uint32_t>(phase.y * kPhases + phase.x));
    if (const Entry* entry = Lookup(key)) {
        return Report(*entry, Data(*entry), out);
    }
    Entry box{};
    if (!Measure(shape, m, box)) {
        return false;
    }
    SampleView samples{nullptr, SampleView::StrideFor(box.width), box.width, box.height};
    Entry entry = box;
    entry.key = key;
    entry.width = samples.WidthAt(phase.x);
    entry.height = samples.HeightAt(phase.y);
    entry.strideBytes = static_cast<uint32_t>(samples.CoverageStride(phase.x));
    entry.dataBytes = entry.strideBytes * static_cast<uint32_t>(entry.height);
    m_coverage.resize(entry.dataBytes);

    if (const Entry* known = Lookup(MakeKey(shape, m, kSamples))) {
        samples.bits = Data(*known) + SampleView::kGuardBytes;
    } else {
        const Key counterKey = MakeKey(shape, m, kCounter);
        Entry* counter = Lookup(counterKey);
        if (counter == nullptr) {
            Entry first{};
            first.key = counterKey;
            counter = Insert(first, nullptr);
        }
        // The counter entry stores its number as its width.
        if (counter != nullptr && static_cast<uint32_t>(counter->width++) >= kDirectPhases) {
            samples = MakeSamples(shape, m, box, rasterizer);
        }
    }
    if (samples.bits != nullptr) {
        samples.Coverage(phase.x, phase.y, m_coverage.data());
    } else {
        std::fill_n(m_coverage.data(), entry.dataBytes, uint8_t{0}); // stays zero for a box without pixels
        Feed(shape, m, box, entry.width, entry.height, rasterizer);
        rasterizer.Move(phase.x, phase.y);
        CoverageRows rows(m_coverage.data(), entry.strideBytes);
        rasterizer.Finish(rows);
    }
    const Entry* kept = Insert(entry, m_coverage.data());
    return kept != nullptr ? Report(*kept, Data(*kept), out) : Report(entry, m_coverage.data(), out);
}

} // namespace Graphics
