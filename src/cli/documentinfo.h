#pragma once

#include <QJsonObject>
#include <QString>

/** `info` for table, text and output files: what they hold, as JSON. */
class DocumentInfo final {
public:
    static bool isDocumentFileName(const QString& path);
    [[nodiscard]] static bool describe(const QString& path, QJsonObject* json, QString* message);
};
