#pragma once

#include "core/items/qsciimage.h"

#include <QImage>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

/** One image of an instrument file, already in the item's layout (x*H + y, rows from the bottom). */
struct ImportedChannel {
    QString title; ///< channel and direction, e.g. "Z forward"
    int width = 0;
    int height = 0;
    QVector<double> z;
    QSciImage::SciValues sciValues;
    QList<QPair<QString, QString>> header;
    /** A colour picture the file holds itself; empty: rendered from z through the default gradient. */
    QImage picture;
};

/** Everything an importer found in one file. */
struct InstrumentFile {
    QString format;
    QList<ImportedChannel> channels;
    /** What was left out (spectra, line pages, ...), one line each; copied into every item's header. */
    QStringList skipped;
};
