#include "print/PrintJob.h"

#include "platform/termdev/TermDev.h"
#include "print/Printer.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;
using Cause = platform::termdev::DeviceStatus::Cause;

/// What the user is to see to, behind the number of jobs.
QString causeText(Cause cause) {
    switch (cause) {
        case Cause::NoPaper: return u": 용지 없음"_s;
        case Cause::TakesNothing: return u": 용지·덮개·전원 확인"_s;
        case Cause::Away: return u": 프린터 연결 안됨"_s;
        case Cause::NoRoom: return u": 저장공간 확인"_s;
        case Cause::Incomplete: return u": 프로그램 재설치 필요"_s;
        case Cause::None: break;
    }
    return {};
}

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

int waitingJobs() {
    return platform::termdev::printerStatus().waitingJobs;
}

QString waitingText() {
    const platform::termdev::DeviceStatus status = platform::termdev::printerStatus();
    if (status.waitingJobs == 0) return {};
    return u"출력 대기 %1건"_s.arg(status.waitingJobs) + causeText(status.cause);
}

QString printAgainText() {
    return waitingJobs() > 0 ? u"출력 대기중인 전표가 있습니다..! 한 장 더 출력할까요?"_s
                             : u"두 부 모두 출력하였습니다..! 한 번 더 출력할까요?"_s;
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
