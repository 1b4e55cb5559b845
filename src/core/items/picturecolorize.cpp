#include "picturecolorize.h"

#include "brushfootprint.h"
#include "qsciimage.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

QString PictureColorize::operationText()
{
    return QCoreApplication::translate("PictureColorize", "Colorize");
}

QRgb PictureColorize::tint(QRgb original, const QColor& color, double strength)
{
    const QColor here = QColor::fromRgba(original);
    const QColor tinted = QColor::fromHslF(
        color.hslHueF() < 0 ? 0 : color.hslHueF(), color.hslSaturationF(), here.lightnessF(), here.alphaF())
                              .toRgb();
    const double s = std::clamp(strength, 0.0, 1.0);
    const auto mix = [s](int a, int b) { return int(std::lround(a + (b - a) * s)); };
    return qRgba(mix(qRed(original), tinted.red()), mix(qGreen(original), tinted.green()),
        mix(qBlue(original), tinted.blue()), qAlpha(original));
}

void PictureColorize::apply(QSciImage& item, const BrushFootprint& footprint, const QColor& color, double strength)
{
    QImage& picture = item.pictureRef();
    const QRect area = footprint.bounds() & picture.rect();
    for (int row = area.top(); row <= area.bottom(); ++row) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(row));
        for (int x = area.left(); x <= area.right(); ++x)
            if (footprint.covers(x, row))
                line[x] = tint(line[x], color, strength);
    }
    item.notifyChanged(QSciImage::PicturePart);
}
