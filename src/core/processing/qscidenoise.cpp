#include "qscidenoise.h"

#include "discmedian.h"

#include "core/settings/options.h"

#include <QCoreApplication>
#include <algorithm>

QString QSciDenoise::name() const
{
    return QCoreApplication::translate("QSciDenoise", "Denoise");
}

void QSciDenoise::readSettings()
{
    m_options.radius = ::Options::getDouble(QStringLiteral("ImageProcessing.denoise.radius"), 1.0);
    m_options.loops = std::max(1, ::Options::getInt(QStringLiteral("ImageProcessing.denoise.numberOfLoops"), 1));
    const bool selection = ::Options::getBool(QStringLiteral("ImageProcessing.denoise.applyToSelection"), false);
    m_options.selectionOnly
        = selection && !::Options::getBool(QStringLiteral("ImageProcessing.denoise.applyToEntireImage"), !selection);
}

void QSciDenoise::writeSettings() const
{
    ::Options::setDouble(QStringLiteral("ImageProcessing.denoise.radius"), m_options.radius);
    ::Options::setInt(QStringLiteral("ImageProcessing.denoise.numberOfLoops"), m_options.loops);
    ::Options::setBool(QStringLiteral("ImageProcessing.denoise.applyToEntireImage"), !m_options.selectionOnly);
    ::Options::setBool(QStringLiteral("ImageProcessing.denoise.applyToSelection"), m_options.selectionOnly);
}

bool QSciDenoise::run(const EffectInput& input, double* out, ProgressSink* progress) const
{
    const QRect region = this->region(input);
    if (region.isEmpty())
        return true;
    // Every pass reads the copy taken before the first one and writes the same values again, so one pass
    // stands for any number of loops.
    return DiscMedian::filter(input.z, input.width, input.height, m_options.radius, region,
        m_options.selectionOnly ? input.mask : nullptr, out, progress, name());
}

QString QSciDenoise::logParameters() const
{
    return QStringLiteral("radius=%1, loops=%2%3")
        .arg(m_options.radius)
        .arg(m_options.loops)
        .arg(m_options.selectionOnly ? QStringLiteral(", selection") : QString());
}
