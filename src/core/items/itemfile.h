#pragma once

#include "core/items/qsciimage.h"

#include <QList>
#include <QPair>
#include <QString>

/**
 * The native item file (".img.velm"): blocks of "<compressed length in decimal>|<qCompress-framed data>" —
 * the header text, then the mask, picture and z-matrix as the part flags say. Matrices are stored column by
 * column (x outer), each column from the bottom row up; the picture as red, green, blue, alpha per point,
 * the z-matrix as little-endian doubles.
 *
 * Choices of this implementation:
 * - The header text is written as UTF-8 and read back as UTF-8 (token lengths count UTF-16 units either way).
 * - The opacity is written with 6 significant digits, every other real with 17, so reals round-trip bit for bit.
 * - Besides the listed property keys the writer adds "top", so that a file restores the item's full position;
 *   readers that do not know the key ignore it.
 * - Loading replaces the object layer with the file's records rather than appending to it.
 * - The reader trusts nothing: every length and size is checked against what the file holds before anything is
 *   allocated, the file is parsed and inflated into temporaries, and the item changes only when all of it read.
 *   A mask, picture or z block of the wrong size is skipped: the item then has no mask, and keeps its old picture
 *   or z-matrix when the size did not change (a white picture or zeros when it did). A file may change the
 *   item's size only when one of its matrix blocks backs the new size or the size is small (UnbackedPointLimit).
 */
class ItemFile final {
public:
    /** The five part flags of the file, in file order. */
    struct PartFlags {
        /** All parts by default. */
        constexpr explicit PartFlags(
            bool header = true, bool picture = true, bool z = true, bool mask = true, bool objects = true)
            : header(header)
            , picture(picture)
            , z(z)
            , mask(mask)
            , objects(objects)
        {
        }
        bool header; ///< properties, instrument header and text lines
        bool picture;
        bool z;
        bool mask;
        bool objects;

        /** Position, display and header parts all map to the header flag. */
        static PartFlags fromParts(QSciImage::Parts parts);
        QSciImage::Parts toParts() const;
        /** "11111" and the like. */
        QString toString() const;
        bool operator==(const PartFlags& o) const;
    };

    /** What a file's header says, for callers that only want to look. */
    struct Info {
        QString formatNumber;
        PartFlags flags;
        int width = 0;
        int height = 0;
        /** The properties in file order (the first of repeated keys counts when loading). */
        QList<QPair<QString, QString>> properties;
        QList<QPair<QString, QString>> instrumentHeader;
        QStringList textLines;
        int objectCount = 0;
        /** Compressed sizes of the blocks present: header, mask, picture, z, in this order; -1 where absent. */
        qint64 blockSizes[4] = { -1, -1, -1, -1 };
        /** Uncompressed sizes the blocks state; -1 where absent. */
        qint64 statedSizes[4] = { -1, -1, -1, -1 };
    };

    static constexpr int FormatNumber = 1;
    /** Quick compression: header and mask at this level, picture and z-matrix at QuickMatrixLevel. */
    static constexpr int QuickHeaderLevel = 2;
    static constexpr int QuickMatrixLevel = 3;
    static constexpr int NormalLevel = 6;
    /** Largest W*H a file may state: the z-matrix must fit one QVector<double>. */
    static constexpr qint64 MaxPoints = QSciImage::MaxPoints;
    /** Largest W*H a file may impose without a matrix block of that size. */
    static constexpr qint64 UnbackedPointLimit = qint64(1) << 22;

    static QString suffix() { return QStringLiteral(".img.velm"); }
    /** True when @p path ends in ".img.velm", in any case. */
    static bool isNativeFileName(const QString& path);

    /**
     * Writes the chosen parts of @p item to @p path atomically (the old file stays until the new one is
     * complete). @p quick compresses at levels 2 and 3 instead of 6.
     */
    [[nodiscard]] static bool write(
        const QSciImage& item, const QString& path, const PartFlags& flags, bool quick, QString* message = nullptr);
    [[nodiscard]] static bool write(
        const QSciImage& item, const QString& path, QSciImage::Parts parts, bool quick, QString* message = nullptr);
    /** write(), and with @p markSaved the item is marked as saved. */
    [[nodiscard]] static bool save(QSciImage& item, const QString& path, const PartFlags& flags = PartFlags(),
        bool quick = false, bool markSaved = false, QString* message = nullptr);
    /** save() with the parts as the history names them (PartFlags::fromParts). */
    [[nodiscard]] static bool save(
        QSciImage& item, const QString& path, QSciImage::Parts parts, bool quick, bool markSaved, QString* message);

    /**
     * Reads @p path into @p item. Files not ending in ".img.velm" go to the ItemImporterRegistry. With
     * @p setFileName the path becomes the item's file name and the item counts as saved; with @p reset the
     * item starts from a new item's state; with @p refresh the item emits contentChanged() once at the end.
     * On failure the item is unchanged and @p message says "File does not exist", "Unable to open file" or
     * "Unable to read from file" (or the object record's own text), ": " and the path.
     */
    [[nodiscard]] static bool load(QSciImage& item, const QString& path, bool setFileName = true, bool refresh = true,
        bool reset = false, QString* message = nullptr);
    /** load() without reset. */
    [[nodiscard]] static bool load(
        QSciImage& item, const QString& path, bool setFileName, bool refresh, QString* message);

    /** Reads the header of a native file without inflating its matrices. */
    [[nodiscard]] static bool readInfo(const QString& path, Info* info, QString* message = nullptr);
};
