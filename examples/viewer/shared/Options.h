// SPDX-License-Identifier: MIT
// The command line of both viewers.
#pragma once

#include <string>
#include <vector>

namespace Viewer {

struct Options {
    std::vector<std::string> files;
    int page = 1;
    float zoom = 0;            // 0: the page is fitted into the window
    bool placed = false;       // `left` and `top` were given:
    int left = 0, top = 0;     // the pixel of the page, at its zoom, at the view's top left
    bool list = false;         // of pages, shown
    int width = 0, height = 0; // of the window; 0: as the front likes

    // On Windows.
    bool hardware = false;
    int frames = 0;              // above 0: quit after that many
    std::string printer, output; // with a printer nothing is shown

    // On SDL.
    std::string shot;     // a PNG instead of a window
    unsigned threads = 0; // 0: one a core
    bool trace = false;

    // Nobody is there to close a message.
    bool Unattended() const noexcept { return frames > 0 || !printer.empty() || !shot.empty(); }
};

enum class Front { Windows, Sdl };

std::string Usage(Front front);
// Of arguments in UTF-8. Throws Gxr::Error; `options` then holds what came before the fault.
void Parse(Front front, const std::vector<std::string>& arguments, Options& options);

} // namespace Viewer
