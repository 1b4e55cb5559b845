#include "atomicfile.h"

#include "messages.h"

#include <QSaveFile>

bool AtomicFile::write(const QString& path, const QByteArray& data, QString* message)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (message)
            *message = Messages::unableToOpenFile(path);
        return false;
    }
    if (file.write(data) != data.size() || !file.commit()) {
        file.cancelWriting();
        if (message)
            *message = Messages::unableToWriteFile(path);
        return false;
    }
    return true;
}
