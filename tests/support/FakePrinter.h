#pragma once

#include <QList>
#include <QPointer>

#include "printing/PrinterLayer.h"

namespace kadrona::testing {

/// A print service without printers of this machine. Tests set what it answers and read what it was
/// asked for.
class FakePrinter : public printing::PrinterLayer {
 public:
    struct Job {
        printing::PrintImage image;
        printing::PrinterChoice printer;
    };

    static printing::PrinterChoice Choice(const char* device, const char* options) {
        return {QString::fromUtf8(device), QStringLiteral("driver"), QStringLiteral("port"),
                QByteArray(options)};
    }

    printing::PrinterChoice CurrentPrinter() override {
        Answer();
        return current;
    }

    void SetCurrentPrinter(const printing::PrinterChoice& choice) override {
        Answer();
        current = choice;
    }

    bool ShowSetupDialog(QWindow*) override {
        Answer();
        ++setupsShown;
        if (setupChoice) {
            current = *setupChoice;
        }
        return setupChoice.has_value();
    }

    printing::PrinterPaper PaperOf(const printing::PrinterChoice&) override {
        Answer();
        return {printing::PaperGeometry::Plain(paper), orientation};
    }

    std::unique_ptr<printing::JobWatch> Print(const printing::PrintImage& image) override {
        Answer();
        jobs.append({image, current});
        auto followed = std::make_unique<printing::JobWatch>();
        watch = followed.get();
        return followed;
    }

    printing::PrinterChoice current = Choice("Laser", "PageSize=A4\n");
    /// What the user confirms in the set-up dialog; nothing when it is cancelled.
    std::optional<printing::PrinterChoice> setupChoice;
    QSizeF paper = QSizeF(210, 297);
    printing::Orientation orientation = printing::Orientation::Upright;
    /// Every operation fails with this text while it is not empty.
    QString failure;

    int setupsShown = 0;
    QList<Job> jobs;
    /// Follows the last job, as long as somebody keeps it.
    QPointer<printing::JobWatch> watch;

 private:
    void Answer() const {
        if (!failure.isEmpty()) {
            throw printing::PrinterError(failure);
        }
    }
};

}  // namespace kadrona::testing
