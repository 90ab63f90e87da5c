// SPDX-License-Identifier: MIT
// The program's window: menu, keys, mouse and scroll bars around the page.
#pragma once

#include "Canvas.h"
#include "Options.h"
#include "Reader.h"

#include <memory>

namespace Viewer {

class MainWindow {
public:
    // Throws Gxr::Error. `hardware`, `zoom` and `frames` as in Options.
    explicit MainWindow(const Options& options);
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;
    ~MainWindow();

    // Recordings, each a page. Throws Gxr::Error; what was shown before is then still there.
    void Open(const std::vector<std::string>& paths);
    void Open(const std::wstring& path) { Open(std::vector<std::string>{Narrow(path)}); }
    // Until the window is closed. The program's exit code.
    int Run();

    HWND Window() const noexcept { return m_window; }
    const View& GetView() const noexcept { return m_reader.GetView(); }
    int Page() const noexcept { return m_reader.Page(); }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    // False: left to Windows.
    bool Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void Command(int command);
    bool Key(WPARAM key);
    void Wheel(UINT message, WPARAM wParam, LPARAM lParam);
    void Drag(UINT message, LPARAM lParam);
    void Scroll(int bar, int request);
    void Dropped(WPARAM files);

    void OpenWithDialog();
    void Do(Action action);
    Document* Shown() const { return m_documents.empty() ? nullptr : m_documents[static_cast<size_t>(Page())].get(); }
    // Brings window, scroll bars and title to what the view says.
    void Follow();
    void Painted(const std::string& failure);
    void Tell(const std::string& text);

    HWND m_window = nullptr;
    Options m_options;
    Reader m_reader;
    std::vector<std::unique_ptr<Document>> m_documents;
    std::unique_ptr<Canvas> m_canvas;
    Document* m_shown = nullptr;
    bool m_running = false;
    std::string m_failure;
    int m_frames = 0, m_exitCode = 0;
};

} // namespace Viewer
