#include "qtoolanalyseobject.h"

#include "core/analysis/objectediting.h"
#include "core/analysis/objecttable.h"

#include <QLabel>
#include <QVBoxLayout>

QToolAnalyseObject::QToolAnalyseObject(QWidget* parent)
    : QTool(QStringLiteral("FIND_OBJECTS"), parent)
    , m_result(new QLabel(tr("Click an object to see its measures.")))
{
    m_result->setObjectName(QStringLiteral("lbObjectMeasures"));
    m_result->setWordWrap(true);
    m_result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_result);
    layout->addStretch(1);
}

void QToolAnalyseObject::beginDrag(const QPoint& point, Qt::MouseButton)
{
    recordPosition(point);
}

void QToolAnalyseObject::updateDrag(const QPoint& point)
{
    recordPosition(point);
}

void QToolAnalyseObject::endDrag(const QPoint& point, Qt::MouseButton)
{
    QSciImage* target = item();
    if (!target)
        return;
    const int index = ObjectEditing::objectAt(*target, QPoint(point.x(), target->height() - 1 - point.y()));
    if (index < 0) {
        m_lastObject = 0;
        m_result->setText(tr("No object at this point."));
        emit statusMessageRequested(tr("No object at this point."));
        return;
    }
    const QSciSingleObject& object = target->objects().at(index);
    m_lastObject = object.numberAt(index);
    const QStringList labels = ObjectTable::labels(false);
    const QStringList values = ObjectTable::row(object, index, *target, false);
    QString panel,
        html = tr("Object %1 of %2:").arg(m_lastObject).arg(target->name().toHtmlEscaped()) + QStringLiteral("<table>");
    for (int i = 0; i < labels.size(); ++i) {
        panel += labels.at(i) + QStringLiteral(": ") + values.value(i) + QLatin1Char('\n');
        html += QStringLiteral("<tr><td>%1</td><td>%2</td></tr>")
                    .arg(labels.at(i).toHtmlEscaped(), values.value(i).toHtmlEscaped());
    }
    m_result->setText(panel.trimmed());
    emit outputRequested(html + QStringLiteral("</table>"));
    emit statusMessageRequested(tr("Object %1: area %2 px").arg(m_lastObject).arg(object.areaPBM));
    emit objectAnalysed(target, index);
}
