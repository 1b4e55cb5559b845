#include "instrumentimporters.h"

#include "core/base/messages.h"
#include "core/import/cziimporter.h"
#include "core/import/createcimporter.h"
#include "core/import/gwyimporter.h"
#include "core/import/importsupport.h"
#include "core/import/instrumentimporter.h"
#include "core/import/matriximporter.h"
#include "core/import/nanonisimporter.h"
#include "core/import/nanoscopeimporter.h"
#include "core/import/omicronflatimporter.h"
#include "core/import/parktiffimporter.h"
#include "core/import/pictureimporter.h"
#include "core/import/rhkimporter.h"
#include "core/import/aarhusimporter.h"
#include "core/items/itemimporterregistry.h"
#include "core/items/processinglog.h"
#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

// Quiet unless asked for (QT_LOGGING_RULES="velmora.import.info=true"): the CLI keeps stderr for failures.
Q_LOGGING_CATEGORY(lcImport, "velmora.import", QtWarningMsg)

const QList<const InstrumentImporter*>& InstrumentImporters::all()
{
    // Park before the picture reader: both take TIFF, only Park checks its private tags.
    static const CreatecImporter createc;
    static const NanonisImporter nanonis;
    static const RhkImporter rhk;
    static const AarhusImporter aarhus;
    static const NanoscopeImporter nanoscope;
    static const GwyImporter gwy;
    static const ParkTiffImporter park;
    static const MatrixImporter matrix;
    static const OmicronFlatImporter flat;
    static const CziImporter czi;
    static const PictureImporter picture;
    static const QList<const InstrumentImporter*> list { &createc, &nanonis, &rhk, &aarhus, &nanoscope, &gwy, &park,
        &matrix, &flat, &czi, &picture };
    return list;
}

const InstrumentImporter* InstrumentImporters::find(const QByteArray& head, const QString& path)
{
    for (const InstrumentImporter* importer : all()) {
        if (importer->recognises(head, path))
            return importer;
    }
    const QString suffix = QFileInfo(path).suffix().toLower();
    for (const InstrumentImporter* importer : all()) {
        if (importer->suffixes().contains(suffix))
            return importer;
    }
    return nullptr;
}

bool InstrumentImporters::claimsSuffix(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    for (const InstrumentImporter* importer : all()) {
        if (importer->suffixes().contains(suffix))
            return true;
    }
    return false;
}

bool InstrumentImporters::readFile(const QString& path, InstrumentFile* file, QString* message)
{
    if (!QFileInfo::exists(path)) {
        *message = Messages::fileDoesNotExist(path);
        return false;
    }
    QFile input(path);
    if (!input.open(QIODevice::ReadOnly)) {
        *message = Messages::unableToOpenFile(path);
        return false;
    }
    // QByteArray holds at most 2 GB; no format we read has an image that large in one file.
    if (input.size() >= qint64(0x7FFFFFF0)) {
        *message = Messages::unableToReadFromFile(path) + QStringLiteral(" (") + Messages::tr("file too large")
            + QLatin1Char(')');
        return false;
    }
    const QByteArray data = input.readAll();
    if (data.size() != input.size()) {
        *message = Messages::unableToReadFromFile(path);
        return false;
    }
    return readData(data, path, file, message);
}

bool InstrumentImporters::readData(const QByteArray& data, const QString& path, InstrumentFile* file, QString* message)
{
    const InstrumentImporter* importer = find(data, path);
    QString reason;
    bool ok = false;
    if (importer) {
        *file = InstrumentFile();
        file->format = importer->name();
        ok = importer->read(data, path, file, &reason);
        if (ok && file->channels.isEmpty()) {
            ok = false;
            reason = ImportSupport::noImageData();
        }
    }
    if (!ok) {
        *message = Messages::unableToReadFromFile(path);
        if (!reason.isEmpty())
            *message += QStringLiteral(" (") + reason + QLatin1Char(')');
        return false;
    }
    for (const QString& line : qAsConst(file->skipped))
        qCInfo(lcImport) << path << "skipped:" << line;
    for (ImportedChannel& channel : file->channels)
        ImportSupport::fillMissing(channel);
    return true;
}

void InstrumentImporters::toItem(const InstrumentFile& file, int index, const QString& path, QSciImage& item)
{
    const ImportedChannel& channel = file.channels.at(index);
    QSciImage fresh(channel.width, channel.height, Qt::white);
    fresh.setLoading(true);
    (void)fresh.setZMatrix(channel.z);
    fresh.setSciValues(channel.sciValues);
    QList<QPair<QString, QString>> header { { QStringLiteral("Format"), file.format },
        { QStringLiteral("Source file"), QFileInfo(path).fileName() } };
    header += channel.header;
    for (const QString& line : file.skipped)
        header.append({ QStringLiteral("Skipped"), line });
    fresh.setInstrumentHeader(header);
    if (!channel.picture.isNull() && channel.picture.size() == fresh.size())
        (void)fresh.setPicture(channel.picture);
    else
        fresh.mapZToPicture();
    fresh.setName(QFileInfo(path).completeBaseName() + QLatin1Char(' ') + channel.title);
    fresh.setFileName(path);
    // The log starts where the data came from, so that a saved item tells its whole way from the raw file.
    ProcessingLog::append(fresh, QCoreApplication::translate("ProcessingLog", "Import"),
        QStringLiteral("file=%1, channel=%2").arg(QFileInfo(path).fileName(), channel.title));
    item.copyFrom(fresh);
}

QStringList InstrumentImporters::fileFilters()
{
    QStringList patterns;
    QStringList filters;
    for (const InstrumentImporter* importer : all()) {
        const QStringList own = importer->filterPatterns();
        patterns += own;
        filters << importer->name() + QStringLiteral(" (") + own.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    patterns.removeDuplicates();
    filters.prepend(
        Messages::tr("All supported") + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) + QLatin1Char(')'));
    return filters;
}

void InstrumentImporters::registerItemImporter()
{
    static const bool once = [] {
        QStringList suffixes;
        for (const InstrumentImporter* importer : all())
            suffixes += importer->suffixes();
        suffixes.removeDuplicates();
        ItemImporterRegistry::add(
            { QStringLiteral("Instrument files"), suffixes, [](QSciImage& item, const QString& path, QString* message) {
                 InstrumentFile file;
                 if (!readFile(path, &file, message))
                     return false;
                 toItem(file, 0, path, item);
                 return true;
             } });
        return true;
    }();
    (void)once;
}
