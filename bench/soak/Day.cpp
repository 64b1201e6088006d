#include "Day.h"

#include <array>
#include <map>
#include <vector>

#include "rovanactl/demo/Parts.h"

namespace soak {
namespace {

using namespace Qt::Literals::StringLiterals;
using admin::demo::Product;

/// From control 1035 on, the last one of any other names.
constexpr QStringView kConsonants = u"ㄱㄴㄷㄹㅁㅂㅅㅇㅈㅊㅋㅌㅍㅎ";

/// What was keyed; money in won.
enum Figure { Slips, Lines, Boxes, Bottles, CratesBack, BottlesBack, EarlierPaid, Approvals };
using Figures = std::array<qint64, Approvals + 1>;

class Writer {
  public:
    Writer(int number, const admin::demo::Data& data)
        : data_(data), date_(dateOf(number)), chance_(quint64(number) + 1), next_(number * 31) {
        for (const Product& product : data.products) {
            if (product.isOnSale()) goods_.push_back(&product);
            if (!product.mark.isEmpty() && product.bottleDeposit > 0) containers_.push_back(&product);
        }
        takesBack_ = userOf(number) == u"C";
        say(u"clock %1 09:05\nhost \"--clock \\\"%1 09:05\\\"\""_s.arg(date_));
        // The salesman of the day before leaves the menu.
        if (number > 0) say(u"press 102.1003"_s);
        if (number % 5 == 1) say(u"login A 9999\nanswer ok"_s);
        say(takesBack_ ? u"login C 3333\nimport"_s : u"login A 1111\nimport"_s);
        for (int visit = 0; visit < kVisitsADay; ++visit) this->visit(visit);
        say(u"clock %1 18:30\npress 102.1053"_s.arg(date_));
        for (int report = 1004; report <= 1008; ++report) say(u"press 457.%1 458.1003"_s.arg(report));
        say(u"press 457.1022\nexpect shown 457.1022\npress 457.1023\nexpect cell 458.1054 1 1 [일치]\n"
            "press 458.1000 458.1003 457.1024\nkeys 100000 ok\npress 458.1000 458.1003 457.1003"_s);
        check();
    }

    const QString& text() const { return text_; }

  private:
    struct Slip {
        QString code;  ///< Of the line that was keyed last, as the counts.
        int boxes = 0;
        int bottles = 0;
        Figures keyed{};
    };

    void say(const QString& lines) { text_ += lines + u'\n'; }

    void visit(int visit) {
        if (visit % 25 == 24) {
            say(u"press 102.1045 150.1002 "_s + customer());
            payEarlier(&others_);
            say(u"press 450.1003 142.1006 142.1003"_s);
        } else if (visit % 25 == 12) {
            say(u"press 102.1055 %1press 104.1126\nkeys 5000 ok\npress 104.1003\nswipe second 4321 ok\n"
                "expect sql \"SELECT COUNT(*) FROM MTMOK WHERE DDate = '%2' AND Gubun = '단순결제'\" %3\n"
                "press 449.1003"_s.arg(customer(), date_, QString::number(++others_[Approvals])));
        } else if (visit % 25 == 18) {
            say(u"press 102.1046 391.1002 "_s + customer());
            takeBack(&others_);
            say(u"press 394.1003 450.1003 142.1005 142.1003"_s);
        } else {
            sell(visit);
            // An approved slip is left as it was paid for.
            if (slips_.rbegin()->second.keyed[Approvals] > 0) return say(u"expect screen 102"_s);
            if (visit % 8 == 7) reload();
            if (visit % 9 == 8) {
                say(u"press 102.1044\nrow 132.1054 =%1\npress 132.1001\nanswer ok\nanswer ok\npress 132.1003"_s
                        .arg(slips_.rbegin()->first));
                slips_.erase(--slips_.end());
            }
        }
        if (visit % 7 == 0) say(u"press 102.1045 150.1003 102.1046 391.1003"_s);
        if (visit % 50 == 40)
            say(u"press 102.1047\nswipe good 1234 ok\nexpect rows 449.1054 2\npress 449.1003 102.1054\n"
                "answer no\npress 449.1003"_s);
        say(u"expect screen 102"_s);
    }

    /// From the consonants to the work screen of the next of A's customers.
    QString customer() {
        const admin::demo::Customer* next = nullptr;
        while (next == nullptr || next->user != u"A")
            next = &data_.customers[std::size_t(next_++) % data_.customers.size()];
        qsizetype key = kConsonants.indexOf(admin::demo::seekKey(next->name));
        if (key < 0) key = kConsonants.size();
        return u"143.%1 144.1001\nrow2 144.1054 =%2\n"_s.arg(1035 + key).arg(next->code);
    }

    void sell(int visit) {
        Slip slip;
        say(u"press 102.1044 132.1002 "_s + customer());
        slip.keyed[Slips] = 1;
        slip.keyed[Lines] = chance_.between(1, 4);
        // Goods beside each other are different ones.
        const int first = chance_.between(0, int(goods_.size()) - 1);
        for (int line = 0; line < slip.keyed[Lines]; ++line) {
            slip.code = goods_[std::size_t(first + line) % goods_.size()]->code;
            keyCounts(&slip, u"press 134.1010\nkeys %1 ok %2 next %3 ok"_s);
        }
        // Where the price comes from.
        if (visit % 11 == 0) say(u"row 134.1054 1\npress 134.1082\nanswer ok"_s);
        say(u"press 134.1003"_s);
        if (takesBack_ && visit % 3 != 0) takeBack(&slip.keyed);
        if (takesBack_) say(visit % 6 == 1 ? u"press 394.1091 395.1000 394.1003"_s : u"press 394.1003"_s);
        if (visit % 10 == 3) {
            slip.keyed[Approvals] = 1;
            say(u"press 450.1097 450.1003"_s);
            // A card without money first.
            if (visit % 50 == 3) say(u"swipe poor 1111 ok\nanswer ok"_s);
            say(u"swipe good 1234 ok\nanswer no\npress 449.1003"_s);
        } else {
            say(visit % 4 == 1 ? u"press 450.1083"_s : u"press 450.1098"_s);
            if (visit % 6 == 2) payEarlier(&slip.keyed);
            say(u"press 450.1003 449.1003 142.%1 142.1003"_s.arg(visit % 5 == 0 ? 1007 : 1004));
        }
        // A number is given again when its slip was deleted and was the highest.
        slips_[slips_.empty() ? 5001 : slips_.rbegin()->first + 1] = slip;
    }

    void keyCounts(Slip* slip, const QString& keys) {
        slip->boxes = chance_.between(1, 6);
        slip->bottles = chance_.between(0, 5);
        slip->keyed[Boxes] += slip->boxes;
        slip->keyed[Bottles] += slip->bottles;
        say(keys.arg(slip->code).arg(slip->boxes).arg(slip->bottles));
    }

    void takeBack(Figures* keyed) {
        const Product& product = *chance_.oneOf(containers_);
        const int full = chance_.between(0, 1);
        const int bottles = chance_.between(1, 9);
        (*keyed)[CratesBack] += full;
        (*keyed)[BottlesBack] += bottles + full * product.bottlesPerBox;
        say(u"press 394.1000\nrow2 397.1090 =%1\nkeys %2 next next %3 ok"_s.arg(product.code)
                .arg(bottles)
                .arg(full));
    }

    void payEarlier(Figures* keyed) {
        const int amount = 1000 * chance_.between(1, 50);
        (*keyed)[EarlierPaid] += amount;
        say(u"press 450.1013\nkeys %1 ok"_s.arg(amount));
    }

    /// Opens the last slip again, changes a line and saves it.
    void reload() {
        auto& [junNo, slip] = *slips_.rbegin();
        const int boxes = slip.boxes;
        const int bottles = slip.bottles;
        slip.keyed[Boxes] -= boxes;
        slip.keyed[Bottles] -= bottles;
        say(u"press 102.1044\nrow2 132.1054 =%1"_s.arg(junNo));
        keyCounts(&slip, u"row2 134.1054 =%1\nkeys again %2 next again %3 ok\npress 134.1137"_s);
        // Its collection follows.
        if (slip.boxes != boxes || slip.bottles != bottles) say(u"answer ok"_s);
        say(u"press 134.1001 132.1003"_s);
    }

    void check() {
        Figures keyed = others_;
        for (const auto& [junNo, slip] : slips_) {
            for (std::size_t i = 0; i < keyed.size(); ++i) keyed[i] += slip.keyed[i];
        }
        QStringList figures;
        for (const qint64 figure : keyed) figures << QString::number(figure);
        say(u"expect sql \"SELECT COUNT(DISTINCT JunNo)||' '||COUNT(PCode)||' '||Boxes||' '||Bottles||' "
            u"'||CratesBack"
            "||' '||BottlesBack||' '||EarlierPaid||' '||Approvals FROM DAYCLOSE JOIN MTM USING (DDate, "
            "UserID) "
            "WHERE DDate = '%1'\" \"%2\""_s.arg(date_, figures.join(u' ')));
        qint64 delivered = 0;
        for (const auto& each : data_.customers) delivered += each.receivable;
        say(u"expect sql \"SELECT SUM(CJMoney) - (SELECT "
            u"SUM(MMoney+YMoney+GMoney-InMoney-MisuInMoney-YDMoney) "
            "FROM MTMOK WHERE DDate = '%1' AND Gubun <> '단순결제') FROM GARAE\" %2"_s.arg(date_)
                .arg(delivered));
    }

    const admin::demo::Data& data_;
    QString date_;
    admin::demo::Chance chance_;
    int next_;
    bool takesBack_ = false;  ///< The salesman's sales go on to the containers.
    std::vector<const Product*> goods_;
    std::vector<const Product*> containers_;
    std::map<int, Slip> slips_;  ///< By number.
    Figures others_{};           ///< Of visits without a sale.
    QString text_;
};

}  // namespace

QString writeDay(int number, const admin::demo::Data& data) {
    return Writer(number, data).text();
}

}  // namespace soak
