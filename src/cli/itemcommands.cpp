#include "cliargs.h"
#include "clicommand.h"
#include "cliitems.h"

#include "core/base/messages.h"
#include "core/display/colorgradient.h"
#include "core/items/itemdecoration.h"
#include "core/items/qsciimage.h"
#include "core/items/textmatrix.h"
#include "core/processing/syntheticfield.h"
#include "core/settings/options.h"

#include <QBuffer>
#include <cmath>
#include <limits>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace {

int usage(CliContext& ctx, const QString& text)
{
    ctx.err << text << Qt::endl;
    return CliUsage;
}

/** Checks the leftovers of a command line: a usage error or the wrong number of file arguments. */
bool checkArgs(CliContext& ctx, const CliArgs& args, int files, int* status)
{
    QString problem = args.usageError();
    if (problem.isEmpty() && args.positional().size() != files)
        problem = files == 0 ? QStringLiteral("unexpected argument %1").arg(args.positional().value(0))
                             : QStringLiteral("expected %1 file argument(s)").arg(files);
    if (problem.isEmpty())
        return true;
    *status = usage(ctx, problem);
    return false;
}

QString baseName(const QString& path)
{
    QString name = QFileInfo(path).fileName();
    if (name.endsWith(QLatin1String(".img.velm"), Qt::CaseInsensitive))
        return name.left(name.size() - 9);
    return QFileInfo(path).completeBaseName();
}

/** A gradient given as a built-in number or as a token string that yields a usable stop. */
bool parseGradient(const QString& text, ColorGradient* gradient, QString* message)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber) {
        if (number >= 1 && number <= ColorGradient::builtInCount()) {
            *gradient = ColorGradient::builtIn(number);
            return true;
        }
        *message = QStringLiteral("--gradient needs 1 to %1 or a token string").arg(ColorGradient::builtInCount());
        return false;
    }
    return ColorGradient::parseUserText(text, gradient, message);
}

int runNew(CliContext& ctx, CliArgs& args)
{
    const QString sizeText = args.takeRequired(QStringLiteral("--size"));
    const QString out = args.takeRequired(QStringLiteral("--out"));
    bool colorGiven = false;
    const QString colorText = args.takeOption(QStringLiteral("--color"), &colorGiven);
    int status = CliSuccess;
    if (!checkArgs(ctx, args, 0, &status))
        return status;
    QSize size;
    QColor color(Qt::white);
    QString problem;
    if (!CliItems::parseSize(sizeText, &size, &problem))
        return usage(ctx, problem);
    if (colorGiven && !CliItems::parseColor(colorText, &color))
        return usage(ctx, QStringLiteral("--color needs a colour name or #RRGGBB"));
    QSciImage item(size.width(), size.height(), color);
    item.setName(baseName(out));
    item.setCreationTime(QDateTime::currentDateTime());
    return CliItems::save(ctx, item, out) ? CliSuccess : CliFailure;
}

int runSynth(CliContext& ctx, CliArgs& args)
{
    const QString sizeText = args.takeRequired(QStringLiteral("--size"));
    const QString out = args.takeRequired(QStringLiteral("--out"));
    bool grainsGiven = false, seedGiven = false, noiseGiven = false;
    const QString grainsText = args.takeOption(QStringLiteral("--grains"), &grainsGiven);
    const QString seedText = args.takeOption(QStringLiteral("--seed"), &seedGiven);
    const QString noiseText = args.takeOption(QStringLiteral("--noise"), &noiseGiven);
    int status = CliSuccess;
    if (!checkArgs(ctx, args, 0, &status))
        return status;
    SyntheticField::Parameters p;
    QSize size;
    QString problem;
    if (!CliItems::parseSize(sizeText, &size, &problem))
        return usage(ctx, problem);
    p.width = size.width();
    p.height = size.height();
    if (grainsGiven) {
        // Read wide, so that a huge count is called too large rather than malformed.
        bool ok = false;
        const qlonglong grains = grainsText.toLongLong(&ok);
        if (!ok || grains < 0 || grains > SyntheticField::MaxGrains)
            return usage(
                ctx, QStringLiteral("--grains needs a whole number from 0 to %1").arg(SyntheticField::MaxGrains));
        p.grains = int(grains);
    }
    if (seedGiven) {
        bool ok = false;
        p.seed = seedText.toULongLong(&ok);
        if (!ok)
            return usage(ctx, QStringLiteral("--seed needs a whole number of at least 0"));
    }
    if (noiseGiven
        && !CliItems::parseReal(
            QStringLiteral("--noise"), noiseText, 0, std::numeric_limits<double>::infinity(), &p.noise, &problem))
        return usage(ctx, problem);
    QSciImage item(p.width, p.height, Qt::white);
    if (!item.setZMatrix(SyntheticField::generate(p)))
        return ctx.fail(QStringLiteral("synth: the field does not fit the item"));
    QSciImage::SciValues values;
    values.xUnit = values.yUnit = values.zUnit = QStringLiteral("nm");
    values.sizeX = p.width;
    values.sizeY = p.height;
    item.setSciValues(values);
    item.setName(baseName(out));
    item.mapZToPicture();
    return CliItems::save(ctx, item, out) ? CliSuccess : CliFailure;
}

int runImportZ(CliContext& ctx, CliArgs& args)
{
    const QString out = args.takeRequired(QStringLiteral("--out"));
    QString units[3];
    const char* unitOptions[3] = { "--x-unit", "--y-unit", "--z-unit" };
    for (int i = 0; i < 3; ++i)
        units[i] = args.takeOption(QString::fromLatin1(unitOptions[i]));
    bool xGiven = false, yGiven = false;
    const QString xSize = args.takeOption(QStringLiteral("--x-size"), &xGiven);
    const QString ySize = args.takeOption(QStringLiteral("--y-size"), &yGiven);
    int status = CliSuccess;
    if (!checkArgs(ctx, args, 1, &status))
        return status;
    // A physical size is a length: zero, negative or endless sizes make every later measure wrong.
    const auto positiveSize = [](const QString& text, double* value) {
        bool ok = false;
        *value = text.toDouble(&ok);
        return ok && std::isfinite(*value) && *value > 0;
    };
    double sizeX = 0, sizeY = 0;
    if ((xGiven && !positiveSize(xSize, &sizeX)) || (yGiven && !positiveSize(ySize, &sizeY)))
        return usage(ctx, QStringLiteral("--x-size and --y-size need positive finite numbers"));
    const QString path = args.positional().first();
    QFile file(path);
    if (!file.exists())
        return ctx.fail(Messages::fileDoesNotExist(path));
    if (QFileInfo(path).isDir())
        return ctx.fail(Messages::unableToReadFromFile(path) + QStringLiteral("\n") + Messages::tr("is a directory"));
    if (!file.open(QIODevice::ReadOnly))
        return ctx.fail(Messages::unableToOpenFile(path) + QStringLiteral("\n")
            + (file.error() == QFileDevice::PermissionsError ? Messages::tr("permission denied") : file.errorString()));
    QVector<double> z;
    int w = 0, h = 0;
    QString message;
    if (!TextMatrix::read(file.readAll(), &z, &w, &h, &message))
        return ctx.fail(Messages::unableToReadFromFile(path) + QStringLiteral("\n") + message);
    QSciImage item(w, h, Qt::white);
    (void)item.setZMatrix(z);
    QSciImage::SciValues values;
    values.xUnit = units[0];
    values.yUnit = units[1];
    values.zUnit = units[2];
    values.sizeX = xGiven ? sizeX : w;
    values.sizeY = yGiven ? sizeY : h;
    values.xUnitPerPixel = values.sizeX / w;
    values.yUnitPerPixel = values.sizeY / h;
    item.setSciValues(values);
    item.setName(baseName(out));
    ColorGradient gradient;
    gradient.fromString(Options::getString(QStringLiteral("FormChooseColorGradient.gradient"), QString()));
    item.setColorGradient(gradient);
    item.mapZToPicture();
    return CliItems::save(ctx, item, out) ? CliSuccess : CliFailure;
}

int runExport(CliContext& ctx, CliArgs& args, bool mask)
{
    const QString out = args.takeOption(QStringLiteral("--out"));
    int status = CliSuccess;
    if (!checkArgs(ctx, args, 1, &status))
        return status;
    QSciImage item;
    if (!CliItems::load(ctx, args.positional().first(), item))
        return CliFailure;
    const QByteArray text = mask ? TextMatrix::writeMask(item.maskData(), item.width(), item.height())
                                 : TextMatrix::write(item.zData(), item.width(), item.height());
    return CliItems::writeOut(ctx, out, text) ? CliSuccess : CliFailure;
}

/** "KEY=VALUE" pairs of display element keys; false for a pair without "=" or with an unknown key. */
bool parseDisplayValues(const QStringList& pairs, QMap<QString, QString>* values)
{
    for (const QString& pair : pairs) {
        const int eq = pair.indexOf(QLatin1Char('='));
        const QString key = pair.left(eq);
        const auto& defaults = QSciImage::displayElementDefaults();
        if (eq < 1
            || std::none_of(defaults.cbegin(), defaults.cend(), [&key](const auto& d) { return d.first == key; }))
            return false;
        values->insert(key, pair.mid(eq + 1));
    }
    return true;
}

int runRender(CliContext& ctx, CliArgs& args)
{
    const QString out = args.takeRequired(QStringLiteral("--out"));
    const bool fromZ = args.takeFlag(QStringLiteral("--from-z"));
    const bool decorations = args.takeFlag(QStringLiteral("--decorations"));
    const QStringList displayValues = args.takeAll(QStringLiteral("--display"));
    bool gradientGiven = false;
    const QString gradientText = args.takeOption(QStringLiteral("--gradient"), &gradientGiven);
    bool zrangeGiven = false, cutGiven = false;
    const QString zrangeText = args.takeOption(QStringLiteral("--zrange"), &zrangeGiven);
    const QString cutText = args.takeOption(QStringLiteral("--zrange-cut"), &cutGiven);
    int status = CliSuccess;
    if (!checkArgs(ctx, args, 1, &status))
        return status;
    ColorGradient gradient;
    QString problem;
    if (gradientGiven && !parseGradient(gradientText, &gradient, &problem))
        return usage(ctx, problem);
    QMap<QString, QString> display;
    if (!parseDisplayValues(displayValues, &display))
        return usage(ctx, QStringLiteral("--display needs KEY=VALUE with a display element key"));
    // Without --from-z the gradient would reach nothing but a z scale: silently ignored, it misleads.
    if (gradientGiven && !fromZ && !decorations && display.isEmpty())
        return usage(ctx, QStringLiteral("--gradient colours the z-matrix: it needs --from-z"));
    ColorRange range;
    if (zrangeGiven && cutGiven)
        return usage(ctx, QStringLiteral("--zrange and --zrange-cut exclude each other"));
    if (zrangeGiven && !ColorRange::parseFixed(zrangeText, &range))
        return usage(ctx, QStringLiteral("--zrange needs MIN:MAX, two finite numbers"));
    if (cutGiven && !ColorRange::parseCut(cutText, &range))
        return usage(ctx, QStringLiteral("--zrange-cut needs a percentage from 0 to below 50"));
    if ((zrangeGiven || cutGiven) && !fromZ)
        return usage(ctx, QStringLiteral("--zrange and --zrange-cut colour the z-matrix: they need --from-z"));
    QSciImage item;
    if (!CliItems::load(ctx, args.positional().first(), item))
        return CliFailure;
    if (gradientGiven)
        item.setColorGradient(gradient);
    if (zrangeGiven || cutGiven)
        item.setColorRange(range);
    if (fromZ)
        item.mapZToPicture();
    QImage picture = item.picture();
    if (decorations || !display.isEmpty()) {
        QMap<QString, QString> values = item.displayElements();
        for (auto it = display.cbegin(); it != display.cend(); ++it)
            values.insert(it.key(), it.value());
        DisplayElements elements = DisplayElements::fromMap(values);
        if (decorations)
            elements.showFigureSet();
        picture = ItemDecoration::decoratedPicture(item, picture, elements);
    }
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (!picture.save(&buffer, "PNG"))
        return ctx.fail(QStringLiteral("Unable to write file: ") + out);
    return CliItems::writeOut(ctx, out, png) ? CliSuccess : CliFailure;
}

const CliCommandRegistration registration({
    { QStringLiteral("new"), QStringLiteral("new --size WxH [--color NAME|#RRGGBB] --out FILE"),
        QStringLiteral("a blank item (z all 0, picture filled, no mask)"), runNew, 20 },
    { QStringLiteral("synth"), QStringLiteral("synth --size WxH [--grains N] [--seed S] [--noise SIGMA] --out FILE"),
        QStringLiteral("a deterministic synthetic height image"), runSynth, 21 },
    { QStringLiteral("import-z"),
        QStringLiteral("import-z TEXT --out FILE [--x-unit U] [--y-unit U] [--z-unit U] [--x-size S] [--y-size S]"),
        QStringLiteral("an item from a text matrix (first line the top row)"), runImportZ, 22 },
    { QStringLiteral("export-z"), QStringLiteral("export-z FILE [--out TEXT]"),
        QStringLiteral("the z-matrix as a text matrix"),
        [](CliContext& c, CliArgs& a) { return runExport(c, a, false); }, 23 },
    { QStringLiteral("export-mask"), QStringLiteral("export-mask FILE [--out TEXT]"),
        QStringLiteral("the mask as a text matrix of 1 and 0"),
        [](CliContext& c, CliArgs& a) { return runExport(c, a, true); }, 24 },
    { QStringLiteral("render"),
        QStringLiteral(
            "render FILE --out PNG [--from-z] [--gradient N|TOKEN] [--zrange MIN:MAX | --zrange-cut PERCENT] "
            "[--decorations] [--display KEY=VALUE]..."),
        QStringLiteral("the item's picture as PNG, optionally mapped from z first, with rulers, title and z scale"),
        runRender, 25 },
});

} // namespace
