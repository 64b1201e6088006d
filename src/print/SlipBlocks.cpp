#include "print/SlipBlocks.h"

#include <QStringBuilder>
#include <QStringList>

#include "books/Customer.h"
#include "db/Query.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The config row by column name; as at start-up, the last row wins.
struct Config {
    QString sangho, sno, name, tel, juso, calltel;
};

Config config() {
    static constexpr db::Statement<
        u"SELECT sangho, sno, name, tel, fax, juso, calltel, cardid, cardpass, cardno FROM config">
        kSelectConfig;
    Config config;
    db::forEachRow(kSelectConfig(), [&](db::CVORecordset& row) {
        config = {row.GetFieldString(0), row.GetFieldString(1), row.GetFieldString(2),
                  row.GetFieldString(3), row.GetFieldString(5), row.GetFieldString(6)};
    });
    return config;
}

void partyBlock(Document& document, QStringView heading, const Party& party) {
    document.line(heading);
    document.labelText(u"상호", party.name);
    document.labelText(u"사업자번호", party.number);
    document.labelText(u"대표자", party.owner);
    document.labelText(u"주소", party.address);
    document.labelText(u"전화", party.tel);
}

}  // namespace

Salesman salesman(QStringView userId) {
    static constexpr db::Statement<u"SELECT userNAME, vatMode, userTEL FROM PDAUSER WHERE userID = '%s'">
        kSelectUser;
    const std::optional<QStringList> row = db::firstRow(kSelectUser(userId));
    return row ? Salesman{row->value(0), row->value(1), row->value(2)} : Salesman{};
}

Party customer(QStringView gCode, QStringView gName) {
    const auto customer = books::paperCustomer(gCode).value_or(books::Customer());
    return {gName.toString(), customer.Sno, customer.Gupju, customer.Juso, customer.Tel};
}

Document slipDocument(QStringView title, std::optional<Copy> copy, bool reprint, const SlipHead& head) {
    Document document(title);
    if (copy) document.centred(*copy == Copy::Seller ? u"(공급자 보관용)" : u"(공급받는자 보관용)");
    if (reprint) document.reprintMark();
    document.rule(Document::Rule::Double);
    document.labelText(u"거래일시", QString(head.date % u' ' % head.time));
    document.labelText(u"전표번호", head.junNo);
    document.labelText(u"담당사원", QString(head.salesman.name % u' ' % head.salesman.tel));
    document.rule(Document::Rule::Thin);
    const Config seller = config();
    partyBlock(document, u"[공급자]", {seller.sangho, seller.sno, seller.name, seller.juso, seller.tel});
    document.rule(Document::Rule::Thin);
    partyBlock(document, u"[공급받는자]", head.customer);
    document.rule(Document::Rule::Double);
    return document;
}

void closingBlock(Document& document, std::initializer_list<QStringView> signers) {
    document.rule(Document::Rule::Double);
    for (const QStringView signer : signers) document.signature(signer);
    document.centred(u"거래해 주셔서 감사합니다");
    const QString callCentre = config().calltel.trimmed();
    if (!callCentre.isEmpty()) document.centred(u"상담전화 "_s + callCentre);
}

}  // namespace print
