#include "outputpage.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScrollBar>
#include <QTextEdit>
#include <QVBoxLayout>

#include "core/base/atomicfile.h"
#include "core/settings/options.h"

namespace {
const QString saveOutputPathKey = QStringLiteral("MainWindow.saveOutputPath");
}

OutputPage::OutputPage(QWidget* parent)
    : QWidget(parent)
    , m_text(new QTextEdit(this))
    , m_wordWrap(new QCheckBox(tr("Word wrap"), this))
{
    setObjectName(QStringLiteral("tabOutput"));
    m_text->setObjectName(QStringLiteral("textOutput"));
    m_text->setReadOnly(true);
    m_text->setAcceptRichText(true);
    QFont font(QStringLiteral("Courier New"));
    // Where "Courier New" is not installed, fall back to a fixed-width face rather than the default.
    font.setStyleHint(QFont::TypeWriter);
    m_text->setFont(font);
    m_text->document()->setDefaultFont(font);

    auto* save = new QPushButton(tr("Save output as text file"), this);
    save->setObjectName(QStringLiteral("pbSaveOutput"));
    auto* print = new QPushButton(tr("Print output"), this);
    print->setObjectName(QStringLiteral("pbPrintOutput"));
    auto* clear = new QPushButton(tr("Clear output page"), this);
    clear->setObjectName(QStringLiteral("pbClearOutput"));
    m_wordWrap->setObjectName(QStringLiteral("cbWordWrapOutput"));
    m_wordWrap->setChecked(true);
    auto* help = new QPushButton(tr("Help"), this);
    help->setObjectName(QStringLiteral("pbHelpOutput"));
    help->setProperty("helpPage", QStringLiteral("Outputpage.html"));
    help->setEnabled(false); // the help viewer is not built yet

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(save);
    buttons->addWidget(print);
    buttons->addWidget(m_wordWrap);
    buttons->addStretch(1);
    buttons->addWidget(clear);
    buttons->addWidget(help);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_text, 1);
    layout->addLayout(buttons);

    connect(save, &QPushButton::clicked, this, &OutputPage::saveAsTextFile);
    connect(print, &QPushButton::clicked, this, &OutputPage::print);
    connect(clear, &QPushButton::clicked, m_text, &QTextEdit::clear);
    connect(m_wordWrap, &QCheckBox::toggled, this, &OutputPage::applyWordWrap);
}

void OutputPage::appendOutput(const QString& html)
{
    m_text->append(html);
    m_text->verticalScrollBar()->setValue(m_text->verticalScrollBar()->maximum());
}

bool OutputPage::wordWrap() const
{
    return m_wordWrap->isChecked();
}

void OutputPage::setWordWrap(bool on)
{
    m_wordWrap->setChecked(on);
    applyWordWrap(on);
}

void OutputPage::applyWordWrap(bool on)
{
    m_text->setLineWrapMode(on ? QTextEdit::WidgetWidth : QTextEdit::NoWrap);
}

bool OutputPage::saveTo(const QString& path, QString* message) const
{
    return AtomicFile::write(path, m_text->toPlainText().toUtf8(), message);
}

void OutputPage::saveAsTextFile()
{
    QString start = Options::getPath(saveOutputPathKey, QString());
    if (start.isEmpty() || !QFileInfo(start).isDir())
        start = Options::homeDir();
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Save output as text file"), start, tr("Text files (*.txt);;All files (*)"));
    if (path.isEmpty())
        return;
    QString message;
    if (!saveTo(path, &message)) {
        QMessageBox::warning(this, tr("Save output as text file"), message);
        return;
    }
    Options::setString(saveOutputPathKey, QFileInfo(path).absolutePath());
}

void OutputPage::print()
{
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle(tr("Print output"));
    if (dialog.exec() == QDialog::Accepted)
        m_text->print(&printer);
}
