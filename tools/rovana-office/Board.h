#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>
#include <pqxx/pqxx>

#include "platform/Won.h"

/// A day of all terminals in figures, as a manager wants to see it.
namespace office {

/// What one salesman has done with one terminal.
struct BoardSalesman {
    QString terminal;
    QString userId;
    QString name;  ///< Empty when the terminal has not told it.
    qint64 slips = 0;
    platform::Won sales;
    platform::Won cash;
    platform::Won card;
    platform::Won unpaid;
    platform::Won earlierPaid;
    platform::Won recovery;  ///< Worth of the containers set against the total.
    qint64 cratesBack = 0;
    qint64 bottlesBack = 0;
    QString closedAt;                   ///< "HH:mm"; empty before the close.
    std::optional<platform::Won> over;  ///< Counted above expected cash; below 0 what is short.
    QString sentAt;                     ///< "MM-dd HH:mm" of the last that came of the day.
};

struct BoardBar {
    QString label;
    QString note;  ///< What is told beside the amount.
    platform::Won amount;
};

/// A list with a heading of its own; every line has as many texts as there are columns.
struct BoardList {
    QString title;
    QStringList columns;
    QList<QStringList> lines;
    qsizetype more = 0;  ///< Lines that were left out.
};

struct Board {
    QString day;     ///< "yyyy-MM-dd".
    QString madeAt;  ///< "yyyy-MM-dd HH:mm" by the server's clock.
    QList<BoardSalesman> salesmen;
    BoardList silent;          ///< Terminals that have sent nothing of the day.
    BoardList disagreements;   ///< What 점검 names.
    QList<BoardList> remarks;  ///< Changes after closes, numbers used twice, slips that a terminal has lost.
    QList<BoardBar> hours;     ///< From the first to the last hour with sales, without a gap.
    platform::Won untimed;     ///< Sales of slips without a time.
    QList<BoardBar> products;  ///< The strongest, then all others as one.
};

/// Reads the day, "yyyy-MM-dd", from one picture of the database.
Board readBoard(pqxx::connection& connection, const QString& day);

/// The page: HTML in Korean that needs nothing besides itself, no script either.
QByteArray boardPage(const Board& board);

/// The salesmen's figures and their sums as lines of text.
QString boardText(const Board& board);

/// An amount as it stands on the page, "-1,234".
QString boardAmount(platform::Won amount);

/// Vertical bars beside each other, and horizontal ones below each other, as an <svg>; empty without bars.
/// Their texts keep their size at any width.
QString columnChart(const QList<BoardBar>& bars, const QString& title);
QString rowChart(const QList<BoardBar>& bars, const QString& title);
/// In how many won the figures above vertical bars are.
qint64 columnUnit(const QList<BoardBar>& bars);

}  // namespace office
