#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QSize>
#include <memory>

class CollectionTab;
class OperationScope;
class Project;
class QSciImage;

/**
 * Turns the frames of a movie import into items on a tab as they arrive from the import worker, all in one
 * history transaction: undo removes the whole movie. Lives on the thread that owns the items.
 */
class MovieImportQueue final : public QObject {
    Q_OBJECT

public:
    /** @p expected frames (for the layout) of @p moviePath, scaled to @p scaleTo when that is valid. */
    MovieImportQueue(Project* project, CollectionTab* tab, const QString& moviePath, int expected,
        const QSize& scaleTo = QSize(), QObject* parent = nullptr);
    ~MovieImportQueue() override;

    /** Items made so far, in frame order. */
    QList<QSciImage*> items() const;
    bool isAborted() const { return m_aborted; }

public slots:
    /** Opens the transaction ("Importing movie"); the first frame does it when nobody did. */
    void start();
    /** Frame @p number from 0 at @p seconds becomes an item on the tab; ignored after abort(). */
    void addFrame(const QImage& frame, int number, double seconds);
    /** Frames that still arrive are ignored; those already imported stay. */
    void abort();
    /** Commits the transaction when @p ok; otherwise takes every item of the import back. */
    void finish(bool ok);

signals:
    void log(const QString& line);
    void itemAdded(QSciImage* item);

private:
    Project* m_project;
    QPointer<CollectionTab> m_tab;
    QString m_moviePath;
    QSize m_scaleTo;
    std::unique_ptr<OperationScope> m_scope;
    QList<QPointer<QSciImage>> m_items;
    QPoint m_origin;
    int m_columns = 1;
    int m_x = 0, m_y = 0, m_rowHeight = 0;
    bool m_aborted = false;
    bool m_finished = false;
};
