#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QSciImage;

/**
 * The pixel lists of objects as CSV files ("Image,Object,x,y", x the column and y the row counted from the bottom,
 * as the records hold them): all in one file, one file per item, or one file per item and object. Files are named
 * after the item and object ("<item>.csv", "<item>_<object>.csv") inside the chosen folder.
 */
class ObjectPixelExport final {
public:
    enum class Pixels { Fill, Skeleton, LargestBranch };
    enum class Files { AllInOne, PerImage, PerObject };

    /**
     * Writes the pixels of every object of @p items; @p target is the file for AllInOne and a folder otherwise.
     * False with a message when a file cannot be written or no item has objects; @p written lists the files.
     */
    static bool write(const QList<const QSciImage*>& items, Pixels pixels, Files files, const QString& target,
        QString* message, QStringList* written = nullptr);
};
