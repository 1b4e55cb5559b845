#include "benchharness.h"

#include "core/settings/options.h"
#include "core/settings/settingsstore.h"

#include <memory>

QList<BenchJob> settingsBenchJobs(BenchContext& context)
{
    auto store = std::make_shared<SettingsStore>();
    store->open(context.workDir + QStringLiteral("/bench-settings.db"), true);
    BenchJob job;
    job.name = QStringLiteral("settings_set_get");
    job.run = [store]() {
        int sum = 0;
        for (int i = 0; i < 10000; ++i) {
            const QString key = QStringLiteral("Bench.value") + QString::number(i % 100);
            Options::setInt(key, i, store.get());
            sum += Options::getInt(key, 0, store.get());
        }
        Q_UNUSED(sum)
    };
    return { job };
}
