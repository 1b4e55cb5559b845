#include "compositionactions.h"

#include "core/items/qsciimage.h"
#include "core/project/imagecomposition.h"
#include "gui/app/mainactions.h"
#include "gui/app/mainwindow.h"

CompositionActions::CompositionActions(MainWindow* window, MainActions* actions)
    : QObject(window)
{
    actions->wire("actionCompose_images", this, [this, window] {
        QString message;
        if (!ImageComposition::composeInto(*window->project(), window->selectedItems(), &message))
            emit messageRequested(tr("Compose image parts"), message);
    });
    actions->wire("actionRecompose_images", this, [this, window] {
        QSciImage* item = window->currentItem();
        QString message;
        if (item && ImageComposition::recomposeInto(*window->project(), item, &message).isEmpty())
            emit messageRequested(tr("Recompose images"), message);
    });
}
