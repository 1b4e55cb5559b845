#include "cliargs.h"
#include "clicommand.h"
#include "cliitems.h"

#include "core/base/messages.h"
#include "core/items/qsciimage.h"
#include "core/plots/lineprofile.h"
#include "core/plots/plot2ddocument.h"
#include "core/plots/plot2dfile.h"
#include "core/plots/plot2dpainter.h"
#include "core/plots/plot3ddocument.h"
#include "core/plots/plot3dpage.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tabletext.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <cmath>

namespace {

int usage(CliContext& ctx, const QString& text)
{
    ctx.err << text << Qt::endl;
    return CliUsage;
}

QString leftovers(const CliArgs& args, int files)
{
    QString problem = args.usageError();
    if (problem.isEmpty() && args.positional().size() != files)
        problem = files == 0 ? QStringLiteral("unexpected argument %1").arg(args.positional().value(0))
                             : QStringLiteral("expected %1 file argument(s)").arg(files);
    return problem;
}

int runPlot3d(CliContext& ctx, CliArgs& args)
{
    const QString out = args.takeRequired(QStringLiteral("--html"));
    const QString problem = leftovers(args, 1);
    if (!problem.isEmpty())
        return usage(ctx, problem);
    QSciImage item;
    if (!CliItems::load(ctx, args.positional().first(), item))
        return CliFailure;
    Plot3dDocument document = Plot3dDocument::fromItem(item);
    // A file opened in any browser: the 2D canvas is the one drawing every browser offers.
    document.setFlag(QStringLiteral("useWebGL"), false);
    const QString page = Plot3dPage::html(document, QSize(1000, 750), true);
    return CliItems::writeOut(ctx, out, page.toUtf8()) ? CliSuccess : CliFailure;
}

/** A column by its header text, else by its number counted from 0. */
int findColumn(const QStringList& header, const QString& name)
{
    const int index = header.indexOf(name);
    if (index >= 0)
        return index;
    bool ok = false;
    const int number = name.toInt(&ok);
    return ok && number >= 0 ? number : -1;
}

int runPlot2d(CliContext& ctx, CliArgs& args)
{
    const QString csv = args.takeRequired(QStringLiteral("--csv"));
    const QString xName = args.takeRequired(QStringLiteral("--x"));
    const QString yNames = args.takeRequired(QStringLiteral("--y"));
    const QString out = args.takeRequired(QStringLiteral("--out"));
    const QString png = args.takeOption(QStringLiteral("--png"));
    bool titled = false;
    const QString title = args.takeOption(QStringLiteral("--title"), &titled);
    const QString problem = leftovers(args, 0);
    if (!problem.isEmpty())
        return usage(ctx, problem);

    if (!QFileInfo::exists(csv))
        return ctx.fail(Messages::fileDoesNotExist(csv));
    QFile file(csv);
    if (!file.open(QIODevice::ReadOnly))
        return ctx.fail(Messages::unableToOpenFile(csv));
    const TableText::Parsed table = TableText::parse(QString::fromUtf8(file.readAll()));
    if (table.rows.isEmpty())
        return ctx.fail(Messages::withPath(QStringLiteral("No table rows in file"), csv));
    // A first row that is not all numbers names the columns.
    QStringList header = table.rows.first();
    bool headed = false;
    for (const QString& cell : qAsConst(header)) {
        bool ok = false;
        QSciSimpleTableModel::toNumber(cell, &ok);
        headed = headed || !ok;
    }
    if (!headed)
        header.clear();
    const auto number = [&table](const QString& text) {
        QString cell = text.trimmed();
        if (table.decimalComma)
            cell.replace(QLatin1Char(','), QLatin1Char('.'));
        bool ok = false;
        const double value = QSciSimpleTableModel::toNumber(cell, &ok);
        return ok ? value : qQNaN();
    };

    const int xColumn = findColumn(header, xName);
    if (xColumn < 0 || xColumn >= table.columns)
        return usage(ctx, QStringLiteral("no column %1 in %2").arg(xName, csv));
    Plot2dDocument document;
    const QString xLabel = header.value(xColumn, QStringLiteral("column %1").arg(xColumn));
    double xMin = qInf(), xMax = -qInf(), yMin = qInf(), yMax = -qInf();
    for (const QString& yName : yNames.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const int yColumn = findColumn(header, yName);
        if (yColumn < 0 || yColumn >= table.columns)
            return usage(ctx, QStringLiteral("no column %1 in %2").arg(yName, csv));
        Plot2dCurve curve;
        curve.plotName = header.value(yColumn, QStringLiteral("column %1").arg(yColumn));
        curve.variables = QStringList { xLabel, curve.plotName };
        for (int r = headed ? 1 : 0; r < table.rows.size(); ++r) {
            const double x = number(table.rows[r].value(xColumn)), y = number(table.rows[r].value(yColumn));
            curve.values << x << y;
            if (std::isfinite(x) && std::isfinite(y)) {
                xMin = std::min(xMin, x), xMax = std::max(xMax, x);
                yMin = std::min(yMin, y), yMax = std::max(yMax, y);
            }
        }
        document.curves.append(curve);
    }
    if (document.curves.isEmpty())
        return usage(ctx, QStringLiteral("--y names no column"));
    if (xMin <= xMax) {
        const double margin = (yMax - yMin) * 0.05;
        document.setNumber(QStringLiteral("xRangeMin"), xMin);
        document.setNumber(QStringLiteral("xRangeMax"), xMax > xMin ? xMax : xMin + 1);
        document.setNumber(QStringLiteral("yRangeMin"), yMin - margin);
        document.setNumber(QStringLiteral("yRangeMax"), yMax > yMin ? yMax + margin : yMin + 1);
    }
    document.setSetting(QStringLiteral("xLabel"), xLabel);
    document.setSetting(
        QStringLiteral("yLabel"), document.curves.size() == 1 ? document.curves.first().plotName : QStringLiteral("y"));
    document.setSetting(QStringLiteral("title"), titled ? title : QFileInfo(csv).fileName());

    QString message;
    if (!Plot2dFile::write(document, out, &message))
        return ctx.fail(message);
    if (!png.isEmpty()) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        if (!Plot2dPainter::render(document, document.geometry.size()).save(&buffer, "PNG"))
            return ctx.fail(Messages::unableToWriteFile(png));
        if (!CliItems::writeOut(ctx, png, bytes))
            return CliFailure;
    }
    return CliSuccess;
}

bool parsePoint(const QString& text, QPointF* point)
{
    const QStringList parts = text.split(QLatin1Char(','));
    bool okX = false, okY = false;
    if (parts.size() != 2)
        return false;
    *point = QPointF(parts[0].trimmed().toDouble(&okX), parts[1].trimmed().toDouble(&okY));
    return okX && okY && std::isfinite(point->x()) && std::isfinite(point->y());
}

int runProfile(CliContext& ctx, CliArgs& args)
{
    const QString fromText = args.takeRequired(QStringLiteral("--from"));
    const QString toText = args.takeRequired(QStringLiteral("--to"));
    bool widthGiven = false;
    const QString widthText = args.takeOption(QStringLiteral("--width"), &widthGiven);
    const QString out = args.takeRequired(QStringLiteral("--out"));
    QString problem = leftovers(args, 1);
    QPointF from, to;
    int width = 1;
    if (problem.isEmpty() && (!parsePoint(fromText, &from) || !parsePoint(toText, &to)))
        problem = QStringLiteral("--from and --to need X,Y");
    if (problem.isEmpty() && widthGiven) {
        bool ok = false;
        width = widthText.toInt(&ok);
        if (!ok || width < 1)
            problem = QStringLiteral("--width needs a positive number of points");
    }
    if (!problem.isEmpty())
        return usage(ctx, problem);
    QSciImage item;
    if (!CliItems::load(ctx, args.positional().first(), item))
        return CliFailure;
    const LineProfile profile = LineProfile::sample(item, from, to, width);
    return CliItems::writeOut(ctx, out, profile.toCsv().toUtf8()) ? CliSuccess : CliFailure;
}

const CliCommandRegistration registration({
    { QStringLiteral("plot3d"), QStringLiteral("plot3d FILE --html OUT.html"),
        QStringLiteral("standalone surface-plot page of an item"), runPlot3d, 80 },
    { QStringLiteral("plot2d"),
        QStringLiteral(
            "plot2d --csv TABLE.csv --x COLUMN --y COLUMN[,COLUMN...] --out FILE.plot2d.velm [--png OUT.png] "
            "[--title TEXT]"),
        QStringLiteral("2D plot file (and picture) of table columns"), runPlot2d, 81 },
    { QStringLiteral("profile"), QStringLiteral("profile FILE --from X,Y --to X,Y [--width N] --out PROFILE.csv"),
        QStringLiteral("z along a line, in physical units"), runProfile, 82 },
});

} // namespace
