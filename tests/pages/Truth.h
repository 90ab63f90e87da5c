// SPDX-License-Identifier: MIT
// How far a page is from what it should look like: the same page at eight times the resolution, averaged down, in which
// every edge has its exact share of a pixel and every blend happens in pixels that one object covers. Both renderers
// are measured, the library without adjustment.
#pragma once

#include <string>

struct TruthDistance {
    double ours = 0.0;   // mean absolute difference, in levels of 255, over all pixels and the three channels
    double theirs = 0.0; // of the second renderer's own page
};

constexpr unsigned kTruthFactor = 8;
/// So much further from the truth than the second renderer a page may be.
constexpr double kFurther = 0.15;

// With a stem the three pictures are written to <stem>-library.png, <stem>-second.png and <stem>-truth.png.
// Throws PdfPage::Failure.
TruthDistance MeasureTruth(const std::string& file, int page, float dpi, unsigned factor = kTruthFactor,
                           const std::string& stem = "");
