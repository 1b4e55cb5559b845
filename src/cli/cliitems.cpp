#include "cliitems.h"

#include "clicommand.h"

#include "core/base/atomicfile.h"
#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"

#include <QFileInfo>
#include <cmath>
#include <cstdio>

bool CliItems::load(CliContext& context, const QString& path, QSciImage& item)
{
    QString message;
    if (!ItemFile::load(item, path, true, true, &message)) {
        context.fail(message);
        return false;
    }
    return true;
}

bool CliItems::save(CliContext& context, QSciImage& item, const QString& path)
{
    QString message;
    if (!ItemFile::save(item, path, QSciImage::AllParts, false, true, &message)) {
        context.fail(message);
        return false;
    }
    return true;
}

bool CliItems::parseSize(const QString& text, QSize* size, QString* message)
{
    const QStringList parts = text.split(QLatin1Char('x'));
    bool okW = false, okH = false;
    // Read wide, so that a size beyond int is called too large rather than malformed.
    const qlonglong w = parts.value(0).toLongLong(&okW), h = parts.value(1).toLongLong(&okH);
    if (parts.size() != 2 || !okW || !okH || w < 1 || h < 1) {
        *message = QStringLiteral("--size needs WxH with positive whole numbers, for example 512x512");
        return false;
    }
    if (!QSciImage::sizeFits(w, h)) {
        *message = QSciImage::tooLargeText(w, h);
        return false;
    }
    *size = QSize(int(w), int(h));
    return true;
}

bool CliItems::parseReal(
    const QString& option, const QString& text, double low, double high, double* value, QString* message)
{
    bool ok = false;
    const double parsed = text.toDouble(&ok);
    if (!ok || !std::isfinite(parsed) || parsed < low || parsed > high) {
        if (std::isfinite(low) && std::isfinite(high))
            *message = QStringLiteral("%1 needs a number from %2 to %3").arg(option).arg(low).arg(high);
        else if (std::isfinite(low))
            *message = QStringLiteral("%1 needs a finite number of at least %2").arg(option).arg(low);
        else
            *message = QStringLiteral("%1 needs a finite number").arg(option);
        if (ok && !std::isfinite(parsed))
            *message += QStringLiteral(" (nan and inf would make z values that are no numbers)");
        return false;
    }
    *value = parsed;
    return true;
}

bool CliItems::parseColor(const QString& text, QColor* color)
{
    const QColor parsed(text);
    if (!parsed.isValid())
        return false;
    *color = parsed;
    return true;
}

bool CliItems::writeOut(CliContext& context, const QString& path, const QByteArray& data)
{
    if (path.isEmpty() || path == QLatin1String("-")) {
        context.out.flush();
        std::fwrite(data.constData(), 1, size_t(data.size()), stdout);
        std::fflush(stdout);
        return true;
    }
    QString message;
    if (!AtomicFile::write(path, data, &message)) {
        context.fail(message);
        return false;
    }
    return true;
}
