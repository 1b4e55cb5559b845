#include "forminfo.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "core/base/compressedblock.h"
#include "core/settings/settingsstore.h"

FormInfo::FormInfo(QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("FormInfo"));
    setWindowTitle(tr("Info"));
    auto* text = new QLabel(infoHtml(), this);
    text->setObjectName(QStringLiteral("lbInfo"));
    text->setTextFormat(Qt::RichText);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(buttons);
}

QString FormInfo::infoHtml()
{
    const auto row = [](const QString& name, const QString& version, const QString& licence) {
        return QStringLiteral("<tr><td>%1</td><td>%2</td><td>%3</td></tr>").arg(name, version, licence);
    };
    QString html = tr("<h2>Velmora %1</h2><p>A workbench for height images of scanning-probe and other "
                      "microscopes.</p>")
                       .arg(QStringLiteral(VELMORA_VERSION));
    html += tr("<p><b>Libraries</b></p>");
    html += QStringLiteral("<table>");
    html += row(QStringLiteral("Qt"),
        tr("%1 (built with %2)").arg(QString::fromLatin1(qVersion()), QStringLiteral(QT_VERSION_STR)), tr("LGPL 3"));
    html += row(QStringLiteral("SQLite"), SettingsStore::libraryVersion(), tr("public domain"));
    html += row(QStringLiteral("zlib"), CompressedBlock::zlibVersion(), tr("zlib licence"));
    html += QStringLiteral("</table>");
    html += tr("<p><b>Licence</b>: Velmora is distributed under the terms of the licence file that came with "
               "this copy; the libraries above under their own licences, as listed.</p>");
    return html;
}
