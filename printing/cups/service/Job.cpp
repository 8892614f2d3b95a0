#include "printing/cups/service/Job.h"

#include "platform/SystemReason.h"
#include "printing/NeutralOptions.h"
#include "printing/cups/service/JobPage.h"
#include "printing/cups/service/TemporaryFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

/// The options of a job, in the library's own form.
class JobOptions {
 public:
    JobOptions() = default;
    ~JobOptions() { cupsFreeOptions(count_, options_); }
    JobOptions(const JobOptions&) = delete;
    JobOptions& operator=(const JobOptions&) = delete;

    void Add(const char* name, const char* value) {
        count_ = cupsAddOption(name, value, count_, &options_);
    }
    void Encode(ipp_t* request) const {
        cupsEncodeOptions2(request, count_, options_, IPP_TAG_JOB);
    }

 private:
    int count_ = 0;
    cups_option_t* options_ = nullptr;
};

void AddOptions(ipp_t* request, const Driver& driver, const DeviceMode& mode, int copies) {
    JobOptions options;
    for (const auto& [keyword, choice] : mode.Options()) {
        if (driver.Knows(keyword, choice)) {
            options.Add(keyword.constData(), choice.constData());
        }
    }
    // The page is drawn for this paper; the service may have another standard than the driver.
    if (const auto paper = driver.PaperOf(mode)) {
        options.Add("PageSize", paper->name.constData());
    }
    for (const auto& [keyword, choice] : driver.PlacingChoices(mode)) {
        options.Add(keyword.constData(), choice.constData());
    }
    options.Add("copies", QByteArray::number(copies).constData());
    for (const NeutralOption& option : ServiceOptions) {
        options.Add(option.keyword, option.neutral);
    }
    for (const NeutralOption& option : DriverOptions) {
        if (driver.Knows(option.keyword, option.neutral)) {
            options.Add(option.keyword, option.neutral);
        }
    }
    options.Encode(request);
}

void AddText(ipp_t* request, ipp_tag_t tag, const char* name, const QByteArray& text) {
    ippAddString(request, IPP_TAG_OPERATION, tag, name, nullptr, text.constData());
}

/// The service keeps at most 255 bytes of a name.
QByteArray JobName(const QString& title) {
    constexpr qsizetype LongestName = 60;
    return title.isEmpty() ? QByteArray("Passbilder") : title.left(LongestName).toUtf8();
}

}  // namespace

void WriteJobFile(QTemporaryFile& page, const PrintImage& image, const PrinterPaper& paper) {
    CreateTemporaryFile(page);
    WriteJobPage(page, image, paper);
    if (!page.flush()) {
        throw ServiceFailure(u"Der Druckauftrag kann nicht geschrieben werden: %1."_s.arg(
            platform::SystemReason(page)));
    }
}

int SendJob(const Connection& connection, const Queue& queue, const Driver& driver,
            const DeviceMode& mode, const PrintImage& image) {
    QTemporaryFile page;
    WriteJobFile(page, image, driver.PrinterPaperOf(mode));
    IppMessage request = NewRequest(IPP_OP_PRINT_JOB, queue.Uri());
    AddText(request.get(), IPP_TAG_NAME, "job-name", JobName(image.title));
    AddText(request.get(), IPP_TAG_MIMETYPE, "document-format", "application/pdf");
    AddOptions(request.get(), driver, mode, image.copies.value_or(mode.CopyCount()));
    const IppMessage answer = connection.Ask(request, queue.Resource(), PathOf(page));
    ipp_attribute_t* job = ippFindAttribute(answer.get(), "job-id", IPP_TAG_INTEGER);
    if (job == nullptr) {
        throw FailureOf(*answer);
    }
    return ippGetInteger(job, 0);
}

}  // namespace kadrona::printing::cups
