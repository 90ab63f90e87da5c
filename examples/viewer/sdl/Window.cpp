// SPDX-License-Identifier: MIT
#include "Window.h"

#include "Session.h"

#include "Format.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Viewer {
namespace {

constexpr const char* kNeedsNone = "; --shot out.png needs none";

[[noreturn]] void Fail(const char* what) { throw Gxr::Error(std::string(what) + ": " + SDL_GetError()); }

bool IsDown(Uint16 modifiers, int which) { return (modifiers & which) != 0; }

} // namespace

Window::Window(const Options& options, Drawer::Open open) : m_options(options) {
    // What is not drawn through SDL needs no graphics card.
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    // Without a display SDL goes on with drivers that show nothing.
    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr &&
        std::getenv("SDL_VIDEODRIVER") == nullptr)
        throw Gxr::Error(std::string("there is no display for a window (DISPLAY is not set)") + kNeedsNone);
    if (SDL_Init(SDL_INIT_VIDEO) != 0)
        throw Gxr::Error(std::string("there is no display for a window (") + SDL_GetError() + ")" + kNeedsNone);
    try {
        m_news = SDL_RegisterEvents(1);
        m_drawer = std::make_unique<Drawer>(std::move(open), [type = m_news] {
            SDL_Event event{};
            event.type = type;
            SDL_PushEvent(&event); // a full queue has news enough in it
        });
        m_drawer->WaitForNews();
        const Drawer::Status status = m_drawer->GetStatus();
        if (!status.opened)
            throw Gxr::Error(status.failure);
        Begin(m_reader, m_options, status);
        const int width = m_reader.ViewLeft() + m_reader.GetView().ClientWidth();
        m_window = SDL_CreateWindow(status.name.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, width,
                                    m_reader.GetView().ClientHeight(), SDL_WINDOW_RESIZABLE);
        if (m_window == nullptr)
            Fail("the window cannot be made");
        SDL_StartTextInput();
    } catch (...) {
        m_drawer.reset();
        SDL_Quit();
        throw;
    }
}

Window::~Window() {
    m_drawer.reset();
    SDL_DestroyWindow(m_window);
    SDL_Quit();
}

int Window::Run() {
    Follow();
    SDL_Event event;
    while (!m_quit) {
        if (SDL_WaitEvent(&event) == 0)
            Fail("events cannot be waited for");
        do // what has come in the meantime makes one frame
            Handle(event);
        while (SDL_PollEvent(&event) != 0);
        Follow();
    }
    return 0;
}

void Window::Handle(const SDL_Event& event) {
    switch (event.type) {
    case SDL_QUIT:
        m_quit = true;
        break;
    case SDL_WINDOWEVENT:
        if (event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED)
            m_reader.SetClient(event.window.data1, event.window.data2);
        break;
    case SDL_KEYDOWN:
        Key(event.key.keysym);
        break;
    case SDL_TEXTINPUT:
        Text(event.text.text);
        break;
    case SDL_MOUSEWHEEL:
        Wheel(event.wheel);
        break;
    case SDL_MOUSEBUTTONDOWN:
        if (event.button.button == SDL_BUTTON_LEFT)
            m_reader.Press(event.button.x, event.button.y);
        break;
    case SDL_MOUSEMOTION:
        m_reader.Move(event.motion.x, event.motion.y);
        break;
    case SDL_MOUSEBUTTONUP:
        if (event.button.button == SDL_BUTTON_LEFT)
            m_reader.Release();
        break;
    default:
        if (event.type == m_news)
            TakeSize(m_reader, m_options, m_drawer->GetStatus(), m_placed);
        break;
    }
}

void Window::Key(const SDL_Keysym& key) {
    const bool control = IsDown(key.mod, KMOD_CTRL);
    switch (key.sym) {
    case SDLK_LEFT:
        return m_reader.Do(Action::Left);
    case SDLK_RIGHT:
        return m_reader.Do(Action::Right);
    case SDLK_UP:
        return m_reader.Do(Action::Up);
    case SDLK_DOWN:
        return m_reader.Do(Action::Down);
    case SDLK_PAGEUP:
        return m_reader.Do(control ? Action::PreviousPage : Action::ScreenUp);
    case SDLK_PAGEDOWN:
        return m_reader.Do(control ? Action::NextPage : Action::ScreenDown);
    case SDLK_BACKSPACE:
        return m_reader.Do(Action::ScreenUp);
    case SDLK_SPACE:
        return m_reader.Do(Action::ScreenDown);
    case SDLK_HOME:
        return m_reader.Do(Action::FirstPage);
    case SDLK_END:
        return m_reader.Do(Action::LastPage);
    case SDLK_0:
    case SDLK_KP_0:
        return control ? m_reader.Do(Action::Fit) : void();
    case SDLK_1:
    case SDLK_KP_1:
        return control ? m_reader.Do(Action::ActualSize) : void();
    case SDLK_ESCAPE:
        m_quit = true;
        return;
    default:
        return;
    }
}

// Characters, wherever the keyboard has them.
void Window::Text(const char* text) {
    switch (text[0]) {
    case '+':
        return m_reader.Do(Action::ZoomIn);
    case '-':
        return m_reader.Do(Action::ZoomOut);
    case 'n':
        return m_reader.Do(Action::NextPage);
    case 'p':
        return m_reader.Do(Action::PreviousPage);
    case 't':
        return m_reader.Do(Action::ToggleList);
    case 'q':
        m_quit = true;
        return;
    default:
        return;
    }
}

void Window::Wheel(const SDL_MouseWheelEvent& wheel) {
    const double up = wheel.preciseY != 0 ? double{wheel.preciseY} : double{static_cast<float>(wheel.y)};
    if (wheel.x != 0)
        m_reader.Wheel(-wheel.x, wheel.mouseX, wheel.mouseY, true);
    if (up != 0)
        m_reader.Wheel(up, wheel.mouseX, wheel.mouseY, IsDown(static_cast<Uint16>(SDL_GetModState()), KMOD_SHIFT));
}

void Window::Follow() {
    m_drawer->Want(WantedBy(m_reader));
    Show();
    Tell();
}

void Window::Show() {
    m_screen.Compose(m_reader, *m_drawer);
    SDL_Surface* const surface = SDL_GetWindowSurface(m_window);
    if (surface == nullptr)
        Fail("the window cannot be drawn into");
    SDL_Surface* const frame =
        SDL_CreateRGBSurfaceWithFormatFrom(const_cast<uint32_t*>(m_screen.Pixels()), m_screen.Width(),
                                           m_screen.Height(), 32, 4 * m_screen.Width(), SDL_PIXELFORMAT_RGB888);
    if (frame == nullptr)
        Fail("the window cannot be drawn into");
    SDL_BlitSurface(frame, nullptr, surface, nullptr);
    SDL_FreeSurface(frame);
    SDL_UpdateWindowSurface(m_window);
}

// In the title, on the standard error stream what failed, and with --trace each complete view.
void Window::Tell() {
    const Drawer::Status status = m_drawer->GetStatus();
    std::string title = status.name + " - " + std::to_string(m_reader.Page() + 1) + "/" + std::to_string(status.pages);
    if (status.failure.empty())
        title += " - " + std::to_string(std::lround(m_reader.GetView().Zoom() * 100.0f)) + " %";
    else
        title += " - " + status.failure;
    if (title != m_title)
        SDL_SetWindowTitle(m_window, title.c_str());
    m_title = title;
    if (!status.failure.empty() && status.failure != m_told)
        std::fprintf(stderr, "viewer: %s\n", status.failure.c_str());
    m_told = status.failure;
    if (!m_options.trace || !status.complete || (m_reader.IsListShown() && !status.thumbsComplete))
        return;
    const std::string view = Describe(m_reader);
    if (view == m_traced)
        return;
    const Drawer::Counts counts = m_drawer->GetCounts();
    std::printf("%s # %llu pixels in %llu parts\n", view.c_str(), static_cast<unsigned long long>(counts.pixels),
                static_cast<unsigned long long>(counts.pieces));
    std::fflush(stdout);
    m_traced = view;
}

} // namespace Viewer
