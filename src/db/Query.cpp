#include "db/Query.h"

#include <QSet>

#include "platform/adoce/DatabaseFile.h"

namespace db {
namespace {

/// More than a screen shows.
constexpr int kPiece = 64;

/// Enough for the largest table of a list, in KiB.
constexpr int kWideRoom = 8192;

/// Watches a long reading. Rows whose order is not that of the file have the same page fetched over and over:
/// they get room to keep it, until the reading ends.
class Room {
  public:
    explicit Room(const CVOConnection& connection)
        : file_(connection.m_pConnection ? connection.m_pConnection->file() : nullptr),
          fetchedBefore_(file_ ? file_->sqlite().pagesFetched() : 0) {}
    ~Room() { narrow(); }
    Q_DISABLE_COPY_MOVE(Room)

    void noteRows(int rows) {
        constexpr int kPagesOfNarrowRoom = 500;
        rows_ += rows;
        if (!file_ || isWide_) return;
        const int fetched = file_->sqlite().pagesFetched() - fetchedBefore_;
        // The first pages are fetched in any case; after those in order, one holds many rows.
        if (fetched < kPagesOfNarrowRoom || fetched < rows_ / 2) return;
        file_->sqlite().setRoom(kWideRoom);
        isWide_ = true;
    }
    void narrow() {
        if (isWide_) file_->sqlite().setRoom(platform::SqliteFile::kRoom);
        isWide_ = false;
    }

  private:
    std::shared_ptr<platform::adoce::DatabaseFile> file_;
    int fetchedBefore_;
    int rows_ = 0;
    bool isWide_ = false;
};

/// A SELECT under way.
class Reader {
  public:
    Reader(const Sql& select, int columns) : recordset_(connection_), columns_(columns) {
        openDatabase(connection_);
        room_.emplace(connection_);
        recordset_.Open(select, kKeyset, kReadOnly);
        underWay().insert(this);
    }
    ~Reader() { underWay().remove(this); }
    Q_DISABLE_COPY_MOVE(Reader)

    static QSet<Reader*>& underWay() {
        static QSet<Reader*> readers;
        return readers;
    }

    bool read(platform::Rows* rows) {
        if (ahead_.columns == 0) return readOn(rows, kPiece);
        // What a change has had read.
        rows->columns = columns_;
        rows->cells += ahead_.cells;
        rows->isComplete = ahead_.isComplete;
        return false;
    }

    void readAhead() {
        if (ahead_.columns != 0) return;
        while (readOn(&ahead_, kPiece)) {
        }
        recordset_.Close();
    }

  private:
    bool readOn(platform::Rows* rows, int count) {
        rows->columns = columns_;
        // Room for all of them at once: to look for some at each cell takes longer than to fill it.
        const qsizetype before = rows->cells.size();
        rows->cells.resize(before + qsizetype(count) * columns_);
        QString* cell = rows->cells.data() + before;
        // Without a component EOF is false, so the result's own state is asked as well.
        for (; count > 0 && recordset_.m_bOpen && !recordset_.EOF(); --count, recordset_.MoveNext()) {
            for (int i = 0; i < columns_; ++i) *cell++ = recordset_.GetFieldString(i);
        }
        rows->cells.resize(cell - rows->cells.data());
        rows->isComplete = !recordset_.IsBroken();
        const bool hasMore = recordset_.m_bOpen && !recordset_.EOF();
        hasMore ? room_->noteRows(kPiece) : room_->narrow();
        return hasMore;
    }

    CVOConnection connection_;
    CVORecordset recordset_;
    std::optional<Room> room_;
    int columns_;
    platform::Rows ahead_;
};

}  // namespace

std::optional<QStringList> firstRow(const Sql& select) {
    CVOConnection connection;
    openDatabase(connection);
    CVORecordset recordset(connection);
    recordset.Open(select, kKeyset, kReadOnly);
    // Without a component EOF is false, so the result's own state is asked as well.
    if (!recordset.m_bOpen || recordset.EOF()) return std::nullopt;
    recordset.MoveFirst();
    QStringList columns;
    columns.reserve(recordset.m_nFieldCount);
    for (int i = 0; i < recordset.m_nFieldCount; ++i) columns.append(recordset.GetFieldString(i));
    return columns;
}

bool hasRow(const Sql& select) {
    return firstRow(select).has_value();
}

bool execute(const Sql& statement) {
    finishReading();
    CVOConnection connection;
    openDatabase(connection);
    CVORecordset recordset(connection);
    return recordset.Open(statement, kForwardOnly, kReadOnly);
}

platform::Rows selectRows(const Sql& select, int columns) {
    platform::Rows rows{.columns = columns, .cells = {}};
    const int count = forEachRow(select, [&](CVORecordset& recordset) {
        for (int i = 0; i < columns; ++i) rows.cells.append(recordset.GetFieldString(i));
    });
    rows.isComplete = count >= 0;
    return rows;
}

platform::RowSource selectPieces(const Sql& select, int columns) {
    return [reader = std::make_shared<Reader>(select, columns)](platform::Rows* rows) {
        return reader->read(rows);
    };
}

void finishReading() {
    for (Reader* reader : std::as_const(Reader::underWay())) reader->readAhead();
}

}  // namespace db
