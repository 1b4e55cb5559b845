#include "benchharness.h"

#include "core/import/instrumentimporter.h"
#include "core/import/instrumentimporters.h"
#include "core/items/qsciimage.h"

#include <QFile>

namespace {

/** `import_<format>`: the file given with --file read and turned into items, every channel, picture included. */
QList<BenchJob> importJobs(BenchContext& context)
{
    if (context.file.isEmpty())
        return {};
    QFile input(context.file);
    if (!input.open(QIODevice::ReadOnly))
        qFatal("import bench: cannot open %s", qPrintable(context.file));
    const InstrumentImporter* importer = InstrumentImporters::find(input.readAll(), context.file);
    if (!importer)
        qFatal("import bench: no importer reads %s", qPrintable(context.file));
    const QString path = context.file;
    const QString name = QStringLiteral("import_") + importer->name().section(QLatin1Char(' '), 0, 0).toLower();
    return { { name,
        [path]() {
            InstrumentFile file;
            QString message;
            if (!InstrumentImporters::readFile(path, &file, &message))
                qFatal("import bench: %s", qPrintable(message));
            for (int i = 0; i < file.channels.size(); ++i) {
                QSciImage item;
                InstrumentImporters::toItem(file, i, path, item);
            }
        },
        {} } };
}

const BenchRegistration registration(50, importJobs);

} // namespace
