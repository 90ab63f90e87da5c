// SPDX-License-Identifier: MIT
// Answers the dialogs that come up on a thread while it is busy showing them, as a user would.
#pragma once

#include "System.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>
#include <utility>

namespace Viewer {

// Dialogs run a loop of messages each, and a timer's messages come through all of them. The innermost dialog is the one
// that takes input: the others wait for it, disabled.
class DialogOperator {
public:
    using Answer = std::function<void(HWND dialog)>;

    DialogOperator() {
        s_current = this;
        m_timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) { s_current->Look(); });
        EXPECT_NE(m_timer, 0U);
    }
    DialogOperator(const DialogOperator&) = delete;
    DialogOperator& operator=(const DialogOperator&) = delete;
    ~DialogOperator() {
        KillTimer(nullptr, m_timer);
        s_current = nullptr;
        EXPECT_TRUE(m_answers.empty()) << m_answers.size() << " dialogs did not come up";
        EXPECT_EQ(m_unexpected, "");
    }

    // For the next dialog.
    void Expect(Answer answer) {
        m_answered = nullptr; // handles may come again
        m_answers.push_back(std::move(answer));
    }

    // Of a box for messages.
    static std::string TextOf(HWND box) {
        std::wstring text(1000, L'\0');
        text.resize(static_cast<size_t>(GetDlgItemTextW(box, 0xFFFF, text.data(), static_cast<int>(text.size()))));
        return Narrow(text);
    }
    // Posted: the dialog may show another one before it ends.
    static void Press(HWND dialog, int button) { PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0); }

private:
    void Look() {
        HWND dialog = nullptr;
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND window, LPARAM found) -> BOOL {
                wchar_t name[16] = L"";
                GetClassNameW(window, name, 16);
                if (std::wstring(name) != L"#32770" || !IsWindowVisible(window) || !IsWindowEnabled(window))
                    return TRUE;
                *reinterpret_cast<HWND*>(found) = window;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&dialog));
        if (dialog == nullptr || dialog == m_answered)
            return;
        m_answered = dialog;
        if (m_answers.empty()) {
            m_unexpected += TextOf(dialog) + "\n";
            Press(dialog, IDCANCEL);
            return;
        }
        const Answer answer = std::move(m_answers.front());
        m_answers.pop_front();
        answer(dialog);
    }

    static inline DialogOperator* s_current = nullptr;
    UINT_PTR m_timer = 0;
    HWND m_answered = nullptr;
    std::deque<Answer> m_answers;
    std::string m_unexpected;
};

} // namespace Viewer
