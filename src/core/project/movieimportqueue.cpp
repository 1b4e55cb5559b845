#include "movieimportqueue.h"

#include "collectiontab.h"
#include "operationscope.h"
#include "project.h"

#include "core/items/qsciimage.h"
#include "core/media/movieframes.h"

#include <cmath>

namespace {

constexpr int Gap = 10; // room between frames, and between the movie and what the tab held

} // namespace

MovieImportQueue::MovieImportQueue(
    Project* project, CollectionTab* tab, const QString& moviePath, int expected, const QSize& scaleTo, QObject* parent)
    : QObject(parent)
    , m_project(project)
    , m_tab(tab)
    , m_moviePath(moviePath)
    , m_scaleTo(scaleTo)
{
    QRect occupied;
    for (const QSciImage* other : tab->items())
        occupied |= other->tabRect();
    m_origin = occupied.isNull() ? QPoint() : QPoint(occupied.right() + 1 + Gap, occupied.top());
    m_x = m_origin.x();
    m_y = m_origin.y();
    m_columns = qMax(1, int(std::ceil(std::sqrt(double(qMax(1, expected))))));
}

void MovieImportQueue::start()
{
    if (m_scope || m_finished || !m_tab)
        return;
    emit log(tr("Importing movie"));
    m_scope = std::make_unique<OperationScope>(m_project, m_tab, tr("Importing movie"));
}

MovieImportQueue::~MovieImportQueue()
{
    if (m_scope)
        finish(true);
}

QList<QSciImage*> MovieImportQueue::items() const
{
    QList<QSciImage*> result;
    for (const QPointer<QSciImage>& item : m_items) {
        if (item)
            result << item.data();
    }
    return result;
}

void MovieImportQueue::addFrame(const QImage& frame, int number, double seconds)
{
    if (m_finished || m_aborted || !m_tab) {
        emit log(tr("Ignore frame, aborted..."));
        return;
    }
    start();
    auto* item = new QSciImage;
    MovieFrames::toItem(frame, m_scaleTo, m_moviePath, number + 1, seconds, *item);
    if (m_items.size() % m_columns == 0 && !m_items.isEmpty()) {
        m_x = m_origin.x();
        m_y += m_rowHeight + Gap;
        m_rowHeight = 0;
    }
    item->setPosition(m_x, m_y);
    m_x += item->width() + Gap;
    m_rowHeight = qMax(m_rowHeight, item->height());
    m_tab->addItem(item);
    m_scope->recordCreated(item);
    m_items << item;
    emit itemAdded(item);
}

void MovieImportQueue::abort()
{
    m_aborted = true;
}

void MovieImportQueue::finish(bool ok)
{
    m_finished = true;
    if (!m_scope)
        return;
    if (ok) {
        emit log(tr("Import finished, closing transaction"));
        m_scope->commit();
    } else {
        m_scope->rollback();
        // Without history the rollback has nothing to undo with: the items go here.
        for (const QPointer<QSciImage>& item : qAsConst(m_items)) {
            if (item && m_tab && m_tab->contains(item))
                delete m_tab->takeItem(item);
        }
        m_items.clear();
    }
    m_scope.reset();
}
