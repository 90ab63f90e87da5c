/* SPDX-License-Identifier: MIT */
/* launcher PROGRAM [ARGUMENT...]: runs a Windows program and ends with its result.
 *
 * When a process has ended for Windows, Wine gives it one second to end on the system below, too, then kills it there,
 * and whoever waits for it there sees it killed. What display drivers have to tidy up takes longer than that on a busy
 * machine. A waiting process of Windows gets the result in any case; this one ends itself at once. */
#include <stdio.h>
#include <wchar.h>

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

/* Behind the first word, which may be in quotes, of a command line. */
static wchar_t* EndOfWord(wchar_t* line) {
    wchar_t* const end = *line == L'"' ? wcschr(line + 1, L'"') : wcscspn(line, L" \t") + line;
    return end == NULL ? line + wcslen(line) : *end == L'"' ? end + 1 : end;
}

static HANDLE Stream(DWORD which) {
    const HANDLE stream = GetStdHandle(which);
    SetHandleInformation(stream, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    return stream;
}

int main(void) {
    static wchar_t program[32768];
    wchar_t* line = EndOfWord(GetCommandLineW());
    line += wcsspn(line, L" \t");
    const wchar_t* const end = EndOfWord(line);
    const wchar_t* const begin = *line == L'"' ? line + 1 : line;
    const size_t length = (size_t)(end - begin) - (begin != line ? 1 : 0);
    /* A path of the machine that Wine runs on. */
    swprintf(program, sizeof program / sizeof *program, L"%ls%.*ls", *begin == L'/' ? L"Z:" : L"", (int)length, begin);

    STARTUPINFOW start = {0};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = Stream(STD_INPUT_HANDLE);
    start.hStdOutput = Stream(STD_OUTPUT_HANDLE);
    start.hStdError = Stream(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process;
    /* Under load Wine now and then refuses to start a process, with ERROR_INTERNAL_ERROR; nothing has run yet. */
    int left = 10;
    while (!CreateProcessW(program, line, NULL, NULL, TRUE, 0, NULL, NULL, &start, &process)) {
        const DWORD error = GetLastError();
        if (error != ERROR_INTERNAL_ERROR || --left == 0) {
            fprintf(stderr, "launcher: cannot start %ls, error %lu\n", program, error);
            return 127;
        }
        Sleep(200);
    }
    DWORD result = 1;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &result);
    TerminateProcess(GetCurrentProcess(), result);
    return 1;
}
