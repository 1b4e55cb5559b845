#include "qsciscriptimage.h"

#include "qsciscriptcore.h"
#include "qsciscripthost.h"

#include <QScriptContext>
#include <QScriptEngine>

QSciScriptImage::QSciScriptImage()
{
    if (QSciScriptCore* core = QSciScriptCore::current())
        connect(this, &QSciScriptImage::workImage, core->host(), &QSciScriptHost::workImage);
}

QSciScriptImage::~QSciScriptImage()
{
    if (m_item)
        send(QStringLiteral("commit"));
}

bool QSciScriptImage::send(const QString& command, const QStringList& params)
{
    QSciScriptCore* core = QSciScriptCore::current();
    if (!core)
        return false;
    emit workImage(command, m_item, params);
    return core->waitForDone();
}

bool QSciScriptImage::create()
{
    if (!send(QStringLiteral("create")))
        return false;
    m_item = QSciScriptCore::current()->result().created;
    return m_item != nullptr;
}

bool QSciScriptImage::guard(bool metaEnough)
{
    if (m_editing || (metaEnough && m_metaBegun))
        return true;
    if (context())
        context()->throwValue(QScriptValue(tr("Missing call to begin() before modifying image")));
    return false;
}

bool QSciScriptImage::saveToFile(const QString& path)
{
    return guard(false) && send(QStringLiteral("saveToFile"), { path }) && QSciScriptCore::current()->result().loadSave;
}

bool QSciScriptImage::loadFromFile(const QString& path)
{
    return guard(false) && send(QStringLiteral("loadFromFile"), { path })
        && QSciScriptCore::current()->result().loadSave;
}

void QSciScriptImage::select()
{
    if (guard(true))
        send(QStringLiteral("select"));
}

void QSciScriptImage::deselect()
{
    if (guard(true))
        send(QStringLiteral("deselect"));
}

bool QSciScriptImage::isSelected()
{
    return guard(true) && send(QStringLiteral("isSelected")) && QSciScriptCore::current()->result().selected;
}

void QSciScriptImage::begin()
{
    if (send(QStringLiteral("begin")))
        m_editing = true;
}

void QSciScriptImage::end()
{
    send(QStringLiteral("end"));
    m_editing = false;
    m_metaBegun = 0;
}

void QSciScriptImage::beginMeta()
{
    if (send(QStringLiteral("beginMeta")))
        m_metaBegun = 1;
}

QString QSciScriptImage::getName()
{
    if (!guard(true) || !send(QStringLiteral("getName")))
        return QString();
    return QSciScriptCore::current()->result().name;
}

void QSciScriptImage::mapImageToZ()
{
    if (guard(false))
        send(QStringLiteral("mapImageToZ"));
}

void QSciScriptImage::mapZToImage()
{
    if (guard(false))
        send(QStringLiteral("mapZToImage"));
}

void QSciScriptImage::paint()
{
    if (guard(false))
        send(QStringLiteral("paint"));
}

QString QSciScriptImage::runEffect(const QString& command, const QStringList& params, bool messageWhenDone)
{
    if (!guard(false) || !send(command, params))
        return QString();
    const QSciScriptCore::Result& result = QSciScriptCore::current()->result();
    if (result.status < 0 && context())
        context()->throwValue(QScriptValue(result.message));
    return result.status == 1 && !messageWhenDone ? QString() : result.message;
}

QString QSciScriptImage::derivative(const QVariantMap& options)
{
    QStringList params;
    for (auto it = options.cbegin(); it != options.cend(); ++it)
        params << it.key() + QLatin1Char('=') + it.value().toString();
    return runEffect(QStringLiteral("derivative"), params);
}

QString QSciScriptImage::denoise(double radius, int loops, bool selection)
{
    return runEffect(QStringLiteral("denoise"),
        { QString::number(radius, 'g', 17), QString::number(loops),
            selection ? QStringLiteral("1") : QStringLiteral("0") });
}

QString QSciScriptImage::objectRecognition()
{
    return runEffect(QStringLiteral("objectRecognition"), {}, true);
}
