#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <optional>
#include <set>
#include <span>
#include <utility>

#include "books/PrintLog.h"
#include "print/Document.h"
#include "print/PrintJob.h"

/// The papers of a slip and whether each has been printed. The sales slip's own state, WorkGubun of its MTM
/// lines, is "미발행" when saved, "발행" when its invoice has been printed, "결제" when it was settled by an
/// approved exchange, which prints the invoice by itself.
namespace print {

/// The paper as a document; nothing when the slip has no rows for it.
std::optional<Document> slipPaper(books::Paper paper, QStringView date, QStringView junNo, QStringView userId,
                                  books::Copy copy, bool reprint);

/// True when that copy was printed before. An invoice of which no print is noted goes by the slip's state:
/// it was printed by a terminal that did not note it.
bool isReprint(books::Paper paper, books::Copy copy, QStringView date, QStringView junNo, QStringView userId);

/// Prints the papers of one slip. What was printed before it came into being makes a reprint, and so does
/// what it has printed itself; the two copies of one print belong together.
class SlipPapers {
  public:
    SlipPapers(QStringView date, QStringView junNo, QStringView userId);

    /// Every paper is a reprint from here on.
    void markAllReprints();

    /// True when that copy would be a reprint now.
    bool isReprint(books::Paper paper, books::Copy copy) const { return reprints_.contains({paper, copy}); }

    /// Prints what a visit leaves behind, both copies of each: the invoice, or without a sale the collection
    /// slip, and the container receipt. What this object has printed already is left out, unless `isAgain`.
    /// Returns how many papers came out.
    int printVisit(bool isAgain, const Progress& progress = {});
    /// True when printVisit would repeat what was printed before this object came into being.
    bool isVisitReprint() const;

    /// Prints one copy of those papers that the slip has rows for, as one job, and notes it before they
    /// leave the printer: an invoice makes a "미발행" slip "발행", any other state stays. Returns what was
    /// printed; without any the printer is not opened.
    QList<books::Paper> print(std::span<const books::Paper> papers, books::Copy copy,
                              const Progress& progress = {});

  private:
    using PaperCopy = std::pair<books::Paper, books::Copy>;

    bool isDue(books::Paper paper, books::Copy copy) const { return !printed_.contains({paper, copy}); }
    void note(std::span<const books::Paper> papers, books::Copy copy) const;

    QString date_;
    QString junNo_;
    QString userId_;
    std::set<PaperCopy> reprints_;
    std::set<PaperCopy> printed_;  ///< Those of this object.
};

}  // namespace print
