#pragma once

#include <QDir>
#include <QString>

/**
 * The path of a sample file below the samples folder. "*\/NAME" stands for NAME in whichever folder of the
 * samples holds it, so that a test need not spell every folder's name.
 */
inline QString sample(const QString& relative)
{
    const QString root = QStringLiteral(VELMORA_SAMPLES_DIR "/");
    if (!relative.startsWith(QLatin1String("*/")))
        return root + relative;
    const QString name = relative.mid(2);
    for (const QString& folder : QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        if (QFile::exists(root + folder + QLatin1Char('/') + name))
            return root + folder + QLatin1Char('/') + name;
    return root + name;
}
