#include "books/Customer.h"
#include "books/Product.h"
#include "rovanactl/Command.h"
#include "sales/Pricing.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

/// A slip takes quantities of up to three digits.
constexpr int kLargestQuantity = 999;

QString sourceName(sales::PriceSource source) {
    switch (source) {
        case sales::PriceSource::Contract: return u"contract"_s;
        case sales::PriceSource::ClassMargin: return u"class"_s;
        case sales::PriceSource::CustomerMargin: return u"customer"_s;
        case sales::PriceSource::Tier: return u"tier"_s;
    }
    return {};
}

std::optional<int> readQuantity(const QString& text) {
    bool isNumber = false;
    const int quantity = text.toInt(&isNumber);
    if (!isNumber || quantity < 0 || quantity > kLargestQuantity) return std::nullopt;
    return quantity;
}

/// A price's line, or what is wrong with its question.
struct Answer {
    QString line;
    QString error;
};

/// `question` is customer, product, boxes and bottles.
Answer price(const QStringList& question) {
    if (question.size() != 4) {
        return {{},
                u"a question is customer, product, boxes and bottles; %1 values came"_s.arg(question.size())};
    }
    const QString& customer = question[0];
    const QString& product = question[1];
    const std::optional<int> boxes = readQuantity(question[2]);
    const std::optional<int> bottles = readQuantity(question[3]);
    if (!boxes || !bottles) {
        return {{},
                u"\"%1\" is no quantity from 0 to %2"_s.arg(question[boxes ? 3 : 2]).arg(kLargestQuantity)};
    }
    const std::optional<books::Customer> known = books::slipCustomer(customer);
    if (!known) return {{}, u"there is no customer \"%1\""_s.arg(customer)};
    if (!books::productExists(product)) return {{}, u"there is no product \"%1\""_s.arg(product)};
    const sales::PricedLine line = sales::priceLine(customer, known->Gubun, product, *boxes, *bottles);
    const QStringList values{sourceName(line.source), platform::formatWon(line.amounts.supply),
                             platform::formatWon(line.amounts.vat),
                             platform::formatWon(line.amounts.crateDeposit),
                             platform::formatWon(line.amounts.bottleDeposit)};
    return {values.join(u'\t'), {}};
}

/// Answers every line of the input, at once, so that another program can talk with this one.
Outcome answerInput(const Invocation& call) {
    int faults = 0;
    for (QString question; call.in.readLineInto(&question);) {
        const Answer answer = price(question.split(u'\t'));
        if (!answer.error.isEmpty()) ++faults;
        call.out << (answer.error.isEmpty() ? answer.line : u"error\t"_s + answer.error) << u'\n';
        call.out.flush();
    }
    return faults == 0 ? Outcome{}
                       : failure(u"%1 questions had no answer; their lines say why"_s.arg(faults));
}

Outcome answer(const Invocation& call) {
    for (const QStringView table : {u"GARAE", u"PUMMOK", u"GARAEDANGA", u"GARAEMAJIN"}) {
        if (Outcome missing = requireTable(table); missing.exitCode != kSuccess) return missing;
    }
    if (call.arguments == QStringList{u"-"_s}) return answerInput(call);
    if (call.arguments.size() != 4) return usageError(u"price takes GCODE PCODE BOX BON, or -"_s);
    const Answer answer = price(call.arguments);
    if (!answer.error.isEmpty()) return failure(answer.error);
    call.out << answer.line << u'\n';
    return {};
}

}  // namespace

constinit const Command kPriceCommand{
    u"price",
    u"GCODE PCODE BOX BON",
    u"tells what a line of a sales slip costs",
    u"Prints, tab-separated: where the price comes from (contract, class, customer or tier), supply\n"
    u"amount, VAT, crate deposit and bottle deposit in won. With - in place of the four it reads them,\n"
    u"tab-separated, from standard input and answers line by line.",
    1,
    4,
    nullptr,
    answer};

}  // namespace admin
