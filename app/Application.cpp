#include "app/Application.h"

#include <QApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QTextStream>
#include <QTimer>
#include <QTranslator>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "app/AppearanceActions.h"
#include "app/MainWindow.h"
#include "app/ProgressWatch.h"
#include "app/StartRequests.h"
#include "app/WaitingBox.h"
#include "app/commandline/ArchiveCommand.h"
#include "app/commandline/CheckCommand.h"
#include "app/commandline/CommandLineHelp.h"
#include "app/commandline/PackedRequest.h"
#include "app/commandline/PhotoCommand.h"
#include "app/commandline/SheetCommand.h"
#include "app/commandline/TerminalText.h"
#include "app/commandline/WindowRequest.h"
#include "app/printing/PrintService.h"
#include "controls/fields/LabelsFollowFields.h"
#include "controls/fields/WheelNeedsFocus.h"
#include "controls/messages/ActionGuard.h"
#include "core/base/Product.h"
#include "dialogs/base/ApplicationIcon.h"
#include "dialogs/base/SmallScreens.h"
#include "platform/Paths.h"
#include "platform/PoolThreads.h"
#include "platform/RunningProgram.h"
#include "platform/SilenceWatch.h"
#include "platform/Surroundings.h"
#include "platform/SystemReason.h"
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

/// What follows "--" are names.
bool AsksForHelp(const QStringList& arguments) {
    const QStringList options = arguments.first(
        arguments.contains(u"--"_s) ? arguments.indexOf(u"--"_s) : arguments.size());
    return options.contains(u"--help"_s) || options.contains(u"-h"_s);
}

/// A list that did not reach the file it was sent to is not done.
bool IsPrinted(QTextStream& output, QTextStream& errors) {
    output.flush();
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) {
        return true;
    }
    errors << u"Die Ausgabe konnte nicht geschrieben werden: %1."_s.arg(
                  platform::SystemReason(errno))
           << Qt::endl;
    return false;
}

/// What the arguments ask for when it needs no window; nothing when a window is to be opened.
std::optional<int> RunWithoutWindow(int argc, char** argv, const QStringList& arguments) {
    QTextStream output(stdout);
    QTextStream errors(stderr);
    const QString first = arguments.value(1);
    using Command = int(const QStringList&, QTextStream&, QTextStream&);
    const std::array<std::pair<QLatin1StringView, Command*>, 4> commands{
        {{"sheet"_L1, RunSheetCommand},
         {"photo"_L1, RunPhotoCommand},
         {"check"_L1, RunCheckCommand},
         {"archive"_L1, RunArchiveCommand}}};
    for (const auto& [name, run] : commands) {
        if (first == name && AsksForHelp(arguments)) {
            output << HelpOf(name);
            return Done;
        }
        if (first == name) {
            const auto console = ConsoleApplication(argc, argv, arguments);
            const int result = run(arguments.mid(2), output, errors);
            return IsPrinted(output, errors) ? result : SomePhotoFailed;
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
    return std::nullopt;
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

/// What tells apart programs that must not hand their photos to each other: another display, other
/// data, another build.
QString Identity() {
    QStringList parts{QFile::symLinkTarget(u"/proc/self/exe"_s), platform::CommonAppDataFolder()};
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        parts.append(qEnvironmentVariable(name));
    }
    return parts.join(u'\n');
}

/// What is open over the window is cancelled first; a chooser that does not let itself be closed
/// must not keep the program, nor a message that nobody answers.
void CloseAsByTheUser(TmainFm& window) {
    constexpr std::chrono::seconds Patience(5);
    auto* unanswered = new QTimer(&window);
    QObject::connect(unanswered, &QTimer::timeout, unanswered, [] {
        if (QWidget* shown = QApplication::activeModalWidget()) {
            shown->close();
        }
    });
    unanswered->start(Patience);
    QApplication::closeAllWindows();
    window.close();
    QApplication::exit(Done);
}

/// What the window and the box that stands in for it have in common.
void PrepareApplication(QTranslator& toolkitTexts) {
    if (toolkitTexts.load(u"qtbase_de"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(&toolkitTexts);
    }
    QLocale::setDefault(QLocale(QLocale::German));
    ApplyChosenAppearance();
    QApplication::setApplicationName(core::ApplicationTitle.toString());
    // Names the desktop file, by which panels find the icon and join the windows.
    QGuiApplication::setDesktopFileName(u"example.veltmark.Kadrona"_s);
    QApplication::setWindowIcon(dialogs::ApplicationIcon());
}

/// As a SilenceWatch runs it.
int RunWaitingBox(int argc, char** argv, const QStringList& arguments) {
    QApplication application(argc, argv);
    QTranslator toolkitTexts;
    PrepareApplication(toolkitTexts);
    WaitingBox box(arguments.value(2).toInt(), arguments.value(3));
    return QApplication::exec();
}

int RunWindow(int argc, char** argv, const WindowRequest& request) {
    // A start that asks for nothing gets a window of its own.
    const bool asks = request.chooses || !request.photo.isEmpty();
    platform::RunningProgram running;
    if (!request.newWindow && running.Start(Identity(), asks ? Packed(request) : QByteArray()) ==
                                  platform::RunningProgram::Role::HandedOver) {
        return Done;
    }
    QApplication application(argc, argv);
    QTranslator toolkitTexts;
    PrepareApplication(toolkitTexts);
    platform::SilenceWatch::SetTeller(u"/proc/self/exe"_s);
    application.installEventFilter(new dialogs::SmallScreens(&application));
    application.installEventFilter(new ProgressWatch(&application));
    application.installEventFilter(new controls::WheelNeedsFocus(&application));
    application.installEventFilter(new controls::LabelsFollowFields(&application));
    int result = Done;
    const bool started = controls::Guarded(nullptr, [&] {
        const std::unique_ptr<printing::PrinterLayer> printer = MakePrinterLayer();
        TmainFm window(core::Folders::OfThisMachine(), printer.get());
        const platform::TerminationSignals ending;
        QObject::connect(&ending, &platform::TerminationSignals::Requested, &window,
                         [&window] { CloseAsByTheUser(window); });
        window.show();
        StartRequests requests(window);
        requests.Ask(request);
        QObject::connect(&running, &platform::RunningProgram::Requested, &requests,
                         &StartRequests::AskFromOutside);
        running.Listen([](const QByteArray& bytes) { return Unpacked(bytes).has_value(); });
        result = QApplication::exec();
    });
    return started ? result : SomePhotoFailed;
}

}  // namespace

int Run(int argc, char** argv) {
    platform::MakeUpForSurroundings();
    platform::IgnoreFileSizeSignal();
    if (!platform::StartPoolThreads()) {
        QTextStream(stderr)
            << u"Kadrona kann nicht starten: Für seine Threads reichen Arbeitsspeicher "
               u"oder Prozesse nicht aus."_s
            << Qt::endl;
        std::_Exit(SomePhotoFailed);
    }
    const QStringList arguments = ArgumentsOf(argc, argv);
    if (arguments.value(1) == u"--waiting"_s && arguments.size() == 4) {
        return RunWaitingBox(argc, argv, arguments);
    }
    if (const auto exitCode = RunWithoutWindow(argc, argv, arguments)) {
        return *exitCode;
    }
    WindowRequest request;
    try {
        request = ParseWindowRequest(arguments.mid(1));
        request.activationToken = qgetenv("XDG_ACTIVATION_TOKEN");
    } catch (const UsageError& error) {
        QTextStream(stderr) << HarmlessName(error.Text()) << u"\nHilfe: kadrona --help"_s
                            << Qt::endl;
        return WrongUsage;
    }
    if (!HasDisplay()) {
        QTextStream(stderr)
            << u"Kadrona braucht eine grafische Oberfläche; ohne sie geht nur "
               u"„kadrona sheet“, „kadrona photo“, „kadrona check“ und „kadrona archive“ (siehe "
               u"kadrona --help).\n"_s;
        return SomePhotoFailed;
    }
    return RunWindow(argc, argv, request);
}

}  // namespace kadrona::app
