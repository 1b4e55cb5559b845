#include "benchharness.h"

#include "core/processing/syntheticfield.h"
#include "core/settings/options.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThreadPool>
#include <cstring>

namespace {

int usage(QTextStream& err)
{
    err << "Usage: velmora-bench [--size WxH] [--raw FILE] [--seed S] [--reps N] [--only REGEX] [--threads N] [--file "
           "FILE]"
        << Qt::endl;
    return 2;
}

/** Raw dumps are row by row from the top row; the item keeps columns with rows from the bottom. */
bool loadRaw(const QString& path, BenchField& field, QString* message)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *message = QStringLiteral("Unable to open file: ") + path;
        return false;
    }
    const qint64 expected = qint64(field.width) * field.height * 8;
    if (file.size() != expected) {
        *message = QStringLiteral("%1 holds %2 bytes, %3x%4 doubles need %5")
                       .arg(path)
                       .arg(file.size())
                       .arg(field.width)
                       .arg(field.height)
                       .arg(expected);
        return false;
    }
    const QByteArray bytes = file.readAll();
    const int w = field.width, h = field.height;
    field.z.resize(qsizetype(w) * h);
    const char* src = bytes.constData();
    for (int row = 0; row < h; ++row) {
        const int y = h - 1 - row;
        for (int x = 0; x < w; ++x) {
            double v;
            std::memcpy(&v, src + (qsizetype(row) * w + x) * 8, 8);
            field.z[qsizetype(x) * h + y] = v;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    BenchContext context;
    context.field.width = context.field.height = 1024;
    QString rawPath;
    QRegularExpression only;
    int reps = 5;
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        if (i + 1 >= args.size())
            return usage(err);
        const QString value = args.at(++i);
        bool ok = true;
        if (arg == QLatin1String("--size")) {
            const QStringList parts = value.split(QLatin1Char('x'));
            bool okW = false, okH = false;
            if (parts.size() == 2) {
                context.field.width = parts.at(0).toInt(&okW);
                context.field.height = parts.at(1).toInt(&okH);
            }
            ok = okW && okH && context.field.width > 0 && context.field.height > 0;
        } else if (arg == QLatin1String("--raw")) {
            rawPath = value;
        } else if (arg == QLatin1String("--seed")) {
            context.seed = value.toULongLong(&ok);
        } else if (arg == QLatin1String("--reps")) {
            reps = value.toInt(&ok);
            ok = ok && reps > 0;
        } else if (arg == QLatin1String("--only")) {
            only.setPattern(value);
            ok = only.isValid();
        } else if (arg == QLatin1String("--file")) {
            context.file = value;
        } else if (arg == QLatin1String("--threads")) {
            context.threads = value.toInt(&ok);
            ok = ok && context.threads > 0;
            if (ok)
                QThreadPool::globalInstance()->setMaxThreadCount(context.threads);
        } else {
            ok = false;
        }
        if (!ok)
            return usage(err);
    }

    QTemporaryDir work;
    context.workDir = work.path();
    Options::initialize(work.path() + QStringLiteral("/settings"));
    if (!rawPath.isEmpty()) {
        QString message;
        if (!loadRaw(rawPath, context.field, &message)) {
            err << message << Qt::endl;
            return 1;
        }
    } else {
        SyntheticField::Parameters p;
        p.width = context.field.width;
        p.height = context.field.height;
        p.seed = context.seed;
        context.field.z = SyntheticField::generate(p);
    }
    out << "# velmora-bench " << VELMORA_VERSION << ": field " << context.field.width << 'x' << context.field.height
        << (rawPath.isEmpty() ? QStringLiteral(" synthetic seed %1").arg(context.seed)
                              : QStringLiteral(" raw ") + rawPath)
        << ", threads " << QThreadPool::globalInstance()->maxThreadCount() << ", reps " << reps << Qt::endl;
    out << "# columns: job<TAB>median_ms<TAB>reps; one untimed warm-up per job" << Qt::endl;

    QList<BenchJob> jobs;
    for (const auto& factory : benchFactories())
        jobs += factory.second(context);
    for (const BenchJob& job : jobs) {
        if (!only.pattern().isEmpty() && !only.match(job.name).hasMatch())
            continue;
        const double ms = benchMedianMs(job, reps);
        out << job.name << '\t' << QString::number(ms, 'f', 3) << '\t' << reps << Qt::endl;
    }
    Options::shutdown();
    return 0;
}
