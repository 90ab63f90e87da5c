// SPDX-License-Identifier: MIT
#include "Progress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace PdfPage {
namespace {

constexpr std::chrono::milliseconds kBarEvery{100}, kLineEvery{10000};

// Pages a second; what was there already took no time.
double Rate(const Tally& tally, double seconds) {
    return seconds > 0 ? static_cast<double>(tally.done + tally.failed) / seconds : 0.0;
}

std::string RateText(double rate) {
    char text[40];
    std::snprintf(text, sizeof text, rate < 100 ? "%.1f pages/s" : "%.0f pages/s", rate);
    return text;
}

std::string TimeText(double seconds) {
    const auto whole = static_cast<long long>(std::min(seconds, 1e15) + 0.5);
    char text[40];
    if (whole >= 3600)
        std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    return text;
}

std::string Counts(const Tally& tally) {
    return (tally.failed ? ", " + std::to_string(tally.failed) + " failed" : "") +
           (tally.skipped ? ", " + std::to_string(tally.skipped) + " there already" : "");
}

std::string Speed(const Tally& tally, double seconds) {
    const double rate = Rate(tally, seconds);
    if (rate <= 0)
        return "";
    return ", " + RateText(rate) +
           (tally.Left() ? ", " + TimeText(static_cast<double>(tally.Left()) / rate) + " left" : "");
}

} // namespace

Progress::Progress()
    : m_terminal(isatty(STDERR_FILENO) != 0), m_next(m_start + (m_terminal ? kBarEvery : kLineEvery)) {}

double Progress::Seconds() const { return std::chrono::duration<double>(Clock::now() - m_start).count(); }

std::string Progress::Bar(const Tally& tally, double seconds) {
    constexpr size_t kWidth = 30;
    const size_t over = tally.all - tally.Left();
    const size_t filled = tally.all ? kWidth * over / tally.all : kWidth;
    return "[" + std::string(filled, '#') + std::string(kWidth - filled, '.') + "] " + std::to_string(over) + "/" +
           std::to_string(tally.all) + Speed(tally, seconds) + Counts(tally);
}

std::string Progress::Line(const Tally& tally, double seconds) {
    return std::to_string(tally.done) + " of " + std::to_string(tally.all) + " pages done" + Counts(tally) +
           Speed(tally, seconds);
}

void Progress::Show(const Tally& tally) {
    const Clock::time_point now = Clock::now();
    if (now < m_next)
        return;
    m_next = now + (m_terminal ? kBarEvery : kLineEvery);
    if (m_terminal) {
        std::fprintf(stderr, "\r%s\033[K", Bar(tally, Seconds()).c_str());
        std::fflush(stderr);
        m_shown = true;
    } else {
        std::fprintf(stderr, "pdfpage: %s\n", Line(tally, Seconds()).c_str());
    }
}

void Progress::Clear() {
    if (m_shown)
        std::fputs("\r\033[K", stderr);
    m_shown = false;
}

void Progress::End(const Tally& tally) {
    if (m_terminal)
        std::fprintf(stderr, "\r%s\033[K\n", Bar(tally, Seconds()).c_str());
    else
        std::fprintf(stderr, "pdfpage: %s\n", Line(tally, Seconds()).c_str());
    m_shown = false;
}

} // namespace PdfPage
