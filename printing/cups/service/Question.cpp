#include "printing/cups/service/Question.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "printing/cups/service/AskCodes.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

Question::Outcome OutcomeOf(int code) {
    switch (static_cast<AskCode>(code)) {
        case AskCode::Answered:
            return Question::Outcome::Answered;
        case AskCode::Missing:
            return Question::Outcome::Missing;
        case AskCode::NoService:
            return Question::Outcome::NoService;
        case AskCode::Refused:
            return Question::Outcome::Refused;
        case AskCode::TooLarge:
            return Question::Outcome::TooLarge;
        case AskCode::Unreadable:
            return Question::Outcome::Unreadable;
        default:
            return Question::Outcome::Silent;
    }
}

/// Stands beside the program where it was built, and where programs that nobody calls by hand
/// belong once it is installed.
QString AskingProgram() {
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString installed = folder.filePath(u"../libexec/kadrona/kadrona-ask-cups"_s);
    const QString own = folder.filePath(u"kadrona-ask-cups"_s);
    return !QFileInfo::exists(own) && QFileInfo::exists(installed) ? installed : own;
}

}  // namespace

Question::Question(QStringList arguments, const QByteArray& input, Limits limits)
    : limits_(limits) {
    // The process ends itself only where this one can no longer end it.
    const auto seconds =
        std::chrono::ceil<std::chrono::seconds>(limits.time).count() + GraceSeconds;
    constexpr int SecondsPlace = 3;
    arguments.insert(SecondsPlace, QString::number(seconds));
    connect(&process_, &QProcess::readyReadStandardOutput, this, &Question::Collect);
    connect(&process_, &QProcess::finished, this, &Question::ProcessEnded);
    connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            End(Outcome::NotAsked);
        }
    });
    deadline_.setSingleShot(true);
    connect(&deadline_, &QTimer::timeout, this, [this] { End(Outcome::Silent); });
    deadline_.start(limits.time);
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start(AskingProgram(), arguments);
    process_.write(input);
    process_.closeWriteChannel();
}

Question::~Question() {
    End(Outcome::Cancelled);
}

void Question::Collect() {
    answer_ += process_.readAllStandardOutput();
    if (answer_.size() > limits_.bytes) {
        End(Outcome::TooLarge);
    }
}

void Question::ProcessEnded(int code, QProcess::ExitStatus status) {
    Collect();
    End(status == QProcess::NormalExit ? OutcomeOf(code) : Outcome::Silent);
}

void Question::End(Outcome outcome) {
    if (finished_) {
        return;
    }
    finished_ = true;
    outcome_ = outcome;
    deadline_.stop();
    process_.disconnect(this);
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished();
    }
    Q_EMIT Finished();
}

}  // namespace kadrona::printing::cups
