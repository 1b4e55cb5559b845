#include "benchharness.h"

#include "core/settings/options.h"
#include "core/settings/settingsstore.h"

#include <memory>

namespace {

QList<BenchJob> settingsJobs(BenchContext& context)
{
    auto store = std::make_shared<SettingsStore>();
    store->open(context.workDir + QStringLiteral("/bench-settings.db"), true);
    BenchJob job;
    job.name = QStringLiteral("settings_set_get");
    job.run = [store]() {
        for (int i = 0; i < 10000; ++i) {
            const QString key = QStringLiteral("Bench.value") + QString::number(i % 100);
            Options::setInt(key, i, store.get());
            if (Options::getInt(key, -1, store.get()) != i)
                qFatal("settings_set_get: read back a different value");
        }
    };
    return { job };
}

const BenchRegistration registration(10, settingsJobs);

} // namespace
