#pragma once

#include <QGraphicsObject>
#include <QImage>
#include <QPointer>

#include "core/display/displaydecoration.h"
#include "core/items/qsciimage.h"

/**
 * Shows one image item on its tab's scene, one scene unit per data point, at the item's position and
 * stacking order: the picture (or the z-matrix through the item's gradient), the mask as a translucent
 * overlay and the outlines of visible objects, with the item's opacity, and around and over them the display
 * elements the item switches on (the bounding rectangle then takes in their margins). Follows the item's change signals
 * only; the rendered pictures are cached and rebuilt when the parts they show change.
 *
 * Selection runs both ways: selecting the graphics item selects the image item and vice versa.
 */
class ImageGraphicsItem final : public QGraphicsObject {
    Q_OBJECT

public:
    enum { Type = UserType + 0x5e1 };

    explicit ImageGraphicsItem(QSciImage* item);

    int type() const override { return Type; }
    QSciImage* item() const { return m_item; }

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    void setMovable(bool movable);
    /** Whether the selection frame is drawn; off while the tab is exported or printed. */
    void setDecorated(bool decorated);
    /** Puts the graphics item back where the image item is (a drag shows a move before it is made). */
    void syncPlace();

    /** The colour of selected mask points. */
    static QRgb maskColor();

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    void onContentChanged(QSciImage::Parts parts);
    void updateDecoration();

    QPointer<QSciImage> m_item;
    QSize m_size;
    QImage m_base;
    QImage m_mask;
    QImage m_outlines;
    DisplayDecoration m_decoration;
    bool m_baseDirty = true;
    bool m_maskDirty = true;
    bool m_outlinesDirty = true;
    bool m_decorated = true;
    bool m_syncing = false;
};
