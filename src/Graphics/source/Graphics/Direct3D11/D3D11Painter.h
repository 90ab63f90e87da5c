// SPDX-License-Identifier: MIT
// Assembles one draw: paint, masks, clip and coverage become fragments, constants and textures in the order that the
// shaders have, and the geometry becomes quadrilaterals of the batch.
#pragma once

#include "../Arena.h"
#include "../Software/SwClipMaker.h"
#include "D3D11Paint.h"
#include "D3D11SubTarget.h"

namespace Graphics {

/// A mask over a draw's shape: a paint and the rule by which its pixels become values.
struct D3D11ShapeMask {
    D3D11Paint paint;
    uint32_t type = GXMaskTypeAlpha;
};

class D3D11Painter {
public:
    explicit D3D11Painter(Arena& arena) noexcept : m_maker(arena) {}

    [[nodiscard]] D3D11PaintMaker& Maker() noexcept { return m_maker; }

    /// What a draw needs besides its geometry.
    struct Call {
        D3D11Context& context;
        D3D11SubTarget& target;
        SwClipPool& clips;
        IntRect visible; ///< device pixels that the draw may change; not empty
        IntRect limit;   ///< what bounds and clip leave of the target
    };

    /// `cover(sink)` sends the coverage inside `call.visible`. `extra` may be null.
    template <class Cover>
    void Draw(const Call& call, const D3D11Paint& paint, const D3D11ShapeMask* extra, Cover&& cover) {
        if (!call.target.CoverageIsShape()) {
            D3D11DrawState state;
            call.target.Describe(call.context, call.target.State().blendMode, call.visible, state);
            AddPaint(call, paint, extra, state);
            AddClip(call, state);
            D3D11Mesh& mesh = Begin(call, paint, std::move(state), call.visible);
            D3D11MeshSink sink(mesh, call.visible);
            cover(sink);
            return;
        }
        SwClipBuilder builder(call.clips, call.target.State().clip.get(), call.visible);
        cover(builder);
        DrawCovered(call, paint, extra, builder.Finish());
    }

    /// Replaces the plane's pixels in `visible` by the premultiplied colour, as far as the clip leaves them.
    void Clear(const Call& call, const float (&color)[4]);

    /// Textures of clips belong to a device and to the clips of one paint bracket.
    void Forget() noexcept { m_clipImages.clear(); }

private:
    struct ClipImage {
        SwClipRef clip;
        D3D11SwFallbackSurface::Image image;
    };

    void AddPaint(const Call& call, const D3D11Paint& paint, const D3D11ShapeMask* extra, D3D11DrawState& state);
    void AddMask(D3D11DrawState& state, const D3D11Paint& paint, uint32_t type, bool ofShape) const;
    void AddClip(const Call& call, D3D11DrawState& state);
    void AddCoverage(D3D11DrawState& state, const D3D11SwFallbackSurface::Image& image) const;
    [[nodiscard]] D3D11Mesh& Begin(const Call& call, const D3D11Paint& paint, D3D11DrawState&& state,
                                   const IntRect& box) const;
    void DrawCovered(const Call& call, const D3D11Paint& paint, const D3D11ShapeMask* extra, const SwClipRef& covered);
    void ClearPlane(const Call& call, const std::shared_ptr<D3D11Texture>& plane, D3D11Blend blend,
                    const D3D11Paint& paint);

    D3D11PaintMaker m_maker;
    std::vector<ClipImage> m_clipImages; // least recently used first
};

} // namespace Graphics
