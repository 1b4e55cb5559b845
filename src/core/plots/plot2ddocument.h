#pragma once

#include <QMap>
#include <QPair>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QVector>

/** One curve of a 2D plot: rows of `variables.size()` numbers each, the first the x value. */
struct Plot2dCurve {
    QString plotName;
    /** The table columns the curve was made from, x first. */
    QStringList variables;
    /** Flat, row by row; a trailing incomplete row is ignored when drawing. */
    QVector<double> values;

    int pointCount() const { return variables.size() < 2 ? 0 : int(values.size() / variables.size()); }
    double x(int point) const { return values[qsizetype(point) * variables.size()]; }
    double y(int point, int column = 1) const { return values[qsizetype(point) * variables.size() + column]; }
};

/**
 * What a 2D plot window shows and stores: its appearance settings, by key, as text; its window geometry; its
 * curves. Every key has a default, so a document made from nothing draws a plain plot and a file that lacks a key
 * still loads.
 */
class Plot2dDocument final {
public:
    enum class Scale { Linear, Ln, Log10 };

    Plot2dDocument();

    /** Every settings key with its default, in the order the settings page lists them. */
    static const QVector<QPair<QString, QString>>& settingDefaults();
    static bool isBooleanKey(const QString& key);

    QString setting(const QString& key) const { return m_settings.value(key); }
    /** Unknown keys are ignored: a file may not add controls the window does not have. */
    void setSetting(const QString& key, const QString& value);
    bool flag(const QString& key) const { return m_settings.value(key) == QLatin1String("1"); }
    void setFlag(const QString& key, bool on) { setSetting(key, on ? QStringLiteral("1") : QStringLiteral("0")); }
    double number(const QString& key) const;
    void setNumber(const QString& key, double value);
    const QMap<QString, QString>& settings() const { return m_settings; }

    /** Which of the three exclusive scale boxes of axis 'x' or 'y' is ticked; linear when none is. */
    Scale scale(QChar axis) const;
    void setScale(QChar axis, Scale scale);

    QRect geometry;
    QVector<Plot2dCurve> curves;

    /** Numbers as the settings show them: with a decimal comma when `useKomma` is ticked. */
    QString formatNumber(double value, int precision = 6) const;

private:
    QMap<QString, QString> m_settings;
};
