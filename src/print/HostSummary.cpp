#include "print/HostSummary.h"

#include <QStringBuilder>

#include "platform/Won.h"

namespace print {

using platform::groupThousands;
using platform::parseWon;
Document hostSummarySlip(const HostSummary& summary, QStringView salesman, QStringView workDate) {
    Document document(u"PDA HOST집계");
    document.rule(Document::Rule::Double);
    document.line(QString(u"영업사원: " % salesman));
    document.line(QString(u"작업일자: " % workDate));
    document.rule(Document::Rule::Thin);
    document.labelFigure(u"이 체 횟 수:", groupThousands(parseWon(summary.transferCount)), u"회");
    const struct {
        QStringView label;
        const QString& field;
    } amounts[] = {{u"공 급 가 액:", summary.supply},      {u"부 가 세 액:", summary.vat},
                   {u"보 증 금 액:", summary.deposit},     {u"회 수 금 액:", summary.collected},
                   {u"거 래 금 액:", summary.transaction}, {u"수 수 료 액:", summary.fee},
                   {u"입 금 금 액:", summary.deposited}};
    for (const auto& [label, field] : amounts)
        document.labelFigure(label, groupThousands(parseWon(field)), u"원");
    document.rule(Document::Rule::Thin);
    document.labelFigure(u"담당확인:", {}, u"인");
    return document;
}

}  // namespace print
