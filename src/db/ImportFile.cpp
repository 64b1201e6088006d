#include "db/ImportFile.h"

#include <algorithm>
#include <array>

#include "db/WaitingFile.h"
#include "platform/Device.h"

namespace db {
namespace {

constexpr Statement<u"SELECT COUNT(*) FROM MTM"> kCountOrders;
constexpr Statement<u"SELECT COUNT(*) FROM GARAE"> kCountCustomers;
constexpr Statement<u"SELECT COUNT(*) FROM PUMMOK"> kCountProducts;
constexpr Statement<u"SELECT COUNT(*) FROM GARAEDANGA"> kCountContractPrices;
constexpr Statement<u"SELECT COUNT(*) FROM GARAEMAJIN"> kCountClassMargins;
constexpr Statement<u"SELECT COUNT(*) FROM BARCODE"> kCountBarcodes;

constexpr Statement<u"DELETE GARAE"> kDeleteCustomers;
constexpr Statement<u"DELETE PUMMOK"> kDeleteProducts;
constexpr Statement<u"DELETE GARAEDANGA"> kDeleteContractPrices;
constexpr Statement<u"DELETE GARAEMAJIN"> kDeleteClassMargins;
constexpr Statement<u"DELETE BARCODE"> kDeleteBarcodes;

constexpr Statement<
    u"INSERT INTO MTM "
    u"(DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,BMoney,YMoney,"
    u"GMoney,UserID) VALUES "
    u"('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsertOrder;
constexpr Statement<
    u"INSERT INTO GARAE "
    u"(GCODE,GNAME,GUPJU,ENDDATE,SNO,MAJIN,CJDATE,CJMONEY,TTMONEY,JUSO,GUBUN,TEL,BGGUBUN,SEEK,"
    u"USERID,CARDNO) VALUES "
    u"('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsertCustomer;
constexpr Statement<
    u"INSERT INTO PUMMOK (Pcode,Pname,Gubun,Size,BoxBonEa,BoxSMoney,BoxBMoney,BonSMoney,BonBMoney,ABoxMMoney,"
    u"ABoxBMoney,ABonMMoney,ABonBMoney,BBoxMMoney,BBoxBMoney,BBonMMoney,BBonBMoney,YGMoney1,YGMoney2,"
    u"GBoxMoney1,"
    u"GBonMoney1,GBoxMoney2,GBonMoney2,JGubun,JBGubun,TTT,seek) VALUES "
    u"('%s','%s','%s','%s','%s','%s','%s','%s',"
    u"'%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsertProduct;
constexpr Statement<
    u"INSERT INTO GARAEDANGA (gcode,pcode,majin,boxmoney,boxbmoney,bonmoney,bonbmoney,ysmoney,ysboxmoney,"
    u"ysbonmoney) VALUES ('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsertContractPrice;
constexpr Statement<u"INSERT INTO GARAEMAJIN (GCode,Gubun,Majin) VALUES ('%s','%s','%s')"> kInsertClassMargin;
constexpr Statement<u"INSERT INTO BARCODE (PCode,Barcode) VALUES ('%s','%s')"> kInsertBarcode;

/// A statement without values.
template <const auto& Plain>
Sql plain() {
    return Plain();
}

template <const auto& Insert>
constexpr ImportFile describe(QStringView fileName, int firstFieldLength, int restLength, Sql (*countRows)(),
                              Sql (*deleteAll)(), bool isOnlyOffices, bool isOptional = false) {
    constexpr int kFields = std::remove_cvref_t<decltype(Insert)>::kValues;
    return {fileName,  firstFieldLength, restLength,    kFields,
            countRows, deleteAll,        isOnlyOffices, std::remove_cvref_t<decltype(Insert)>::textForBinding,
            isOptional};
}

// A payment moves the customers' receivables, so GARAE is not the office's alone.
constexpr std::array kFiles{
    describe<kInsertOrder>(u"MTM.RVN", 10, 140, plain<kCountOrders>, nullptr, false),
    describe<kInsertCustomer>(u"GARAE.RVN", 4, 200, plain<kCountCustomers>, plain<kDeleteCustomers>, false),
    describe<kInsertProduct>(u"PUMMOK.RVN", 4, 200, plain<kCountProducts>, plain<kDeleteProducts>, true),
    describe<kInsertContractPrice>(u"GARAEDANGA.RVN", 4, 200, plain<kCountContractPrices>,
                                   plain<kDeleteContractPrices>, true),
    describe<kInsertClassMargin>(u"GARAEMAJIN.RVN", 4, 200, plain<kCountClassMargins>,
                                 plain<kDeleteClassMargins>, true),
    describe<kInsertBarcode>(u"BARCODE.RVN", 4, 200, plain<kCountBarcodes>, plain<kDeleteBarcodes>, true,
                             true),
};

template <typename View, typename Unit>
void cut(const ImportFile& file, View line, Unit separator, std::vector<View>* fields) {
    // Never null, which would be no text.
    fields->assign(std::size_t(file.fields), line.first(0));
    const qsizetype first = std::min<qsizetype>(line.size(), file.firstFieldLength);
    fields->front() = line.first(first);
    View rest = line.sliced(std::min(line.size(), first + 1));
    rest = rest.first(std::min<qsizetype>(rest.size(), file.restLength));
    for (auto field = fields->begin() + 1; field != fields->end(); ++field) {
        const auto end = std::find(rest.begin(), rest.end(), separator);
        if (end == rest.end()) break;
        *field = rest.first(end - rest.begin());
        rest = rest.sliced(field->size() + 1);
    }
}

}  // namespace

std::span<const ImportFile> importFiles() {
    return kFiles;
}

QString importPath(const ImportFile& file, ImportSource source) {
    switch (source) {
        case ImportSource::Documents:
            return platform::device::kDocumentsFolder.toString() + file.fileName.toString();
        case ImportSource::StorageCard:
            return platform::device::kStorageCardFolder.toString() + file.fileName.toString();
        case ImportSource::None: break;
    }
    return {};
}

ImportSource findImportFile(const ImportFile& file) {
    for (const ImportSource source : {ImportSource::Documents, ImportSource::StorageCard}) {
        if (WaitingFile::isAt(platform::device::path(importPath(file, source)))) return source;
    }
    return ImportSource::None;
}

bool isImportWaiting() {
    return std::ranges::any_of(
        kFiles, [](const ImportFile& file) { return findImportFile(file) != ImportSource::None; });
}

void cutImportLine(const ImportFile& file, QStringView line, std::vector<QStringView>* fields) {
    cut(file, line, QChar(u'|'), fields);
}

void cutImportLine(const ImportFile& file, QByteArrayView line, std::vector<QByteArrayView>* fields) {
    cut(file, line, '|', fields);
}

}  // namespace db
