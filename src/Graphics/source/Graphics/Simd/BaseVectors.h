// SPDX-License-Identifier: MIT
// Vectors for code that is compiled once: the set that every processor of the platform has, 16 bytes each.
#pragma once

#ifndef GX_SIMD
#if defined(__SSE2__)
#define GX_SIMD SSE2
#elif defined(__aarch64__)
#define GX_SIMD NEON
#else
#define GX_SIMD Plain
#endif
#endif
#include "Vectors.h"
