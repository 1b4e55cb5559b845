#include "cliitems.h"

#include "clicommand.h"

#include "core/base/atomicfile.h"
#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"

#include <QFileInfo>
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

bool CliItems::parseSize(const QString& text, QSize* size)
{
    const QStringList parts = text.split(QLatin1Char('x'));
    if (parts.size() != 2)
        return false;
    bool okW = false, okH = false;
    const int w = parts.at(0).toInt(&okW), h = parts.at(1).toInt(&okH);
    if (!okW || !okH || !QSciImage::sizeFits(w, h))
        return false;
    *size = QSize(w, h);
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
    if (path.isEmpty()) {
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
