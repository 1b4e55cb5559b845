#pragma once

#include <QColor>
#include <QMap>
#include <QPair>
#include <QRect>
#include <QString>
#include <QVector>

class QSciImage;

/**
 * What a 3D surface plot shows and stores: its settings by key, as text; its window geometry; the z-matrix it
 * draws, row by row from the top, with the item's name, units and physical size for the axes.
 */
class Plot3dDocument final {
public:
    Plot3dDocument();

    /** Every settings key of the plot file with its default. */
    static const QVector<QPair<QString, QString>>& settingDefaults();

    /** A document of @p item's z-matrix and calibration, colours taken from its gradient. */
    static Plot3dDocument fromItem(const QSciImage& item);

    QString setting(const QString& key) const { return m_settings.value(key); }
    /** Unknown keys are ignored. */
    void setSetting(const QString& key, const QString& value);
    bool flag(const QString& key) const { return m_settings.value(key) == QLatin1String("1"); }
    void setFlag(const QString& key, bool on) { setSetting(key, on ? QStringLiteral("1") : QStringLiteral("0")); }
    double number(const QString& key, double fallback = 0) const;
    void setNumber(const QString& key, double value) { setSetting(key, QString::number(value, 'g', 12)); }
    /** Colours are stored "r;g;b;a"; @p fallback for an unreadable text. */
    QColor color(const QString& key, const QColor& fallback = Qt::black) const;
    void setColor(const QString& key, const QColor& color);
    const QMap<QString, QString>& settings() const { return m_settings; }

    /** Data points; z is row-major, row 0 at the top as the item is shown. */
    bool hasData() const { return width > 0 && height > 0 && z.size() == qsizetype(width) * height; }
    /** Smallest and largest finite z, stored with the file rather than recomputed. */
    void updateRange();

    QRect geometry;
    int width = 0;
    int height = 0;
    double zMin = 0;
    double zMax = 0;
    QVector<double> z;
    /** Labels for the axes; kept with the file inside the settings texts, not here. */
    QString itemName;
    QString xUnit;
    QString yUnit;
    QString zUnit;
    double xSize = 0;
    double ySize = 0;

private:
    QMap<QString, QString> m_settings;
};
