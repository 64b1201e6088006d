#include "print/PrintJob.h"

#include "print/Printer.h"

namespace print {
namespace {

constexpr int kNormalSize = 0;
constexpr int kTitleSize = 4;

}  // namespace

PrintJob::PrintJob() {
    DeviceOpen();
    PrinterInit();
}

PrintJob::~PrintJob() {
    DeviceClose();
}

void PrintJob::title(QStringView line) {
    PrinterSetSize(kTitleSize);
    PrinterPrint(line);
    PrinterSetSize(kNormalSize);
}

void PrintJob::line(QStringView line) {
    PrinterPrint(line);
}

void PrintJob::feed() {
    PrinterFeed(2);
}

void printDocuments(std::span<const Document> documents, const Progress& progress) {
    if (documents.empty()) return;
    PrintJob job;
    for (const Document& document : documents) {
        job.title(document.title());
        for (const QString& line : document.lines()) {
            job.line(line);
            if (progress) progress();
        }
        job.feed();
    }
}

void printDocument(const Document& document, const Progress& progress) {
    printDocuments({&document, 1}, progress);
}

}  // namespace print
