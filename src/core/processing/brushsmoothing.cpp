#include "brushsmoothing.h"

#include "convolution.h"
#include "qscifilter.h"

#include "core/items/brushfootprint.h"
#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <cmath>
#include <vector>

QString BrushSmoothing::operationText()
{
    return QCoreApplication::translate("BrushSmoothing", "Smoothen");
}

void BrushSmoothing::apply(QSciImage& item, const BrushFootprint& footprint, double radius)
{
    const int w = item.width(), h = item.height();
    if (footprint.isEmpty())
        return;
    const Convolution::Kernel kernel = QSciFilter::discMeanKernel(radius);
    // Only the stroke's neighbourhood is convolved. Where it is cut by the item's edge the mirroring is the
    // item's own; elsewhere the kernel never reaches the patch's edge from a covered point.
    const QRect shown = footprint.bounds().adjusted(-kernel.rx, -kernel.ry, kernel.rx, kernel.ry) & QRect(0, 0, w, h);
    const int pw = shown.width(), ph = shown.height();
    const int x0 = shown.left(), y0 = h - 1 - shown.bottom(); // storage rows count from the bottom
    std::vector<double> patch(std::size_t(pw) * ph), out(patch.size());
    double* z = item.zData();
    for (int x = 0; x < pw; ++x)
        for (int y = 0; y < ph; ++y)
            patch[std::size_t(x) * ph + y] = z[qsizetype(x0 + x) * h + y0 + y];
    if (!Convolution::apply(patch.data(), out.data(), pw, ph, kernel))
        return;
    for (int x = 0; x < pw; ++x)
        for (int y = 0; y < ph; ++y) {
            const int row = h - 1 - (y0 + y);
            const double v = out[std::size_t(x) * ph + y];
            // An unmeasured point nearby would spread over the stroke; such points keep their height.
            if (footprint.covers(x0 + x, row) && std::isfinite(v))
                z[qsizetype(x0 + x) * h + y0 + y] = v;
        }
    item.notifyChanged(QSciImage::ZPart);
}
