// SPDX-License-Identifier: MIT
// GDI+ may refuse every call of a page: the message comes, every object is given back, and the next page is printed.
#include "PrintSupport.h"

#include "ProcessHeap.h"
#include "Windows/GdipCalls.h"

namespace {

using namespace TargetSupport;
using namespace WindowsSupport;
using namespace PrintSupport;
using Graphics::g_gdip;
using Graphics::GdipCalls;

int g_live = 0; // objects of GDI+, locks and borrowed contexts

template <class Function> struct Wrap;
template <class... A> struct Wrap<Gdiplus::GpStatus(WINAPI*)(A...)> {
    using Function = Gdiplus::GpStatus(WINAPI*)(A...);
    static Gdiplus::GpStatus WINAPI Refuse(A...) { return Gdiplus::OutOfMemory; }
    template <auto Entry, int Step> static Gdiplus::GpStatus WINAPI Count(A... a) {
        static const GdipCalls plain;
        const Gdiplus::GpStatus status = (plain.*Entry)(a...);
        g_live += status == Gdiplus::Ok ? Step : 0;
        return status;
    }
};
template <auto Entry> using WrapOf = Wrap<std::remove_reference_t<decltype(g_gdip.*Entry)>>;
template <auto Entry> void Refuse() { g_gdip.*Entry = &WrapOf<Entry>::Refuse; }
template <auto Make, auto End> void CountPair() {
    g_gdip.*Make = &WrapOf<Make>::template Count<Make, 1>;
    g_gdip.*End = &WrapOf<End>::template Count<End, -1>;
}

void CountObjects() {
    g_gdip = GdipCalls();
    CountPair<&GdipCalls::createFromHDC, &GdipCalls::deleteGraphics>();
    CountPair<&GdipCalls::getDC, &GdipCalls::releaseDC>();
    CountPair<&GdipCalls::createPath, &GdipCalls::deletePath>();
    CountPair<&GdipCalls::createBitmapFromScan0, &GdipCalls::disposeImage>();
    CountPair<&GdipCalls::bitmapLockBits, &GdipCalls::bitmapUnlockBits>();
    CountPair<&GdipCalls::createSolidFill, &GdipCalls::deleteBrush>();
    CountPair<&GdipCalls::createTexture, &GdipCalls::deleteBrush>();
    CountPair<&GdipCalls::createTextureIA, &GdipCalls::deleteBrush>();
    CountPair<&GdipCalls::createImageAttributes, &GdipCalls::disposeImageAttributes>();
    CountPair<&GdipCalls::createMatrix2, &GdipCalls::deleteMatrix>();
}

class PrintFailure : public ::testing::Test {
public:
    PrintFailure() {
        const GXGradientStop stops[] = {{0.0F, 0xFF203A8CU}, {1.0F, 0xFFFFE08AU}};
        const GXLinearGradientDesc linear{stops, 2, {0, 0}, {20, 9}, 1, 1, 0};
        const GXRadialGradientDesc radial{stops, 2, {20, 10}, 2, {22, 12}, 12, 0, 0, 0};
        EXPECT_EQ(GXCreateGradientLinear(&linear, along.Out()), GXResultSuccess);
        EXPECT_EQ(GXCreateGradientRadial(&radial, around.Out()), GXResultSuccess);
        CountObjects();
    }
    void TearDown() override {
        g_gdip = GdipCalls();
        g_system = SystemCalls();
    }

    /// A page with something of everything. The result is that of the first call that failed.
    GXResult Page() {
        Owned<GXRenderTarget> target;
        GXResult result = GXCreateRenderTargetPrintDC(printer.Context(), target.Out());
        if (result != GXResultSuccess) {
            first = message.Text();
            return result;
        }
        const auto note = [&](GXResult r) {
            if (result == GXResultSuccess && r != GXResultSuccess) {
                result = r;
                first = message.Text();
            }
        };
        const GXRect all{0, 0, 40, 30}, part{3, 4, 30, 28}, image{2, 2, 22, 22};
        const GXLayerDesc group{{4, 4, 30, 24}, 1.0F, 1, 0}, faint{{0, 0, 0, 0}, 0.5F, 1, 0};
        note(GXRenderTargetBeginPaint(target));
        if (result != GXResultSuccess) {
            return result;
        }
        note(GXRenderTargetClear(target, 0xFFFFFFFFU));
        note(GXRenderTargetPushState(target));
        note(GXRenderTargetClipEllipse(target, &part));
        note(GXRenderTargetFillEllipse(target, &all, half));
        note(GXRenderTargetPopState(target));
        note(GXRenderTargetBeginLayer(target, &group));
        note(GXRenderTargetStretchBitmap(target, opaque, &image, nullptr, 1.0F, 0));
        note(GXRenderTargetStretchBitmap(target, indexed, &image, nullptr, 0.5F, 1));
        note(GXRenderTargetStretchBitmap(target, alpha, &image, nullptr, 1.0F, 2));
        note(GXRenderTargetEndLayer(target));
        note(GXRenderTargetDrawGradient(target, along, 1.0F, nullptr));
        note(GXRenderTargetDrawGradient(target, around, 0.5F, nullptr));
        note(GXRenderTargetBeginLayer(target, &faint));
        note(GXRenderTargetFillEllipse(target, &part, half));
        note(GXRenderTargetEndLayer(target));
        note(GXRenderTargetEndPaint(target));
        return result;
    }

    const Printer printer{40, 30, true};
    LastMessage message;
    std::string first; // the message of the first call of a page that failed
    const Owned<GXBitmap> opaque = Checks();
    const Owned<GXBitmap> indexed = MakeBitmap(8, 8, GXPixelFormatIndexed8);
    const Owned<GXBitmap> alpha = MakeBitmap(8, 8, GXPixelFormatAlpha8);
    const Owned<GXBrush> half = Solid(0x80FF0000U);
    Owned<GXGradient> along, around;
};

TEST_F(PrintFailure, EveryRefusedCallHasItsMessageAndLosesNothing) {
    const char* const call = "Gdiplus call failed - status: {3}";
    const char* const bitmap = "Failed to create Gdiplus bitmap of size - width: {";
    struct Case {
        const char* name;
        void (*refuse)();
        const char* message;
    };
    const Case cases[] = {
        {"CreateFromHDC", &Refuse<&GdipCalls::createFromHDC>, call},
        {"GetDC", &Refuse<&GdipCalls::getDC>, call},
        {"SaveGraphics", &Refuse<&GdipCalls::saveGraphics>, call},
        {"RestoreGraphics", &Refuse<&GdipCalls::restoreGraphics>, call},
        {"SetCompositingMode", &Refuse<&GdipCalls::setCompositingMode>, call},
        {"SetCompositingQuality", &Refuse<&GdipCalls::setCompositingQuality>, call},
        {"SetInterpolationMode", &Refuse<&GdipCalls::setInterpolationMode>, call},
        {"SetPixelOffsetMode", &Refuse<&GdipCalls::setPixelOffsetMode>, call},
        {"SetSmoothingMode", &Refuse<&GdipCalls::setSmoothingMode>, call},
        {"SetPageUnit", &Refuse<&GdipCalls::setPageUnit>, call},
        {"ResetWorldTransform", &Refuse<&GdipCalls::resetWorldTransform>, call},
        {"GraphicsClear", &Refuse<&GdipCalls::graphicsClear>, call},
        {"FillPath", &Refuse<&GdipCalls::fillPath>, call},
        {"SetClipPath", &Refuse<&GdipCalls::setClipPath>, call},
        {"CreatePath", &Refuse<&GdipCalls::createPath>, call},
        {"SetPathFillMode", &Refuse<&GdipCalls::setPathFillMode>, call},
        {"StartPathFigure", &Refuse<&GdipCalls::startPathFigure>, call},
        {"AddPathLine", &Refuse<&GdipCalls::addPathLine>, call},
        {"AddPathBezier", &Refuse<&GdipCalls::addPathBezier>, call},
        {"ClosePathFigure", &Refuse<&GdipCalls::closePathFigure>, call},
        {"CreateBitmapFromScan0", &Refuse<&GdipCalls::createBitmapFromScan0>, bitmap},
        {"BitmapSetResolution", &Refuse<&GdipCalls::bitmapSetResolution>, bitmap},
        {"SetImagePalette", &Refuse<&GdipCalls::setImagePalette>, bitmap},
        {"BitmapLockBits", &Refuse<&GdipCalls::bitmapLockBits>, bitmap},
        {"CreateSolidFill", &Refuse<&GdipCalls::createSolidFill>, call},
        {"CreateTexture", &Refuse<&GdipCalls::createTexture>, call},
        {"CreateTextureIA", &Refuse<&GdipCalls::createTextureIA>, call},
        {"SetTextureTransform", &Refuse<&GdipCalls::setTextureTransform>, call},
        {"SetTextureWrapMode", &Refuse<&GdipCalls::setTextureWrapMode>, call},
        {"CreateImageAttributes", &Refuse<&GdipCalls::createImageAttributes>, call},
        {"SetImageAttributesColorMatrix", &Refuse<&GdipCalls::setImageAttributesColorMatrix>, call},
        {"CreateMatrix2", &Refuse<&GdipCalls::createMatrix2>, call},
        {"StretchDIBits",
         [] {
             g_system.stretchDIBits = [](HDC, int, int, int, int, int, int, int, int, const void*, const BITMAPINFO*,
                                         UINT, DWORD) -> int { return 0; };
         },
         "StretchDIBits is failed."},
        {"SaveDC", [] { g_system.saveDC = [](HDC) { return 0; }; }, "The DC does not exist"},
        {"GetObjectType", [] { g_system.getObjectType = [](HGDIOBJ) -> DWORD { return 0; }; }, "The DC does not exist"},
    };
    ASSERT_EQ(Page(), GXResultSuccess) << first;
    const std::vector<uint32_t> whole = printer.Picture().Colors();
    const size_t objects = GdiObjects();
    const SystemCalls system = g_system;
    for (const Case& c : cases) {
        g_live = 0;
        c.refuse();
        EXPECT_EQ(Page(), GXResultEngineError) << c.name;
        EXPECT_EQ(first.rfind(c.message, 0), 0U) << c.name << ": " << first;
        EXPECT_EQ(g_live, 0) << c.name;
        EXPECT_EQ(GdiObjects(), objects) << c.name;
        CountObjects();
        g_system = system;
        printer.Picture().Fill(0);
        ASSERT_EQ(Page(), GXResultSuccess) << "after " << c.name;
        EXPECT_EQ(g_live, 0) << "after " << c.name;
        EXPECT_EQ(printer.Picture().Colors(), whole) << "after " << c.name;
    }
}

TEST_F(PrintFailure, RefusedMemoryLosesNothing) {
    ASSERT_EQ(Page(), GXResultSuccess) << first;
    const size_t objects = GdiObjects();
    int64_t n = 0;
    for (;; ++n) {
        g_live = 0;
        Graphics::ProcessHeap::FailAfter(n);
        const GXResult result = Page();
        Graphics::ProcessHeap::FailAfter(-1);
        EXPECT_EQ(g_live, 0) << n;
        EXPECT_EQ(GdiObjects(), objects) << n;
        if (result == GXResultSuccess) {
            break;
        }
        ASSERT_EQ(result, GXResultEngineError);
        ASSERT_EQ(first, "Not enough memory");
        ASSERT_LT(n, 500);
    }
    EXPECT_GT(n, 5);
}

TEST_F(PrintFailure, ManyPagesKeepTheNumberOfObjects) {
    ASSERT_EQ(Page(), GXResultSuccess) << first;
    const size_t objects = GdiObjects();
    for (int page = 0; page < 100; ++page) {
        ASSERT_EQ(Page(), GXResultSuccess) << first;
    }
    EXPECT_EQ(g_live, 0);
    EXPECT_EQ(GdiObjects(), objects);
}

} // namespace
