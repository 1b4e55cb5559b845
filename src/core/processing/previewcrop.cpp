#include "previewcrop.h"

#include "qscieffect.h"

#include "core/items/qsciimage.h"

#include <algorithm>
#include <limits>

namespace {

/** Wide enough for the neighbourhoods of the usual options. */
constexpr int Margin = 16;

} // namespace

PreviewCrop::PreviewCrop(const QSciImage& item, int side)
    : m_gradient(item.colorGradient())
{
    const int w = item.width(), h = item.height();
    const int shownW = std::min(w, side), shownH = std::min(h, side);
    const int shownX = (w - shownW) / 2, shownY = (h - shownH) / 2;
    const int x0 = std::max(0, shownX - Margin), y0 = std::max(0, shownY - Margin);
    const int x1 = std::min(w, shownX + shownW + Margin), y1 = std::min(h, shownY + shownH + Margin);
    m_width = x1 - x0;
    m_height = y1 - y0;
    m_shown = QRect(shownX - x0, shownY - y0, shownW, shownH);
    m_origin = QPoint(x0, y0);
    m_z.resize(qsizetype(m_width) * m_height);
    m_mask.resize(m_z.size());
    for (int x = 0; x < m_width; ++x) {
        const qsizetype from = qsizetype(x0 + x) * h + y0;
        std::copy(item.zData() + from, item.zData() + from + m_height, m_z.begin() + qsizetype(x) * m_height);
        std::copy(item.maskData() + from, item.maskData() + from + m_height, m_mask.begin() + qsizetype(x) * m_height);
    }
}

QImage PreviewCrop::original() const
{
    return render(m_z);
}

QImage PreviewCrop::processed(const QSciEffect& effect, ProgressSink* progress) const
{
    if (isEmpty())
        return QImage();
    QVector<double> out = m_z;
    const EffectInput input { m_z.constData(), m_mask.constData(), m_width, m_height };
    if (!effect.run(input, out.data(), progress))
        return QImage();
    return render(out);
}

QImage PreviewCrop::render(const QVector<double>& z) const
{
    if (isEmpty())
        return QImage();
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (int x = m_shown.left(); x <= m_shown.right(); ++x)
        for (int y = m_shown.top(); y <= m_shown.bottom(); ++y) {
            const double v = z[qsizetype(x) * m_height + y];
            low = std::min(low, v);
            high = std::max(high, v);
        }
    QImage image(m_shown.size(), QImage::Format_ARGB32);
    for (int row = 0; row < m_shown.height(); ++row) {
        // Image rows run from the top, item rows from the bottom.
        const int y = m_shown.bottom() - row;
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int col = 0; col < m_shown.width(); ++col)
            line[col] = m_gradient.colorAt(z[qsizetype(m_shown.left() + col) * m_height + y], low, high);
    }
    return image;
}
