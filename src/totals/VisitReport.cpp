#include "totals/VisitReport.h"

#include "totals/DailyReports.h"

namespace totals {

using namespace Qt::Literals::StringLiterals;

std::optional<VisitCheck> checkDays(const QStringList& days, QStringView userId) {
    const QString date = days.size() > 1 ? days.first() + u" ~ "_s + days.last().mid(5) : days.value(0);
    VisitCheck check{reportHead(u"점검", date, userId), {}, {}};
    // The list says reason and amounts below the row, where they have its whole width.
    check.report.columns = {{.title = u"전표"_s, .pixels = 38, .paper = 8},
                            {.title = u"거래처"_s, .pixels = 132, .paper = 24},
                            {.title = u"사유"_s, .paper = 18, .startsLine = true},
                            {.title = u"금액"_s, .kind = Kind::Amount, .pixels = 62, .paper = 14},
                            {.title = u"내용"_s, .paper = 32, .startsLine = true}};
    for (const QString& day : days) {
        const auto visits = books::visitsOfDay(day, userId);
        if (!visits) return std::nullopt;
        Section section{days.size() > 1 ? day : QString(), {}};
        for (const books::CheckedVisit& checked : books::checkVisits(*visits)) {
            const books::Visit& visit = checked.visit;
            // Without a user the report is everybody's, and the number alone does not say whose slip it is.
            const QString number = userId.isEmpty() ? visit.userId + u' ' + visit.junNo : visit.junNo;
            for (const books::VisitDifference& difference : checked.differences) {
                if (section.rows.isEmpty() && !section.title.isEmpty()) {
                    check.rows.append(std::nullopt);
                    check.notes.append(VisitCheck::Note());
                }
                const VisitCheck::Note note{books::reasonOf(difference.kind).toString(),
                                            books::detailOf(difference)};
                section.rows.append({number, visit.gName, note.reason, difference.amount, note.amounts});
                check.rows.append(visit);
                check.notes.append(note);
            }
        }
        if (!section.rows.isEmpty()) check.report.sections << section;
    }
    return check;
}

}  // namespace totals
