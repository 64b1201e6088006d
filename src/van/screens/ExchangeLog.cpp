#include "van/screens/ExchangeLog.h"

#include <QPlainTextEdit>

#include "platform/Lines.h"
#include "ui/FlickScroll.h"
#include "ui/Fonts.h"

namespace van {

using namespace Qt::Literals::StringLiterals;
using platform::message::Component;

ExchangeLog::ExchangeLog(CKsnet_msg_lib& component, QPlainTextEdit* box, std::function<QString()> readReply)
    : box_(box) {
    box_->setReadOnly(true);
    new ui::FlickScroll(box_);
    box_->setAccessibleName(u"진행 상황"_s);
    box_->setFocusPolicy(Qt::NoFocus);
    box_->setFont(ui::font(ui::FontHeight::Small));
    component.setObjectName(QString::number(CKsnet_msg_lib::kControlId));
    component.hide();
    const Component* events = &component.component();
    connect(events, &Component::communicating, this, [this] { append(u"[통신중] "_s); });
    connect(events, &Component::messageSent, this, [this] { append(u"[전문송신완료] "_s); });
    connect(events, &Component::receiving, this,
            [this, read = std::move(readReply)] { append(u"[전문수신중] "_s + read()); });
    connect(events, &Component::errorOccurred, this, [this] { append(u"[에러발생] "_s); });
    connect(events, &Component::ksnetError, this, [this](int code) {
        append(u"[KSNET에러] "_s + QString::number(code));
        // Trying again does not help then.
        if (!platform::loadLines().isEmpty()) append(u"[프로그램 재설치 필요] "_s);
    });
    connect(events, &Component::communicationEnded, this, [this] {
        append(u"[통신종료] "_s);
        end();
        Q_EMIT ended();
    });
}

ExchangeLog::~ExchangeLog() {
    end();
}

void ExchangeLog::set(const QString& text) {
    text_ = text;
    box_->setPlainText(text_);
    box_->moveCursor(QTextCursor::End);
}

void ExchangeLog::begin() {
    if (!wait_) wait_.emplace();
}

void ExchangeLog::end() {
    wait_.reset();
}

}  // namespace van
