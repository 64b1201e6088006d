#include "desk/demo/DemoCards.h"
#include "platform/Device.h"
#include "platform/termdev/SwipeSocket.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::termdev::SwipeSocket;

QString knownCards() {
    QStringList names;
    for (const desk::DemoCard& card : desk::demoCards()) names += card.name.toString();
    return names.join(u", "_s);
}

Outcome swipe(const Invocation& call) {
    const QString& name = call.arguments.constFirst();
    const desk::DemoCard* card = desk::findDemoCard(name);
    if (card == nullptr) return failure(u"there is no card \"%1\"; there are %2"_s.arg(name, knownCards()));
    switch (SwipeSocket::send(desk::track2(*card).toLatin1(), desk::track3(*card).toLatin1())) {
        case SwipeSocket::Answer::Taken:
            call.out << u"the terminal read the card; its password is "_s << card->password << u'\n';
            return {};
        case SwipeSocket::Answer::NotReading:
            return failure(u"the terminal reads no card now; open the card screen"_s);
        case SwipeSocket::Answer::NoAnswer:
            return failure(u"the terminal on %1 does not answer; it may be busy or stopped"_s.arg(
                platform::device::folder()));
        case SwipeSocket::Answer::NoTerminal: break;
    }
    return failure(u"no terminal runs on %1"_s.arg(platform::device::folder()));
}

}  // namespace

constinit const Command kSwipeCommand{u"swipe",
                                      u"CARD",
                                      u"puts a demonstration card through a running terminal",
                                      u"The cards are good, second, poor, limited, overdrawn and unknown.",
                                      1,
                                      1,
                                      nullptr,
                                      swipe};

}  // namespace admin
