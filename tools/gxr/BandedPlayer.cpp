// SPDX-License-Identifier: MIT
#include "BandedPlayer.h"

#include "ThreadClock.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <exception>
#include <numeric>
#include <system_error>
#include <thread>

namespace Gxr {
namespace {

// Bands that a thread takes on the average. Each costs a walk over all commands and, again, the parts of paths and
// groups that it shares with its neighbours; more of them even out what the survey gets wrong.
constexpr unsigned kBandsPerThread = 2;
// Bands are no lower than this, since shapes that bands have in common are prepared in each of them.
constexpr uint32_t kLeastRows = 16;

} // namespace

struct BandedPlayer::Canvas {
    void* pixels;
    GXPixelFormat format;
    GXExtBufLayout layout;
    GXMatrix matrix;
    float scale;
};

// What a thread draws with.
class BandedPlayer::Worker {
public:
    Worker(const std::shared_ptr<const Objects>& objects, const Canvas& canvas)
        : m_interpreter(objects), m_matrix(canvas.matrix), m_scale(canvas.scale) {
        CheckResult(GXCreateRenderTargetExtBuf(canvas.pixels, canvas.format, &canvas.layout, m_target.Out()),
                    "GXCreateRenderTargetExtBuf");
    }
    void Draw(const Band* band) {
        CheckResult(GXRenderTargetSetCTM(m_target.Get(), &m_matrix), "GXRenderTargetSetCTM");
        m_interpreter.Run(m_target.Get(), m_scale, nullptr, band);
    }

private:
    Interpreter m_interpreter;
    Handle<GXRenderTarget> m_target;
    const GXMatrix m_matrix;
    const float m_scale;
};

BandedPlayer::BandedPlayer(const Recording& recording, unsigned threads, Cut cut)
    : m_objects(std::make_shared<const Objects>(recording.Body(), true)), m_threads(std::max(threads, 1u)), m_cut(cut) {
}

BandedPlayer::~BandedPlayer() = default;

void BandedPlayer::Play(GXBitmap bitmap, float scale) {
    GXPixelFormat format = 0;
    GXSize size{};
    float dpiX = 96.0f, dpiY = 96.0f;
    GXBitmapData data{};
    CheckResult(GXBitmapGetPixelFormat(bitmap, &format), "GXBitmapGetPixelFormat");
    CheckResult(GXBitmapGetSize(bitmap, &size), "GXBitmapGetSize");
    CheckResult(GXBitmapGetDpiX(bitmap, &dpiX), "GXBitmapGetDpiX");
    CheckResult(GXBitmapGetDpiY(bitmap, &dpiY), "GXBitmapGetDpiY");
    CheckResult(GXBitmapLock(bitmap, nullptr, GXLockRead | GXLockWrite, &data), "GXBitmapLock");
    const GXExtBufLayout layout{static_cast<float>(size.width), static_cast<float>(size.height),
                                static_cast<float>(data.stride), dpiX, dpiY};
    try {
        Play(data.data, format, layout, scale);
    } catch (...) {
        GXBitmapUnlock(bitmap);
        throw;
    }
    CheckResult(GXBitmapUnlock(bitmap), "GXBitmapUnlock");
}

void BandedPlayer::Play(void* pixels, GXPixelFormat format, const GXExtBufLayout& layout, float scale,
                        const Part* part) {
    const Canvas canvas{pixels, format, layout, part != nullptr ? part->matrix : GXMatrix{1, 0, 0, 1, 0, 0}, scale};
    // Takes the layout only if it is right, and before anything is drawn.
    Worker own(m_objects, canvas);
    const GXSize size{static_cast<uint32_t>(layout.width), static_cast<uint32_t>(layout.height)};
    const auto width = static_cast<int32_t>(size.width), height = static_cast<int32_t>(size.height);
    GXIntRect area{0, 0, width, height};
    if (part != nullptr)
        area = {std::max(part->area.left, 0), std::max(part->area.top, 0), std::min(part->area.right, width),
                std::min(part->area.bottom, height)};
    const StopFlag* const stop = part != nullptr ? part->stop : nullptr;
    m_bands.clear();
    if (area.left >= area.right || area.top >= area.bottom)
        return;
    Plan(size, canvas.matrix, scale, {area.top, area.bottom});
    const auto band = [&](Rows rows) {
        Band made = m_survey->BandOf(rows);
        made.left = area.left;
        made.right = area.right;
        made.stop = stop;
        return made;
    };
    const bool aligned = reinterpret_cast<uintptr_t>(pixels) % 4 == 0 && static_cast<uint64_t>(layout.stride) % 4 == 0;
    if (!aligned || m_bands.size() == 1) {
        const double start = ThreadMilliseconds();
        const Band whole = band({area.top, area.bottom});
        own.Draw(part != nullptr ? &whole : nullptr);
        m_bands = {{{area.top, area.bottom}, 0, ThreadMilliseconds() - start}};
        return;
    }

    std::atomic<size_t> next{0};
    std::vector<std::exception_ptr> failures(m_threads);
    const auto take = [&](unsigned thread, Worker* worker) noexcept {
        try {
            std::optional<Worker> made;
            for (size_t i = next++; i < m_bands.size(); i = next++) {
                const double start = ThreadMilliseconds();
                if (worker == nullptr)
                    worker = &made.emplace(m_objects, canvas);
                const Band rows = band(m_bands[i].rows);
                worker->Draw(&rows);
                m_bands[i].thread = thread;
                m_bands[i].milliseconds = ThreadMilliseconds() - start;
            }
        } catch (...) {
            failures[thread] = std::current_exception();
            next = m_bands.size(); // the others need not go on
        }
    };
    std::vector<std::thread> threads;
    try {
        threads.reserve(m_threads - 1);
        for (unsigned i = 1; i < std::min<size_t>(m_threads, m_bands.size()); ++i)
            threads.emplace_back(take, i, nullptr);
    } catch (const std::exception&) {
        // Those that there are draw everything.
    }
    take(0, &own);
    for (std::thread& thread : threads)
        thread.join();
    for (const std::exception_ptr& failure : failures)
        if (failure)
            std::rethrow_exception(failure);
    Learn();
}

void BandedPlayer::Plan(GXSize size, const GXMatrix& matrix, float scale, Rows rows) {
    if (!m_survey || size.width != m_size.width || size.height != m_size.height || scale != m_scale ||
        std::memcmp(&matrix, &m_matrix, sizeof matrix) != 0) {
        Interpreter walk(m_objects);
        m_survey.reset();
        m_survey.emplace(walk, *m_objects, size, matrix, scale);
        m_size = size;
        m_matrix = matrix;
        m_scale = scale;
        m_costs = m_survey->Costs();
    }
    const auto height = static_cast<uint32_t>(rows.bottom - rows.top);
    const size_t most = std::max<size_t>(height / kLeastRows, 1);
    if (m_cut == Cut::Cost) {
        CutByCost(m_threads == 1 ? 1 : std::min<size_t>(size_t{m_threads} * kBandsPerThread, most), rows);
        return;
    }
    const size_t count = std::min<size_t>(m_threads, most);
    const auto border = [&](size_t i) { return rows.top + static_cast<int32_t>(height * i / count); };
    for (size_t i = 0; i < count; ++i)
        m_bands.push_back({{border(i), border(i + 1)}, 0, 0.0});
}

// Every band gets its share of what is left, and rows enough for those below it to be left some.
void BandedPlayer::CutByCost(size_t count, Rows rows) {
    double left = std::accumulate(m_costs.begin() + rows.top, m_costs.begin() + rows.bottom, 0.0);
    for (int32_t top = rows.top; top < rows.bottom;) {
        const size_t after = count - m_bands.size() - 1;
        const double share = left / static_cast<double>(after + 1);
        const int32_t last = rows.bottom - static_cast<int32_t>(after * kLeastRows);
        int32_t bottom = top;
        double cost = 0;
        while (bottom < rows.bottom &&
               (after == 0 || (bottom < last && (bottom < top + static_cast<int32_t>(kLeastRows) || cost < share))))
            cost += m_costs[static_cast<size_t>(bottom++)];
        m_bands.push_back({{top, bottom}, 0, 0.0});
        left -= cost;
        top = bottom;
    }
}

// The rows of a band get its time, shared among them as it was guessed.
void BandedPlayer::Learn() {
    for (const Drawn& band : m_bands) {
        const auto begin = m_costs.begin() + band.rows.top, end = m_costs.begin() + band.rows.bottom;
        const double guess = std::accumulate(begin, end, 0.0), measured = band.milliseconds * 1e6;
        if (!(measured > 0))
            return; // a clock that is too coarse
        for (auto row = begin; row != end; ++row)
            *row = guess > 0 ? *row * (measured / guess) : measured / (band.rows.bottom - band.rows.top);
    }
}

} // namespace Gxr
