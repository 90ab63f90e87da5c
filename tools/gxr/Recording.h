// SPDX-License-Identifier: MIT
// A recorded page, ready to be drawn on any target.
#pragma once

#include "Interpreter.h"

#include <memory>

namespace Gxr {

// A file that has been read and checked to its end.
class Recording {
public:
    // Throw Error, in one line that says what is wrong with the file.
    explicit Recording(const Bytes& file);
    static Recording FromFile(const std::string& path);
    // Of a body that was never packed (Recorder::Body).
    static Recording FromBody(Bytes body);

    const PageInfo& Page() const noexcept { return m_page; }
    const Bytes& Body() const noexcept { return m_body; }

private:
    struct BodyTag {};
    Recording(BodyTag, Bytes body);

    Bytes m_body;
    PageInfo m_page;
};

// The objects of a recording, made once, and as many drawings as wanted. One thread at a time.
class Player {
public:
    // The recording outlives this object. Throws Error when the library refuses an object.
    explicit Player(const Recording& recording) : m_interpreter(recording.Body(), true) {}

    // Draws the page, in the units that the target has: `scale` of its pixels for a recorded one, from the target's
    // matrix on. Begins and ends painting itself; the matrix is then the identity, as always after painting. Throws
    // Error when a call fails; painting is ended then, too. Recordings need not fill their page and may draw beyond it:
    // `paper` says what lies below and where they stop.
    void Play(GXRenderTarget target, float scale = 1.0f, const Paper* paper = nullptr) {
        m_interpreter.Run(target, scale, paper);
    }

private:
    Interpreter m_interpreter;
};

// A bitmap of the page's size and format times `scale`, with the page on it.
Handle<GXBitmap> NewPageBitmap(const PageInfo& page, float scale = 1.0f);

} // namespace Gxr
