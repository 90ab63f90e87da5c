// SPDX-License-Identifier: MIT
#include "Reduction.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace PdfPage {
namespace {

// The image's columns or rows along one axis of the page.
struct Axis {
    double start = 0.0,
           end = 0.0;   // where the image begins and ends on the page; start is the greater one when it runs back
    int count = 0;      // columns or rows
    ptrdiff_t step = 0; // in bytes from one to the next

    // Those that page pixel `at` shows: the first, and how much of it and of each that follows.
    size_t Weights(int at, std::vector<float>& weights) const {
        const double scale = count / (end - start);
        double first = (at - start) * scale, last = (at + 1 - start) * scale;
        if (first > last)
            std::swap(first, last);
        const double pixel = last - first;
        first = std::clamp(first, 0.0, static_cast<double>(count));
        last = std::clamp(last, 0.0, static_cast<double>(count));
        const size_t begin = static_cast<size_t>(first);
        weights.clear();
        for (size_t i = begin; static_cast<double>(i) < last; ++i)
            weights.push_back(static_cast<float>(
                (std::min(last, static_cast<double>(i) + 1) - std::max(first, static_cast<double>(i))) / pixel));
        return begin;
    }
};

bool AxesOf(const fz_matrix& m, const GXSize& size, Axis& across, Axis& down, ptrdiff_t pixelBytes,
            ptrdiff_t strideBytes) {
    const Axis columns{0, 0, static_cast<int>(size.width), pixelBytes};
    const Axis rows{0, 0, static_cast<int>(size.height), strideBytes};
    const bool turned = m.a == 0.0f && m.d == 0.0f;
    if (!turned && (m.b != 0.0f || m.c != 0.0f))
        return false;
    across = turned ? rows : columns;
    down = turned ? columns : rows;
    across.start = m.e;
    across.end = double{m.e} + double{turned ? m.c : m.a};
    down.start = m.f;
    down.end = double{m.f} + double{turned ? m.b : m.d};
    constexpr double kFar = 1e6; // pixels are counted in whole numbers below
    const auto shorter = [](const Axis& axis) {
        const double length = std::fabs(axis.end - axis.start);
        return length > 0.0 && length < axis.count && std::fabs(axis.start) < kFar && std::fabs(axis.end) < kFar;
    };
    return shorter(across) && shorter(down);
}

uint8_t Rounded(float value) { return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0f, 255.0f))); }

// What each of a run of page pixels shows along one axis.
class Shares {
public:
    Shares(const Axis& axis, int from, int to) {
        std::vector<float> weights;
        for (int at = from; at < to; ++at) {
            const size_t first = axis.Weights(at, weights);
            m_pixels.push_back({first, m_weights.size(), weights.size()});
            m_weights.insert(m_weights.end(), weights.begin(), weights.end());
            if (!weights.empty()) {
                m_first = std::min(m_first, first);
                m_last = std::max(m_last, first + weights.size());
            }
        }
    }
    size_t Count() const noexcept { return m_pixels.size(); }
    // Columns or rows that any of them shows.
    size_t First() const noexcept { return std::min(m_first, m_last); }
    size_t Last() const noexcept { return m_last; }
    // Calls `add(column or row, weight)`.
    template <class Add> void ForEach(size_t pixel, Add&& add) const {
        const Pixel& p = m_pixels[pixel];
        for (size_t k = 0; k < p.count; ++k)
            add(p.first + k, m_weights[p.weights + k]);
    }

private:
    struct Pixel {
        size_t first, weights, count;
    };
    std::vector<Pixel> m_pixels;
    std::vector<float> m_weights;
    size_t m_first = static_cast<size_t>(-1), m_last = 0;
};

// Adds a row of bytes; pixels of `channels` bytes are `step` apart.
void AddRow(const uint8_t* from, ptrdiff_t step, size_t channels, float weight, std::vector<float>& sums) {
    if (step == static_cast<ptrdiff_t>(channels)) {
        for (size_t i = 0; i < sums.size(); ++i)
            sums[i] += weight * static_cast<float>(from[i]);
        return;
    }
    for (size_t i = 0; i < sums.size(); i += channels, from += step)
        for (size_t c = 0; c < channels; ++c)
            sums[i + c] += weight * static_cast<float>(from[c]);
}

// Calls `put(means of the channels, share of the pixel that the image covers)` for each pixel of the box, row by row.
template <class Put>
void ForPixels(const uint8_t* pixels, const Axis& across, const Axis& down, size_t channels, const fz_irect& box,
               Put&& put) {
    const Shares columns(across, box.x0, box.x1), rows(down, box.y0, box.y1);
    const uint8_t* const left = pixels + static_cast<ptrdiff_t>(columns.First()) * across.step;
    std::vector<float> sums(channels * (columns.Last() - columns.First()));
    for (size_t y = 0; y < rows.Count(); ++y) {
        std::fill(sums.begin(), sums.end(), 0.0f);
        float height = 0.0f;
        rows.ForEach(y, [&](size_t row, float weight) {
            height += weight;
            AddRow(left + static_cast<ptrdiff_t>(row) * down.step, across.step, channels, weight, sums);
        });
        for (size_t x = 0; x < columns.Count(); ++x) {
            float means[4] = {}, width = 0.0f;
            columns.ForEach(x, [&](size_t column, float weight) {
                width += weight;
                const float* sum = sums.data() + channels * (column - columns.First());
                for (size_t c = 0; c < channels; ++c)
                    means[c] += weight * sum[c];
            });
            put(means, width * height);
        }
    }
}

} // namespace

bool IsReduced(GXBitmap image, const fz_matrix& matrix) {
    GXSize size{};
    Axis across, down;
    return GXBitmapGetSize(image, &size) == GXResultSuccess && AxesOf(matrix, size, across, down, 0, 0);
}

Reduced Reduce(Report& report, GXBitmap image, const fz_matrix& matrix, const fz_rect& visible) {
    Reduced result;
    GXSize size{};
    GXPixelFormat format = GXPixelFormatAlpha8;
    GXBitmapData source{}, to{};
    Axis across, down;
    result.box =
        fz_intersect_irect(fz_irect_from_rect(fz_transform_rect(fz_unit_rect, matrix)), fz_irect_from_rect(visible));
    if (fz_is_empty_irect(result.box) || !report.Check(GXBitmapGetSize(image, &size), "GXBitmapGetSize") ||
        !report.Check(GXBitmapGetPixelFormat(image, &format), "GXBitmapGetPixelFormat") ||
        !report.Check(GXBitmapLock(image, nullptr, GXLockRead, &source), "GXBitmapLock"))
        return result;
    const size_t channels = format == GXPixelFormatAlpha8 ? 1 : format == GXPixelFormatBGR24 ? 3 : 4;
    AxesOf(matrix, size, across, down, static_cast<ptrdiff_t>(channels), static_cast<ptrdiff_t>(source.stride));
    const GXBitmapDesc desc{fz_irect_width(result.box), static_cast<uint32_t>(fz_irect_height(result.box)),
                            channels == 1 ? GXPixelFormatAlpha8 : GXPixelFormatPBGRA32, 96.0f, 96.0f};
    if (report.Check(GXCreateBitmap(&desc, result.bitmap.Out()), "GXCreateBitmap") &&
        report.Check(GXBitmapLock(result.bitmap.Get(), nullptr, GXLockWrite, &to), "GXBitmapLock")) {
        uint8_t* row = static_cast<uint8_t*>(to.data);
        uint8_t* out = row;
        uint32_t x = 0;
        ForPixels(static_cast<const uint8_t*>(source.data), across, down, channels, result.box,
                  [&](const float* means, float covered) {
                      for (size_t c = 0; c < channels; ++c)
                          *out++ = Rounded(means[c]);
                      if (channels == 3)
                          *out++ = Rounded(255.0f * covered);
                      if (++x == desc.width) {
                          x = 0;
                          out = row += to.stride;
                      }
                  });
        report.Check(GXBitmapUnlock(result.bitmap.Get()), "GXBitmapUnlock");
    } else {
        result.bitmap.Reset();
    }
    report.Check(GXBitmapUnlock(image), "GXBitmapUnlock");
    return result;
}

} // namespace PdfPage
