#include "fileimport.h"

#include "core/base/messages.h"
#include "core/import/instrumentimporters.h"
#include "core/import/rawimport.h"
#include "core/items/qsciimage.h"
#include "core/settings/options.h"
#include "gui/import/formchoosechannels.h"
#include "gui/import/formrawimport.h"

#include <QDialog>
#include <QFile>
#include <QFileInfo>
#include <QWidget>
#include <cmath>

namespace {

const QStringList rawSuffixes { QStringLiteral("raw"), QStringLiteral("bin") };
const QStringList asciiSuffixes { QStringLiteral("txt"), QStringLiteral("asc"), QStringLiteral("csv") };

} // namespace

FileImport::FileImport(QWidget* parent)
    : QObject(parent)
    , m_chooseChannels(new FormChooseChannels(parent))
    , m_rawForm(new FormRawImport(parent))
{
}

QString FileImport::openFilter(const QString& nativeFilter)
{
    QStringList filters = InstrumentImporters::fileFilters();
    const QString nativePatterns = nativeFilter.section(QLatin1Char('('), 1).section(QLatin1Char(')'), 0, 0);
    QString all = filters.takeFirst();
    all.insert(all.indexOf(QLatin1Char('(')) + 1, nativePatterns + QStringLiteral(" *.raw *.bin *.txt *.asc *.csv "));
    filters.prepend(nativeFilter);
    filters.prepend(all);
    filters << tr("Raw data (*.raw *.bin)") << tr("ASCII matrix (*.txt *.asc *.csv)") << tr("All files (*)");
    return filters.join(QStringLiteral(";;"));
}

bool FileImport::isRawOrAscii(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return rawSuffixes.contains(suffix) || asciiSuffixes.contains(suffix);
}

bool FileImport::read(const QString& path, const DialogRunner& run, QList<QSciImage*>* items, QString* message)
{
    items->clear();
    InstrumentFile file;
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (rawSuffixes.contains(suffix) || asciiSuffixes.contains(suffix)) {
        QFile input(path);
        if (!input.open(QIODevice::ReadOnly)) {
            *message = Messages::unableToOpenFile(path);
            return false;
        }
        const QByteArray data = input.readAll();
        ImportedChannel channel;
        QString reason;
        bool ok = false;
        if (rawSuffixes.contains(suffix)) {
            if (run(m_rawForm) != QDialog::Accepted)
                return true;
            ok = RawImport::readRaw(data, m_rawForm->options(), &channel, &reason);
            file.format = tr("Raw data");
        } else {
            ok = RawImport::readAscii(data, &channel, &reason);
            file.format = tr("ASCII matrix");
        }
        if (!ok) {
            *message = Messages::unableToReadFromFile(path) + QStringLiteral(" (") + reason + QLatin1Char(')');
            return false;
        }
        file.channels << channel;
    } else if (!InstrumentImporters::readFile(path, &file, message)) {
        return false;
    }

    QList<int> chosen;
    for (int i = 0; i < file.channels.size(); ++i)
        chosen << i;
    if (file.channels.size() > 1) {
        QStringList titles;
        for (const ImportedChannel& channel : qAsConst(file.channels))
            titles << channel.title;
        m_chooseChannels->setChannels(QFileInfo(path).fileName(), titles);
        if (run(m_chooseChannels) != QDialog::Accepted)
            return true;
        chosen = m_chooseChannels->chosen();
    }
    // Raw and ASCII data have no colours of their own: they take the gradient chosen last.
    const bool ownGradient = rawSuffixes.contains(suffix) || asciiSuffixes.contains(suffix);
    for (int index : qAsConst(chosen)) {
        auto* item = new QSciImage;
        InstrumentImporters::toItem(file, index, path, *item);
        if (ownGradient) {
            ColorGradient gradient;
            gradient.fromString(Options::getString(QStringLiteral("FormChooseColorGradient.gradient"), QString()));
            item->setColorGradient(gradient);
            item->mapZToPicture();
        }
        items->append(item);
    }
    return true;
}

void FileImport::layOut(const QList<QSciImage*>& items, const QPoint& origin, int gap)
{
    const int columns = qMax(1, int(std::ceil(std::sqrt(double(items.size())))));
    int x = origin.x(), y = origin.y(), rowHeight = 0;
    for (int i = 0; i < items.size(); ++i) {
        if (i > 0 && i % columns == 0) {
            x = origin.x();
            y += rowHeight + gap;
            rowHeight = 0;
        }
        items.at(i)->setPosition(x, y);
        x += items.at(i)->width() + gap;
        rowHeight = qMax(rowHeight, items.at(i)->height());
    }
}
