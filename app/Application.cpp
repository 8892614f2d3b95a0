#include "app/Application.h"

#include <QApplication>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTextStream>
#include <QTimer>
#include <QTranslator>
#include <QWindow>
#include <algorithm>
#include <array>
#include <memory>

#include "app/MainWindow.h"
#include "app/PrintService.h"
#include "app/commandline/CheckCommand.h"
#include "app/commandline/PhotoCommand.h"
#include "app/commandline/SheetCommand.h"
#include "app/commandline/TerminalText.h"
#include "controls/messages/ActionGuard.h"
#include "controls/theme/Theme.h"
#include "core/base/Product.h"
#include "dialogs/ApplicationIcon.h"
#include "platform/TerminationSignals.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// No display is needed, only the image plug-ins; the fonts as well where pictures get names below.
std::unique_ptr<QCoreApplication> ConsoleApplication(int& argc, char** argv,
                                                     const QStringList& arguments) {
    const bool writes = std::ranges::any_of(
        arguments, [](const QString& argument) { return argument.startsWith(u"--order"_s); });
    if (!writes) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

/// What the arguments ask for when it needs no window; nothing when a window is to be opened.
std::optional<int> RunWithoutWindow(int argc, char** argv, const QStringList& arguments) {
    QTextStream output(stdout);
    QTextStream errors(stderr);
    const QString first = arguments.value(1);
    using Command = int(const QStringList&, QTextStream&, QTextStream&);
    const std::array<std::pair<QLatin1StringView, Command*>, 3> commands{
        {{"sheet"_L1, RunSheetCommand},
         {"photo"_L1, RunPhotoCommand},
         {"check"_L1, RunCheckCommand}}};
    for (const auto& [name, run] : commands) {
        if (first == name) {
            const auto console = ConsoleApplication(argc, argv, arguments);
            return run(arguments.mid(2), output, errors);
        }
    }
    if (first == u"--help"_s || first == u"-h"_s) {
        output << core::WindowCaption << u"\n\n"_s << CommandLineHelp();
        return Done;
    }
    if (first == u"--version"_s) {
        output << core::WindowCaption << Qt::endl;
        return Done;
    }
    // Behind "--" a name may begin with "-".
    const bool named = first == u"--"_s;
    const QString wrong = first.startsWith(u'-') && !named ? first : arguments.value(named ? 3 : 2);
    if (!wrong.isEmpty()) {
        errors << u"Mit „%1“ kann Kadrona nicht gestartet werden.\nHilfe: kadrona --help"_s.arg(
                      HarmlessName(wrong))
               << Qt::endl;
        return WrongUsage;
    }
    return std::nullopt;
}

/// The full path of the photo that is to be opened; empty where none was named.
QString PhotoToOpen(const QStringList& arguments) {
    const QString photo = LocalPath(arguments.value(arguments.value(1) == u"--"_s ? 2 : 1));
    return photo.isEmpty() ? photo : QFileInfo(photo).absoluteFilePath();
}

/// Qt would end the program without a word that a user understands.
bool HasDisplay() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

QStringList ArgumentsOf(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    return arguments;
}

/// Dialogs over the photo can only be placed well over a window that is on the screen.
void OpenOnceExposed(TmainFm& window, const QString& photo) {
    constexpr int LookAgainMilliseconds = 10;
    if (window.windowHandle()->isExposed()) {
        window.OpenDroppedFiles({photo});
    } else {
        QTimer::singleShot(LookAgainMilliseconds, &window,
                           [&window, photo] { OpenOnceExposed(window, photo); });
    }
}

/// What is open over the window is cancelled first; a chooser that does not let itself be closed
/// must not keep the program.
void CloseAsByTheUser(TmainFm& window) {
    QApplication::closeAllWindows();
    window.close();
    QApplication::exit(Done);
}

int RunWindow(int argc, char** argv, const QString& photo) {
    QApplication application(argc, argv);
    QTranslator toolkitTexts;
    if (toolkitTexts.load(u"qtbase_de"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(&toolkitTexts);
    }
    QLocale::setDefault(QLocale(QLocale::German));
    controls::ApplyTheme(application);
    QApplication::setApplicationName(core::ApplicationTitle.toString());
    QApplication::setWindowIcon(dialogs::ApplicationIcon());
    int result = Done;
    const bool started = controls::Guarded(nullptr, [&] {
        const std::unique_ptr<printing::PrinterLayer> printer = MakePrinterLayer();
        TmainFm window(core::Folders::OfThisMachine(), printer.get());
        const platform::TerminationSignals ending;
        QObject::connect(&ending, &platform::TerminationSignals::Requested, &window,
                         [&window] { CloseAsByTheUser(window); });
        window.show();
        if (!photo.isEmpty()) {
            OpenOnceExposed(window, photo);
        }
        result = QApplication::exec();
    });
    return started ? result : SomePhotoFailed;
}

}  // namespace

int Run(int argc, char** argv) {
    platform::IgnoreFileSizeSignal();
    const QStringList arguments = ArgumentsOf(argc, argv);
    if (const auto exitCode = RunWithoutWindow(argc, argv, arguments)) {
        return *exitCode;
    }
    if (!HasDisplay()) {
        QTextStream(stderr)
            << u"Kadrona braucht eine grafische Oberfläche; ohne sie geht nur "
               u"„kadrona sheet“, „kadrona photo“ und „kadrona check“ (siehe kadrona "
               u"--help).\n"_s;
        return SomePhotoFailed;
    }
    return RunWindow(argc, argv, PhotoToOpen(arguments));
}

}  // namespace kadrona::app
