#pragma once

#include "core/items/qsciimage.h"

#include <QColor>
#include <QImage>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

class CollectionTabPage;
class Project;
class QCheckBox;
class QPainter;
class QPainterPath;
class QPixmap;
class QTimer;

/**
 * Base of the tools of the tool box. A tool is its own option panel; one tool is active at a time and
 * gets the mouse of the current tab's view through beginDrag, updateDrag and endDrag, in item display
 * coordinates (row 0 on top). Every change a tool makes runs in one history transaction named by its
 * operation's text.
 *
 * Drag tools follow one protocol: begin drag takes a copy of the picture and starts a 10 ms redraw
 * timer, update drag only marks the preview dirty, the timer draws it into the overlay at most once per
 * tick, and end drag stops it and applies, also after a release that had no press.
 */
class QTool : public QWidget {
    Q_OBJECT

public:
    explicit QTool(const QString& identifier, QWidget* parent = nullptr);
    ~QTool() override;

    QString identifier() const { return m_identifier; }

    /**
     * Makes this the current tool under @p identifier: restores the panel from the identifier's
     * "_ALL_SETTINGS" string, reads the common tool settings, and asks for items to be movable exactly
     * when the identifier is "DEF_CURSOR".
     */
    void activate(const QString& identifier);

    void setProject(Project* project);
    Project* project() const;
    /** The view and item the next gesture works on; the item is kept until another press names one. */
    void setTarget(CollectionTabPage* view, QSciImage* item);
    CollectionTabPage* view() const;
    QSciImage* item() const { return m_item; }
    /** The last mouse position in item points. */
    QPoint lastPosition() const { return QPoint(m_lastX, m_lastY); }
    void recordPosition(const QPoint& point);

    /** The preview image; asking with a width or height below 1 makes it at the item's picture size. */
    QImage& overlay(int width = 0, int height = 0);
    const QImage& currentOverlay() const { return m_overlay; }

    QColor leftColor() const { return m_leftColor; }
    QColor rightColor() const { return m_rightColor; }
    /** The colour of @p button: the right colour for the right button, else the left one. */
    QColor colorFor(Qt::MouseButton button) const { return button == Qt::RightButton ? m_rightColor : m_leftColor; }
    void setLeftColor(const QColor& color);
    void setRightColor(const QColor& color);
    /** True: a drag spans the rectangle corner to corner; false: from its centre. */
    bool selectionMethodBoundingRect() const { return m_selectionMethodBoundingRect; }
    /** Sets the flag and stores it as Tools.selectionMethodBoundingRect, which all such tools share. */
    void setSelectionMethodBoundingRect(bool on);

    /** The keyboard modifiers held at the last press. */
    Qt::KeyboardModifiers modifiers() const { return m_modifiers; }
    void setModifiers(Qt::KeyboardModifiers modifiers) { m_modifiers = modifiers; }

    bool isDragActive() const { return m_active; }
    const QPixmap* heldPixmap() const { return m_heldPixmap.get(); }
    bool needsRedraw() const { return m_needsRedraw; }

    /**
     * Drawing tools paint with the right colour on the right button. For the others a right click that starts
     * no gesture opens the item menu instead; a gesture in progress (a polygon) still gets it.
     */
    virtual bool takesRightButton() const { return false; }

    // The three operations of every tool, called by the view's mouse in this order.
    virtual void beginDrag(const QPoint& point, Qt::MouseButton button);
    virtual void updateDrag(const QPoint& point);
    virtual void endDrag(const QPoint& point, Qt::MouseButton button);

    /** Draws a pending preview now instead of at the next timer tick. */
    void redrawNow();
    /** Ends a drag in progress without applying it (the tool is being left). */
    void cancelDrag() { finishDrag(); }

signals:
    /** activate() has run. */
    void activated();
    /** The overlay holds a new preview to show over the item. */
    void overlayChanged();
    /** The preview is over; views drop it. */
    void overlayCleared();
    void colorsChanged();
    void itemsMovableRequested(bool movable);
    /** A line of HTML for the output page. */
    void outputRequested(const QString& html);
    /** A short note for the status bar about what the last change did. */
    void statusMessageRequested(const QString& text);

protected:
    /** Begin drag's common steps; false (and nothing happens) without an item. */
    bool startDrag(const QPoint& point);
    /** End drag's common steps: stop the timer, free the held picture, end the drag. */
    void finishDrag();
    void setNeedsRedraw() { m_needsRedraw = true; }
    /** Paints the preview; the overlay is cleared (or holds the held picture) before. */
    virtual void drawPreview(QPainter& painter);
    /** Tools that paint on the picture preview over the held copy of it. */
    virtual bool previewsOverPicture() const { return false; }
    /** Whether the tool reads Tools.selectionMethodBoundingRect when activated. */
    virtual bool usesSelectionMethod() const { return false; }
    /**
     * The common apply step: runs @p change on the current item in one history transaction named
     * @p name ("Apply tool" when empty), recording @p parts first. Nothing happens without an item or project.
     */
    void applyToItem(const QString& name, QSciImage::Parts parts, const std::function<void(QSciImage&)>& change);
    /** applyToItem() for a change of the z-matrix, through ZEdit (the picture follows the heights). */
    void applyZToItem(const QString& name, const std::function<void(QSciImage&)>& change);
    /** @p z (W*H, the item's storage order) through the item's gradient as a picture, rows from the top. */
    static QImage renderZ(const QSciImage& item, const QVector<double>& z);
    /** The items the mask commands act on: the current item, else the current tab's selected items. */
    QList<QSciImage*> targetItems() const;
    /** Call once the panel's widgets exist: from then on every change is stored. */
    void watchPanel();
    /** The rectangle a drag from @p start to @p end spans, corners inclusive, by the selection method. */
    QRect dragRect(const QPoint& start, const QPoint& end) const;
    /** A check box "Drag from corner to corner" bound to the shared selection-method setting. */
    QCheckBox* makeSelectionMethodBox();
    /** Dashes in black over white, visible on any picture; @p path in item points. */
    static void paintRubberBand(QPainter& painter, const QPainterPath& path);

private:
    void redrawTimerEvent();
    void storePanel();

    QString m_identifier;
    QPointer<Project> m_project;
    QPointer<CollectionTabPage> m_view;
    QPointer<QSciImage> m_item;
    qint32 m_lastX = 0;
    qint32 m_lastY = 0;
    QImage m_overlay;
    QColor m_leftColor;
    QColor m_rightColor;
    bool m_selectionMethodBoundingRect = true;
    QTimer* m_redrawTimer;
    bool m_needsRedraw = false;
    bool m_active = false;
    std::unique_ptr<QPixmap> m_heldPixmap;
    bool m_restoringPanel = false;
    Qt::KeyboardModifiers m_modifiers;
};
