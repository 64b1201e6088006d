#include "tools/office/OfficeTest.h"

#include <QFile>

#include "rovana-office/Database.h"

namespace test {
namespace {

/// What every test's database is copied from.
const QString& emptyOffice() {
    static const QString name = [] {
        const QString made = u"office_template"_s;
        const OfficeEnded ended = [&] {
            QString out;
            QString err;
            QTextStream in(stdin);
            QTextStream outStream(&out);
            QTextStream errStream(&err);
            const int code = office::run(
                {u"rovana-office"_s, u"init"_s, u"--database"_s, Cluster::instance().administrator(made)}, in,
                outStream, errStream);
            return OfficeEnded{code, out.toStdString(), err.toStdString()};
        }();
        if (ended.exitCode != 0) throw std::runtime_error(ended.err);
        return made;
    }();
    return name;
}

}  // namespace

OfficeTest::OfficeTest() : database_(cluster().createDatabase(emptyOffice())) {
    // Rights on a database itself are not copied with it.
    EXPECT_EQ(run({u"init"_s}).exitCode, 0);
}

OfficeEnded OfficeTest::runOn(const QString& database, const QStringList& arguments) {
    QString input;
    QString out;
    QString err;
    QTextStream inStream(&input);
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    const QStringList all = QStringList{u"rovana-office"_s} + arguments +
                            QStringList{u"--database"_s, cluster().administrator(database)};
    const int exitCode = office::run(all, inStream, outStream, errStream);
    return {exitCode, out.toStdString(), err.toStdString()};
}

QStringList OfficeTest::sql(const QString& statements) const {
    pqxx::connection connected(connection().toStdString());
    pqxx::nontransaction work(connected);
    QStringList rows;
    for (const pqxx::row& row : work.exec(statements.toStdString())) {
        QStringList texts;
        for (const pqxx::field& field : row) texts << office::textOf(field);
        rows << texts.join(u'|');
    }
    return rows;
}

void OfficeTest::insert(const QString& table, const QList<std::pair<QString, QString>>& fields) const {
    QStringList names;
    QStringList values;
    for (const auto& [name, value] : fields) {
        names << name;
        values << u"'"_s + QString(value).replace(u'\'', u"''"_s) + u"'"_s;
    }
    sql(u"INSERT INTO office.%1 (%2) VALUES (%3)"_s.arg(table, names.join(u','), values.join(u',')));
}

QString OfficeTest::writeFile(const QString& name, const QByteArray& content) {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    return path(name);
}

}  // namespace test
