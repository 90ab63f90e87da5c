// SPDX-License-Identifier: MIT
// Exported functions called in any order, balanced or not, with good and bad numbers, on objects that come and go. The
// choices come from outside: a random number generator, or the bytes of a fuzzer.
#pragma once

#include <array>
#include <cmath>
#include <vector>

#include "CallObjects.h"

class CallStream : private CallObjects {
public:
    explicit CallStream(CallChoice& choice) : CallObjects(choice) {
        m_memory.fill(kGuard);
        NewTarget();
    }
    ~CallStream() { GXObjectRelease(m_target); }

    /// One call; false for an answer that none of them may give.
    [[nodiscard]] bool Call() {
        const uint32_t kind = Below(20);
        const GXResult result = kind < 10   ? Draw()
                                : kind < 14 ? ChangeState()
                                : kind < 16 ? BuildGeometry()
                                : kind < 17 ? CombineRegions()
                                : kind < 18 ? TouchPixels()
                                : kind < 19 ? MakeObjects()
                                            : NewTarget();
        return result <= GXResultInvalidArgument || result == GXResultIndexOutOfRange || result == GXResultEngineError;
    }

    /// A new target for the calls that follow; false for an answer that none may give.
    [[nodiscard]] bool Restart() { return NewTarget() <= GXResultInvalidArgument; }

    /// Whether every byte around the pixels of the host's buffer is as it was.
    [[nodiscard]] bool GuardsHold() const {
        for (size_t i = 0; i < kMemory; ++i) {
            const bool inside = i / kStride >= 1 && i / kStride <= kHeight && i % kStride < kWidth * 4;
            if (!inside && m_memory[i] != kGuard) {
                return false;
            }
        }
        return true;
    }

private:
    static constexpr uint32_t kWidth = 13;
    static constexpr uint32_t kHeight = 9;
    static constexpr uint32_t kStride = 60;
    static constexpr size_t kMemory = kStride * (kHeight + 2);
    static constexpr uint8_t kGuard = 0x5A;

    /// Over the host's memory, or over a bitmap.
    GXResult NewTarget() {
        const GXExtBufLayout layout{kWidth, kHeight, kStride, 96, 96};
        GXRenderTarget made = nullptr;
        GXResult result = GXCreateRenderTargetBitmap(Below(3) == 0 ? Pick(m_bitmaps) : nullptr, &made);
        if (result != GXResultSuccess) {
            result = GXCreateRenderTargetExtBuf(
                m_memory.data() + kStride, Below(2) != 0 ? GXPixelFormatPBGRA32 : GXPixelFormatBGRX32, &layout, &made);
        }
        if (result == GXResultSuccess) {
            GXObjectRelease(m_target);
            m_target = made;
            static_cast<void>(GXRenderTargetBeginPaint(m_target));
        }
        return result;
    }

    GXResult ChangeState() {
        const GXMatrix m = Matrix();
        const GXRect r = Rect();
        switch (Below(20)) {
        case 0:
        case 1:
            return GXRenderTargetBeginPaint(m_target);
        case 2:
            return GXRenderTargetEndPaint(m_target);
        case 3:
        case 4:
            return GXRenderTargetPushState(m_target);
        case 5:
            return GXRenderTargetPopState(m_target);
        case 6:
            return GXRenderTargetSetCTM(m_target, Below(3) == 0 ? &m : nullptr);
        case 7:
            return GXRenderTargetConcatCTM(m_target, &m);
        case 8:
            return GXRenderTargetRotateCTM(m_target, Number());
        case 9:
            return Below(2) == 0 ? GXRenderTargetScaleCTM(m_target, Number(), Number())
                                 : GXRenderTargetTranslateCTM(m_target, Number(), Number());
        case 10:
            return GXRenderTargetSetBlendMode(m_target, Below(19));
        case 11:
            return GXRenderTargetSetStrokeAdjustment(m_target, Flag());
        case 12:
            return GXRenderTargetSetOpacityMask(m_target, Below(5), Below(2) == 0 ? Pick(m_brushes) : nullptr);
        case 13:
            return GXRenderTargetSetShapeMask(m_target, Below(5), Below(2) == 0 ? Pick(m_brushes) : nullptr);
        case 14:
        case 15: {
            const GXLayerDesc layer{Below(2) == 0 ? r : GXRect{0, 0, 0, 0}, Number(), Flag(), Flag()};
            return GXRenderTargetBeginLayer(m_target, &layer);
        }
        case 16:
            return GXRenderTargetEndLayer(m_target);
        case 17:
            return GXRenderTargetClipRect(m_target, &r);
        case 18:
            return GXRenderTargetClipEllipse(m_target, &r);
        default:
            return GXRenderTargetClipGeometry(m_target, Pick(m_geometries));
        }
    }

    GXResult Draw() {
        const GXRect r = Rect();
        const GXPoint p{r.left, r.top};
        const GXPoint q{r.right, r.bottom};
        switch (Below(18)) {
        case 0:
            return GXRenderTargetClear(m_target, Color());
        case 1:
            return GXRenderTargetFillRect(m_target, &r, Pick(m_brushes));
        case 2:
            return GXRenderTargetFillEllipse(m_target, &r, Pick(m_brushes));
        case 3:
            return GXRenderTargetFillGeometry(m_target, Pick(m_geometries), Pick(m_brushes));
        case 4:
            return GXRenderTargetFillTextGeometry(m_target, Pick(m_geometries), Pick(m_brushes));
        case 5:
        case 6:
        case 7:
        case 8: {
            const GXStrokeStyle style = Style();
            const GXStrokeStyle* given = Below(4) == 0 ? nullptr : &style;
            const float width = Below(8) == 0 ? Number() : static_cast<float>(Below(60)) / 8.0F;
            const GXBrush brush = Pick(m_brushes);
            switch (Below(4)) {
            case 0:
                return GXRenderTargetStrokeLine(m_target, &p, &q, brush, width, given);
            case 1:
                return GXRenderTargetStrokeRect(m_target, &r, brush, width, given);
            case 2:
                return GXRenderTargetStrokeEllipse(m_target, &r, brush, width, given);
            default:
                return GXRenderTargetStrokeGeometry(m_target, Pick(m_geometries), brush, width, given);
            }
        }
        case 9:
            return GXRenderTargetDrawBitmap(m_target, Pick(m_bitmaps), Below(2) == 0 ? &p : nullptr, Number(),
                                            Below(4));
        case 10: { // often unscaled, onto whole pixels
            const GXPoint whole{std::floor(p.x), std::floor(p.y)};
            return GXRenderTargetDrawBitmap(m_target, Pick(m_bitmaps), &whole, 1.0F, Below(2));
        }
        case 11: {
            const GXIntRect part = IntRect();
            return GXRenderTargetStretchBitmap(m_target, Pick(m_bitmaps), &r, Below(2) == 0 ? &part : nullptr, Number(),
                                               Below(4));
        }
        case 12: {
            const GXMatrix m = Matrix();
            return GXRenderTargetDrawGradient(m_target, Pick(m_gradients), Number(), Below(2) == 0 ? &m : nullptr);
        }
        case 13:
            return GXRenderTargetFillMask(m_target, Pick(m_bitmaps), Pick(m_brushes), Below(2) == 0 ? &r : nullptr,
                                          Below(4));
        case 14:
            return GXRenderTargetInvertRect(m_target, &r);
        case 15:
            return GXRenderTargetInvertLine(m_target, &p, &q);
        default:
            return GXRenderTargetFillText(m_target, Pick(m_fonts), Text().data(), Pick(m_brushes));
        }
    }

    GXResult BuildGeometry() {
        const GXGeometry geometry = Pick(m_geometries);
        const GXPoint a = Point();
        const GXPoint b = Point();
        const GXRect r{a.x, a.y, b.x, b.y};
        const GXMatrix m = Matrix();
        GXGeometry made = nullptr;
        uint8_t answer = 0;
        switch (Below(18)) {
        case 0:
            return GXGeometrySetFillRule(geometry, Below(3));
        case 1:
        case 2:
            return GXGeometryBeginFigure(geometry, &a);
        case 3:
            return GXGeometryEndFigure(geometry);
        case 4:
            return GXGeometryEndFigureClose(geometry);
        case 5:
        case 6:
        case 7:
            return GXGeometryLineTo(geometry, &a);
        case 8: {
            const GXPoint end = Point();
            return GXGeometryCubicCurveTo(geometry, &a, &b, &end);
        }
        case 9:
            return GXGeometryConicCurveTo(geometry, &a, &b);
        case 10:
            return Below(2) == 0 ? GXGeometryEllipse(geometry, &r) : GXGeometryRectangle(geometry, &r);
        case 11:
            return GXGeometryRoundRectangle(geometry, &r, Number(), Number());
        case 12: {
            GXStrokeStyle style = Style();
            GXRect bound;
            static_cast<void>(GXGeometryGetBound(geometry, nullptr, &bound));
            if (!(bound.right - bound.left < 1000.0F && bound.bottom - bound.top < 1000.0F)) {
                style.dashCount = 0; // here nothing is out of sight, and all dashes are made
            }
            const GXResult result = GXGeometryWiden(geometry, Number(), &style, &made);
            return KeepSmall(result, made);
        }
        case 13:
        case 14: {
            const GXResult result = GXGeometryCombine(geometry, Pick(m_geometries), Below(5), Number(), &made);
            return KeepSmall(result, made);
        }
        case 15:
            return GXGeometryHitTest(geometry, &a, &m, Number(), &answer);
        case 16: {
            const GXResult result = GXGeometryTransform(geometry, &m, &made);
            return KeepSmall(result, made);
        }
        default: {
            GXRect bound;
            GXPoint current;
            GXResult result = GXGeometryGetBound(geometry, &m, &bound);
            result = result == GXResultSuccess ? GXGeometryGetCurrentPoint(geometry, &current) : result;
            return result <= GXResultFalse ? GXGeometryPointsEqual(geometry, Pick(m_geometries), &answer) : result;
        }
        }
    }

    /// What is widened again and again grows without end; such a one is let go.
    GXResult KeepSmall(GXResult result, GXGeometry made) {
        size_t points = 0;
        const auto count = [](void* context, const GXPoint*) { ++*static_cast<size_t*>(context); };
        GXGeometrySinkCallbacks sink{};
        sink.context = &points;
        sink.SetFillRule = [](void*, uint32_t) {};
        sink.BeginFigure = count;
        sink.EndFigure = sink.EndFigureClose = [](void*) {};
        sink.LineTo = count;
        sink.CubicTo = [](void* context, const GXPoint*, const GXPoint*, const GXPoint*) {
            ++*static_cast<size_t*>(context);
        };
        if (result == GXResultSuccess && (GXGeometrySendToSink(made, &sink) != GXResultSuccess || points > 200)) {
            return GXObjectRelease(made);
        }
        return Keep(m_geometries, result, made);
    }

    GXResult CombineRegions() {
        const GXRegion region = Pick(m_regions);
        const GXRegion other = Pick(m_regions);
        const GXIntRect r = IntRect();
        const GXIntPoint p{r.left, r.top};
        GXRegion made = nullptr;
        uint8_t answer = 0;
        GXResult result;
        switch (Below(8)) {
        case 0:
            return GXRegionOffset(region, Whole(), Whole());
        case 1:
            return GXRegionContainsPoint(region, &p, &answer);
        case 2:
            return Below(2) == 0 ? GXRegionContainsRect(region, &r, &answer)
                                 : GXRegionHasIntersectionWithRect(region, &r, &answer);
        case 3:
            return Below(2) == 0 ? GXRegionContains(region, other, &answer)
                                 : GXRegionHasIntersection(region, other, &answer);
        case 4:
            return GXRegionEnumRects(
                region, [](void*, const GXIntRect*) {}, nullptr);
        case 5:
            result = GXRegionCombine(region, other, Below(5), &made);
            break;
        case 6:
            result = GXRegionCombineRect(region, &r, Below(5), &made);
            break;
        default:
            result = GXCreateRegionFromRect(&r, &made);
            break;
        }
        return Keep(m_regions, result, made);
    }

    GXResult TouchPixels() {
        const GXBitmap bitmap = Pick(m_bitmaps);
        const GXIntRect r = IntRect();
        const GXIntPoint p{Whole(), Whole()};
        const GXIntRect* part = Below(2) == 0 ? &r : nullptr;
        switch (Below(8)) {
        case 0: {
            GXBitmapData data{};
            const GXResult result = GXBitmapLock(bitmap, part, 1 + Below(2), &data);
            return result == GXResultSuccess ? GXBitmapUnlock(bitmap) : result;
        }
        case 1:
            return GXBitmapColorFill(bitmap, part, Color());
        case 2:
            return GXBitmapCopyFromBitmap(bitmap, &p, Pick(m_bitmaps), part);
        case 3: {
            std::vector<uint8_t> pixels(40 * 30 * 4, static_cast<uint8_t>(Below(256)));
            const GXBitmapData data{pixels.data(), Below(161), 160};
            return Below(2) == 0 ? GXBitmapCopyFromMemory(bitmap, part, &data)
                                 : GXBitmapCopyToMemory(bitmap, part, &data);
        }
        case 4:
            return GXBitmapSetPalette(bitmap, Below(3) == 0 ? nullptr : Pick(m_palettes));
        case 5: { // the cache's handles are never looked into: theirs may have gone
            uint32_t ticket = 0;
            GXBitmap found = nullptr;
            GXResult result = GXBitmapCachePut(bitmap, &ticket);
            result = result == GXResultSuccess ? GXBitmapCacheSetMemoryQuota(Below(4) * 4000) : result;
            result = result == GXResultSuccess ? GXBitmapCacheGet(ticket - Below(4), &found) : result;
            return result == GXResultSuccess ? GXBitmapCacheRemove(ticket - Below(4)) : result;
        }
        case 6: {
            std::array<uint8_t, 24> bytes;
            for (uint8_t& byte : bytes) {
                byte = static_cast<uint8_t>(Below(256));
            }
            bytes[0] = 'B';
            bytes[1] = 'M';
            GXBitmap made = nullptr;
            const GXResult result = GXCreateBitmapFromMemory(bytes.data(), bytes.size(), &made);
            return result == GXResultSuccess ? GXObjectRelease(made) : result;
        }
        default:
            return GXBitmapNotifyChanged(bitmap);
        }
    }

    std::array<uint8_t, kMemory> m_memory;
    GXRenderTarget m_target = nullptr;
};
