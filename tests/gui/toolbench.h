#pragma once

#include <memory>

#include <QApplication>
#include <QGraphicsScene>
#include <QMouseEvent>

#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "gui/app/collectiontabpage.h"
#include "gui/app/collectiontabview.h"
#include "gui/app/toolsdock.h"
#include "gui/tools/toolbox.h"
#include "gui/tools/tooloverlayitem.h"

// What the tool tests share: mouse gestures sent to a tab's view, and a tab with one item and a tool box.
/** The mask as shown, top row first: '#' selected, '.' not. */
inline QString shownMask(const QSciImage& item)
{
    QString text;
    for (int row = 0; row < item.height(); ++row) {
        if (row)
            text += QLatin1Char('/');
        for (int x = 0; x < item.width(); ++x)
            text += item.isPixelSelected(x, item.height() - 1 - row) ? QLatin1Char('#') : QLatin1Char('.');
    }
    return text;
}

/** The viewport position of the centre of @p item's display point @p p. */
inline QPoint viewAt(const CollectionTabPage* page, const QSciImage* item, const QPoint& p)
{
    return page->tabView()->mapFromScene(QPointF(item->left() + p.x() + 0.5, item->top() + p.y() + 0.5));
}

inline void mouse(CollectionTabPage* page, const QSciImage* item, QEvent::Type type, const QPoint& p,
    Qt::MouseButton button, Qt::MouseButtons held, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWidget* viewport = page->tabView()->viewport();
    const QPoint at = viewAt(page, item, p);
    QMouseEvent event(type, at, viewport->mapToGlobal(at), button, held, modifiers);
    QApplication::sendEvent(viewport, &event);
}

/** Press (with @p modifiers held), two moves and release with @p button held, from @p from to @p to of @p item. */
inline void drag(CollectionTabPage* page, const QSciImage* item, const QPoint& from, const QPoint& to,
    Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    mouse(page, item, QEvent::MouseButtonPress, from, button, button, modifiers);
    mouse(page, item, QEvent::MouseMove, (from + to) / 2, Qt::NoButton, button, modifiers);
    mouse(page, item, QEvent::MouseMove, to, Qt::NoButton, button, modifiers);
    mouse(page, item, QEvent::MouseButtonRelease, to, button, Qt::NoButton, modifiers);
}

/** A project with one tab, an item of 8 x 5 points at (5, 3) on it, its page at 300 % and a tool box. */
struct Bench {
    Project project;
    ToolsDock dock;
    std::unique_ptr<ToolBox> box;
    CollectionTab* tab;
    QSciImage* item;
    std::unique_ptr<CollectionTabPage> page;

    Bench()
    {
        tab = project.addTab();
        project.setCurrentIndex(0);
        item = new QSciImage(8, 5, Qt::white);
        item->setName(QStringLiteral("probe"));
        item->setPosition(5, 3);
        tab->addItem(item);
        page = std::make_unique<CollectionTabPage>(tab);
        page->resize(400, 300);
        page->setZoomPercent(300);
        page->show();
        box = std::make_unique<ToolBox>(&dock);
        box->setProject(&project);
        box->attachPage(page.get());
    }

    void press(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        mouse(page.get(), item, QEvent::MouseButtonPress, p, button, button);
    }
    void move(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        mouse(page.get(), item, QEvent::MouseMove, p, Qt::NoButton, button);
    }
    void release(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        mouse(page.get(), item, QEvent::MouseButtonRelease, p, button, Qt::NoButton);
    }
    void drag(const QPoint& from, const QPoint& to, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        ::drag(page.get(), item, from, to, Qt::LeftButton, modifiers);
    }
    /** A press and release on one point. */
    void click(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        press(p, button);
        release(p, button);
    }

    QTool* use(const char* identifier)
    {
        box->setCurrentTool(QLatin1String(identifier));
        return box->currentTool();
    }

    ToolOverlayItem* overlay() const
    {
        for (QGraphicsItem* candidate : page->scene()->items()) {
            if (candidate->type() == ToolOverlayItem::Type)
                return static_cast<ToolOverlayItem*>(candidate);
        }
        return nullptr;
    }
};

template <typename T> T* child(const QWidget* parent, const char* name)
{
    T* found = parent->findChild<T*>(QLatin1String(name));
    if (!found)
        qWarning("no child %s", name);
    return found;
}

inline QString lastUndoName()
{
    const QStringList names = QSciHistoryManager::instance()->undoNames();
    return names.isEmpty() ? QString() : names.last();
}
