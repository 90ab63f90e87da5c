// SPDX-License-Identifier: MIT
// The protocol by which a path is built and by which every consumer reads it.
#pragma once

#include "../Types.h"

namespace Graphics {

class GeometrySink {
public:
    virtual ~GeometrySink() = default;
    virtual void SetFillRule(uint32_t rule) = 0;
    virtual void BeginFigure(const Point& start) = 0;
    virtual void EndFigure() = 0;
    virtual void EndFigureClose() = 0;
    virtual void LineTo(const Point& p) = 0;
    virtual void CubicTo(const Point& c1, const Point& c2, const Point& end) = 0;
};

} // namespace Graphics
