#include <QDate>
#include <QHash>
#include <QStringBuilder>
#include <array>

#include "platform/Hangul.h"
#include "rovanactl/demo/Parts.h"

namespace admin::demo {
namespace {

using namespace Qt::Literals::StringLiterals;

/// What shop names begin with, a row for each key of the consonant board. The tense consonants stand with the
/// plain ones, and some names have syllables beyond the 2,350 of the basic character set.
constexpr std::array<std::array<QStringView, 8>, 15> kFronts{{
    {u"가람", u"강나루", u"고향", u"금수레", u"기와집", u"까치", u"꽃담", u"꿀단지"},
    {u"나루터", u"남산골", u"너른마당", u"노을", u"누리", u"늘봄", u"느티나무", u"나들목"},
    {u"다래", u"달빛", u"대나무골", u"똠얌", u"도담", u"두레", u"들꽃", u"뜨락"},
    {u"라온", u"로즈", u"루비", u"리버", u"레몬", u"럭키", u"라일락", u"르네"},
    {u"마당", u"만석", u"명가", u"모란", u"무지개", u"물레방아", u"미소", u"민들레"},
    {u"바다", u"방앗간", u"별빛", u"봄날", u"쀍쀍이", u"버드나무", u"뿌리깊은", u"빨간벽돌"},
    {u"사랑채", u"산마루", u"새벽", u"소나무", u"수라", u"시골", u"쌍둥이", u"싸리골"},
    {u"아리랑", u"어부", u"언덕", u"연못", u"오솔길", u"우물가", u"은하", u"이슬"},
    {u"자작나무", u"장독대", u"정자", u"종로", u"주막", u"진주", u"지평선", u"짱구"},
    {u"참나무", u"채송화", u"천년", u"청사초롱", u"초롱", u"추풍령", u"칠성", u"차오름"},
    {u"카라", u"코스모스", u"콩밭", u"큰나루", u"키다리", u"캠프", u"크로바", u"칸타빌레"},
    {u"타래", u"탑골", u"태양", u"토담", u"통나무", u"튼튼", u"탱자", u"트로이"},
    {u"파도", u"팔각정", u"펲리아", u"포구", u"푸른솔", u"풍년", u"피리", u"편백"},
    {u"하늘", u"한마음", u"향나무", u"호수", u"화로", u"황소", u"흙담", u"희망"},
    {u"7080 ", u"24시 ", u"BAR ", u"OK ", u"1번지 ", u"365 ", u"88 ", u"M "},
}};

struct Trade {
    QStringView name;
    QStringView kind;
};

constexpr std::array kTrades{
    Trade{u"식당", u"일반"},     Trade{u"마트", u"일반"}, Trade{u"슈퍼", u"일반"},
    Trade{u"가든", u"일반"},     Trade{u"갈비", u"일반"}, Trade{u"횟집", u"일반"},
    Trade{u"국밥", u"일반"},     Trade{u"치킨", u"일반"}, Trade{u"호프", u"유흥"},
    Trade{u"포차", u"유흥"},     Trade{u"주점", u"유흥"}, Trade{u"단란주점", u"유흥"},
    Trade{u"노래주점", u"유흥"}, Trade{u"카페", u"공용"}, Trade{u"뷔페", u"공용"},
};

constexpr QStringView kSurnames[] = {u"김", u"이", u"박", u"최", u"정", u"강", u"조", u"윤",
                                     u"장", u"임", u"한", u"오", u"서", u"신", u"권", u"황"};
constexpr QStringView kGivenNames[] = {u"영수", u"미경", u"정호", u"순자", u"대성", u"은주",
                                       u"상철", u"현숙", u"기태", u"말순", u"도윤", u"옥희",
                                       u"병철", u"지영", u"창수", u"혜란"};
constexpr QStringView kDistricts[] = {u"가람동", u"누리동", u"도담동", u"새론동", u"여울동"};

QString address(Chance& chance) {
    return u"한들시 %1 %2-%3"_s.arg(chance.oneOf(kDistricts))
        .arg(chance.between(1, 240))
        .arg(chance.between(1, 30));
}

/// Ten digits that belong to nobody: the last is off the number's own check sum.
QString registration(Chance& chance) {
    const QString digits = u"%1%2%3"_s.arg(chance.between(101, 699))
                               .arg(chance.between(1, 79), 2, 10, QChar(u'0'))
                               .arg(chance.between(0, 9999), 4, 10, QChar(u'0'));
    constexpr int kWeights[] = {1, 3, 7, 1, 3, 7, 1, 3, 5};
    int sum = digits.back().digitValue() * 5 / 10;
    for (int i = 0; i < 9; ++i) sum += digits[i].digitValue() * kWeights[i];
    const int check = (10 - sum % 10) % 10;
    return u"%1-%2-%3%4"_s.arg(digits.first(3), digits.mid(3, 2), digits.mid(5)).arg((check + 5) % 10);
}

/// Unused in every area: local numbers do not begin with 0.
QString telephone(Chance& chance) {
    return u"031-0%1-%2"_s.arg(chance.between(10, 99)).arg(chance.between(0, 9999), 4, 10, QChar(u'0'));
}

}  // namespace

QString seekKey(QStringView name) {
    namespace hangul = platform::hangul;
    const char16_t initial = name.isEmpty() ? u'\0' : hangul::initialOf(name.front().unicode());
    return initial == 0 ? u"00"_s : QString(QChar(hangul::plainOf(initial)));
}

std::vector<Customer> inventCustomers(const Options& options, Chance& chance) {
    const QDate today = QDate::fromString(options.date, Qt::ISODate);
    std::vector<Customer> customers;
    customers.reserve(std::size_t(options.customers));
    QHash<QString, int> namesakes;
    for (int i = 0; i < options.customers; ++i) {
        Customer customer;
        const auto& fronts = kFronts[std::size_t(i) % kFronts.size()];
        const Trade trade = chance.oneOf(kTrades);
        customer.code = codeOf(i, options.customers, 1);
        customer.name = fronts[std::size_t(i) / kFronts.size() % fronts.size()] % trade.name;
        if (const int before = namesakes[customer.name]++; before > 0) {
            customer.name += u" %1호점"_s.arg(before + 1);
        }
        customer.kind = trade.kind.toString();
        customer.owner = u"%1%2"_s.arg(chance.oneOf(kSurnames)).arg(chance.oneOf(kGivenNames));
        customer.lastTrade = today.addDays(-chance.between(1, 45)).toString(Qt::ISODate);
        customer.registration = registration(chance);
        customer.address = address(chance);
        customer.telephone = telephone(chance);
        customer.user = chance.inPercent(75) ? u"A"_s : u"B"_s;
        customer.receivable = chance.inPercent(25) ? 0 : chance.between(100, 30'000) * 100;
        const int group = chance.between(1, 100);
        customer.group = group <= 60   ? PriceGroup::Tier
                         : group <= 80 ? PriceGroup::ClassMargin
                                       : PriceGroup::CustomerMargin;
        if (customer.group == PriceGroup::CustomerMargin) customer.margin = chance.between(5, 18);
        customers.push_back(std::move(customer));
    }
    return customers;
}

QList<QStringList> users() {
    const QString none = u""_s;
    return {{u"A"_s, u"1111"_s, u"김영수"_s, u"1"_s, none, none, u"N"_s, u"010-0000-1111"_s, none, none},
            {u"B"_s, u"2222"_s, u"박미경"_s, u"2"_s, u"N"_s, none, u"Y"_s, u"010-0000-2222"_s, none, none},
            {u"C"_s, u"3333"_s, u"이정호"_s, u"3"_s, u"Y"_s, none, u"N"_s, u"010-0000-3333"_s, none, none},
            {u"D"_s, u"4444"_s, u"최은주"_s, u"1"_s, u"Z"_s, u"X"_s, u"N"_s, u"010-0000-4444"_s, none, none}};
}

QStringList distributor() {
    return {u"한들종합주류(주)"_s,
            u"617-81-00008"_s,
            u"한도윤"_s,
            u"031-000-1234"_s,
            u"031-000-1235"_s,
            u"한들시 가람동 17-2"_s,
            u"031-000-1200"_s,
            u"DEMO000001"_s,
            u""_s,
            u""_s};
}

}  // namespace admin::demo
