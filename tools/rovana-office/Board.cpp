#include "rovana-office/Board.h"

#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

/// Lines of a list on the page; a day that went wrong altogether would make it endless.
constexpr qsizetype kLines = 200;

class Reader {
  public:
    Reader(pqxx::work& work, const QString& day) : work_(work), day_(plain(day)) {}

    /// Runs a SELECT with the day as $1, which the month's partition is found by.
    pqxx::result rows(const std::string& select) { return work_.exec_params(select, day_); }

    BoardList list(const QString& title, const QStringList& columns, const std::string& select) {
        BoardList list{title, columns, {}};
        for (const pqxx::row& row : rows(select)) {
            if (list.lines.size() == kLines) {
                ++list.more;
                continue;
            }
            list.lines.append(QStringList());
            for (const pqxx::field& field : row) list.lines.last() << textOf(field);
        }
        return list;
    }

  private:
    pqxx::work& work_;
    std::string day_;
};

Won won(const pqxx::field& field) {
    return platform::parseWon(textOf(field));
}

QList<BoardSalesman> readSalesmen(Reader& reader) {
    QList<BoardSalesman> salesmen;
    for (const pqxx::row& row :
         reader.rows("SELECT s.terminal, s.userid, s.username, s.slips, s.sales, s.cash, s.card, s.unpaid, "
                     "s.earlier_paid, "
                     "s.recovery, s.crates_back, s.bottles_back, substr(s.closed_at, 12, 5), s.over, "
                     "to_char(t.sent_at, 'MM-DD HH24:MI') FROM report.salesman_day AS s "
                     "LEFT JOIN report.terminal_day AS t ON t.month = s.month AND t.terminal = s.terminal "
                     "AND t.day = s.day "
                     "WHERE s.month = office.month($1) AND s.day = $1 "
                     "ORDER BY s.sales DESC, length(s.terminal), s.terminal, s.userid")) {
        BoardSalesman each;
        each.terminal = textOf(row[0]);
        each.userId = textOf(row[1]);
        each.name = textOf(row[2]);
        each.slips = won(row[3]).value();
        each.sales = won(row[4]);
        each.cash = won(row[5]);
        each.card = won(row[6]);
        each.unpaid = won(row[7]);
        each.earlierPaid = won(row[8]);
        each.recovery = won(row[9]);
        each.cratesBack = won(row[10]).value();
        each.bottlesBack = won(row[11]).value();
        each.closedAt = textOf(row[12]);
        if (!row[13].is_null()) each.over = won(row[13]);
        each.sentAt = textOf(row[14]);
        salesmen << each;
    }
    return salesmen;
}

QString twoDigits(int hour) {
    return QString::number(hour).rightJustified(2, u'0');
}

void readHours(Reader& reader, Board* board) {
    for (const pqxx::row& row :
         reader.rows("SELECT hour, sum(slips), sum(total) FROM report.sale_hour "
                     "WHERE month = office.month($1) AND day = $1 GROUP BY hour ORDER BY hour")) {
        if (row[0].is_null()) {
            board->untimed += won(row[2]);
            continue;
        }
        const int hour = row[0].as<int>();
        QList<BoardBar>& hours = board->hours;
        while (!hours.isEmpty() && hours.last().label.toInt() + 1 < hour)
            hours.append(BoardBar{twoDigits(hours.last().label.toInt() + 1), {}, {}});
        hours.append(BoardBar{twoDigits(hour), u"전표 %1장"_s.arg(textOf(row[1])), won(row[2])});
    }
}

QList<BoardBar> readProducts(Reader& reader) {
    constexpr int kProducts = 12;
    QList<BoardBar> products;
    BoardBar others{{}, {}, {}};
    int more = 0;
    for (const pqxx::row& row : reader.rows(
             "SELECT pcode, max(pname), sum(boxes), sum(bottles), sum(amount) FROM report.sale_product "
             "WHERE month = office.month($1) AND day = $1 GROUP BY pcode "
             "ORDER BY sum(amount) DESC, pcode")) {
        if (products.size() == kProducts) {
            ++more;
            others.amount += won(row[4]);
            continue;
        }
        const QString name = textOf(row[1]).trimmed();
        products.append({name.isEmpty() ? textOf(row[0]) : name,
                         u"%1상자 %2본"_s.arg(textOf(row[2]), textOf(row[3])), won(row[4])});
    }
    others.label = u"그 밖의 상품 %1가지"_s.arg(more);
    if (more > 0) products << others;
    return products;
}

BoardList readSilent(Reader& reader) {
    return reader.list(
        u"보내지 않은 단말기"_s, {u"단말기"_s, u"영업사원"_s, u"마지막 전송"_s, u"마지막 접속"_s},
        "SELECT t.terminal, t.users, coalesce(to_char(t.last_sent, 'YYYY-MM-DD HH24:MI'), '없음'), "
        "coalesce(to_char(t.last_seen, 'YYYY-MM-DD HH24:MI'), '없음') FROM report.terminal AS t "
        "WHERE t.is_let_in AND NOT EXISTS (SELECT FROM report.terminal_day AS d WHERE d.month = "
        "office.month($1) "
        "AND d.day = $1 AND d.terminal = t.terminal) ORDER BY length(t.terminal), t.terminal");
}

BoardList readDisagreements(Reader& reader) {
    return reader.list(
        u"점검"_s, {u"단말기"_s, u"사원"_s, u"전표"_s, u"거래처"_s, u"내용"_s, u"금액"_s},
        "SELECT terminal, userid, number, gname, reason, to_char(amount, 'FM999,999,999,999,999,990') "
        "FROM report.disagreements($1::date, $1::date)");
}

QList<BoardList> readRemarks(Reader& reader) {
    const std::string kind =
        "CASE kind WHEN 'sale' THEN '판매전표' WHEN 'containers' THEN '용공전표' WHEN 'collection' THEN "
        "'입금전표' WHEN 'payment' THEN '카드결제' WHEN 'prints' THEN '인쇄' WHEN 'deletion' THEN '삭제' "
        "ELSE '마감' END";
    QList<BoardList> lists{
        reader.list(
            u"마감 뒤에 바뀐 것"_s,
            {u"단말기"_s, u"사원"_s, u"전표"_s, u"종류"_s, u"변경"_s, u"알게 된 때"_s},
            "SELECT terminal, userid, number, " + kind +
                ", CASE change WHEN 'changed' THEN '수정' WHEN 'deleted' THEN '삭제' ELSE '추가' END, "
                "to_char(seen_at, 'YYYY-MM-DD HH24:MI') FROM report.change_after_close "
                "WHERE month = office.month($1) AND day = $1 ORDER BY length(terminal), terminal, number"),
        reader.list(u"두 단말기가 함께 쓴 번호"_s, {u"사원"_s, u"전표"_s, u"종류"_s, u"단말기"_s},
                    "SELECT userid, number, " + kind +
                        ", array_to_string(terminals, ', ') FROM report.number_conflict "
                        "WHERE month = office.month($1) AND day = $1 ORDER BY userid, number"),
        reader.list(
            u"보낸 뒤 단말기에서 사라진 것"_s, {u"단말기"_s, u"사원"_s, u"전표"_s, u"종류"_s, u"보낸 때"_s},
            "SELECT terminal, userid, number, " + kind +
                ", to_char(sent_at, 'YYYY-MM-DD HH24:MI') FROM report.missing "
                "WHERE month = office.month($1) AND day = $1 ORDER BY length(terminal), terminal, number")};
    lists.removeIf([](const BoardList& list) { return list.lines.isEmpty(); });
    return lists;
}

}  // namespace

Board readBoard(pqxx::connection& connection, const QString& day) {
    pqxx::work work(connection);
    work.exec("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ READ ONLY");
    Reader reader(work, day);
    Board board;
    board.day = day;
    board.madeAt = textOf(work.exec("SELECT to_char(now(), 'YYYY-MM-DD HH24:MI')")[0][0]);
    board.salesmen = readSalesmen(reader);
    board.silent = readSilent(reader);
    board.disagreements = readDisagreements(reader);
    board.remarks = readRemarks(reader);
    readHours(reader, &board);
    board.products = readProducts(reader);
    return board;
}

}  // namespace office
