// SPDX-License-Identifier: MIT
// The front end of a render target above a back end that only notes its calls: which one each drawing call becomes, and
// under which state.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Bitmaps/Bitmap.h"
#include "Exception.h"
#include "Geometry/StrokeStyle.h"
#include "Paint/Gradient.h"
#include "Target/RenderTarget.h"

namespace Graphics {
namespace {

struct Notes {
    std::vector<std::string> calls;
    std::vector<GraphicsState> states; ///< of the calls that have one
    bool refusesLayers = false;        ///< EndLayer raises
};

class NotingTarget final : public RenderTargetBase {
public:
    explicit NotingTarget(Notes& notes) noexcept : m_notes(notes) {}

    [[nodiscard]] GXPixelFormat GetPixelFormat() const override { return GXPixelFormatBGRX32; }
    [[nodiscard]] Size GetSize() const override { return {10, 10}; }
    void BeginPaint() override { Note("begin"); }
    void EndPaint() override { Note("end"); }
    void PushState() override { Note("push"); }
    void PopState() override { Note("pop"); }
    void BeginLayer(const GraphicsState& state, const GXLayerDesc&) override { Note("layer", state); }
    void EndLayer(const GraphicsState& around) override {
        Note("end layer", around);
        if (m_notes.refusesLayers) {
            GX_RAISE("NotingTarget::EndLayer", "refused");
        }
    }
    void DropLayer() noexcept override { Note("drop"); }
    void Clear(uint32_t) override { Note("clear"); }
    void Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) override {
        static constexpr const char* kPaths[] = {"figure", "shape", "outline", "glyphs", "plane"};
        static constexpr const char* kInks[] = {"solid", "image", "gradient"};
        std::string call = std::string(kPaths[static_cast<size_t>(path.GetKind())]) + " " + kInks[ink.index()];
        if (const auto* image = std::get_if<ImageInk>(&ink)) {
            static constexpr const char* kEdges[] = {" extended", " hidden", " shown"};
            call += kEdges[static_cast<size_t>(image->edges)];
        }
        Note(call + (mask != nullptr ? " masked" : ""), state);
    }
    void Stroke(const GraphicsState& state, const Path&, const Ink&, float, const StrokeStyle&) override {
        Note("stroke", state);
    }
    void Clip(const GraphicsState& state, const Path&) override { Note("clip", state); }
    void Invert(const Matrix&, const BasicFigure& figure) override {
        Note(figure.GetKind() == BasicFigure::Kind::Line ? "invert line" : "invert rectangle");
    }

private:
    void Note(const std::string& call) const { m_notes.calls.push_back(call); }
    void Note(const std::string& call, const GraphicsState& state) const {
        Note(call);
        m_notes.states.push_back(state);
    }

    Notes& m_notes;
};

/// Squares, each 7 further than the one before; spaces are blank.
class SquareFont final : public FontBase {
public:
    SquareFont() : FontBase(10.0F) {}
    void LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const override {
        std::copy(text.begin(), text.end(), glyphs);
    }
    void Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const override {
        if (glyph != ' ') {
            AddRectangle(out, {0, 0, 5, 5});
        }
        metrics.advanceX = 7.0F;
    }
};

class FrontEnd : public testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> Take() { return std::exchange(m_notes.calls, {}); }
    [[nodiscard]] static std::string Message(const std::function<void()>& work) {
        try {
            work();
        } catch (const Exception& e) {
            return e.what();
        }
        return "";
    }

    using Calls = std::vector<std::string>;
    Notes m_notes;
    RenderTarget m_target{std::make_unique<NotingTarget>(m_notes)};
    const SolidBrush m_brush{{1, 0, 0, 1}};
    const BasicFigure m_square{BasicFigure::Kind::Rectangle, {1, 2, 5, 6}};
};

} // namespace

TEST_F(FrontEnd, EveryDrawIsOneCall) {
    const auto bitmap = Bitmap::Create({8, 6, GXPixelFormatBGRX32, 96, 96});
    Geometry stored;
    m_target.BeginPaint();
    m_target.Fill(stored, m_brush); // nothing in it yet
    AddRectangle(stored, {0, 0, 4, 4});
    m_target.Fill(stored, m_brush);
    m_target.Fill(Path::Outline(stored), m_brush);
    m_target.Fill(m_square, BitmapBrush(bitmap));
    m_target.Fill(BasicFigure(BasicFigure::Kind::Ellipse, {3, 3, 3, 9}), m_brush); // no area
    m_target.DrawBitmap(*bitmap, {0, 0, 8, 6}, {0, 0, 16, 12}, 1.0F, 0);
    m_target.DrawBitmap(*bitmap, {2, 1, 5, 4}, {0, 0, 16, 12}, 1.0F, 0);
    m_target.DrawBitmap(*bitmap, {-3, 0, 8, 6}, {0, 0, 16, 12}, 1.0F, 0);
    m_target.DrawBitmap(*bitmap, {8, 0, 12, 6}, {0, 0, 16, 12}, 1.0F, 0); // beside it
    m_target.FillMask(*bitmap, m_brush, {0, 0, 8, 6}, 0);
    m_target.DrawGradient(std::make_shared<LinearGradient>(), 1.0F, kIdentity);
    const Font font(std::make_shared<SquareFont>());
    const uint16_t text[] = {' ', 'a', 'b', 0};
    m_target.FillText(font, text, m_brush);
    m_target.FillText(font, text + 3, m_brush); // empty
    m_target.Stroke(m_square, m_brush, 2.0F, StrokeStyle());
    m_target.ClipFigure(m_square);
    m_target.ClipFigure({BasicFigure::Kind::Rectangle, {3, 3, 3, 9}});
    m_target.InvertRect({0, 0, 3, 3});
    m_target.InvertLine({0, 0}, {3, 3});
    EXPECT_EQ(Take(), (Calls{"begin", "shape solid", "outline solid", "figure image extended", "figure image hidden",
                             "figure image hidden", "figure image shown", "figure solid masked", "plane gradient",
                             "glyphs solid", "stroke", "clip", "invert rectangle", "invert line"}));
}

TEST_F(FrontEnd, GlyphsWithAnOutlineFollowTheirAdvances) {
    const Font font(std::make_shared<SquareFont>());
    const uint16_t text[] = {'a', ' ', 'b', 0};
    std::vector<float> places;
    const GlyphRun run{&font, text};
    run.ForEach({2, 0, 0, 2, 100, 0}, [&](const Shape& outline, const Matrix& m) {
        EXPECT_FALSE(outline.Empty());
        places.push_back(m.m20);
    });
    EXPECT_EQ(places, (std::vector<float>{100, 128}));
    EXPECT_FALSE(run.IsBlank());
    EXPECT_TRUE((GlyphRun{&font, text + 3}).IsBlank());
}

TEST_F(FrontEnd, StatesNestInPushesAndLayers) {
    m_target.SetTransform({2, 0, 0, 2, 0, 0});
    m_target.SetBlendMode(GXBlendModeMultiply);
    m_target.BeginPaint(); // with what was set before
    m_target.PushState();
    m_target.SetBlendMode(GXBlendModeScreen);
    m_target.SetStrokeAdjustment(false);
    m_target.SetShapeMask(GXMaskTypeAlpha, std::make_shared<SolidBrush>(m_brush));
    m_target.BeginLayer({});
    EXPECT_EQ(Message([&] { m_target.PopState(); }), "State stack is empty") << "pushed outside of the layer";
    m_target.Fill(m_square, m_brush);
    m_target.EndLayer();
    m_target.PopState();
    m_target.Fill(m_square, m_brush);
    EXPECT_EQ(Message([&] { m_target.PopState(); }), "State stack is empty");
    EXPECT_EQ(Message([&] { m_target.EndLayer(); }), "No layer is open");
    m_target.EndPaint();

    EXPECT_EQ(Take(), (Calls{"begin", "push", "layer", "figure solid", "end layer", "pop", "figure solid", "end"}));
    const std::vector<GraphicsState>& s = m_notes.states; // layer, in it, end of layer, after it
    ASSERT_EQ(s.size(), 4U);
    for (const GraphicsState& state : s) {
        EXPECT_EQ(state.transform.m00, 2.0F);
    }
    EXPECT_EQ(s[0].blendMode, static_cast<uint32_t>(GXBlendModeScreen));
    EXPECT_EQ(s[1].blendMode, 0U);
    EXPECT_FALSE(s[1].HasMasks());
    EXPECT_FALSE(s[1].strokeAdjustment);
    EXPECT_EQ(s[2].blendMode, static_cast<uint32_t>(GXBlendModeScreen));
    EXPECT_TRUE(s[2].shapeMask.IsSet());
    EXPECT_EQ(s[3].blendMode, static_cast<uint32_t>(GXBlendModeMultiply));
    EXPECT_TRUE(s[3].strokeAdjustment);
    EXPECT_EQ(m_target.GetTransform().m00, 1.0F) << "as in a new target";
}

TEST_F(FrontEnd, LayersThatAreRefusedStayOpenUntilPaintingEnds) {
    m_target.BeginPaint();
    m_target.BeginLayer({});
    m_target.BeginLayer({});
    m_target.SetBlendMode(GXBlendModeHue);
    m_notes.refusesLayers = true;
    EXPECT_EQ(Message([&] { m_target.EndLayer(); }), "refused");
    m_target.Fill(m_square, m_brush);
    EXPECT_EQ(m_notes.states.back().blendMode, static_cast<uint32_t>(GXBlendModeHue)) << "still in the inner one";
    static_cast<void>(Take());
    EXPECT_NO_THROW(m_target.EndPaint());
    EXPECT_EQ(Take(), (Calls{"end layer", "drop", "end layer", "drop", "end"}));
    EXPECT_EQ(Message([&] { m_target.EndLayer(); }), "Painting has not begun");
}

TEST_F(FrontEnd, BadMasksAreRefusedWhereSomethingIsDrawn) {
    const Shape empty;
    m_target.BeginPaint();
    m_target.SetOpacityMask(4, std::make_shared<SolidBrush>(m_brush));
    m_target.Fill(empty, m_brush);
    m_target.Stroke(empty, m_brush, 1.0F, StrokeStyle());
    const std::string refused = "Unsupported soft mask type.";
    EXPECT_EQ(Message([&] { m_target.Fill(m_square, m_brush); }), refused);
    EXPECT_EQ(Message([&] { m_target.Stroke(m_square, m_brush, 1.0F, StrokeStyle()); }), refused);
    EXPECT_EQ(Message([&] { m_target.DrawGradient(std::make_shared<LinearGradient>(), 1.0F, kIdentity); }), refused);
    m_target.Clear(0);
    m_target.ClipFigure(m_square);
    m_target.InvertRect({0, 0, 3, 3});
    m_target.SetOpacityMask(4, nullptr);
    m_target.Fill(m_square, m_brush);
    EXPECT_EQ(Take(), (Calls{"begin", "clear", "clip", "invert rectangle", "figure solid"}));
}

} // namespace Graphics
