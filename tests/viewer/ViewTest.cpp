// SPDX-License-Identifier: MIT
// Zoom and pan of the viewer as numbers.
#include "View.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace Viewer {
namespace {

View Of(uint32_t width, uint32_t height, int clientWidth, int clientHeight) {
    View view;
    view.SetClient(clientWidth, clientHeight);
    view.SetPage({double(width), double(height)});
    return view;
}

TEST(View, FittedPagesFillTheWindowInOneDirectionAndLieInItsMiddle) {
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        const auto side = [&](unsigned most) { return 1 + random() % most; };
        const View view = Of(side(4000), side(4000), static_cast<int>(side(2000)), static_cast<int>(side(2000)));
        const Box page = view.Page();
        ASSERT_TRUE(view.IsFitted());
        if (view.Zoom() > View::kMinZoom) {
            ASSERT_LE(page.width, view.ClientWidth());
            ASSERT_LE(page.height, view.ClientHeight());
            ASSERT_TRUE(view.Zoom() == View::kMaxZoom || page.width == view.ClientWidth() ||
                        page.height == view.ClientHeight());
            ASSERT_EQ(page, view.Visible());
            ASSERT_LE(std::abs(2 * page.left + page.width - view.ClientWidth()), 1);
            ASSERT_LE(std::abs(2 * page.top + page.height - view.ClientHeight()), 1);
        }
    }
}

TEST(View, ZoomingKeepsThePointUnderTheCursor) {
    View view = Of(1000, 1400, 800, 600);
    view.ZoomTo(4.0f, 400, 300);
    const auto pointAt = [&](double at, int edge) { return (at - edge) / static_cast<double>(view.Zoom()); };
    const double x = pointAt(100, view.Page().left), y = pointAt(500, view.Page().top);
    for (int i = 0; i < 40; ++i) {
        view.ZoomBy(i % 4 < 2 ? 1.25 : 0.8, 100, 500);
        // Half a pixel of the window each for the rounded corner, before and after.
        ASSERT_NEAR(pointAt(100, view.Page().left), x, 1.0 / 4) << i;
        ASSERT_NEAR(pointAt(500, view.Page().top), y, 1.0 / 4) << i;
    }
}

TEST(View, NothingLeavesThePagesEdgesOrTheLimits) {
    std::mt19937 random(11);
    View view = Of(1000, 1400, 800, 600);
    for (int i = 0; i < 5000; ++i) {
        const double a = static_cast<double>(random() % 4000) - 2000, b = static_cast<double>(random() % 4000) - 2000;
        switch (random() % 5) {
        case 0:
            view.ZoomBy(std::exp(a / 1000), random() % 800, random() % 600);
            break;
        case 1:
            view.PanBy(a, b);
            break;
        case 2:
            view.SetClient(static_cast<int>(random() % 1500), static_cast<int>(random() % 1500));
            break;
        case 3:
            view.ZoomTo(static_cast<float>(NAN), 0, 0);
            break;
        default:
            view.ZoomBy(i % 2 != 0 ? 1e30 : 1e-30, 10, 10);
            break;
        }
        const Box page = view.Page(), seen = view.Visible();
        ASSERT_TRUE(view.Zoom() >= View::kMinZoom && view.Zoom() <= View::kMaxZoom);
        ASSERT_TRUE(page.width <= view.ClientWidth() ||
                    (page.left <= 0 && page.left + page.width >= view.ClientWidth()));
        ASSERT_TRUE(page.height <= view.ClientHeight() ||
                    (page.top <= 0 && page.top + page.height >= view.ClientHeight()));
        ASSERT_TRUE(seen.width > 0 && seen.height > 0 && seen.left >= 0 && seen.top >= 0);
        ASSERT_LE(seen.left + seen.width, view.ClientWidth());
        ASSERT_LE(seen.top + seen.height, view.ClientHeight());
    }
}

} // namespace
} // namespace Viewer
