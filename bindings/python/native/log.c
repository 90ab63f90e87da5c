// SPDX-License-Identifier: MIT
#include "log.h"

#include <string.h>

#if defined(_MSC_VER)
#define GXPY_THREAD_LOCAL __declspec(thread)
#else
#define GXPY_THREAD_LOCAL _Thread_local
#endif

static GXPY_THREAD_LOCAL char g_line[1024];
static GXPY_THREAD_LOCAL size_t g_length;

void gxpy_keep_line(void* context, const char* text) {
    (void)context;
    size_t length = strlen(text), skip = 0;
    // The message is at the end.
    if (length > sizeof g_line) {
        skip = length - sizeof g_line;
    }
    g_length = length - skip;
    memcpy(g_line, text + skip, g_length);
}

size_t gxpy_take_line(char* out, size_t size) {
    const size_t length = g_length < size ? g_length : size;
    memcpy(out, g_line, length);
    g_length = 0;
    return length;
}
