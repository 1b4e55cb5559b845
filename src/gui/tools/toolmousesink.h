#pragma once

#include <QPoint>
#include <Qt>

class CollectionTabPage;
class QSciImage;

/**
 * Where a tab's view sends the mouse while a tool other than the default pointer is active.
 * Positions are in data points of @p item in display terms (column, row from the top); they may lie
 * outside the item while dragging. @p item is the current item under the press (nullptr: none).
 */
class ToolMouseSink {
public:
    virtual ~ToolMouseSink() = default;
    /** The keyboard modifiers held at the next press (Shift adds to a selection, Ctrl subtracts from it). */
    virtual void toolModifiersPressed(Qt::KeyboardModifiers) { }
    /** True when the sink takes the gesture (the view then neither moves nor rubber-band-selects items). */
    virtual bool toolMousePressed(CollectionTabPage* page, QSciImage* item, const QPoint& point, Qt::MouseButton button)
        = 0;
    virtual void toolMouseMoved(CollectionTabPage* page, QSciImage* item, const QPoint& point) = 0;
    virtual void toolMouseReleased(
        CollectionTabPage* page, QSciImage* item, const QPoint& point, Qt::MouseButton button)
        = 0;
};
