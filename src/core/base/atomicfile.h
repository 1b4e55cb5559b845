#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

class QFileDevice;

/**
 * Whole-file writes that either replace the target completely or leave it as it was. A target that exists and
 * is not a regular file (a device, a FIFO, a socket) is never replaced: it is written directly, as `cat > target`
 * would, because renaming a temporary file over it would destroy the node.
 */
class AtomicFile final {
public:
    explicit AtomicFile(const QString& path);
    ~AtomicFile();

    /** False with "Unable to open file: path" (and the reason on the next line) when it cannot be written. */
    [[nodiscard]] bool open(QString* message = nullptr);
    /** The device to write to, valid between open() and commit(). */
    QFileDevice* device() const;
    /** Makes the written data the file's content; false with "Unable to write file: path" when it failed. */
    [[nodiscard]] bool commit(QString* message = nullptr);
    /** Drops what was written; a regular target stays as it was. */
    void cancel();

    /** True when @p path exists and is neither a regular file nor a folder. */
    static bool isSpecialFile(const QString& path);

    [[nodiscard]] static bool write(const QString& path, const QByteArray& data, QString* message = nullptr);

private:
    QString m_path;
    std::unique_ptr<QFileDevice> m_device;
    bool m_direct = false;
};
