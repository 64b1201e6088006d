#include "desk/demo/DemoCards.h"

#include <QStringBuilder>
#include <algorithm>

#include "platform/SecureBytes.h"
#include "platform/Wipe.h"
#include "platform/termdev/CardReader.h"

namespace desk {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qsizetype kTrack3Characters = 104;

constexpr DemoCard kCards[] = {
    {u"good", u"정상 카드", u"9409110000000001", u"1234", 100'000'000, 30'000'000, true},
    {u"second", u"다른 카드", u"9409110000000002", u"4321", 10'000'000, 5'000'000, true},
    {u"poor", u"잔액 1,000원", u"9409110000000003", u"1111", 1'000, 5'000'000, true},
    {u"limited", u"한도 10,000원", u"9409110000000004", u"2222", 10'000'000, 10'000, true},
    {u"overdrawn", u"잔액 마이너스", u"9409110000000005", u"3333", -1'500'000, 500'000, true},
    {u"unknown", u"미등록 카드", u"9409110000000009", u"9999", 0, 0, false},
};

platform::SecureBytes bytesOf(QString track) {
    platform::SecureBytes bytes(size_t(track.size()));
    std::ranges::transform(track, bytes.begin(),
                           [](QChar c) { return static_cast<unsigned char>(c.unicode()); });
    platform::wipe(&track);
    return bytes;
}

QByteArrayView view(const platform::SecureBytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())};
}

}  // namespace

std::span<const DemoCard> demoCards() {
    return kCards;
}

const DemoCard* findDemoCard(QStringView name) {
    const auto* const found = std::ranges::find(kCards, name, &DemoCard::name);
    return found == std::end(kCards) ? nullptr : found;
}

QString track2(const DemoCard& card) {
    return u';' % card.number % u"=99121010000000000?"_s;
}

QString track3(const DemoCard& card) {
    // Format code 01, the number, and what an issuer would fill: here digits that differ from card to card.
    QString data = u"01"_s % card.number % u"=410"_s;
    while (data.size() < kTrack3Characters) data += card.number;
    return u';' % data.first(kTrack3Characters) % u'?';
}

bool swipe(const DemoCard& card) {
    return platform::termdev::CardReader::instance().swipe(view(bytesOf(track2(card))),
                                                           view(bytesOf(track3(card))));
}

}  // namespace desk
