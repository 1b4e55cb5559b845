#include "benchharness.h"

#include "core/processing/qscidenoise.h"
#include "core/processing/qsciderivative.h"
#include "core/processing/qscifilter.h"
#include "core/processing/qscilevelling.h"
#include "core/processing/qscirowalignment.h"

#include <memory>

namespace {

/** Times one effect on the field: the output buffer is refilled untimed before each run, as the item operation holds
 * it. */
BenchJob effectJob(BenchContext& context, const QString& name, std::shared_ptr<QSciEffect> effect)
{
    auto out = std::make_shared<QVector<double>>();
    BenchField* field = &context.field;
    return { name,
        [field, effect, out]() {
            const EffectInput input { field->z.constData(), nullptr, field->width, field->height };
            if (!effect->run(input, out->data(), nullptr))
                qFatal("effect bench: stopped");
        },
        [field, out]() {
            *out = field->z;
            out->detach();
        } };
}

QList<BenchJob> processingJobs(BenchContext& context)
{
    QList<BenchJob> jobs;
    for (int r : { 1, 2, 3, 5 })
        jobs.append(effectJob(context, QStringLiteral("denoise_r%1").arg(r),
            std::make_shared<QSciDenoise>(QSciDenoise::Options { double(r), 1, false })));
    QSciDerivative::Options gradient; // gradient mode, x and y, n = 1, order 1, f = 0, replicate
    jobs.append(effectJob(context, QStringLiteral("derivative_gradient"), std::make_shared<QSciDerivative>(gradient)));
    jobs.append(effectJob(context, QStringLiteral("level_plane"), std::make_shared<QSciLevelling>()));
    jobs.append(effectJob(context, QStringLiteral("align_rows_median"), std::make_shared<QSciRowAlignment>()));
    QSciFilter::Options gaussian;
    gaussian.sigma = 3;
    jobs.append(effectJob(context, QStringLiteral("gaussian_s3"), std::make_shared<QSciFilter>(gaussian)));
    QSciFilter::Options sobel;
    sobel.kind = QSciFilter::Kind::Sobel;
    jobs.append(effectJob(context, QStringLiteral("sobel"), std::make_shared<QSciFilter>(sobel)));
    return jobs;
}

const BenchRegistration registration(40, processingJobs);

} // namespace
