// SPDX-License-Identifier: MIT
#include "Recording.h"

#include "Container.h"

#include <cmath>

namespace Gxr {

Recording::Recording(const Bytes& file) : Recording(BodyTag(), Unpack(file.data(), file.size())) {}

Recording Recording::FromBody(Bytes body) {
    if (body.size() > kMaxBodyBytes)
        throw Error("the page is too large for a recording");
    return Recording(BodyTag(), std::move(body));
}

Recording::Recording(BodyTag, Bytes body) : m_body(std::move(body)) {
    Interpreter check(m_body, false);
    check.Run(nullptr, 1.0f);
    m_page = check.Page();
}

Recording Recording::FromFile(const std::string& path) {
    const Bytes file = ReadFile(path);
    try {
        return Recording(file);
    } catch (const Error& error) {
        throw Error("'" + path + "': " + error.what());
    }
}

Handle<GXBitmap> NewPageBitmap(const PageInfo& page, float scale) {
    const auto side = [&](uint32_t length) {
        const double scaled = std::ceil(static_cast<double>(length) * scale);
        if (!(scaled >= 1.0 && scaled <= kMaxSide))
            throw Error("the page would be too large or too small");
        return static_cast<uint32_t>(scaled);
    };
    const GXBitmapDesc desc{side(page.width), side(page.height), page.format, page.dpiX * scale, page.dpiY * scale};
    if (uint64_t{desc.width} * desc.height > kMaxPagePixels)
        throw Error("the page would be too large");
    Handle<GXBitmap> bitmap;
    if (GXCreateBitmap(&desc, bitmap.Out()) != GXResultSuccess ||
        GXBitmapColorFill(bitmap.Get(), nullptr, 0) != GXResultSuccess)
        throw Error("the library cannot make a bitmap of the page's size");
    return bitmap;
}

} // namespace Gxr
