#include "tools/office/OfficeTest.h"

#include <QCoreApplication>
#include <cstdio>

#include "rovana-office/Database.h"

namespace test {

OfficeTest::OfficeTest() {
    // What every test's database is copied from.
    static const QString made = [] {
        const QString name = u"office_template"_s;
        const Ended ended = runOn(cluster().administrator(name), {u"init"_s});
        return ended.exitCode == 0 ? name : throw std::runtime_error(ended.err);
    }();
    database_ = cluster().createDatabase(made);
    // Rights on a database itself are not copied with it.
    EXPECT_EQ(run({u"init"_s}).exitCode, 0);
}

Ended OfficeTest::runOn(const QString& connection, const QStringList& arguments) {
    return runHere(office::run,
                   QStringList(u"rovana-office"_s) + arguments + QStringList{u"--database"_s, connection});
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

QString OfficeTest::writeFile(const QString& name, const QByteArray& content) {
    EXPECT_TRUE(platform::writeWholeFile(path(name), content));
    return path(name);
}

}  // namespace test

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    if (office::Cluster::isThere()) return RUN_ALL_TESTS();
    std::puts("skipped: there are no PostgreSQL server programs here (Debian's package postgresql)");
    return 0;
}
