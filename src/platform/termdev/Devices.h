#pragma once

#include <QtGlobal>
#include <memory>

#include "platform/Settings.h"
#include "platform/termdev/CardReaderLine.h"
#include "platform/termdev/Printer.h"

namespace platform::termdev {

/// The printer that the settings name, the paper roll without one.
std::unique_ptr<Printer> makePrinter(const Settings& settings);

/// The devices that the settings name, in use while the object lives. It needs an application object; the
/// paper roll comes back at its end.
class Devices {
  public:
    explicit Devices(const Settings& settings);
    ~Devices();
    Q_DISABLE_COPY_MOVE(Devices)

  private:
    std::unique_ptr<CardReaderLine> reader_;
};

/// How the card reader in use is; without one the terminal takes cards from its socket and is ready.
DeviceStatus readerStatus();

}  // namespace platform::termdev
