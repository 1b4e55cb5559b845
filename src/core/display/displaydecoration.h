#pragma once

#include "core/display/colorgradient.h"
#include "core/display/displayelements.h"

#include <QFont>
#include <QImage>
#include <QMargins>
#include <QRect>
#include <QString>
#include <QVector>

class QPainter;

/**
 * Lays out and draws the display elements of one picture: the margins they need around it and the
 * elements themselves, for the view (which draws the picture itself) and for exported files (render()).
 * Coordinates are picture points with the picture's top left corner at the origin; the margins lie at
 * negative coordinates and beyond the picture's size.
 *
 * Fonts need a QGuiApplication (the offscreen platform will do).
 */
class DisplayDecoration final {
public:
    /** What the elements describe, in the item's own units. */
    struct Source {
        QSize size; ///< the picture, in points
        QString title;
        double xOffset = 0;
        double yOffset = 0;
        double xSize = 0; ///< physical width of the whole picture
        double ySize = 0;
        QString xUnit;
        QString yUnit;
        QString zUnit;
        double zMin = 0;
        double zMax = 0;
        ColorGradient gradient;
    };

    DisplayDecoration() = default;
    DisplayDecoration(const DisplayElements& elements, const Source& source);

    /** Space the elements need around the picture; zero when only rulers (which lie on it) are shown. */
    QMargins margins() const { return m_margins; }
    /** The picture's rectangle widened by margins(), in picture points. */
    QRect outerRect() const { return QRect(QPoint(0, 0), m_source.size).marginsAdded(m_margins); }
    bool isEmpty() const { return !m_elements.anyShown(); }

    /** Draws every shown element; the picture must already stand at the origin. Margins are not filled. */
    void paint(QPainter* painter) const;
    /** @p picture (source size) on white, widened by the margins, with every shown element drawn. */
    QImage render(const QImage& picture) const;

    /** A tick: its place from 0 (first end of the axis) to 1 and its label. */
    struct Tick {
        double fraction;
        QString text;
        bool major;
    };
    /** Ticks over the values @p from to @p to, labelled in @p unit's readable prefix (never an empty list). */
    static QVector<Tick> ticks(double from, double to, const QString& unit, int maxSteps, bool natural,
        bool subticks = false, bool withUnit = false, QString* shownUnit = nullptr);

private:
    struct Ruler {
        QRect bar;
        QVector<int> minorTicks; ///< offsets along the bar
        QRect label;
        QString text;
        QRect panel;
        QRect panelJoin; ///< the corner between two rulers that share it
        bool vertical = false;
        bool showLabel = true;
        bool showPanel = true;
    };

    QFont font(int pixelSize, bool bold) const;
    void layOut();
    bool layOutRuler(bool vertical, Ruler* ruler) const;
    void separateRulers(Ruler* horizontal, Ruler* vertical) const;
    void paintRuler(QPainter* painter, const Ruler& ruler) const;
    void paintXLabels(QPainter* painter) const;
    void paintYLabels(QPainter* painter) const;
    void paintZScale(QPainter* painter) const;
    QString caption(const QString& axis, const QString& unit) const;

    DisplayElements m_elements;
    Source m_source;
    QMargins m_margins;
    QVector<Tick> m_xTicks;
    QVector<Tick> m_yTicks;
    QVector<Tick> m_zTicks;
    QString m_xUnit;
    QString m_yUnit;
    QString m_zUnit;
    QVector<Ruler> m_rulers;
    int m_xyTick = 0;
    int m_zTick = 0;
    int m_yLabelWidth = 0;
    int m_zLabelWidth = 0;
};
