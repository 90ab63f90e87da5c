// SPDX-License-Identifier: MIT
// Decisions made once per stroke: the space in which the pen works, its tolerance, and what is visible.
//
//   figure -> [Dasher, user space] -> toPen -> Pen -> toDevice -> clippers -> sink
//
// Under a matrix without distortion, and for the thinnest line, the pen works in device space and toDevice is the
// identity; otherwise it works in user space and toPen is the identity. An adjusted figure has its own pen (SetPen).
//
// Invariant: no clip changes a pixel that it shows. Whatever affects the outline (how curves are cut, how fine patterns
// are simplified, when a pen counts as thin) depends on the whole target alone. The clip's box only decides what need
// not be sent, and what is sent is the same without the clip.
#pragma once

#include "../Matrix.h"
#include "PenOutline.h"
#include "PenView.h"

namespace Graphics {

/// In device pixels: the whole target, and the part of it inside the clip.
struct StrokeSight {
    Rect target;
    Rect visible;
};

struct StrokePlan {
    bool nothing = false; // the width or matrix draws nothing, or nothing is visible
    bool inBand = false;  // no strip clipper is needed
    bool partial = false; // the clip may have removed what the target would show
    Matrix toPen{kIdentity};
    Matrix toDevice{kIdentity};
    float half = 0;          // half the width in the pen's space
    float tolerance = 0.25F; // in the pen's space
    float userHalf = 0;      // half width and tolerance in user space, for the dasher
    float userTolerance = 0.25F;

    bool cullTarget = false; // part of the stroke may lie outside the target
    bool cull = false;       // part of it may lie outside the clip
    bool cullDashes = false; // the same for dashes, which have no miters
    WideRect targetPixels;
    WideRect visiblePixels;

    /// `box` contains every point of the figures to stroke.
    StrokePlan(const Rect& box, const Matrix& m, const StrokeStyle& style, float width,
               const StrokeSight& sight) noexcept;

    /// Replaces the pen of the stroke.
    void SetPen(const Matrix& pen, const Matrix& device, float newHalf, float newTolerance) noexcept;

    /// `pixels` enlarged by the pen's reach: a corner outside of them cannot paint inside `pixels`.
    [[nodiscard]] WideRect InReachOf(const WideRect& pixels) const noexcept {
        return pixels.Inflated(m_reachX + kMargin, m_reachY + kMargin);
    }
    /// For culling corners, in the pen's space.
    [[nodiscard]] PenView ViewOf(const WideRect& pixels) const noexcept {
        return {WideMatrix(toDevice), InReachOf(pixels)};
    }
    /// For culling points of the outline.
    [[nodiscard]] PenView PointViewOf(const WideRect& pixels) const noexcept {
        return {WideMatrix(toDevice), pixels.Inflated(kMargin, kMargin)};
    }

private:
    static constexpr double kMargin = 2; // for rounding and the tolerance, in pixels

    // Half extents of the pen on the device, including joins and caps.
    double m_reachX = 0;
    double m_reachY = 0;
    double m_factor = 1.5; // how far an outline may lie from its path, in half widths
};

} // namespace Graphics
