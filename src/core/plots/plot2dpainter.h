#pragma once

#include <QImage>
#include <QSize>

class Plot2dDocument;

/**
 * Draws a 2D plot document into a picture without any window: axes with ticks and labels, curves, title and
 * legend, honouring the scale, range, font and decimal-comma settings. For the command line, where the plot
 * window's own drawing is not at hand. Needs a GUI application object for its text.
 */
class Plot2dPainter final {
public:
    static QImage render(const Plot2dDocument& document, const QSize& size);
    /** The colour of curve @p index, shared with the plot window so both draw a curve alike. */
    static QColor curveColor(int index);
};
