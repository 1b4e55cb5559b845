#pragma once

#include <QMenu>

/**
 * The "Undo/Redo" menu: the transactions that can be undone, newest first, then those that can be redone.
 * Choosing an entry undoes (or redoes) every step down to and including it. Rebuilt each time it opens.
 */
class UndoRedoMenu final : public QMenu {
    Q_OBJECT

public:
    explicit UndoRedoMenu(QWidget* parent = nullptr);

signals:
    void undoRequested(int steps);
    void redoRequested(int steps);

private:
    void rebuild();
};
