#pragma once

/// The dialog ids by which screens open one another.
namespace app::dialogs {

inline constexpr int kMain = 102;
inline constexpr int kSimplePayment = 104;
inline constexpr int kKeypad = 130;
inline constexpr int kSlipList = 132;
inline constexpr int kSalesSlip = 134;
inline constexpr int kProductBoard = 138;
inline constexpr int kProductSearch = 139;
inline constexpr int kSlipPrinting = 142;
inline constexpr int kConsonantBoard = 143;
inline constexpr int kCustomerList = 144;
inline constexpr int kCollectionList = 150;
inline constexpr int kContainerList = 391;
inline constexpr int kContainerDeposit = 393;
inline constexpr int kContainerSlip = 394;
inline constexpr int kContainerBalance = 395;
inline constexpr int kContainerSearch = 397;
inline constexpr int kImport = 435;
inline constexpr int kImportResult = 437;
inline constexpr int kCard = 449;
inline constexpr int kCollectionEntry = 450;
inline constexpr int kTotals = 457;
inline constexpr int kReport = 458;
inline constexpr int kPaymentCheck = 459;
inline constexpr int kVisitCheck = 460;
inline constexpr int kUnvisited = 461;
inline constexpr int kPastOrders = 465;

}  // namespace app::dialogs
