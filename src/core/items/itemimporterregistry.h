#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

class QSciImage;

/**
 * The readers of files that are not native item files (instrument files, pictures, raw data). Importers add
 * themselves once at start-up; the native reader hands every file whose name does not end in ".img.velm" here.
 * Safe to use from several threads.
 */
class ItemImporterRegistry final {
public:
    /**
     * Reads @p path into @p item. An importer that cannot read the file returns false and leaves the item as it
     * was; @p message may then say why, for diagnostics.
     */
    using ReadFunction = std::function<bool(QSciImage& item, const QString& path, QString* message)>;

    struct Importer {
        QString name;
        /** File name endings it reads, without the dot and in any case ("dat", "mul"); empty: any file. */
        QStringList suffixes;
        ReadFunction read;
    };

    /** Registers an importer from a static object: `static const ItemImporterRegistry::Registration r({...});` */
    struct Registration {
        explicit Registration(const Importer& importer) { add(importer); }
    };

    static void add(const Importer& importer);
    /** Drops the importer of that name. */
    static void remove(const QString& name);
    static QList<Importer> importers();
    /** True when an importer claims the suffix of @p path. */
    static bool canRead(const QString& path);

    /**
     * Tries the importers whose suffixes match @p path, in the order they were added, until one reads it.
     * Fails with "Unable to read from file: PATH" when none does.
     */
    [[nodiscard]] static bool read(QSciImage& item, const QString& path, QString* message);
};
