#pragma once

#include <QColor>
#include <QMap>
#include <QString>

/**
 * The display element settings of an item in typed form, read from the key/value pairs the item stores
 * (a missing or unreadable value keeps its default). Sizes are in picture points, so an element keeps its
 * size relative to the data whatever the zoom.
 *
 * Rulers are scale bars laid over the picture in one of its corners (0 bottom left, 1 bottom right,
 * 2 top left, 3 top right), the title stands above it, the x and y labels below and left of it, and the
 * z scale right of it.
 */
struct DisplayElements {
    enum Corner { BottomLeft = 0, BottomRight = 1, TopLeft = 2, TopRight = 3 };

    QString fontFamily = QStringLiteral("Arial");
    QColor fontColor = Qt::black;
    QColor lineColor = Qt::black;

    QColor rulerPanelColor = QColor(255, 255, 255, 192);
    QColor rulerColor = Qt::black;
    int rulerThickness = 6;
    int rulerLabelSize = 12;
    bool rulerLabelBold = false;
    int rulerMargin = 10;
    bool rulerNaturalUnits = true; ///< shorten the bar to a round physical length
    bool rulerShowUnit = true;
    int rulerLength = 100; ///< used when rulerSizeManual; otherwise a quarter of the picture
    bool rulerSizeManual = false;
    int horizontalRulerCorner = BottomLeft;
    int verticalRulerCorner = BottomLeft;
    bool showHorizontalRuler = false;
    bool showHorizontalRulerLabel = true;
    bool showHorizontalRulerPanel = true;
    bool showVerticalRuler = false;
    bool showVerticalRulerLabel = true;
    bool showVerticalRulerPanel = true;

    bool showTitle = false;
    int titleSize = 14;
    bool titleBold = true;

    int xyLabelSize = 10;
    bool xyLabelBold = false;
    bool xyNaturalUnits = true; ///< ticks at round values rather than evenly from edge to edge
    bool showXLabels = false;
    bool showXPosLabel = false; ///< the axis caption "x [unit]"
    bool showYLabels = false;
    bool showYPosLabel = false;

    bool showZScale = false;
    int zScaleWidth = 20;
    int zScaleLeftMargin = 10;
    bool zScaleBorder = true;
    QColor zScaleBorderColor = Qt::black;
    bool showZScaleTicks = true;
    bool showZScaleSubticks = true;
    bool showZLabels = false;
    int zLabelSize = 10;
    bool zLabelBold = false;
    bool zLabelWithUnit = true;
    bool showZPosLabel = false; ///< the caption "z [unit]"

    /** Reads the stored pairs; keys it does not know are ignored. */
    static DisplayElements fromMap(const QMap<QString, QString>& values);
    /** Whether anything is drawn at all. */
    bool anyShown() const;
    /** Rulers, title and z scale with its labels switched on, as a figure usually wants them. */
    void showFigureSet();
};
