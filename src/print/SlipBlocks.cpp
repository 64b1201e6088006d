#include "print/SlipBlocks.h"

#include <QStringBuilder>
#include <QStringList>

#include "db/Query.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr db::Statement<u"SELECT *  FROM PDAUSER WHERE userID = '%s'"> kSelectUser;
constexpr db::Statement<
    u"SELECT sangho, sno, name, tel, fax, juso, calltel, cardid, cardpass, cardno FROM config">
    kSelectConfig;
constexpr db::Statement<u"SELECT SNO, GUPJU, JUSO, TEL FROM GARAE WHERE GCode= '%s'"> kSelectCustomer;

/// The config row by column name; as at start-up, the last row wins.
struct Config {
    QString sangho, sno, name, tel, juso, calltel;
};

Config config() {
    Config config;
    db::forEachRow(kSelectConfig(), [&](db::CVORecordset& row) {
        config = {row.GetFieldString(0), row.GetFieldString(1), row.GetFieldString(2),
                  row.GetFieldString(3), row.GetFieldString(5), row.GetFieldString(6)};
    });
    return config;
}

}  // namespace

void copyBlock(Document& document, Copy copy, bool reprint) {
    document.centred(copy == Copy::Seller ? u"(공급자 보관용)" : u"(공급받는자 보관용)");
    if (reprint) document.centred(u"* 재발행 *");
}

Salesman salesman(QStringView userId) {
    const std::optional<QStringList> row = db::firstRow(kSelectUser(userId));
    return row ? Salesman{row->value(2), row->value(3), row->value(7)} : Salesman{};
}

void slipBlock(Document& document, QStringView date, QStringView time, QStringView junNo,
               const Salesman& salesman) {
    document.labelText(u"거래일시", QString(date % u' ' % time));
    document.labelText(u"전표번호", junNo);
    document.labelText(u"담당사원", QString(salesman.name % u' ' % salesman.tel));
}

void sellerBlock(Document& document) {
    const Config seller = config();
    document.line(u"[공급자]");
    document.labelText(u"상호", seller.sangho);
    document.labelText(u"사업자번호", seller.sno);
    document.labelText(u"대표자", seller.name);
    document.labelText(u"주소", seller.juso);
    document.labelText(u"전화", seller.tel);
}

void customerBlock(Document& document, QStringView gCode, QStringView gName) {
    const QStringList customer = db::firstRow(kSelectCustomer(gCode)).value_or(QStringList());
    document.line(u"[공급받는자]");
    document.labelText(u"상호", gName);
    document.labelText(u"사업자번호", customer.value(0));
    document.labelText(u"대표자", customer.value(1));
    document.labelText(u"주소", customer.value(2));
    document.labelText(u"전화", customer.value(3));
}

void closingBlock(Document& document) {
    document.signature(u"인수자 서명");
    document.centred(u"거래해 주셔서 감사합니다");
    const QString callCentre = config().calltel.trimmed();
    if (!callCentre.isEmpty()) document.centred(u"상담전화 "_s + callCentre);
}

}  // namespace print
