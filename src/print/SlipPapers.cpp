#include "print/SlipPapers.h"

#include <algorithm>

#include "db/Query.h"
#include "db/Transaction.h"
#include "print/CollectionReceipt.h"
#include "print/ContainerReceipt.h"
#include "print/SalesInvoice.h"

namespace print {
namespace {

using books::Copy;
using books::Paper;

constexpr Copy kCopies[] = {Copy::Seller, Copy::Buyer};

}  // namespace

std::optional<Document> slipPaper(Paper paper, QStringView date, QStringView junNo, QStringView userId,
                                  Copy copy, bool reprint) {
    switch (paper) {
        case Paper::Invoice: return salesInvoice(date, junNo, userId, copy, reprint);
        case Paper::ContainerReceipt: return containerReceipt(date, junNo, userId, copy, reprint);
        case Paper::CollectionSlip: return collectionSlip(date, junNo, userId, copy, reprint);
    }
    return std::nullopt;
}

bool isReprint(Paper paper, Copy copy, QStringView date, QStringView junNo, QStringView userId) {
    static constexpr db::Statement<
        u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' "
        u"AND (WorkGubun = '발행' OR WorkGubun = '결제')">
        kSelectPrinted;
    if (isPrintNoted(paper, copy, date, junNo, userId)) return true;
    const Copy other = copy == Copy::Seller ? Copy::Buyer : Copy::Seller;
    return paper == Paper::Invoice && !isPrintNoted(paper, other, date, junNo, userId) &&
           db::hasRow(kSelectPrinted(date, junNo, userId));
}

SlipPapers::SlipPapers(QStringView date, QStringView junNo, QStringView userId)
    : date_(date.toString()), junNo_(junNo.toString()), userId_(userId.toString()) {
    for (const Paper paper : books::kPapers) {
        for (const Copy copy : kCopies) {
            if (print::isReprint(paper, copy, date, junNo, userId)) reprints_.insert({paper, copy});
        }
    }
}

void SlipPapers::markAllReprints() {
    for (const Paper paper : books::kPapers) {
        for (const Copy copy : kCopies) reprints_.insert({paper, copy});
    }
}

QList<Paper> SlipPapers::print(std::span<const Paper> papers, Copy copy, const Progress& progress) {
    QList<Paper> printed;
    QList<Document> documents;
    for (const Paper paper : papers) {
        const bool isAgain = reprints_.contains({paper, copy});
        if (const auto document = slipPaper(paper, date_, junNo_, userId_, copy, isAgain)) {
            printed << paper;
            documents << *document;
        }
    }
    if (printed.isEmpty()) return printed;
    // Noted first: a paper that left the printer unnoted would be given out a second time without its mark.
    note(printed, copy);
    printDocuments(documents, progress);
    for (const Paper paper : printed) {
        reprints_.insert({paper, copy});
        printed_.insert({paper, copy});
    }
    return printed;
}

int SlipPapers::printVisit(bool isAgain, const Progress& progress) {
    const bool isSale = slipPaper(Paper::Invoice, date_, junNo_, userId_, Copy::Seller, false).has_value();
    const Paper papers[] = {isSale ? Paper::Invoice : Paper::CollectionSlip, Paper::ContainerReceipt};
    int count = 0;
    for (const Copy copy : kCopies) {
        QList<Paper> due;
        for (const Paper paper : papers) {
            if (isAgain || isDue(paper, copy)) due << paper;
        }
        count += int(print(due, copy, progress).size());
    }
    return count;
}

bool SlipPapers::isVisitReprint() const {
    return std::ranges::any_of(reprints_,
                               [this](const PaperCopy& each) { return isDue(each.first, each.second); });
}

void SlipPapers::note(std::span<const Paper> papers, Copy copy) const {
    static constexpr db::Statement<
        u"UPDATE MTM SET WorkGubun = '발행' WHERE DDate = '%s' AND JunNo = '%s' "
        u"AND UserID = '%s' AND WorkGubun = '미발행'">
        kMarkPrinted;
    db::Transaction transaction;
    for (const Paper paper : papers) {
        if (paper == Paper::Invoice) transaction.connection().Execute(kMarkPrinted(date_, junNo_, userId_));
        notePrint(transaction, paper, copy, date_, junNo_, userId_);
    }
    // A slip that could not be noted is printed all the same.
    transaction.commit();
}

}  // namespace print
