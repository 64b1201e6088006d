#include "rovana-office/MasterFile.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <algorithm>

#include "db/ImportLines.h"
#include "db/Schema.h"
#include "platform/CodePage.h"
#include "platform/Csv.h"
#include "platform/WholeFile.h"
#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

/// More of them say nothing new.
constexpr int kFaultsTold = 5;

/// Gathers what is wrong with the lines of a file.
class Faults {
  public:
    void add(int line, const QString& what) {
        if (++count_ <= kFaultsTold) told_ << u"line %1 %2"_s.arg(line).arg(what);
    }
    void throwAny(const QString& path) const {
        if (count_ == 0) return;
        const QString more = count_ > kFaultsTold ? u" and %1 more"_s.arg(count_ - kFaultsTold) : QString();
        throw Fault(path + u": "_s + told_.join(u", "_s) + more);
    }

  private:
    int count_ = 0;
    QStringList told_;
};

QString unstorable(const QStringList& row) {
    for (const QString& text : row) {
        if (text.contains(u'\'')) return u"holds a single quote, which no terminal can store"_s;
        if (text.contains(QChar::Null)) return u"holds a zero character"_s;
        if (!platform::codepage::encode(text)) return u"holds a character that code page 949 lacks"_s;
    }
    return {};
}

void readLines(const QByteArray& content, MasterFile* master, Faults* faults) {
    std::vector<QStringView> fields;
    db::ImportLines lines(content);
    for (int number = 1; !lines.atEnd(); ++number) {
        const QByteArrayView line = lines.next();
        const auto text = db::decodeImportLine(db::withoutLineEnd(line));
        if (!text) {
            faults->add(number, u"is not code page 949"_s);
            continue;
        }
        db::cutImportLine(*master->file, *text, &fields);
        QStringList row;
        for (const QStringView field : fields) row << field.toString();
        if (const QString what = unstorable(row); !what.isEmpty()) faults->add(number, what);
        master->rows << row;
    }
    if (db::endsCut(*master->file, content)) faults->add(int(master->rows.size()), u"breaks off"_s);
}

/// A row as the terminal gets it: what a line of its file cannot hold would be cut off there.
bool fitsLine(const db::ImportFile& file, const QStringList& row) {
    std::vector<QStringView> cut;
    const QString line = row.join(u'|');
    db::cutImportLine(file, line + u'|', &cut);
    return std::ranges::equal(row, cut);
}

void readTable(const QString& path, const QByteArray& content, MasterFile* master, Faults* faults) {
    const auto columns =
        db::schema::findTable(master->table)->columns.first(std::size_t(master->file->fields));
    QList<platform::CsvRow> rows;
    if (const QString error = platform::readCsvRows(content, master->table.toUpper(), columns, &rows);
        !error.isEmpty())
        throw Fault(path + u": "_s + error);
    for (const auto& [line, row] : rows) {
        if (const QString what = unstorable(row); !what.isEmpty()) {
            faults->add(line, what);
        } else if (!fitsLine(*master->file, row)) {
            faults->add(line, u"does not fit into a line of "_s + master->name);
        }
        master->rows << row;
    }
}

}  // namespace

QByteArray MasterFile::digest() const {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QStringList& row : rows) hash.addData((row.join(QChar(0x1F)) + QChar(0x1E)).toUtf8());
    return hash.result();
}

QStringList MasterFile::column(qsizetype at) const {
    QStringList texts;
    texts.reserve(rows.size());
    for (const QStringList& row : rows) texts << row[at];
    return texts;
}

MasterFile readMasterFile(const QString& path) {
    const QFileInfo info(path);
    const QString name = info.completeBaseName().toUpper() + u".RVN"_s;
    const bool isTable = info.suffix().compare(u"csv"_s, Qt::CaseInsensitive) == 0;
    const auto files = db::importFiles();
    const auto file = std::ranges::find(files, QStringView(name), &db::ImportFile::fileName);
    if (file == files.end() || (!isTable && info.suffix().compare(u"rvn"_s, Qt::CaseInsensitive) != 0)) {
        throw Fault(
            u"%1 is no master data; the names are MTM, GARAE, PUMMOK, GARAEDANGA, GARAEMAJIN and BARCODE "
            u"with "
            ".RVN or .csv"_s.arg(path));
    }
    QString error;
    const auto content = platform::readWholeFile(path, &error);
    if (!content) throw Fault(u"%1 cannot be read: %2"_s.arg(path, error));
    MasterFile master{&*file, name, info.completeBaseName().toLower(), {}, {}};
    for (const QStringView column :
         db::schema::findTable(master.table)->columns.first(std::size_t(file->fields)))
        master.columns << column.toString().toLower();
    Faults faults;
    if (isTable) {
        readTable(path, *content, &master, &faults);
    } else {
        readLines(*content, &master, &faults);
    }
    faults.throwAny(path);
    return master;
}

}  // namespace office
