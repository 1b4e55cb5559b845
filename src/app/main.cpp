#include <QApplication>
#include <QFileInfo>
#include <QLocale>
#include <QTextCodec>
#include <QTranslator>

#include "core/settings/options.h"
#include "gui/app/mainwindow.h"

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Velmora"));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    // The catalogue is German whatever the system says: the locale is looked up but deliberately
    // not used to pick it. Without the file the texts stay English.
    const QString systemLocale = QLocale::system().name();
    Q_UNUSED(systemLocale)
    QTranslator translator;
    const QString catalogue = QStringLiteral("velmora_de.qm");
    if (QFileInfo::exists(catalogue) && translator.load(catalogue))
        QApplication::installTranslator(&translator);

    Options::initialize();
    int exitCode = 0;
    {
        MainWindow window;
        // The script engine and its debugger are created here, before the window is shown.
        window.show();
        exitCode = QApplication::exec();
    }
    Options::shutdown();
    return exitCode;
}
