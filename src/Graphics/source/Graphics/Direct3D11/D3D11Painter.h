// SPDX-License-Identifier: MIT
// Assembles one draw. On the GPU, paint, masks, clip and coverage become fragments, constants and textures in the
// shader's order, and the geometry becomes quadrilaterals of the batch. If the GPU's formulas look different from the
// software's, or the compiler refuses the shader, the software pipeline draws into the planes of the target's fallback
// surface.
#pragma once

#include <variant>

#include "../Arena.h"
#include "../Coverage/ClipMaker.h"
#include "../Software/SwAssembly.h"
#include "../Software/SwInverter.h"
#include "D3D11Paint.h"
#include "D3D11SubTarget.h"
#include "Mesh/D3D11MeshInverter.h"

namespace Graphics {

/// A mask over a draw's shape: a paint and the rule that turns its pixels into values.
struct D3D11ShapeMask {
    D3D11Paint paint;
    uint32_t type = GXMaskTypeAlpha;
};

class D3D11Painter {
public:
    explicit D3D11Painter(Arena& arena) noexcept : m_arena(arena), m_maker(arena) {}

    /// The destination and the state of a draw.
    struct Call {
        D3D11Context& context;
        D3D11SubTarget& target;
        const GraphicsState& state;
        ClipPool& clips;
        IntRect visible; ///< device pixels that the draw may change; not empty
        IntRect limit;   ///< the scissor: the geometry must be cut to it

        [[nodiscard]] const ClipRef& Clip() const noexcept { return target.Clips().Current(); }
    };
    /// The paint of a draw.
    struct Colors {
        const Ink& ink;
        const Matrix& transform; ///< of ink and mask: user space to the device
        const ImageInk* mask;    ///< the draw's own mask; null: none
    };

    /// `cover(sink)` must send the coverage inside `call.visible`.
    template <class Cover> void Draw(const Call& call, const Colors& colors, Cover&& cover) {
        Route route = RouteOf(call, colors);
        if (const auto* software = std::get_if<SoftwareRoute>(&route)) {
            DrawInSoftware(call, *software->source, software->hasMask ? &software->mask : nullptr, cover);
        } else {
            DrawOnCard(call, std::get<CardRoute>(route), cover);
        }
    }
    /// Paints the whole of `call.visible`.
    void DrawAll(const Call& call, const Colors& colors);
    /// Composites a group that has content into its parent.
    void DrawGroup(const Call& call, D3D11SubTarget& group);

    /// Replaces the plane's pixels in `visible`, inside the clip, by the premultiplied colour.
    void Clear(const Call& call, uint32_t premultiplied);
    /// Inverts the pixels covered by `send(inverter)`.
    template <class Send> void Invert(const Call& call, Send&& send) {
        if (call.target.WayOf(call.context, GXBlendModeNormal, call.visible) == D3D11SubTarget::Way::Software) {
            const SwTargetPlanes planes = call.target.BeginInSoftware(call.context, call.visible);
            SwInverter inverter(planes, call.visible, call.Clip().get());
            send(inverter);
            return;
        }
        D3D11MeshInverter inverter(BeginInversion(call), call.visible, call.Clip().get());
        send(inverter);
    }

    /// Drops the textures of clips, which belong to one device and one paint bracket.
    void Forget() noexcept { m_clipImages.clear(); }

private:
    struct ClipImage {
        ClipRef clip;
        D3D11SoftwareTextures::Image image;
    };

    /// The route of a draw and its paint are decided before the geometry is fed.
    struct SoftwareRoute {
        SwColorSource* source;
        SwMaskInput mask;
        bool hasMask;
    };
    struct CardRoute {
        D3D11DrawState state; ///< everything about the draw but its coverage; the shader exists
        float color[4];       ///< of the quadrilaterals
        bool gathers;         ///< coverage is gathered under the clip before it is sent
    };
    using Route = std::variant<SoftwareRoute, CardRoute>;
    [[nodiscard]] Route RouteOf(const Call& call, const Colors& colors);
    /// False if the compiler refuses the shader. `extra` may be null.
    [[nodiscard]] bool PrepareCard(const Call& call, const D3D11Paint& paint, const D3D11ShapeMask* extra,
                                   CardRoute& route);

    template <class Cover>
    void DrawInSoftware(const Call& call, SwColorSource& source, const SwMaskInput* mask, Cover&& cover) {
        const SwTargetPlanes planes = call.target.BeginInSoftware(call.context, call.visible);
        RunPipeLine(m_buffers, m_arena, {call.state, call.Clip().get(), planes, call.visible, source, mask}, cover);
    }

    template <class Cover> void DrawOnCard(const Call& call, CardRoute& route, Cover&& cover) {
        if (!route.gathers) {
            D3D11MeshSink sink(Begin(call, route.color, std::move(route.state), call.visible), call.visible);
            cover(sink);
            return;
        }
        ClipBuilder builder(call.clips, call.Clip().get(), call.visible);
        cover(builder);
        SendGathered(call, builder.Finish(), route);
    }

    /// Whether the clip is better sent as a few quadrilaterals than as a texture: draws under different clips can then
    /// be joined.
    [[nodiscard]] static bool IsSmallClip(const Call& call) noexcept;
    /// Sends a draw's coverage under its clip: as a texture if coverage is shape, otherwise row by row.
    void SendGathered(const Call& call, const ClipRef& covered, CardRoute& route);

    /// False if the compiler refuses one of the shaders.
    [[nodiscard]] bool DrawGroupOnCard(const Call& call, D3D11SubTarget& group);
    void DrawGroupInSoftware(const Call& call, D3D11SubTarget& group);
    [[nodiscard]] static bool HasShadersOfClear(const Call& call);
    void ClearOnCard(const Call& call, const float (&color)[4]);
    [[nodiscard]] D3D11Mesh& BeginInversion(const Call& call);
    void AddPaint(const Call& call, const D3D11Paint& paint, const D3D11ShapeMask* extra, D3D11DrawState& state);
    void AddMask(D3D11DrawState& state, const D3D11Paint& paint, uint32_t type, bool ofShape) const;
    void AddClip(const Call& call, D3D11DrawState& state);
    void AddCoverage(D3D11DrawState& state, const D3D11SoftwareTextures::Image& image) const;
    [[nodiscard]] static D3D11Mesh& Begin(const Call& call, const float (&color)[4], D3D11DrawState&& state,
                                          const IntRect& box);
    void ClearPlane(const Call& call, const std::shared_ptr<D3D11Texture>& plane, D3D11Blend blend,
                    const D3D11Paint& paint);

    Arena& m_arena;
    SwRowBuffers m_buffers;
    D3D11PaintMaker m_maker;
    std::vector<ClipImage> m_clipImages; // least recently used first
};

} // namespace Graphics
