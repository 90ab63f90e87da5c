// SPDX-License-Identifier: MIT
#include "Session.h"

#include "Document.h"
#include "Screen.h"

#include "Format.h"

#include <charconv>

namespace Viewer {
namespace {

// Until a page is read: a sheet of paper.
constexpr PageSize kUnknown{816, 1056};
constexpr int kWidth = 900, kHeight = 900;

// In as many digits as it takes to read the same number again.
std::string Exact(float value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return {text, end};
}

} // namespace

void Begin(Reader& reader, const Options& options, const Drawer::Status& status) {
    if (options.page > status.pages)
        throw Gxr::Error("page " + std::to_string(options.page) + " does not exist, there " +
                         (status.pages == 1 ? "is 1 page" : "are " + std::to_string(status.pages) + " pages"));
    reader.SetClient(options.width > 0 ? options.width : kWidth, options.height > 0 ? options.height : kHeight);
    reader.Open(status.pages, kUnknown);
    reader.ShowList(options.list);
    reader.GoTo(options.page - 1);
}

void TakeSize(Reader& reader, const Options& options, const Drawer::Status& status, bool& placed) {
    if (!status.size)
        return;
    reader.Correct(*status.size);
    if (placed)
        return;
    placed = true;
    View& view = reader.GetView();
    if (options.zoom > 0)
        view.ZoomTo(options.zoom, 0, 0);
    if (options.placed)
        view.PanTo(-options.left, -options.top);
}

std::string Describe(const Reader& reader) {
    const View& view = reader.GetView();
    const Box page = view.Page();
    return "--page " + std::to_string(reader.Page() + 1) + " --zoom " + Exact(view.Zoom()) + " --at " +
           std::to_string(-page.left) + "," + std::to_string(-page.top) + " --size " +
           std::to_string(reader.ViewLeft() + view.ClientWidth()) + "x" + std::to_string(view.ClientHeight()) +
           (reader.IsListShown() ? " --list" : "");
}

void Shoot(const Options& options, Drawer::Open open) {
    Drawer drawer(std::move(open), [] {});
    Reader reader;
    bool placed = false;
    for (;;) {
        drawer.WaitForNews();
        const Drawer::Status status = drawer.GetStatus();
        if (!status.failure.empty())
            throw Gxr::Error(status.failure);
        if (!status.opened)
            continue;
        if (!reader.HasPages()) {
            Begin(reader, options, status);
            drawer.Want(WantedBy(reader));
            continue;
        }
        const bool was = placed;
        const PageSize size = reader.GetView().GetPageSize();
        TakeSize(reader, options, status, placed);
        if (was != placed || size != reader.GetView().GetPageSize()) {
            drawer.Want(WantedBy(reader));
            continue;
        }
        if (!status.complete || (reader.IsListShown() && !status.thumbsComplete))
            continue;
        Screen screen;
        screen.Compose(reader, drawer);
        screen.Save(Document::Path(options.shot));
        return;
    }
}

} // namespace Viewer
