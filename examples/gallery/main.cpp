// SPDX-License-Identifier: MIT
// Draws one picture per capability through the library's interface and writes them as PNG files into a folder.
#include <cstdio>
#include <string>

#include "Pictures.h"

int main(int argc, char** argv) {
    using namespace Gallery;
    const struct {
        const char* name;
        void (*draw)(Canvas&);
    } pictures[] = {
        {"blend-modes", DrawBlendModes}, {"groups", DrawGroups},   {"masks", DrawMasks}, {"strokes", DrawStrokes},
        {"gradients", DrawGradients},    {"tilings", DrawTilings}, {"text", DrawText},   {"hit-test", DrawHitTest},
        {"regions", DrawRegions},        {"shapes", DrawShapes},   {"photo", DrawPhoto},
    };
    if (argc != 2) {
        std::fprintf(stderr, "usage: gallery FOLDER\n");
        return 2;
    }
    for (const auto& picture : pictures) {
        Canvas canvas(kWidth, kHeight);
        picture.draw(canvas);
        const std::string path = std::string(argv[1]) + "/" + picture.name + ".png";
        if (!canvas.Save(path)) {
            std::fprintf(stderr, "gallery: %s can't be written\n", path.c_str());
            return 1;
        }
        std::printf("%s\n", path.c_str());
    }
    return 0;
}
