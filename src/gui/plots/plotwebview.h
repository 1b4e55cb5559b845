#pragma once

#include <QWebView>

/** A web view that says when it was resized, so that the plot can follow once the resizing pauses. */
class PlotWebView final : public QWebView {
    Q_OBJECT

public:
    using QWebView::QWebView;

signals:
    void resized();

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QWebView::resizeEvent(event);
        emit resized();
    }
};
