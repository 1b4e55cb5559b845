#include "helpbrowser.h"

#include <QDir>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

// The pages live in a static library: its resources register only when asked for. Outside any namespace, as the
// macro declares the registering function where it stands.
static void initHelpResources()
{
    Q_INIT_RESOURCE(help);
}

namespace {

const QString IndexPage = QStringLiteral("Index.html");

} // namespace

HelpBrowser::HelpBrowser(QWidget* parent)
    : QDialog(parent)
    , m_text(new QTextBrowser(this))
{
    initHelpResources();
    setObjectName(QStringLiteral("helpBrowser"));
    setWindowTitle(tr("Velmora help"));
    setModal(false);
    resize(640, 560);
    m_text->setObjectName(QStringLiteral("tbHelp"));
    m_text->setSearchPaths({ QStringLiteral(":/help") });
    m_text->setOpenExternalLinks(true);

    auto* back = new QPushButton(tr("Back"), this);
    back->setObjectName(QStringLiteral("pbHelpBack"));
    auto* forward = new QPushButton(tr("Forward"), this);
    forward->setObjectName(QStringLiteral("pbHelpForward"));
    auto* home = new QPushButton(tr("Index"), this);
    home->setObjectName(QStringLiteral("pbHelpIndex"));
    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("pbHelpClose"));
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(back, &QPushButton::clicked, m_text, &QTextBrowser::backward);
    connect(forward, &QPushButton::clicked, m_text, &QTextBrowser::forward);
    connect(home, &QPushButton::clicked, this, [this] { showPage(IndexPage); });
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(m_text, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(m_text, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
    connect(m_text, &QTextBrowser::sourceChanged, this,
        [this] { setWindowTitle(tr("Velmora help") + QStringLiteral(": ") + m_text->documentTitle()); });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(back);
    buttons->addWidget(forward);
    buttons->addWidget(home);
    buttons->addStretch(1);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addWidget(m_text, 1);
}

QStringList HelpBrowser::pages()
{
    initHelpResources();
    return QDir(QStringLiteral(":/help")).entryList({ QStringLiteral("*.html") }, QDir::Files, QDir::Name);
}

void HelpBrowser::showPage(const QString& name)
{
    const QString page = pages().contains(name) ? name : IndexPage;
    m_text->setSource(QUrl(QStringLiteral("qrc:/help/") + page));
    show();
    raise();
    activateWindow();
}

QString HelpBrowser::currentPage() const
{
    return m_text->source().fileName();
}
