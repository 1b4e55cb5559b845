#include "textspanel.h"

#include "core/base/messages.h"
#include "core/settings/options.h"
#include "core/tables/textdocumentfile.h"
#include "gui/app/documentsdock.h"
#include "gui/app/outputpage.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTextEdit>
#include <QVBoxLayout>

namespace {

const char* const TitleProperty = "documentTitle";

QString outputFilter()
{
    return TextsPanel::tr("Velmora output pages (*.output.velm)");
}

} // namespace

TextsPanel::TextsPanel(DocumentsDock* dock)
    : QWidget(dock->textsPage())
    , m_dock(dock)
    , m_tabs(new QTabWidget(this))
{
    setObjectName(QStringLiteral("textsPanel"));
    m_tabs->setObjectName(QStringLiteral("twTexts"));
    m_tabs->setDocumentMode(true);
    chooseFile = [this](bool save, const QString& title, const QString& folder, const QString& filter) {
        return save ? QFileDialog::getSaveFileName(this, title, folder, filter)
                    : QFileDialog::getOpenFileName(this, title, folder, filter);
    };
    showMessage = [this](const QString& text) { QMessageBox::warning(this, tr("Texts"), text, QMessageBox::Ok); };

    auto* bar = new QWidget(this);
    bar->setObjectName(QStringLiteral("wTextTools"));
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(2, 0, 2, 0);
    auto add = [this, bar, row](const QString& text, auto slot) {
        auto* button = new QPushButton(text, bar);
        row->addWidget(button);
        connect(button, &QPushButton::clicked, this, slot);
    };
    add(tr("New text"), [this] { newText(); });
    add(tr("Open..."), [this] {
        const QString path = chooseWithKey(false, "openTextPath", tr("Open text"),
            tr("Velmora texts (*.text.velm);;Plain text (*.txt);;All files (*)"));
        QString message;
        if (!path.isEmpty() && !openTextFile(path, &message))
            showMessage(message);
    });
    add(tr("Save..."), [this] {
        if (!currentText())
            return;
        QString path = chooseWithKey(true, "saveTextPath", tr("Save text"), tr("Velmora texts (*.text.velm)"));
        if (path.isEmpty())
            return;
        if (!path.endsWith(QLatin1String(".text.velm"), Qt::CaseInsensitive))
            path += QLatin1String(".text.velm");
        QString message;
        if (!saveCurrent(path, &message))
            showMessage(message);
    });
    add(tr("Close"), [this] {
        if (QPlainTextEdit* edit = currentText()) {
            delete edit;
            emit documentsChanged();
        }
    });
    row->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
    layout->addWidget(m_tabs, 1);
    DocumentsDock::fillPage(dock->textsPage(), this);
    addOutputButtons();
}

void TextsPanel::addOutputButtons()
{
    // The output page keeps its own buttons; saving and loading it whole joins them in its button row.
    auto* pageLayout = qobject_cast<QVBoxLayout*>(m_dock->outputPage()->layout());
    QLayoutItem* item = pageLayout ? pageLayout->itemAt(pageLayout->count() - 1) : nullptr;
    auto* row = item ? qobject_cast<QHBoxLayout*>(item->layout()) : nullptr;
    if (!row)
        return;
    auto* save = new QPushButton(tr("Save output page..."), m_dock->outputPage());
    save->setObjectName(QStringLiteral("pbSaveOutputPage"));
    auto* open = new QPushButton(tr("Open output page..."), m_dock->outputPage());
    open->setObjectName(QStringLiteral("pbOpenOutputPage"));
    row->insertWidget(1, save);
    row->insertWidget(2, open);
    connect(save, &QPushButton::clicked, this, [this] {
        QString path = chooseWithKey(true, "saveOutputPath", tr("Save output page"), outputFilter());
        if (path.isEmpty())
            return;
        if (!path.endsWith(QLatin1String(".output.velm"), Qt::CaseInsensitive))
            path += QLatin1String(".output.velm");
        QString message;
        if (!saveOutput(path, &message))
            showMessage(message);
    });
    connect(open, &QPushButton::clicked, this, [this] {
        const QString path = chooseWithKey(false, "saveOutputPath", tr("Open output page"), outputFilter());
        QString message;
        if (!path.isEmpty() && !openOutput(path, &message))
            showMessage(message);
    });
}

QString TextsPanel::chooseWithKey(bool save, const char* key, const QString& title, const QString& filter)
{
    const QString fullKey = QLatin1String("MainWindow.") + QLatin1String(key);
    QString folder = Options::getString(fullKey, QString());
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = Options::homeDir();
    const QString chosen = chooseFile(save, title, folder, filter);
    if (!chosen.isEmpty())
        Options::setString(fullKey, QFileInfo(chosen).absolutePath());
    return chosen;
}

QPlainTextEdit* TextsPanel::currentText() const
{
    return qobject_cast<QPlainTextEdit*>(m_tabs->currentWidget());
}

int TextsPanel::textCount() const
{
    return m_tabs->count();
}

QPlainTextEdit* TextsPanel::newText(const QString& title, const QString& text)
{
    auto* edit = new QPlainTextEdit(m_tabs);
    edit->setPlainText(text);
    const QString name = title.isEmpty() ? tr("Text %1").arg(++m_created) : title;
    edit->setProperty(TitleProperty, name);
    m_tabs->setCurrentIndex(m_tabs->addTab(edit, name));
    connect(edit, &QPlainTextEdit::textChanged, this, &TextsPanel::documentsChanged);
    emit documentsChanged();
    return edit;
}

QVector<QPair<QString, QString>> TextsPanel::allTexts() const
{
    QVector<QPair<QString, QString>> texts;
    for (int i = 0; i < m_tabs->count(); ++i)
        if (auto* edit = qobject_cast<QPlainTextEdit*>(m_tabs->widget(i)))
            texts.append({ edit->property(TitleProperty).toString(), edit->toPlainText() });
    return texts;
}

void TextsPanel::closeAll()
{
    while (m_tabs->count() > 0)
        delete m_tabs->widget(0);
    m_created = 0;
}

bool TextsPanel::openTextFile(const QString& path, QString* message)
{
    QString title, text;
    if (path.endsWith(QLatin1String(".text.velm"), Qt::CaseInsensitive)) {
        if (!TextDocumentFile::read(path, TextDocumentFile::Kind::Text, &title, &text, message))
            return false;
    } else {
        if (!QFileInfo::exists(path)) {
            *message = Messages::fileDoesNotExist(path);
            return false;
        }
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            *message = Messages::unableToOpenFile(path);
            return false;
        }
        text = QString::fromUtf8(file.readAll());
    }
    newText(title.isEmpty() ? QFileInfo(path).fileName() : title, text);
    return true;
}

bool TextsPanel::saveCurrent(const QString& path, QString* message)
{
    QPlainTextEdit* edit = currentText();
    return edit
        && TextDocumentFile::write(
            path, TextDocumentFile::Kind::Text, edit->property(TitleProperty).toString(), edit->toPlainText(), message);
}

bool TextsPanel::saveOutput(const QString& path, QString* message)
{
    return TextDocumentFile::write(
        path, TextDocumentFile::Kind::Output, tr("Output"), m_dock->outputPage()->textEdit()->toHtml(), message);
}

bool TextsPanel::openOutput(const QString& path, QString* message)
{
    QString title, html;
    if (!TextDocumentFile::read(path, TextDocumentFile::Kind::Output, &title, &html, message))
        return false;
    m_dock->outputPage()->textEdit()->setHtml(html);
    return true;
}
