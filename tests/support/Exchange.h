#pragma once

#include <QEventLoop>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <vector>

#include "platform/message/Component.h"
#include "support/Pump.h"

namespace test {

/// A terminal's message component with what it reported, and the requests that the application makes of it.
class Exchange {
  public:
    using Argument = platform::message::Argument;
    using Component = platform::message::Component;

    Exchange() {
        needApplication();
        using namespace Qt::Literals::StringLiterals;
        QObject::connect(&component, &Component::communicating, [this] { events << u"communicating"_s; });
        QObject::connect(&component, &Component::messageSent, [this] { events << u"sent"_s; });
        QObject::connect(&component, &Component::receiving, [this] { events << u"receiving"_s; });
        QObject::connect(&component, &Component::errorOccurred, [this] { events << u"error"_s; });
        QObject::connect(&component, &Component::ksnetError,
                         [this](int code) { events << u"ksnet %1"_s.arg(code); });
        QObject::connect(&component, &Component::communicationEnded, [this] {
            events << u"ended"_s;
            loop_.quit();
        });
    }

    int call(int id, std::vector<Argument> arguments = {}) { return component.invoke(id, arguments); }

    int header(QStringView kind) {
        return call(1, {u"JB", u"84", u"00", u"1234567890", u"    ", u"0200", kind});
    }
    int payment(QStringView cardData, QStringView password, QStringView amount = u"11000",
                QStringView kind = u"0100") {
        header(kind);
        return call(2, {u"123", u"        ", cardData, password, u"39", u"10000", u"1000", u"500", u"1",
                        u"500", amount});
    }
    int balance(QStringView cardData, QStringView password) {
        header(u"0300");
        return call(4, {u"090501", cardData, password, u"39"});
    }
    int previous() {
        header(u"0600");
        return call(3);
    }
    int summary(QStringView date) {
        header(u"0800");
        return call(6, {u"183000", date});
    }

    /// Starts the exchange of the last request.
    int commun(quint16 port, int timeOut = 30, QStringView host = u"127.0.0.1") {
        events.clear();
        return call(25, {host, qint16(port), qint16(timeOut), qint16(0)});
    }
    /// Lets the exchange come to its end; returns the events joined by blanks. "..." marks one that has not
    /// ended within 20 seconds.
    QString wait() {
        using namespace Qt::Literals::StringLiterals;
        QTimer limit;
        QObject::connect(&limit, &QTimer::timeout, &loop_, &QEventLoop::quit);
        limit.start(20'000);
        if (!events.contains(u"ended"_s)) loop_.exec();
        if (!events.contains(u"ended"_s)) events << u"..."_s;
        return events.join(u' ');
    }
    QString run(quint16 port, int timeOut = 30) {
        commun(port, timeOut);
        return wait();
    }

    QString field(int number) {
        QString text = QStringLiteral("left over");
        call(22, {qint16(number), &text});
        return text;
    }

    Component component;
    QStringList events;

  private:
    QEventLoop loop_;
};

}  // namespace test
