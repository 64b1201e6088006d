#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

#include "Generator.h"
#include "Rows.h"
#include "Screens.h"
#include "app/Session.h"
#include "books/TransactionRecord.h"
#include "common/Enrolment.h"
#include "desk/demo/DemoCards.h"
#include "platform/adoce/DatabaseFile.h"
#include "platform/message/SavedValues.h"
#include "rovana-cardhost/Server.h"
#include "rovana-play/Pilot.h"
#include "rovana-play/Reach.h"
#include "support/PrintQt.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

/// The same random days by a hand on the real screens. Each step is made on the terminal without widgets,
/// which the judge watches, and then on the screens: both must come to the same tables and the same dialog.
namespace days {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kUsualActions = 400;
constexpr int kActionsOfDay = 100;
constexpr unsigned kUsualSeed = 20261121;
/// The journal numbers its payments by chance: they are told by their order.
constexpr const char* kOrdinal =
    "printf('%032d', (SELECT count(*) FROM PAYJOURNAL AS other WHERE other.State <> 'prepared' AND "
    "other.rowid <= sent.rowid))";

/// What is pressed for a step, after the row is chosen and before the keypad; "?" where it may be disabled.
/// Nothing where the step is more than that.
constexpr const char* kPresses[] = {
    // The menu.
    "press 102.1044", "press 102.1045", "press 102.1046", "press 102.1055", "press 102.1053 457.1024",
    nullptr, "press 102.1003", "press 102.1003", "!kill", nullptr, nullptr,
    // The lists.
    "press 132.1002", "press 132.1000", "press 132.1004", "press 132.1001", "press 150.1002",
    "press 150.1000", "press 150.1001", "press 391.1002", "press 391.1000", "press 391.1001",
    // The sales slip.
    "press 134.1010", nullptr, nullptr, "press 134.1002", "press 134.1137", "press 134.1003",
    // The container slip.
    "press 394.1000", nullptr, "press 394.1092", "press 394.1002", "press 394.1003",
    // The collection.
    "?press 450.1092", "?press 450.1093", "?press 450.1094", "?press 450.1104", "?press 450.1096",
    "?press 450.1013", "?press 450.1097", "?press 450.1098", "?press 450.1083", "press 450.1002",
    "press 450.1003",
    // The card, the simple payment.
    nullptr, "press 449.1003", "?press 449.1018", nullptr, "press 104.1003",
    // 이전.
    nullptr};
static_assert(std::size(kPresses) == std::size_t(Tap::Count));

QString keys(const QStringList& fields) {
    QStringList keyed;
    for (const QString& field : fields)
        keyed << u"again "_s + (field.startsWith(u'-') ? field.mid(1) + u'-' : field);
    return u"keys "_s + keyed.join(u" next "_s) + u" ok"_s;
}

/// The page with its approvals told by their payments: hosts number them each in their own way.
Page comparable(Page page) {
    std::map<std::string, std::string> payments;
    for (Payment& payment : page.payments) {
        if (payment.approval.empty()) continue;
        payments[payment.approval] = payment.message;
        payment.approval = payment.message;
    }
    for (Collection& row : page.collections) {
        const auto paid = payments.find(row.approval);
        if (paid != payments.end()) row.approval = paid->second;
    }
    std::ranges::sort(page.collections);
    return page;
}

std::string differences(const Page& want, const Page& is) {
    std::ostringstream text;
    text << difference(want.goods, is.goods) << difference(want.empties, is.empties)
         << difference(want.collections, is.collections);
    for (const Page* page : {&want, &is}) {
        text << (page == &want ? "\nmust be:" : "\nis:");
        for (const Payment& payment : page->payments)
            text << ' ' << words(payment.visit) << ' ' << payment.state << ' ' << payment.amount << ';';
        for (const auto& [customer, debt] : page->debt) text << ' ' << customer << ' ' << debt << ';';
    }
    return text.str();
}

/// The card host in this process. Each step of the hand has one of its own, that does with the requests what
/// the step says.
class ScriptedHost {
  public:
    /// On the device of the process.
    ScriptedHost() {
        using namespace platform::message;
        QString error;
        ledger_.emplace(folder_.path(), *cardhost::openKeys(folder_.path(), &error));
        ledger_->putCard(desk::track3(*desk::findDemoCard(u"good")), u"1234", cardhost::kLargestAmount,
                         cardhost::kLargestAmount);
        start({});
        SigningKey own;
        EXPECT_TRUE(writeHostKey(ledger_->keys().box.publicKey) && makeSigningKey(&own) == kDone);
        EXPECT_TRUE(cardhost::enrolTerminal(folder_.path(), u"1"_s, own.publicKey));
        EXPECT_TRUE(writeSavedValues({{kTerminalKey.toString(), u"1"_s},
                                      {kHostAddressKey.toString(), u"127000000001"_s},
                                      {kHostPortKey.toString(), QString::number(port_)}}));
    }

    void start(const std::vector<Fate>& fates) {
        using cardhost::Misbehaviour;
        static const std::map<Fate, Misbehaviour> faults{{Fate::Refused, Misbehaviour::Refuse},
                                                         {Fate::LostRequest, Misbehaviour::Close},
                                                         {Fate::LostAnswer, Misbehaviour::ApproveThenClose},
                                                         {Fate::KilledBefore, Misbehaviour::Silent},
                                                         {Fate::KilledAfter, Misbehaviour::ApproveThenClose}};
        QList<cardhost::Fault> wrong;
        for (std::size_t i = 0; i < fates.size(); ++i) {
            const auto fault = faults.find(fates[i]);
            if (fault != faults.end()) wrong << cardhost::Fault{fault->second, int(i) + 1};
        }
        unplug();
        server_ = std::make_unique<cardhost::Server>(*ledger_, folder_.path(), wrong);
        EXPECT_TRUE(server_->listen(port_)) << server_->errorText().toStdString();
        port_ = server_->port();
    }
    void unplug() { server_.reset(); }

  private:
    QTemporaryDir folder_;
    std::optional<cardhost::Ledger> ledger_;
    std::unique_ptr<cardhost::Server> server_;
    quint16 port_ = 0;
};

class ScreenDays : public testing::Test {
  protected:
    ScreenDays() {
        registerScreens();
        terminal_.setVisible(true);
        device_.use();
        host_.emplace();
    }

    /// Plays a day of so many steps.
    void play(unsigned seed, int actions) {
        Judge judge(vatModes());
        Page page;
        model_.begin([&](const Event& event) {
            Page after = model_.page();
            for (const Finding& finding : judge.judge(page, event, after))
                fail(std::string(words(finding.rule)) + ": " + finding.what);
            page = std::move(after);
        });
        page = model_.page();
        device_.use();
        device_.clear();
        generator_.emplace(seed);
        left_ = actions;
        isOver_ = false;
        story_.clear();
        lines_ = login();
        pilot::Options options;
        options.more = [this] { return next(); };
        pilot::Pilot pilot({}, options);
        pilot.start();
        while (!isOver_ && pilot.failure().isEmpty()) {
            ui::runScreen(102);
            if (isDying_) revive();
        }
        if (!pilot.finish()) fail(pilot.failure().toStdString());
    }

    int done_ = 0;

  private:
    void fail(const std::string& what) {
        isOver_ = true;
        ADD_FAILURE() << what << "\nafter\n" << story_;
    }

    QStringList login() const {
        return {u"type 102.1004 "_s + model_.date(), u"login %1 1"_s.arg(model_.user())};
    }

    static QList<pilot::Step> steps(const QString& line) {
        const pilot::Script script = pilot::parseScript(line);
        EXPECT_TRUE(script.errors.isEmpty()) << line.toStdString();
        return script.steps;
    }
    /// Looks again later.
    static QList<pilot::Step> wait() { return steps(u"tear"_s); }

    /// What the finger does now: it answers what is asked and leaves what only informs, goes on with the
    /// step, or begins another.
    QList<pilot::Step> next() {
        const ui::Screen* front = terminal_.top();
        if (front != nullptr && isToDie()) die();
        if (isDying_) terminal_.closeAll();
        if (isDying_ || front == nullptr || front->id() == 459 || isPaying()) return wait();
        if (const ui::MessageBox* message = pilot::openMessage()) return steps(answer(*message));
        if (front->id() == 142 || front->id() == 458 || front->id() == 460) return steps(u"key Esc"_s);
        if (!lines_.isEmpty()) return step(lines_.takeFirst());
        compare();
        if (isOver_ || left_-- == 0) {
            isOver_ = true;
            return {};
        }
        act(generator_->next(model_, false));
        return wait();
    }

    QString answer(const ui::MessageBox& message) const {
        const auto& answers = model_.hand().answers;
        const auto found = answers.find(message.caption());
        // Neither is printed nor gone on with what was not saved.
        const bool isDeclined =
            message.caption().endsWith(u"명세서출력"_s) || message.text().endsWith(u"계속할까요?"_s);
        const bool isYes = found != answers.end() ? found->second : !isDeclined;
        return isYes ? u"answer yes"_s : u"answer no"_s;
    }

    QList<pilot::Step> step(QString line) {
        if (line == u"!kill") {
            die();
        } else if (line == u"!unplug") {
            host_->unplug();
        } else if (line.startsWith(u'?')) {
            line.remove(0, 1);
            const QList<pilot::Step> wanted = steps(line);
            return pilot::reachControl(wanted.first().at).control ? wanted : wait();
        } else {
            return steps(line);
        }
        return wait();
    }

    /// True while an exchange of the card screen is under way.
    bool isPaying() const {
        const Page page = device_.page();
        return terminal_.top()->id() == 449 &&
               std::ranges::any_of(page.payments, [](const Payment& each) { return each.state == "sent"; });
    }

    /// True when the step kills the terminal now: while the request is under way, or after the answer that
    /// did not come.
    bool isToDie() const {
        if (kill_ == Fate::KilledBefore) return isPaying();
        const ui::MessageBox* message = pilot::openMessage();
        return kill_ == Fate::KilledAfter && message != nullptr && message->text().startsWith(u"한번더"_s);
    }

    /// From here on nothing is kept any more.
    void die() {
        Device::faults().arm(test::StorageFault::FullDisk, 0, false);
        isDying_ = true;
        kill_.reset();
    }
    void revive() {
        Device::faults().disarm();
        platform::adoce::DatabaseFile::forgetAll();
        books::resetTransactionRecord();
        app::session() = {};
        isDying_ = false;
        lines_ = login();
        // The payment's request may have left or not; what the login asks comes after it.
        std::vector<Fate> fates = model_.hand().host;
        if (const auto paid = model_.hand().paid)
            fates.erase(fates.begin(), std::ranges::find(fates, *paid) + 1);
        if (!fates.empty()) host_->start(fates);
    }

    void compare() {
        const Page want = comparable(model_.page());
        const Page is = comparable(device_.page(kOrdinal));
        const int front = terminal_.top()->id();
        if (front != model_.dialog())
            fail("must be at dialog " + std::to_string(model_.dialog()) + ", is at " + std::to_string(front));
        if (want != is) fail(differences(want, is));
    }

    void act(const Action& action) {
        const int dialog = model_.dialog();
        const std::string said = model_.tap(action);
        ++done_;
        std::ostringstream line;
        line << name(action.tap) << " | " << action.pick << ' ' << action.amount << " | " << said << '\n';
        story_ += line.str();
        device_.use();
        const Hand& hand = model_.hand();
        if (hand.order) device_.addOrder(*hand.order);
        kill_ = hand.paid;
        if (!hand.host.empty()) host_->start(hand.host);
        lines_ = linesOf(action, dialog);
    }

    /// The row that the step is about, and its button.
    QStringList press(const Action& action, int dialog) const {
        const int row = model_.hand().row;
        const Tap tap = action.tap;
        // Twice, or once and its button.
        const bool isOpened =
            row > 0 && action.pick % 2 == 0 && (tap == Tap::OpenSale || tap == Tap::OpenEmpties);
        const bool isTwice = isOpened || tap == Tap::ChangeGoods || tap == Tap::ChangeReturn;
        QStringList lines;
        if (row > 0) lines << u"%1 %2.1054 %3"_s.arg(isTwice ? u"row2"_s : u"row"_s).arg(dialog).arg(row);
        if (const char* const button = kPresses[int(tap)]; button != nullptr && !isOpened)
            lines << QString::fromLatin1(button);
        return lines;
    }

    QStringList linesOf(const Action& action, int dialog) const {
        using enum Tap;
        const Hand& hand = model_.hand();
        QStringList lines = press(action, dialog);
        switch (action.tap) {
            case Simple:
                if (!customers().contains(hand.code)) return lines << u"press 143.1003"_s;
                [[fallthrough]];
            case AddSale:
            case AddCollection:
            case AddEmpties:
                // A customer who has a slip already is told so, and the list stays.
                return lines << u"press 143.1035 144.1001"_s << u"row2 144.1054 =%1"_s.arg(hand.code)
                             << u"?press 144.1003"_s;
            case Close: return lines << u"?keys 0 ok"_s << u"press 457.1003"_s;
            case Login:
            case OtherDay: return lines << login();
            case AddGoods: lines << u"keys %1 ok"_s.arg(hand.code); break;
            case EditAmount:
                if (hand.row > 0)
                    lines << u"press 134.%1"_s.arg(std::array{1076, 1090, 1075, 1074}[action.amount % 4]);
                break;
            case DeleteGoods:
            case DeleteReturn:
            case EditReturn:
                if (hand.row == 0) return {};
                break;
            case AddReturn: lines << u"row2 397.1090 =%1"_s.arg(hand.code); break;
            case Swipe:
                if (hand.code.isEmpty()) return {};
                lines << u"swipe good"_s;
                if (hand.paid == Fate::NoLink) lines << u"!unplug"_s;
                break;
            case KeySimple: lines << u"press 104.%1"_s.arg(1125 + action.pick % 5); break;
            case Back: return {u"key Esc"_s};
            default: break;
        }
        if (!hand.keyed.isEmpty()) lines << keys(hand.keyed);
        return lines;
    }

    ui::Terminal terminal_;
    Terminal model_;
    mutable Device device_;
    std::optional<ScriptedHost> host_;
    std::optional<Generator> generator_;
    QStringList lines_;  ///< Of the step at hand.
    std::string story_;
    int left_ = 0;
    bool isOver_ = false;
    std::optional<Fate> kill_;  ///< What may kill the terminal in this step.
    bool isDying_ = false;
};

TEST_F(ScreenDays, AreThoseOfTheRules) {
    const auto number = [](const char* variable, int usual) {
        const char* const value = std::getenv(variable);
        return value != nullptr ? std::atoi(value) : usual;
    };
    const unsigned seed = unsigned(number("ROVANA_TEST_SEED", int(kUsualSeed)));
    const int asked = number("ROVANA_TORTURE_RUNS", kUsualActions);
    std::printf("ROVANA_TEST_SEED=%u\n", seed);
    for (unsigned day = 0; done_ < asked && !HasFailure(); ++day)
        play(seed + day, std::min(kActionsOfDay, asked - done_));
    std::printf("books: %d actions on the screens\n", done_);
}

}  // namespace
}  // namespace days
