// SPDX-License-Identifier: MIT
// What is settled once per stroke: in which space the pen works, how finely, and what can be seen.
//
//   figure -> [Dasher, user space] -> toPen -> Pen -> toDevice -> band -> sink
//
// Under a matrix without distortion, and for the thinnest line, the pen works in device space and toDevice is the
// identity; else it works in user space and toPen is. An adjusted figure has a pen of its own (SetPen).
//
// What decides a shape (how curves are cut, how fine patterns are simplified, how wide a pen is still worth its width)
// follows from the whole target alone. The part of it that a clip leaves only says what need not be sent, and what is
// sent is the same without the clip: so no clip changes a pixel that it shows.
#pragma once

#include "../Matrix.h"
#include "PenOutline.h"
#include "PenView.h"

namespace Graphics {

/// Device pixels: the whole target, and the part of it that the clip leaves.
struct StrokeSight {
    Rect target;
    Rect visible;
};

struct StrokePlan {
    bool nothing = false; // a width or matrix that draws nothing, or all of it out of sight
    bool inBand = false;  // no strip clipper is needed
    bool partial = false; // the clip may leave out what the target would show
    Matrix toPen{kIdentity};
    Matrix toDevice{kIdentity};
    float half = 0;          // half the width in the pen's space
    float tolerance = 0.25F; // in the pen's space
    float userHalf = 0;      // the same two in user space, for the dasher
    float userTolerance = 0.25F;

    bool cullTarget = false; // something may lie outside of the target
    bool cull = false;       // or of what the clip leaves
    bool cullDashes = false; // the same without what miters add, which belongs to corners
    WideRect targetPixels;
    WideRect visiblePixels;

    /// `box` holds every point of the figures to stroke.
    StrokePlan(const Rect& box, const Matrix& m, const StrokeStyle& style, float width,
               const StrokeSight& sight) noexcept;

    /// Another pen for the same stroke.
    void SetPen(const Matrix& pen, const Matrix& device, float newHalf, float newTolerance) noexcept;

    /// The pixels that a corner in reach of `pixels` may stand on.
    [[nodiscard]] WideRect InReachOf(const WideRect& pixels) const noexcept {
        return pixels.Inflated(m_reachX + kMargin, m_reachY + kMargin);
    }
    /// For corners in the pen's space.
    [[nodiscard]] PenView ViewOf(const WideRect& pixels) const noexcept {
        return {WideMatrix(toDevice), InReachOf(pixels)};
    }
    /// For points of the outline.
    [[nodiscard]] PenView PointViewOf(const WideRect& pixels) const noexcept {
        return {WideMatrix(toDevice), pixels.Inflated(kMargin, kMargin)};
    }

private:
    static constexpr double kMargin = 2; // for rounding and the tolerance, in pixels

    // Half extents of the pen on the device, with all that joins and caps add.
    double m_reachX = 0;
    double m_reachY = 0;
    double m_factor = 1.5; // how far an outline may lie from its path, in half widths
};

} // namespace Graphics
