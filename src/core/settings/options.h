#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

class SettingsStore;

/**
 * The application's options: owns the default settings store and the working folders, and offers
 * the typed accessors. Every accessor takes the caller's default; a null @p store means the default store.
 */
class Options final {
public:
    /**
     * Opens "settings.db" in @p settingsDir (empty: VELMORA_SETTINGS_DIR, else the folder of the
     * per-user INI settings file) and makes the working folders. Safe to call again to switch folders.
     */
    static void initialize(const QString& settingsDir = QString());
    /** Closes the store; the next access opens the same folder again. */
    static void shutdown();
    static SettingsStore* defaultStore();

    /** The settings folder with a trailing "/". */
    static QString settingsDir();
    static QString projectDir();
    static QString historyDir();
    static QString swapDir();
    static QString tempDir();
    static QString homeDir();

    static bool setString(const QString& key, const QString& value, SettingsStore* store = nullptr);
    static bool setInt(const QString& key, int value, SettingsStore* store = nullptr);
    static bool setDouble(const QString& key, double value, SettingsStore* store = nullptr);
    static bool setBool(const QString& key, bool value, SettingsStore* store = nullptr);
    static bool setColor(const QString& key, const QColor& value, SettingsStore* store = nullptr);
    static QString getString(const QString& key, const QString& defaultValue, SettingsStore* store = nullptr);
    /**
     * A text stored by setString() as it was written, characters beyond ASCII included (getString() returns
     * those as their UTF-8 bytes). For folder and file names, which would otherwise no longer be found.
     */
    static QString getPath(const QString& key, const QString& defaultValue, SettingsStore* store = nullptr);
    static int getInt(const QString& key, int defaultValue, SettingsStore* store = nullptr);
    static double getDouble(const QString& key, double defaultValue, SettingsStore* store = nullptr);
    static bool getBool(const QString& key, bool defaultValue, SettingsStore* store = nullptr);
    static QColor getColor(const QString& key, const QColor& defaultValue, SettingsStore* store = nullptr);
    static bool remove(const QString& key, SettingsStore* store = nullptr);
    static QStringList prefixedKeys(const QString& prefix, SettingsStore* store = nullptr);

    /** Reals as stored: up to 12 significant digits, shortest of fixed or exponent form. */
    static QString formatReal(double value);
    /** Colours as stored: "red;green;blue;alpha". */
    static QString formatColor(const QColor& color);
    /** Parses "r;g;b;a"; anything else yields @p fallback. */
    static QColor parseColor(const QString& text, const QColor& fallback);
};
