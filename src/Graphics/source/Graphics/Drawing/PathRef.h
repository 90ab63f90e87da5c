// SPDX-License-Identifier: MIT
// A path as it is handed to a back end, by reference.
#pragma once

#include <memory>

#include "../Geometry/BasicFigures.h"
#include "../Geometry/Shape.h"

namespace Graphics {

/// A path to draw: a stored shape, or a figure held by value. Exactly one of the two is set.
struct PathRef {
    const std::shared_ptr<const Shape>* shape = nullptr;
    const BasicFigure* figure = nullptr;
};

/// Gives every path as a shape.
class PathShape {
public:
    /// The stored shape, or the figure put into a shape that is void after the next call.
    [[nodiscard]] const Shape& Of(const PathRef& path) {
        if (path.shape != nullptr) {
            return **path.shape;
        }
        m_figure.Clear();
        path.figure->Replay(m_figure);
        return m_figure;
    }

private:
    Shape m_figure;
};

} // namespace Graphics
