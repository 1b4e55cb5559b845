#pragma once

#include "core/items/qsciimage.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QPoint>
#include <QString>
#include <QStringList>

/**
 * The user-editable properties of an item as one value: what the display and advanced properties dialogs
 * show and hand back. Taken from an item with of(), put back with applyTo() (through
 * ItemOperations::setProperties, which records the item first).
 */
struct ItemProperties {
    // Display
    QString name;
    bool drawImage = true;
    bool drawMask = true;
    bool drawObjects = true;
    bool drawZ = false;
    double opacity = 1;
    QPoint position; ///< left and top on the tab
    QMap<QString, QString> displayElements; ///< rulers, labels, z scale by their stored keys; empty: left alone

    // Advanced
    QSciImage::SciValues sciValues;
    double zCalibrateMultiply = 1;
    double zCalibrateAdd = 0;
    QString abstractText;
    QList<QPair<QString, QString>> instrumentHeader;
    QStringList textLines;
    QStringList processingLog; ///< the user may trim it, never extend it by hand

    static ItemProperties of(const QSciImage& item);
    void applyTo(QSciImage& item) const;

    bool operator==(const ItemProperties& other) const;
    bool operator!=(const ItemProperties& other) const { return !(*this == other); }
};
