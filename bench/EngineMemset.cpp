// SPDX-License-Identifier: MIT
// Not an engine but the limit: the rows of opaque rectangles on whole pixels, set with memset.
#include <cmath>
#include <cstring>

#include "Engine.h"

namespace Bench {
namespace {

class MemsetDrawing final : public Drawing {
public:
    MemsetDrawing(const Scene& scene, const Canvas& canvas) : m_canvas(canvas) {
        for (const Shape& shape : scene.shapes) {
            const Point a = shape.TopLeft(), b = shape.BottomRight();
            m_blocks.push_back({static_cast<int>(a.x), static_cast<int>(a.y), static_cast<size_t>(b.x - a.x) * 4,
                                static_cast<int>(b.y - a.y)});
        }
    }

    void Draw() override {
        for (const Block& block : m_blocks) {
            auto* row = reinterpret_cast<unsigned char*>(m_canvas.pixels) +
                        block.y * static_cast<ptrdiff_t>(m_canvas.stride) + block.x * ptrdiff_t{4};
            for (int y = 0; y < block.height; ++y, row += m_canvas.stride) {
                std::memset(row, 0x55, block.rowBytes);
            }
        }
    }

private:
    struct Block {
        int x, y;
        size_t rowBytes;
        int height;
    };
    Canvas m_canvas;
    std::vector<Block> m_blocks;
};

} // namespace

const Engine kMemset = {"memset", [](const Scene& scene, const Canvas& canvas) -> std::unique_ptr<Drawing> {
                            const auto whole = [](Point p) { return p.x == std::floor(p.x) && p.y == std::floor(p.y); };
                            if (scene.action != Action::Fill || scene.paint.kind != PaintKind::Solid ||
                                scene.paint.color >> 24 != 255 || scene.blend != 0 || !scene.clip.Empty()) {
                                return nullptr;
                            }
                            for (const Shape& shape : scene.shapes) {
                                if (!shape.IsRectangle() || !whole(shape.TopLeft()) || !whole(shape.BottomRight())) {
                                    return nullptr;
                                }
                            }
                            return std::make_unique<MemsetDrawing>(scene, canvas);
                        }};

} // namespace Bench
