#include "options.h"

#include "settingsstore.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <memory>

namespace {

struct OptionsState {
    std::unique_ptr<SettingsStore> store;
    QString settingsDir;
    QString projectDir;
    QString historyDir;
    QString swapDir;
    QString tempDir;
};

OptionsState& state()
{
    static OptionsState s;
    return s;
}

QString withSlash(const QString& dir)
{
    QString d = QDir::fromNativeSeparators(dir);
    if (!d.endsWith(QLatin1Char('/')))
        d += QLatin1Char('/');
    return d;
}

QString resolveSettingsDir(const QString& requested)
{
    if (!requested.isEmpty())
        return withSlash(QDir(requested).absolutePath());
    const QString env = qEnvironmentVariable("VELMORA_SETTINGS_DIR");
    if (!env.isEmpty())
        return withSlash(QDir(env).absolutePath());
    const QSettings ini(
        QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Velmora"), QStringLiteral("Velmora"));
    return withSlash(QFileInfo(ini.fileName()).absolutePath());
}

QString workingDir(const QString& key, const QString& fallback)
{
    const QString dir = withSlash(Options::getPath(key, fallback));
    QDir().mkpath(dir);
    return dir;
}

SettingsStore* pick(SettingsStore* store)
{
    if (store)
        return store;
    // After shutdown() the same folder opens again, as a restarted program would find it.
    if (!state().store)
        Options::initialize(state().settingsDir);
    return state().store.get();
}

} // namespace

void Options::initialize(const QString& settingsDir)
{
    OptionsState& s = state();
    s.settingsDir = resolveSettingsDir(settingsDir);
    QDir().mkpath(s.settingsDir);
    s.store = std::make_unique<SettingsStore>();
    s.store->open(s.settingsDir + QStringLiteral("settings.db"), true);
    s.projectDir = workingDir(QStringLiteral("FormOptions.projectDir"), s.settingsDir + QStringLiteral("project/"));
    s.historyDir = workingDir(QStringLiteral("history.historyDir"), s.settingsDir + QStringLiteral("history/"));
    s.swapDir = workingDir(QStringLiteral("FormOptions.swapDir"), s.settingsDir + QStringLiteral("swap/"));
    s.tempDir = workingDir(QStringLiteral("FormOptions.tempDir"), s.settingsDir + QStringLiteral("temp/"));
}

void Options::shutdown()
{
    state().store.reset();
}

SettingsStore* Options::defaultStore()
{
    return pick(nullptr);
}

QString Options::settingsDir()
{
    pick(nullptr);
    return state().settingsDir;
}

QString Options::projectDir()
{
    pick(nullptr);
    return state().projectDir;
}

QString Options::historyDir()
{
    pick(nullptr);
    return state().historyDir;
}

QString Options::swapDir()
{
    pick(nullptr);
    return state().swapDir;
}

QString Options::tempDir()
{
    pick(nullptr);
    return state().tempDir;
}

QString Options::homeDir()
{
    return QDir::homePath();
}

QString Options::formatReal(double value)
{
    return QString::number(value, 'g', 12);
}

QString Options::formatColor(const QColor& color)
{
    return QStringLiteral("%1;%2;%3;%4").arg(color.red()).arg(color.green()).arg(color.blue()).arg(color.alpha());
}

QColor Options::parseColor(const QString& text, const QColor& fallback)
{
    const QStringList parts = text.split(QLatin1Char(';'));
    if (parts.size() != 4)
        return fallback;
    int channel[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        channel[i] = parts.at(i).trimmed().toInt(&ok);
        if (!ok)
            return fallback;
        channel[i] = qBound(0, channel[i], 255);
    }
    return QColor(channel[0], channel[1], channel[2], channel[3]);
}

bool Options::setString(const QString& key, const QString& value, SettingsStore* store)
{
    return pick(store)->set(key, value);
}

bool Options::setInt(const QString& key, int value, SettingsStore* store)
{
    return pick(store)->set(key, QString::number(value));
}

bool Options::setDouble(const QString& key, double value, SettingsStore* store)
{
    return pick(store)->set(key, formatReal(value));
}

bool Options::setBool(const QString& key, bool value, SettingsStore* store)
{
    return pick(store)->set(key, value ? QStringLiteral("1") : QStringLiteral("0"));
}

bool Options::setColor(const QString& key, const QColor& value, SettingsStore* store)
{
    return pick(store)->set(key, formatColor(value));
}

QString Options::getString(const QString& key, const QString& defaultValue, SettingsStore* store)
{
    QString value = defaultValue;
    pick(store)->get(key, value);
    return value;
}

QString Options::getPath(const QString& key, const QString& defaultValue, SettingsStore* store)
{
    QString value;
    if (!pick(store)->get(key, value))
        return defaultValue;
    // The store reads its bytes as Latin-1; they are the UTF-8 that setString() wrote.
    return QString::fromUtf8(value.toLatin1());
}

int Options::getInt(const QString& key, int defaultValue, SettingsStore* store)
{
    QString text;
    if (!pick(store)->get(key, text))
        return defaultValue;
    bool ok = false;
    const int value = text.toInt(&ok, 10);
    return ok ? value : defaultValue;
}

double Options::getDouble(const QString& key, double defaultValue, SettingsStore* store)
{
    QString text;
    if (!pick(store)->get(key, text))
        return defaultValue;
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok ? value : defaultValue;
}

bool Options::getBool(const QString& key, bool defaultValue, SettingsStore* store)
{
    return getString(key, defaultValue ? QStringLiteral("1") : QStringLiteral("0"), store) == QLatin1String("1");
}

QColor Options::getColor(const QString& key, const QColor& defaultValue, SettingsStore* store)
{
    QString text;
    if (!pick(store)->get(key, text))
        return defaultValue;
    return parseColor(text, defaultValue);
}

bool Options::remove(const QString& key, SettingsStore* store)
{
    return pick(store)->remove(key);
}

QStringList Options::prefixedKeys(const QString& prefix, SettingsStore* store)
{
    return pick(store)->prefixedKeys(prefix);
}
