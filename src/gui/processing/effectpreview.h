#pragma once

#include "core/processing/previewcrop.h"

#include <QFutureWatcher>
#include <QPointer>
#include <QWidget>
#include <atomic>
#include <memory>

class QLabel;
class QSciEffect;
class QSciImage;

/**
 * The live preview of the dialog: the middle of the current item before and after the effect. The effect runs
 * on a copy of that piece on a worker thread; an edit while it runs stops it and starts again with the new
 * options, so the window never waits for a preview.
 */
class EffectPreview final : public QWidget {
    Q_OBJECT

public:
    /** Side of the piece shown, in points. */
    static constexpr int Side = 256;

    explicit EffectPreview(QWidget* parent = nullptr);
    ~EffectPreview() override;

    /** Shows @p item (nullptr: nothing) and follows its changes. */
    void setItem(QSciImage* item);
    /** Computes the preview with a copy of @p effect's options. */
    void setEffect(const QSciEffect& effect);
    /** True while a preview is being computed or waits to be. */
    bool isBusy() const { return m_running || m_pending; }

signals:
    /** The user clicked the point @p point of the item (x column, y row from the bottom) in the original. */
    void pointPicked(const QPoint& point);
    /** A preview was drawn (or the item could not take the effect, and the message says why). */
    void updated();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void takeCrop();
    void start();
    void finished();

    QPointer<QSciImage> m_item;
    std::shared_ptr<const PreviewCrop> m_crop;
    std::unique_ptr<QSciEffect> m_effect; // the options of the last request
    bool m_pending = false;
    bool m_running = false;
    std::shared_ptr<std::atomic<bool>> m_stop;
    QFutureWatcher<QImage> m_watcher;
    QLabel* m_before;
    QLabel* m_after;
    QLabel* m_message;
};
