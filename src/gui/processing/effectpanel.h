#pragma once

#include <QWidget>
#include <functional>
#include <initializer_list>

#include "core/processing/qscieffect.h"
#include "core/project/effectoperations.h"

class Project;
class ProgressSink;

/**
 * One page of the image-processing dialog: the widgets of one effect's options. A panel owns its effect,
 * writes every edit into it and says so with changed(); the dialog previews and applies the effect.
 */
class QAbstractButton;

class EffectPanel : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    virtual QSciEffect& effect() = 0;
    /** The page's name in the dialog's list; a page that offers several methods names them all. */
    virtual QString title();
    /** A point the user picked on the preview (x column, y row from the bottom); most panels ignore it. */
    virtual void pickPoint(const QPoint& point);
    /** Reads the effect's options from the settings and shows them. */
    virtual void readSettings() = 0;
    /**
     * Apply: runs the page on @p items as one history transaction. The default applies effect(); pages whose
     * result is not a z-matrix (objects) run their own operation. @p message holds what to tell the user, also
     * after success when there is something to tell.
     */
    virtual EffectOperations::Outcome applyTo(
        Project& project, const QList<QSciImage*>& items, ProgressSink* progress, QString* message);

protected:
    /**
     * A group of exclusive choices titled @p title (the region an effect works on, a mode), one button a row;
     * @p chosen runs when a button becomes the chosen one.
     */
    QWidget* choiceGroup(
        const QString& title, std::initializer_list<QAbstractButton*> buttons, const std::function<void()>& chosen);

signals:
    /** An option changed; the effect already holds it. */
    void changed();
};
