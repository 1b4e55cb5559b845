#pragma once

#include <QByteArray>
#include <QString>

/** Whole-file writes that either replace the target completely or leave it as it was. */
class AtomicFile final {
public:
    [[nodiscard]] static bool write(const QString& path, const QByteArray& data, QString* message = nullptr);
};
