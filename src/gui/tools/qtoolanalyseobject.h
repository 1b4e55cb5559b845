#pragma once

#include "qtool.h"

class QLabel;

/**
 * Measures one object by clicking it: its measures go to the panel and the output page, and the object is made
 * the chosen one of "Object properties". Changes nothing.
 */
class QToolAnalyseObject final : public QTool {
    Q_OBJECT

public:
    explicit QToolAnalyseObject(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    /** The object number last analysed, 0 for none. */
    int lastObject() const { return m_lastObject; }

signals:
    void objectAnalysed(QSciImage* item, int index);

private:
    QLabel* m_result;
    int m_lastObject = 0;
};
