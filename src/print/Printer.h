#pragma once

#include <QStringView>

/// The printer operations of the device library under the names that the system gives them. They return what
/// the library returns; nothing looks at it, so an absent printer or an empty roll changes nothing above.
namespace print {

int DeviceOpen();
int DeviceClose();
int PrinterInit();
/// 4 selects the enlarged size of titles, 0 the normal size.
int PrinterSetSize(int mode);
int PrinterPrint(QStringView text);
int PrinterFeed(int lines);

}  // namespace print
