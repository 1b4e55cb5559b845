#include "undoredomenu.h"

#include "core/history/qscihistorymanager.h"

UndoRedoMenu::UndoRedoMenu(QWidget* parent)
    : QMenu(tr("Undo/Redo"), parent)
{
    setObjectName(QStringLiteral("menuUndoRedo"));
    connect(this, &QMenu::aboutToShow, this, &UndoRedoMenu::rebuild);
}

void UndoRedoMenu::rebuild()
{
    clear();
    const QSciHistoryManager* history = QSciHistoryManager::instance();
    const QStringList undo = history->undoNames();
    const QStringList redo = history->redoNames();
    // Both lists hold the oldest first; the next step to take is the last one.
    for (int i = undo.size() - 1, steps = 1; i >= 0; --i, ++steps) {
        QAction* entry = addAction(tr("Undo: %1").arg(undo.at(i)));
        connect(entry, &QAction::triggered, this, [this, steps] { emit undoRequested(steps); });
    }
    if (!undo.isEmpty() && !redo.isEmpty())
        addSeparator();
    for (int i = redo.size() - 1, steps = 1; i >= 0; --i, ++steps) {
        QAction* entry = addAction(tr("Redo: %1").arg(redo.at(i)));
        connect(entry, &QAction::triggered, this, [this, steps] { emit redoRequested(steps); });
    }
    if (undo.isEmpty() && redo.isEmpty())
        addAction(tr("Nothing to undo"))->setEnabled(false);
}
