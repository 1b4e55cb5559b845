#pragma once

#include <QColor>

/** One colour stop of a ColorGradient: only active stops take part in the ramp. */
struct GradientStop {
    bool active = false;
    QColor color = QColor(0, 0, 0, 255);
    /** Percent of the gradient's period; values outside 0 to 100 are kept but never painted. */
    double position = 5;

    bool operator==(const GradientStop& other) const
    {
        return active == other.active && color == other.color && position == other.position;
    }
    bool operator!=(const GradientStop& other) const { return !(*this == other); }
};
