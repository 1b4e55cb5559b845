#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>
#include <QStringList>

/**
 * What the file browser shows of one file: a thumbnail of its first image and the facts beside it.
 * make() reads the whole file, so it belongs on a worker thread; ThumbnailCache keeps the result.
 */
struct FilePreview {
    QString path;
    bool ok = false;
    QString message; ///< why the file could not be read
    QString format; ///< "Native item", "Nanonis SXM", "Picture", ...
    QStringList channels;
    int width = 0;
    int height = 0;
    double xSize = 0;
    double ySize = 0;
    QString xUnit;
    QString yUnit;
    QDateTime modified;
    QImage thumbnail;
    bool fromCache = false;

    /** Longest side of a thumbnail in pixels. */
    static constexpr int ThumbnailSize = 128;

    /** True when some reader of the program (native, instrument or picture) claims the file by its name. */
    static bool isBrowsable(const QString& path);
    /** The format names a browser can filter by, the native items first. */
    static QStringList formatNames();
    /** The format that claims @p path by its name, as formatNames() lists it; empty when none. */
    static QString formatOf(const QString& path);

    /**
     * Reads @p path and renders its first channel: z after a plane fit, through the default gradient over
     * the range left after a small outlier cut; a picture file shows its own picture. Never throws and
     * never trusts the file: a broken file gives ok == false and the message.
     */
    static FilePreview make(const QString& path);

    /** "512 x 512, 10 x 10 nm" and the like; empty for a preview that failed. */
    QString sizeText() const;
};
