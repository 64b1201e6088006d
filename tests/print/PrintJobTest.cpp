#include "print/PrintJob.h"

#include <gtest/gtest.h>

#include <QStringList>

#include "platform/termdev/TermDev.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Writes down what it is asked to do, and fails at all of it.
class FakePrinter : public platform::termdev::Printer {
  public:
    explicit FakePrinter(QStringList* asked) : asked_(asked) {}

    int open() override { return note(u"open"_s); }
    int close() override { return note(u"close"_s); }
    int initialise() override { return note(u"initialise"_s); }
    int setSize(int mode) override { return note(u"size %1"_s.arg(mode)); }
    int print(QStringView text) override { return note(u"print "_s + text.toString()); }
    int feed(int lines) override { return note(u"feed %1"_s.arg(lines)); }

  private:
    int note(const QString& operation) {
        asked_->append(operation);
        return 0;
    }

    QStringList* asked_;
};

TEST(PrintJob, KeepsTheOrderOfOperationsWhateverThePrinterAnswers) {
    QStringList asked;
    platform::termdev::setPrinter(std::make_unique<FakePrinter>(&asked));
    print::Document document(u"제 목");
    document.line(u"첫째");
    document.rule(print::Document::Rule::Thin);
    document.blank();
    const print::Document documents[] = {document, print::Document(u"다 음")};
    print::printDocuments(documents);
    print::printDocuments({});
    platform::termdev::setPrinter(nullptr);
    EXPECT_EQ(asked.join(u'|').toStdString(),
              "open|initialise|size 4|print      제 목\n|size 0|print 첫째\n|print "
              "--------------------------------\n|"
              "print \n|feed 2|size 4|print      다 음\n|size 0|feed 2|close");
}

}  // namespace
