#include "van/TotalsDlg.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPlainTextEdit>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "print/PrintJob.h"
#include "ui/Messages.h"
#include "van/HostRequest.h"

namespace van {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kSummaryButton = 1022;

/// The fields of the reply in the order in which they are read.
struct SummaryField {
    short number;
    QString print::HostSummary::*text;
};
constexpr SummaryField kFields[] = {
    {1102, &print::HostSummary::responseCode},
    {1203, &print::HostSummary::responseText},
    {1002, &print::HostSummary::identification},
    {1115, &print::HostSummary::transferCount},
    {1116, &print::HostSummary::supply},
    {1117, &print::HostSummary::vat},
    {1118, &print::HostSummary::deposit},
    {1119, &print::HostSummary::collected},
    {1106, nullptr},  // Read with the others and thrown away.
    {1120, &print::HostSummary::transaction},
    {1121, &print::HostSummary::fee},
    {1122, &print::HostSummary::deposited},
};

}  // namespace

CTotalsDlg::CTotalsDlg() : Screen(app::dialogs::kTotals), component_(this) {
    addLabel(0, u"영업/HOST집계"_s, {4, 4, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    addLabel(0, app::session().UserID + u' ' + app::session().UserField2 + u"  "_s + app::session().WorkDate,
             {4, 32, 232, 22}, ui::FontHeight::Small, Qt::AlignCenter);
    ui::BitmapButton* summary = addButton(kSummaryButton, u"HOST집계"_s, {12, 62}, ui::bitmaps::kDocument);
    connect(summary, &ui::BitmapButton::clicked, this, [this] { request(); });
    logView_ = place(1146, new QPlainTextEdit(this), {2, 200, 236, 80});
    logView_->setReadOnly(true);
    logView_->setFocusPolicy(Qt::NoFocus);
    logView_->setFont(ui::font(ui::FontHeight::Small));
    ui::BitmapButton* done = addButton(1003, u"닫  기"_s, {182, 284}, ui::bitmaps::kCancel);
    connect(done, &ui::BitmapButton::clicked, this, [this] {
        if (!isExchanging_) close(Cancelled);
    });
    setCancelButton(done);
    component_.setObjectName(QString::number(CKsnet_msg_lib::kControlId));
    component_.hide();
    connectComponent();
}

CTotalsDlg::~CTotalsDlg() {
    setExchanging(false);
}

void CTotalsDlg::connectComponent() {
    connect(&component_, &CKsnet_msg_lib::communicating, this, [this] { append(u"[통신중] "_s); });
    connect(&component_, &CKsnet_msg_lib::messageSent, this, [this] { append(u"[전문송신완료] "_s); });
    connect(&component_, &CKsnet_msg_lib::receiving, this, [this] { readReply(); });
    connect(&component_, &CKsnet_msg_lib::errorOccurred, this, [this] { append(u"[에러발생] "_s); });
    connect(&component_, &CKsnet_msg_lib::ksnetError, this,
            [this](int code) { append(u"[KSNET에러] "_s + QString::number(code)); });
    connect(&component_, &CKsnet_msg_lib::communicationEnded, this, [this] {
        append(u"[통신종료] "_s);
        exchangeEnded();
    });
}

void CTotalsDlg::append(const QString& text) {
    setLog(log_ + text);
}

void CTotalsDlg::setLog(const QString& text) {
    log_ = text;
    logView_->setPlainText(log_);
    logView_->moveCursor(QTextCursor::End);
}

void CTotalsDlg::setExchanging(bool isExchanging) {
    if (isExchanging == isExchanging_) return;
    isExchanging_ = isExchanging;
    if (isExchanging) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QGuiApplication::restoreOverrideCursor();
    }
    // The hidden button would hand the focus to the closing one.
    setFocus();
    control(kSummaryButton)->setVisible(!isExchanging);
}

void CTotalsDlg::request() {
    setExchanging(true);
    repaint();
    setLog(u"HOST집계요청 중입니다.."_s);
    summary_ = {};
    append(sendRequest(component_, RequestKind::Summary, app::transactionRecord()));
}

void CTotalsDlg::readReply() {
    component_.RecvHeader();
    component_.RecvSummary();
    QString text = u"[전문수신중] <응답값: "_s;
    for (const SummaryField& field : kFields) {
        const QString value = receivedField(component_, field.number);
        if (field.text != nullptr) summary_.*field.text = value;
        if (field.number == 1102 || field.number == 1203) text += u'[' + value + u']';
        if (field.number == 1121) text += u"수수료:"_s + value;
        if (field.number == 1122) text += u"이체액:"_s + value;
    }
    append(text + u"> "_s);
}

void CTotalsDlg::exchangeEnded() {
    setExchanging(false);
    if (summary_.responseCode == u"0000") {
        print::printDocument(
            print::hostSummarySlip(summary_, app::session().UserField2, app::session().WorkDate));
    } else {
        ui::message(u"하단의 전문에러값을 확인하세요!!"_s);
    }
    repaint();
}

}  // namespace van
