#pragma once

#include <QColor>
#include <QImage>
#include <QObject>
#include <QString>

class QTimer;
class QWebPage;

/**
 * Renders a formula in LaTeX math syntax into a picture with a transparent background, through MathJax
 * (the Debian package, read from the local disk; the page may load nothing from the network) in an
 * offscreen web page. Rendering is asynchronous; a new request replaces the one under way.
 */
class LatexRenderer final : public QObject {
    Q_OBJECT

public:
    explicit LatexRenderer(QObject* parent = nullptr);
    ~LatexRenderer() override;

    /** The MathJax script used; VELMORA_MATHJAX overrides where it lies. */
    static QString mathJaxScript();
    static bool isAvailable();

    /** Starts rendering @p formula at @p pixelSize in @p color; rendered() or failed() follows. */
    void render(const QString& formula, const QColor& color, int pixelSize);
    bool isBusy() const { return m_busy; }

signals:
    void rendered(const QString& formula, const QImage& image);
    void failed(const QString& formula, const QString& message);

private:
    void onLoadFinished(bool ok);
    void poll();
    void fail(const QString& message);

    QWebPage* m_page;
    QTimer* m_poll;
    QString m_formula;
    int m_polls = 0;
    bool m_busy = false;
};
