#pragma once

#include <QList>
#include <QString>

class Project;
class ProgressSink;
class QSciEffect;
class QSciImage;

/**
 * Runs an effect of the image-processing dialog on items: one history transaction named after the effect,
 * every item checked before any changes, each item's new z-matrix computed aside and written only when
 * complete. The window, velmora-cli and scripts all call this.
 */
class EffectOperations final {
public:
    enum class Outcome { Applied, Stopped, Refused };

    /**
     * Applies @p effect to @p items in list order. Refused (with the effect's message, nothing changed) when
     * an item fails the effect's preconditions, or with an empty message when the history could not record
     * an item (it reports that itself). Stopped when @p progress asked to stop: the item being computed
     * keeps its values, the items done before keep theirs.
     */
    static Outcome apply(Project& project, const QList<QSciImage*>& items, const QSciEffect& effect,
        ProgressSink* progress = nullptr, QString* message = nullptr);
};
