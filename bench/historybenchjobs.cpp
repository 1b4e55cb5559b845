#include "benchharness.h"

#include "core/history/historylog.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/operationscope.h"
#include "core/project/project.h"

#include <memory>

namespace {

/** A project with the field as its one item; history files go to the bench's scratch settings folder. */
struct HistoryBenchState {
    BenchContext* context = nullptr;
    std::unique_ptr<Project> project;
    QSciImage* item = nullptr;

    void ensure()
    {
        if (project)
            return;
        HistoryLog::setQuiet(true);
        QSciHistoryManager::instance()->reloadSettings();
        QSciHistoryManager::instance()->setMaximumSize(quint64(1) << 40);
        project = std::make_unique<Project>();
        const BenchField& field = context->field;
        item = new QSciImage(field.width, field.height, QColor(Qt::white));
        if (!item->setZMatrix(field.z))
            qFatal("history bench: the field does not match its size");
        item->mapZToPicture();
        project->addTab()->addItem(item);
    }

    void commit()
    {
        OperationScope scope(project.get(), project->currentTab(), QStringLiteral("bench"));
        if (!scope.record(item, QSciImage::AllParts))
            qFatal("history bench: the item could not be recorded");
        scope.commit();
    }
};

QList<BenchJob> historyJobs(BenchContext& context)
{
    auto state = std::make_shared<HistoryBenchState>();
    state->context = &context;
    BenchJob commit { QStringLiteral("history_commit"), [state]() { state->commit(); },
        [state]() {
            state->ensure();
            QSciHistoryManager::instance()->forget();
        } };
    BenchJob undo { QStringLiteral("undo"), [state]() { QSciHistoryManager::instance()->undo(); },
        [state]() {
            state->ensure();
            QSciHistoryManager::instance()->forget();
            state->commit();
        } };
    return { commit, undo };
}

const BenchRegistration registration(40, historyJobs);

} // namespace
