// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QPoint>
#include <QPointF>

#include <algorithm>
#include <cmath>

// Conversions from doubles to the editors' integer pixels.
namespace kiv::cam::ui {

// Results are bounded well inside int, so that adding two of them cannot overflow whatever
// sizes QML sets; a NaN (from a zero-sized item, say) gives 0.
inline int boundedInt(double value)
{
    constexpr double limit = 1e9;
    return std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, -limit, limit));
}

// To nearest, halves away from zero.
inline int roundToInt(double value)
{
    return boundedInt(std::round(value));
}

// Toward zero.
inline int truncToInt(double value)
{
    return boundedInt(std::trunc(value));
}

inline QPoint roundPoint(QPointF point)
{
    return {roundToInt(point.x()), roundToInt(point.y())};
}

} // namespace kiv::cam::ui
