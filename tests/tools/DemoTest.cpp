#include "rovanactl/demo/Demo.h"

#include <QSet>

#include "AdminTest.h"
#include "books/Customer.h"
#include "db/MasterImport.h"
#include "sales/Pricing.h"

namespace test {
namespace {

class DemoTest : public AdminTest {
  protected:
    /// Loads the waiting files; every line must become a row.
    void importAll(const admin::demo::Data& expected) {
        const std::size_t lines[] = {expected.orders.size(), expected.customers.size(),
                                     expected.products.size(), expected.contractPrices.size(),
                                     expected.classMargins.size()};
        int place = 0;
        for (const db::ImportFile& file : db::importFiles()) {
            if (file.isOptional) continue;
            const db::ImportResult result = db::importFile(file, db::findImportFile(file), {});
            EXPECT_EQ(result.loaded, int(lines[place++])) << file.fileName.toUtf8().toStdString();
            EXPECT_EQ(result.rejected, 0);
            EXPECT_TRUE(result.isDeleted);
        }
    }
};

TEST_F(DemoTest, OpenOrdersCostWhatTheTerminalWouldAsk) {
    makeDemo();
    admin::demo::Options options;
    options.date = kDay;
    importAll(admin::demo::invent(options));
    QSet<QString> slips;
    QSet<sales::PriceSource> sources;
    for (const QString& row :
         rows(u"SELECT GCode, PCode, Box, Bon, MMoney, BMoney, YMoney, GMoney, JunNo, UserID FROM MTM"_s)) {
        const QStringList line = row.split(u'|');
        const sales::PricedLine priced = sales::priceLine(line[0], books::slipCustomer(line[0]).value().Gubun,
                                                          line[1], line[2].toInt(), line[3].toInt());
        const sales::LineAmounts stored{platform::parseWon(line[4]), platform::parseWon(line[5]),
                                        platform::parseWon(line[6]), platform::parseWon(line[7])};
        EXPECT_EQ(priced.amounts, stored) << narrow(row);
        EXPECT_LT(line[8].toInt(), 5000) << "numbers from 5001 are the terminal's own";
        slips.insert(line[8] + line[9]);
        sources.insert(priced.source);
    }
    EXPECT_EQ(slips.size(), 6);
    EXPECT_EQ(sources, (QSet{sales::PriceSource::Contract, sales::PriceSource::Tier}));
}

}  // namespace
}  // namespace test
