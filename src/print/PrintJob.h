#pragma once

#include <QString>
#include <QStringView>
#include <functional>
#include <span>

#include "print/Document.h"

namespace print {

/// One job on the printer: opens and initialises the device, and closes it at the end.
/// Only one exists at a time. There is no error: what the printer answers is not looked at.
class PrintJob {
  public:
    PrintJob();
    ~PrintJob();
    Q_DISABLE_COPY_MOVE(PrintJob)

    /// Prints the line, which carries its line end, enlarged; what follows is in the normal size again.
    void title(QStringView line);
    void line(QStringView line);
    /// Feeds two lines, the end of a document.
    void feed();
};

/// How many jobs have not come out of the printer yet.
int waitingJobs();

/// "출력 대기 3건: 용지 없음" while jobs wait for the printer, the reason where it is known; else empty.
QString waitingText();

/// What is asked before both copies of a visit go to the printer again: they may not have come out of it yet.
QString printAgainText();

/// Hears of every line that has gone to the printer.
using Progress = std::function<void()>;

/// Prints the documents one after another as one job; without one nothing is opened.
void printDocuments(std::span<const Document> documents, const Progress& progress);

/// Prints the document as one job.
void printDocument(const Document& document, const Progress& progress);

}  // namespace print
