// SPDX-License-Identifier: MIT
#include "Options.h"

#include "View.h"

#include "Format.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <string_view>

namespace Viewer {
namespace {

template <class T> T Number(std::string_view text, T low, T high) {
    T value{};
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (fault != std::errc() || end != text.data() + text.size() || !(value >= low && value <= high))
        throw Gxr::Error("'" + std::string(text) + "' is no number that fits");
    return value;
}

// Two numbers with a sign between them.
void Pair(const std::string& text, char sign, int low, int high, int& first, int& second) {
    const size_t at = text.find(sign);
    if (at == std::string::npos)
        throw Gxr::Error("'" + text + "' is no pair of numbers with '" + sign + "' between them");
    first = Number(std::string_view(text).substr(0, at), low, high);
    second = Number(std::string_view(text).substr(at + 1), low, high);
}

using Value = std::function<const std::string&()>;

struct Option {
    const char* name;
    const char* values; // as in the usage
    const char* help;
    bool onWindows, onSdl;
    void (*read)(Options& options, const Value& value);
};

const Option kOptions[] = {
    {"--page", "N", "start at this page", true, true,
     [](Options& o, const Value& v) { o.page = Number(v(), 1, 1 << 30); }},
    {"--zoom", "Z", "Z window pixels for a pixel of the page, from 1/64 to 64", true, true,
     [](Options& o, const Value& v) { o.zoom = Number(v(), View::kMinZoom, View::kMaxZoom); }},
    {"--at", "X,Y", "the zoomed page's pixel at the top left", true, true,
     [](Options& o, const Value& v) {
         Pair(v(), ',', -(1 << 30), 1 << 30, o.left, o.top);
         o.placed = true;
     }},
    {"--list", "", "with the list of pages", false, true, [](Options& o, const Value&) { o.list = true; }},
    {"--size", "WxH", "of the window's inside", false, true,
     [](Options& o, const Value& v) { Pair(v(), 'x', 1, 16384, o.width, o.height); }},
    {"--threads", "N", "that draw; one a core without it", false, true,
     [](Options& o, const Value& v) { o.threads = Number(v(), 1U, 1024U); }},
    {"--shot", "PNG", "write what the window would show, without a window", false, true,
     [](Options& o, const Value& v) { o.shot = v(); }},
    {"--trace", "", "print the options of each view that is complete, for --shot", false, true,
     [](Options& o, const Value&) { o.trace = true; }},
    {"--hw", "", "draw with the graphics card where there is one", true, false,
     [](Options& o, const Value&) { o.hardware = true; }},
    {"--frames", "N", "draw N frames, then quit", true, false,
     [](Options& o, const Value& v) { o.frames = Number(v(), 1, 1000000); }},
    {"--print", "PRINTER OUTPUT", "print into a file, without a dialog", true, false,
     [](Options& o, const Value& v) {
         o.printer = v();
         o.output = v();
     }},
};

bool IsOn(const Option& option, Front front) { return front == Front::Windows ? option.onWindows : option.onSdl; }

} // namespace

std::string Usage(Front front) {
    std::string text = front == Front::Windows ? "usage: viewer [page.gxr...] [option...]\n"
                                               : "usage: gxviewer file.pdf|page.gxr... [option...]\n";
    for (const Option& option : kOptions) {
        if (!IsOn(option, front))
            continue;
        std::string name = std::string("  ") + option.name + " " + option.values;
        name.resize(std::max<size_t>(name.size() + 2, 18), ' ');
        text += name + option.help + "\n";
    }
    return text +
           "Keys:\n"
           "  Page Up, Page Down     by a windowful, over the edge to the next page\n"
           "  Home, End              first page, last page\n"
           "  Ctrl+Page Up, Down     page before, next page (also p and n)\n"
           "  arrows                 by a step\n"
           "  + and -, wheel         zoom, the wheel about the pointer; with Shift to the side\n"
           "  Ctrl+0, Ctrl+1         fit the page, pixel for pixel\n"
           "  dragging               takes the page along\n" +
           (front == Front::Sdl ? "  t                      the list of pages: click on a page, wheel to scroll\n"
                                  "  q, Escape              quit\n"
                                : "");
}

void Parse(Front front, const std::vector<std::string>& arguments, Options& options) {
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const Value value = [&]() -> const std::string& {
            if (++i >= arguments.size() || arguments[i].empty())
                throw Gxr::Error(argument + " needs a value");
            return arguments[i];
        };
        const auto known = std::find_if(std::begin(kOptions), std::end(kOptions), [&](const Option& option) {
            return argument == option.name && IsOn(option, front);
        });
        if (known != std::end(kOptions))
            known->read(options, value);
        else if (argument.rfind("--", 0) == 0)
            throw Gxr::Error("unknown option " + argument + "\n" + Usage(front));
        else
            options.files.push_back(argument);
    }
    if (options.Unattended() && options.files.empty())
        throw Gxr::Error("no file given\n" + Usage(front));
}

} // namespace Viewer
