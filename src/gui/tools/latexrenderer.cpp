#include "latexrenderer.h"

#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QPainter>
#include <QTimer>
#include <QWebFrame>
#include <QWebPage>
#include <QWebSettings>
#include <cmath>

namespace {

/** Polls every 20 ms for at most 20 s: MathJax's first load reads several megabytes of scripts. */
constexpr int pollInterval = 20;
constexpr int maxPolls = 1000;

/** Lets the page read local files only: a formula must not make the program reach out to the network. */
class LocalOnlyAccess final : public QNetworkAccessManager {
public:
    using QNetworkAccessManager::QNetworkAccessManager;

protected:
    QNetworkReply* createRequest(Operation op, const QNetworkRequest& request, QIODevice* data) override
    {
        if (request.url().isLocalFile() || request.url().scheme() == QLatin1String("data"))
            return QNetworkAccessManager::createRequest(op, request, data);
        return QNetworkAccessManager::createRequest(op, QNetworkRequest(QUrl()), data);
    }
};

} // namespace

LatexRenderer::LatexRenderer(QObject* parent)
    : QObject(parent)
    , m_page(new QWebPage(this))
    , m_poll(new QTimer(this))
{
    m_page->setNetworkAccessManager(new LocalOnlyAccess(m_page));
    QWebSettings* settings = m_page->settings();
    settings->setAttribute(QWebSettings::JavascriptEnabled, true);
    settings->setAttribute(QWebSettings::LocalContentCanAccessFileUrls, true);
    settings->setAttribute(QWebSettings::LocalContentCanAccessRemoteUrls, false);
    QPalette palette = m_page->palette();
    palette.setBrush(QPalette::Base, Qt::transparent);
    m_page->setPalette(palette);
    m_page->setViewportSize(QSize(4000, 1000));
    m_poll->setInterval(pollInterval);
    connect(m_poll, &QTimer::timeout, this, &LatexRenderer::poll);
    connect(m_page, &QWebPage::loadFinished, this, &LatexRenderer::onLoadFinished);
}

LatexRenderer::~LatexRenderer() = default;

QString LatexRenderer::mathJaxScript()
{
    const QByteArray custom = qgetenv("VELMORA_MATHJAX");
    const QString folder
        = custom.isEmpty() ? QStringLiteral("/usr/share/javascript/mathjax") : QString::fromLocal8Bit(custom);
    return folder + QStringLiteral("/MathJax.js");
}

bool LatexRenderer::isAvailable()
{
    return QFileInfo::exists(mathJaxScript());
}

void LatexRenderer::render(const QString& formula, const QColor& color, int pixelSize)
{
    m_poll->stop();
    m_formula = formula;
    if (!isAvailable()) {
        fail(tr("MathJax was not found: %1").arg(mathJaxScript()));
        return;
    }
    if (formula.trimmed().isEmpty()) {
        fail(tr("The formula is empty."));
        return;
    }
    m_busy = true;
    m_polls = 0;
    // SVG output draws the glyphs as paths: no web fonts to find, and the same picture on every machine.
    const QString html = QStringLiteral(
        "<!DOCTYPE html><html><head><meta charset=\"utf-8\">"
        "<script type=\"text/x-mathjax-config\">"
        "MathJax.Hub.Config({showMathMenu:false,messageStyle:\"none\",skipStartupTypeset:false,"
        "SVG:{font:\"TeX\",scale:100}});"
        "MathJax.Hub.Register.MessageHook(\"TeX Jax - parse error\",function(m){window.velmoraError=String(m[1]);});"
        "MathJax.Hub.Register.MessageHook(\"Math Processing Error\",function(m){window.velmoraError=String(m[2]);});"
        "MathJax.Hub.Register.StartupHook(\"End\",function(){window.velmoraDone=true;});"
        "</script>"
        "<script type=\"text/javascript\" src=\"%1?config=TeX-AMS_SVG-full\"></script>"
        "<style>html,body{margin:0;padding:0;background:transparent;}"
        "#formula{display:inline-block;padding:2px;color:%2;font-size:%3px;white-space:nowrap;}</style>"
        "</head><body><span id=\"formula\">\\(\\displaystyle %4\\)</span></body></html>")
                             .arg(QUrl::fromLocalFile(mathJaxScript()).toString(), color.name(QColor::HexRgb))
                             .arg(pixelSize)
                             .arg(formula.toHtmlEscaped());
    m_page->mainFrame()->setHtml(
        html, QUrl::fromLocalFile(QFileInfo(mathJaxScript()).absolutePath() + QLatin1Char('/')));
}

void LatexRenderer::onLoadFinished(bool ok)
{
    if (!m_busy)
        return;
    if (!ok) {
        fail(tr("The formula page could not be loaded."));
        return;
    }
    m_poll->start();
}

void LatexRenderer::poll()
{
    QWebFrame* frame = m_page->mainFrame();
    const QVariant error = frame->evaluateJavaScript(QStringLiteral("window.velmoraError || ''"));
    if (!error.toString().isEmpty()) {
        fail(tr("The formula is not valid LaTeX: %1").arg(error.toString()));
        return;
    }
    if (!frame->evaluateJavaScript(QStringLiteral("window.velmoraDone === true")).toBool()) {
        if (++m_polls >= maxPolls)
            fail(tr("Rendering the formula took too long."));
        return;
    }
    m_poll->stop();
    const QVariantList box = frame
                                 ->evaluateJavaScript(QStringLiteral(
                                     "(function(){var r=document.getElementById('formula').getBoundingClientRect();"
                                     "return [r.left,r.top,r.width,r.height];})()"))
                                 .toList();
    if (box.size() != 4) {
        fail(tr("The formula could not be measured."));
        return;
    }
    const QRect area(int(std::floor(box.at(0).toDouble())), int(std::floor(box.at(1).toDouble())),
        int(std::ceil(box.at(2).toDouble())), int(std::ceil(box.at(3).toDouble())));
    if (area.isEmpty()) {
        fail(tr("The formula came out empty."));
        return;
    }
    QImage image(area.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.translate(-area.topLeft());
        frame->render(&painter, QWebFrame::ContentsLayer, QRegion(area));
    }
    m_busy = false;
    emit rendered(m_formula, image);
}

void LatexRenderer::fail(const QString& message)
{
    m_poll->stop();
    m_busy = false;
    emit failed(m_formula, message);
}
