#include "itemimporterregistry.h"

#include "core/base/messages.h"

#include <QMutex>
#include <QMutexLocker>
#include <algorithm>

namespace {

QMutex& registryMutex()
{
    static QMutex mutex;
    return mutex;
}

QList<ItemImporterRegistry::Importer>& registry()
{
    static QList<ItemImporterRegistry::Importer> list;
    return list;
}

bool matches(const ItemImporterRegistry::Importer& importer, const QString& path)
{
    if (importer.suffixes.isEmpty())
        return true;
    for (const QString& suffix : importer.suffixes) {
        if (path.endsWith(QLatin1Char('.') + suffix, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace

void ItemImporterRegistry::add(const Importer& importer)
{
    QMutexLocker lock(&registryMutex());
    registry().append(importer);
}

void ItemImporterRegistry::remove(const QString& name)
{
    QMutexLocker lock(&registryMutex());
    registry().erase(std::remove_if(registry().begin(), registry().end(),
                         [&name](const Importer& importer) { return importer.name == name; }),
        registry().end());
}

QList<ItemImporterRegistry::Importer> ItemImporterRegistry::importers()
{
    QMutexLocker lock(&registryMutex());
    return registry();
}

bool ItemImporterRegistry::canRead(const QString& path)
{
    const QList<Importer> list = importers();
    return std::any_of(list.cbegin(), list.cend(),
        [&path](const Importer& importer) { return !importer.suffixes.isEmpty() && matches(importer, path); });
}

bool ItemImporterRegistry::read(QSciImage& item, const QString& path, QString* message)
{
    // A copy, so that an importer may itself use the registry while it reads.
    const QList<Importer> list = importers();
    for (const Importer& importer : list) {
        if (!importer.read || !matches(importer, path))
            continue;
        QString detail;
        if (importer.read(item, path, &detail))
            return true;
    }
    if (message)
        *message = Messages::unableToReadFromFile(path);
    return false;
}
