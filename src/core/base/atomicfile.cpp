#include "atomicfile.h"

#include "messages.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

QString openProblem(const QString& path, const QFileDevice& device)
{
    const QFileInfo info(path);
    if (info.isDir())
        return Messages::tr("is a folder");
    if (device.error() == QFileDevice::PermissionsError)
        return Messages::tr("permission denied");
    return device.errorString();
}

} // namespace

AtomicFile::AtomicFile(const QString& path)
    : m_path(path)
{
}

AtomicFile::~AtomicFile()
{
    if (m_device && m_device->isOpen())
        cancel();
}

bool AtomicFile::isSpecialFile(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

bool AtomicFile::open(QString* message)
{
    m_direct = isSpecialFile(m_path);
    if (m_direct)
        m_device = std::make_unique<QFile>(m_path);
    else
        m_device = std::make_unique<QSaveFile>(m_path);
    // A device or FIFO is written as it is: no truncation of what is not a file.
    const QIODevice::OpenMode mode = m_direct ? QIODevice::WriteOnly | QIODevice::Unbuffered : QIODevice::WriteOnly;
    if (!m_device->open(mode)) {
        if (message)
            *message = Messages::unableToOpenFile(m_path) + QLatin1Char('\n') + openProblem(m_path, *m_device);
        m_device.reset();
        return false;
    }
    return true;
}

QFileDevice* AtomicFile::device() const
{
    return m_device.get();
}

bool AtomicFile::commit(QString* message)
{
    if (!m_device)
        return false;
    bool ok = false;
    if (m_direct) {
        auto* file = static_cast<QFile*>(m_device.get());
        ok = file->error() == QFileDevice::NoError && file->flush();
        file->close();
        ok = ok && file->error() == QFileDevice::NoError;
    } else {
        ok = static_cast<QSaveFile*>(m_device.get())->commit();
    }
    const QString reason = m_device->errorString();
    m_device.reset();
    if (!ok && message)
        *message = Messages::unableToWriteFile(m_path) + QLatin1Char('\n') + reason;
    return ok;
}

void AtomicFile::cancel()
{
    if (!m_device)
        return;
    if (m_direct)
        m_device->close();
    else
        static_cast<QSaveFile*>(m_device.get())->cancelWriting();
    m_device.reset();
}

bool AtomicFile::write(const QString& path, const QByteArray& data, QString* message)
{
    AtomicFile file(path);
    if (!file.open(message))
        return false;
    if (file.device()->write(data) != data.size()) {
        const QString reason = file.device()->errorString();
        file.cancel();
        if (message)
            *message = Messages::unableToWriteFile(path) + QLatin1Char('\n') + reason;
        return false;
    }
    return file.commit(message);
}
