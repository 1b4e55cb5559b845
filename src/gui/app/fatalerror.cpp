#include "fatalerror.h"

#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QMessageBox>
#include <QThread>

namespace {

FatalError::Ending& ending()
{
    static FatalError::Ending e = [] { std::abort(); };
    return e;
}

} // namespace

void FatalError::terminate(const QString& detail)
{
    // The box needs a widget application and its thread; from elsewhere the report goes to stderr only.
    const QCoreApplication* app = QCoreApplication::instance();
    if (qobject_cast<const QApplication*>(app) && QThread::currentThread() == app->thread())
        QMessageBox::critical(nullptr, QStringLiteral("Velmora"),
            QApplication::translate("FatalError", "Critical error: program terminated."));
    const QByteArray line = (QApplication::translate("FatalError", "Critical error: ") + detail).toUtf8();
    std::fprintf(stderr, "%s\n", line.constData());
    std::fflush(stderr);
    ending()();
}

FatalError::Ending FatalError::setEnding(Ending next)
{
    Ending previous = std::move(ending());
    ending() = std::move(next);
    return previous;
}
