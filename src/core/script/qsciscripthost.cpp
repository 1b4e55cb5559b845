#include "qsciscripthost.h"

#include "qsciscriptcore.h"

#include "core/items/itemfile.h"
#include "core/processing/qscidenoise.h"
#include "core/processing/qsciderivative.h"
#include "core/project/collectiontab.h"
#include "core/analysis/objectrecognitionoptions.h"
#include "core/project/effectoperations.h"
#include "core/project/objectoperations.h"
#include "core/project/itemarrangement.h"
#include "core/project/itemoperations.h"
#include "core/project/operationscope.h"
#include "core/project/project.h"

#include <QDateTime>
#include <cmath>

namespace {

bool parseDerivative(const QStringList& params, DerivativeOptions* o, QString* message)
{
    bool ok = true;
    for (const QString& param : params) {
        const QString key = param.section(QLatin1Char('='), 0, 0);
        const QString value = param.section(QLatin1Char('='), 1);
        bool number = true;
        if (key == QLatin1String("mode")
            && (value == QLatin1String("gradient") || value == QLatin1String("directional")))
            o->mode = value == QLatin1String("gradient") ? DerivativeOptions::Mode::Gradient
                                                         : DerivativeOptions::Mode::Directional;
        else if (key == QLatin1String("border")
            && (value == QLatin1String("replicate") || value == QLatin1String("wrap")))
            o->border = value == QLatin1String("wrap") ? DerivativeOptions::Border::Wrap
                                                       : DerivativeOptions::Border::Replicate;
        else if (key == QLatin1String("direction")
            && (value == QLatin1String("xy") || value == QLatin1String("x") || value == QLatin1String("y"))) {
            o->xDirection = value != QLatin1String("y");
            o->yDirection = value != QLatin1String("x");
        } else if (key == QLatin1String("points"))
            o->points = value.toInt(&number);
        else if (key == QLatin1String("order"))
            o->order = value.toInt(&number);
        else if (key == QLatin1String("origin"))
            o->originFactor = value.toInt(&number);
        else if (key == QLatin1String("angle"))
            o->angle = value.toInt(&number);
        else if (key == QLatin1String("selection"))
            o->selectionOnly = value == QLatin1String("true") || value == QLatin1String("1");
        else
            number = false;
        if (!number) {
            *message = QSciScriptHost::tr("derivative: unknown option or value: %1").arg(param);
            ok = false;
        }
    }
    if (ok && (o->points < 1 || o->order < 1 || !QSciDerivative::angles().contains(o->angle))) {
        *message = QSciScriptHost::tr("derivative: points and order must be at least 1, angle one of 0, 45, ..., 315");
        ok = false;
    }
    return ok;
}

} // namespace

QSciScriptHost::QSciScriptHost(Project* project, QObject* parent)
    : QObject(parent)
    , m_project(project)
{
}

QSciScriptHost::~QSciScriptHost()
{
    endTransaction(false);
}

QSciImage* QSciScriptHost::live(QSciImage* item) const
{
    return item && m_project->tabOf(item) ? item : nullptr;
}

void QSciScriptHost::scriptHistoryBegin(const QString& name)
{
    endTransaction(false);
    CollectionTab* tab = m_project->currentTab() ? m_project->currentTab() : m_project->addTab();
    m_scope = std::make_unique<OperationScope>(m_project, tab, name);
    emit scriptHistoryBegun();
}

void QSciScriptHost::scriptHistoryDone()
{
    endTransaction(false);
}

void QSciScriptHost::scriptHistoryCancel()
{
    endTransaction(true);
}

void QSciScriptHost::endTransaction(bool rollback)
{
    leaveEditMode();
    if (!m_scope)
        return;
    if (rollback)
        m_scope->rollback();
    else
        m_scope->commit();
    m_scope.reset();
}

void QSciScriptHost::leaveEditMode()
{
    for (const QPointer<QSciImage>& item : qAsConst(m_editing))
        if (item)
            item->setEditMode(false);
    m_editing.clear();
}

void QSciScriptHost::scriptLog(const QString& text, bool defaultOutput, const QString& outputText)
{
    writeOutput(text, defaultOutput, outputText);
    QSciScriptCore::deliver(nullptr);
}

void QSciScriptHost::scriptError(const QString& title, const QString& text)
{
    showError(title, text);
}

void QSciScriptHost::setScriptRunning()
{
    m_running = true;
    emit runningChanged(true);
}

void QSciScriptHost::setScriptStopped()
{
    m_running = false;
    endTransaction(false);
    emit runningChanged(false);
}

int QSciScriptHost::objectRecognition(QSciImage& item, QString* message)
{
    // A script searches with the options the dialog last kept, as the first item of a series of one.
    ObjectRecognitionOptions options;
    options.readSettings();
    return ObjectOperations::recognise(*m_project, { &item }, options, 0, nullptr, message)
            == ObjectOperations::Outcome::Applied
        ? 1
        : 0;
}

void QSciScriptHost::workImage(const QString& command, QSciImage* img, const QStringList& params)
{
    // Every path ends in deliver(): the script thread waits for the done flag it sets.
    if (command == QLatin1String("create"))
        return createItem();
    QSciImage* item = live(img);
    if (!item)
        return QSciScriptCore::deliver([](QSciScriptCore::Result& r) {
            r.loadSave = false;
            r.name.clear();
            r.selected = false;
            r.status = 0;
            r.message = tr("The item is no longer there.");
        });
    if (command == QLatin1String("commit") || command == QLatin1String("end")) {
        item->setEditMode(false);
        m_editing.removeAll(item);
    } else if (command == QLatin1String("begin") || command == QLatin1String("beginMeta")) {
        const bool whole = command == QLatin1String("begin");
        if (m_scope
            && !m_scope->record(item, whole ? QSciImage::AllParts : QSciImage::HeaderPart | QSciImage::PositionPart))
            return QSciScriptCore::deliver(nullptr);
        if (whole) {
            item->setEditMode(true);
            m_editing.append(item);
        }
    } else if (command == QLatin1String("loadFromFile") || command == QLatin1String("saveToFile")) {
        return loadOrSave(item, command == QLatin1String("saveToFile"), params.value(0));
    } else if (command == QLatin1String("select") || command == QLatin1String("deselect")) {
        item->setSelected(command == QLatin1String("select"));
        selectionChanged(item);
    } else if (command == QLatin1String("paint")) {
        item->notifyChanged(QSciImage::PicturePart);
    } else if (command == QLatin1String("getName")) {
        const QString name = item->name();
        return QSciScriptCore::deliver([name](QSciScriptCore::Result& r) { r.name = name; });
    } else if (command == QLatin1String("mapImageToZ")) {
        ItemOperations::mapPictureToZ(*m_project, { item });
    } else if (command == QLatin1String("mapZToImage")) {
        ItemOperations::mapZToPicture(*m_project, { item });
    } else if (command == QLatin1String("isSelected")) {
        const bool selected = item->isSelected();
        return QSciScriptCore::deliver([selected](QSciScriptCore::Result& r) { r.selected = selected; });
    } else if (command == QLatin1String("derivative") || command == QLatin1String("denoise")
        || command == QLatin1String("objectRecognition")) {
        return runEffect(command, item, params);
    }
    QSciScriptCore::deliver(nullptr);
}

void QSciScriptHost::createItem()
{
    auto* item = new QSciImage(100, 100, QColor(QStringLiteral("White")));
    item->setName(tr("New item"));
    item->setCreationTime(QDateTime::currentDateTime());
    CollectionTab* tab = m_project->currentTab() ? m_project->currentTab() : m_project->addTab();
    ItemArrangement::addNew(*m_project, tab, item, tr("Script execution"));
    QSciScriptCore::deliver([item](QSciScriptCore::Result& r) { r.created = item; });
}

void QSciScriptHost::loadOrSave(QSciImage* item, bool save, const QString& path)
{
    QString message;
    bool ok = false;
    if (path.isEmpty())
        message = (save ? tr("Unable to save to file") : tr("Unable to open file")) + QStringLiteral(": ")
            + tr("EMPTY FILENAME");
    else if (save)
        ok = ItemFile::save(*item, path, QSciImage::AllParts, false, true, &message);
    else
        ok = ItemFile::load(*item, path, true, true, &message);
    if (!ok && !message.isEmpty())
        reportMessage(message);
    QSciScriptCore::deliver([ok, message](QSciScriptCore::Result& r) {
        r.loadSave = ok;
        r.message = message;
    });
}

void QSciScriptHost::runEffect(const QString& command, QSciImage* item, const QStringList& params)
{
    QString message;
    int status = 0;
    if (command == QLatin1String("objectRecognition")) {
        status = objectRecognition(*item, &message);
    } else if (command == QLatin1String("denoise")) {
        bool okRadius = false;
        bool okLoops = false;
        const double radius = params.value(0).toDouble(&okRadius);
        const int loops = params.value(1).toInt(&okLoops);
        if (!okRadius || !std::isfinite(radius) || radius < 0 || !okLoops || loops < 1)
            message = tr("denoise: the radius must be a number of at least 0 and the loops at least 1");
        else
            status = EffectOperations::apply(*m_project, { item },
                         QSciDenoise({ radius, loops, params.value(2) == QLatin1String("1") }), nullptr, &message)
                    == EffectOperations::Outcome::Applied
                ? 1
                : 0;
    } else {
        DerivativeOptions options;
        if (parseDerivative(params, &options, &message))
            status = EffectOperations::apply(*m_project, { item }, QSciDerivative(options), nullptr, &message)
                    == EffectOperations::Outcome::Applied
                ? 1
                : 0;
    }
    QSciScriptCore::deliver([status, message](QSciScriptCore::Result& r) {
        r.status = status;
        r.message = message;
    });
}
