#include "benchharness.h"

#include "core/analysis/imagesegmentation.h"
#include "core/processing/radialspectra.h"

#include <QTextStream>
#include <algorithm>
#include <memory>

namespace {

/** Watershed over the points above the mean, grains a twentieth of the z range deep; the radial curves. */
QList<BenchJob> segmentationJobs(BenchContext& context)
{
    BenchField* field = &context.field;
    auto domain = std::make_shared<std::vector<uchar>>();
    auto depth = std::make_shared<double>(0);
    const auto prepare = [field, domain, depth]() {
        if (!domain->empty())
            return;
        const auto [low, high] = std::minmax_element(field->z.cbegin(), field->z.cend());
        double sum = 0;
        for (const double v : field->z)
            sum += v;
        const double mean = sum / std::max(1, int(field->z.size()));
        domain->resize(size_t(field->z.size()));
        for (int i = 0; i < field->z.size(); ++i)
            (*domain)[size_t(i)] = field->z[i] > mean;
        *depth = (*high - *low) / 20;
    };
    auto count = std::make_shared<size_t>(0);
    return { { QStringLiteral("watershed"),
                 [field, domain, depth, count]() {
                     const size_t n = ImageSegmentation::watershed(
                         field->z.constData(), domain->data(), field->width, field->height, *depth)
                                          .size();
                     if (n != *count)
                         QTextStream(stderr) << "# watershed: " << (*count = n) << " grains\n";
                 },
                 prepare },
        { QStringLiteral("radial_psd"),
            [field]() {
                if (RadialSpectra::powerSpectralDensity(field->z.constData(), field->width, field->height, 1, 1)
                        .x.isEmpty())
                    qFatal("segmentation bench: no spectrum");
            },
            {} },
        { QStringLiteral("radial_acf"),
            [field]() {
                if (RadialSpectra::autocorrelation(field->z.constData(), field->width, field->height, 1, 1).x.isEmpty())
                    qFatal("segmentation bench: no autocorrelation");
            },
            {} } };
}

const BenchRegistration registration(46, segmentationJobs);

} // namespace
