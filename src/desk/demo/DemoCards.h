#pragma once

#include <QString>
#include <QStringView>
#include <cstdint>
#include <span>

/// Cards of the demonstration, for the desk, for a host that knows them and for tools that swipe them. They
/// are nobody's.
namespace desk {

struct DemoCard {
    QStringView name;      ///< By which a swipe asks for it.
    QStringView caption;   ///< What is particular about it, in Korean.
    QStringView number;    ///< 16 digits.
    QStringView password;  ///< Four digits.
    std::int64_t balance;  ///< Won; below 0 for an overdrawn account.
    std::int64_t limit;    ///< The most that one payment may take, won.
    bool isKnown;          ///< Whether the demonstration host knows the card.
};

std::span<const DemoCard> demoCards();

/// The card of that name, or null.
const DemoCard* findDemoCard(QStringView name);

/// Track 2 as a reader gives it: sentinels and up to 37 characters between them.
QString track2(const DemoCard& card);
/// Track 3 as a reader gives it: sentinels and 104 characters between them.
QString track3(const DemoCard& card);

/// Puts the card through this process's reader; false, and nothing is read, while that takes none. May return
/// late: the announcement opens the password keypad.
bool swipe(const DemoCard& card);

}  // namespace desk
