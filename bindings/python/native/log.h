// SPDX-License-Identifier: MIT
// The diagnostic line of a failed call, kept for the thread that made it.
#ifndef GXPY_LOG_H
#define GXPY_LOG_H

#include <stddef.h>

// A sink for GXLogSetSink. It runs on the failing thread under the log's lock, so it only copies: it neither waits for
// the interpreter's lock nor lets Python code run, which could free an object and so call the library.
void gxpy_keep_line(void* context, const char* text);

// Moves the calling thread's line into `out`, cut to `size` bytes; answers its length, 0 without one.
size_t gxpy_take_line(char* out, size_t size);

#endif
