#pragma once

#include <QGraphicsItem>
#include <QPointer>

class QTool;

/**
 * Shows a tool's overlay image over the item it works on, one scene unit per point. Paints the tool's
 * image itself rather than a pixmap copy of it, so a redraw costs no conversion and no detach.
 */
class ToolOverlayItem final : public QGraphicsItem {
public:
    enum { Type = UserType + 0x7001 };

    ToolOverlayItem();

    int type() const override { return Type; }
    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    /** Shows @p tool's current overlay at @p pos; call again after each redraw of it. */
    void showFrom(QTool* tool, const QPointF& pos);
    const QTool* tool() const { return m_tool; }

private:
    QPointer<QTool> m_tool;
    QSize m_size;
};
