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
    PrinterFeed(2);
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

void printDocument(const Document& document) {
    PrintJob job;
    job.title(document.title());
    for (const QString& line : document.lines()) job.line(line);
}

}  // namespace print
