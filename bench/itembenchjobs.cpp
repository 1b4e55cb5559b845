#include "benchharness.h"

#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"

#include <QFile>
#include <cstring>
#include <memory>
#include <vector>

namespace {

/** The item is built on first use, so that runs with --only pay only for what they time. */
struct ItemBenchState {
    BenchContext* context = nullptr;
    std::unique_ptr<QSciImage> item;
    std::unique_ptr<QSciImage> target;
    QString normalPath;
    QString quickPath;
    std::vector<double> copy;

    QSciImage& source()
    {
        if (!item) {
            const BenchField& field = context->field;
            item = std::make_unique<QSciImage>(field.width, field.height, QColor(Qt::white));
            if (!item->setZMatrix(field.z))
                qFatal("item bench: the field does not match its size");
            item->setName(QStringLiteral("bench"));
            item->mapZToPicture();
            target = std::make_unique<QSciImage>();
        }
        return *item;
    }

    const QString& file(bool quick)
    {
        const QString& path = quick ? quickPath : normalPath;
        if (!QFile::exists(path))
            save(path, quick);
        return path;
    }

    void save(const QString& path, bool quick)
    {
        QString message;
        if (!ItemFile::write(source(), path, ItemFile::PartFlags(), quick, &message))
            qFatal("item bench: %s", qPrintable(message));
    }

    void load(const QString& path)
    {
        QString message;
        if (!ItemFile::load(*target, path, false, false, false, &message))
            qFatal("item bench: %s", qPrintable(message));
    }
};

QList<BenchJob> itemJobs(BenchContext& context)
{
    auto state = std::make_shared<ItemBenchState>();
    state->context = &context;
    state->normalPath = context.workDir + QStringLiteral("/bench.img.velm");
    state->quickPath = context.workDir + QStringLiteral("/bench-quick.img.velm");
    auto prepare = [state]() { state->source(); };

    // The memory bandwidth the file and colour jobs work against: the z-matrix copied once, single thread.
    BenchJob memcpyZ { QStringLiteral("memcpy_z"),
        [state]() {
            const QVector<double>& z = state->context->field.z;
            std::memcpy(state->copy.data(), z.constData(), size_t(z.size()) * sizeof(double));
        },
        [state]() { state->copy.assign(size_t(state->context->field.z.size()), 1.0); } };
    BenchJob colorize { QStringLiteral("colorize"), [state]() { state->item->mapZToPicture(); }, prepare };
    BenchJob save { QStringLiteral("save"), [state]() { state->save(state->normalPath, false); }, prepare };
    BenchJob saveQuick { QStringLiteral("save_quick"), [state]() { state->save(state->quickPath, true); }, prepare };
    BenchJob load { QStringLiteral("load"), [state]() { state->load(state->normalPath); },
        [state]() { state->file(false); } };
    BenchJob loadQuick { QStringLiteral("load_quick"), [state]() { state->load(state->quickPath); },
        [state]() { state->file(true); } };
    return { memcpyZ, colorize, save, saveQuick, load, loadQuick };
}

const BenchRegistration registration(30, itemJobs);

} // namespace
