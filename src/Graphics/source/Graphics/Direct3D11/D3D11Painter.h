// SPDX-License-Identifier: MIT
// Assembles one draw. For the card: paint, masks, clip and coverage become fragments, constants and textures in the
// order that the shaders have, and the geometry becomes quadrilaterals of the batch. Where the card's formulas look
// different from the software's, or the compiler refuses the shader, the software's pipeline draws, into the planes of
// the target's fallback surface.
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

/// A mask over a draw's shape: a paint and the rule by which its pixels become values.
struct D3D11ShapeMask {
    D3D11Paint paint;
    uint32_t type = GXMaskTypeAlpha;
};

class D3D11Painter {
public:
    explicit D3D11Painter(Arena& arena) noexcept : m_arena(arena), m_maker(arena) {}

    /// Where a draw goes, and under what.
    struct Call {
        D3D11Context& context;
        D3D11SubTarget& target;
        const GraphicsState& state;
        ClipPool& clips;
        IntRect visible; ///< device pixels that the draw may change; not empty
        IntRect limit;   ///< the scissor: what the geometry has to be cut to

        [[nodiscard]] const ClipRef& Clip() const noexcept { return target.Clips().Current(); }
    };
    /// What it draws with.
    struct Colors {
        const Ink& ink;
        const Matrix& transform; ///< of ink and mask: user space to the device
        const ImageInk* mask;    ///< the draw's own; null: none
    };

    /// `cover(sink)` sends the coverage inside `call.visible`.
    template <class Cover> void Draw(const Call& call, const Colors& colors, Cover&& cover) {
        Route route = RouteOf(call, colors);
        if (const auto* software = std::get_if<SoftwareRoute>(&route)) {
            DrawInSoftware(call, *software->source, software->hasMask ? &software->mask : nullptr, cover);
        } else {
            DrawOnCard(call, std::get<CardRoute>(route), cover);
        }
    }
    /// The whole of `call.visible`.
    void DrawAll(const Call& call, const Colors& colors);
    /// A group that was drawn, into what it was opened in.
    void DrawGroup(const Call& call, D3D11SubTarget& group);

    /// Replaces the plane's pixels in `visible` by the premultiplied colour, as far as the clip leaves them.
    void Clear(const Call& call, uint32_t premultiplied);
    /// Inverts what `send(inverter)` covers.
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

    /// Textures of clips belong to a device and to the clips of one paint bracket.
    void Forget() noexcept { m_clipImages.clear(); }

private:
    struct ClipImage {
        ClipRef clip;
        D3D11SoftwareTextures::Image image;
    };

    /// Who draws is settled before the geometry is fed, together with all that he colours it with.
    struct SoftwareRoute {
        SwColorSource* source;
        SwMaskInput mask;
        bool hasMask;
    };
    struct CardRoute {
        D3D11DrawState state; ///< all of the draw but its coverage, with a shader that there is
        float color[4];       ///< of the quadrilaterals
        bool gathers;         ///< its coverage is gathered under the clip before it is sent
    };
    using Route = std::variant<SoftwareRoute, CardRoute>;
    [[nodiscard]] Route RouteOf(const Call& call, const Colors& colors);
    /// False where the compiler refuses the shader. `extra` may be null.
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

    /// The clip is worth a few quadrilaterals, with which draws under different clips are one, rather than a texture.
    [[nodiscard]] static bool IsSmallClip(const Call& call) noexcept;
    /// What a draw covers under its clip: as a texture where coverage is shape, else row by row.
    void SendGathered(const Call& call, const ClipRef& covered, CardRoute& route);

    /// False where the compiler refuses one of the shaders.
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
