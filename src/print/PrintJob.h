#pragma once

#include <QStringView>

#include "print/Document.h"

namespace print {

/// One job on the printer: opens and initialises the device, and at the end feeds two lines and closes it.
/// Only one exists at a time. There is no error: what the printer answers is not looked at.
class PrintJob {
  public:
    PrintJob();
    ~PrintJob();
    PrintJob(const PrintJob&) = delete;
    PrintJob& operator=(const PrintJob&) = delete;

    /// Prints the line, which carries its line end, enlarged; what follows is in the normal size again.
    void title(QStringView line);
    void line(QStringView line);
};

/// Prints the document as one job.
void printDocument(const Document& document);

}  // namespace print
