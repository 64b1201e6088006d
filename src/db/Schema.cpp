#include "db/Schema.h"

#include <QStringBuilder>
#include <QStringList>
#include <algorithm>
#include <array>

namespace db::schema {
namespace {

using namespace Qt::Literals::StringLiterals;

template <std::size_t N>
using Columns = std::array<QStringView, N>;

constexpr Columns<16> kGarae{u"GCODE",   u"GNAME",   u"GUPJU",   u"ENDDATE", u"SNO",   u"MAJIN",
                             u"CJDATE",  u"CJMONEY", u"TTMONEY", u"JUSO",    u"GUBUN", u"TEL",
                             u"BGGUBUN", u"SEEK",    u"USERID",  u"CARDNO"};
constexpr Columns<27> kPummok{
    u"Pcode",      u"Pname",      u"Gubun",      u"Size",       u"BoxBonEa",   u"BoxSMoney",  u"BoxBMoney",
    u"BonSMoney",  u"BonBMoney",  u"ABoxMMoney", u"ABoxBMoney", u"ABonMMoney", u"ABonBMoney", u"BBoxMMoney",
    u"BBoxBMoney", u"BBonMMoney", u"BBonBMoney", u"YGMoney1",   u"YGMoney2",   u"GBoxMoney1", u"GBonMoney1",
    u"GBoxMoney2", u"GBonMoney2", u"JGubun",     u"JBGubun",    u"TTT",        u"seek"};
constexpr Columns<10> kGaraeDanga{u"gcode",    u"pcode",     u"majin",   u"boxmoney",   u"boxbmoney",
                                  u"bonmoney", u"bonbmoney", u"ysmoney", u"ysboxmoney", u"ysbonmoney"};
constexpr Columns<3> kGaraeMajin{u"GCode", u"Gubun", u"Majin"};
constexpr Columns<10> kPdaUser{u"userID",        u"userPASS",      u"userNAME", u"vatMode",  u"followOn",
                               u"containerWork", u"searchSetting", u"userTEL",  u"reserve1", u"reserve2"};
constexpr Columns<10> kConfig{u"sangho", u"sno",     u"name",   u"tel",      u"fax",
                              u"juso",   u"calltel", u"cardid", u"cardpass", u"cardno"};
constexpr Columns<2> kJGubun{u"CODE", u"NAME"};
constexpr Columns<5> kMPummok{u"PCode", u"PName", u"Size", u"Gubun", u"AUTOCNT"};
constexpr Columns<4> kBankMoney{u"DDate", u"GCode", u"GName", u"CardMoney"};
constexpr Columns<17> kMtm{u"DDate",  u"Gubun",  u"GCode",  u"GName",  u"JunNo", u"WorkGubun",
                           u"PCode",  u"PName",  u"JGubun", u"Box",    u"Bon",   u"MMoney",
                           u"BMoney", u"YMoney", u"GMoney", u"UserID", u"DTime"};
constexpr Columns<22> kMtmOk{u"DDate",       u"Gubun",       u"GCode",      u"GName",   u"JunNo",
                             u"DTime",       u"UserID",      u"MMoney",     u"PMoney",  u"BMoney",
                             u"YMoney",      u"GMoney",      u"YGMoney",    u"InMoney", u"WonMoney",
                             u"CardMoney",   u"MisuInMoney", u"UnderMoney", u"YDMoney", u"GDMoney",
                             u"MSGSENDTIME", u"BANKTRANNO"};
constexpr Columns<14> kYtm{u"DDate", u"GCode", u"GName",  u"JunNo",  u"PCode", u"PName", u"FBox",
                           u"NBox",  u"Bon",   u"YMONEY", u"GMONEY", u"YSAMT", u"GSAMT", u"UserID"};
constexpr Columns<20> kDayClose{u"DDate",     u"UserID", u"ClosedAt",  u"CountedCash", u"ExpectedCash",
                                u"Cash",      u"Card",   u"Approvals", u"Unpaid",      u"EarlierPaid",
                                u"Recovery",  u"Boxes",  u"Bottles",   u"CratesBack",  u"BottlesBack",
                                u"OpenSlips", u"Strip",  u"Visits",    u"Deletions",   u"PrintedAt"};
constexpr Columns<5> kImportLog{u"Path", u"Digest", u"Size", u"Modified", u"LoadedAt"};
constexpr Columns<6> kImportReject{u"FileName", u"Digest", u"KeptAt", u"Number", u"Reason", u"Line"};
constexpr Columns<5> kMasterLoad{u"FileName", u"Digest", u"Modified", u"Newest", u"LoadedAt"};
constexpr Columns<6> kPrintLog{u"DDate", u"JunNo", u"UserID", u"Document", u"Copy", u"PrintedAt"};
// A customer's containers of one product in the slips that were archived: sold, and taken back.
constexpr Columns<9> kContainerCarry{u"GCode", u"PCode", u"PName",   u"Box",  u"Bon",
                                     u"FBox",  u"NBox",  u"BackBon", u"Until"};
// The payment's own columns, those of the slip that it pays, and what its sale came to and its containers
// were worth.
constexpr Columns<29> kPayJournal{
    u"Number",  u"State",       u"Kind",       u"Charged",     u"SettledAt",     u"DDate",
    u"Gubun",   u"GCode",       u"GName",      u"JunNo",       u"DTime",         u"UserID",
    u"MMoney",  u"PMoney",      u"BMoney",     u"YMoney",      u"GMoney",        u"YGMoney",
    u"InMoney", u"WonMoney",    u"CardMoney",  u"MisuInMoney", u"UnderMoney",    u"YDMoney",
    u"GDMoney", u"MSGSENDTIME", u"BANKTRANNO", u"SaleTotal",   u"ContainerWorth"};

constexpr Columns<9> kDeleted{u"DDate", u"Document", u"JunNo",     u"UserID",   u"GCode",
                              u"GName", u"Total",    u"DeletedBy", u"DeletedAt"};
// Whose slip a working table holds, and whether it has changes that are not saved.
constexpr Columns<3> kUnsaved{u"Slip", u"UserID", u"Changed"};
// What is kept aside of the slips of other users and work dates: MTM's first 15 and YTM's first 13 columns.
constexpr Columns<17> kKeptSale{u"DDate",  u"Gubun",  u"GCode",  u"GName",  u"JunNo", u"WorkGubun",
                                u"PCode",  u"PName",  u"JGubun", u"Box",    u"Bon",   u"MMoney",
                                u"BMoney", u"YMoney", u"GMoney", u"UserID", u"KeptAt"};
constexpr Columns<15> kKeptContainers{u"DDate",  u"GCode", u"GName", u"JunNo",  u"PCode",
                                      u"PName",  u"FBox",  u"NBox",  u"Bon",    u"YMONEY",
                                      u"GMONEY", u"YSAMT", u"GSAMT", u"UserID", u"KeptAt"};

// The codes that a reader reads off the products; the office sends them or not.
constexpr Columns<2> kBarcode{u"PCode", u"Barcode"};

// The working tables hold one slip while it is edited: MTM's first 15 and YTM's first 13 columns.
constexpr std::array kTables{
    Table{u"GARAE", kGarae},
    Table{u"PUMMOK", kPummok},
    Table{u"GARAEDANGA", kGaraeDanga},
    Table{u"GARAEMAJIN", kGaraeMajin},
    Table{u"PDAUSER", kPdaUser},
    Table{u"config", kConfig},
    Table{u"JGUBUN", kJGubun},
    Table{u"MPUMMOK", kMPummok},
    Table{u"BankMoney", kBankMoney},
    Table{u"MTM", kMtm},
    Table{u"MTMOK", kMtmOk},
    Table{u"YTM", kYtm},
    Table{u"TEMP", std::span(kMtm).first(15)},
    Table{u"YTEMP", std::span(kYtm).first(13)},
    Table{u"DAYCLOSE", kDayClose, false},
    Table{u"IMPORTLOG", kImportLog},
    Table{u"IMPORTREJECT", kImportReject, false},
    Table{u"MASTERLOAD", kMasterLoad, false},
    Table{u"PRINTLOG", kPrintLog, false},
    Table{u"PAYJOURNAL", kPayJournal, false},
    Table{u"DELETED", kDeleted, false},
    Table{u"CONTAINERCARRY", kContainerCarry, false},
    Table{u"UNSAVED", kUnsaved, false},
    Table{u"BARCODE", kBarcode, false},
    Table{u"KEPTSALE", kKeptSale, false},
    Table{u"KEPTCONTAINERS", kKeptContainers, false},
};

constexpr std::array kIndexes{
    Index{u"GARAE_GCODE", u"GARAE", u"GCODE"},
    Index{u"GARAE_SEEK", u"GARAE", u"SEEK, GNAME"},
    Index{u"GARAE_USER", u"GARAE", u"USERID, GCODE"},
    Index{u"PUMMOK_PCODE", u"PUMMOK", u"Pcode"},
    Index{u"PUMMOK_SEEK", u"PUMMOK", u"seek, Pname"},
    Index{u"PUMMOK_CLASS", u"PUMMOK", u"JGubun, Pcode"},
    Index{u"PUMMOK_TTT", u"PUMMOK", u"TTT"},
    Index{u"GARAEDANGA_KEY", u"GARAEDANGA", u"gcode, pcode"},
    Index{u"GARAEMAJIN_KEY", u"GARAEMAJIN", u"GCode, Gubun"},
    Index{u"MTM_SLIP", u"MTM", u"DDate, JunNo, UserID"},
    Index{u"MTM_CUSTOMER", u"MTM", u"GCode, DDate"},
    Index{u"MTM_LIST", u"MTM", u"UserID, DDate, WorkGubun, JunNo"},
    Index{u"MTMOK_SLIP", u"MTMOK", u"DDate, JunNo, UserID"},
    Index{u"MTMOK_TRANSACTION", u"MTMOK", u"BANKTRANNO, JunNo"},
    Index{u"MTMOK_LIST", u"MTMOK", u"UserID, DDate, JunNo"},
    Index{u"MTMOK_SENT", u"MTMOK", u"MSGSENDTIME"},
    Index{u"YTM_SLIP", u"YTM", u"DDate, JunNo, UserID"},
    Index{u"YTM_LIST", u"YTM", u"UserID, DDate, JunNo"},
    Index{u"YTM_CUSTOMER", u"YTM", u"GCode, DDate"},
    Index{u"BANKMONEY_DATE", u"BankMoney", u"DDate"},
    Index{u"DAYCLOSE_DAY", u"DAYCLOSE", u"DDate, UserID"},
    Index{u"PRINTLOG_SLIP", u"PRINTLOG", u"DDate, JunNo"},
    Index{u"CONTAINERCARRY_CUSTOMER", u"CONTAINERCARRY", u"GCode"},
    Index{u"PAYJOURNAL_NUMBER", u"PAYJOURNAL", u"Number"},
    Index{u"PAYJOURNAL_STATE", u"PAYJOURNAL", u"State"},
    Index{u"PAYJOURNAL_SLIP", u"PAYJOURNAL", u"DDate, JunNo, UserID"},
    Index{u"PAYJOURNAL_TRANSACTION", u"PAYJOURNAL", u"BANKTRANNO"},
    Index{u"PAYJOURNAL_SENT", u"PAYJOURNAL", u"MSGSENDTIME"},
    Index{u"DELETED_DAY", u"DELETED", u"DDate"},
    Index{u"BARCODE_BARCODE", u"BARCODE", u"Barcode"},
};

}  // namespace

std::span<const Table> tables() {
    return kTables;
}

std::span<const Index> indexes() {
    return kIndexes;
}

const Table* findTable(QStringView name) {
    const auto found = std::ranges::find_if(
        kTables, [&](const Table& table) { return table.name.compare(name, Qt::CaseInsensitive) == 0; });
    return found == kTables.end() ? nullptr : &*found;
}

QString createStatement(const Table& table) {
    QStringList columns;
    for (const QStringView column : table.columns) columns << column % u" TEXT"_s;
    return u"CREATE TABLE "_s % table.name % u" ("_s % columns.join(u", "_s) % u");"_s;
}

QString createStatement(const Index& index) {
    return u"CREATE INDEX "_s % index.name % u" ON "_s % index.table % u" ("_s % index.columns % u");"_s;
}

QString createStatements() {
    QString all;
    for (const Table& table : tables()) all += createStatement(table);
    for (const Index& index : indexes()) all += createStatement(index);
    return all;
}

}  // namespace db::schema
