// SPDX-License-Identifier: MIT
// The program's window on SDL: its events become actions of the reader, its surface shows the screen.
#pragma once

#include "Options.h"
#include "Screen.h"

#include <SDL.h>

#include <memory>

namespace Viewer {

class Window {
public:
    // Throws Gxr::Error where there is no display. The drawer's document is open.
    Window(const Options& options, Drawer::Open open);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window();

    // Until the window is closed. The program's exit code.
    int Run();

private:
    void Handle(const SDL_Event& event);
    void Key(const SDL_Keysym& key);
    void Text(const char* text);
    void Wheel(const SDL_MouseWheelEvent& wheel);
    // Brings drawer, window and title to what the reader says.
    void Follow();
    void Show();
    void Tell();

    const Options m_options;
    SDL_Window* m_window = nullptr;
    Uint32 m_news = 0; // the event that the drawer sends
    Reader m_reader;
    Screen m_screen;
    std::unique_ptr<Drawer> m_drawer;
    bool m_quit = false, m_placed = false;
    std::string m_title, m_traced, m_told;
};

} // namespace Viewer
