#pragma once

#include "core/history/historylog.h"
#include "core/history/qscihistorymanager.h"
#include "core/settings/options.h"

#include <QTemporaryDir>

/**
 * A settings folder of its own for one test: the settings store and the history point into it, as on a
 * first start, until the object goes.
 */
class ScopedSettings final {
public:
    ScopedSettings()
    {
        if (!m_dir.isValid())
            return;
        Options::initialize(m_dir.path());
        HistoryLog::setQuiet(true);
        QSciHistoryManager::instance()->reloadSettings();
        QSciHistoryManager::instance()->setEnabled(true);
    }
    ~ScopedSettings()
    {
        QSciHistoryManager::instance()->forget();
        Options::shutdown();
    }
    ScopedSettings(const ScopedSettings&) = delete;
    ScopedSettings& operator=(const ScopedSettings&) = delete;

    bool isValid() const { return m_dir.isValid(); }
    QString path() const { return m_dir.path(); }
    QString filePath(const QString& name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
};
