#pragma once

#include <QImage>
#include <QSize>
#include <QString>

class QSciImage;

/** Between items and movie frames: the picture a frame shows of an item, and the item a frame becomes. */
class MovieFrames final {
public:
    enum class Source { Picture, ZThroughGradient };
    /** H.264 in yuv420p needs even sides; an odd side grows by one, either as a black border or by scaling. */
    enum class OddSize { Pad, Scale };

    /** The item's picture, or its z-matrix coloured through its gradient. */
    static QImage render(const QSciImage& item, Source source);
    /** @p requested with every odd side one larger. */
    static QSize movieSize(const QSize& requested);
    /** @p frame scaled to @p requested, then made movieSize() by @p mode; opaque RGB32. */
    static QImage fit(const QImage& frame, const QSize& requested, OddSize mode);
    /** What fit() will do to @p requested, for the export dialog; empty when the size is even. */
    static QString oddSizeText(const QSize& requested, OddSize mode);

    /**
     * Makes @p item from @p frame (scaled to @p scaleTo when that is valid and differs): the picture as it is,
     * z the grey level 0..255, named after the movie and the frame @p number (from 1) at @p seconds.
     */
    static void toItem(const QImage& frame, const QSize& scaleTo, const QString& moviePath, int number, double seconds,
        QSciImage& item);
};
