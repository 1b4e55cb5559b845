#include "imagecomposition.h"

#include "collectiontab.h"
#include "operationscope.h"
#include "project.h"

#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("ImageComposition", text);
}

/** Points between an item and the one made from it on the tab. */
constexpr int Gap = 10;

double step(double perPixel)
{
    return perPixel > 0 ? perPixel : 1;
}

bool sameStep(double a, double b)
{
    return std::abs(a - b) <= 1e-9 * std::max(std::abs(a), std::abs(b));
}

struct Placement {
    int x = 0, y = 0, width = 0, height = 0;
    QString name;
};

} // namespace

std::unique_ptr<QSciImage> ImageComposition::compose(const QList<const QSciImage*>& parts, QString* message)
{
    const auto fail = [message](const QString& text) {
        if (message)
            *message = text;
        return nullptr;
    };
    if (parts.size() < 2)
        return fail(tr("Select at least two items to compose."));
    const QSciImage::SciValues& first = parts.first()->sciValues();
    const double dx = step(first.xUnitPerPixel), dy = step(first.yUnitPerPixel);
    double left = std::numeric_limits<double>::infinity(), bottom = left;
    for (const QSciImage* part : parts) {
        const QSciImage::SciValues& s = part->sciValues();
        if (!sameStep(step(s.xUnitPerPixel), dx) || !sameStep(step(s.yUnitPerPixel), dy) || s.xUnit != first.xUnit
            || s.yUnit != first.yUnit || s.zUnit != first.zUnit)
            return fail(tr("The items must have the same point spacing and units: %1 differs from %2.")
                            .arg(part->name(), parts.first()->name()));
        left = std::min(left, s.offsetX);
        bottom = std::min(bottom, s.offsetY);
    }
    QList<Placement> placed;
    qint64 width = 0, height = 0;
    for (const QSciImage* part : parts) {
        const Placement p { int(std::lround((part->sciValues().offsetX - left) / dx)),
            int(std::lround((part->sciValues().offsetY - bottom) / dy)), part->width(), part->height(), part->name() };
        width = std::max(width, qint64(p.x) + p.width);
        height = std::max(height, qint64(p.y) + p.height);
        placed.append(p);
    }
    if (!QSciImage::sizeFits(width, height))
        return fail(tr("The composed image would be too large: %1 x %2 points.").arg(width).arg(height));

    double lowest = std::numeric_limits<double>::infinity();
    for (const QSciImage* part : parts)
        for (const double v : part->zMatrix())
            if (std::isfinite(v))
                lowest = std::min(lowest, v);
    if (!std::isfinite(lowest))
        lowest = 0;
    const int w = int(width), h = int(height);
    QVector<double> z(qsizetype(w) * h, lowest);
    QVector<uchar> gap(z.size(), 1);
    QList<QPair<QString, QString>> header;
    for (int i = 0; i < parts.size(); ++i) {
        const Placement& p = placed.at(i);
        const QVector<double> source = parts.at(i)->zMatrix();
        for (int x = 0; x < p.width; ++x) {
            const qsizetype to = qsizetype(p.x + x) * h + p.y;
            std::copy_n(source.constData() + qsizetype(x) * p.height, p.height, z.data() + to);
            std::fill_n(gap.data() + to, p.height, uchar(0));
        }
        header.append(
            { headerKey(), QStringLiteral("%1;%2;%3;%4;%5").arg(p.x).arg(p.y).arg(p.width).arg(p.height).arg(p.name) });
    }
    auto composed = std::make_unique<QSciImage>(w, h, Qt::white);
    if (!composed->setZMatrix(z))
        return fail(tr("The composed image would be too large: %1 x %2 points.").arg(width).arg(height));
    QSciImage::SciValues s = first;
    s.offsetX = left;
    s.offsetY = bottom;
    s.sizeX = w * dx;
    s.sizeY = h * dy;
    composed->setSciValues(s);
    if (std::find(gap.cbegin(), gap.cend(), uchar(1)) != gap.cend())
        (void)composed->setMask(gap);
    composed->setInstrumentHeader(header);
    composed->setColorGradient(parts.first()->colorGradient());
    composed->setName(tr("Composed image"));
    composed->mapZToPicture();
    return composed;
}

std::vector<std::unique_ptr<QSciImage>> ImageComposition::recompose(const QSciImage& composed, QString* message)
{
    std::vector<std::unique_ptr<QSciImage>> parts;
    const QSciImage::SciValues& s = composed.sciValues();
    const double dx = step(s.xUnitPerPixel), dy = step(s.yUnitPerPixel);
    const QVector<double> z = composed.zMatrix();
    for (const auto& entry : composed.instrumentHeader()) {
        if (entry.first != headerKey())
            continue;
        const QStringList fields = entry.second.split(QLatin1Char(';'));
        bool ok = fields.size() >= 5;
        int v[4] = {};
        for (int i = 0; ok && i < 4; ++i)
            v[i] = fields.at(i).toInt(&ok);
        // The item may have been cut or rotated since: a part that no longer lies inside it cannot come back.
        if (!ok || v[0] < 0 || v[1] < 0 || v[2] < 1 || v[3] < 1 || v[0] + qint64(v[2]) > composed.width()
            || v[1] + qint64(v[3]) > composed.height()) {
            parts.clear();
            if (message)
                *message = tr("The item has changed shape since it was composed; its parts no longer fit.");
            return parts;
        }
        QVector<double> values(qsizetype(v[2]) * v[3]);
        for (int x = 0; x < v[2]; ++x)
            std::copy_n(z.constData() + qsizetype(v[0] + x) * composed.height() + v[1], v[3],
                values.data() + qsizetype(x) * v[3]);
        auto part = std::make_unique<QSciImage>(v[2], v[3], Qt::white);
        if (!part->setZMatrix(values))
            continue;
        QSciImage::SciValues ps = s;
        ps.offsetX = s.offsetX + v[0] * dx;
        ps.offsetY = s.offsetY + v[1] * dy;
        ps.sizeX = v[2] * dx;
        ps.sizeY = v[3] * dy;
        part->setSciValues(ps);
        part->setColorGradient(composed.colorGradient());
        part->setName(fields.mid(4).join(QLatin1Char(';')));
        part->mapZToPicture();
        parts.push_back(std::move(part));
    }
    if (parts.empty() && message)
        *message = tr("The item was not composed from parts.");
    return parts;
}

QSciImage* ImageComposition::composeInto(Project& project, const QList<QSciImage*>& parts, QString* message)
{
    QList<const QSciImage*> sources;
    for (const QSciImage* part : parts)
        sources.append(part);
    std::unique_ptr<QSciImage> composed = compose(sources, message);
    CollectionTab* tab = composed ? project.tabOf(parts.last()) : nullptr;
    if (!tab)
        return nullptr;
    OperationScope scope(&project, tab, tr("Compose image parts"));
    QSciImage* made = composed.release();
    int right = parts.first()->right();
    for (const QSciImage* part : parts)
        right = std::max(right, part->right());
    made->setPosition(right + 1 + Gap, parts.first()->top());
    for (QSciImage* part : parts)
        part->setSelected(false);
    made->setSelected(true);
    tab->addItem(made, tab->indexOf(parts.last()) + 1);
    scope.recordCreated(made);
    scope.commit();
    return made;
}

QList<QSciImage*> ImageComposition::recomposeInto(Project& project, QSciImage* composed, QString* message)
{
    QList<QSciImage*> added;
    std::vector<std::unique_ptr<QSciImage>> parts = recompose(*composed, message);
    CollectionTab* tab = parts.empty() ? nullptr : project.tabOf(composed);
    if (!tab)
        return added;
    OperationScope scope(&project, tab, tr("Recompose images"));
    int left = composed->right() + 1 + Gap;
    composed->setSelected(false);
    for (std::unique_ptr<QSciImage>& part : parts) {
        QSciImage* made = part.release();
        made->setPosition(left, composed->top());
        left = made->right() + 1 + Gap;
        made->setSelected(true);
        tab->addItem(made, tab->indexOf(composed) + 1 + added.size());
        scope.recordCreated(made);
        added.append(made);
    }
    scope.commit();
    return added;
}
