#include "itemcontextmenu.h"

#include <algorithm>

#include <QCoreApplication>
#include <QMetaMethod>

namespace {

struct Entry {
    const char* group; // nullptr: the entry stands in the menu itself
    const char* text;
    const char* slot;
};

#define ENTRY(group, text, slot)                                                                                       \
    {                                                                                                                  \
        group, QT_TRANSLATE_NOOP("ItemContextMenu", text), slot                                                        \
    }
#define G(text) QT_TRANSLATE_NOOP("ItemContextMenu", text)

// clang-format off
const Entry entries[] = {
    ENTRY(nullptr, "Undo", "popupImageList_undo"),
    ENTRY(nullptr, "Redo", "popupImageList_redo"),
    ENTRY(nullptr, "Cut", "popupImageList_cut"),
    ENTRY(nullptr, "Copy", "popupImageList_copy"),
    ENTRY(nullptr, "Paste", "popupImageList_paste"),
    ENTRY(nullptr, "Delete", "popupImageList_delete"),
    ENTRY(G("Visibility and Selection"), "Show", "popupImageList_show"),
    ENTRY(G("Visibility and Selection"), "Hide", "popupImageList_hide"),
    ENTRY(G("Visibility and Selection"), "Select all", "popupImageList_selectAll"),
    ENTRY(G("Visibility and Selection"), "Deselect all", "popupImageList_deselectAll"),
    ENTRY(G("Visibility and Selection"), "Toggle selection", "popupImageList_toggleSelection"),
    ENTRY(G("Z-Order"), "Bring to front", "popupImageList_bringToFront"),
    ENTRY(G("Z-Order"), "Send to back", "popupImageList_sendToBack"),
    ENTRY(G("Z-Order"), "Stack under first item", "popupImageList_stackFromFirstSelectedImage"),
    ENTRY(G("Z-Order"), "Stack onto last item", "popupImageList_stackToLastSelectedImage"),
    ENTRY(G("Z-Order"), "Revert order", "popupImageList_revertOrder"),
    ENTRY(G("Sort (Z-Order)"), "Sort by name", "popupImageList_sortByName"),
    ENTRY(G("Sort (Z-Order)"), "Sort by creation time", "popupImageList_sortByCreationTimestamp"),
    ENTRY(G("Sort (Z-Order)"), "Sort by number (in name)", "popupImageList_sortByNumber"),
    ENTRY(G("Align"), "Top", "popupImageList_alignTop"),
    ENTRY(G("Align"), "Right", "popupImageList_alignRight"),
    ENTRY(G("Align"), "Bottom", "popupImageList_alignBottom"),
    ENTRY(G("Align"), "Left", "popupImageList_alignLeft"),
    ENTRY(G("Align"), "Centered", "popupImageList_alignCentered"),
    ENTRY(G("Align"), "Advanced alignment...", "popupImageList_alignAdvanced"),
    ENTRY(G("Move"), "Move 1 pixel up", "popupImageList_moveUp"),
    ENTRY(G("Move"), "Move 1 pixel right", "popupImageList_moveRight"),
    ENTRY(G("Move"), "Move 1 pixel down", "popupImageList_moveDown"),
    ENTRY(G("Move"), "Move 1 pixel left", "popupImageList_moveLeft"),
    ENTRY(G("Move"), "Move 8 pixel up", "popupImageList_moveUp8"),
    ENTRY(G("Move"), "Move 8 pixel right", "popupImageList_moveRight8"),
    ENTRY(G("Move"), "Move 8 pixel down", "popupImageList_moveDown8"),
    ENTRY(G("Move"), "Move 8 pixel left", "popupImageList_moveLeft8"),
    ENTRY(G("Zoom"), "Zoom in", "popupImageList_zoomIn"),
    ENTRY(G("Zoom"), "Zoom out", "popupImageList_zoomOut"),
    ENTRY(G("Zoom"), "Reset zoom (100%)", "on_pbZoom100Percent_clicked"),
    ENTRY(G("Cut, Merge and Resize"), "Cut all images to overlap", "popupImageList_cutToOverlap"),
    ENTRY(G("Cut, Merge and Resize"), "Expand all images to border, set uncovered points to min(z)", "popupImageList_ExpandToBorder_zMin"),
    ENTRY(G("Cut, Merge and Resize"), "Expand all images to border, set uncovered points to max(z)", "popupImageList_ExpandToBorder_zMax"),
    ENTRY(G("Cut, Merge and Resize"), "Merge images, set uncovered points to min(z)", "popupImageList_mergeImages_zMin"),
    ENTRY(G("Cut, Merge and Resize"), "Merge images, set uncovered points to max(z)", "popupImageList_mergeImages_zMax"),
    ENTRY(G("Cut, Merge and Resize"), "Cut to mask border-rect", "popupImageList_cutToMaskBorder"),
    ENTRY(G("Flip and Rotate"), "Flip horizontal", "popupImageList_flipHorizontal"),
    ENTRY(G("Flip and Rotate"), "Flip vertical", "popupImageList_flipVertical"),
    ENTRY(G("Flip and Rotate"), "Rotate clockwise (+90°)", "popupImageList_rotatePlus90"),
    ENTRY(G("Flip and Rotate"), "Rotate counterclockwise (-90°)", "popupImageList_rotateMinus90"),
    ENTRY(G("Flip and Rotate"), "Rotate 180°", "popupImageList_rotate180"),
    ENTRY(G("Z-matrix"), "Map z-matrix to picture", "popupImageList_mapZToPic"),
    ENTRY(G("Z-matrix"), "Map picture to z-matrix", "popupImageList_mapPicToZ"),
    ENTRY(G("Z-matrix"), "Recalibrate z-matrix", "popupImageList_recalibrateZ"),
    ENTRY(G("Z-matrix"), "Image processing...", "popupImageList_imageProcessing"),
    ENTRY(nullptr, "Select color gradient", "popupImageList_selectColorGradient"),
    ENTRY(nullptr, "Color range...", "popupImageList_selectColorRange"),
    ENTRY(G("Clear"), "Picture", "popupImageList_clearPicture"),
    ENTRY(G("Clear"), "Object-Layer", "popupImageList_clearObjects"),
    ENTRY(G("Clear"), "Mask", "popupImageList_clearMask"),
    ENTRY(nullptr, "Duplicate items", "popupImageList_duplicate"),
    ENTRY(nullptr, "Move items to current tab", "popupImageList_ChangeParent"),
    ENTRY(nullptr, "Create 3d plots", "on_tb3dPlot_clicked"),
    ENTRY(nullptr, "Create 3d OpenGL plots", "on_pb3dplotOpenGL_clicked"),
    ENTRY(nullptr, "Display properties", "popupImageList_DisplayInfo"),
    ENTRY(nullptr, "Advanced properties", "popupImageList_info"),
};
// clang-format on

#undef G
#undef ENTRY

QString translated(const char* text)
{
    return QCoreApplication::translate("ItemContextMenu", text);
}

} // namespace

ItemContextMenu::ItemContextMenu(QWidget* parent, QObject* receiver)
    : QMenu(parent)
    , m_selectionLine(addAction(QString()))
{
    setObjectName(QStringLiteral("popupImageList"));
    m_selectionLine->setObjectName(QStringLiteral("popupImageList_selectionLine"));
    m_selectionLine->setEnabled(false);
    setSelectedCount(0);
    addSeparator();

    QMenu* group = nullptr;
    const char* groupName = nullptr;
    for (const Entry& e : entries) {
        if (!e.group) {
            group = nullptr;
            groupName = nullptr;
            addEntry(this, receiver, e.text, e.slot);
            continue;
        }
        // Rows of one group follow each other, so a new name opens a new sub-menu.
        if (!groupName || qstrcmp(groupName, e.group) != 0) {
            groupName = e.group;
            group = addMenu(translated(e.group));
            group->menuAction()->setEnabled(false);
        }
        addEntry(group, receiver, e.text, e.slot);
    }
}

void ItemContextMenu::addEntry(QMenu* menu, QObject* receiver, const char* text, const char* slotName)
{
    QAction* action = menu->addAction(translated(text));
    action->setObjectName(QLatin1String(slotName));
    action->setEnabled(false);
    const QMetaObject* meta = receiver->metaObject();
    const int slotIndex = meta->indexOfSlot(QByteArray(slotName).append("()").constData());
    const int signalIndex = action->metaObject()->indexOfSignal("triggered(bool)");
    if (slotIndex < 0 || !connect(action, action->metaObject()->method(signalIndex), receiver, meta->method(slotIndex)))
        m_missingSlots.append(QLatin1String(slotName));
}

QAction* ItemContextMenu::entry(const char* slotName) const
{
    return findChild<QAction*>(QLatin1String(slotName));
}

void ItemContextMenu::setEntryEnabled(const char* slotName, bool enabled)
{
    QAction* action = entry(slotName);
    action->setEnabled(enabled);
    auto* group = qobject_cast<QMenu*>(action->parent());
    if (!group || group == this)
        return;
    const QList<QAction*> siblings = group->actions();
    group->menuAction()->setEnabled(
        std::any_of(siblings.cbegin(), siblings.cend(), [](const QAction* a) { return a->isEnabled(); }));
}

void ItemContextMenu::setSelectedCount(int count)
{
    m_selectionLine->setText(tr("%1 selected images").arg(count));
}
